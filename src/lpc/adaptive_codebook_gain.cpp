// Adaptive-codebook gain (ITU-T G.729 clause 3.7.3, 3GPP TS 26.090 clause 5.6).
#include "core/fixed_point.h"
#include "core/kernels.h"
#include "lpc/kernels.h"

using namespace zpp;

namespace {

constexpr int kSubframe = 40;
constexpr Zpp64s kDoubleLimit = 1073741823;  // sums from here on are taken again on samples shifted right by 2
constexpr Zpp16s kMostGain = 19661;          // 1.2 in Q14

struct Normalised {
  Zpp16s mantissa;
  int exponent;
};

Normalised normalised(Zpp64s doubled, int correction) {
  const Zpp32s value = sat32(doubled);
  const int shift = norm32(value);
  return {roundHigh16(shlSat32(value, shift)), shift + correction};
}

}  // namespace

Zpp16s ownAdaptiveCodebookGain_16s(const Zpp16s* target, const Zpp16s* filtered, Zpp16s* coeffs, int start) {
  Zpp64s energy = ownDotProd_16s(filtered, filtered, kSubframe);
  Zpp64s correlation = ownDotProd_16s(target, filtered, kSubframe);
  const bool loudEnergy = energy >= kDoubleLimit;
  const bool loudCorrelation = correlation >= kDoubleLimit || correlation < -kDoubleLimit;
  if (loudEnergy || loudCorrelation) {
    Zpp16s quiet[kSubframe];
    ownRShiftC_16s(filtered, quiet, kSubframe, 2);
    if (loudEnergy) energy = ownDotProd_16s(quiet, quiet, kSubframe);
    if (loudCorrelation) correlation = ownDotProd_16s(target, quiet, kSubframe);
  }
  const Normalised yy = normalised(2 * energy + 1, loudEnergy ? -4 : 0);
  const Normalised xy = normalised(2 * correlation + start, loudCorrelation ? -2 : 0);
  if (coeffs != nullptr) {
    coeffs[0] = yy.mantissa;
    coeffs[1] = static_cast<Zpp16s>(15 - yy.exponent);
    coeffs[2] = xy.mantissa;
    coeffs[3] = static_cast<Zpp16s>(15 - xy.exponent);
  }
  if (xy.mantissa < 4) return 0;
  const Zpp16s quotient = divQ15(xy.mantissa >> 1, yy.mantissa);
  const Zpp16s gain = shlSat16(quotient, yy.exponent - xy.exponent);
  return gain > kMostGain ? kMostGain : gain;
}

ZppStatus _zppsComputeAdaptiveCodebookGain_16s(const Zpp16s* target, const Zpp16s* filtered, Zpp16s* gain, Zpp16s* coeffs) {
  *gain = ownAdaptiveCodebookGain_16s(target, filtered, coeffs, 0);
  return zppStsOk;
}
