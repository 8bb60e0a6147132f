// Cross-correlation and lag search: portable kernels.
#include "core/fixed_point.h"
#include "core/kernels.h"
#include "lpc/kernels.h"

using namespace zpp;

namespace {

// Sum of the products, modulo 2^32
Zpp32s dotProdWrap32(const Zpp16s* src1, const Zpp16s* src2, int len) {
  constexpr int kBlock = 40;  // a length that compilers know and make vectors of
  Zpp32u sum = 0;
  int n = 0;
  for (; n + kBlock <= len; n += kBlock)
    for (int i = 0; i < kBlock; ++i) sum += static_cast<Zpp32u>(src1[n + i] * src2[n + i]);
  for (; n + 8 <= len; n += 8)
    for (int i = 0; i < 8; ++i) sum += static_cast<Zpp32u>(src1[n + i] * src2[n + i]);
  for (; n < len; ++n) sum += static_cast<Zpp32u>(src1[n] * src2[n]);
  return static_cast<Zpp32s>(sum);
}

// The largest of correlation(lag) over a range; the smallest lag wins a tie.
template <class Correlation>
LagMax searched(int minLag, int maxLag, Correlation correlation) {
  if (minLag > maxLag) return {kMin32, 0};
  LagMax best{kMin32, minLag};
  for (int lag = minLag; lag <= maxLag; ++lag) {
    const Zpp32s value = correlation(lag);
    if (value > best.value) best = {value, lag};
  }
  return best;
}

}  // namespace

void ownPartialCorr_16s32s_PX(const Zpp16s* src1, const Zpp16s* src2, int len, Zpp32s* dst, int lags) {
  for (int k = 0; k < lags; ++k) dst[k] = k < len ? dotProdWrap32(src1, src2 + k, len - k) : 0;
}

void ownCorr_16s32s_PX(const Zpp16s* src1, const Zpp16s* src2, int len, Zpp32s* dst, int lags) {
  for (int k = 0; k < lags; ++k) dst[k] = dotProdWrap32(src1, src2 + k, len);
}

void ownCrossCorr_16s32s_Sfs_PX(const Zpp16s* target, const Zpp16s* signal, int len, Zpp32s* dst, int scaleFactor) {
  for (int n = 0; n < len; ++n) dst[n] = sat32(scaled(ownDotProd_16s_PX(target + n, signal, len - n), scaleFactor));
}

void ownCrossCorr_NormM_16s_PX(const Zpp16s* target, const Zpp16s* signal, int len, Zpp16s* dst) {
  const auto correlation = [=](int n) { return sat32(2 * ownDotProd_16s_PX(target + n, signal, len - n)); };
  constexpr int kKept = 64;  // correlations beyond a codec's subframe are computed again
  Zpp32s kept[kKept];
  Zpp32s most = 0;
  for (int n = 0; n < len; ++n) {
    const Zpp32s d = correlation(n);
    if (n < kKept) kept[n] = d;
    most = absSat32(d) > most ? absSat32(d) : most;
  }
  const int norm = norm32(most);
  const int shift = 18 - (norm > 16 ? 16 : norm);
  for (int n = 0; n < len; ++n) dst[n] = low16((n < kKept ? kept[n] : correlation(n)) >> shift);
}

LagMax ownCrossCorrLagMax_16s_PX(const Zpp16s* src1, const Zpp16s* src2, int len, int maxLag) {
  LagMax best{0, maxLag};
  for (int lag = maxLag; lag >= 0; --lag) {
    const Zpp32s sum = sat32(ownDotProd_16s_PX(src1, src2 + lag, len));
    if (sum > best.value) best = {sum, lag};
  }
  return best;
}

LagMax ownCrossCorrLagMax_Inv_16s_PX(const Zpp16s* target, const Zpp16s* signal, int len, int minLag, int maxLag) {
  return searched(minLag, maxLag, [=](int lag) { return sat32(2 * ownDotProd_16s_PX(target, signal - lag, len)); });
}

LagMax ownAutoCorrLagMax_Fwd_16s_PX(const Zpp16s* src, int len, int minLag, int maxLag) {
  return searched(minLag, maxLag, [=](int lag) { return dotProdWrap32(src, src + lag, len); });
}

LagMax ownAutoCorrLagMax_Inv_16s_PX(const Zpp16s* src, int len, int minLag, int maxLag) {
  return searched(minLag, maxLag, [=](int lag) { return dotProdWrap32(src, src - lag, len); });
}

bool ownDotProd_G729A_16s32s_PX(const Zpp16s* src1, const Zpp16s* src2, int len, Zpp32s* dp) {
  Zpp32s acc = 0;
  bool overflow = false;
  for (int n = 0; n < len; n += 2) {
    const Zpp64s product = Zpp64s{2} * src1[n] * src2[n];
    const Zpp64s sum = acc + Zpp64s{sat32(product)};
    acc = sat32(sum);
    overflow |= product > kMax32 || acc != sum;
  }
  *dp = acc;
  return overflow;
}
