// Element-wise arithmetic and settings: portable kernels.
#include "core/fixed_point.h"
#include "core/kernels.h"

using namespace zpp;

void ownSet_16s_PX(Zpp16s value, Zpp16s* dst, int len) {
  for (int n = 0; n < len; ++n) dst[n] = value;
}

void ownSet_32s_PX(Zpp32s value, Zpp32s* dst, int len) {
  for (int n = 0; n < len; ++n) dst[n] = value;
}

void ownAbs_16s_PX(const Zpp16s* src, Zpp16s* dst, int len) {
  for (int n = 0; n < len; ++n) dst[n] = absSat16(src[n]);
}

void ownAdd_16s_PX(const Zpp16s* src1, const Zpp16s* src2, Zpp16s* dst, int len) {
  for (int n = 0; n < len; ++n) dst[n] = addSat16(src1[n], src2[n]);
}

void ownSub_16s_PX(const Zpp16s* src1, const Zpp16s* src2, Zpp16s* dst, int len) {
  for (int n = 0; n < len; ++n) dst[n] = subSat16(src2[n], src1[n]);
}

void ownSubCRev_16s_Sfs_PX(const Zpp16s* src, Zpp16s value, Zpp16s* dst, int len, int scaleFactor) {
  for (int n = 0; n < len; ++n) dst[n] = sat16(scaled(value - src[n], scaleFactor));
}

void ownMul_16s32s_Sfs_PX(const Zpp16s* src1, const Zpp16s* src2, Zpp32s* dst, int len, int scaleFactor) {
  for (int n = 0; n < len; ++n) dst[n] = sat32(scaled(Zpp32s{src1[n]} * src2[n], scaleFactor));
}

void ownMul_NR_16s_Sfs_PX(const Zpp16s* src1, const Zpp16s* src2, Zpp16s* dst, int len, int scaleFactor) {
  for (int n = 0; n < len; ++n) dst[n] = sat16(shrRoundHalfUp(Zpp32s{src1[n]} * src2[n], scaleFactor));
}

void ownMulC_NR_16s_Sfs_PX(const Zpp16s* src, Zpp16s value, Zpp16s* dst, int len, int scaleFactor) {
  for (int n = 0; n < len; ++n) dst[n] = sat16(shrRoundHalfUp(Zpp32s{src[n]} * value, scaleFactor));
}

void ownMulPowerC_NR_16s_Sfs_PX(const Zpp16s* src, Zpp16s value, Zpp16s* dst, int len, int scaleFactor) {
  const auto multiply = [=](auto narrow) {
    dst[0] = src[0];
    Zpp16s power = value;
    for (int n = 1; n < len; ++n) {
      dst[n] = sat16(narrow(Zpp32s{src[n]} * power));
      power = wrap16(narrow(Zpp32s{power} * value));
    }
  };
  // Products of 16-bit values leave room for half of a divisor up to 2^30; larger divisors leave nothing but 2^30 itself.
  if (scaleFactor == 0) return multiply([](Zpp32s product) { return product; });
  if (scaleFactor == 15) return multiply([](Zpp32s product) { return (product + (1 << 14)) >> 15; });
  if (scaleFactor > 30) return multiply([=](Zpp32s product) { return shrRoundHalfUp(product, scaleFactor); });
  multiply([=, half = 1 << (scaleFactor - 1)](Zpp32s product) { return (product + half) >> scaleFactor; });
}

void ownLShiftC_16s_PX(const Zpp16s* src, Zpp16s* dst, int len, int shift) {
  for (int n = 0; n < len; ++n) dst[n] = low16(shlWrap32(src[n], shift));
}

void ownLShiftCSat_16s_PX(const Zpp16s* src, Zpp16s* dst, int len, int shift) {
  for (int n = 0; n < len; ++n) dst[n] = sat16(src[n] * (1 << shift));
}

void ownLShiftC_32s_PX(const Zpp32s* src, Zpp32s* dst, int len, int shift) {
  for (int n = 0; n < len; ++n) dst[n] = shlWrap32(src[n], shift);
}

void ownRShiftC_16s_PX(const Zpp16s* src, Zpp16s* dst, int len, int shift) {
  for (int n = 0; n < len; ++n) dst[n] = shr16(src[n], shift);
}

void ownRShiftC_32s_PX(const Zpp32s* src, Zpp32s* dst, int len, int shift) {
  for (int n = 0; n < len; ++n) dst[n] = shr32(src[n], shift);
}

void ownConvert_16s32s_PX(const Zpp16s* src, Zpp32s* dst, int len) {
  for (int n = 0; n < len; ++n) dst[n] = src[n];
}

void ownConvert_NR_32s16s_Sfs_PX(const Zpp32s* src, Zpp16s* dst, int len, int scaleFactor) {
  for (int n = 0; n < len; ++n) dst[n] = sat16(shrRoundHalfUp(src[n], scaleFactor));
}

void ownAdd_32f_PX(const Zpp32f* src1, const Zpp32f* src2, Zpp32f* dst, int len) {
  for (int n = 0; n < len; ++n) dst[n] = src1[n] + src2[n];
}

void ownSub_32f_PX(const Zpp32f* src1, const Zpp32f* src2, Zpp32f* dst, int len) {
  for (int n = 0; n < len; ++n) dst[n] = src2[n] - src1[n];
}

void ownMul_32f_PX(const Zpp32f* src1, const Zpp32f* src2, Zpp32f* dst, int len) {
  for (int n = 0; n < len; ++n) dst[n] = src1[n] * src2[n];
}

void ownMulC_32f_PX(const Zpp32f* src, Zpp32f value, Zpp32f* dst, int len) {
  for (int n = 0; n < len; ++n) dst[n] = src[n] * value;
}

void ownMul_16s_NoS_Sfs(const Zpp16s* a, const Zpp16s* b, Zpp16s* dst, int len, int shift) {
  for (int n = 0; n < len; ++n) dst[n] = low16(shr32(Zpp32s{a[n]} * b[n], shift));
}
