// Second-order high-pass filters of ITU-T G.729 pre- and post-processing (clauses 3.1 and 4.2.5).
#include <algorithm>
#include <cstdint>
#include <cstring>

#include "core/checks.h"
#include "core/fixed_point.h"
#include "core/kernels.h"

using namespace zpp;

namespace {

struct HighPassState {
  Dpf y1, y2;     // the last two outputs before rounding
  Zpp16s x1, x2;  // the last two inputs
  Zpp16s b[3], a[3];
};
static_assert(sizeof(HighPassState) == 24);

// acc + the feedback product, each of its two halves added with saturation
constexpr Zpp32s macFeedback(Zpp32s acc, Dpf y, Zpp16s a) { return macDbl(macDbl(acc, y.hi, a), mulQ15(y.lo, a), 1); }
// Half of it where nothing saturates, for even y: both halves of the product are truncated at the same bit.
constexpr Zpp32s halfFeedback(Zpp32s y, Zpp32s a) { return static_cast<Zpp32s>((Zpp64s{y} * a) >> 16); }

constexpr int magnitude(Zpp16s x) { return x < 0 ? -x : x; }

// Step by step, as the standard does it
[[gnu::noinline]] Zpp32s saturatingSum(const HighPassState& s, Zpp32s x0, Zpp32s x1, Zpp32s x2, Zpp32s y1, Zpp32s y2) {
  const Zpp32s acc = macFeedback(macFeedback(0, toDpf(y1), s.a[1]), toDpf(y2), s.a[2]);
  return macDbl(macDbl(macDbl(acc, low16(x0), s.b[0]), low16(x1), s.b[1]), low16(x2), s.b[2]);
}

// With past outputs within +- the result no sum of the filter saturates: half the magnitudes of all products stay below 2^30
// together, a lower word counting as a unit of the upper. Below 0 where the inputs alone may saturate.
Zpp32s harmlessOutput(const HighPassState& s, int largestInput) {
  const Zpp64s inputs = Zpp64s{largestInput} * (magnitude(s.b[0]) + magnitude(s.b[1]) + magnitude(s.b[2]));
  const Zpp64s room = (Zpp64s{1} << 30) - 1 - inputs;
  if (room < 0) return -1;
  const Zpp32s upperWord = static_cast<Zpp32s>(room) / (magnitude(s.a[1]) + magnitude(s.a[2]) + 1) - 1;
  return upperWord > kMax16 ? kMax32 : upperWord * 65536;
}

// Any signal: where a sum may saturate, it is added up step by step.
template <int scaleFactor>
void filterSaturating(Zpp16s* srcDst, int len, HighPassState& s, Zpp32s harmless) {
  constexpr int gain = 15 - scaleFactor;
  const Zpp32s b0 = s.b[0], b1 = s.b[1], b2 = s.b[2], a1 = s.a[1], a2 = s.a[2];
  Zpp32s x1 = s.x1, x2 = s.x2, y1 = fromDpf(s.y1), y2 = fromDpf(s.y2);
  const auto isHarmless = [harmless](Zpp32s y) { return y >= -harmless && y <= harmless; };

  bool harmless1 = isHarmless(y1), harmless2 = isHarmless(y2);
  Zpp32s older = halfFeedback(y2, a2);
  for (int n = 0; n < len; ++n) {
    const Zpp32s x0 = srcDst[n];
    const Zpp32s inputs = addWrap32(addWrap32(x0 * b0, x1 * b1), x2 * b2);
    const Zpp32s half = addWrap32(inputs, addWrap32(older, halfFeedback(y1, a1)));
    Zpp32s y = shlWrap32(half, gain + 1);
    if (!harmless1 || !harmless2 || y >> (gain + 1) != half) [[unlikely]]
      y = shlSat32(saturatingSum(s, x0, x1, x2, y1, y2), gain) & ~1;  // the state has no lowest bit
    older = halfFeedback(y1, a2);
    y2 = y1;
    y1 = y;
    harmless2 = harmless1;
    harmless1 = isHarmless(y);
    srcDst[n] = sat16(((y1 >> (27 - scaleFactor)) + 1) >> 1);
    x2 = x1;
    x1 = x0;
  }
  s.y1 = toDpf(y1), s.y2 = toDpf(y2), s.x1 = low16(x1), s.x2 = low16(x2);
}

constexpr int kBlock = 80;

// A block of at most kBlock samples in 64-bit registers, while no sum saturates; otherwise false and nothing is
// changed. All is done with halves of the sums, of which an output is a multiple: the feedback's way from one to the next is a
// product, a shift and an addition, and all else is kept off it. What has been seen is looked at once.
template <int scaleFactor>
bool filterHarmless(Zpp16s* srcDst, int len, HighPassState& s, Zpp32s harmless) {
  constexpr int gain = 15 - scaleFactor;
  const Zpp32s y1 = fromDpf(s.y1), y2 = fromDpf(s.y2);
  if (harmless < 2 << (gain + 1) || ((y1 | y2) & ((2 << gain) - 1)) != 0) return false;
  const int bits = 30 - std::countl_zero(static_cast<Zpp32u>(harmless)) - gain;  // |half| < 2^bits is harmless, and fits
  const auto seenIn = [bits](std::uint64_t half) { return half + (std::uint64_t{1} << bits); };
  // Wraps where saturation has been seen before
  const auto product = [](std::uint64_t half, std::uint64_t a) {
    return static_cast<std::uint64_t>(static_cast<Zpp64s>(half * a) >> scaleFactor);
  };
  const auto extended = [](Zpp32s x) { return static_cast<std::uint64_t>(Zpp64s{x}); };

  Zpp16s x[3 + kBlock] = {0, s.x2, s.x1};
  std::memcpy(x + 3, srcDst, static_cast<unsigned>(len) * sizeof *x);
  Zpp32s halves[kBlock + 1];  // first the inputs' share
  const Zpp16s b[4] = {s.b[0], s.b[1], s.b[2], 0};
  ownHighPassInputs_16s32s(b, x + 3, halves, len);
  halves[len] = 0;

  const std::uint64_t a1 = extended(s.a[1]), a2 = extended(s.a[2]);
  std::uint64_t half1 = extended(y1 >> (gain + 1)), half2 = extended(y2 >> (gain + 1)), seen = seenIn(half1) | seenIn(half2);
  std::uint64_t older = extended(halves[0]) + product(half2, a2);  // all of the next half but the latest one's share
  for (int n = 0; n < len; ++n) {
    half2 = half1;
    half1 = older + product(half1, a1);
    older = extended(halves[n + 1]) + product(half2, a2);
    seen |= seenIn(half1);
    halves[n] = static_cast<Zpp32s>(half1);
  }
  if (seen >> (bits + 1) != 0) return false;
  ownConvert_NR_32s16s_Sfs(halves, srcDst, len, 12);
  s.y1 = toDpf(static_cast<Zpp32s>(half1) * (2 << gain)), s.y2 = toDpf(static_cast<Zpp32s>(half2) * (2 << gain));
  s.x1 = x[len + 2], s.x2 = x[len + 1];
  return true;
}

template <int scaleFactor>
void filter(Zpp16s* srcDst, int len, HighPassState& s) {
  for (; len > 0; len -= kBlock, srcDst += kBlock) {
    const int count = std::min(len, kBlock);
    const Zpp32s harmless = harmlessOutput(s, std::max({ownMaxAbs_16s(srcDst, count) + 1, magnitude(s.x1), magnitude(s.x2)}));
    const bool done = sizeof(void*) == 8 && filterHarmless<scaleFactor>(srcDst, count, s, harmless);
    if (!done) filterSaturating<scaleFactor>(srcDst, count, s, harmless);
  }
}

}  // namespace

ZppStatus zppsHighPassFilterInit_G729(const Zpp16s* coef, void* state) {
  if (anyNull(coef, state)) return zppStsNullPointer;
  HighPassState fresh = {};
  std::memcpy(fresh.b, coef, sizeof fresh.b);
  std::memcpy(fresh.a, coef + 3, sizeof fresh.a);
  std::memcpy(state, &fresh, sizeof fresh);
  return zppStsOk;
}

ZppStatus zppsHighPassFilter_G729_16s_ISfs(Zpp16s* srcDst, int len, int scaleFactor, void* state) {
  if (anyNull(srcDst, state)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  if (outside(scaleFactor, 12, 13)) return zppStsBadScale;
  ownHighPassFilter_G729_16s(srcDst, len, scaleFactor, state);
  return zppStsOk;
}

void ownHighPassFilter_G729_16s(Zpp16s* srcDst, int len, int scaleFactor, void* state) {
  HighPassState s;
  std::memcpy(&s, state, sizeof s);
  if (scaleFactor == 12)
    filter<12>(srcDst, len, s);
  else
    filter<13>(srcDst, len, s);
  std::memcpy(state, &s, sizeof s);
}
