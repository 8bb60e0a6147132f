// LP residual and synthesis filters: portable kernels.
#include <algorithm>
#include <cstring>

#include "amrwb/filters/kernels.h"

using namespace zpp;
using amrwb::kOrder;

namespace {

// Of the coefficients together, or of more than any bound where a product with -32768 may not be an ordinary one
Zpp64s magnitudesOf(const Zpp16s* coef, int count) {
  Zpp64s sum = 0;
  for (int i = 0; i < count; ++i) sum += coef[i] == kMin16 ? Zpp64s{1} << 32 : absSat16(coef[i]);
  return sum;
}

}  // namespace

void ownResidualFilter_AMRWB_16s_PX(const Zpp16s* lpc, const Zpp16s* src, Zpp16s* dst, int len) {
  if (32768 * magnitudesOf(lpc, kOrder + 1) > magnitudesThatRound(4)) {
    for (int n = 0; n < len; ++n) {
      Zpp32s sum = 0;
      for (int j = 0; j <= kOrder; ++j) sum = macDbl(sum, lpc[j], src[n - j]);
      dst[n] = roundHigh16(shlSat32(sum, 4));
    }
    return;
  }
  Zpp16s taps[kOrder];  // of src[n - 16..n - 1]
  std::reverse_copy(lpc + 1, lpc + 1 + kOrder, taps);
  for (int n = 0; n < len; ++n) dst[n] = roundedSum(exactDotProduct<kOrder>(src + n - kOrder, taps) + lpc[0] * src[n], 4);
}

namespace {

// Without the steps, for coefficients with which no output needs them
template <int order>
void synthesis(const Zpp16s* lpc, Zpp16s inputFactor, int shift, Zpp16s* srcDst, int len, Zpp16s* mem) {
  constexpr int block = 64;
  Zpp32s taps[order + 1], y[order + block];
  std::copy_n(lpc, order + 1, taps);
  std::copy_n(mem, order, y);
  for (int done = 0; done < len; done += block) {
    const int count = std::min(len - done, block);
    for (int n = 0; n < count; ++n) {
      Zpp32s sum = srcDst[done + n] * inputFactor;
      for (int j = order; j > 0; --j) sum -= taps[j] * y[order + n - j];
      y[order + n] = srcDst[done + n] = roundedSum(sum, shift);
    }
    std::copy_n(y + count, order, y);
  }
  std::copy_n(y, order, mem);
}

}  // namespace

void ownSynthesisFilter_AMRWB_16s_I_PX(const Zpp16s* lpc, int order, Zpp16s inputFactor, int shift, Zpp16s* srcDst, int len,
                                       Zpp16s* mem) {
  if (shift <= 14 && 32768 * (magnitudesOf(lpc + 1, order) + magnitudesOf(&inputFactor, 1)) <= magnitudesThatRound(shift))
    return order == kOrder ? synthesis<16>(lpc, inputFactor, shift, srcDst, len, mem)
                           : synthesis<20>(lpc, inputFactor, shift, srcDst, len, mem);
  constexpr int mostOrder = 20;
  Zpp16s start[2 * mostOrder];  // the past outputs and the first new ones
  std::memcpy(start, mem, static_cast<unsigned>(order) * sizeof(Zpp16s));
  // past[-1] is the latest output
  const auto filtered = [&](const Zpp16s* past, Zpp16s x) {
    Zpp32s sum = mulDbl(x, inputFactor);
    for (int j = 1; j <= order; ++j) sum = msuDbl(sum, lpc[j], past[-j]);
    return roundHigh16(shlSat32(sum, shift));
  };
  for (int n = 0; n < len && n < order; ++n) srcDst[n] = start[order + n] = filtered(start + order + n, srcDst[n]);
  for (int n = order; n < len; ++n) srcDst[n] = filtered(srcDst + n, srcDst[n]);
  std::memcpy(mem, len < order ? start + len : srcDst + len - order, static_cast<unsigned>(order) * sizeof(Zpp16s));
}

// The past outputs are split into 16 upper and 12 lower bits, each with its own saturating sum.
void ownSynthesisFilter_AMRWB_16s32s_PX(const Zpp16s* lpc, const Zpp16s* src, Zpp32s* dst, int len, int scale) {
  const int shift = norm16(lpc[0]) + 1;
  const Zpp16s inputFactor = shr16(lpc[0], 4 + scale);
  const Zpp64s magnitudes = magnitudesOf(lpc + 1, kOrder);
  bool areOutputs = true;  // as they are from here on: of 28 bits
  for (int n = -kOrder; n < 0; ++n) areOutputs = areOutputs && dst[n] >= -(1 << 27) && dst[n] < 1 << 27;
  // The lower sum cannot saturate: 4095 times the magnitudes is below 2^30. Divided by 4096, it takes no more of the upper sum
  // than one more unit of its terms. Where the upper sum saturates at a step, so does the output, as that of the exact sum.
  if (areOutputs && shift <= 14 &&
      32768 * (magnitudes + magnitudesOf(&inputFactor, 1)) + magnitudes < magnitudesThatRound(shift)) {
    for (int n = 0; n < len; ++n) {
      Zpp64s sum = 0;  // both at once
      for (int j = kOrder; j > 0; --j) sum -= Zpp64s{lpc[j]} * dst[n - j];
      dst[n] = sat32(((sum >> 11) + 2 * src[n] * inputFactor) * (1 << shift)) >> 4;
    }
    return;
  }
  for (int n = 0; n < len; ++n) {
    Zpp32s sum = 0;
    for (int j = 1; j <= kOrder; ++j) sum = msuDbl(sum, static_cast<Zpp16s>(dst[n - j] & 4095), lpc[j]);
    sum = macDbl(sum >> 12, src[n], inputFactor);
    for (int j = 1; j <= kOrder; ++j) sum = msuDbl(sum, low16(dst[n - j] >> 12), lpc[j]);
    dst[n] = shlSat32(sum, shift) >> 4;
  }
}
