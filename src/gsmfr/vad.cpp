// Voice activity detection (3GPP TS 46.032, computational details): an adaptive filter takes the noise out of the signal, and
// what it leaves is compared with an adaptive threshold. Filter and threshold adapt in stationary frames without pitch or tone.
#include <cstdlib>
#include <utility>

#include "core/checks.h"
#include "core/kernels.h"
#include "gsmfr/kernels.h"
#include "gsmfr/tables.h"
#include "gsmfr/vad_state.h"

using namespace zpp;
using namespace zpp::gsmfr;

namespace {

constexpr Pseudofloat kFloor = {19, 18750};         // pth: energy below which a frame is noise in any case
constexpr Pseudofloat kLowThreshold = {20, 25000};  // plev
constexpr Pseudofloat kMargin = {27, 19531};        // margin between filtered energy and threshold
constexpr int kFramesToAdapt = 8;                   // adp
constexpr Zpp32s kStationary = 3277;                // thresh
constexpr int kBurst = 3, kHangover = 5;            // burstconst, hangconst
constexpr int kLagTolerance = 2, kPitchCount = 4;   // lthresh, nthresh
constexpr Zpp16s kLowPole = 3189;                   // freqth: poles below 385 Hz are no tone
constexpr Zpp16s kToneError = 1464;                 // predth: prediction error of a tone

struct Energies {
  Pseudofloat whole, filtered;  // acf0, pvad
};

// Clause "Adaptive filtering and energy computation"
Energies energies(const Zpp32s* autoCorr, int scale, const VadState& s) {
  if (autoCorr[0] == 0) return {{-32768, 0}, {-32768, 0}};
  const int norm = norm32(autoCorr[0]);
  Zpp16s a[vadLags];
  for (int i = 0; i < vadLags; ++i) a[i] = static_cast<Zpp16s>(shlWrap32(autoCorr[i], norm) >> 19);
  Zpp32s sum = 0;
  for (int i = 1; i < vadLags; ++i) sum = macDbl(sum, a[i], s.predictor[i]);
  sum = std::max(addSat32(sum, mulDbl(a[0], s.predictor[0]) >> 1), 1);
  const int sumNorm = norm32(sum);
  const int exponent = 32 + 2 * scale - norm;
  return {{exponent, a[0] * 8}, {exponent + 14 - s.predictorNorm - sumNorm, (sum << sumNorm) >> 16}};
}

// Clause "ACF averaging": the sums over this frame and the three before it; and as they were four frames ago.
struct Averages {
  Zpp32s now[vadLags], before[vadLags];
};
Averages average(const Zpp32s* autoCorr, int scale, VadState& s) {
  Averages av;
  Zpp32s* oldest = s.sums[s.sumPlace];
  Zpp32s* past = s.averages[s.averagePlace];
  for (int i = 0; i < vadLags; ++i) {
    const Zpp32s lag = autoCorr[i] >> (10 - 2 * scale);
    av.now[i] = addSat32(addSat32(addSat32(s.sums[0][i], lag), s.sums[1][i]), s.sums[2][i]);
    oldest[i] = lag;
    av.before[i] = std::exchange(past[i], av.now[i]);
  }
  s.sumPlace = static_cast<Zpp8u>((s.sumPlace + 1) % 3);
  s.averagePlace = static_cast<Zpp8u>((s.averagePlace + 1) % 4);
  return av;
}

// Clause "Predictor values computation": the autocorrelation of the coefficients of the filter that fits the given lags
struct Predictor {
  Zpp16s lag[vadLags];
  int norm;
};
Predictor fittingPredictor(const Zpp32s* autoCorr) {
  constexpr int order = vadLags - 1;
  Zpp16s refl[order];
  ownSchur_GSMFR_32s16s(autoCorr, refl, order);
  // Step-up recursion, Q29
  Zpp32s coefficient[vadLags] = {1 << 29, refl[0] * 16384};
  for (int m = 2; m <= order; ++m) {
    Zpp32s updated[vadLags];
    for (int i = 1; i < m; ++i) updated[i] = macDbl(coefficient[i], refl[m - 1], high16(coefficient[m - i]));
    std::copy_n(updated + 1, m - 1, coefficient + 1);
    coefficient[m] = refl[m - 1] * 16384;
  }
  Zpp16s a[vadLags];  // Q10
  for (int i = 0; i < vadLags; ++i) a[i] = static_cast<Zpp16s>(coefficient[i] >> 19);
  Zpp32s sums[vadLags];
  for (int i = 0; i < vadLags; ++i) {
    sums[i] = 0;
    for (int k = 0; k < vadLags - i; ++k) sums[i] = macDbl(sums[i], a[k], a[k + i]);
  }
  Predictor p;
  p.norm = norm32(sums[0]);
  for (int i = 0; i < vadLags; ++i) p.lag[i] = high16(shlWrap32(sums[i], p.norm));
  return p;
}

// Clause "Spectral comparison": whether the distance between the filter of a while ago and the present spectrum stands still
bool isStationary(const Zpp32s* autoCorr, const Predictor& predictor, VadState& s) {
  Zpp16s b[vadLags];
  const int norm = norm32(autoCorr[0]);
  for (int i = 0; i < vadLags; ++i) {
    const Zpp32s normalised = norm >= 3 ? shlWrap32(autoCorr[i], norm - 3) : autoCorr[i] >> (3 - norm);
    b[i] = autoCorr[0] == 0 ? Zpp16s{4095} : high16(normalised);
  }
  Zpp32s sum = 0;
  for (int i = 1; i < vadLags; ++i) sum = macDbl(sum, predictor.lag[i], b[i]);
  Zpp32s distance = 0;
  int shift = 0;
  const int energy = b[0] * 8;
  if (sum != 0 && energy > 0) {  // an energy below 0 belongs to no signal
    const Zpp32s magnitude = absSat32(sum);
    shift = norm32(magnitude);
    const int numerator = high16(magnitude << shift);
    const auto quotient = [energy](int x) { return divQ15(static_cast<Zpp16s>(x), static_cast<Zpp16s>(energy)); };
    distance = 2 * (energy >= numerator ? quotient(numerator) : 32768 + quotient(numerator - energy));
    if (sum < 0) distance = -distance;
  }
  distance = (distance * 16384) >> shift;
  distance = addSat32(distance, predictor.lag[0] * 2048) >> predictor.norm;
  const Zpp32s last = std::exchange(s.distortion, distance);
  return absSat32(subSat32(distance, last)) < kStationary;
}

Pseudofloat threefold(Pseudofloat x) {
  const Pseudofloat y = {x.exponent + 1, (3 * x.mantissa) >> 1};
  return y.mantissa > kMax16 ? Pseudofloat{y.exponent + 1, y.mantissa >> 1} : y;
}

Pseudofloat sum(Pseudofloat x, Pseudofloat y) {
  const Pseudofloat &large = x.exponent < y.exponent ? y : x, &small = x.exponent < y.exponent ? x : y;
  const int difference = large.exponent - small.exponent;
  const int mantissa = large.mantissa + (difference > 15 ? 0 : small.mantissa >> difference);
  if (mantissa > kMax16 || difference == 0) return {large.exponent + 1, mantissa >> 1};
  return {large.exponent, mantissa};
}

// Clause "Threshold adaptation"
void adapt(const Energies& energy, bool speechLike, const Predictor& predictor, VadState& s) {
  Pseudofloat& threshold = s.threshold;
  if (energy.whole < kFloor) {
    threshold = kLowThreshold;
    return;
  }
  if (speechLike) {
    s.adapt = 0;
    return;
  }
  if (++s.adapt <= kFramesToAdapt) return;
  threshold.mantissa -= threshold.mantissa >> 5;
  if (threshold.mantissa < 16384) threshold = {threshold.exponent - 1, 2 * threshold.mantissa};
  const Pseudofloat lower = threefold(energy.filtered), upper = sum(energy.filtered, kMargin);
  if (threshold < lower) {
    threshold.mantissa += threshold.mantissa >> 4;
    if (threshold.mantissa > kMax16) threshold = {threshold.exponent + 1, threshold.mantissa >> 1};
    threshold = std::min(threshold, lower);
  }
  threshold = std::min(threshold, upper);
  std::copy_n(predictor.lag, vadLags, s.predictor);
  s.predictorNorm = static_cast<Zpp16s>(predictor.norm);
  s.adapt = kFramesToAdapt + 1;
}

// Clause "VAD hangover addition"
bool withHangover(bool speech, VadState& s) {
  s.burst = static_cast<Zpp8u>(speech ? s.burst + 1 : 0);
  if (s.burst >= kBurst) {
    s.hang = kHangover;
    s.burst = kBurst;
  }
  if (s.hang < 0) return speech;
  --s.hang;
  return true;
}

// Clause "Periodicity detection": lags that are nearly multiples of their predecessors
void countLags(const Zpp16s* lags, VadState& s) {
  Zpp16s count = 0;
  for (int subframe = 0; subframe < 4; ++subframe) {
    const auto [low, high] = std::minmax<int>({lags[subframe], s.oldLag});
    int rest = high;
    for (int i = 0; i < 3 && rest >= low; ++i) rest -= low;
    if (std::min(rest, low - rest) < kLagTolerance) ++count;
    s.oldLag = lags[subframe];
  }
  s.veryOldLagCount = std::exchange(s.oldLagCount, count);
}

// Clause "Tone detection": a pole pair above 385 Hz whose predictor leaves next to nothing
bool hasTone(const Zpp16s* offsetFree) {
  Zpp16s windowed[kGsmFrFrame];
  for (int n = 0; n < kGsmFrFrame / 2; ++n) {
    windowed[n] = mulRoundQ15(offsetFree[n], toneWindow[n]);
    windowed[kGsmFrFrame - 1 - n] = mulRoundQ15(offsetFree[kGsmFrFrame - 1 - n], toneWindow[n]);
  }
  Zpp32s autoCorr[5];
  Zpp16s refl[4];
  ownScaleDown_GSMFR_16s_I(windowed);
  ownAutoCorr_GSMFR_16s32s(windowed, autoCorr, 5);
  ownSchur_GSMFR_32s16s(autoCorr, refl, 4);
  const auto quarter = static_cast<Zpp16s>(refl[0] >> 2);
  const Zpp16s a1 = addSat16(quarter, mulRoundQ15(refl[1], quarter));
  const Zpp32s den = mulDbl(a1, a1), num = subSat32((refl[1] >> 2) * 65536, den);
  if (num <= 0) return false;
  if (a1 < 0 && subSat32(num, mulDbl(high16(den), kLowPole)) < 0) return false;
  Zpp16s error = kMax16;
  for (const Zpp16s r : refl) error = mulQ15(error, subSat16(kMax16, mulQ15(r, r)));
  return error < kToneError;
}

}  // namespace

