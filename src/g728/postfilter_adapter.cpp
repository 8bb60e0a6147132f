// Postfilter adapter: LPC residual, pitch period, long-term postfilter coefficients (ITU-T G.728 clause 4.7, blocks 81 to 84,
// Annex G).
#include "core/checks.h"
#include "core/kernels.h"
#include "g728/arithmetic.h"
#include "g728/kernels.h"
#include "g728/pitch_range.h"
#include "lpc/kernels.h"

using namespace zpp;
using namespace zpp::g728;

namespace {

constexpr int kCycle = 20, kWindow = 100;  // samples of an adaptation cycle and of a correlation
constexpr int kDecimation = 4;
constexpr int kNewDecimated = kCycle / kDecimation;  // a cycle at 2 kHz
constexpr int kDecimatedWindow = kWindow / kDecimation, kMinDecimatedLag = 5, kMaxDecimatedLag = 35;
constexpr int kDecimated = kDecimatedWindow + kMaxDecimatedLag;
constexpr int kFirstPeriod = 50;
constexpr int kVoicedTap = 9830;          // 0.6, Q14: the long-term postfilter is off below
constexpr int kPostFilterFactor = 9830;   // 0.15, Q16
constexpr int kFundamentalShare = 26214;  // 0.4, Q16: what of the best lag's tap the fundamental must have

struct State {
  Zpp16s input[10];              // of the LPC inverse filter, oldest first
  Zpp16s lowpassed[3];           // outputs of the lowpass, Q1, oldest first
  Zpp16s period;                 // of the cycle before
  Zpp16s decimated[kDecimated];  // the newest lowpassed samples at 2 kHz, oldest first

  static State load(const void* block) {
    State s;
    std::memcpy(&s, block, sizeof s);
    s.period = std::clamp<Zpp16s>(s.period, kMinPitch, kMaxPitch);
    return s;
  }
  void save(void* block) const { std::memcpy(block, this, sizeof *this); }
};
constexpr int kStateSize = 176;
static_assert(sizeof(State) <= kStateSize);

Zpp32s product(const Zpp16s* x, const Zpp16s* y, int len) { return sat32(ownDotProd_16s(x, y, len)); }

// Lag of the largest correlation of x with itself delayed by minLag..maxLag; the first wins a tie. fits: no sum leaves 32 bits.
LagMax bestLag(const Zpp16s* x, int len, int minLag, int maxLag, bool fits) {
  LagMax best{kMin32, minLag};
  const auto compare = [&best](Zpp32s sum, int lag) {
    if (sum > best.value) best = {sum, lag};
  };
  if (fits) {
    Zpp32s sums[kMaxDecimatedLag];
    ownCorr_16s32s(x, x - maxLag, len, sums, maxLag - minLag + 1);
    for (int lag = minLag; lag <= maxLag; ++lag) compare(sums[maxLag - lag], lag);
  } else {
    for (int lag = minLag; lag <= maxLag; ++lag) compare(product(x, x - lag, len), lag);
  }
  return best;
}

// Sums of so many products fit 32 bits when the samples are no larger.
static_assert(Zpp64s{kDecimatedWindow} * 9268 * 9268 <= kMax32 && Zpp64s{kWindow} * 4634 * 4634 <= kMax32);

// Lowpass of 1 kHz and decimation by 4
void decimate(const Zpp16s* residual, State& s) {
  std::copy(s.decimated + kNewDecimated, s.decimated + kDecimated, s.decimated);
  Zpp16s* next = s.decimated + kDecimated - kNewDecimated;
  for (int n = 0; n < kCycle; ++n) {
    Zpp64s sum = 0;
    for (int k = 0; k < 4; ++k) sum += lowpassZero[k] * residual[n - k];
    sum >>= 6;
    for (int k = 0; k < 3; ++k) sum -= lowpassPole[k] * s.lowpassed[2 - k];
    s.lowpassed[0] = s.lowpassed[1];
    s.lowpassed[1] = s.lowpassed[2];
    s.lowpassed[2] = rounded(8 * sum);
    if (n % kDecimation == kDecimation - 1) *next++ = s.lowpassed[2];
  }
}

// Block 82. The best lag may be a multiple of the pitch period: a lag near the period before is preferred if its predictor tap
// exceeds 0.4 times that of the best lag.
int pitchPeriod(const Zpp16s* residual, const State& s) {
  const bool fitsDecimated = ownMaxAbs_16s(s.decimated, kDecimated) <= 9268;
  const int coarse =
      kDecimation *
      bestLag(s.decimated + kMaxDecimatedLag, kDecimatedWindow, kMinDecimatedLag, kMaxDecimatedLag, fitsDecimated).lag;
  const Zpp16s* x = residual + kCycle - kWindow;
  const bool fits = ownMaxAbs_16s(x - kMaxPitch, kWindow + kMaxPitch) <= 4634;
  const LagMax best =
      bestLag(x, kWindow, std::max(coarse - kDecimation + 1, kMinPitch), std::min(coarse + kDecimation - 1, kMaxPitch), fits);
  const int previous = s.period;
  if (previous + 6 >= best.lag) return best.lag;
  const LagMax near = bestLag(x, kWindow, std::max(previous - 6, kMinPitch), previous + 6, fits);
  const Zpp32s bestEnergy = product(x - best.lag, x - best.lag, kWindow);
  const Zpp32s nearEnergy = product(x - near.lag, x - near.lag, kWindow);
  const int norm = normShift(std::max(bestEnergy, nearEnergy), 32);
  // A tap lies between 0 and 1.
  const auto upper = [norm](Zpp32s value) { return static_cast<Zpp32s>(shifted(value, norm) >> 16); };
  const Zpp32s bestTop = upper(std::clamp(best.value, 0, bestEnergy)), nearTop = upper(std::clamp(near.value, 0, nearEnergy));
  const bool isNear = nearTop * upper(bestEnergy) > ((bestTop * upper(nearEnergy)) >> 16) * kFundamentalShare;
  return isNear ? near.lag : best.lag;
}

// Single-tap pitch predictor (block 83), Q14
Zpp16s pitchTap(Zpp32s correlation, Zpp32s energy) {
  if (energy <= 0 || correlation <= 0) return 0;
  if (correlation >= energy) return 16384;
  const Floating tap =
      quotient(normalisedHigh(correlation), normShift(correlation, 32), normalisedHigh(energy), normShift(energy, 32));
  return static_cast<Zpp16s>(shr32(tap.mantissa, tap.q - 14));
}

}  // namespace

