// Open-loop pitch search, and what the voice activity detectors measure with it (3GPP TS 26.090 clause 5.3, TS 26.094 clauses
// 3.3.3 to 3.3.5 and 4.3).
#include <algorithm>

#include "amr/arithmetic.h"
#include "amr/pitch/kernels.h"
#include "amr/pitch/tables.h"
#include "core/checks.h"
#include "lpc/kernels.h"

using namespace zpp;
using namespace zpp::amr;

ZppStatus zppsOpenLoopPitchSearchNonDTX_GSMAMR_16s(const Zpp16s* weighted, Zpp16s* lagMem, Zpp16s* gainFlag, Zpp16s* lags,
                                                   ZppSpeechRate rate) {
  if (anyNull(weighted, lagMem, gainFlag, lags)) return zppStsNullPointer;
  if (!isSpeechRate(rate)) return zppStsOutOfRange;
  ownOpenLoopPitchSearch_GSMAMR_16s(weighted, lagMem, gainFlag, lags, modeOf(rate), nullptr, nullptr);
  return zppStsOk;
}

ZppStatus zppsOpenLoopPitchSearchDTXVAD1_GSMAMR_16s(const Zpp16s* weighted, Zpp16s* lagMem, Zpp16s* vadMem, Zpp16s* gainFlag,
                                                    Zpp16s* lags, ZppSpeechRate rate) {
  if (anyNull(weighted, lagMem, vadMem, gainFlag, lags)) return zppStsNullPointer;
  if (!isSpeechRate(rate)) return zppStsOutOfRange;
  ownOpenLoopPitchSearch_GSMAMR_16s(weighted, lagMem, gainFlag, lags, modeOf(rate), vadMem, nullptr);
  return zppStsOk;
}

ZppStatus zppsOpenLoopPitchSearchDTXVAD2_GSMAMR_16s32s(const Zpp16s* weighted, Zpp16s* lagMem, Zpp16s* gainFlag, Zpp16s* lags,
                                                       Zpp32s* correlation, Zpp16s* ltpFlag, ZppSpeechRate rate) {
  if (anyNull(weighted, lagMem, gainFlag, lags, correlation, ltpFlag)) return zppStsNullPointer;
  if (!isSpeechRate(rate)) return zppStsOutOfRange;
  const Mode mode = modeOf(rate);
  Zpp32s sums[2] = {};
  ownOpenLoopPitchSearch_GSMAMR_16s(weighted, lagMem, gainFlag, lags, mode, nullptr, sums);
  const Zpp16s threshold = mode <= k515 ? 18022 : mode == k102 ? 19660 : 21299;  // 0.55, 0.6, 0.65 in Q15
  *ltpFlag = sums[0] > mulDpf16(sums[1], threshold) ? 1 : 0;
  correlation[0] = sums[0], correlation[1] = sums[1];
  return zppStsOk;
}

namespace {

constexpr int kMaxLag = 143;

// A block of weighted speech and the kMaxLag samples before it, scaled, with its correlations: at(t) is the doubled sum of
// speech[n] * speech[n - t], saturated at every step.
class Block {
 public:
  Block(const Zpp16s* weighted, int len, int minLag) : len_(len), lags_(kMaxLag - minLag + 1) {
    const int total = kMaxLag + len;
    const Zpp16s* from = weighted - kMaxLag;
    const Zpp32s whole = energy(from, total);
    shift_ = whole == kMax32 ? 3 : whole < 1 << 20 ? -3 : 0;
    if (shift_ < 0) {
      ownLShiftC_16s(from, scaled_, total, -shift_);  // magnitudes are below 724
    } else {
      ownRShiftC_16s(from, scaled_, total, shift_);
    }
    // Partial sums are at most the energy of all samples: where that does not saturate, they do not either.
    if (shift_ <= 0 || energy(scaled_, total) < kMax32) {
      ownCorr_16s32s(speech(), scaled_, len, corr_, lags_);
      for (int k = 0; k < lags_; ++k) corr_[k] *= 2;
    } else {
      for (int k = 0; k < lags_; ++k) corr_[k] = dotProduct(speech(), scaled_ + k, len);
    }
  }

