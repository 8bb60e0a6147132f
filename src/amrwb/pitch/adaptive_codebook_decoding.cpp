// Decoding of the pitch lag, its substitution in bad frames, and the adaptive-codebook vector (3GPP TS 26.190 clause 6.1,
// TS 26.191 clause 6.3).
#include <algorithm>
#include <cstring>

#include "amrwb/pitch/kernels.h"
#include "amrwb/pitch/lag_coding.h"
#include "core/checks.h"

using namespace zpp;
using namespace zpp::amrwb;

namespace {

constexpr int kStateSize = 24;

struct LagState {
  Zpp16s past[5] = {64, 64, 64, 64, 64};  // lags of good subframes, newest first
  Zpp16s last = 64;                       // the last good lag
  Zpp16s seed = 21845;
  Zpp16s rangeStart = kMinLag;
  Zpp16s unused[4] = {};
};
static_assert(sizeof(LagState) == kStateSize);

// A lag for a subframe whose own is damaged (badFrame) or unknown (unusable): a stable voiced past repeats its lag, another one
// draws near the upper lags of the past.
int concealedLag(int decoded, const Zpp16s* gains, bool unusable, LagState& s) {
  const auto [lowestAt, highestAt] = std::minmax_element(s.past, s.past + 5);
  const int lowest = *lowestAt, highest = *highestAt, spread = highest - lowest, newest = s.past[0];
  const int lowestGain = *std::min_element(gains, gains + 5);
  const bool stable = lowestGain > 8192 && spread < 10;  // 0.5
  const bool voiced = gains[4] > 8192 && gains[3] > 8192;

  if (!unusable) {
    const bool inside = decoded > lowest && decoded < highest;
    const int sum = s.past[0] + s.past[1] + s.past[2] + s.past[3] + s.past[4];
    if (spread < 10 && decoded > lowest - 5 && decoded - highest < 5) return decoded;
    if (voiced && decoded - newest > -10 && decoded - newest < 10) return decoded;
    if (lowestGain < 6554 && gains[4] == lowestGain && inside) return decoded;
    if (spread < 70 && inside) return decoded;
    if (decoded > mulQ15(sat16(sum), 6554) && decoded < highest) return decoded;
  }

  int lag = unusable ? s.last : newest;
  if (!stable) {
    lag = newest;
    if (!voiced) {
      Zpp16s sorted[5];
      std::copy_n(s.past, 5, sorted);
      std::sort(sorted, sorted + 5);
      const int width = std::min(sorted[4] - sorted[2], 40);
      const Zpp16s offset = mulQ15(static_cast<Zpp16s>(width >> 1), nextRandom(s.seed));
      lag = addSat16(mulQ15(sat16(sorted[2] + sorted[3] + sorted[4]), 10923), offset);
    }
  }
  return std::clamp(lag, lowest, highest);
}

}  // namespace

ZppStatus zppsAdaptiveCodebookDecodeInit_AMRWB_16s(void* state) {
  if (anyNull(state)) return zppStsNullPointer;
  const LagState fresh;
  std::memcpy(state, &fresh, sizeof fresh);
  return zppStsOk;
}

ZppStatus zppsAdaptiveCodebookDecodeReset_AMRWB_16s(void* state) {
  if (anyNull(state)) return zppStsNullPointer;
  LagState s;
  std::memcpy(&s, state, sizeof s);
  s.last = LagState{}.last;
  std::memcpy(state, &s, sizeof s);
  return zppStsOk;
}

ZppStatus zppsAdaptiveCodebookDecode_AMRWB_16s(Zpp16s index, const Zpp16s* gainHistory, Zpp16s* excitation, Zpp16s* lag,
                                               Zpp16s* fraction, int subframe, int badFrame, int unusable, void* state,
                                               ZppSpeechRate rate) {
  if (anyNull(gainHistory, excitation, lag, fraction, state)) return zppStsNullPointer;
  if (outside(subframe, 0, 3) || outside(badFrame, 0, 1) || outside(unusable, 0, 1)) return zppStsOutOfRange;
  if (!isSpeechRate(rate)) return zppStsOutOfRange;
  ownAdaptiveCodebookDecode_AMRWB_16s(index, gainHistory, excitation, lag, fraction, subframe, badFrame != 0, unusable != 0,
                                      state, modeOf(rate));
  return zppStsOk;
}

void ownAdaptiveCodebookDecode_AMRWB_16s(int index, const Zpp16s* gainHistory, Zpp16s* excitation, Zpp16s* lag,
                                         Zpp16s* fraction, int subframe, bool badFrame, bool unusable, void* state, Mode mode) {
  LagState s;
  std::memcpy(&s, state, sizeof s);
  const bool absolute = codesAbsolute(subframe, mode);
  const int width = (absolute ? 9 : 6) - (hasLowRate(mode) ? 1 : 0);
  PitchLag decoded = decodedLag(index & ((1 << width) - 1), absolute, s.rangeStart, mode);
  if (absolute) s.rangeStart = static_cast<Zpp16s>(rangeAround(decoded.samples));
  if (badFrame) {
    decoded = {concealedLag(decoded.samples, gainHistory, unusable, s), 0};
  } else {
    std::copy_backward(s.past, s.past + 4, s.past + 5);
    s.past[0] = s.last = static_cast<Zpp16s>(decoded.samples);
  }
  // Outside a state that Init wrote, nothing beyond the excitation's history is read.
  decoded.samples = std::clamp(decoded.samples, kMinLag, kMaxLag);
  *lag = static_cast<Zpp16s>(decoded.samples);
  *fraction = static_cast<Zpp16s>(decoded.quarters);
  ownPredLt_AMRWB_16s_I(excitation, decoded.samples, decoded.quarters);
  std::memcpy(state, &s, sizeof s);
}
