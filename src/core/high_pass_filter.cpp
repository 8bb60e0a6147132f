// Second-order high-pass filters of ITU-T G.729 pre- and post-processing (clauses 3.1 and 4.2.5).
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

// Feedback and input, saturated in every step as the standard has it
[[gnu::noinline]] Zpp32s saturatedSum(const HighPassState& s, Zpp16s x0) {
  const Zpp32s feedback = macFeedback(macFeedback(0, s.y1, s.a[1]), s.y2, s.a[2]);
  return macDbl(macDbl(macDbl(feedback, x0, s.b[0]), s.x1, s.b[1]), s.x2, s.b[2]);
}

// The doubled product of a coefficient with a 16-bit value, or with one in two halves, is of this magnitude at most.
constexpr Zpp64s reach(Zpp16s c) { return Zpp64s{65540} * (c < 0 ? -c : c); }

// While the feedback stays within +-room, no step of the sum can saturate; -1 where the coefficients promise nothing.
Zpp32s roomForFeedback(const HighPassState& s) {
  if (reach(s.a[1]) + reach(s.a[2]) > kMax32) return -1;
  const Zpp64s room = kMax32 - reach(s.b[0]) - reach(s.b[1]) - reach(s.b[2]);
  return room < 0 ? -1 : static_cast<Zpp32s>(room);
}

template <int scaleFactor>
void filter(Zpp16s* srcDst, int len, HighPassState& state) {
  const auto [start1, start2, startX1, startX2, b, a] = state;
  const Zpp32s room = roomForFeedback(state), a1 = a[1], a2 = a[2], b0 = b[0], b1 = b[1], b2 = b[2];
  Zpp32s y1 = fromDpf(start1), y2 = fromDpf(start2), x1 = startX1, x2 = startX2;
  const auto feedbackOf = [](Zpp32s y, Zpp32s c) { return (y >> 16) * c + (((y >> 1 & 0x7fff) * c) >> 15); };
  const auto keep = [&] {
    state.y1 = toDpf(y1);
    state.y2 = toDpf(y2);
    state.x1 = low16(x1);
    state.x2 = low16(x2);
  };
  for (int n = 0; n < len; ++n) {
    const Zpp16s x0 = srcDst[n];
    const Zpp32s feedback = shlWrap32(addWrap32(feedbackOf(y2, a2), feedbackOf(y1, a1)), 1);
    Zpp32s sum = 0;
    if (feedback <= room && feedback >= -room) [[likely]] {
      sum = feedback + 2 * (x0 * b0 + x1 * b1 + x2 * b2);
    } else {
      keep();
      sum = saturatedSum(state, x0);
    }
    y2 = y1;
    y1 = shlSat32(sum, 15 - scaleFactor);
    x2 = x1;
    x1 = x0;
    srcDst[n] = sat16(shrRoundHalfUp(y1, 28 - scaleFactor));
  }
  keep();
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
  if (scaleFactor == 12) {
    filter<12>(srcDst, len, s);
  } else {
    filter<13>(srcDst, len, s);
  }
  std::memcpy(state, &s, sizeof s);
}
