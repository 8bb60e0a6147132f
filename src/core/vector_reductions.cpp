// Sums, products and extremes: entries.
#include "core/checks.h"
#include "core/fixed_point.h"
#include "core/kernels.h"

using namespace zpp;

ZppStatus zppsSum_16s32s_Sfs(const Zpp16s* src, int len, Zpp32s* sum, int scaleFactor) {
  if (anyNull(src, sum)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  *sum = sat32(scaled(ownSum_16s(src, len), scaleFactor));
  return zppStsOk;
}

ZppStatus zppsSum_16s_Sfs(const Zpp16s* src, int len, Zpp16s* sum, int scaleFactor) {
  if (anyNull(src, sum)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  *sum = sat16(scaled(ownSum_16s(src, len), scaleFactor));
  return zppStsOk;
}

ZppStatus zppsDotProd_16s32s_Sfs(const Zpp16s* src1, const Zpp16s* src2, int len, Zpp32s* dp, int scaleFactor) {
  if (anyNull(src1, src2, dp)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  *dp = sat32(scaled(ownDotProd_16s(src1, src2, len), scaleFactor));
  return zppStsOk;
}

ZppStatus _zppsSumSquare_NS_16s32s_Sfs(const Zpp16s* src, int len, Zpp32s* sum, int scaleFactor) {
  if (anyNull(src, sum)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  *sum = sat32(truncated(ownDotProd_16s(src, src, len), scaleFactor));
  return zppStsOk;
}

ZppStatus zppsMax_16s(const Zpp16s* src, int len, Zpp16s* value) {
  if (anyNull(src, value)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  *value = ownMax_16s(src, len);
  return zppStsOk;
}

ZppStatus zppsMin_16s(const Zpp16s* src, int len, Zpp16s* value) {
  if (anyNull(src, value)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  *value = ownMin_16s(src, len);
  return zppStsOk;
}

ZppStatus zppsMax_32f(const Zpp32f* src, int len, Zpp32f* value) {
  if (anyNull(src, value)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  *value = src[ownMaxIndx_32f(src, len)];
  return zppStsOk;
}

ZppStatus zppsMin_32f(const Zpp32f* src, int len, Zpp32f* value) {
  if (anyNull(src, value)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  *value = src[ownMinIndx_32f(src, len)];
  return zppStsOk;
}

ZppStatus zppsMaxIndx_32f(const Zpp32f* src, int len, Zpp32f* value, int* index) {
  if (anyNull(src, value)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  const int found = ownMaxIndx_32f(src, len);
  *value = src[found];
  if (index != nullptr) *index = found;
  return zppStsOk;
}

ZppStatus zppsMinIndx_32f(const Zpp32f* src, int len, Zpp32f* value, int* index) {
  if (anyNull(src, value)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  const int found = ownMinIndx_32f(src, len);
  *value = src[found];
  if (index != nullptr) *index = found;
  return zppStsOk;
}

ZppStatus zppsMinIndx_16s(const Zpp16s* src, int len, Zpp16s* value, int* index) {
  if (anyNull(src, value)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  const int found = ownMinIndx_16s(src, len);
  *value = src[found];
  if (index != nullptr) *index = found;
  return zppStsOk;
}
