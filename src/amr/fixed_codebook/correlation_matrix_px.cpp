// Correlation matrix of the impulse response: scaling of the response, portable kernel.
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
    for (int n = 0; n < kSubframe; ++n) scaled[n] = sat16((impulse[n] * k + 32) >> 6);
  }
  // By Cauchy and Schwarz no partial sum of products exceeds the energy.
  return ownDotProd_16s(scaled, scaled, kSubframe) >= (1 << 30) - 1;
}

namespace {

// Down each diagonal an entry is its lower right neighbour plus one product.
template <class Accumulate>
void fillMatrix(const Zpp16s* h, const Zpp16s* sign, Zpp16s* matrix, const Grid& grid, TrackPairs pairs,
                Accumulate accumulate) {
  for (int distance = 0; distance < kSubframe; ++distance) {
    const Zpp16s* const later = h + distance;
    Zpp32s sum = 0;
    for (int n = 0, j = kSubframe - 1; j >= distance; ++n, --j) {
      sum = accumulate(sum, h[n], later[n]);
      const int slotI = grid.slotOf[j - distance], slotJ = grid.slotOf[j];
      if (distance == 0) {
        matrix[slotJ * kSubframe + slotJ] = roundHigh16(sum);
      } else if (pairs >> (grid.track[j - distance] * 5 + grid.track[j]) & 1) {
        matrix[slotI * kSubframe + slotJ] = matrix[slotJ * kSubframe + slotI] =
            mulQ15(roundHigh16(sum), mulQ15(sign[slotI], sign[slotJ]));
      }
    }
  }
}

}  // namespace

void ownToeplizMatrix_GSMAMR_16s_PX(const Zpp16s* impulse, const Zpp16s* sign, Zpp16s* matrix, int tracks, TrackPairs pairs) {
  Zpp16s h[kSubframe];
  if (ownScaleResponse_GSMAMR_16s(impulse, h))
    fillMatrix(h, sign, matrix, gridOf(tracks), pairs, [](Zpp32s sum, Zpp16s a, Zpp16s b) { return macDbl(sum, a, b); });
  else
    fillMatrix(h, sign, matrix, gridOf(tracks), pairs, [](Zpp32s sum, Zpp16s a, Zpp16s b) { return sum + 2 * a * b; });
}