ZppStatus zppsVADGetSize_GSMFR_16s(Zpp32s* size) { return reportSize(size, vadStateSize); }

ZppStatus zppsVADInit_GSMFR_16s(void* state, Zpp32s direction) {
  if (anyNull(state)) return zppStsNullPointer;
  if (outside(direction, 0, 1)) return zppStsOutOfRange;
  ownVADInit_GSMFR_16s(state, direction);
  return zppStsOk;
}

ZppStatus zppsVAD_GSMFR_16s(const Zpp32s* autoCorr, const Zpp16s* offsetFree, const Zpp16s* lags, Zpp16s* vad, Zpp32s scale,
                            void* state) {
  if (anyNull(autoCorr, offsetFree, lags, vad, state)) return zppStsNullPointer;
  if (outside(scale, 0, 4)) return zppStsBadScale;
  for (int subframe = 0; subframe < 4; ++subframe)
    if (outside<int>(lags[subframe], 40, 120)) return zppStsBadCodedParam;
  *vad = ownVAD_GSMFR_16s(autoCorr, offsetFree, lags, scale, state);
  return zppStsOk;
}

void ownVADInit_GSMFR_16s(void* state, int direction) {
  VadState s;
  s.downlink = direction != 0;
  storeVadState(s, state);
}

bool ownVAD_GSMFR_16s(const Zpp32s* autoCorr, const Zpp16s* offsetFree, const Zpp16s* lags, int scale, void* state) {
  VadState s = loadVadState(state);
  const Energies energy = energies(autoCorr, scale, s);
  const Averages averages = average(autoCorr, scale, s);
  const Predictor predictor = fittingPredictor(averages.before);
  const bool stationary = isStationary(averages.now, predictor, s);
  const bool pitch = s.oldLagCount + s.veryOldLagCount >= kPitchCount;
  adapt(energy, pitch || !stationary || s.tone, predictor, s);
  const bool speech = withHangover(energy.filtered > s.threshold, s);
  countLags(lags, s);
  s.tone = s.downlink && hasTone(offsetFree);
  storeVadState(s, state);
  return speech;
}
