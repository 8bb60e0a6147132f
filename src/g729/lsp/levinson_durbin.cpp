// Lag window and Levinson-Durbin recursion (ITU-T G.729 clauses 3.2.1 and 3.2.2), in the double-precision format of the
// standard.
#include "core/checks.h"
#include "core/fixed_point.h"
#include "g729/lsp/kernels.h"
#include "g729/lsp/tables.h"

using namespace zpp;

namespace {

constexpr int kMaxOrder = 30;
constexpr Zpp32s kSmallest = 65536;  // magnitudes below leave the upper word empty
constexpr Zpp16s kMaxReflection = 32750;

// -num / den in Q31; den normalised
Zpp32s negatedRatio(Zpp32s num, Zpp32s den) {
  const Zpp32s ratio = divDpf(absSat32(num), toDpf(den));
  return num > 0 ? negSat32(ratio) : ratio;
}

// The energy of the prediction error: alpha, normalised after every stage, and the sum of its shifts
struct PredictionError {
  Zpp32s alpha;
  int exponent;

  bool degenerate() const { return absSat32(alpha) < kSmallest; }
  void reduceBy(Dpf reflection) {  // times 1 - reflection^2
    alpha = mulDpf(toDpf(alpha), toDpf(kMax32 - absSat32(mulDpf(reflection, reflection))));
    const int shift = norm32(alpha);
    alpha = shlSat32(alpha, shift);
    exponent += shift;
  }
};

}  // namespace

ZppStatus ownLevinsonDurbin_G729(const Zpp32s* autoCorr, int order, Zpp16s* a, Zpp16s* refl, Zpp16s* energy) {
  PredictionError error = {autoCorr[0], 0};
  if (error.degenerate()) return zppStsOverflowWarn;
  Dpf r[kMaxOrder + 1];
  for (int i = 0; i <= order; ++i) r[i] = toDpf(autoCorr[i]);

  Dpf coef[kMaxOrder + 1];  // Q27; coef[0] is 1
  Zpp16s reflection[kMaxOrder];
  for (int i = 1; i <= order; ++i) {
    if (error.degenerate()) return zppStsOverflowWarn;
    const Zpp32s sum = addSat32(shlSat32(ownLevinsonSum_G729(r, coef, i), 4), fromDpf(r[i]));
    const Zpp32s k = shlSat32(negatedRatio(sum, error.alpha), error.exponent);
    reflection[i - 1] = high16(k);
    // The standard does not test the first stage.
    if (i > 1 && absSat16(reflection[i - 1]) > kMaxReflection) return zppStsOverflowWarn;

    ownLevinsonUpdate_G729(coef, i, toDpf(k));
    coef[i] = toDpf(k >> 4);
    error.reduceBy(toDpf(k));
  }

  a[0] = 4096;
  for (int i = 1; i <= order; ++i) a[i] = roundHigh16(shlSat32(fromDpf(coef[i]), 1));
  for (int i = 0; i < order; ++i) refl[i] = reflection[i];
  *energy = shr16(high16(error.alpha), error.exponent);
  return zppStsOk;
}

ZppStatus ownLevinsonDurbin_G729B(const Zpp32s* autoCorr, Zpp16s* a, Zpp16s* refl, Zpp16s* energy) {
  Zpp16s all[10] = {};
  const ZppStatus status = ownLevinsonDurbin_G729(autoCorr, 10, a, all, energy);
  refl[0] = all[0];
  refl[1] = all[1];
  return status;
}

void ownLagWindow_G729_32s_I(Zpp32s* autoCorr, int len) {
  for (int i = 0; i < len; ++i) autoCorr[i] = mulDpf(toDpf(autoCorr[i]), toDpf(wlag[i]));
}

// The standard raises all lags by one, so that silence has a filter too.
void ownLagWindow_G729E_32s_I(Zpp32s* autoCorr) {
  constexpr int order = 30;
  for (int i = 1; i <= order; ++i) autoCorr[i] = mulDpf(toDpf(autoCorr[i]), toDpf(wlagBackward[i - 1]));
  const int norm = norm32(addSat32(autoCorr[0], 1));
  const Zpp32s highest = kMax32 >> norm, lowest = kMin32 >> norm;  // that do not saturate
  for (int i = 0; i <= order; ++i) {
    const Zpp32s raised = addSat32(autoCorr[i], 1);
    autoCorr[i] = raised > highest ? kMax32 : raised < lowest ? kMin32 : shlWrap32(raised, norm);
  }
}

ZppStatus zppsLagWindow_G729E_32s_I(Zpp32s* srcDst) {
  if (anyNull(srcDst)) return zppStsNullPointer;
  ownLagWindow_G729E_32s_I(srcDst);
  return zppStsOk;
}

ZppStatus zppsLevinsonDurbin_G729_32s16s(const Zpp32s* autoCorr, int order, Zpp16s* a, Zpp16s* refl, Zpp16s* energy) {
  if (anyNull(autoCorr, a, refl, energy)) return zppStsNullPointer;
  if (outside(order, 1, kMaxOrder)) return zppStsOutOfRange;
  return ownLevinsonDurbin_G729(autoCorr, order, a, refl, energy);
}

ZppStatus zppsLevinsonDurbin_G729B(const Zpp32s* autoCorr, Zpp16s* a, Zpp16s* refl, Zpp16s* energy) {
  if (anyNull(autoCorr, a, refl, energy)) return zppStsNullPointer;
  return ownLevinsonDurbin_G729B(autoCorr, a, refl, energy);
}

ZppStatus zppsLagWindow_G729_32s_I(Zpp32s* autoCorr, int len) {
  if (anyNull(autoCorr)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  if (len > 12) return zppStsOutOfRange;
  ownLagWindow_G729_32s_I(autoCorr, len);
  return zppStsOk;
}
