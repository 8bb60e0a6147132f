// Taming: an estimate of how errors in the decoder's excitation would grow, and what it leaves of the gain codebooks (ITU-T
// G.723.1 clause 2.14).
#include <algorithm>

#include "core/checks.h"
#include "core/fixed_point.h"
#include "g723/arithmetic.h"
#include "g723/pitch/kernels.h"
#include "g723/tables.h"

using namespace g723;
using namespace zpp;

namespace {

constexpr int kZone = 30, kZones = 5;  // samples and number of the zones of past excitation, newest first
constexpr Zpp32s kErrorLimit = Zpp32s{1} << 30;
constexpr int kFullRows = 170, kShortLagRows = 85;

// delay / 30 with the standard's reciprocal: one too small where 60, 90 and 120 are met
constexpr int zoneOf(int delay) { return (delay * 1092) >> 15; }

}  // namespace

ZppStatus zppsTamingUpdate_G723_32s_I(Zpp32s* taming, Zpp16s lag, Zpp16s offset, Zpp16s gainIndex, ZppSpeechRate rate) {
  if (anyNull(taming)) return zppStsNullPointer;
  if (!isRate(rate)) return zppStsOutOfRange;
  if (outside<int>(lag, 18, 143) || outside<int>(offset, 0, 3) || lag + offset > 146) return zppStsBadCodedParam;
  if (outside(int{gainIndex}, 0, (ownTakesHighRateGains(lag, rate) ? kShortLagRows : kFullRows) - 1))
    return zppStsBadCodedParam;
  ownTamingUpdate_G723_32s_I(taming, lag, offset, gainIndex, rate);
  return zppStsOk;
}

int ownErrorTest_G723_32s(const Zpp32s* taming, int minDelay, int maxDelay, bool sine) {
  const int first = zoneOf(std::max(minDelay - 61, 1)), last = zoneOf(maxDelay + 2);
  Zpp32s worst = -1;
  for (int zone = first; zone <= last; ++zone) worst = std::max(worst, taming[zone]);
  return sine || worst > kErrorLimit ? 0 : (kErrorLimit - worst) >> 23;
}

void ownTamingUpdate_G723_32s_I(Zpp32s* taming, int lag, int offset, int gainIndex, ZppSpeechRate rate) {
  const Zpp16s gain = ownTakesHighRateGains(lag, rate) ? tabgain85[gainIndex] : tabgain170[gainIndex];  // Q13
  const auto grown = [&](int zone) { return addSat32(4, shlSat32(mul32Q15(taming[zone], gain), 2)); };
  const int delay = lag + offset - 1, zone = zoneOf(delay);
  Zpp32s newest, second;
  if (delay <= kZone) {
    newest = second = grown(0);
  } else if (kZone * (zone + 1) == delay) {
    newest = grown(zone - 1), second = grown(zone);
  } else {
    second = std::max(grown(zone - 1), grown(zone));
    newest = zone == 1 ? second : std::max(grown(zone - 2), grown(zone - 1));
  }
  std::copy_backward(taming, taming + kZones - 2, taming + kZones);
  taming[0] = newest;
  taming[1] = second;
}
