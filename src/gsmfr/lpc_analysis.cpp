// LPC analysis: autocorrelation, Schur recursion, log area ratios (3GPP TS 46.010 clauses 5.2.4 to 5.2.6).
#include <algorithm>

#include "core/checks.h"
#include "core/fixed_point.h"
#include "core/kernels.h"
#include "gsmfr/kernels.h"
#include "lpc/kernels.h"

using namespace zpp;

ZppStatus zppsAutoCorr_GSMFR_16s32s_I(Zpp16s* srcDst, Zpp32s* autoCorr, Zpp32s* scale) {
  if (anyNull(srcDst, autoCorr, scale)) return zppStsNullPointer;
  *scale = ownAutoCorr_GSMFR_16s32s_I(srcDst, autoCorr);
  return zppStsOk;
}

ZppStatus zppsSchur_GSMFR_32s16s(const Zpp32s* autoCorr, Zpp16s* refl) {
  if (anyNull(autoCorr, refl)) return zppStsNullPointer;
  ownSchur_GSMFR_32s16s(autoCorr, refl, kGsmFrOrder);
  return zppStsOk;
}

ZppStatus zppsReflToLAR_GSMFR_16s(const Zpp16s* refl, Zpp16s* lar) {
  if (anyNull(refl, lar)) return zppStsNullPointer;
  ownReflToLAR_GSMFR_16s(refl, lar);
  return zppStsOk;
}

int ownScaleDown_GSMFR_16s_I(Zpp16s* frame) {
  const Zpp16s most = ownMaxAbs_16s(frame, kGsmFrFrame);
  const int scale = most == 0 ? 0 : std::max(0, 4 - norm16(most));
  if (scale > 0) ownMulC_NR_16s_Sfs(frame, static_cast<Zpp16s>(16384 >> (scale - 1)), frame, kGsmFrFrame, 15);
  return scale;
}

// Samples of a frame that has been scaled down are at most 2048: 320 of their products stay below 2^31.
void ownAutoCorr_GSMFR_16s32s(const Zpp16s* frame, Zpp32s* autoCorr, int lags) {
  ownPartialCorr_16s32s(frame, frame, kGsmFrFrame, autoCorr, lags);
  for (int k = 0; k < lags; ++k) autoCorr[k] *= 2;
}

int ownAutoCorr_GSMFR_16s32s_I(Zpp16s* srcDst, Zpp32s* autoCorr) {
  const int scale = ownScaleDown_GSMFR_16s_I(srcDst);
  ownAutoCorr_GSMFR_16s32s(srcDst, autoCorr, kGsmFrOrder + 1);
  // Without saturation: 2048 becomes -32768 at scale 4.
  if (scale > 0) ownLShiftC_16s(srcDst, srcDst, kGsmFrFrame, scale);
  return scale;
}

void ownSchur_GSMFR_32s16s(const Zpp32s* autoCorr, Zpp16s* refl, int order) {
  std::fill_n(refl, order, Zpp16s{0});
  if (autoCorr[0] <= 0) return;
  const int shift = norm32(autoCorr[0]);
  Zpp16s p[kGsmFrOrder + 1], k[kGsmFrOrder + 1];
  for (int i = 0; i <= order; ++i) p[i] = k[i] = high16(shlWrap32(autoCorr[i], shift));
  for (int n = 0; n < order; ++n) {
    const Zpp16s magnitude = absSat16(p[1]);
    if (p[0] < magnitude) return;
    const Zpp16s quotient = magnitude == 0 ? Zpp16s{0} : divQ15(magnitude, p[0]);
    const auto r = static_cast<Zpp16s>(p[1] > 0 ? -quotient : quotient);
    refl[n] = r;
    p[0] = addSat16(p[0], mulRoundQ15(p[1], r));
    for (int m = 1; m < order - n; ++m) {
      const Zpp16s next = p[m + 1];
      p[m] = addSat16(next, mulRoundQ15(k[m], r));
      k[m] = addSat16(k[m], mulRoundQ15(next, r));
    }
  }
}

// A piecewise linear approximation of the logarithm
void ownReflToLAR_GSMFR_16s(const Zpp16s* refl, Zpp16s* lar) {
  for (int i = 0; i < kGsmFrOrder; ++i) {
    const int a = absSat16(refl[i]);
    const int ratio = a < 22118 ? a >> 1 : a < 31130 ? a - 11059 : (a - 26112) * 4;
    lar[i] = static_cast<Zpp16s>(refl[i] < 0 ? -ratio : ratio);
  }
}
