// Long-term postfilter of ITU-T G.729 (clause 4.2.1), which also serves Annexes B and E: the delay is searched around the
// integer delay of the frame's first subframe, at a resolution of 1/8 sample.
//
// The search runs on the residual scaled to 12 bits and sign, so that no doubled sum over 40 samples leaves 32 bits and the
// reference's saturation does not act: energies stay below 40 * 2^24 = 0.63 * 2^30. The responses of the interpolation filters
// nowhere exceed 1.011 (short) and 1.004 (long), which bounds the energy of a delayed signal by 1.022 * 44 * 2^24 and
// 1.008 * 55 * 2^24, both below 0.9 * 2^30, and with it every partial sum of a correlation (Cauchy and Schwarz).
#include <cstring>

#include "core/checks.h"
#include "core/fixed_point.h"
#include "core/kernels.h"
#include "g729/postfilter/kernels.h"
#include "g729/postfilter/tables.h"
#include "lpc/kernels.h"

using namespace zpp;

namespace {

constexpr int kSubframe = kPostfilterSubframe;

// A 32-bit sum of 0 or more as the upper 15 bits that count, and how far it was shifted right
struct Upper {
  explicit Upper(Zpp32s x) : shift(norm32(x) < 16 ? 16 - norm32(x) : 0), mantissa(low16(x >> shift)) {}
  int shift;
  Zpp16s mantissa;
};

// Correlation of the residual with a delayed signal and the energy of that signal: mantissas and how far each was shifted right
struct Match {
  Zpp16s correlation, energy;
  int correlationShift, energyShift;
};

// The delayed signal is delayed by delay - phase/8 samples.
struct Selection {
  int delay, phase;
  Match match;
};
constexpr Selection kOff = {0, 0, {}};

constexpr Zpp32s squareDbl(Zpp16s x) { return mulDbl(x, x); }

// Whether correlation^2 / energy of the first is larger
constexpr bool exceeds(Zpp16s correlation1, Zpp16s energy1, Zpp16s correlation2, Zpp16s energy2) {
  return mulDpf16(toDpf(squareDbl(correlation1)), energy2) > mulDpf16(toDpf(squareDbl(correlation2)), energy1);
}

// c: scaled residual with its history
Selection ownSearchDel(const Zpp16s* c, int delay) {
  const auto energy = static_cast<Zpp32s>(2 * ownDotProd_16s(c, c, kSubframe));
  if (energy == 0) return kOff;
  const Upper residualEnergy(energy);

  // Integer delays delay + 1 down to delay - 1, and one more that completes a vector of four
  Zpp32s sums[4];
  ownCorr_16s32s(c, c - (delay + 1), kSubframe, sums, 4);
  int whole = delay - 1;
  Zpp32s most = sums[2];
  for (int k = 1; k >= 0; --k)
    if (sums[k] > most) most = sums[k], whole = delay + 1 - k;
  if (most <= 0) return kOff;
  const Zpp32s mostDbl = 2 * most;
  const auto wholeEnergy = static_cast<Zpp32s>(2 * ownDotProd_16s(c - whole, c - whole, kSubframe));
  if (wholeEnergy == 0) return kOff;

  DelayedMatch match[7][2];
  ownMatchFractions_G729_16s(c, whole, match);
  Zpp32s mostEnergy = wholeEnergy;
  for (const auto& phase : match)
    for (const auto& m : phase) mostEnergy = m.energy > mostEnergy ? m.energy : mostEnergy;
  const int energyShift = 16 - norm32(mostEnergy);
  if (energyShift <= 0) return kOff;
  const int shift = energyShift > residualEnergy.shift ? energyShift : residualEnergy.shift;

  Selection best = {whole, 0, {low16(mostDbl >> shift), low16(wholeEnergy >> energyShift), shift, energyShift}};
  for (int phase = 1; phase <= 7; ++phase)
    for (int late = 0; late <= 1; ++late) {
      const DelayedMatch& m = match[phase - 1][late];
      const Zpp16s correlation = m.correlation < 0 ? Zpp16s{0} : low16(m.correlation >> shift);
      const Zpp16s signalEnergy = low16(m.energy >> energyShift);
      if (exceeds(correlation, signalEnergy, best.match.correlation, best.match.energy))
        best = {whole + 1 - late, phase, {correlation, signalEnergy, shift, energyShift}};
    }
  if (best.match.correlation == 0 || best.match.energy <= 1) return kOff;

  // On for a prediction gain of 3 dB: correlation^2 of at least half the product of the energies
  Zpp32s product = mulDbl(best.match.energy, residualEnergy.mantissa), square = squareDbl(best.match.correlation);
  const int excess = 2 * shift - energyShift - residualEnergy.shift + 1;
  if (excess < 0) square = shr32(square, -excess);
  if (excess > 0) product = shr32(product, excess);
  return square >= product ? best : kOff;
}

Match matchOf(const Zpp16s* c, const Zpp16s* z) {
  const auto correlation = static_cast<Zpp32s>(2 * ownDotProd_16s(z, c, kSubframe));
  const auto energy = static_cast<Zpp32s>(2 * ownDotProd_16s(z, z, kSubframe));
  const Upper n(correlation < 0 ? 0 : correlation), d(energy);
  return {n.mantissa, d.mantissa, n.shift, d.shift};
}

// Whether the long filter's signal matches better than the short one's
bool prefersLong(const Match& longMatch, const Match& shortMatch) {
  if (longMatch.energy == 0) return false;
  Zpp32s longTerm = mulDpf16(toDpf(squareDbl(longMatch.correlation)), shortMatch.energy);
  Zpp32s shortTerm = mulDpf16(toDpf(squareDbl(shortMatch.correlation)), longMatch.energy);
  const int shifted =
      2 * longMatch.correlationShift + shortMatch.energyShift - (2 * shortMatch.correlationShift + longMatch.energyShift);
  if (shifted > 0) shortTerm = shr32(shortTerm, shifted);
  if (shifted < 0) longTerm = shr32(longTerm, -shifted);
  return longTerm > shortTerm;
}

// Gain of the undelayed residual, Q15: 1 / (1 + factor * gain), the gain of the prediction limited to 1; 2/3 at least
Zpp16s residualGain(const Match& m, Zpp16s gainFactor) {
  const int aligned = m.correlationShift - m.energyShift;
  const Zpp16s correlation = aligned < 0 ? shr16(m.correlation, -aligned) : m.correlation;
  const Zpp16s energy = aligned >= 0 ? shr16(m.energy, aligned) : m.energy;
  const bool full = gainFactor == 16384;  // handled apart by the reference: no rounding
  if (correlation >= energy && full) return 21845;
  const Zpp16s limited = correlation >= energy ? energy : correlation;
  const int a = energy >> 1, b = full ? limited >> 2 : mulRoundQ15(limited, gainFactor) >> 1;
  return divQ15(static_cast<Zpp16s>(a), static_cast<Zpp16s>(a + b));
}

}  // namespace

