// Detection of stationary background noise in the decoded speech (3GPP TS 26.091 clause 6.1).
#include <algorithm>
#include <cstring>

#include "amr/arithmetic.h"
#include "amr/synthesis/kernels.h"
#include "core/checks.h"

using namespace zpp;
using namespace zpp::amr;

ZppStatus zppsBackgroundNoise_GSMAMR_16s(const Zpp16s* speech, const Zpp16s* pitchGainHist, Zpp16s* energyHist,
                                         Zpp16s* noiseCount, Zpp16s* voicedHangover, Zpp16s* backgroundNoise) {
  if (anyNull(speech, pitchGainHist, energyHist, noiseCount, voicedHangover, backgroundNoise)) return zppStsNullPointer;
  *backgroundNoise = ownBackgroundNoise_GSMAMR_16s(speech, pitchGainHist, energyHist, noiseCount, voicedHangover) ? 1 : 0;
  return zppStsOk;
}

bool ownBackgroundNoise_GSMAMR_16s(const Zpp16s* speech, const Zpp16s* pitchGainHist, Zpp16s* energyHist, Zpp16s* noiseCount,
                                   Zpp16s* voicedHangover) {
  constexpr int kHistory = 60, kOlder = 56, kLatest = 20;
  const Zpp16s level = high16(shlSat32(zpp::energy(speech, kFrame), 2));

  const Zpp16s quietest = *std::min_element(energyHist, energyHist + kHistory), floor = shlSat16(quietest, 4);
  const Zpp16s loudest = *std::max_element(energyHist, energyHist + kOlder);
  const Zpp16s loudestLately = *std::max_element(energyHist + kHistory - kLatest, energyHist + kHistory);
  const bool noise = loudest > 20 && level < 17578 && level > 20 && (level < floor || loudestLately < 1953);
  *noiseCount = noise ? std::min(Zpp16s{30}, addSat16(*noiseCount, 1)) : Zpp16s{0};

  std::memmove(energyHist, energyHist + 1, (kHistory - 1) * sizeof *energyHist);
  energyHist[kHistory - 1] = level;

  const Zpp16s limit = *noiseCount > 15 ? 16383 : *noiseCount > 8 ? 15565 : 13926;
  const bool voiced = (*noiseCount > 20 ? median(pitchGainHist, 9) : median(pitchGainHist + 4, 5)) > limit;
  *voicedHangover = voiced ? Zpp16s{0} : std::min(Zpp16s{10}, addSat16(*voicedHangover, 1));
  return *noiseCount > 1;
}
