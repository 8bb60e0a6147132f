/* zppsc: vector primitives. Include zppsc.h. */
#ifndef ZPPSC_CORE_H
#define ZPPSC_CORE_H

#include "zppsc/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Vector primitives ------------------------------------------------------------------------------------------------------
 *
 * Element-wise operations and reductions on len elements, len of 1 or more; n runs from 0 to len - 1.
 * Where a comment lists no status, the function returns zppStsOk, zppStsNullPointer for a null pointer, or zppStsBadSize for
 * len below 1. Integer results saturate. Nothing is read or written outside the len elements.
 */

/* ---- Setting and copying ---------------------------------------------------------------------------------------------- */

/* dst[n] = 0 */
ZPPAPI ZppStatus zppsZero_16s(Zpp16s* dst, int len);
ZPPAPI ZppStatus zppsZero_32f(Zpp32f* dst, int len);
ZPPAPI ZppStatus zppsZero_16sc(Zpp16sc* dst, int len);

/* dst[n] = value */
ZPPAPI ZppStatus zppsSet_16s(Zpp16s value, Zpp16s* dst, int len);
ZPPAPI ZppStatus zppsSet_32s(Zpp32s value, Zpp32s* dst, int len);

/* dst[n] = src[n] */
ZPPAPI ZppStatus zppsCopy_16s(const Zpp16s* src, Zpp16s* dst, int len);
ZPPAPI ZppStatus zppsCopy_32f(const Zpp32f* src, Zpp32f* dst, int len);

/* dst[n] = src[n]; the buffers may overlap in any way: the result is as if src were copied first. */
ZPPAPI ZppStatus zppsMove_16s(const Zpp16s* src, Zpp16s* dst, int len);
ZPPAPI ZppStatus zppsMove_32f(const Zpp32f* src, Zpp32f* dst, int len);

/* ---- Arithmetic ------------------------------------------------------------------------------------------------------- */

/* dst[n] = |src[n]|, 32767 for -32768 */
ZPPAPI ZppStatus zppsAbs_16s(const Zpp16s* src, Zpp16s* dst, int len);

/* dst[n] = sat16(src1[n] + src2[n]); _I: srcDst[n] += src[n], saturated */
ZPPAPI ZppStatus zppsAdd_16s(const Zpp16s* src1, const Zpp16s* src2, Zpp16s* dst, int len);
ZPPAPI ZppStatus zppsAdd_16s_I(const Zpp16s* src, Zpp16s* srcDst, int len);
ZPPAPI ZppStatus zppsAdd_32f_I(const Zpp32f* src, Zpp32f* srcDst, int len);

/* dst[n] = sat16(src2[n] - src1[n]): the first source is the subtrahend; _I: srcDst[n] -= src[n], saturated */
ZPPAPI ZppStatus zppsSub_16s(const Zpp16s* src1, const Zpp16s* src2, Zpp16s* dst, int len);
ZPPAPI ZppStatus zppsSub_16s_I(const Zpp16s* src, Zpp16s* srcDst, int len);
ZPPAPI ZppStatus zppsSub_32f_I(const Zpp32f* src, Zpp32f* srcDst, int len);

/* dst[n] = sat16((value - src[n]) * 2^-scaleFactor), Sfs rule, any scale factor */
ZPPAPI ZppStatus zppsSubCRev_16s_Sfs(const Zpp16s* src, Zpp16s value, Zpp16s* dst, int len, int scaleFactor);

/* dst[n] = src1[n] * src2[n] */
ZPPAPI ZppStatus zppsMul_32f(const Zpp32f* src1, const Zpp32f* src2, Zpp32f* dst, int len);

/* srcDst[n] *= value */
ZPPAPI ZppStatus zppsMulC_32f_I(Zpp32f* srcDst, Zpp32f value, int len);

/* dst[n] = sat32(src1[n] * src2[n] * 2^-scaleFactor), Sfs rule, any scale factor */
ZPPAPI ZppStatus zppsMul_16s32s_Sfs(const Zpp16s* src1, const Zpp16s* src2, Zpp32s* dst, int len, int scaleFactor);

/* dst[n] = sat16((src1[n] * src2[n] + half) >> scaleFactor), half = 2^(scaleFactor-1), 0 for scale factor 0.
 * scaleFactor: 0 or more; from 32 on every result is 0. Status also: zppStsBadScale for a negative scale factor. */
ZPPAPI ZppStatus zppsMul_NR_16s_Sfs(const Zpp16s* src1, const Zpp16s* src2, Zpp16s* dst, int len, int scaleFactor);
ZPPAPI ZppStatus zppsMul_NR_16s_ISfs(const Zpp16s* src, Zpp16s* srcDst, int len, int scaleFactor);

/* dst[n] = sat16((src[n] * value + half) >> scaleFactor), as above. Status also: zppStsBadScale. */
ZPPAPI ZppStatus zppsMulC_NR_16s_Sfs(const Zpp16s* src, Zpp16s value, Zpp16s* dst, int len, int scaleFactor);
ZPPAPI ZppStatus zppsMulC_NR_16s_ISfs(Zpp16s* srcDst, Zpp16s value, int len, int scaleFactor);

/* Weighting by powers of a constant: dst[0] = src[0]; dst[n] = sat16((src[n] * p[n] + half) >> scaleFactor) with p[1] = value
 * and p[n+1] = (p[n] * value + half) >> scaleFactor cut to 16 bits. With scale factor 15 this is the bandwidth expansion of LP
 * coefficients, a[n] * gamma^n (ITU-T G.729 clause 3.3).
 * Checks pointers, then the scale factor (0 or more, else zppStsBadScale), then the length. */
