// Concealment of erased frames: extrapolation of the excitation (ITU-T G.728 Annex I).
#include "core/checks.h"
#include "g728/arithmetic.h"
#include "g728/pitch_range.h"

using namespace zpp;
using namespace zpp::g728;

namespace {

constexpr Zpp16s kVoicedTap = 7022;  // of the pitch predictor, Q14
constexpr int kExcitationQ = 2;
constexpr int kPast = kMaxPitch, kRandomWords = 17, kMaxDelay = kPast - kVector;
constexpr int kLevelWindow = 40;

struct State {
  Zpp16s past[kPast];  // excitation, Q2, oldest first
  Zpp16s voiced, delay;
  Zpp16s factor, factorQ;        // of the erasure's 10 ms
  Zpp16s magnitude, magnitudeQ;  // average magnitude of the excitation before an unvoiced erasure
  Zpp16s random1, random2;       // places of the random generator
  Zpp32u random[kRandomWords];

  static State load(const void* block) {
    State s;
    std::memcpy(&s, block, sizeof s);
    s.delay = std::clamp<Zpp16s>(s.delay, 0, kMaxDelay);
    s.factorQ = std::clamp<Zpp16s>(s.factorQ, -64, 64);
    s.magnitudeQ = std::clamp<Zpp16s>(s.magnitudeQ, -64, 64);
    s.random1 = std::clamp<Zpp16s>(s.random1, 0, kRandomWords - 1);
    s.random2 = std::clamp<Zpp16s>(s.random2, 0, kRandomWords - 1);
    return s;
  }
  void save(void* block) const { std::memcpy(block, this, sizeof *this); }

  void keep(const Block& b) {
    std::copy(past + kVector, past + kPast, past);
    for (int n = 0; n < kVector; ++n) past[kPast - kVector + n] = sat16(shifted(b.mantissa[n], kExcitationQ - b.q));
  }
  // Sum of the magnitudes of the delay-th to (delay + len - 1)-th newest samples
  Zpp32s sumOfMagnitudes(int afterDelay, int len) const {
    Zpp32s sum = 0;
    for (int n = kPast - afterDelay - len; n < kPast - afterDelay; ++n) sum += past[n] < 0 ? -past[n] : past[n];
    return sum;
  }
  // Additive generator, 15 bits
  int nextRandom() {
    random1 = static_cast<Zpp16s>((random1 + 1) % kRandomWords);
    random2 = static_cast<Zpp16s>((random2 + 1) % kRandomWords);
    random[random1] += random[random2];
    return static_cast<int>((random[random1] >> 15) & 32767);
  }
  // Factor of the samples to be repeated; in an unvoiced erasure they come from anywhere, at the level of before.
  Floating nextFactor() {
    if (voiced) return {factor, factorQ};
    if (factor == 0) return {0, 14};
    delay = static_cast<Zpp16s>(nextRandom() / 243);
    const Zpp32s sum = sumOfMagnitudes(delay, kVector);
    const Zpp16s level = normalisedHigh(sum);
    if (level == 0) return {16384, 14};
    return quotient(factor, factorQ, level, normShift(sum, 32) - 16 + 2);
  }
};
constexpr int kStateSize = 384;
static_assert(sizeof(State) <= kStateSize);

// Level of an excitation vector: 10 log10 of its mean square less 32 dB, Q9
Zpp16s levelOf(const Block& b) {
  Zpp64s energy = 0;
  for (const Zpp16s m : b.mantissa) energy += m * m;
  const auto upper = [](Zpp64s x) { return static_cast<Zpp32s>(shifted(x, normShift(x, 32)) >> 16); };
  int q = normShift(energy, 32) + 2 * b.q - 16;
  const Zpp32s mean = 13107 * upper(energy);  // a fifth
  q += normShift(mean, 32);
  Zpp32s mantissa = upper(mean);
  if (q > 14) mantissa = 16384, q = 14;  // no less than 0 dB
  const Zpp32s z = 2 * (mantissa - 24576);
  Zpp32s sum = 0;
  for (int k = 5; k >= 1; --k) sum = ((sum + logarithmOfTwo[k]) * z) >> 16;
  const Zpp32s logarithm = (15 - q) * 1024 + ((sum + logarithmOfTwo[0]) >> 3);
  return static_cast<Zpp16s>((Zpp64s{logarithm} * 24660 - 268435456) >> 14);
}

}  // namespace

ZppStatus zppsExtrapolationGetStateSize_G728_16s(Zpp32s* size) { return reportSize(size, kStateSize); }

ZppStatus zppsExtrapolationInit_G728_16s(void* state) {
  if (anyNull(state)) return zppStsNullPointer;
  State reset = {};
  reset.random2 = 12;
  std::copy_n(randomState, kRandomWords, reset.random);
  std::memset(state, 0, kStateSize);
  reset.save(state);
  return zppStsOk;
}

ZppStatus zppsExtrapolationUpdate_G728_16s(const Zpp16s* exc, void* state) {
  if (anyNull(exc, state)) return zppStsNullPointer;
  State s = State::load(state);
  s.keep(Block::load(exc));
  s.save(state);
  return zppStsOk;
}

ZppStatus zppsExtrapolationSetup_G728_16s(Zpp32s pitch, Zpp16s tap, Zpp32s step, void* state) {
  if (anyNull(state)) return zppStsNullPointer;
  if (outside(pitch, kMinPitch, kMaxPitch)) return zppStsOutOfRange;
  if (step < 0) return zppStsOutOfRange;
  State s = State::load(state);
  if (step == 0) {
    s.voiced = tap > kVoicedTap;
    if (s.voiced) {
      s.delay = static_cast<Zpp16s>(pitch - kVector);
    } else {
      const Zpp32s sum = s.sumOfMagnitudes(0, kLevelWindow);
      s.magnitude = normalisedHigh(sum);
      s.magnitudeQ = static_cast<Zpp16s>(normShift(sum, 32) - 16 + 5);
    }
  }
  s.factor = 0;
  s.factorQ = 15;
  if (s.voiced) {
    if (step < 5) s.factor = erasureGainVoiced[step];
  } else if (step < 6) {
    const Zpp32s factor = s.magnitude * erasureGainUnvoiced[step];
    s.factor = normalisedHigh(factor);
    s.factorQ = static_cast<Zpp16s>(normShift(factor, 32) - 16 + s.magnitudeQ + 15);
  }
  s.save(state);
  return zppStsOk;
}

ZppStatus zppsExtrapolation_G728_16s(Zpp16s* dst, Zpp16s* logGain, void* state) {
  if (anyNull(dst, logGain, state)) return zppStsNullPointer;
  State s = State::load(state);
  const Floating factor = s.nextFactor();
  Block excitation;
  for (int n = 0; n < kVector; ++n)
    excitation.mantissa[n] = sat16(shifted(factor.mantissa * s.past[kPast - kVector - s.delay + n], -factor.q));
  excitation.q = kExcitationQ;
  excitation.normalise(15);
  *logGain = levelOf(excitation);
  s.keep(excitation);
  s.save(state);
  excitation.store(dst);
  return zppStsOk;
}
