// Pitch postfilter (ITU-T G.723.1 clause 3.6).
#include <algorithm>

#include "core/checks.h"
#include "core/fixed_point.h"
#include "g723/arithmetic.h"
#include "g723/lag_correlations.h"
#include "g723/postfilter/kernels.h"
#include "g723/tables.h"

using namespace g723;
using namespace zpp;

namespace {

constexpr int kMaxLag = 142, kReach = kNearLags / 2;

// One direction: the lag with the largest correlation, 0 when none is positive, and its energy
struct Direction {
  int lag = 0;
  Zpp32s correlation = 0, energy = 0;
};

Direction searchedBack(const Zpp16s* src, Zpp32s energy, int lag) {
  const LagCorrelations lags = correlateLags(src, energy, kSubframe, src - lag - kReach, kNearLags);
  Direction best;
  for (int i = kNearLags - 1; i >= 0; --i)  // from the shortest lag on
    if (lags.correlation[i] > best.correlation) best = {i - lag - kReach, lags.correlation[i], lags.energy[i]};
  return best;
}

// room: samples of the frame behind the subframe
Direction searchedForward(const Zpp16s* src, Zpp32s energy, int lag, int room) {
  const int first = lag - kReach, count = std::min(room - first + 1, kNearLags);
  Direction best;
  if (count < 1) return best;
  const LagCorrelations lags = correlateLags(src, energy, kSubframe, src + first, count);
  for (int i = 0; i < count; ++i)
    if (lags.correlation[i] > best.correlation) best = {first + i, lags.correlation[i], lags.energy[i]};
  return best;
}

}  // namespace

ZppStatus zppsPitchPostFilterSearch_G723_16s(const Zpp16s* src, Zpp16s* filterLag, Zpp16s* gain, Zpp16s* scale, Zpp16s lag,
                                             int subframe, ZppSpeechRate rate) {
  if (anyNull(src, filterLag, gain, scale)) return zppStsNullPointer;
  if (outside(subframe, 0, 3) || !isRate(rate)) return zppStsOutOfRange;
  if (outside<int>(lag, 18, 141)) return zppStsBadCodedParam;
  const PitchPostFilter filter = ownPitchPostFilterSearch_G723_16s(src, lag, subframe, rate);
  *filterLag = static_cast<Zpp16s>(filter.lag);
  *gain = filter.gain;
  *scale = filter.scale;
  return zppStsOk;
}

ZppStatus zppsPitchPostFilter_G723_16s(const Zpp16s* src, Zpp16s* dst, Zpp16s filterLag, Zpp16s gain, Zpp16s scale) {
  if (anyNull(src, dst)) return zppStsNullPointer;
  if (outside<int>(filterLag, -kHistory, kHistory)) return zppStsBadArgument;
  ownPitchPostFilter_G723_16s(src, dst, {filterLag, gain, scale});
  return zppStsOk;
}

PitchPostFilter ownPitchPostFilterSearch_G723_16s(const Zpp16s* src, int lag, int subframe, ZppSpeechRate rate) {
  const Zpp16s* speech = src + kHistory + kSubframe * subframe;
  const int centre = std::min(lag, kMaxLag);
  const Zpp32s energy = zpp::energy(speech, kSubframe);
  const Direction back = searchedBack(speech, energy, centre);
  const Direction forward = searchedForward(speech, energy, centre, kFrame - kSubframe * (subframe + 1));
  PitchPostFilter filter{0, 0, 32767};
  if (back.lag == 0 && forward.lag == 0) return filter;

  const int norm = norm32(std::max({energy, back.correlation, back.energy, forward.correlation, forward.energy}));
  const auto normalised = [norm](Zpp32s x) { return high16(shlSat32(x, norm)); };
  struct {
    int lag;
    Zpp16s correlation, energy;
  } const b{back.lag, normalised(back.correlation), normalised(back.energy)},
      f{forward.lag, normalised(forward.correlation), normalised(forward.energy)};
  const bool takesBack = f.lag == 0 || (b.lag != 0 && mulDbl(mulRoundQ15(b.correlation, b.correlation), f.energy) >
                                                          mulDbl(mulRoundQ15(f.correlation, f.correlation), b.energy));
  const auto& best = takesBack ? b : f;
  const Zpp16s own = normalised(energy);
  filter.lag = best.lag;
  if (mulDbl(best.correlation, best.correlation) <= mulDbl(own, best.energy) >> 2) return filter;

  const Zpp16s most = LpfConstTable[rate == ZPP_RATE_6300 ? 0 : 1];
  const Zpp16s gain = best.correlation >= best.energy ? most : mulQ15(divQ15(best.correlation, best.energy), most);
  // Half the energy of src[n] + gain src[n + lag] against that of src
  const Zpp32s half = fromHigh16(own) >> 1;
  const Zpp32s sum = addSat32(macDbl(half, best.correlation, gain), mulDbl(best.energy, mulQ15(gain, gain)) >> 1);
  filter.scale = squareRoot(fromHigh16(quotient(half, roundHigh16(sum))));
  filter.gain = mulQ15(gain, filter.scale);
  return filter;
}

void ownPitchPostFilter_G723_16s(const Zpp16s* src, Zpp16s* dst, const PitchPostFilter& filter) {
  for (int n = 0; n < kSubframe; ++n)
    dst[n] = roundHigh16(macDbl(mulDbl(src[n], filter.scale), src[n + filter.lag], filter.gain));
}
