// Closed-loop search of the adaptive codebook: ITU-T G.729 clause 3.7, Annex A clause A.3.7, Annex D clause D.4.
#include <cstring>
#include <initializer_list>

#include "core/checks.h"
#include "core/fixed_point.h"
#include "core/kernels.h"
#include "g729/pitch/kernels.h"
#include "lpc/kernels.h"

using namespace zpp;

namespace {

constexpr int kSubframe = 40;
constexpr int kPast = 154;  // samples of past excitation
constexpr int kLeastLag = 20, kMostLag = 143;
constexpr int kMostFractionalLag = 84;  // of subframe 0: longer delays are integers
constexpr int kReach = 4;               // correlations beside the range, for the interpolation
constexpr int kMostLags = 10;           // of a search range

struct LagRange {
  int least, most;
};

// The delays of a subframe: 3 below to 3 above the open-loop delay, or 5 below to 4 above the lag of subframe 0
LagRange searchRange(int delay, int subframe) {
  const int below = subframe == 0 ? 3 : 5, width = subframe == 0 ? 6 : 9;
  const int least = delay - below < kLeastLag ? kLeastLag : delay - below;
  return least + width > kMostLag ? LagRange{kMostLag - width, kMostLag} : LagRange{least, least + width};
}

// Index of the largest of count values, the last of equals
int lastLargest(const Zpp16s* values, int count) {
  int best = 0;
  for (int i = 1; i < count; ++i)
    if (values[i] >= values[best]) best = i;
  return best;
}

// The best fraction of first..last beside an integer delay; two thirds become one third of the neighbour.
PitchDelay refine(const Zpp16s* corr, int lag, int first, int last) {
  const int fraction = ownBestFraction_G729_16s(corr, first, last);
  if (fraction == -2) return {lag - 1, 1};
  if (fraction == 2) return {lag + 1, -1};
  return {lag, fraction};
}

// The exported functions: the same checks and the same use of the excitation buffer for all three searches
template <class Search>
ZppStatus search(Search kernel, Zpp16s olDelay, const Zpp16s* target, const Zpp16s* impulse, Zpp16s* exc, int subframe,
                 Zpp16s* delay) {
  if (anyNull(target, impulse, exc, delay)) return zppStsNullPointer;
  if (outside(int{olDelay}, 18, 145)) return zppStsOutOfRange;
  if (outside(subframe, 0, 1)) return zppStsOutOfRange;
  const PitchDelay best = kernel(olDelay, target, impulse, exc + kPast, subframe);
  delay[0] = static_cast<Zpp16s>(best.lag);
  delay[1] = static_cast<Zpp16s>(best.fraction);
  return zppStsOk;
}

}  // namespace

PitchDelay ownClosedLoopPitchSearch_G729_16s(const Zpp16s* corr, int subframe, int tMin, int tMax) {
  const int best = lastLargest(corr + kReach, tMax - tMin + 1);
  if (subframe == 0 && tMin + best > kMostFractionalLag) return {tMin + best, 0};
  return refine(corr + kReach + best, tMin + best, -2, 2);
}

PitchDelay ownAdaptiveCodebookSearch_G729_16s(int delay, const Zpp16s* target, const Zpp16s* impulse, Zpp16s* exc,
                                              int subframe) {
  const LagRange range = searchRange(delay, subframe);
  Zpp16s corr[kMostLags + 2 * kReach];
  ownMeanSquareWeightedError_16s(target, impulse, exc, range.least - kReach, range.most + kReach, corr);
  const PitchDelay best = ownClosedLoopPitchSearch_G729_16s(corr, subframe, range.least, range.most);
  ownDecodeAdaptiveVector_G729_16s_I(best.lag, best.fraction, exc);
  return best;
}

