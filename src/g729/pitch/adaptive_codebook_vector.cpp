// The adaptive vector of a fractional delay, its gain and its contribution: ITU-T G.729 clauses 3.7.1, 3.7.3, 3.8.
#include <cstring>

#include "core/checks.h"
#include "g729/pitch/kernels.h"
#include "lpc/kernels.h"

using namespace zpp;

namespace {

constexpr int kSubframe = 40;
constexpr int kPast = 154;  // samples of past excitation

}  // namespace

void ownDecodeAdaptiveVector_G729_16s(int lag, int fraction, const Zpp16s* pastExc, Zpp16s* dst) {
  Zpp16s exc[kPast + kSubframe];
  std::memcpy(exc, pastExc, kPast * sizeof(Zpp16s));
  ownDecodeAdaptiveVector_G729_16s_I(lag, fraction, exc + kPast);
  std::memcpy(dst, exc + kPast, kSubframe * sizeof(Zpp16s));
}

Zpp16s ownAdaptiveCodebookGain_G729_16s(const Zpp16s* target, const Zpp16s* impulse, const Zpp16s* adaptive, Zpp16s* filtered) {
  ownConvPartial_16s_Sfs(adaptive, impulse, filtered, kSubframe, 12);
  return ownAdaptiveCodebookGain_16s(target, filtered, nullptr, 0);
}

Zpp16s ownAdaptiveCodebookGain_G729A_16s(const Zpp16s* target, const Zpp16s* a, const Zpp16s* adaptive, Zpp16s* filtered) {
  ownSynthesisFilter_NR_16s(a, adaptive, filtered, kSubframe, 12, nullptr);
  return ownAdaptiveCodebookGain_16s(target, filtered, nullptr, 0);
}

ZppStatus zppsDecodeAdaptiveVector_G729_16s_I(const Zpp16s* delay, Zpp16s* exc) {
  if (anyNull(delay, exc)) return zppStsNullPointer;
  if (badPitchDelay(delay)) return zppStsBadCodedParam;
  ownDecodeAdaptiveVector_G729_16s_I(delay[0], delay[1], exc + kPast);
  return zppStsOk;
}

ZppStatus zppsDecodeAdaptiveVector_G729_16s(const Zpp16s* delay, const Zpp16s* pastExc, Zpp16s* dst) {
  if (anyNull(delay, pastExc, dst)) return zppStsNullPointer;
  if (badPitchDelay(delay)) return zppStsBadCodedParam;
  ownDecodeAdaptiveVector_G729_16s(delay[0], delay[1], pastExc, dst);
  return zppStsOk;
}

ZppStatus zppsAdaptiveCodebookGain_G729_16s(const Zpp16s* target, const Zpp16s* impulse, const Zpp16s* adaptive,
                                            Zpp16s* filtered, Zpp16s* gain) {
  if (anyNull(target, impulse, adaptive, filtered, gain)) return zppStsNullPointer;
  *gain = ownAdaptiveCodebookGain_G729_16s(target, impulse, adaptive, filtered);
  return zppStsOk;
}

ZppStatus zppsAdaptiveCodebookGain_G729A_16s(const Zpp16s* target, const Zpp16s* a, const Zpp16s* adaptive, Zpp16s* filtered,
                                             Zpp16s* gain) {
  if (anyNull(target, a, adaptive, filtered, gain)) return zppStsNullPointer;
  *gain = ownAdaptiveCodebookGain_G729A_16s(target, a, adaptive, filtered);
  return zppStsOk;
}

ZppStatus zppsAdaptiveCodebookContribution_G729_16s(Zpp16s gain, const Zpp16s* filtered, const Zpp16s* target, Zpp16s* result) {
  if (anyNull(filtered, target, result)) return zppStsNullPointer;
  ownAdaptiveCodebookContribution_G729_16s(gain, filtered, target, result);
  return zppStsOk;
}
