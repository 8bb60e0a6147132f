// Noise of the high band and its gain (3GPP TS 26.190 clauses 5.10 and 6.3).
#include "amrwb/high_band/kernels.h"
#include "amrwb/high_band/tables.h"
#include "amrwb/noise/kernels.h"
#include "core/checks.h"

using namespace zpp;
using namespace zpp::amrwb;

ZppStatus zppsHighBandNoise_AMRWB_16s(const Zpp16s* src, Zpp16s* dst, int scale, Zpp16s* seed) {
  if (anyNull(src, dst, seed)) return zppStsNullPointer;
  ownHighBandNoise_AMRWB_16s(src, dst, scale, seed);
  return zppStsOk;
}

ZppStatus zppsHighBandGain_AMRWB_16s(const Zpp16s* src, int vadHist, Zpp16s* gain) {
  if (anyNull(src, gain)) return zppStsNullPointer;
  *gain = ownHighBandGain_AMRWB_16s(src, vadHist);
  return zppStsOk;
}

ZppStatus zppsHighBandGainQuant_AMRWB_16s(const Zpp16s* speech, const Zpp16s* noise, Zpp16s estimate, Zpp16s weight,
                                          Zpp16s* index) {
  if (anyNull(speech, noise, index)) return zppStsNullPointer;
  *index = static_cast<Zpp16s>(ownHighBandGainQuant_AMRWB_16s(speech, noise, estimate, weight));
  return zppStsOk;
}

namespace {

// sqrt(wanted / present)
Floating levelRatio(Floating wanted, Floating present) {
  const Zpp16s wantedMantissa = high16(wanted.mantissa);
  Zpp16s mantissa = high16(present.mantissa);
  if (mantissa > wantedMantissa) {
    mantissa = shr16(mantissa, 1);
    ++present.exponent;
  }
  return inverseSqrt({fromHigh16(quotientQ15(mantissa, wantedMantissa)), present.exponent - wanted.exponent});
}

}  // namespace

void ownHighBandNoise_AMRWB_16s(const Zpp16s* src, Zpp16s* dst, int scale, Zpp16s* seed) {
  Zpp16s excitation[kSubframe];
  scaleRound16(src, excitation, kSubframe, -3);
  Floating wanted = energy12(excitation, kSubframe);
  wanted.exponent -= 2 * (sat16(scale) - 3);
  ownNoise_AMRWB_16s(dst, kHighBandSubframe, 3, seed);
  const Floating ratio = levelRatio(wanted, energy12(dst, kHighBandSubframe));
  const Zpp16s gain = high16(shlSat32(ratio.mantissa, ratio.exponent + 1));
  for (int n = 0; n < kHighBandSubframe; ++n) dst[n] = static_cast<Zpp16s>((dst[n] * gain) >> 15);  // dst is of 13 bits
}

Zpp16s ownHighBandGain_AMRWB_16s(const Zpp16s* src, int vadHist) {
  const Zpp64s exactEnergy = ownDotProd_16s(src, src, kSubframe);
  const Zpp32s total = sat32(1 + 2 * exactEnergy);
  const int shift = norm32(total);
  const Zpp32s neighbours = dotProduct(src + 1, src, kSubframe - 1, 1, exactEnergy, exactEnergy);
  const Zpp16s tilt = quotientQ15(high16(shlSat32(neighbours, shift)), high16(total << shift));
  Zpp16s gain = static_cast<Zpp16s>(kMax16 - tilt);
  if (vadHist > 0) gain = shlSat16(mulQ15(gain, 20480), 1);  // 1.25 in noise
  gain = mulQ15(kMax16, gain);
  if (gain != 0) gain = addSat16(gain, 1);
  return gain < 3277 ? Zpp16s{3277} : gain;
}

int ownHighBandGainQuant_AMRWB_16s(const Zpp16s* speech, const Zpp16s* noise, Zpp16s estimate, Zpp16s weight) {
  Zpp16s scaled[kHighBandSubframe];
  scaleRound16(speech, scaled, kHighBandSubframe, -1);
  const Floating ratio = levelRatio(energy12(scaled, kHighBandSubframe), energy12(noise, kHighBandSubframe));
  const Zpp16s measured = high16(shlSat32(ratio.mantissa, ratio.exponent));
  const Zpp16s rest = subSat16(kMax16, weight);
  const Zpp16s gain = addSat16(mulQ15(measured, weight), mulQ15(rest, shr16(estimate, 1)));
  int best = 0;
  Zpp16s smallest = kMax16;
  for (int i = 0; i < 16; ++i) {
    const Zpp16s difference = subSat16(gain, highBandGains[i]), distance = mulQ15(difference, difference);
    if (distance >= smallest) continue;
    smallest = distance;
    best = i;
  }
  return best;
}
