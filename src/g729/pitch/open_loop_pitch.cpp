// Open-loop pitch analysis of the weighted speech: ITU-T G.729 clause 3.4, and the decimated form of Annex A, clause A.3.4.
#include <initializer_list>

#include "core/checks.h"
#include "core/fixed_point.h"
#include "core/kernels.h"
#include "g729/pitch/kernels.h"
#include "g729/pitch/normalised_correlation.h"
#include "lpc/kernels.h"

using namespace zpp;

namespace {

constexpr int kLeastLag = 20, kMiddleLags = 40, kLongLags = 80, kMostLag = 143;  // the first delays of the three sections
constexpr int kFrame = 80;
constexpr int kSpan = kMostLag + kFrame;
constexpr int kHalfFrame = kFrame / 2;
constexpr Zpp64s kMostEnergy = 1073741823;  // the largest sum of squares that can be doubled in 32 bits

// Sums whose every step saturates. The smallest lag wins a tie.
LagMax lagMaxSat(const Zpp16s* src, int minLag, int maxLag) {
  LagMax best{kMin32, minLag};
  for (int lag = minLag; lag <= maxLag; ++lag) {
    const Zpp32s sum = dotSat(src, src - lag, kFrame);
    if (sum > best.value) best = {sum, lag};
  }
  return best;
}

// A section's best delay and its normalised correlation
struct Candidate {
  int lag;
  Zpp16s norm;
};

// The signal of Annex A split in two, so that products of every second sample are neighbours.
class Phases {
 public:
  explicit Phases(const Zpp16s* signal) {
    ownSplitPairs_16s(signal - kMostLag, odd_, even_, kSpan / 2);
    odd_[kSpan / 2] = signal[kFrame - 1];
  }
  // c[lag] = twice the correlation at a delay for all delays of the sections, even ones only in the last
  void correlate(Zpp32s* c) const {
    constexpr int kEvenLags = (kMostLag - kLeastLag) / 2 + 1, kOddLags = (kLongLags - kLeastLag) / 2;
    // No correlation exceeds the root of the product of its energies: below 2^30 a sum modulo 2^32 is exact.
    if (ownDotProd_16s(even_, even_, kSpan / 2) <= kMostEnergy && ownDotProd_16s(odd_, odd_, kSpan / 2 + 1) <= kMostEnergy) {
      Zpp32s sums[kEvenLags];
      ownCorr_16s32s(current(), delayed(kMostLag - 1), kHalfFrame, sums, kEvenLags);
      for (int k = 0; k < kEvenLags; ++k) c[kMostLag - 1 - 2 * k] = 2 * sums[k];
      ownCorr_16s32s(current(), delayed(kLongLags - 1), kHalfFrame, sums, kOddLags);
      for (int k = 0; k < kOddLags; ++k) c[kLongLags - 1 - 2 * k] = 2 * sums[k];
      return;
    }
    for (int lag = kLeastLag; lag < kMostLag; lag += lag < kLongLags ? 1 : 2) c[lag] = correlation(lag);
  }
  Zpp32s correlation(int lag) const { return sat32(2 * ownDotProd_16s(current(), delayed(lag), kHalfFrame)); }
  Candidate normalised(LagMax best) const {
    const Zpp16s* past = delayed(best.lag);
    return {best.lag, low16(overRoot(best.value, sat32(2 * ownDotProd_16s(past, past, kHalfFrame) + 1)))};
  }

 private:
  const Zpp16s* current() const { return even_ + kMostLag / 2; }
  const Zpp16s* delayed(int lag) const { return (lag % 2 == 0 ? even_ : odd_) + (kMostLag - lag) / 2; }

  Zpp16s even_[kSpan / 2], odd_[kSpan / 2 + 1];  // signal[-142], [-140].. and signal[-143], [-141]..
};

LagMax largest(const Zpp32s* corr, int first, int last, int step) {
  LagMax best{kMin32, first};
  for (int lag = first; lag <= last; lag += step)
    if (corr[lag] > best.value) best = {corr[lag], lag};
  return best;
}

// Raises the normalised correlation of a candidate of which another one is nearly the double or the triple.
void favour(Candidate& candidate, int multiple, Zpp16s share) {
  const int fromDouble = 2 * candidate.lag - multiple, fromTriple = 3 * candidate.lag - multiple;
  if (-5 < fromDouble && fromDouble < 5) candidate.norm = addSat16(candidate.norm, share);
  if (-7 < fromTriple && fromTriple < 7) candidate.norm = addSat16(candidate.norm, share);
}

}  // namespace

