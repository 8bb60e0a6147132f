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
  for (int n = 0; n < len; ++n) {
    const Zpp16s x0 = srcDst[n];
    Zpp32s acc = macFeedback(macFeedback(0, s.y1, s.a[1]), s.y2, s.a[2]);
    acc = macDbl(macDbl(macDbl(acc, x0, s.b[0]), s.x1, s.b[1]), s.x2, s.b[2]);
    acc = shlSat32(acc, 15 - scaleFactor);
    srcDst[n] = roundHigh16(shlSat32(acc, scaleFactor - 12));
    s.y2 = s.y1;
    s.y1 = toDpf(acc);
    s.x2 = s.x1;
    s.x1 = x0;
  }
  std::memcpy(state, &s, sizeof s);
}