int ownLongTermPostFilter_G729_16s(Zpp16s gainFactor, int delay, const Zpp16s* residual, Zpp16s* dst) {
  Zpp16s scaled[1 + kPostfilterHistory + kSubframe];
  const int shift = ownNormaliseResidual_G729_16s(residual, scaled + 1);
  const Zpp16s* c = scaled + 1 + kPostfilterHistory;
  // The longest delay reaches one sample further, which the scaling did not look at. The interpolation multiplies it by less
  // than 0.004, so that its bounds still hold.
  if (delay == kLongestPostfilterDelay) scaled[0] = shlSat16(residual[-kPostfilterHistory - 1], -shift);
  Selection best = ownSearchDel(c, delay);
  if (best.delay == 0) {
    std::memcpy(dst, residual, kSubframe * sizeof *dst);
    return 0;
  }

  const Zpp16s* delayed = residual - best.delay;
  Zpp16s interpolated[kSubframe];
  if (best.phase != 0) {
    ownInterpolate_G729_16s(c - best.delay + 8, tab_hup_l[best.phase - 1], 16, interpolated);
    const Match match = matchOf(c, interpolated);
    if (prefersLong(match, best.match))
      best.match = match;
    else
      ownInterpolate_G729_16s(c - best.delay + 2, tab_hup_s[best.phase - 1], 4, interpolated);
    if (shift >= 0)
      ownLShiftCSat_16s(interpolated, interpolated, kSubframe, shift);
    else
      ownRShiftC_16s(interpolated, interpolated, kSubframe, -shift);
    delayed = interpolated;
  }
  const Zpp16s gain = residualGain(best.match, gainFactor);
  ownHarmonicFilter_G729_16s(residual, delayed, gain, static_cast<Zpp16s>(32768 - gain), dst);
  return best.delay;
}

