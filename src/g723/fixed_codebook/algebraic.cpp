// Algebraic codebook of 5.3 kbit/s (ITU-T G.723.1 clause 2.16, ACELP): four pulses on the even or the odd positions, one a
// track.
#include <algorithm>

#include "core/checks.h"
#include "core/fixed_point.h"
#include "g723/arithmetic.h"
#include "g723/fixed_codebook/kernels.h"

using namespace g723;
using namespace zpp;

namespace {

constexpr int kPairs = kPlaces;              // an even position and the odd one behind it share a place and their sign
constexpr int kPairsInside = kSubframe / 2;  // the last two lie behind the subframe
constexpr int kSearchTime = 120;             // a subframe's share: visits of the innermost loop

// Number of the place at an even position and the next one
constexpr int placeOf(int pair) { return kTrackPlaces * (pair % kTracks) + pair / kTracks; }

// Of either grid, by place
struct Correlations {
  Zpp16s of[2][kPlaces];
};

// Correlations of target and response, at most 14 bits, 0 behind the subframe
Correlations targetCorrelations(const Zpp16s* target, const Zpp16s* response) {
  Zpp32s sums[kSubframe];
  ownCorrelationChains_G723_16s32s(response, target, sums);
  Zpp32s largest = 0;
  for (const Zpp32s sum : sums) largest = std::max(largest, absSat32(sum));
  const int shift = 18 - std::min(norm32(largest), 16);
  Correlations correlations{};
  for (int n = 0; n < kSubframe; ++n) correlations.of[n % 2][placeOf(n / 2)] = low16(sums[n] >> shift);
  return correlations;
}

// Makes the sum of each pair positive. Returns which were negative.
void foldSigns(Correlations& correlations, bool* negative) {
  for (int place = 0; place < kPlaces; ++place) {
    Zpp16s &even = correlations.of[0][place], &odd = correlations.of[1][place];
    negative[place] = even + odd < 0;
    if (!negative[place]) continue;
    even = static_cast<Zpp16s>(-even);
    odd = static_cast<Zpp16s>(-odd);
  }
}

// The response scaled so that its correlations use the upper halves of 32 bits
void scaleResponse(const Zpp16s* response, Zpp16s* dst) {
  const Zpp32s energy = zpp::energy(response, kSubframe);
  const int shift = high16(energy) > 32000 ? -1 : norm32(energy) >> 1;
  for (int n = 0; n < kSubframe; ++n) dst[n] = shlSat16(response[n], shift);
}

// The correlations of the response at the even positions, with their signs; 0 behind the subframe. Those of one distance are
// sums that grow from the last position on.
void correlationMatrix(const Zpp16s* response, const bool* negative, Zpp16s (*matrix)[kPlaces]) {
  for (int pair = kPairsInside; pair < kPairs; ++pair)
    for (int place = 0; place < kPlaces; ++place) matrix[placeOf(pair)][place] = matrix[place][placeOf(pair)] = 0;
  const bool saturates = zpp::energy(response, kSubframe) == kMax32;
  for (int distance = 0; distance < kPairsInside; ++distance) {
    const Zpp16s* delayed = response + 2 * distance;
    Zpp32s sum = 0;
    for (int later = kPairsInside - 1, n = 0; later >= distance; --later, n += 2) {
      if (saturates)
        sum = macDbl(macDbl(sum, response[n], delayed[n]), response[n + 1], delayed[n + 1]);
      else
        sum += 2 * (response[n] * delayed[n] + response[n + 1] * delayed[n + 1]);
      const int a = placeOf(later - distance), b = placeOf(later);
      matrix[a][b] = matrix[b][a] = negative[a] != negative[b] ? negSat16(high16(sum)) : high16(sum);
    }
  }
}

// What three pulses must reach together for the fourth to be searched: half way between the mean and the maximum
Zpp16s threshold(const Correlations& correlations) {
  constexpr int kOthers = kPlaces - kTrackPlaces;
  Zpp16s higher = kMin16;
  for (const Zpp16s* grid : {correlations.of[0], correlations.of[1]}) {
    Zpp16s maximum = 0;
    Zpp32s sum = 0;
    for (int first = 0; first < kOthers; first += kTrackPlaces) {
      maximum = addSat16(maximum, *std::max_element(grid + first, grid + first + kTrackPlaces));
      for (int i = 0; i < kTrackPlaces; ++i) sum += grid[first + i];
    }
    const auto mean = static_cast<Zpp16s>(sum >> 3);  // 24 values of 14 bits
    higher = std::max(higher, addSat16(mulQ15(subSat16(maximum, mean), 16384), mean));
  }
  return higher;
}

}  // namespace

ZppStatus zppsAlgebraicCodebookSearch_G723_16s32s(const Zpp16s* target, const Zpp16s* impulse, Zpp16s* filteredCode,
                                                  Zpp32s* codeword, Zpp16s* searchTime, Zpp16s lag, Zpp16s offset,
                                                  Zpp16s gainIndex) {
  if (anyNull(target, impulse, filteredCode, searchTime) || anyNull(codeword)) return zppStsNullPointer;
  if (outside<int>(lag, 18, 141) || outside<int>(offset, 0, 3) || outside<int>(gainIndex, 0, 169)) return zppStsBadCodedParam;
  if (outside<int>(*searchTime, 0, 32000)) return zppStsBadArgument;
  *searchTime = static_cast<Zpp16s>(ownAlgebraicCodebookSearch_G723_16s32s(target, impulse, filteredCode, codeword, *searchTime,
                                                                           lag + offset - 1, gainIndex));
  return zppStsOk;
}

int ownAlgebraicCodebookSearch_G723_16s32s(const Zpp16s* target, const Zpp16s* impulse, Zpp16s* filteredCode, Zpp32s* codeword,
                                           int searchTime, int delay, int gainIndex) {
  Zpp16s response[kSubframe], scaled[kSubframe];
  for (int n = 0; n < kSubframe; ++n) response[n] = static_cast<Zpp16s>(impulse[n] >> 1);
  ownPitchContribution_G723_16s_I(response, delay, gainIndex);
  scaleResponse(response, scaled);

  Zpp16s matrix[kPlaces][kPlaces];
  bool negative[kPlaces];
  Correlations correlations = targetCorrelations(target, response);
  foldSigns(correlations, negative);
  correlationMatrix(scaled, negative, matrix);
  AlgebraicChoice best{{0, kTrackPlaces, 2 * kTrackPlaces, 3 * kTrackPlaces}, 0, 0, kMax16};
  const int left =
      ownAlgebraicSearch_G723_16s(correlations.of[0], matrix, threshold(correlations), kSearchTime + searchTime, &best);

  Zpp16s filtered[kSubframe] = {};
  codeword[1] = best.grid;
  codeword[2] = codeword[3] = codeword[4] = 0;
  for (int track = 0; track < kTracks; ++track) {
    const int i = best.place[track] % kTrackPlaces;
    const bool minus = negative[best.place[track]];
    const int position = kTrackPlaces * i + 2 * track + best.grid;
    for (int n = position; n < kSubframe; ++n)
      filtered[n] = minus ? subSat16(filtered[n], response[n - position]) : addSat16(filtered[n], response[n - position]);
    codeword[3] |= i << (3 * track);
    codeword[4] |= (minus ? 0 : 1) << track;
  }
  std::copy_n(filtered, kSubframe, filteredCode);
  return left;
}