PitchDelay ownAdaptiveCodebookSearch_G729A_16s(int delay, const Zpp16s* target, const Zpp16s* impulse, Zpp16s* exc,
                                               int subframe) {
  const LagRange range = searchRange(delay, subframe);
  Zpp16s filtered[kSubframe];
  ownCrossCorr_NormM_16s(target, impulse, kSubframe, filtered);
  const int lag = ownCrossCorrLagMax_Inv_16s(filtered, exc, kSubframe, range.least, range.most).lag;
  ownDecodeAdaptiveVector_G729_16s_I(lag, 0, exc);
  if (subframe == 0 && lag > kMostFractionalLag) return {lag, 0};

  const auto correlation = [&] { return sat32(2 * ownDotProd_16s(filtered, exc, kSubframe)); };
  Zpp16s vector[kSubframe];
  std::memcpy(vector, exc, sizeof vector);
  Zpp32s most = correlation();
  int best = 0;
  for (const int fraction : {-1, 1}) {
    ownDecodeAdaptiveVector_G729_16s_I(lag, fraction, exc);
    const Zpp32s value = correlation();
    if (value <= most) continue;
    most = value;
    best = fraction;
    std::memcpy(vector, exc, sizeof vector);
  }
  std::memcpy(exc, vector, sizeof vector);
  return {lag, best};
}

PitchDelay ownAdaptiveCodebookSearch_G729D_16s(int delay, const Zpp16s* target, const Zpp16s* impulse, Zpp16s* exc,
                                               int subframe) {
  const LagRange range = searchRange(delay, subframe);
  Zpp16s corr[kMostLags + 2 * kReach];
  ownMeanSquareWeightedError_16s(target, impulse, exc, range.least - kReach, range.most + kReach, corr);
  const int index = lastLargest(corr + kReach, range.most - range.least + 1);
  const Zpp16s* centre = corr + kReach + index;
  PitchDelay best{range.least + index, 0};
  if (subframe == 0) {
    if (best.lag <= kMostFractionalLag) best = refine(centre, best.lag, -2, 2);
  } else {
    // The four bits of the second delay have room for thirds next to the centre of the range only.
    switch (best.lag - (range.most - 4)) {
      case -2:
        best = refine(centre, best.lag, 0, 2);
        break;
      case -1:
      case 0:
        best = refine(centre, best.lag, -2, 2);
        break;
      case 1:
        best = refine(centre, best.lag, -2, 0);
        break;
      default:
        break;
    }
  }
  ownDecodeAdaptiveVector_G729_16s_I(best.lag, best.fraction, exc);
  return best;
}

ZppStatus zppsAdaptiveCodebookSearch_G729_16s(Zpp16s olDelay, const Zpp16s* target, const Zpp16s* impulse, Zpp16s* exc,
                                              int subframe, Zpp16s* delay) {
  return search(ownAdaptiveCodebookSearch_G729_16s, olDelay, target, impulse, exc, subframe, delay);
}

ZppStatus zppsAdaptiveCodebookSearch_G729A_16s(Zpp16s olDelay, const Zpp16s* target, const Zpp16s* impulse, Zpp16s* exc,
                                               int subframe, Zpp16s* delay) {
  return search(ownAdaptiveCodebookSearch_G729A_16s, olDelay, target, impulse, exc, subframe, delay);
}

ZppStatus zppsAdaptiveCodebookSearch_G729D_16s(Zpp16s olDelay, const Zpp16s* target, const Zpp16s* impulse, Zpp16s* exc,
                                               int subframe, Zpp16s* delay) {
  return search(ownAdaptiveCodebookSearch_G729D_16s, olDelay, target, impulse, exc, subframe, delay);
}

ZppStatus _zppsMeanSquareWeightedError_16s(const Zpp16s* target, const Zpp16s* impulse, const Zpp16s* exc, int tMin, int tMax,
                                           Zpp16s* corr) {
  ownMeanSquareWeightedError_16s(target, impulse, exc + kPast, tMin, tMax, corr);
  return zppStsOk;
}

ZppStatus _zppsClosedLoopPitchSearch_G729_16s(const Zpp16s* corr, int subframe, int tMin, int tMax, Zpp16s* frac,
                                              Zpp16s* delay) {
  const PitchDelay best = ownClosedLoopPitchSearch_G729_16s(corr, subframe, tMin, tMax);
  *frac = static_cast<Zpp16s>(best.fraction);
  *delay = static_cast<Zpp16s>(best.lag);
  return zppStsOk;
}
