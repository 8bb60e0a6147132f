// Block normalisation, logarithm, power of two and inverse square root of the ITU-T G.729 reference arithmetic.
#include "core/checks.h"
#include "core/fixed_point.h"
#include "core/kernels.h"
#include "core/tables.h"

using namespace zpp;

namespace {

// table[i] * 2^16 minus the 15-bit fraction's share of the step to the next entry, doubled: the interpolation of all three
// tables
constexpr Zpp32s interpolate(const Zpp16s* table, const Zpp16s* difference, int i, Zpp32s fraction) {
  return table[i] * 65536 - 2 * fraction * difference[i];
}

}  // namespace

ZppStatus zppsAutoScale_16s(const Zpp16s* src, Zpp16s* dst, int len, int* scale) {
  if (anyNull(src, dst, scale)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  if (*scale < 0) return zppStsBadScale;
  *scale = ownAutoScale_16s(src, dst, len);
  return zppStsOk;
}

ZppStatus zppsAutoScale_16s_I(Zpp16s* srcDst, int len, int* scale) {
  if (anyNull(srcDst, scale)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  if (*scale < 0) return zppStsBadScale;
  *scale = ownAutoScale_16s(srcDst, srcDst, len);
  return zppStsOk;
}

ZppStatus zppsInvSqrt_32s_I(Zpp32s* srcDst, int len) {
  if (anyNull(srcDst)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  ownInvSqrt_32s(srcDst, srcDst, len);
  return zppStsOk;
}

int ownAutoScale_16s(const Zpp16s* src, Zpp16s* dst, int len) {
  const int shift = norm16(ownMaxAbs_16s(src, len));
  ownLShiftC_16s(src, dst, len, shift);
  return shift;
}

void ownInvSqrt_32s(const Zpp32s* src, Zpp32s* dst, int len) {
  for (int n = 0; n < len; ++n) dst[n] = ownInvSqrt(src[n]);
}

Zpp32s ownInvSqrt(Zpp32s x) {
  if (x <= 0) return 0x3fffffff;
  const int shift = norm32(x), exponent = 32 - shift;
  const Zpp32s mantissa = (x << shift) >> (exponent % 2 == 0 ? 1 : 0);
  const int i = (mantissa >> 25) - 16;
  return interpolate(tabsqr, tabsqr_diff, i, (mantissa >> 10) & 0x7fff) >> (exponent / 2);
}

void ownNorm_32s_I(Zpp32s* srcDst, Zpp16s* shift, int len) {
  for (int n = 0; n < len; ++n) {
    const int count = norm32(srcDst[n]);
    srcDst[n] = shlWrap32(srcDst[n], count);
    shift[n] = static_cast<Zpp16s>(count);
  }
}

void ownLog2(Zpp32s value, Zpp16s* exponent, Zpp16s* fraction) {
  if (value <= 0) {
    *exponent = *fraction = 0;
    return;
  }
  const int shift = norm32(value);
  const Zpp32s mantissa = value << shift;
  *exponent = static_cast<Zpp16s>(30 - shift);
  *fraction = high16(interpolate(tablog, tablog_diff, (mantissa >> 25) - 32, (mantissa >> 10) & 0x7fff));
}

Zpp32s ownPow2(Zpp16s exponent, Zpp16s fraction) {
  const Zpp32s mantissa = interpolate(tabpow, tabpow_diff, (fraction >> 10) & 31, (fraction << 5) & 0x7fff);
  return shrRound32(mantissa, 30 - exponent);
}