ZppStatus zppsPostFilterAdapterGetStateSize_G728(Zpp32s* size) { return reportSize(size, kStateSize); }

ZppStatus zppsPostFilterAdapterInit_G728(void* state) {
  if (anyNull(state)) return zppStsNullPointer;
  State reset = {};
  reset.period = kFirstPeriod;
  std::memset(state, 0, kStateSize);
  reset.save(state);
  return zppStsOk;
}

ZppStatus zppsLPCInverseFilter_G728_16s(const Zpp16s* coef, const Zpp16s* src, Zpp16s* dst, void* state) {
  if (anyNull(coef, src, dst, state)) return zppStsNullPointer;
  State s = State::load(state);
  Zpp16s x[10 + kVector];
  std::copy_n(s.input, 10, x);
  std::copy_n(src, kVector, x + 10);
  constexpr Zpp16s none[10] = {};
  Zpp64s sums[kVector];
  ownPastSums_G728_16s(coef, none, x + 10, x + 10, sums);
  for (int n = 0; n < kVector; ++n) dst[n] = rounded(4 * (sums[n] + x[10 + n] * 8192));
  std::copy_n(x + kVector, 10, s.input);
  s.save(state);
  return zppStsOk;
}

ZppStatus zppsPitchPeriod_G728_16s(const Zpp16s* src, Zpp32s* pitch, void* state) {
  if (anyNull(src, pitch, state)) return zppStsNullPointer;
  State s = State::load(state);
  decimate(src, s);
  *pitch = pitchPeriod(src, s);
  s.period = static_cast<Zpp16s>(*pitch);
  s.save(state);
  return zppStsOk;
}

ZppStatus zppsLongTermPostFilterCoeffs_G728_16s(const Zpp16s* src, Zpp32s pitch, Zpp16s* tap, Zpp16s* ltp) {
  if (anyNull(src, tap, ltp)) return zppStsNullPointer;
  if (outside(pitch, kMinPitch, kMaxPitch)) return zppStsOutOfRange;
  const Zpp16s* delayed = src - pitch;
  *tap = pitchTap(product(src, delayed, kWindow), product(delayed, delayed, kWindow));
  const Zpp32s weight = kPostFilterFactor * (*tap < kVoicedTap ? 0 : *tap);  // Q30
  const Floating scale = quotient(16384, 14, (weight >> 16) + 16384, 14);
  ltp[0] = static_cast<Zpp16s>(scale.mantissa >> (scale.q - 14));
  ltp[1] = static_cast<Zpp16s>((scale.mantissa * (weight >> 14)) >> scale.q);
  return zppStsOk;
}
