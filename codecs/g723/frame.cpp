#include "codecs/g723/frame.h"

#include <algorithm>

namespace codecs::g723 {
namespace {

Lsf decoded(Zpp32s index, bool erased, const Lsf& previous) {
  const Zpp16s bands[3] = {static_cast<Zpp16s>(index >> 16 & 255), static_cast<Zpp16s>(index >> 8 & 255),
                           static_cast<Zpp16s>(index & 255)};
  Lsf lsf;
  return warns(zppsLSFDecode_G723_16s(bands, previous.data(), erased ? 1 : 0, lsf.data())) ? previous : lsf;
}

}  // namespace

Lsf decodedLsf(Zpp32s index, const Lsf& previous) { return decoded(index, false, previous); }
Lsf concealedLsf(const Lsf& previous) { return decoded(0, true, previous); }

Filters interpolatedFilters(const Lsf& previous, const Lsf& lsf) {
  Filters filters;
  static_assert(sizeof filters == kSubframes * kOrder * sizeof(Zpp16s));
  require(zppsLSFInterpolation_G723_16s(previous.data(), lsf.data(), filters[0].data()));
  return filters;
}

void decodeAdaptive(const Frame& frame, int subframe, const Zpp16s* history, Zpp16s* vector) {
  const auto i = static_cast<unsigned>(subframe);
  require(zppsDecodeAdaptiveVector_G723_16s(frame.lag[i / 2], frame.offset[i], frame.gainIndex[i], history, vector,
                                            rateOf(frame.kind)));
}

void decodeSubframe(const Frame& frame, int subframe, const Zpp16s* history, Zpp16s* excitation) {
  const auto i = static_cast<unsigned>(subframe);
  Zpp16s adaptive[kSubframe];
  require(zppsFixedCodebookDecode_G723_32s16s(frame.codeword[i].data(), excitation, frame.lag[i / 2], frame.offset[i],
                                              frame.gainIndex[i], subframe, rateOf(frame.kind)));
  decodeAdaptive(frame, subframe, history, adaptive);
  require(zppsAdd_16s_I(excitation, excitation, kSubframe));
  require(zppsAdd_16s_I(adaptive, excitation, kSubframe));
}

void enterHistory(History& history, const Zpp16s* samples, int count) {
  std::copy(history.begin() + count, history.end(), history.begin());
  std::copy_n(samples, count, history.end() - count);
}

int blockScaled(const Zpp16s* samples, Zpp16s* scaled, int count) {
  constexpr int kGuardBits = 3;
  int shift = 0;
  require(zppsAutoScale_16s(samples, scaled, count, &shift));
  require(zppsRShiftC_16s_I(scaled, count, kGuardBits));
  return shift - kGuardBits;
}

}  // namespace codecs::g723
