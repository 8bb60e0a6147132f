// What the single-precision searches of the fixed codebook share (ITU-T G.729 Annexes C and C+). Vectors go by track: element
// 8 t + i belongs to sample 5 i + t. Energies are half of those of the code vectors, so that diagonals count half and cross
// terms once; no comparison depends on it.
#pragma once

#include "g729/fixed_codebook/fixed_codebook.h"

// Annex D's matrix, and that of Annex E: the diagonals halved, then the blocks of each track and the next
void ownToeplizMatrix_G729D_32f(const Zpp32f* impulse, Zpp32f* matrix);
void ownCorrMatrix_G729E_32f(const Zpp32f* impulse, Zpp32f* matrix);

namespace zpp {

using Best_32f = BestCandidate<Zpp32f>;
inline constexpr Best_32f kNoCandidate_32f = {-1, 1};

// Signs +1 and -1 of the backward-filtered target, and its magnitudes
struct SignedTarget_32f {
  alignas(16) Zpp32f magnitude[kSubframe];
  alignas(16) Zpp32f sign[kSubframe];

  explicit SignedTarget_32f(const Zpp32f* target) {
    for (int t = 0; t < kTracks; ++t)
      for (int i = 0; i < kPositions; ++i) {
        const Zpp32f d = target[kTracks * i + t];
        sign[kPositions * t + i] = amplitude(d >= 0);
        magnitude[kPositions * t + i] = d >= 0 ? d : -d;
      }
  }
  bool positive(int track, int position) const { return sign[kPositions * track + position] > 0; }
  // Of a pulse
  static constexpr Zpp32f amplitude(bool positive) { return positive ? 1.0f : -1.0f; }
};

// Multiplies the cross blocks of a matrix by the signs of their two positions.
inline void foldSigns(const Zpp32f* sign, const TrackPair* tracks, int blocks, Zpp32f* cross) {
  for (int block = 0; block < blocks; ++block) {
    const Zpp32f *rowSign = sign + kPositions * tracks[block].row, *columnSign = sign + kPositions * tracks[block].column;
    for (int i = 0; i < kPositions; ++i, cross += kPositions)
      for (int j = 0; j < kPositions; ++j) cross[j] *= rowSign[i] * columnSign[j];
  }
}

// Adds a pulse of amplitude +1 or -1 to a code vector and to that vector filtered, both in the order of time.
inline void addPulse(int sample, Zpp32f amplitude, const Zpp32f* impulse, Zpp32f* code, Zpp32f* filtered) {
  code[sample] += amplitude;
  for (int n = sample; n < kSubframe; ++n) filtered[n] += amplitude * impulse[n - sample];
}

inline void halve(const Zpp32f* src, Zpp32f* dst, int len) {
  for (int n = 0; n < len; ++n) dst[n] = src[n] / 2;
}

// Tries the candidates of correlation sum + d[j] and energy offset + (r[j] + energy[j]) in turn, keeps the best, and returns
// the j of the last one that replaced it, or -1.
template <int length>
inline int improve(Best_32f& best, Zpp32f sum, const Zpp32f* d, Zpp32f offset, const Zpp32f* r, const Zpp32f* energy) {
  Zpp32f square[length], total[length];
  for (int j = 0; j < length; ++j) {
    square[j] = (sum + d[j]) * (sum + d[j]);
    total[j] = offset + (r[j] + energy[j]);
  }
  // Most rows hold none that is better than the best of the rows before.
  int better = 0;
  for (int j = 0; j < length; ++j) better |= best.yieldsTo(square[j], total[j]);
  if (!better) return -1;
  int found = -1;
  for (int j = 0; j < length; ++j)
    if (best.improve(square[j], total[j])) found = j;
  return found;
}

}  // namespace zpp
