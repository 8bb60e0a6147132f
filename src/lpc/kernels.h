// The kernels of this room: correlations, LP filters and convolutions that several codecs share. Arguments are trusted.
#pragma once

#include "core/variants.h"

// The largest correlation of a lag search
struct LagMax {
  Zpp32s value;
  int lag;
  bool operator==(const LagMax&) const = default;
};

inline constexpr int kLpcOrder = 10;

// ownPartialCorr_16s32s: dst[k] = sum of src1[n] * src2[n + k], n = 0..len-1-k, modulo 2^32, k = 0..lags-1; 0 for k of len or
//   more. The autocorrelation of a frame (src1 = src2), the backward-filtered target (src1 = signal, src2 = target).
// ownCorr_16s32s: dst[k] = sum of src1[n] * src2[n + k], n = 0..len-1, modulo 2^32, k = 0..lags-1.
//   Delays -maxLag..-minLag: start src2 at -maxLag.
// ownCrossCorr_16s32s_Sfs: dst[n] = the exact sum of target[k] * signal[k - n], k = n..len-1, scaled by the Sfs rule.
// ownCrossCorr_NormM_16s: the same doubled and normalised to 13 bits (ITU-T G.729 Annex A, Cor_h_X).
// ownCrossCorrLagMax_16s: exact sums saturated to 32 bits, src2 advanced by 0..maxLag; the largest lag wins a tie; {0, maxLag}
//   when none is positive.
// ownCrossCorrLagMax_Inv_16s: exact sums doubled and saturated, signal delayed by minLag..maxLag, not an empty range; the
//   smallest lag wins a tie.
// ownAutoCorrLagMax_Fwd_16s, _Inv_16s: sums modulo 2^32 of src and itself advanced or delayed; the smallest lag wins a tie;
//   {-2147483648, 0} for an empty range.
// ownDotProd_G729A_16s32s: *dp = the doubled products of the even indices, added with saturation after each; true when a step
//   saturated.
// ownSynthesisFilter_NR_16s: 1/A(z) of order 10, coef[0] the factor of the input, scaleFactor 12 or 13. hist: ten past outputs,
//   oldest first, read before dst is written, or null for zeros; src may be dst. True when a sample was clamped.
// ownSynthesisFilter_G729E_16s: the same of any order at scale factor 12; hist holds `order` outputs outside dst.
// ownResidualFilter_G729_16s: A(z) of order 10, coef Q12, over src[-10..len-1].
// ownResidualFilter_G729E_16s: the same of an order of 1 or more over src[-order..len-1].
// ownHarmonicFilter_16s: srcDst[n] += gain * srcDst[n - lag], gain Q15, ascending, lag 1 or more.
// ownConvPartial_16s_Sfs: dst[n] = sat16(the exact sum of src1[k] * src2[n - k], k = 0..n, >> scaleFactor), truncating,
//   scaleFactor 0 or more; ownConvPartial_16s32s: the sums modulo 2^32.
// ownLPCToLSP_16s: a Q12, lsp Q15: the roots between the points of a grid of the given number of intervals, 3 to 63, each
// interval
//   halved as told, prevLsp when there are fewer than ten; precision 10 or 11: LspPolynomials in chebyshev.h.
#define ZPP_LPC_KERNELS(KERNEL)                                                                                                \
  KERNEL(ownPartialCorr_16s32s, W7, void(const Zpp16s* src1, const Zpp16s* src2, int len, Zpp32s* dst, int lags))              \
  KERNEL(ownCorr_16s32s, W7_V3, void(const Zpp16s* src1, const Zpp16s* src2, int len, Zpp32s* dst, int lags))                  \
  KERNEL(ownCrossCorr_16s32s_Sfs, W7, void(const Zpp16s* target, const Zpp16s* signal, int len, Zpp32s* dst, int scaleFactor)) \
  KERNEL(ownCrossCorr_NormM_16s, W7, void(const Zpp16s* target, const Zpp16s* signal, int len, Zpp16s* dst))                   \
  KERNEL(ownCrossCorrLagMax_16s, W7, LagMax(const Zpp16s* src1, const Zpp16s* src2, int len, int maxLag))                      \
  KERNEL(ownCrossCorrLagMax_Inv_16s, W7, LagMax(const Zpp16s* target, const Zpp16s* signal, int len, int minLag, int maxLag))  \
  KERNEL(ownAutoCorrLagMax_Fwd_16s, W7, LagMax(const Zpp16s* src, int len, int minLag, int maxLag))                            \
  KERNEL(ownAutoCorrLagMax_Inv_16s, W7, LagMax(const Zpp16s* src, int len, int minLag, int maxLag))                            \
  KERNEL(ownDotProd_G729A_16s32s, W7, bool(const Zpp16s* src1, const Zpp16s* src2, int len, Zpp32s* dp))                       \
  KERNEL(ownSynthesisFilter_NR_16s, W7,                                                                                        \
         bool(const Zpp16s* coef, const Zpp16s* src, Zpp16s* dst, int len, int scaleFactor, const Zpp16s* hist))               \
  KERNEL(ownSynthesisFilter_G729E_16s, W7,                                                                                     \
         bool(const Zpp16s* coef, int order, const Zpp16s* src, Zpp16s* dst, int len, const Zpp16s* hist))                     \
  KERNEL(ownResidualFilter_G729_16s, W7, void(const Zpp16s* coef, const Zpp16s* src, Zpp16s* dst, int len))                    \
  KERNEL(ownResidualFilter_G729E_16s, W7, void(const Zpp16s* coef, int order, const Zpp16s* src, Zpp16s* dst, int len))        \
  KERNEL(ownHarmonicFilter_16s, W7, void(Zpp16s gain, int lag, Zpp16s* srcDst, int len))                                       \
  KERNEL(ownConvPartial_16s_Sfs, W7, void(const Zpp16s* src1, const Zpp16s* src2, Zpp16s* dst, int len, int scaleFactor))      \
  KERNEL(ownConvPartial_16s32s, W7, void(const Zpp16s* src1, const Zpp16s* src2, Zpp32s* dst, int len))                        \
  KERNEL(ownLPCToLSP_16s, W7,                                                                                                  \
         void(const Zpp16s* a, const Zpp16s* prevLsp, const Zpp16s* grid, int intervals, int halvings, int precision,          \
              Zpp16s* lsp))

