// Quantisation, decoding and interpolation of log area ratios (3GPP TS 46.010 clauses 5.2.7 to 5.2.9).
#include <algorithm>

#include "core/checks.h"
#include "core/fixed_point.h"
#include "gsmfr/kernels.h"
#include "gsmfr/tables.h"

using namespace zpp;
using namespace zpp::gsmfr;

namespace {

// Inverse of the approximation by which reflection coefficients become LAR; within -32767..32767
constexpr Zpp16s reflectionCoefficient(int lar) {
  const int a = absSat16(lar);
  const int r = a < 11059 ? 2 * a : a < 20070 ? a + 11059 : addSat16(a >> 2, 26112);
  return static_cast<Zpp16s>(lar < 0 ? -r : r);
}

}  // namespace

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

void ownLARDecode_GSMFR_16s(const Zpp16s* larCode, Zpp16s* lar) {
  for (int i = 0; i < kGsmFrOrder; ++i) {
    const int code = larCode[i] & (larHighest[i] - larLowest[i]);
    const Zpp16s level = subSat16((code + larLowest[i]) * 1024, 2 * larOffset[i]);
    const Zpp16s half = mulRoundQ15(larInverseSlope[i], level);
    lar[i] = addSat16(half, half);
  }
}

// The quarters and halves of the two frames are truncated one by one. Every weighted sum fits 16 bits.
void ownLARToRefl_GSMFR_16s(const Zpp16s* prevLar, const Zpp16s* lar, Zpp16s* refl) {
  for (int i = 0; i < kGsmFrOrder; ++i) {
    const int p = prevLar[i], q = lar[i];
    refl[i] = reflectionCoefficient((p >> 2) + (q >> 2) + (p >> 1));
    refl[kGsmFrOrder + i] = reflectionCoefficient((p >> 1) + (q >> 1));
    refl[2 * kGsmFrOrder + i] = reflectionCoefficient((p >> 2) + (q >> 2) + (q >> 1));
    refl[3 * kGsmFrOrder + i] = reflectionCoefficient(q);
  }
}
