// Quantisation, decoding and interpolation of log area ratios (3GPP TS 46.010 clauses 5.2.7 to 5.2.9).
#include <algorithm>

#include "core/checks.h"
#include "core/fixed_point.h"
#include "gsmfr/kernels.h"
#include "gsmfr/tables.h"

using namespace zpp;
using namespace zpp::gsmfr;

ZppStatus zppsLARQuant_GSMFR_16s(const Zpp16s* lar, Zpp16s* larCode) {
  if (anyNull(lar, larCode)) return zppStsNullPointer;
  ownLARQuant_GSMFR_16s(lar, larCode);
  return zppStsOk;
}

ZppStatus zppsLARDecode_GSMFR_16s(const Zpp16s* larCode, Zpp16s* lar) {
  if (anyNull(larCode, lar)) return zppStsNullPointer;
  ownLARDecode_GSMFR_16s(larCode, lar);
  return zppStsOk;
}

ZppStatus zppsLARToRefl_GSMFR_16s(const Zpp16s* prevLar, const Zpp16s* lar, Zpp16s* refl) {
  if (anyNull(prevLar, lar, refl)) return zppStsNullPointer;
  ownLARToRefl_GSMFR_16s(prevLar, lar, refl);
  return zppStsOk;
}

void ownLARQuant_GSMFR_16s(const Zpp16s* lar, Zpp16s* larCode) {
  for (int i = 0; i < kGsmFrOrder; ++i) {
    const int level = addSat16(addSat16(mulQ15(larSlope[i], lar[i]), larOffset[i]), 256) >> 9;
    larCode[i] = static_cast<Zpp16s>(std::clamp<int>(level, larLowest[i], larHighest[i]) - larLowest[i]);
  }
}