ZPP_LPC_KERNELS(ZPP_DECLARE_KERNEL)

// dst[j] = sat32(r << shift), r the sum of lag firstLag + j modulo 2^32
void ownAutoCorr_G729_16s32s_Sfs(const Zpp16s* src, int len, int firstLag, Zpp32s* dst, int lenDst, int shift);
// The normalised form of ITU-T G.729 clause 3.2.1; false, and nothing written, when the frame's energy is too large
bool ownAutoCorr_NormE_16s32s(const Zpp16s* src, int len, Zpp32s* dst, int lenDst, Zpp32s* norm);
// dst[0] = lag 0, dst[j] = lag firstLag + (j - 1) * step, normalised by lag 0 and rounded
void ownAutoCorr_NormE_NR_16s(const Zpp16s* src, int len, int firstLag, int step, Zpp16s* dst, int lenDst, Zpp32s* norm);
// dst[k] = sum of src[n] * src[n - k], n = 0..len-1, modulo 2^32
void ownAutoCorr_Inv_16s32s(const Zpp16s* src, int len, Zpp32s* dst, int lenDst);
// dst[k] = the exact sum of src1[n] * src2[n + k], n = 0..len-1, doubled, saturated and rounded to its upper half
void ownCrossCorr_NR_16s(const Zpp16s* src1, const Zpp16s* src2, int len, Zpp16s* dst, int lags);
// dst = the impulse response of coef[0]/A(z), coef[0] in front
void ownSynthesisFilterZeroStateResponse_NR_16s(const Zpp16s* coef, Zpp16s* dst, int len, int scaleFactor);
// lsp: 10, Q15; a: 11, Q12, kept to 16 bits
void ownLSPToLPC_G729_16s(const Zpp16s* lsp, Zpp16s* a);

// --- Adaptive-codebook gain ------------------------------------------------------------------------------------------

// Gain of the filtered adaptive vector against the target, both of 40 samples: Q14, 0..1.2 (ITU-T G.729 clause 3.7.3, 3GPP
// TS 26.090 clause 5.6). coeffs, unless null: mantissa and 15 - exponent of the energy, then of the correlation. The
// correlation is start + 2C: G.729 starts it at 0, GSM-AMR at 1.
Zpp16s ownAdaptiveCodebookGain_16s(const Zpp16s* target, const Zpp16s* filtered, Zpp16s* coeffs, int start);
