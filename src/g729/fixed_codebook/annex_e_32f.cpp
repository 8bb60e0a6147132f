// Fixed codebooks of 10 and 12 signed pulses, 35 and 44 bits, for 11.8 kbit/s in single precision (ITU-T G.729 Annex E, clause
// E.3.8, as in Annex C+)
#include <cmath>

#include "core/checks.h"
#include "g729/dot_product_32f.h"
#include "g729/fixed_codebook/kernels.h"
#include "g729/fixed_codebook/fixed_codebook_32f.h"

using namespace zpp;

namespace {

constexpr int kStarts = 3;

struct Search {
  alignas(16) Zpp32f target[kSubframe];  // backward filtered, with the signs folded in
  alignas(16) Zpp32f sign[kSubframe];
  int likeliest[kTracks];      // position index in each track
  Zpp64f likelihood[kTracks];  // of that position
  Zpp32f matrix[kDiagonals + kTracks * kBlock];
  Zpp32f response[2 * kSubframe];  // the impulse response in the order of time, behind a subframe of zeros
};

constexpr int sampleOf(int track, int position) { return kTracks * position + track; }
constexpr int byTrack(int sample) { return kPositions * (sample % kTracks) + sample / kTracks; }

// The response to a positive pulse at a sample
const Zpp32f* pulseResponse(const Search& s, int sample) { return s.response + kSubframe - sample; }

// Factor, down to an energy of 0.01, that brings a vector to a common level
Zpp64f levelFactor(const Zpp32f* x) {
  const Zpp64f energy = dotProduct40(x, x);
  return 1 / std::sqrt(energy < 0.01 ? 0.01 : energy);
}

// Signs and the likeliest position of each track, both from the levelled sum of the residual and the backward-filtered target,
// into which the signs are folded.
void setSigns(const Zpp32f* residual, Search& s) {
  const Zpp64f residualFactor = levelFactor(residual), targetFactor = levelFactor(s.target);
  for (int t = 0; t < kTracks; ++t) {
    s.likelihood[t] = -1;
    s.likeliest[t] = 0;
    for (int i = 0; i < kPositions; ++i) {
      const int n = kPositions * t + i;
      const Zpp64f v = residualFactor * Zpp64f{residual[sampleOf(t, i)]} + targetFactor * Zpp64f{s.target[n]};
      s.sign[n] = SignedTarget_32f::amplitude(v >= 0);
      s.target[n] *= s.sign[n];
      const Zpp64f likelihood = v >= 0 ? v : -v;
      if (!(likelihood > s.likelihood[t])) continue;
      s.likelihood[t] = likelihood;
      s.likeliest[t] = i;
    }
  }
}

// What a pulse at each position of a track adds to half the energy beside the pulses whose summed response is given
void energyBeside(const Search& s, const Zpp32f* response, int track, Zpp32f* energy) {
  for (int i = 0; i < kPositions; ++i) {
    const int n = kPositions * track + i;
    const auto correlation = static_cast<Zpp32f>(dotProduct40(pulseResponse(s, sampleOf(track, i)), response));
    energy[i] = correlation * s.sign[n] + s.matrix[n];
  }
}

// Adds the response to a found pulse.
void addResponse(const Search& s, int sample, Zpp32f* response) {
  const Zpp32f sign = s.sign[byTrack(sample)], *h = pulseResponse(s, sample);
  for (int n = 0; n < kSubframe; ++n) response[n] += sign * h[n];
}

// Depth-first search from one track: the likeliest pulses of it and the next, then pair by pair round the tracks.
Best_32f searchFrom(const Search& s, int start, int pulses, Zpp8u* pulse) {
  Zpp32f sum = 0, energy = 0;
  Zpp32f response[kSubframe] = {}, outerEnergy[kPositions], innerEnergy[kPositions];
  for (int n = 0; n < pulses; n += 2) {
    const int outer = (start + n) % kTracks, inner = (outer + 1) % kTracks;
    const Zpp32f *outerTarget = s.target + kPositions * outer, *innerTarget = s.target + kPositions * inner;
    const Zpp32f* cross = s.matrix + kDiagonals + kBlock * outer;
    int p = 0, q = 0;
    if (n == 0) {
      p = s.likeliest[outer];
      q = s.likeliest[inner];
      energy = s.matrix[kPositions * outer + p] + s.matrix[kPositions * inner + q] + cross[kPositions * p + q];
    } else {
      addResponse(s, pulse[n - 2], response);
      addResponse(s, pulse[n - 1], response);
      energyBeside(s, response, outer, outerEnergy);
      energyBeside(s, response, inner, innerEnergy);
      Best_32f best = kNoCandidate_32f;
      for (int i = 0; i < kPositions; ++i) {
        const int j = improve<kPositions>(best, sum + outerTarget[i], innerTarget, energy + outerEnergy[i],
                                          cross + kPositions * i, innerEnergy);
        if (j >= 0) p = i, q = j;
      }
      energy = best.energy;
    }
    sum += outerTarget[p] + innerTarget[q];
    pulse[n] = static_cast<Zpp8u>(sampleOf(outer, p));
    pulse[n + 1] = static_cast<Zpp8u>(sampleOf(inner, q));
  }
  return {sum * sum, energy};
}

// The pulses of the best of the three likeliest starting tracks, in the order of the search
void searchPulses(const Search& s, int pulses, Zpp8u* pulse) {
  Zpp64f weight[kTracks];
  for (int t = 0; t < kTracks; ++t) weight[t] = s.likelihood[t] + s.likelihood[(t + 1) % kTracks];
  Best_32f best = kNoCandidate_32f;
  for (int n = 0; n < pulses; ++n) pulse[n] = static_cast<Zpp8u>(n);
  for (int n = 0; n < kStarts; ++n) {
    const auto start = static_cast<int>(std::max_element(weight, weight + kTracks) - weight);
    weight[start] = -1;
    Zpp8u found[kMostPulsesAnnexE];
    const Best_32f candidate = searchFrom(s, start, pulses, found);
    if (best.improve(candidate.square, candidate.energy)) std::copy(found, found + pulses, pulse);
  }
}

void ownFixedCodebookSearch_G729E_32f(Zpp16s mode, const Zpp32f* target, const Zpp32f* residual, const Zpp32f* impulse,
                                      Zpp32f* code, Zpp32f* filtered, Zpp16s* index) {
  Search s;
  std::fill_n(s.response, kSubframe, 0.0f);
  std::copy_n(impulse, kSubframe, s.response + kSubframe);
  for (int n = 0; n < kSubframe; ++n) s.target[byTrack(n)] = static_cast<Zpp32f>(dotProduct40(target, pulseResponse(s, n)));
  setSigns(residual, s);
  ownCorrMatrix_G729E_32f(impulse, s.matrix);
  foldSigns(s.sign, kTrackPairsAnnexE, kTracks, s.matrix + kDiagonals);

  const int pulses = mode == 0 ? 10 : 12;
  Zpp8u pulse[kMostPulsesAnnexE];
  searchPulses(s, pulses, pulse);
  std::fill_n(code, kSubframe, 0.0f);
  std::fill_n(filtered, kSubframe, 0.0f);
  CodedPulse coded[kMostPulsesAnnexE];
  for (int n = 0; n < pulses; ++n) {
    const Zpp32f sign = s.sign[byTrack(pulse[n])];
    addPulse(pulse[n], sign, impulse, code, filtered);
    coded[n] = codedPulse(pulse[n], sign > 0);
  }
  (mode == 0 ? ownCodeword35_G729E : ownCodeword44_G729E)(coded, index);
}

}  // namespace

ZppStatus zppsFixedCodebookSearch_G729E_32f(Zpp16s mode, const Zpp32f* target, const Zpp32f* residual, const Zpp32f* impulse,
                                            Zpp32f* code, Zpp32f* filtered, Zpp16s* index) {
  if (anyNull(target, residual, impulse, code, filtered, index)) return zppStsNullPointer;
  ownFixedCodebookSearch_G729E_32f(mode, target, residual, impulse, code, filtered, index);
  return zppStsOk;
}
