// Synthesis filter and perceptual weighting filter in cascade (ITU-T G.728 clause 3.5, blocks 9, 10 and 22).
#include "core/checks.h"
#include "g728/kernels.h"
#include "g728/synthesis_filter.h"

using namespace zpp;
using namespace zpp::g728;

namespace {

struct State {
  SpeechMemory speech;
  Zpp16s zeroInput[kVector + 1];  // block between the two calls
  Zpp16s weighted[10];            // outputs of the weighting filter, Q2, oldest first

  static State load(const void* block) {
    State s;
    std::memcpy(&s, block, sizeof s);
    s.speech.limit();
    return s;
  }
  void save(void* block) const { std::memcpy(block, this, sizeof *this); }
};
constexpr int kStateSize = 208;
static_assert(sizeof(State) <= kStateSize);

void toQ2(const Block& b, Zpp16s* dst) {
  const int right = std::clamp(b.q - 2, 0, 15), left = std::clamp(2 - b.q, 0, 16);
  for (int n = 0; n < kVector; ++n) dst[n] = sat16(b.mantissa[n] * (1 << left) >> right);
}

}  // namespace

ZppStatus zppsCombinedFilterGetStateSize_G728_16s(Zpp32s* size) { return reportSize(size, kStateSize); }

ZppStatus zppsCombinedFilterInit_G728_16s(void* state) {
  if (anyNull(state)) return zppStsNullPointer;
  State reset = {};
  reset.speech.reset();
  std::memset(state, 0, kStateSize);
  reset.save(state);
  return zppStsOk;
}

ZppStatus zppsCombinedFilterZeroInput_G728_16s(const Zpp16s* coef, const Zpp16s* coefZero, const Zpp16s* coefPole, Zpp16s* dst,
                                               void* state) {
  if (anyNull(coef, coefZero, coefPole, dst, state)) return zppStsNullPointer;
  State s = State::load(state);
  const Block zeroInput = ownZeroInput_G728_16s(coef, s.speech);
  zeroInput.store(s.zeroInput);
  // The weighting filter's input memory is the speech itself, converted anew each time.
  Zpp16s x[10 + kVector], y[10 + kVector];
  toQ2(s.speech.newest(1), x);
  toQ2(s.speech.newest(0), x + kVector);
  toQ2(zeroInput, x + 10);
  std::copy_n(s.weighted, 10, y);
  ownWeightingFilter_G728_16s(coefZero, coefPole, x + 10, y + 10);
  std::copy_n(y + kVector, 10, s.weighted);
  std::copy_n(y + 10, kVector, dst);
  s.save(state);
  return zppStsOk;
}

ZppStatus zppsCombinedFilterZeroState_G728_16s(const Zpp16s* coef, const Zpp16s* coefZero, const Zpp16s* coefPole,
                                               const Zpp16s* exc, Zpp16s* dst, void* state) {
  if (anyNull(coef, coefZero, coefPole, exc, dst, state)) return zppStsNullPointer;
  State s = State::load(state);
  Block excitation = Block::load(exc);
  Zpp16s response[kVector], weighted[kVector];
  ownZeroState_G728_16s(coef, &excitation, response);
  for (int n = 0; n < kVector; ++n) {
    Zpp64s sum = response[n] * 16384;
    for (int k = 0; k < n; ++k) sum += coefZero[k] * response[n - 1 - k] - Zpp64s{coefPole[k] * weighted[n - 1 - k]};
    weighted[n] = sat16(sum >> 14);
    Zpp16s& output = s.weighted[kVector + n];
    output = sat16(output + shifted(weighted[n], 2 - excitation.q));
  }
  Block zeroInput;
  std::copy_n(s.zeroInput, kVector, zeroInput.mantissa);
  zeroInput.q = std::clamp<int>(s.zeroInput[kVector], -256, 255);
  const Block speech = ownSpeechVector_G728_16s(zeroInput, response, excitation.q);
  s.speech.append(speech);
  s.save(state);
  speech.store(dst);
  return zppStsOk;
}