int ownOpenLoopPitchSearch_G729_16s(const Zpp16s* wsp) {
  constexpr Zpp64s kQuiet = 524288;
  constexpr Zpp16s kFavour = 27853;  // 0.85 in Q15

  Zpp16s copy[kSpan];
  const Zpp16s* signal = wsp;
  const Zpp64s energy = ownDotProd_16s(wsp - kMostLag, wsp - kMostLag, kSpan);
  bool loud = false;
  if (energy > kMostEnergy || energy < kQuiet) {
    signal = copy + kMostLag;
    if (energy < kQuiet) {
      ownLShiftC_16s(wsp - kMostLag, copy, kSpan, 3);
    } else {
      ownRShiftC_16s(wsp - kMostLag, copy, kSpan, 3);
      loud = ownDotProd_16s(copy, copy, kSpan) > kMostEnergy;
    }
  }
  // No correlation, nor a part of one, exceeds the energy of the whole: only a loud signal can saturate a doubled sum.
  const auto candidate = [&](int minLag, int maxLag) -> Candidate {
    LagMax best;
    if (loud) {
      best = lagMaxSat(signal, minLag, maxLag);
    } else {
      best = ownAutoCorrLagMax_Inv_16s(signal, kFrame, minLag, maxLag);
      best.value *= 2;
    }
    const Zpp16s* past = signal - best.lag;
    return {best.lag, low16(overRoot(best.value, sat32(2 * ownDotProd_16s(past, past, kFrame))))};
  };
  const Candidate longest = candidate(kLongLags, kMostLag);
  const Candidate middle = candidate(kMiddleLags, kLongLags - 1);
  const Candidate shortest = candidate(kLeastLag, kMiddleLags - 1);

  int lag = longest.lag;
  Zpp16s threshold = mulQ15(longest.norm, kFavour);
  if (threshold < middle.norm) {
    threshold = mulQ15(middle.norm, kFavour);
    lag = middle.lag;
  }
  return threshold < shortest.norm ? shortest.lag : lag;
}

int ownOpenLoopPitchSearch_G729A_16s(const Zpp16s* wsp) {
  constexpr Zpp32s kQuiet = 1048576;
  constexpr Zpp16s kFifth = 6554;  // 0.2 in Q15

  Zpp16s copy[kSpan];
  const Zpp16s* signal = wsp;
  Zpp32s energy;
  const bool loud = ownDotProd_G729A_16s32s(wsp - kMostLag, wsp - kMostLag, kSpan, &energy);
  if (loud || energy < kQuiet) {
    // The energy is that of every second sample: the others may saturate.
    (loud ? ownRShiftC_16s : ownLShiftCSat_16s)(wsp - kMostLag, copy, kSpan, 3);
    signal = copy + kMostLag;
  }
  const Phases phases(signal);
  Zpp32s corr[kMostLag + 1];
  phases.correlate(corr);

  Candidate shortest = phases.normalised(largest(corr, kLeastLag, kMiddleLags - 1, 1));
  Candidate middle = phases.normalised(largest(corr, kMiddleLags, kLongLags - 1, 1));
  const LagMax coarse = largest(corr, kLongLags, kMostLag - 1, 2);
  LagMax fine = coarse;
  for (const int lag : {coarse.lag + 1, coarse.lag - 1}) {
    const Zpp32s value = phases.correlation(lag);
    if (value > fine.value) fine = {value, lag};
  }
  const Candidate longest = phases.normalised(fine);

  favour(middle, longest.lag, static_cast<Zpp16s>(longest.norm >> 2));
  favour(shortest, middle.lag, mulQ15(middle.norm, kFifth));
  const Candidate& shorter = shortest.norm < middle.norm ? middle : shortest;
  return shorter.norm < longest.norm ? longest.lag : shorter.lag;
}

ZppStatus zppsOpenLoopPitchSearch_G729_16s(const Zpp16s* wsp, Zpp16s* delay) {
  if (anyNull(wsp, delay)) return zppStsNullPointer;
  *delay = static_cast<Zpp16s>(ownOpenLoopPitchSearch_G729_16s(wsp));
  return zppStsOk;
}

ZppStatus zppsOpenLoopPitchSearch_G729A_16s(const Zpp16s* wsp, Zpp16s* delay) {
  if (anyNull(wsp, delay)) return zppStsNullPointer;
  *delay = static_cast<Zpp16s>(ownOpenLoopPitchSearch_G729A_16s(wsp));
  return zppStsOk;
}
