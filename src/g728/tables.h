// Constant tables of ITU-T G.728.
#pragma once

#include "zppsc.h"

namespace zpp::g728 {

inline constexpr int kShapes = 128, kCodes = 1024, kVector = 5;  // a code is shape * 8 + gain

// Shape codebook, Q11, oldest sample first (Y, Annex B)
extern const Zpp16s shapeCodebook[kShapes][kVector];
// The same in groups of four vectors, for kernels that take one sample pair of each at a time; the last pair is sample 4 and 0.
struct ShapeGroups {
  alignas(16) Zpp16s pairs[kShapes / 4][3][4][2];
};
extern const ShapeGroups shapeGroups;
// Gain codebook, Q13; entries 4..7 are the negative ones (GQ, Annex B)
extern const Zpp16s gainCodebook[8];
// Left shift that keeps the product of a gain and a normalised mantissa accurate (Annex G)
extern const Zpp8u gainShift[8];
// Boundaries between the gain magnitudes, Q13 (GB, Annex B)
inline constexpr Zpp16s gainBoundary[3] = {5808, 10164, 17787};
// Squared gain magnitudes, Q11 (GSQ), and doubled ones, Q12 (G2, Annex B)
inline constexpr Zpp16s gainSquare[4] = {545, 1668, 5107, 15640}, gainDouble[4] = {4224, 7392, 12936, 22638};
// Level of each gain, 20 log10, and of each shape vector, 10 log10 of its mean square, dB, Q11 (Annex G)
extern const Zpp16s gainLevel[8], shapeLevel[kShapes];
// Polynomial of 2^x, 0 <= x < 1, constant term first: term 0 Q14, the others Q15 (Annex G)
extern const Zpp16s powerOfTwo[5];

// Lowpass of the pitch extraction: factors of the input now and 1..3 samples before, Q19 (BL, Annex D), and of the outputs 1..3
// samples before, Q13 (AL, Annex D)
extern const Zpp16s lowpassZero[4], lowpassPole[3];

// Factor of the extrapolated excitation by 10 ms of an erasure, Q15, 0 behind: voiced, unvoiced (Annex I)
extern const Zpp16s erasureGainVoiced[5], erasureGainUnvoiced[6];
// Polynomial of log2 around 0.75, constant term first, Q13 (Annex I)
extern const Zpp16s logarithmOfTwo[6];
// First state of the random generator (Annex I)
extern const Zpp32u randomState[17];

}  // namespace zpp::g728
