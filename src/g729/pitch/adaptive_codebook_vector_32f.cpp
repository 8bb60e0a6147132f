// The adaptive vector of a fractional delay and its contribution in single precision: ITU-T G.729 clauses 3.7.1 and 3.8, as in
// Annex C.
#include "core/checks.h"
#include "g729/pitch/kernels.h"
#include "g729/pitch/tables.h"

using namespace zpp;

namespace {

constexpr int kSubframe = 40;
constexpr int kPast = 154;        // samples of past excitation
constexpr int kTapsPerSide = 10;  // of the excitation's interpolation filter
constexpr int kStep = 8;

void ownDecodeAdaptiveVector_G729_32f_I(int lag, int fraction, Zpp32f* exc) {
  const int phase = fraction > 0 ? 3 - fraction : -fraction;
  // From a delay of 18 on, the ten samples behind the centre of eight outputs lie before the first of them.
  for (int n = 0; n < kSubframe; n += kStep) {
    const Zpp32f* x = exc + n - lag - (fraction > 0 ? 1 : 0);
    Zpp32f sum[kStep] = {};
    for (int i = 0; i < kTapsPerSide; ++i) {
      const Zpp32f before = inter_3l_32f[3 * i + phase], after = inter_3l_32f[3 * i + 3 - phase];
      for (int k = 0; k < kStep; ++k) sum[k] += x[k - i] * before;
      for (int k = 0; k < kStep; ++k) sum[k] += x[k + i + 1] * after;
    }
    for (int k = 0; k < kStep; ++k) exc[n + k] = sum[k];
  }
}

void ownAdaptiveCodebookContribution_G729_32f(Zpp32f gain, const Zpp32f* filtered, const Zpp32f* target, Zpp32f* dst) {
  for (int n = 0; n < kSubframe; ++n) dst[n] = target[n] - gain * filtered[n];
}

}  // namespace

ZppStatus zppsDecodeAdaptiveVector_G729_32f_I(const Zpp16s* delay, Zpp32f* exc) {
  if (anyNull(delay, exc)) return zppStsNullPointer;
  if (badPitchDelay(delay)) return zppStsBadCodedParam;
  ownDecodeAdaptiveVector_G729_32f_I(delay[0], delay[1], exc + kPast);
  return zppStsOk;
}

ZppStatus zppsAdaptiveCodebookContribution_G729_32f(Zpp32f gain, const Zpp32f* filtered, const Zpp32f* target, Zpp32f* result) {
  if (anyNull(filtered, target, result)) return zppStsNullPointer;
  ownAdaptiveCodebookContribution_G729_32f(gain, filtered, target, result);
  return zppStsOk;
}
