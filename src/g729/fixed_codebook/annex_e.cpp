// Fixed codebooks of 10 and 12 signed pulses, 35 and 44 bits, for 11.8 kbit/s (ITU-T G.729 Annex E, clause E.3.8)
#include <algorithm>
#include <bit>

#include "core/checks.h"
#include "core/kernels.h"
#include "g729/fixed_codebook/kernels.h"
#include "g729/fixed_codebook/fixed_codebook.h"

using namespace zpp;

namespace {

constexpr Zpp16s kAmplitude = 4096;  // Q12
constexpr int kStarts = 3;

// Vectors go by track (see fcb_kernels.h) unless a comment says otherwise.
struct Search {
  alignas(16) Zpp16s target[kSubframe];  // backward filtered, with the signs folded in
  alignas(16) Zpp16s sign[kSubframe];    // Q15: 32767 or -32768
  int likeliest[kTracks];                // position index in each track
  Zpp32s likelihood[kTracks];            // of that position
  // Diagonals, then one cross block a track, beside the next track
  alignas(16) Zpp16s matrix[kDiagonals + kTracks * kBlock];
  // Normalised impulse response and its negative in the order of time, each behind a subframe of zeros
  Zpp16s response[2][2 * kSubframe];
  bool plainSumsHold;  // for correlations of the response with those of up to 10 pulses
};

constexpr int sampleOf(int track, int position) { return kTracks * position + track; }
constexpr int byTrack(int sample) { return kPositions * (sample % kTracks) + sample / kTracks; }

// The response to a pulse at a sample, with its sign
const Zpp16s* pulseResponse(const Search& s, int sample) {
  return s.response[s.sign[byTrack(sample)] > 0 ? 0 : 1] + kSubframe - sample;
}

// 2 sum a[n] b[n] as the basic operators form it; `plain`: no step saturates.
Zpp32s correlation(const Zpp16s* a, const Zpp16s* b, int len, bool plain) {
  if (plain) return static_cast<Zpp32s>(2 * ownDotProd_16s(a, b, len));
  Zpp32s sum = 0;
  for (int n = 0; n < len; ++n) sum = macDbl(sum, a[n], b[n]);
  return sum;
}

// Backward-filtered target with a headroom that suits its peaks
void ownCrossCorrNorm(const Zpp16s* target, const Zpp16s* impulse, Zpp16s* filtered) {
  // |sum|^2 is at most the product of the energies (Cauchy-Schwarz): below 2^60 no doubled partial sum exceeds 2^31.
  const bool plain = std::bit_width(static_cast<std::uint64_t>(ownDotProd_16s(target, target, kSubframe))) +
                         std::bit_width(static_cast<std::uint64_t>(ownDotProd_16s(impulse, impulse, kSubframe))) <=
                     60;
  Zpp32s y[kSubframe], total = 5;
  for (int t = 0; t < kTracks; ++t) {
    Zpp32s most = 0;
    for (int i = 0; i < kPositions; ++i) {
      const int sample = sampleOf(t, i);
      const Zpp32s sum = correlation(target + sample, impulse, kSubframe - sample, plain);
      most = std::max(most, absSat32(sum));
      y[kPositions * t + i] = sum;
    }
    total = addSat32(total, most >> 1);
  }
  const int shift = norm32(total) - 2;
  for (int n = 0; n < kSubframe; ++n) filtered[n] = roundHigh16(shlSat32(y[n], shift));
}

// Q15 factor, at least down to an energy of 512, that brings a vector to a common level
Zpp16s levelFactor(const Zpp16s* x) {
  const Zpp32s energy = sat32(2 * ownDotProd_16s(x, x, kSubframe));
  return high16(shlSat32(ownInvSqrt(std::max<Zpp32s>(energy, 512)), 5));
}

// Signs and the likeliest position of each track, both from the levelled sum of the residual and the backward-filtered target,
// into which the signs are folded.
void ownSetSign_G729E_16s(const Zpp16s* residual, Search& s) {
  const Zpp16s residualFactor = mulQ15(levelFactor(residual), kMax16), targetFactor = levelFactor(s.target);
  for (int t = 0; t < kTracks; ++t) {
    s.likelihood[t] = -1;
    for (int i = 0; i < kPositions; ++i) {
      const int n = kPositions * t + i;
      const Zpp32s v = macDbl(mulDbl(residualFactor, residual[sampleOf(t, i)]), targetFactor, s.target[n]);
      s.sign[n] = static_cast<Zpp16s>(v >= 0 ? kMax16 : kMin16);
      if (v < 0) s.target[n] = negSat16(s.target[n]);
      if (absSat32(v) <= s.likelihood[t]) continue;
      s.likelihood[t] = absSat32(v);
      s.likeliest[t] = i;
    }
  }
}

// Normalised impulse response, its correlations, and the signs folded into them
void ownCorImpRespVec_G729E_16s(const Zpp16s* impulse, Search& s) {
  const Zpp32s energy = sat32(2 * ownDotProd_16s(impulse, impulse, kSubframe));
  const int shift = norm32(energy) / 2;
  const Zpp16s factor = high16(shlSat32(ownInvSqrt((energy << 2 * shift) >> 12), 8));
  ownSet_16s(0, s.response[0], kSubframe);
  ownSet_16s(0, s.response[1], kSubframe);
  Zpp16s* response = s.response[0] + kSubframe;
  for (int n = 0; n < kSubframe; ++n) {
    response[n] = mulQ15(shlSat16(impulse[n], shift), factor);
    s.response[1][kSubframe + n] = negSat16(response[n]);
  }
  // The sum of ten responses has at most ten times the norm of one, saturated or not.
  s.plainSumsHold = ownDotProd_16s(response, response, kSubframe) < (1 << 30) / 10;
  ownCorrMatrix_G729E_16s(response, s.matrix);
  ownFoldSigns_G729A(s.sign, kTrackPairsAnnexE, kTracks, s.matrix + kDiagonals);
}

// What a pulse at each position of a track adds to the energy beside the pulses whose summed response is given
void energyBeside(const Search& s, const Zpp16s* response, int track, Zpp16s* energy) {
  for (int i = 0; i < kPositions; ++i) {
    const int n = kPositions * track + i, sample = sampleOf(track, i);
    const Zpp32s sum = correlation(s.response[0] + kSubframe, response + sample, kSubframe - sample, s.plainSumsHold);
    energy[i] = addSat16(mulQ15(roundHigh16(sum), s.sign[n]), s.matrix[n]);
  }
}

// Depth-first search from one track: the likeliest pulses of it and the next, then pair by pair round the tracks.
Best searchFrom(const Search& s, int start, int pulses, Zpp8u* pulse) {
  Zpp16s sum = 0, energy = 0;
  alignas(16) Zpp16s response[kSubframe] = {}, pairResponse[kSubframe], outerEnergy[kPositions], innerEnergy[kPositions];
  for (int n = 0; n < pulses; n += 2) {
    const int outer = (start + n) % kTracks, inner = (outer + 1) % kTracks;
    const Zpp16s *outerTarget = s.target + kPositions * outer, *innerTarget = s.target + kPositions * inner;
    const Zpp16s* cross = s.matrix + kDiagonals + kBlock * outer;
    PulsePair pair = {s.likeliest[outer], s.likeliest[inner], 0};
    if (n == 0) {
      pair.energy = addSat16(addSat16(s.matrix[kPositions * outer + pair.outer], s.matrix[kPositions * inner + pair.inner]),
                             cross[kPositions * pair.outer + pair.inner]);
    } else {
      ownAdd_16s(pulseResponse(s, pulse[n - 2]), pulseResponse(s, pulse[n - 1]), pairResponse, kSubframe);
      ownAdd_16s(response, pairResponse, response, kSubframe);
      energyBeside(s, response, outer, outerEnergy);
      energyBeside(s, response, inner, innerEnergy);
      pair = ownPulsePair_G729E_16s(sum, energy, {outerTarget, outerEnergy}, {innerTarget, innerEnergy}, cross);
    }
    sum = addSat16(sum, addSat16(outerTarget[pair.outer], innerTarget[pair.inner]));
    energy = pair.energy;
    pulse[n] = static_cast<Zpp8u>(sampleOf(outer, pair.outer));
    pulse[n + 1] = static_cast<Zpp8u>(sampleOf(inner, pair.inner));
  }
  return {mulQ15(sum, sum), energy};
}

// The pulses of the best of the three likeliest starting tracks, in the order of the search
void searchPulses(const Search& s, int pulses, Zpp8u* pulse) {
  Zpp32s weight[kTracks];
  for (int t = 0; t < kTracks; ++t) weight[t] = addSat32(s.likelihood[t], s.likelihood[(t + 1) % kTracks]);
  Best best = kNoCandidate;
  for (int n = 0; n < pulses; ++n) pulse[n] = static_cast<Zpp8u>(n);
  for (int n = 0; n < kStarts; ++n) {
    const auto start = static_cast<int>(std::max_element(weight, weight + kTracks) - weight);
    weight[start] = -1;
    Zpp8u found[kMostPulsesAnnexE];
    const Best candidate = searchFrom(s, start, pulses, found);
    if (best.improve(candidate.square, candidate.energy)) std::copy(found, found + pulses, pulse);
  }
}

// Adds pulses to the code vector (Q12) and the filtered one (Q11, from the impulse response halved).
void ownBuildCode_G729E_16s(const Search& s, const Zpp8u* pulse, int pulses, const Zpp16s* halvedImpulse, Zpp16s* code,
                            Zpp16s* filtered) {
  for (int n = 0; n < pulses; ++n) {
    const int sample = pulse[n];
    const bool positive = s.sign[byTrack(sample)] > 0;
    code[sample] = static_cast<Zpp16s>(code[sample] + (positive ? kAmplitude : -kAmplitude));
    for (int i = sample; i < kSubframe; ++i) {
      const Zpp16s h = halvedImpulse[i - sample];
      filtered[i] = positive ? addSat16(filtered[i], h) : subSat16(filtered[i], h);
    }
  }
}

// The pulses with their signs, as the codeword has them
void codedPulses(const Search& s, const Zpp8u* pulse, int pulses, CodedPulse* coded) {
  for (int n = 0; n < pulses; ++n) coded[n] = codedPulse(pulse[n], s.sign[byTrack(pulse[n])] > 0);
}

void ownACELP_10i40_35bits_16s(const Search& s, const Zpp16s* halvedImpulse, Zpp16s* code, Zpp16s* filtered, Zpp16s* index) {
  Zpp8u pulse[kMostPulsesAnnexE];
  searchPulses(s, 10, pulse);
  ownBuildCode_G729E_16s(s, pulse, 10, halvedImpulse, code, filtered);
  CodedPulse coded[kMostPulsesAnnexE];
  codedPulses(s, pulse, 10, coded);
  ownCodeword35_G729E(coded, index);
}

void ownACELP_12i40_44bits_16s(const Search& s, const Zpp16s* halvedImpulse, Zpp16s* code, Zpp16s* filtered, Zpp16s* index) {
  Zpp8u pulse[kMostPulsesAnnexE];
  searchPulses(s, 12, pulse);
  ownBuildCode_G729E_16s(s, pulse + 2, 10, halvedImpulse, code, filtered);
  ownBuildCode_G729E_16s(s, pulse, 2, halvedImpulse, code, filtered);
  CodedPulse coded[kMostPulsesAnnexE];
  codedPulses(s, pulse, 12, coded);
  ownCodeword44_G729E(coded, index);
}

void searchAnnexE(Zpp16s mode, const Zpp16s* target, const Zpp16s* residual, const Zpp16s* impulse, Zpp16s* code,
                  Zpp16s* filtered, Zpp16s* index) {
  Search s;
  ownCrossCorrNorm(target, impulse, s.target);
  ownSetSign_G729E_16s(residual, s);
  ownCorImpRespVec_G729E_16s(impulse, s);
  Zpp16s halvedImpulse[kSubframe];  // Q11
  ownRShiftC_16s(impulse, halvedImpulse, kSubframe, 1);
  ownSet_16s(0, code, kSubframe);
  ownSet_16s(0, filtered, kSubframe);
  (mode == 0 ? ownACELP_10i40_35bits_16s : ownACELP_12i40_44bits_16s)(s, halvedImpulse, code, filtered, index);
}

}  // namespace

ZppStatus zppsFixedCodebookSearch_G729E_16s(Zpp16s mode, const Zpp16s* target, const Zpp16s* residual, const Zpp16s* impulse,
                                            Zpp16s* code, Zpp16s* filtered, Zpp16s* index) {
  if (anyNull(target, residual, impulse, code, filtered, index)) return zppStsNullPointer;
  searchAnnexE(mode, target, residual, impulse, code, filtered, index);
  return zppStsOk;
}
