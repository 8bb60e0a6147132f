// The kernels of this room and their processor variants (see variants.h).
#pragma once

#include "core/variants.h"

// Element-wise kernels accept a destination that is one of their sources. Shift counts and scale factors have been checked.
// ownLShiftC_16s drops the upper bits, ownLShiftCSat_16s (shift 0..15) saturates.
//
// ownHighPassInputs: dst[n] is the sum of b[k] * src[n - k], k = 0..3, modulo 2^32. src[-3..len-1].
#define ZPP_CORE_KERNELS(KERNEL)                                                                                     \
  KERNEL(ownSet_16s, W7, void(Zpp16s value, Zpp16s * dst, int len))                                                  \
  KERNEL(ownSet_32s, W7, void(Zpp32s value, Zpp32s * dst, int len))                                                  \
  KERNEL(ownAbs_16s, W7, void(const Zpp16s* src, Zpp16s* dst, int len))                                              \
  KERNEL(ownAdd_16s, W7, void(const Zpp16s* src1, const Zpp16s* src2, Zpp16s* dst, int len))                         \
  KERNEL(ownSub_16s, W7, void(const Zpp16s* src1, const Zpp16s* src2, Zpp16s* dst, int len))                         \
  KERNEL(ownSubCRev_16s_Sfs, W7, void(const Zpp16s* src, Zpp16s value, Zpp16s* dst, int len, int scaleFactor))       \
  KERNEL(ownMul_16s32s_Sfs, W7, void(const Zpp16s* src1, const Zpp16s* src2, Zpp32s* dst, int len, int scaleFactor)) \
  KERNEL(ownMul_NR_16s_Sfs, W7, void(const Zpp16s* src1, const Zpp16s* src2, Zpp16s* dst, int len, int scaleFactor)) \
  KERNEL(ownMulC_NR_16s_Sfs, W7, void(const Zpp16s* src, Zpp16s value, Zpp16s* dst, int len, int scaleFactor))       \
  KERNEL(ownMulPowerC_NR_16s_Sfs, W7, void(const Zpp16s* src, Zpp16s value, Zpp16s* dst, int len, int scaleFactor))  \
  KERNEL(ownLShiftC_16s, W7, void(const Zpp16s* src, Zpp16s* dst, int len, int shift))                               \
  KERNEL(ownLShiftCSat_16s, W7, void(const Zpp16s* src, Zpp16s* dst, int len, int shift))                            \
  KERNEL(ownLShiftC_32s, W7, void(const Zpp32s* src, Zpp32s* dst, int len, int shift))                               \
  KERNEL(ownRShiftC_16s, W7, void(const Zpp16s* src, Zpp16s* dst, int len, int shift))                               \
  KERNEL(ownRShiftC_32s, W7, void(const Zpp32s* src, Zpp32s* dst, int len, int shift))                               \
  KERNEL(ownConvert_16s32s, W7, void(const Zpp16s* src, Zpp32s* dst, int len))                                       \
  KERNEL(ownConvert_NR_32s16s_Sfs, W7, void(const Zpp32s* src, Zpp16s* dst, int len, int scaleFactor))               \
  KERNEL(ownAdd_32f, A6, void(const Zpp32f* src1, const Zpp32f* src2, Zpp32f* dst, int len))                         \
  KERNEL(ownSub_32f, A6, void(const Zpp32f* src1, const Zpp32f* src2, Zpp32f* dst, int len))                         \
  KERNEL(ownMul_32f, A6, void(const Zpp32f* src1, const Zpp32f* src2, Zpp32f* dst, int len))                         \
  KERNEL(ownMulC_32f, A6, void(const Zpp32f* src, Zpp32f value, Zpp32f* dst, int len))                               \
  KERNEL(ownSum_16s, W7, Zpp64s(const Zpp16s* src, int len))                                                         \
  KERNEL(ownDotProd_16s, W7, Zpp64s(const Zpp16s* src1, const Zpp16s* src2, int len))                                \
  KERNEL(ownMax_16s, W7, Zpp16s(const Zpp16s* src, int len))                                                         \
  KERNEL(ownMin_16s, W7, Zpp16s(const Zpp16s* src, int len))                                                         \
  KERNEL(ownMinIndx_16s, W7, int(const Zpp16s* src, int len))                                                        \
  KERNEL(ownMaxAbs_16s, W7, Zpp16s(const Zpp16s* src, int len))                                                      \
  KERNEL(ownMaxIndx_32f, A6, int(const Zpp32f* src, int len))                                                        \
  KERNEL(ownMinIndx_32f, A6, int(const Zpp32f* src, int len))                                                        \
  KERNEL(ownHighPassInputs_16s32s, W7, void(const Zpp16s* b, const Zpp16s* src, Zpp32s* dst, int len))               \
  KERNEL(ownLinToMuLaw_16s8u, W7_V3, void(const Zpp16s* src, Zpp8u* dst, int len))                                   \
  KERNEL(ownLinToALaw_16s8u, W7_V3, void(const Zpp16s* src, Zpp8u* dst, int len))

ZPP_CORE_KERNELS(ZPP_DECLARE_KERNEL)

int ownAutoScale_16s(const Zpp16s* src, Zpp16s* dst, int len);  // returns the shift applied
void ownInvSqrt_32s(const Zpp32s* src, Zpp32s* dst, int len);
void ownHighPassFilter_G729_16s(Zpp16s* srcDst, int len, int scaleFactor, void* state);

// Normalises each element in place and stores its shift: bit 30 then differs from the sign bit. 0 keeps shift 0; -1 becomes
// -2147483648 with shift 31.
void ownNorm_32s_I(Zpp32s* srcDst, Zpp16s* shift, int len);
// Base-2 logarithm (ITU-T G.729 Log2): value = 2^(exponent + fraction), fraction Q15; 0 and 0 for a value of 0 or less.
void ownLog2(Zpp32s value, Zpp16s* exponent, Zpp16s* fraction);
// 2^(exponent + fraction), fraction Q15 (ITU-T G.729 Pow2), saturated above exponent 30.
Zpp32s ownPow2(Zpp16s exponent, Zpp16s fraction);
// 1 / sqrt(x), Q0 in, Q30 out (ITU-T G.729 Inv_sqrt)
Zpp32s ownInvSqrt(Zpp32s x);
// dst[n] = (a[n] * b[n]) >> shift without rounding or saturation: the caller guarantees the range.
void ownMul_16s_NoS_Sfs(const Zpp16s* a, const Zpp16s* b, Zpp16s* dst, int len, int shift);
