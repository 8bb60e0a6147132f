// Comfort noise of the decoder: dithering of its parameters and the random excitation (3GPP TS 26.192 clause 6).
#include <algorithm>

#include "amrwb/dtx/kernels.h"
#include "amrwb/noise/kernels.h"
#include "core/checks.h"

using namespace zpp;
using namespace zpp::amrwb;

ZppStatus zppsISFDither_AMRWB_16s_I(Zpp16s* isf, Zpp32s* logEnergy, Zpp16s* seed) {
  if (anyNull(isf, logEnergy, seed)) return zppStsNullPointer;
  ownISFDither_AMRWB_16s_I(isf, logEnergy, seed);
  return zppStsOk;
}

ZppStatus zppsComfortNoise_AMRWB_16s(Zpp16s* dst, Zpp32s logEnergy, Zpp16s* seed) {
  if (anyNull(dst, seed)) return zppStsNullPointer;
  ownComfortNoise_AMRWB_16s(dst, logEnergy, seed);
  return zppStsOk;
}

namespace {

// A random number of triangular distribution
Zpp16s triangular(Zpp16s* seed) {
  const Zpp16s first = shr16(nextRandom(*seed), 1);
  return addSat16(first, shr16(nextRandom(*seed), 1));
}

}  // namespace

void ownISFDither_AMRWB_16s_I(Zpp16s* isf, Zpp32s* logEnergy, Zpp16s* seed) {
  constexpr int known = kOrder - 1;  // the last ISF stays
  constexpr Zpp16s lowest = 128, spacing = 448, highest = 16384;
  *logEnergy = std::max(0, addSat32(*logEnergy, mulDbl(triangular(seed), 75)));
  Zpp16s width = 256;
  isf[0] = std::max(lowest, addSat16(isf[0], mulRoundQ15(triangular(seed), width)));
  for (int i = 1; i < known; ++i) {
    width = static_cast<Zpp16s>(width + 2);
    const Zpp16s dithered = addSat16(isf[i], mulRoundQ15(triangular(seed), width));
    isf[i] = subSat16(dithered, isf[i - 1]) < spacing ? addSat16(isf[i - 1], spacing) : dithered;
  }
  isf[known - 1] = std::min(isf[known - 1], highest);
}

void ownComfortNoise_AMRWB_16s(Zpp16s* dst, Zpp32s logEnergy, Zpp16s* seed) {
  const Zpp16s exponent = addSat16(high16(logEnergy), 15);
  const auto fraction = static_cast<Zpp16s>((logEnergy & 0xffff) >> 1);
  const Floating level = normalised(ownPow2(exponent, fraction));
  ownNoise_AMRWB_16s(dst, kFrame, 4, seed);
  const Floating root = inverseSqrt(energy12(dst, kFrame));
  const Zpp16s gain = mulQ15(high16(level.mantissa), high16(root.mantissa));
  const int shift = level.exponent - 15 + root.exponent + 4;
  for (int n = 0; n < kFrame; ++n) dst[n] = shlSat16(mulQ15(dst[n], gain), shift);
}
