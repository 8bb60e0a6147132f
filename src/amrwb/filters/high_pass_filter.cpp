// High-pass filters of second and third order with a recursive part in double precision (3GPP TS 26.190 clauses 5.1, 5.4 and
// 6.2).
#include <algorithm>
#include <cstring>

#include "amrwb/filters/kernels.h"
#include "core/checks.h"

using namespace zpp;

namespace {

constexpr int kMostOrder = 3;

struct HighPassState {
  Zpp32s order;
  Dpf y[kMostOrder];     // past outputs before rounding, newest first
  Zpp16s x[kMostOrder];  // past inputs, newest first
  Zpp16s b[kMostOrder + 1], a[kMostOrder];
  Zpp16s unused[2];
};
static_assert(sizeof(HighPassState) == kHighPassStateSize);

constexpr int magnitude(Zpp16s x) { return x < 0 ? -x : x; }

constexpr Zpp32s mulWrap32(Zpp32s a, Zpp32s b) { return static_cast<Zpp32s>(static_cast<Zpp32u>(a) * static_cast<Zpp32u>(b)); }

// Step by step, as the standard does it
[[gnu::noinline]] Zpp32s saturatingSum(const HighPassState& s, int order, Zpp16s x0, const Zpp32s* x, const Zpp32s* y) {
  Zpp32s acc = 16384;
  for (int k = 0; k < order; ++k) acc = macDbl(acc, toDpf(y[k]).lo, s.a[k]);
  acc >>= 15;
  for (int k = 0; k < order; ++k) acc = macDbl(acc, toDpf(y[k]).hi, s.a[k]);
  acc = macDbl(acc, x0, s.b[0]);
  for (int k = 0; k < order; ++k) acc = macDbl(acc, low16(x[k]), s.b[k + 1]);
  return acc;
}

// With past outputs within +- the result no sum of the filter saturates; below 0 where it may all the same. Lower words are not
// negative, so their doubled sums lie between those of the negative and of the positive factors; the upper sums, halved, stay
// below 2^30 with the magnitudes of all products together, twice the factors allowing for the lower words' share.
Zpp32s harmlessOutput(const HighPassState& s, int order, int largestInput) {
  int positive = 0, negative = 0, inputs = magnitude(s.b[0]);
  for (int k = 0; k < order; ++k) {
    (s.a[k] > 0 ? positive : negative) += magnitude(s.a[k]);
    inputs += magnitude(s.b[k + 1]);
  }
  if (positive > 32766 || negative > 32766) return -1;
  const int factors = positive + negative;
  const Zpp64s room = (Zpp64s{1} << 30) - 1 - Zpp64s{largestInput} * inputs - 2 * factors - 2;
  if (room < 0) return -1;
  const Zpp32s upperWord = static_cast<Zpp32s>(room) / (factors + 1) - 1;
  return upperWord > kMax16 ? kMax32 : upperWord * 65536;
}

// The filter's pace is the way from one output to the next: all else is kept off it. Both words of a past output are multiplied
// at once: (y / 2) * a >> 14 is the sum of the upper word's doubled product and of the lower word's, which the standard scales
// by itself.
template <int order, int shift>
void filter(Zpp16s* srcDst, int len, HighPassState& s) {
  int largest = ownMaxAbs_16s(srcDst, len) + 1;
  Zpp32s x[order], y[order], a[order], b[order + 1];
  b[0] = s.b[0];
  for (int k = 0; k < order; ++k) {
    x[k] = s.x[k], y[k] = fromDpf(s.y[k]), a[k] = s.a[k], b[k + 1] = s.b[k + 1];
    largest = std::max(largest, magnitude(s.x[k]));
  }
  const Zpp32s harmless = harmlessOutput(s, order, largest);
  const auto isHarmless = [harmless](Zpp32s out) { return out >= -harmless && out <= harmless; };
  int stepwise = order;  // samples that take the standard's way, because of a past output that may make it saturate
  if (std::all_of(y, y + order, isHarmless)) stepwise = 0;
  for (int n = 0; n < len; ++n) {
    const Zpp32s x0 = srcDst[n];
    Zpp32s inputs = mulWrap32(x0, b[0]);
    Zpp64s past = 8192;
    for (int k = 0; k < order; ++k) {
      inputs = addWrap32(inputs, mulWrap32(x[k], b[k + 1]));
      past += Zpp64s{y[k] >> 1} * a[k];
    }
    Zpp32s acc = addWrap32(wrap32(past >> 14), shlWrap32(inputs, 1));
    if (stepwise > 0) [[unlikely]] {
      acc = saturatingSum(s, order, low16(x0), x, y);
      --stepwise;
    }
    const Zpp32s out = shlSat32(acc, shift);
    srcDst[n] = roundHigh16(shlSat32(out, shift - 1));
    for (int k = order - 1; k > 0; --k) x[k] = x[k - 1], y[k] = y[k - 1];
    x[0] = x0, y[0] = out & ~1;  // the state has no lowest bit
    if (!isHarmless(out)) [[unlikely]]
      stepwise = order;
  }
  for (int k = 0; k < order; ++k) s.x[k] = low16(x[k]), s.y[k] = toDpf(y[k]);
}

}  // namespace

ZppStatus zppsHighPassFilterInit_AMRWB_16s(const Zpp16s* coef, int order, void* state) {
  if (anyNull(coef, state)) return zppStsNullPointer;
  if (outside(order, 2, 3)) return zppStsOutOfRange;
  ownHighPassFilterInit_AMRWB_16s(coef, order, state);
  return zppStsOk;
}

ZppStatus zppsHighPassFilter_AMRWB_16s_I(Zpp16s* srcDst, int len, int shift, void* state) {
  if (anyNull(srcDst, state)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  if (outside(shift, 1, 2)) return zppStsBadScale;
  ownHighPassFilter_AMRWB_16s_I(srcDst, len, shift, state);
  return zppStsOk;
}

ZppStatus zppsHighPassFilterScale_AMRWB_16s(int shift, void* state) {
  if (anyNull(state)) return zppStsNullPointer;
  if (outside(shift, -31, 31)) return zppStsBadScale;
  ownHighPassFilterScale_AMRWB_16s(shift, state);
  return zppStsOk;
}

void ownHighPassFilterInit_AMRWB_16s(const Zpp16s* coef, int order, void* state) {
  HighPassState fresh = {};
  fresh.order = order;
  std::copy_n(coef, order + 1, fresh.b);
  std::copy_n(coef + order + 1, order, fresh.a);
  std::memcpy(state, &fresh, sizeof fresh);
}

void ownHighPassFilter_AMRWB_16s_I(Zpp16s* srcDst, int len, int shift, void* state) {
  HighPassState s;
  std::memcpy(&s, state, sizeof s);
  if (s.order == kMostOrder)
    shift == 1 ? filter<3, 1>(srcDst, len, s) : filter<3, 2>(srcDst, len, s);
  else
    shift == 1 ? filter<2, 1>(srcDst, len, s) : filter<2, 2>(srcDst, len, s);
  std::memcpy(state, &s, sizeof s);
}

void ownHighPassFilterScale_AMRWB_16s(int shift, void* state) {
  HighPassState s;
  std::memcpy(&s, state, sizeof s);
  for (Dpf& y : s.y) y = toDpf(shlSat32(fromDpf(y), shift));
  for (Zpp16s& x : s.x) x = amrwb::scaleRound16(x, shift);
  std::memcpy(state, &s, sizeof s);
}