ZPPAPI ZppStatus zppsMulPowerC_NR_16s_Sfs(const Zpp16s* src, Zpp16s value, Zpp16s* dst, int len, int scaleFactor);

/* ---- Shifts and conversions ------------------------------------------------------------------------------------------- */

/* dst[n] = src[n] << shift; bits shifted out are lost, a shift beyond the width gives zeros.
 * Status also: zppStsShiftErr for a shift below 0. */
ZPPAPI ZppStatus zppsLShiftC_16s(const Zpp16s* src, Zpp16s* dst, int len, int shift);
ZPPAPI ZppStatus zppsLShiftC_16s_I(Zpp16s* srcDst, int len, int shift);
ZPPAPI ZppStatus zppsLShiftC_16u(const Zpp16u* src, Zpp16u* dst, int len, int shift);
ZPPAPI ZppStatus zppsLShiftC_16u_I(Zpp16u* srcDst, int len, int shift);
ZPPAPI ZppStatus zppsLShiftC_32s_I(Zpp32s* srcDst, int len, int shift);

/* dst[n] = src[n] >> shift, arithmetic; a shift beyond the width gives -1 for negative elements and 0 for others.
 * Status also: zppStsShiftErr for a shift below 0. */
ZPPAPI ZppStatus zppsRShiftC_16s(const Zpp16s* src, Zpp16s* dst, int len, int shift);
ZPPAPI ZppStatus zppsRShiftC_16s_I(Zpp16s* srcDst, int len, int shift);
ZPPAPI ZppStatus zppsRShiftC_32s_I(Zpp32s* srcDst, int len, int shift);

/* dst[n] = src[n], widened */
ZPPAPI ZppStatus zppsConvert_16s32s(const Zpp16s* src, Zpp32s* dst, int len);

/* dst[n] = sat16((src[n] + half) >> scaleFactor), half = 2^(scaleFactor-1), 0 for scale factor 0; at 0 it only clamps.
 * src: 32-bit values. Status also: zppStsBadScale for a negative scale factor. */
ZPPAPI ZppStatus _zppsConvert_NR_32s16s_Sfs(const Zpp32s* src, Zpp16s* dst, int len, int scaleFactor);

/* ---- Sums and extremes ------------------------------------------------------------------------------------------------ */

/* *sum = the sum of src, Sfs rule, saturated to 32 or 16 bits */
ZPPAPI ZppStatus zppsSum_16s32s_Sfs(const Zpp16s* src, int len, Zpp32s* sum, int scaleFactor);
ZPPAPI ZppStatus zppsSum_16s_Sfs(const Zpp16s* src, int len, Zpp16s* sum, int scaleFactor);

/* *sum = sat32((exact sum of src[n]^2) >> scaleFactor), truncating; a negative scale factor shifts left, +-31 at most */
ZPPAPI ZppStatus _zppsSumSquare_NS_16s32s_Sfs(const Zpp16s* src, int len, Zpp32s* sum, int scaleFactor);

/* *dp = sat32(exact sum of src1[n] * src2[n], times 2^-scaleFactor), Sfs rule */
ZPPAPI ZppStatus zppsDotProd_16s32s_Sfs(const Zpp16s* src1, const Zpp16s* src2, int len, Zpp32s* dp, int scaleFactor);

/* *value = the largest or smallest element. With NaN among the elements the result is one of the elements. */
ZPPAPI ZppStatus zppsMax_16s(const Zpp16s* src, int len, Zpp16s* value);
ZPPAPI ZppStatus zppsMin_16s(const Zpp16s* src, int len, Zpp16s* value);
ZPPAPI ZppStatus zppsMax_32f(const Zpp32f* src, int len, Zpp32f* value);
ZPPAPI ZppStatus zppsMin_32f(const Zpp32f* src, int len, Zpp32f* value);

/* *value = the extreme element, *index = its first occurrence. index may be null: the value alone is written then. */
ZPPAPI ZppStatus zppsMaxIndx_32f(const Zpp32f* src, int len, Zpp32f* value, int* index);
ZPPAPI ZppStatus zppsMinIndx_32f(const Zpp32f* src, int len, Zpp32f* value, int* index);
ZPPAPI ZppStatus zppsMinIndx_16s(const Zpp16s* src, int len, Zpp16s* value, int* index);

/* ---- Normalisation and roots ------------------------------------------------------------------------------------------ */

/* Block normalisation: shifts all elements left by the count that brings the largest magnitude (-32768 counting as 32767) into
 * 16384..32767, and reports that count. An all-zero vector keeps its zeros with count 0.
 * scale: in, 0 or more (only checked), else zppStsBadScale; out, the count. */
ZPPAPI ZppStatus zppsAutoScale_16s(const Zpp16s* src, Zpp16s* dst, int len, int* scale);
ZPPAPI ZppStatus zppsAutoScale_16s_I(Zpp16s* srcDst, int len, int* scale);

/* srcDst[n] = 1 / sqrt(srcDst[n]): Q0 in, Q30 out, 0x3fffffff for 0 and negative elements.
 * Source: Inv_sqrt of the ITU-T G.729 fixed-point reference (basic and double-precision operators). */
ZPPAPI ZppStatus zppsInvSqrt_32s_I(Zpp32s* srcDst, int len);

#ifdef __cplusplus
}
#endif

#endif
