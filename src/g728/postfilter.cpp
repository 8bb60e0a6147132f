// Adaptive postfilter with gain control (ITU-T G.728 clause 4.6, blocks 71 to 77, Annex G).
#include "core/checks.h"
#include "g728/arithmetic.h"
#include "g728/kernels.h"
#include "g728/pitch_range.h"

using namespace zpp;
using namespace zpp::g728;

namespace {

constexpr Zpp16s kUnity = 16384;           // of gains, Q14
constexpr int kOld = 16220, kNew = 20972;  // 0.99, Q14, and 0.01, Q21: smoothing of the gain

// Short-term filter with its tilt compensation, oldest first, and the smoothed gain
struct State {
  Zpp16s input[10], output[10];
  Zpp16s gain;
};
constexpr int kStateSize = 64;
static_assert(sizeof(State) <= kStateSize);

Zpp32s sumOfMagnitudes(const Zpp16s* x) {
  Zpp32s sum = 0;
  for (int n = 0; n < kVector; ++n) sum += x[n] < 0 ? -x[n] : x[n];
  return sum;
}

// What the new gain contributes to a step of the smoothing: 0.01 times the ratio of magnitudes, Q28
Zpp32s gainStep(Zpp32s before, Zpp32s after) {
  Floating ratio{kUnity, 14};
  if (after > 4) ratio = quotient(normalisedHigh(before), normShift(before, 32), normalisedHigh(after), normShift(after, 32));
  const int q = ratio.q - 7;
  return q > 30 ? 0 : sat32(shifted(Zpp64s{kNew} * ratio.mantissa, -q));
}

}  // namespace

ZppStatus zppsPostFilterGetStateSize_G728_16s(Zpp32s* size) { return reportSize(size, kStateSize); }

ZppStatus zppsPostFilterInit_G728_16s(void* state) {
  if (anyNull(state)) return zppStsNullPointer;
  State reset = {};
  reset.gain = kUnity;
  std::memset(state, 0, kStateSize);
  std::memcpy(state, &reset, sizeof reset);
  return zppStsOk;
}

ZppStatus zppsPostFilter_G728_16s(const Zpp16s* ltp, const Zpp16s* coefZero, const Zpp16s* coefPole, const Zpp16s* src,
                                  const Zpp16s* history, Zpp16s* dst, Zpp32s pitch, Zpp16s tilt, void* state) {
  if (anyNull(ltp, coefZero, coefPole, src, history, dst, state)) return zppStsNullPointer;
  if (outside(pitch, kMinPitch, kMaxPitch)) return zppStsOutOfRange;
  State s;
  std::memcpy(&s, state, sizeof s);
  Zpp16s x[10 + kVector], y[10 + kVector] = {}, filtered[kVector];
  std::copy_n(s.input, 10, x);
  std::copy_n(s.output, 10, y);
  Zpp64s longTerm[kVector], sums[kVector];
  for (int n = 0; n < kVector; ++n) {
    longTerm[n] = Zpp64s{ltp[0] * src[n]} + ltp[1] * history[n - pitch];
    x[10 + n] = rounded(4 * longTerm[n]);
  }
  ownPastSums_G728_16s(coefZero, coefPole, x + 10, y + 10, sums);
  for (int n = 0; n < kVector; ++n) {
    Zpp64s sum = longTerm[n] + sums[n];
    for (int k = 0; k < n; ++k) sum -= coefPole[k] * y[9 + n - k];
    y[10 + n] = sat16(sum >> 14);
    filtered[n] = sat16((sum + tilt * y[9 + n]) >> 14);
  }
  const Zpp32s step = gainStep(sumOfMagnitudes(src), sumOfMagnitudes(filtered));
  for (int n = 0; n < kVector; ++n) {
    s.gain = rounded(4 * (Zpp64s{step} + kOld * s.gain));
    dst[n] = rounded(Zpp64s{4} * s.gain * filtered[n]);
  }
  std::copy_n(x + kVector, 10, s.input);
  std::copy_n(y + kVector, 10, s.output);
  std::memcpy(state, &s, sizeof s);
  return zppStsOk;
}