namespace {

void ownLongTermPostFilter_G729B_16s(int delay, const Zpp16s* speech, const Zpp16s* coef, Zpp16s* residual, Zpp16s* dst,
                                     Zpp16s* voicing, int frameType) {
  constexpr int active = 1, shortest = 18;
  Zpp16s numerator[kLpcOrder + 1];
  Zpp16s* current = residual + kPostfilterHistoryAnnexAB;
  ownMul_NR_16s_Sfs(coef, facGamma2_pst, numerator, kLpcOrder + 1, 15);
  ownResidualFilter_G729_16s(numerator, speech, current, kSubframe);
  if (frameType != active) {
    std::memcpy(dst, current, kSubframe * sizeof *dst);
    *voicing = 0;
    return;
  }
  *voicing = ownLongTermPostFilter_G729_16s(16384, delay < shortest ? shortest : delay, current, dst) != 0;
}

}  // namespace

ZppStatus zppsLongTermPostFilter_G729_16s(Zpp16s gainFactor, int delay, const Zpp16s* residual, Zpp16s* dst, Zpp16s* delayOut) {
  if (anyNull(residual, dst, delayOut)) return zppStsNullPointer;
  if (outside(delay, 18, 143)) return zppStsOutOfRange;
  if (outside<int>(gainFactor, 0, 16384)) return zppStsOutOfRange;
  *delayOut = static_cast<Zpp16s>(ownLongTermPostFilter_G729_16s(gainFactor, delay, residual, dst));
  return zppStsOk;
}

ZppStatus zppsLongTermPostFilter_G729I_16s(Zpp16s gainFactor, int delay, const Zpp16s* residual, Zpp16s* dst,
                                           Zpp16s* delayOut) {
  if (anyNull(residual, dst, delayOut)) return zppStsNullPointer;
  if (outside(delay, 18, kLongestPostfilterDelay)) return zppStsOutOfRange;
  if (outside<int>(gainFactor, 0, 16384)) return zppStsOutOfRange;
  *delayOut = static_cast<Zpp16s>(ownLongTermPostFilter_G729_16s(gainFactor, delay, residual, dst));
  return zppStsOk;
}

ZppStatus zppsLongTermPostFilter_G729B_16s(Zpp16s delay, const Zpp16s* speech, const Zpp16s* coef, Zpp16s* residual,
                                           Zpp16s* dst, Zpp16s* voicing, Zpp16s frameType) {
  if (anyNull(speech, coef, residual, dst, voicing)) return zppStsNullPointer;
  if (outside<int>(delay, 0, 143)) return zppStsOutOfRange;
  if (outside<int>(frameType, 0, 2)) return zppStsOutOfRange;
  ownLongTermPostFilter_G729B_16s(delay, speech, coef, residual, dst, voicing, frameType);
  return zppStsOk;
}
