// Tilt compensation of the ITU-T G.729 postfilter (clause 4.2.3, Annex A clause A.4.2.3) and Annex A's pre-emphasis.
#include <cstring>

#include "core/checks.h"
#include "core/fixed_point.h"
#include "core/kernels.h"
#include "g729/postfilter/kernels.h"
#include "lpc/kernels.h"

using namespace zpp;

namespace {

constexpr int kSubframe = kPostfilterSubframe, kResponse = 22;

// Full rate and Annex E: 1 + m z^-1 with m = 0.9 or 0.2 times the reflection coefficient, scaled by 1 / (1 - |m|)
void ownTiltCompensation_G729_16s(Zpp16s tilt, Zpp16s* srcDst, Zpp16s* memory) {
  const bool rising = tilt > 0;
  const Zpp16s m = mulRoundQ15(tilt, rising ? Zpp16s{6554} : Zpp16s{29491});
  const Zpp16s span = addSat16(kMax16, 1 - absSat16(m));  // 1 - |m|
  // The gain has one integer bit for a rising response, four for a falling one: m of -0.9 needs a gain of 10.
  const Zpp16s gain = divQ15(rising ? Zpp16s{16384} : Zpp16s{2048}, span);
  const Zpp16s last = srcDst[kSubframe - 1];
  ownTiltFilter_G729_16s(srcDst, *memory, static_cast<Zpp16s>(m >> 1), gain, rising ? 14 : 11);
  *memory = last;
}

// Annex A: 1 - k z^-1 with 0.8 of the first correlation coefficient of the response, when that is positive
void ownTiltCompensation_G729A_16s(const Zpp16s* coef, Zpp16s* srcDst) {
  constexpr int kComputed = kResponse + 2;  // kernels like multiples of eight
  Zpp16s response[kComputed + 1] = {};
  std::memcpy(response, coef, (kLpcOrder + 1) * sizeof *response);
  ownSynthesisFilter_NR_16s(coef + kLpcOrder + 1, response, response, kComputed, 12, nullptr);
  response[kResponse] = response[kResponse + 1] = 0;
  const Zpp64s energy = 2 * ownDotProd_16s(response, response, kComputed);
  Zpp32s correlation = 0;
  if (energy <= kMax32)  // which bounds every partial sum of the correlation as well
    correlation = static_cast<Zpp32s>(2 * ownDotProd_16s(response, response + 1, kComputed));
  else
    for (int i = 0; i + 1 < kResponse; ++i) correlation = macDbl(correlation, response[i], response[i + 1]);

  const Zpp16s last = srcDst[kSubframe - 1];
  if (correlation > 0) {
    const Zpp16s whole = high16(sat32(energy));  // 512 or more where coef begins with 1
    const Zpp16s factor = whole == 0 ? Zpp16s{kMax16} : divQ15(mulQ15(high16(correlation), 26214), whole);
    ownPreemphasize_G729A_16s(srcDst, srcDst, kSubframe, factor, srcDst[-1]);
  }
  srcDst[-1] = last;
}

void preemphasize(const Zpp16s* src, Zpp16s* dst, int len, Zpp16s factor, Zpp16s* memory) {
  const Zpp16s last = src[len - 1];
  ownPreemphasize_G729A_16s(src, dst, len, factor, *memory);
  *memory = last;
}

}  // namespace

ZppStatus zppsTiltCompensation_G729_16s(Zpp16s tilt, Zpp16s* srcDst, Zpp16s* memory) {
  if (anyNull(srcDst, memory)) return zppStsNullPointer;
  ownTiltCompensation_G729_16s(tilt, srcDst, memory);
  return zppStsOk;
}

ZppStatus zppsTiltCompensation_G729E_16s(Zpp16s tilt, Zpp16s* srcDst, Zpp16s* memory) {
  if (anyNull(srcDst, memory)) return zppStsNullPointer;
  ownTiltCompensation_G729_16s(tilt, srcDst, memory);
  return zppStsOk;
}

ZppStatus zppsTiltCompensation_G729A_16s(const Zpp16s* coef, Zpp16s* srcDst) {
  if (anyNull(coef, srcDst)) return zppStsNullPointer;
  ownTiltCompensation_G729A_16s(coef, srcDst);
  return zppStsOk;
}

ZppStatus zppsPreemphasize_G729A_16s(const Zpp16s* src, Zpp16s* dst, int len, Zpp16s factor, Zpp16s* memory) {
  if (anyNull(src, dst, memory)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  preemphasize(src, dst, len, factor, memory);
  return zppStsOk;
}

ZppStatus zppsPreemphasize_G729A_16s_I(Zpp16s* srcDst, int len, Zpp16s factor, Zpp16s* memory) {
  if (anyNull(srcDst, memory)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  preemphasize(srcDst, srcDst, len, factor, memory);
  return zppStsOk;
}