  Zpp32s at(int lag) const { return corr_[kMaxLag - lag]; }
  Zpp32s energyAt(int lag) const { return energy(speech() - lag, len_); }
  Zpp32s correlationAt1() const { return dotProduct(speech(), speech() - 1, len_); }
  int shift() const { return shift_; }
  int minLag() const { return kMaxLag - lags_ + 1; }

 private:
  const Zpp16s* speech() const { return scaled_ + kMaxLag; }

  int len_, lags_, shift_;
  Zpp16s scaled_[kMaxLag + kFrame];
  Zpp32s corr_[kMaxLag];
};

// What the detectors want of a search
struct Measurements {
  Zpp16s* vadMem;  // option 1, or null
  Zpp32s* sums;    // option 2, or null

  // A block begins (not at 10.2 kbit/s, where it only shifts the register).
  void age(int mode) const {
    if (vadMem == nullptr) return;
    vadMem[0] = static_cast<Zpp16s>(vadMem[0] >> 1);
    if (mode <= k515) vadMem[0] = static_cast<Zpp16s>((vadMem[0] >> 1) | 0x2000);
  }
  void tone(Zpp32s peak, Zpp32s peakEnergy) const {
    if (vadMem == nullptr) return;
    const Zpp16s upper = roundHigh16(peakEnergy);
    if (upper > 0 && msuDbl(peak, upper, 21298) > 0) vadMem[0] |= 0x4000;
  }
  void add(Zpp32s peak, Zpp32s peakEnergy) const {
    if (sums == nullptr) return;
    sums[0] = addSat32(sums[0], peak);
    sums[1] = addSat32(sums[1], peakEnergy);
  }
  // Largest second difference of the correlations over the energy's first one: whether a high-passed signal would be as
  // periodic
  void highPassed(const Block& block) const {
    if (vadMem == nullptr) return;
    Zpp32s largest = kMin32;
    for (int t = kMaxLag - 1; t > block.minLag(); --t) {
      const Zpp32s second = subSat32(subSat32(shlSat32(block.at(t), 1), block.at(t + 1)), block.at(t - 1));
      if (absSat32(second) > largest) largest = absSat32(second);
    }
    const Zpp32s first = absSat32(subSat32(shlSat32(block.energyAt(0), 1), shlSat32(block.correlationAt1(), 1)));
    const int shift1 = norm32(largest) - 1, shift2 = norm32(first);
    const Zpp16s numerator = high16(shlSat32(largest, shift1)), denominator = high16(shlSat32(first, shift2));
    const Zpp16s quotient = denominator != 0 ? divQ15(numerator, denominator) : Zpp16s{0};
    vadMem[1] = shiftRight16(quotient, shift1 - shift2);
  }
  void pitch(const Zpp16s* lags) const {
    if (vadMem == nullptr) return;
    int count = 0;
    for (int half = 0; half < 2; ++half) {
      if (absSat16(subSat16(vadMem[4], lags[half])) < 4) ++count;
      vadMem[4] = lags[half];
    }
    vadMem[2] = static_cast<Zpp16s>(vadMem[2] >> 1);
    if (addSat16(vadMem[3], count) >= 4) vadMem[2] |= 0x4000;
    vadMem[3] = static_cast<Zpp16s>(count);
  }
};

struct Peak {
  int lag;
  Zpp32s correlation, energy;
  Zpp16s strength;
};

Peak peakOf(const Block& block, int maxLag, int minLag, bool highestRate) {
  Peak peak = {minLag, block.at(minLag), 0, 0};  // the shortest lag of equals
  for (int t = minLag; t <= maxLag; ++t) peak.correlation = std::max(peak.correlation, block.at(t));
  while (block.at(peak.lag) != peak.correlation) ++peak.lag;
  peak.energy = block.energyAt(peak.lag);
  Zpp32s inverse = ownInvSqrt(peak.energy);
  if (highestRate) inverse = shlSat32(inverse, 1);
  const Zpp32s strength = mulDpf(toDpf(peak.correlation), toDpf(inverse));
  peak.strength = highestRate ? high16(shlSat32(shiftRight32(strength, block.shift()), 15)) : low16(strength);
  return peak;
}

// The strongest of the peaks of three ranges of lags; short lags are favoured, lest multiples of the pitch are taken for it.
Zpp16s searchRanges(const Block& block, Mode mode, const Measurements& vad) {
  constexpr Zpp16s kFavour = 27853;  // 0.85 in Q15
  vad.age(mode);
  const int minLag = block.minLag(), limits[4] = {kMaxLag + 1, 4 * minLag, 2 * minLag, minLag};
  Peak best = {};
  for (int range = 0; range < 3; ++range) {
    const Peak peak = peakOf(block, limits[range] - 1, limits[range + 1], mode == k122);
    vad.tone(peak.correlation, peak.energy);
    if (range == 0 || mulQ15(best.strength, kFavour) < peak.strength) best = peak;
  }
  vad.add(best.correlation, best.energy);
  return static_cast<Zpp16s>(best.lag);
}

// 10.2 kbit/s: the largest correlation, weighted towards short lags and towards the lags of the past.
Zpp16s searchWeighted(const Block& block, Zpp16s* lagMem, Zpp16s* gainFlag, const Measurements& vad) {
  const int oldLag = lagMem[5] < 20 ? 20 : lagMem[5] > kMaxLag ? kMaxLag : lagMem[5];
  Zpp32s largest = kMin32;
  int lag = kMaxLag;
  for (int t = kMaxLag; t >= block.minLag(); --t) {
    Zpp32s weighted = mulDpf16(block.at(t), corrWeight[107 + t]);
    if (lagMem[7] > 0) weighted = mulDpf16(weighted, corrWeight[123 - oldLag + t]);
    if (weighted >= largest) largest = weighted, lag = t;
  }
  const Zpp32s peak = block.at(lag), peakEnergy = block.energyAt(lag);
  if (vad.vadMem != nullptr) vad.vadMem[0] = static_cast<Zpp16s>(vad.vadMem[0] >> 1);
  vad.tone(peak, peakEnergy);
  vad.add(peak, peakEnergy);

  *gainFlag = roundHigh16(msuDbl(peak, roundHigh16(peakEnergy), 13107));  // 0.4 in Q15
  if (*gainFlag > 0) {
    for (int i = 4; i > 0; --i) lagMem[i] = lagMem[i - 1];
    lagMem[0] = static_cast<Zpp16s>(lag);
    lagMem[5] = median(lagMem, 5);
    lagMem[6] = 32767;
  } else {
    lagMem[5] = static_cast<Zpp16s>(lag);
    lagMem[6] = mulQ15(lagMem[6], 29491);
  }
  lagMem[7] = lagMem[6] < 9830 ? 0 : 1;
  return static_cast<Zpp16s>(lag);
}

}  // namespace

void ownOpenLoopPitchSearch_GSMAMR_16s(const Zpp16s* weighted, Zpp16s* lagMem, Zpp16s* gainFlag, Zpp16s* lags, Mode mode,
                                       Zpp16s* vadMem, Zpp32s* sums) {
  const Measurements vad = {vadMem, sums};
  const int blocks = mode <= k515 ? 1 : 2, len = kFrame / blocks, minLag = mode == k122 ? 18 : 20;
  Zpp16s found[2], flags[2] = {};
  for (int i = 0; i < blocks; ++i) {
    const Block block(weighted + len * i, len, minLag);
    found[i] = mode == k102 ? searchWeighted(block, lagMem, flags + i, vad) : searchRanges(block, mode, vad);
    if (i == blocks - 1) vad.highPassed(block);
  }
  if (blocks == 1) found[1] = found[0];
  vad.pitch(found);
  for (int half = 0; half < 2; ++half) {
    lags[half] = found[half];
    gainFlag[half] = flags[half];
  }
}
