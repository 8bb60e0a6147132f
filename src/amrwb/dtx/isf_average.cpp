// Parameters of the background noise: frame energy, and the average spectrum of the last eight frames (3GPP TS 26.192 clause
// 5.1).
#include <algorithm>

#include "amrwb/dtx/kernels.h"
#include "core/checks.h"

using namespace zpp;
using namespace zpp::amrwb;

ZppStatus zppsLogEnergy_AMRWB_16s(const Zpp16s* src, Zpp16s* logEnergy) {
  if (anyNull(src, logEnergy)) return zppStsNullPointer;
  *logEnergy = ownLogEnergy_AMRWB_16s(src);
  return zppStsOk;
}

ZppStatus zppsISFAverageDTX_AMRWB_16s(const Zpp16s* isfHistory, const Zpp16s* logEnergyHistory, int hist, Zpp32s* distance,
                                      Zpp32s* sumDistance, Zpp16s* isf, Zpp16s* dither) {
  if (anyNull(isfHistory, logEnergyHistory, distance, sumDistance, isf, dither)) return zppStsNullPointer;
  if (outside(hist, 0, kDtxHistory - 1)) return zppStsOutOfRange;
  ownISFAverageDTX_AMRWB_16s(isfHistory, logEnergyHistory, hist, distance, sumDistance, isf, dither);
  return zppStsOk;
}

Zpp16s ownLogEnergy_AMRWB_16s(const Zpp16s* src) {
  Zpp16s exponent = 0, fraction = 0;
  ownLog2(energy(src, kFrame) >> 1, &exponent, &fraction);
  return addSat16(shlSat16(exponent, 7), shr16(fraction, 8));
}

namespace {

// The pairs of frames by age: the distances of the newest frame to the seven older ones, then those of the frame before it to
// its six older ones, and so on. Row r starts at kRow[r].
constexpr int kRow[kDtxHistory] = {0, 7, 13, 18, 22, 25, 27, 28};

Zpp32s distanceBetween(const Zpp16s* isf1, const Zpp16s* isf2) {
  Zpp32s sum = 0;
  for (int i = 0; i < kOrder; ++i) {
    const Zpp16s difference = subSat16(isf1[i], isf2[i]);
    sum = macDbl(sum, difference, difference);
  }
  return sum;
}

// Takes the oldest frame out of the sums and ages the others by one.
void forgetOldest(Zpp32s* distance, Zpp32s* sumDistance) {
  for (int i = 0; i < kDtxHistory - 1; ++i) sumDistance[i] = subSat32(sumDistance[i], distance[kRow[i + 1] - 1]);
  std::copy_backward(sumDistance, sumDistance + kDtxHistory - 1, sumDistance + kDtxHistory);
  sumDistance[0] = 0;
  for (int r = kDtxHistory - 2; r > 0; --r) std::copy(distance + kRow[r - 1], distance + kRow[r] - 1, distance + kRow[r]);
}

}  // namespace

void ownISFAverageDTX_AMRWB_16s(const Zpp16s* isfHistory, const Zpp16s* logEnergyHistory, int newest, Zpp32s* distance,
                                Zpp32s* sumDistance, Zpp16s* isf, Zpp16s* dither) {
  const auto vectorOfAge = [&](int age) { return isfHistory + kOrder * ((newest - age + kDtxHistory) % kDtxHistory); };

  forgetOldest(distance, sumDistance);
  for (int age = 1; age < kDtxHistory; ++age) {
    const Zpp32s d = distanceBetween(vectorOfAge(0), vectorOfAge(age));
    distance[age - 1] = d;
    sumDistance[0] = addSat32(sumDistance[0], d);
    sumDistance[age] = addSat32(sumDistance[age], d);
  }

  // The two frames farthest from all others give way to the nearest one where they lie too far off.
  const int nearest = static_cast<int>(std::min_element(sumDistance, sumDistance + kDtxHistory) - sumDistance);
  const int farthest = static_cast<int>(std::max_element(sumDistance, sumDistance + kDtxHistory) - sumDistance);
  int second = -1;
  Zpp32s secondLargest = kMin32;
  for (int i = 0; i < kDtxHistory; ++i) {
    if (i == farthest || sumDistance[i] <= secondLargest) continue;
    second = i;
    secondLargest = sumDistance[i];
  }
  const int norm = norm32(sumDistance[farthest]);
  const auto isOutlier = [&](Zpp32s sum) {
    return mulDbl(roundHigh16(shlSat32(sum, norm)), 14564) > shlSat32(sumDistance[nearest], norm);  // 1/2.25
  };
  const Zpp16s* vectors[kDtxHistory];
  for (int age = 0; age < kDtxHistory; ++age) vectors[age] = vectorOfAge(age);
  if (isOutlier(sumDistance[farthest])) vectors[farthest] = vectorOfAge(nearest);
  if (second >= 0 && isOutlier(secondLargest)) vectors[second] = vectorOfAge(nearest);
  for (int i = 0; i < kOrder; ++i) {
    Zpp32s sum = 0;
    for (const Zpp16s* vector : vectors) sum += vector[i];
    isf[i] = low16(sum >> 3);
  }

  // Spectrum or level that moves asks the decoder for dithering.
  Zpp32s spread = 0;
  Zpp16s meanEnergy = 0, energySpread = 0;
  for (int i = 0; i < kDtxHistory; ++i) {
    spread = addSat32(spread, sumDistance[i]);
    meanEnergy = addSat16(meanEnergy, logEnergyHistory[i]);
  }
  meanEnergy = shr16(meanEnergy, 3);
  for (int i = 0; i < kDtxHistory; ++i)
    energySpread = addSat16(energySpread, absSat16(subSat16(logEnergyHistory[i], meanEnergy)));
  *dither = spread >> 26 > 0 || energySpread > 180 ? 1 : 0;
}
