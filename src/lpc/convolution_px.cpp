// Partial convolution, LP residual, harmonic sharpening: portable kernels.
#include <algorithm>
#include <type_traits>

#include "core/fixed_point.h"
#include "core/kernels.h"
#include "lpc/dot_product.h"
#include "lpc/kernels.h"

using namespace zpp;

namespace {

// Of a codec's subframe, whose sums fit 32 bits. Backwards the second operand lies as the first does, so that an output is a
// sum of neighbouring products, in eights as compilers make vectors of them.
constexpr int kSubframe = 40;
void convolveSubframe(const Zpp16s* src1, const Zpp16s* src2, Zpp16s* dst, int scaleFactor) {
  Zpp16s backwards[kSubframe + 8] = {};
  std::reverse_copy(src2, src2 + kSubframe, backwards);
  const auto ofEight = [&](auto number) {
    constexpr int first = 8 * number;
    for (int n = first; n < first + 8; ++n)
      dst[n] = sat16(truncated(exactDotProduct<first + 8>(src1, backwards + kSubframe - 1 - n), scaleFactor));
  };
  ofEight(std::integral_constant<int, 0>{});
  ofEight(std::integral_constant<int, 1>{});
  ofEight(std::integral_constant<int, 2>{});
  ofEight(std::integral_constant<int, 3>{});
  ofEight(std::integral_constant<int, 4>{});
}

}  // namespace

void ownConvPartial_16s_Sfs_PX(const Zpp16s* src1, const Zpp16s* src2, Zpp16s* dst, int len, int scaleFactor) {
  if (len == kSubframe && productsFit(ownDotProd_16s(src1, src1, len), ownDotProd_16s(src2, src2, len)))
    return convolveSubframe(src1, src2, dst, scaleFactor);
  for (int n = 0; n < len; ++n) {
    Zpp64s sum = 0;
    for (int k = 0; k <= n; ++k) sum += Zpp32s{src1[k]} * src2[n - k];
    dst[n] = sat16(truncated(sum, scaleFactor));
  }
}

void ownConvPartial_16s32s_PX(const Zpp16s* src1, const Zpp16s* src2, Zpp32s* dst, int len) {
  for (int n = 0; n < len; ++n) {
    Zpp32s sum = 0;
    for (int k = 0; k <= n; ++k) sum = addWrap32(sum, Zpp32s{src1[k]} * src2[n - k]);
    dst[n] = sum;
  }
}

void ownResidualFilter_G729_16s_PX(const Zpp16s* coef, const Zpp16s* src, Zpp16s* dst, int len) {
  for (int n = 0; n < len; ++n) {
    Zpp64s sum = 0;
    for (int i = 0; i <= kLpcOrder; ++i) sum += Zpp32s{coef[i]} * src[n - i];
    dst[n] = sat16((sum + 2048) >> 12);
  }
}

void ownResidualFilter_G729E_16s_PX(const Zpp16s* coef, int order, const Zpp16s* src, Zpp16s* dst, int len) {
  for (int n = 0; n < len; ++n) {
    Zpp64s sum = 0;
    for (int i = 0; i <= order; ++i) sum += Zpp32s{coef[i]} * src[n - i];
    dst[n] = sat16((sum + 2048) >> 12);
  }
}

void ownHarmonicFilter_16s_PX(Zpp16s gain, int lag, Zpp16s* srcDst, int len) {
  for (int n = 0; n < len; ++n) srcDst[n] = addSat16(srcDst[n], mulQ15(gain, srcDst[n - lag]));
}
