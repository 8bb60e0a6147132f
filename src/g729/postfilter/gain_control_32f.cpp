// Adaptive gain control of the postfilter in single precision: ITU-T G.729 clause 4.2.4, as in Annex C.
#include "core/checks.h"

using namespace zpp;

namespace {

constexpr int kSubframe = 40;
constexpr Zpp32f kMemory = 0.9875f;  // how much of the running gain a sample keeps

Zpp64f magnitudeSum(const Zpp32f* src) {
  Zpp64f sum = 0;
  for (int n = 0; n < kSubframe; ++n) sum += Zpp64f{src[n] < 0 ? -src[n] : src[n]};
  return sum;
}

void ownGainControl_G729_32f(const Zpp32f* src, Zpp32f* srcDst, Zpp32f* gain) {
  const Zpp64f in = magnitudeSum(src), out = magnitudeSum(srcDst);
  Zpp32f target = 0;
  if (in != 0) {
    if (out == 0) {
      *gain = 0;
      return;
    }
    target = static_cast<Zpp32f>((1 - 0.9875) * in / out);
  }
  Zpp32f g = *gain;
  for (int n = 0; n < kSubframe; ++n) {
    g = kMemory * g + target;
    srcDst[n] *= g;
  }
  // Silence would let the gain decay to a denormal number, which slows down every sample.
  constexpr Zpp32f least = 1e-30f;
  *gain = g > -least && g < least ? 0 : g;
}

}  // namespace

ZppStatus zppsGainControl_G729_32f_I(const Zpp32f* src, Zpp32f* srcDst, Zpp32f* gain) {
  if (anyNull(src, srcDst, gain)) return zppStsNullPointer;
  ownGainControl_G729_32f(src, srcDst, gain);
  return zppStsOk;
}
