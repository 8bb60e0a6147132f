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

// One sample step by step, as the standard does it. y: the past outputs, newest first; the new one enters.
template <int order, int shift>
[[gnu::noinline]] Zpp16s saturatingStep(const HighPassState& s, const Zpp16s* x, Zpp32s* y) {
  Zpp32s acc = 16384;
  for (int k = 0; k < order; ++k) acc = macDbl(acc, toDpf(y[k]).lo, s.a[k]);
  acc >>= 15;
  for (int k = 0; k < order; ++k) acc = macDbl(acc, toDpf(y[k]).hi, s.a[k]);
  for (int k = 0; k <= order; ++k) acc = macDbl(acc, x[-k], s.b[k]);
  acc = shlSat32(acc, shift);
  for (int k = order - 1; k > 0; --k) y[k] = y[k - 1];
  y[0] = acc & ~1;  // the state has no lowest bit
  return roundHigh16(shlSat32(acc, shift - 1));
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

// The samples until the end or the first output beyond +-limit, which keeps it from saturating; returns their number. The
// filter's pace is the way from one output to the next: all else is kept off it. Both words of a past output are multiplied at
// once: (y / 2) * a >> 14 is the sum of the upper word's doubled product and of the lower word's, which the standard scales by
// itself. inputs: half the inputs' share of the sums.
template <int order, int shift>
int recursion(const HighPassState& s, const Zpp32s* inputs, Zpp16s* dst, int len, Zpp32s limit, Zpp32s* y) {
  constexpr Zpp32s half = 0x8000 >> (shift - 1);
  const Zpp32s accLimit = limit >> shift;
  const Zpp64s a1 = s.a[0], a2 = s.a[1], a3 = order == 3 ? s.a[2] : 0;
  Zpp32s y1 = y[0] >> 1, y2 = y[1] >> 1, y3 = order == 3 ? y[2] >> 1 : 0;
  int n = 0;
  for (; n < len; ++n) {
    Zpp64s past = y2 * a2 + 8192;
    if constexpr (order == 3) past += y3 * a3;
    const Zpp32s acc = addWrap32(wrap32((past + y1 * a1) >> 14), shlWrap32(inputs[n], 1));
    if (acc > accLimit || acc < -accLimit) [[unlikely]]
      break;
    const Zpp32s out = acc * (1 << shift);
    dst[n] = static_cast<Zpp16s>((out + half) >> (17 - shift));
    y3 = y2, y2 = y1, y1 = out >> 1;
  }
  y[0] = y1 * 2, y[1] = y2 * 2;
  if constexpr (order == 3) y[2] = y3 * 2;
  return n;
}

template <int order, int shift>
void filter(Zpp16s* srcDst, int len, HighPassState& s) {
  constexpr int block = 64;
  Zpp16s signal[kMostOrder + block] = {};
  Zpp32s inputs[block], y[order];
  for (int k = 0; k < order; ++k) signal[kMostOrder - 1 - k] = s.x[k], y[k] = fromDpf(s.y[k]);
  while (len > 0) {
    const int count = len < block ? len : block;
    Zpp16s* const x = signal + kMostOrder;
    std::copy_n(srcDst, count, x);
    ownHighPassInputs_16s32s(s.b, x, inputs, count);
    const int largest = ownMaxAbs_16s(x - order, count + order) + 1;
    const Zpp32s harmless = std::min(harmlessOutput(s, order, largest), kMax32 >> (shift - 1) & ~0xffff);
    const auto isHarmless = [harmless](Zpp32s out) { return out >= -harmless && out <= harmless; };
    for (int n = 0; n < count;) {
      if (std::all_of(y, y + order, isHarmless))
        n += recursion<order, shift>(s, inputs + n, srcDst + n, count - n, harmless, y);
      if (n == count) break;
      srcDst[n] = saturatingStep<order, shift>(s, x + n, y);
      ++n;
    }
    for (int k = order; k > 0; --k) x[-k] = x[count - k];
    srcDst += count;
    len -= count;
  }
  for (int k = 0; k < order; ++k) s.x[k] = signal[kMostOrder - 1 - k], s.y[k] = toDpf(y[k]);
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
