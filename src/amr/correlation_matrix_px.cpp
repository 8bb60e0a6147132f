// Correlation matrix of the impulse response: scaling of the response, portable kernel.
#include "amr/kernels.h"
#include "core/fixed_point.h"
#include "core/kernels.h"

using namespace zpp;

bool ownScaleResponse_GSMAMR_16s(const Zpp16s* impulse, Zpp16s* scaled) {
  const Zpp32s energy = sat32(2 * ownDotProd_16s(impulse, impulse, kSubframe) + 2);
  if (high16(energy) == kMax16) {
    ownRShiftC_16s(impulse, scaled, kSubframe, 1);
  } else {
    const Zpp16s k = mulQ15(high16(shlSat32(ownInvSqrt(energy >> 1), 7)), 32440);  // 0.99 in Q15
    for (int n = 0; n < kSubframe; ++n) scaled[n] = roundHigh16(shlSat32(mulDbl(impulse[n], k), 9));
  }
  // By Cauchy and Schwarz no partial sum of products exceeds the energy.
  return ownDotProd_16s(scaled, scaled, kSubframe) >= (1 << 30) - 1;
}

void ownToeplizMatrix_GSMAMR_16s_PX(const Zpp16s* impulse, const Zpp16s* sign, Zpp16s* matrix, int tracks, TrackPairs pairs) {
  const Grid& grid = gridOf(tracks);
  Zpp16s h[kSubframe];
  const bool loud = ownScaleResponse_GSMAMR_16s(impulse, h);
  for (int distance = 0; distance < kSubframe; ++distance) {
    Zpp32s sum = 0;
    for (int n = 0, j = kSubframe - 1; j >= distance; ++n, --j) {
      const Zpp32s product = h[n] * h[n + distance] * 2;
      sum = loud ? addSat32(sum, product) : sum + product;
      const int i = j - distance, slotI = grid.slotOf[i], slotJ = grid.slotOf[j];
      if (distance == 0) {
        matrix[slotJ * kSubframe + slotJ] = roundHigh16(sum);
      } else if (pairs & pairOf(i % tracks, j % tracks)) {
        const Zpp16s value = mulQ15(roundHigh16(sum), mulQ15(sign[slotI], sign[slotJ]));
        matrix[slotI * kSubframe + slotJ] = matrix[slotJ * kSubframe + slotI] = value;
      }
    }
  }
}
