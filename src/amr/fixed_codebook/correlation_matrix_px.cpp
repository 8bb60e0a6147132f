// Correlation matrix of the impulse response: scaling of the response, portable kernel.
#include <algorithm>

#include "amr/fixed_codebook/kernels.h"
#include "core/fixed_point.h"
#include "core/kernels.h"

using namespace zpp;

bool ownScaleResponse_GSMAMR_16s(const Zpp16s* impulse, Zpp16s* scaled) {
  const Zpp32s energy = sat32(2 * ownDotProd_16s(impulse, impulse, kSubframe) + 2);
  if (high16(energy) == kMax16) {
    ownRShiftC_16s(impulse, scaled, kSubframe, 1);
  } else {
    const Zpp16s k = mulQ15(high16(shlSat32(ownInvSqrt(energy >> 1), 7)), 32440);  // 0.99 in Q15
    Zpp32s products[kSubframe];
    for (int n = 0; n < kSubframe; ++n) products[n] = (impulse[n] * k + 32) >> 6;
    for (int n = 0; n < kSubframe; ++n) scaled[n] = sat16(products[n]);
  }
  // By Cauchy and Schwarz no partial sum of products exceeds the energy.
  return ownDotProd_16s(scaled, scaled, kSubframe) >= (1 << 30) - 1;
}

namespace {

// How the sums of an entry are computed
struct Exact {
  static Zpp32s add(Zpp32s sum, Zpp16s a, Zpp16s b) { return sum + a * b; }
  static Zpp16s rounded(Zpp32s sum) { return static_cast<Zpp16s>((sum + 0x4000) >> 15); }
};
struct Stepwise {
  static Zpp32s add(Zpp32s sum, Zpp16s a, Zpp16s b) { return macDbl(sum, a, b); }
  static Zpp16s rounded(Zpp32s sum) { return roundHigh16(sum); }
};

// All entries without signs, by the later position of a pair, from the last on: the sums of all distances gain one product
// each.
template <class Sum>
void accumulate(const Zpp16s* h, const Grid& grid, Zpp16s* matrix) {
  Zpp16s response[2 * kSubframe] = {};  // silence follows
  std::copy_n(h, kSubframe, response);
  Zpp32s sums[kSubframe] = {};
  for (int n = 0; n < kSubframe; ++n) {
    Zpp16s entries[kSubframe];  // by distance
    for (int d = 0; d < kSubframe; ++d) {
      sums[d] = Sum::add(sums[d], response[n + d], h[n]);
      entries[d] = Sum::rounded(sums[d]);
    }
    const int later = kSubframe - 1 - n, slot = grid.slotOf[later];
    Zpp16s *const row = matrix + slot * kSubframe, *const column = matrix + slot;
    for (int d = 0; d <= later; ++d) {
      const int earlier = grid.slotOf[later - d];
      row[earlier] = column[earlier * kSubframe] = entries[d];
    }
  }
}

}  // namespace

void ownToeplizMatrix_GSMAMR_16s_PX(const Zpp16s* impulse, const Zpp16s* sign, Zpp16s* matrix, int tracks, TrackPairs pairs) {
  const Grid& grid = gridOf(tracks);
  Zpp16s h[kSubframe], diagonal[kSubframe];
  ownScaleResponse_GSMAMR_16s(impulse, h);
  // By Cauchy and Schwarz no partial sum of products exceeds the energy.
  if (ownDotProd_16s(h, h, kSubframe) < (1 << 30) - 0x4000)
    accumulate<Exact>(h, grid, matrix);
  else
    accumulate<Stepwise>(h, grid, matrix);

  for (int slot = 0; slot < kSubframe; ++slot) diagonal[slot] = matrix[slot * (kSubframe + 1)];
  for (int slot = 0; slot < kSubframe; ++slot) {
    // No product of two signs is -32768, so that no entry saturates.
    Zpp16s factor[kSubframe];
    const Zpp16s ofRow = sign[slot];
    for (int i = 0; i < kSubframe; ++i) factor[i] = static_cast<Zpp16s>(std::min((ofRow * sign[i]) >> 15, kMax16));
    Zpp16s* const row = matrix + slot * kSubframe;
    if (tracks == 4 || pairs == kAllPairs) {
      for (int i = 0; i < kSubframe; ++i) row[i] = static_cast<Zpp16s>((row[i] * factor[i]) >> 15);
      continue;
    }
    const TrackPairs ofTrack = pairs >> kFiveTracks.trackOf(slot) * 5;
    for (int first = 0; first < kSubframe; first += 8) {
      if ((ofTrack >> first / 8 & 1) == 0) continue;
      for (int i = first; i < first + 8; ++i) row[i] = static_cast<Zpp16s>((row[i] * factor[i]) >> 15);
    }
  }
  for (int slot = 0; slot < kSubframe; ++slot) matrix[slot * (kSubframe + 1)] = diagonal[slot];  // which has no signs
}
