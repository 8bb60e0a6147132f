// Adaptive gain control of the ITU-T G.729 postfilter (clause 4.2.4, Annex A clause A.4.2.4): brings the level of the
// postfiltered subframe back to that before the postfilter, by a gain that follows sample by sample.
#include "core/checks.h"
#include "core/fixed_point.h"
#include "core/kernels.h"
#include "g729/postfilter/kernels.h"

using namespace zpp;

namespace {

constexpr int kSubframe = kPostfilterSubframe;

// Target of the full-rate gain: the quotient of the sums of magnitudes, Q14, times 1 - 0.9875; 0..410
Zpp16s targetGain(Zpp32s in, Zpp32s out) {
  if (in == 0) return 0;
  const int inShift = norm32(in), outShift = norm32(out);
  const Zpp16s a = high16(in << inShift), b = high16(out << outShift);
  int excess = inShift - outShift + 1;
  Zpp16s quotient = 0;
  if (a < b) {
    quotient = divQ15(a, b);
  } else {
    quotient = static_cast<Zpp16s>((divQ15(static_cast<Zpp16s>(a - b), b) >> 1) + 16384);
    --excess;
  }
  return mulRoundQ15(shlSat16(quotient, -excess), 410);
}

void ownGainControl_G729_16s(const Zpp16s* src, Zpp16s* srcDst, Zpp16s* gain) {
  const Zpp32s in = ownMagnitudeSum_16s(src), out = ownMagnitudeSum_16s(srcDst);
  if (in != 0 && out == 0) {
    *gain = 0;
    return;
  }
  // 32358 * 32767 rounds to 32357, which leaves room for the 410: the sum never saturates.
  const Zpp32s target = targetGain(in, out) * 32768 + 16384;
  Zpp16s gains[kSubframe];
  Zpp32s g = *gain;
  for (Zpp16s& sample : gains) sample = static_cast<Zpp16s>(g = (g * 32358 + target) >> 15);
  ownMul_NR_16s_Sfs(srcDst, gains, srcDst, kSubframe, 14);
  *gain = static_cast<Zpp16s>(g);
}

// 2 * sum of (src[n] >> 2)^2, saturated. Compilers make as good vector code of it as we do.
Zpp32s energyOf(const Zpp16s* src) {
  Zpp32u sum = 0;  // 40 * 2^26 at the most
  for (int n = 0; n < kSubframe; ++n) sum += static_cast<Zpp32u>((src[n] >> 2) * (src[n] >> 2));
  return sat32(2 * Zpp64s{sum});
}

// Target of Annex A's gain: the root of the quotient of the energies, Q12, times 1 - 0.9; 0..3275
Zpp16s targetGainAnnexA(Zpp32s in, Zpp32s out) {
  if (in == 0) return 0;
  const int inShift = norm32(in), outShift = norm32(out) - 1;
  const Zpp16s a = roundHigh16(in << inShift), b = roundHigh16(shlSat32(out, outShift));
  const Zpp32s quotient = shlSat32(divQ15(b, a) << 7, inShift - outShift);
  return mulQ15(roundHigh16(shlSat32(ownInvSqrt(quotient), 9)), 3276);
}

void ownGainControl_G729A_16s(const Zpp16s* src, Zpp16s* srcDst, Zpp16s* gain) {
  const Zpp32s out = energyOf(srcDst);
  if (out == 0) {
    *gain = 0;
    return;
  }
  // 29491 * 32767 >> 15 is 29490, which leaves room for the 3275: the sum never saturates.
  const Zpp32s target = targetGainAnnexA(energyOf(src), out);
  Zpp16s gains[kSubframe];
  Zpp32s g = *gain;
  for (Zpp16s& sample : gains) sample = static_cast<Zpp16s>(g = (g * 29491 >> 15) + target);
  ownApplyGain_G729A_16s(gains, srcDst);
  *gain = static_cast<Zpp16s>(g);
}

}  // namespace

ZppStatus zppsGainControl_G729_16s_I(const Zpp16s* src, Zpp16s* srcDst, Zpp16s* gain) {
  if (anyNull(src, srcDst, gain)) return zppStsNullPointer;
  ownGainControl_G729_16s(src, srcDst, gain);
  return zppStsOk;
}

ZppStatus zppsGainControl_G729A_16s_I(const Zpp16s* src, Zpp16s* srcDst, Zpp16s* gain) {
  if (anyNull(src, srcDst, gain)) return zppStsNullPointer;
  ownGainControl_G729A_16s(src, srcDst, gain);
  return zppStsOk;
}
