// Element-wise arithmetic: entries. In-place forms run the same kernel with the destination as its last source.
#include "core/checks.h"
#include "core/kernels.h"

using namespace zpp;

ZppStatus zppsAbs_16s(const Zpp16s* src, Zpp16s* dst, int len) {
  if (anyNull(src, dst)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  ownAbs_16s(src, dst, len);
  return zppStsOk;
}

ZppStatus zppsAdd_16s(const Zpp16s* src1, const Zpp16s* src2, Zpp16s* dst, int len) {
  if (anyNull(src1, src2, dst)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  ownAdd_16s(src1, src2, dst, len);
  return zppStsOk;
}

ZppStatus zppsAdd_16s_I(const Zpp16s* src, Zpp16s* srcDst, int len) {
  if (anyNull(src, srcDst)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  ownAdd_16s(src, srcDst, srcDst, len);
  return zppStsOk;
}

ZppStatus zppsAdd_32f_I(const Zpp32f* src, Zpp32f* srcDst, int len) {
  if (anyNull(src, srcDst)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  ownAdd_32f(srcDst, src, srcDst, len);
  return zppStsOk;
}

ZppStatus zppsSub_16s(const Zpp16s* src1, const Zpp16s* src2, Zpp16s* dst, int len) {
  if (anyNull(src1, src2, dst)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  ownSub_16s(src1, src2, dst, len);
  return zppStsOk;
}

ZppStatus zppsSub_16s_I(const Zpp16s* src, Zpp16s* srcDst, int len) {
  if (anyNull(src, srcDst)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  ownSub_16s(src, srcDst, srcDst, len);
  return zppStsOk;
}

ZppStatus zppsSub_32f_I(const Zpp32f* src, Zpp32f* srcDst, int len) {
  if (anyNull(src, srcDst)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  ownSub_32f(src, srcDst, srcDst, len);
  return zppStsOk;
}

ZppStatus zppsSubCRev_16s_Sfs(const Zpp16s* src, Zpp16s value, Zpp16s* dst, int len, int scaleFactor) {
  if (anyNull(src, dst)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  ownSubCRev_16s_Sfs(src, value, dst, len, scaleFactor);
  return zppStsOk;
}

ZppStatus zppsMul_32f(const Zpp32f* src1, const Zpp32f* src2, Zpp32f* dst, int len) {
  if (anyNull(src1, src2, dst)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  ownMul_32f(src1, src2, dst, len);
  return zppStsOk;
}

ZppStatus zppsMulC_32f_I(Zpp32f* srcDst, Zpp32f value, int len) {
  if (anyNull(srcDst)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  ownMulC_32f(srcDst, value, srcDst, len);
  return zppStsOk;
}

ZppStatus zppsMul_16s32s_Sfs(const Zpp16s* src1, const Zpp16s* src2, Zpp32s* dst, int len, int scaleFactor) {
  if (anyNull(src1, src2, dst)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  ownMul_16s32s_Sfs(src1, src2, dst, len, scaleFactor);
  return zppStsOk;
}

ZppStatus zppsMul_NR_16s_Sfs(const Zpp16s* src1, const Zpp16s* src2, Zpp16s* dst, int len, int scaleFactor) {
  if (anyNull(src1, src2, dst)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  if (scaleFactor < 0) return zppStsBadScale;
  ownMul_NR_16s_Sfs(src1, src2, dst, len, scaleFactor);
  return zppStsOk;
}

ZppStatus zppsMul_NR_16s_ISfs(const Zpp16s* src, Zpp16s* srcDst, int len, int scaleFactor) {
  if (anyNull(src, srcDst)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  if (scaleFactor < 0) return zppStsBadScale;
  ownMul_NR_16s_Sfs(src, srcDst, srcDst, len, scaleFactor);
  return zppStsOk;
}

ZppStatus zppsMulC_NR_16s_Sfs(const Zpp16s* src, Zpp16s value, Zpp16s* dst, int len, int scaleFactor) {
  if (anyNull(src, dst)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  if (scaleFactor < 0) return zppStsBadScale;
  ownMulC_NR_16s_Sfs(src, value, dst, len, scaleFactor);
  return zppStsOk;
}

ZppStatus zppsMulC_NR_16s_ISfs(Zpp16s* srcDst, Zpp16s value, int len, int scaleFactor) {
  if (anyNull(srcDst)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  if (scaleFactor < 0) return zppStsBadScale;
  ownMulC_NR_16s_Sfs(srcDst, value, srcDst, len, scaleFactor);
  return zppStsOk;
}

ZppStatus zppsMulPowerC_NR_16s_Sfs(const Zpp16s* src, Zpp16s value, Zpp16s* dst, int len, int scaleFactor) {
  if (anyNull(src, dst)) return zppStsNullPointer;
  if (scaleFactor < 0) return zppStsBadScale;
  if (len < 1) return zppStsBadSize;
  ownMulPowerC_NR_16s_Sfs(src, value, dst, len, scaleFactor);
  return zppStsOk;
}

ZppStatus zppsLShiftC_16s(const Zpp16s* src, Zpp16s* dst, int len, int shift) {
  if (anyNull(src, dst)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  if (shift < 0) return zppStsShiftErr;
  ownLShiftC_16s(src, dst, len, shift);
  return zppStsOk;
}

ZppStatus zppsLShiftC_16s_I(Zpp16s* srcDst, int len, int shift) {
  if (anyNull(srcDst)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  if (shift < 0) return zppStsShiftErr;
  ownLShiftC_16s(srcDst, srcDst, len, shift);
  return zppStsOk;
}

// A left shift treats signed and unsigned elements alike.
ZppStatus zppsLShiftC_16u(const Zpp16u* src, Zpp16u* dst, int len, int shift) {
  return zppsLShiftC_16s(reinterpret_cast<const Zpp16s*>(src), reinterpret_cast<Zpp16s*>(dst), len, shift);
}

ZppStatus zppsLShiftC_16u_I(Zpp16u* srcDst, int len, int shift) {
  return zppsLShiftC_16s_I(reinterpret_cast<Zpp16s*>(srcDst), len, shift);
}

ZppStatus zppsLShiftC_32s_I(Zpp32s* srcDst, int len, int shift) {
  if (anyNull(srcDst)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  if (shift < 0) return zppStsShiftErr;
  ownLShiftC_32s(srcDst, srcDst, len, shift);
  return zppStsOk;
}

ZppStatus zppsRShiftC_16s(const Zpp16s* src, Zpp16s* dst, int len, int shift) {
  if (anyNull(src, dst)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  if (shift < 0) return zppStsShiftErr;
  ownRShiftC_16s(src, dst, len, shift);
  return zppStsOk;
}

ZppStatus zppsRShiftC_16s_I(Zpp16s* srcDst, int len, int shift) {
  if (anyNull(srcDst)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  if (shift < 0) return zppStsShiftErr;
  ownRShiftC_16s(srcDst, srcDst, len, shift);
  return zppStsOk;
}

ZppStatus zppsRShiftC_32s_I(Zpp32s* srcDst, int len, int shift) {
  if (anyNull(srcDst)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  if (shift < 0) return zppStsShiftErr;
  ownRShiftC_32s(srcDst, srcDst, len, shift);
  return zppStsOk;
}

ZppStatus zppsConvert_16s32s(const Zpp16s* src, Zpp32s* dst, int len) {
  if (anyNull(src, dst)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  ownConvert_16s32s(src, dst, len);
  return zppStsOk;
}

ZppStatus _zppsConvert_NR_32s16s_Sfs(const Zpp32s* src, Zpp16s* dst, int len, int scaleFactor) {
  if (anyNull(src, dst)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  if (scaleFactor < 0) return zppStsBadScale;
  ownConvert_NR_32s16s_Sfs(src, dst, len, scaleFactor);
  return zppStsOk;
}
