// Decoding and interpolation of log area ratios: portable kernels.
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

void ownLARDecode_GSMFR_16s_PX(const Zpp16s* larCode, Zpp16s* lar) {
  for (int i = 0; i < kGsmFrOrder; ++i) {
    const int code = larCode[i] & (larHighest[i] - larLowest[i]);
    const Zpp16s level = subSat16((code + larLowest[i]) * 1024, 2 * larOffset[i]);
    const Zpp16s half = mulRoundQ15(larInverseSlope[i], level);
    lar[i] = addSat16(half, half);
  }
}

// The quarters and halves of the two frames are truncated one by one. Every weighted sum fits 16 bits.
void ownLARToRefl_GSMFR_16s_PX(const Zpp16s* prevLar, const Zpp16s* lar, Zpp16s* refl) {
  for (int i = 0; i < kGsmFrOrder; ++i) {
    const int p = prevLar[i], q = lar[i];
    refl[i] = reflectionCoefficient((p >> 2) + (q >> 2) + (p >> 1));
    refl[kGsmFrOrder + i] = reflectionCoefficient((p >> 1) + (q >> 1));
    refl[2 * kGsmFrOrder + i] = reflectionCoefficient((p >> 2) + (q >> 2) + (q >> 1));
    refl[3 * kGsmFrOrder + i] = reflectionCoefficient(q);
  }
}
