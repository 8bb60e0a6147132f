// Open-loop pitch analysis of the weighted speech in single precision: ITU-T G.729 Annex A clause A.3.4, as in Annex C.
#include <cmath>
#include <cstdlib>
#include <initializer_list>

#include "core/checks.h"
#include "g729/dot_product_32f.h"
#include "g729/pitch/kernels.h"

using namespace zpp;

namespace {

constexpr int kLeastLag = 20, kMiddleLags = 40, kLongLags = 80, kMostLag = 143;  // the first delays of the three sections
constexpr int kFrame = 80;
constexpr int kSpan = kMostLag + kFrame;
constexpr int kLanes = 8;  // delays correlated side by side

// A section's best delay and its normalised correlation
struct Candidate {
  int lag;
  Zpp64f norm;
};

// The signal split in two, so that products of every second sample are neighbours, and so are delays of the same parity.
class Phases {
 public:
  explicit Phases(const Zpp32f* signal) {
    for (int k = 0; k < kSpan / 2; ++k) {
      odd_[k] = signal[2 * k - kMostLag];
      even_[k] = signal[2 * k + 1 - kMostLag];
    }
    odd_[kSpan / 2] = signal[kFrame - 1];
  }
  // c[lag] = about the correlation at a delay, for all delays of the sections, even ones only in the last
  void correlate(Zpp32f* c) const {
    correlate(kMostLag - 1, c);
    correlate(kLongLags - 1, c);
  }
  Zpp64f correlation(int lag) const { return dotProduct40(current(), delayed(lag)); }
  Candidate normalised(int lag) const {
    const Zpp32f* past = delayed(lag);
    return {lag, correlation(lag) / std::sqrt(0.01 + dotProduct40(past, past))};
  }

 private:
  const Zpp32f* current() const { return even_ + kMostLag / 2; }
  const Zpp32f* delayed(int lag) const { return (lag % 2 == 0 ? even_ : odd_) + (kMostLag - lag) / 2; }

  // Delays mostLag, mostLag - 2 .. down to the least, and those that complete the last eight
  void correlate(int mostLag, Zpp32f* c) const {
    for (int lag = mostLag; lag >= kLeastLag; lag -= 2 * kLanes) {
      const Zpp32f *x = current(), *past = delayed(lag);
      Zpp32f sum[kLanes] = {};
      for (int n = 0; n < kFrame / 2; ++n)
        for (int k = 0; k < kLanes; ++k) sum[k] += x[n] * past[n + k];
      for (int k = 0; k < kLanes; ++k) c[lag - 2 * k] = sum[k];
    }
  }

  Zpp32f even_[kSpan / 2], odd_[kSpan / 2 + 1];  // signal[-142], [-140].. and signal[-143], [-141]..
};

// The delay of the largest, the first on ties
int largest(const Zpp32f* corr, int first, int last, int step) {
  int best = first;
  for (int lag = first; lag <= last; lag += step)
    if (corr[lag] > corr[best]) best = lag;
  return best;
}

// Raises the normalised correlation of a candidate of which another one is nearly the double or the triple.
void favour(Candidate& candidate, int multiple, Zpp64f share) {
  if (std::abs(2 * candidate.lag - multiple) < 5) candidate.norm += share;
  if (std::abs(3 * candidate.lag - multiple) < 7) candidate.norm += share;
}

int ownOpenLoopPitchSearch_G729A_32f(const Zpp32f* wsp) {
  const Phases phases(wsp);
  Zpp32f corr[kMostLag + 1];
  phases.correlate(corr);

  Candidate shortest = phases.normalised(largest(corr, kLeastLag, kMiddleLags - 1, 1));
  Candidate middle = phases.normalised(largest(corr, kMiddleLags, kLongLags - 1, 1));
  const int coarse = largest(corr, kLongLags, kMostLag - 1, 2);
  int fine = coarse;
  for (const int lag : {coarse + 1, coarse - 1})
    if (phases.correlation(lag) > phases.correlation(fine)) fine = lag;
  const Candidate longest = phases.normalised(fine);

  favour(middle, longest.lag, longest.norm / 4);
  favour(shortest, middle.lag, middle.norm / 5);
  const Candidate& shorter = shortest.norm < middle.norm ? middle : shortest;
  return shorter.norm < longest.norm ? longest.lag : shorter.lag;
}

}  // namespace

ZppStatus zppsOpenLoopPitchSearch_G729A_32f(const Zpp32f* wsp, Zpp16s* delay) {
  if (anyNull(wsp, delay)) return zppStsNullPointer;
  *delay = static_cast<Zpp16s>(ownOpenLoopPitchSearch_G729A_32f(wsp));
  return zppStsOk;
}
