// Long-term predictor (3GPP TS 46.010 clauses 5.2.11, 5.2.12, 5.3.2).
#include <algorithm>

#include "core/checks.h"
#include "core/fixed_point.h"
#include "core/kernels.h"
#include "gsmfr/kernels.h"
#include "gsmfr/tables.h"

using namespace zpp;
using namespace zpp::gsmfr;

namespace {

// Doubled energy of the best vector at an eighth of its scale: below 2^31
Zpp32s doubledPower(const Zpp16s* delayed) {
  Zpp16s eighth[kGsmFrSubframe];
  ownRShiftC_16s(delayed, eighth, kGsmFrSubframe, 3);
  return static_cast<Zpp32s>(2 * ownDotProd_16s(eighth, eighth, kGsmFrSubframe));
}

int gainCode(Zpp32s correlation, Zpp32s power) {
  if (correlation <= 0) return 0;
  if (correlation >= power) return 3;
  const int shift = norm32(power);
  const Zpp16s r = high16(correlation << shift), s = high16(power << shift);
  int code = 0;
  while (code < 3 && r > mulQ15(s, ltpGainLevel[code])) ++code;
  return code;
}

}  // namespace

ZppStatus zppsLTPSearch_GSMFR_16s(const Zpp16s* src, const Zpp16s* history, Zpp16s* lag, Zpp16s* gain) {
  if (anyNull(src, history, lag, gain)) return zppStsNullPointer;
  ownLTPSearch_GSMFR_16s(src, history, lag, gain);
  return zppStsOk;
}

ZppStatus zppsLTPPredict_GSMFR_16s(const Zpp16s* history, Zpp16s* dst, Zpp16s lag, Zpp16s gain) {
  if (anyNull(history, dst)) return zppStsNullPointer;
  if (outside<int>(lag, kGsmFrShortestLag, kGsmFrLongestLag) || outside<int>(gain, 0, 3)) return zppStsBadCodedParam;
  ownLTPPredict_GSMFR_16s(history, dst, lag, gain);
  return zppStsOk;
}

// The target is scaled to at most 512, so that a doubled correlation, of up to 80 times 512 times 32768, fits 31 bits.
void ownLTPSearch_GSMFR_16s(const Zpp16s* src, const Zpp16s* history, Zpp16s* lag, Zpp16s* gain) {
  const Zpp16s most = ownMaxAbs_16s(src, kGsmFrSubframe);
  const int scale = most == 0 ? 0 : std::max(0, 6 - norm16(most));
  Zpp16s target[kGsmFrSubframe];
  ownRShiftC_16s(src, target, kGsmFrSubframe, scale);
  const LagMax best = ownLTPCorrelation_GSMFR_16s(target, history);
  *lag = static_cast<Zpp16s>(best.lag);
  *gain = static_cast<Zpp16s>(gainCode(2 * best.value >> (6 - scale), doubledPower(history + kGsmFrHistory - best.lag)));
}
