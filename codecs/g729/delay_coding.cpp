#include "codecs/g729/delay_coding.h"

#include <algorithm>

namespace codecs::g729 {
namespace {

// The earliest delay, of the ten, that the second subframe can name
int earliestDelay(int firstDelay) { return std::clamp(firstDelay - 5, int{kShortestDelay}, kLongestDelay - 9); }

}  // namespace

Zpp16s delayCode(Rate rate, int subframe, const PitchDelay& delay, int firstDelay) {
  const auto [samples, thirds] = delay;
  if (subframe == 0) return static_cast<Zpp16s>(samples <= 85 ? 3 * samples - 58 + thirds : samples + 112);
  const int later = samples - earliestDelay(firstDelay);
  if (rate != Rate::kbit6) return static_cast<Zpp16s>(3 * later + 2 + thirds);
  // Thirds only in the middle of the range
  return static_cast<Zpp16s>(later < 3 ? later : later < 7 ? 3 * (later - 3) + thirds + 3 : later + 6);
}

PitchDelay decodeDelay(Zpp16s code) {
  if (code >= 197) return {static_cast<Zpp16s>(code - 112), 0};
  const int samples = (code + 2) / 3 + 19;
  return {static_cast<Zpp16s>(samples), static_cast<Zpp16s>(code - 3 * samples + 58)};
}

PitchDelay decodeDelay(Zpp16s code, Rate rate, int firstDelay) {
  const int earliest = earliestDelay(firstDelay);
  if (rate != Rate::kbit6) {
    const int samples = (code + 2) / 3 - 1;
    return {static_cast<Zpp16s>(earliest + samples), static_cast<Zpp16s>(code - 2 - 3 * samples)};
  }
  // Thirds only in the middle of the range
  if (code <= 3) return {static_cast<Zpp16s>(earliest + code), 0};
  if (code >= 12) return {static_cast<Zpp16s>(earliest + code - 6), 0};
  const int samples = (code + 7) / 3;
  return {static_cast<Zpp16s>(earliest + samples), static_cast<Zpp16s>(code + 6 - 3 * samples)};
}

}  // namespace codecs::g729
