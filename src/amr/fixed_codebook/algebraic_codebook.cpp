// Search of the algebraic codebook (3GPP TS 26.090 clause 5.7): the modes as their tracks, candidates and codewords.
#include "amr/fixed_codebook/kernels.h"
#include "amr/tables.h"
#include "core/checks.h"
#include "core/fixed_point.h"
#include "core/kernels.h"
#include "lpc/kernels.h"

using namespace zpp;

namespace {

constexpr bool isCodebookRate(ZppSpeechRate rate) {
  switch (rate) {
    case ZPP_RATE_4750:
    case ZPP_RATE_5150:
    case ZPP_RATE_5900:
    case ZPP_RATE_6700:
    case ZPP_RATE_7400:
    case ZPP_RATE_7950:
    case ZPP_RATE_10200:
    case ZPP_RATE_12200:
    case ZPP_RATE_DTX:
      return true;
    default:
      return false;
  }
}

}  // namespace

ZppStatus zppsAlgebraicCodebookSearch_GSMAMR_16s(Zpp16s lag, Zpp16s gain, const Zpp16s* target, const Zpp16s* ltpResidual,
                                                 Zpp16s* impulse, Zpp16s* code, Zpp16s* filteredCode, Zpp16s* codeword,
                                                 Zpp16s subframe, ZppSpeechRate rate) {
  if (anyNull(target, ltpResidual, impulse, code, filteredCode, codeword)) return zppStsNullPointer;
  if (outside<int>(subframe, 0, 3)) return zppStsOutOfRange;
  if (!isCodebookRate(rate)) return zppStsOutOfRange;
  ownAlgebraicCodebookSearch_GSMAMR_16s(lag, gain, target, ltpResidual, impulse, code, filteredCode, codeword, subframe, rate);
  return zppStsOk;
}

ZppStatus zppsAlgebraicCodebookSearchEX_GSMAMR_16s(Zpp16s lag, Zpp16s gain, const Zpp16s* target, const Zpp16s* ltpResidual,
                                                   Zpp16s* impulse, Zpp16s* code, Zpp16s* filteredCode, Zpp16s* codeword,
                                                   Zpp16s subframe, ZppSpeechRate rate, void* work) {
  if (anyNull(work)) return zppStsNullPointer;
  return zppsAlgebraicCodebookSearch_GSMAMR_16s(lag, gain, target, ltpResidual, impulse, code, filteredCode, codeword, subframe,
                                                rate);
}

namespace {

// --- Two to four pulses: an index and a word of signs ----------------------------------------------------------------

using Sequence = Zpp8u[4];  // tracks of the pulses, outermost loop first

// Each order of tracks with its rotations to the right
template <int Orders, int Pulses>
struct Rotated {
  static constexpr int count = Orders * Pulses;
  constexpr explicit Rotated(const Zpp8u (&orders)[Orders][Pulses]) {
    for (int i = 0; i < count; ++i)
      for (int k = 0; k < Pulses; ++k) sequences[i][k] = orders[i / Pulses][(k + Pulses - i % Pulses) % Pulses];
  }
  Sequence sequences[count] = {};
};

constexpr TrackPairs pairsOf(const Sequence* sequences, int count, int pulses) {
  TrackPairs pairs = 0;
  for (int i = 0; i < count; ++i)
    for (int k = 1; k < pulses; ++k)
      for (int j = 0; j < k; ++j) pairs |= pairOf(sequences[i][j], sequences[i][k]);
  return pairs;
}

// Where a pulse goes in the codeword: its position number to the bits of the index from `shift` on, `offset` added for its
// track, its sign to a bit of the second word. All zero for a track that the pulse does not use.
struct Field {
  Zpp8u shift;
  Zpp16s offset;
  Zpp8u sign;
};
using Fields = Field[5];  // by track

struct SparseMode {
  int pulses;
  int candidates;             // positions on a track that the outermost pulse tries
  const Sequence* sequences;  // in the order of search
  int sequenceCount;
  TrackPairs pairs;
  bool grayCoded;        // position numbers in the index
  const Fields* fields;  // one row for all pulses, or a row for each
  bool fieldsOfEach;
};

// 4.75 and 5.15 kbit/s: the pair of tracks depends on the subframe; pulse 0 on another track than 0 means the second pair.
constexpr Fields kFields475[2] = {{{0, 0, 0}, {0, 64, 0}, {0, 64, 0}, {0, 0, 0}, {0, 0, 0}},
                                  {{3, 0, 1}, {3, 0, 1}, {3, 0, 1}, {3, 0, 1}, {3, 0, 1}}};
// 5.9 kbit/s: pulse 0 on track 1 or 3, pulse 1 on track 0, 1, 2 or 4
constexpr Sequence kSequences59[8] = {{1, 0}, {1, 1}, {1, 2}, {1, 4}, {3, 0}, {3, 1}, {3, 2}, {3, 4}};
constexpr Fields kFields59[2] = {{{6, 0x00, 1}, {1, 0, 0}, {6, 0x20, 1}, {1, 1, 0}, {6, 0x30, 1}},
                                 {{6, 0x00, 1}, {6, 0x10, 1}, {6, 0x20, 1}, {1, 1, 0}, {6, 0x30, 1}}};
// 6.7 kbit/s: tracks 0, 1 or 3, 2 or 4
constexpr Rotated<4, 3> kSequences67({{0, 1, 2}, {0, 1, 4}, {0, 3, 2}, {0, 3, 4}});
constexpr Fields kFields67 = {{0, 0, 0}, {4, 0, 1}, {8, 0, 2}, {4, 0x08, 1}, {8, 0x80, 2}};
// 7.4 and 7.95 kbit/s: tracks 0, 1, 2, 3 or 4
constexpr Rotated<2, 4> kSequences74({{0, 1, 2, 3}, {0, 1, 2, 4}});
constexpr Fields kFields74 = {{0, 0, 0}, {3, 0, 1}, {6, 0, 2}, {10, 0, 3}, {10, 0x200, 3}};

constexpr SparseMode kMode59 = {2, 8, kSequences59, 8, pairsOf(kSequences59, 8, 2), false, kFields59, true};
constexpr SparseMode kMode67 = {3,          6,    kSequences67.sequences, 12, pairsOf(kSequences67.sequences, 12, 3), false,
                                &kFields67, false};
constexpr SparseMode kMode74 = {4,          4,    kSequences74.sequences, 8, pairsOf(kSequences74.sequences, 8, 4), true,
                                &kFields74, false};

void searchSparse(const SparseMode& mode, const Zpp16s* target, const Zpp16s* impulse, Zpp16s* code, Zpp16s* filteredCode,
                  Zpp16s* codeword) {
  const Grid& grid = kFiveTracks;
  Zpp16s corr[kSubframe], sign[kSubframe], candidate[kSubframe], slots[4], positions[4], weights[4];
  alignas(16) Zpp16s matrix[kSubframe * kSubframe];
  ownTargetSignalCorr_X2_GSMAMR_16s(target, impulse, corr, 1, grid);
  ownSetSign_GSMAMR_16s(corr, sign, candidate, mode.candidates);
  ownToeplizMatrix_GSMAMR_16s(impulse, sign, matrix, grid.tracks, mode.pairs);
  ownSearchOptimalPulsePos_GSMAMR_16s(corr, candidate, matrix, mode.sequences[0], mode.sequenceCount, mode.pulses, slots);

  ownSet_16s(0, code, kSubframe);
  int index = 0, signs = 0;
  for (int k = 0; k < mode.pulses; ++k) {
    const int slot = slots[k], number = grid.numberOf(slot);
    const Field& field = mode.fields[mode.fieldsOfEach ? k : 0][grid.trackOf(slot)];
    const bool positive = sign[slot] > 0;
    positions[k] = grid.positionOf[slot];
    weights[k] = positive ? 32767 : -32768;
    code[positions[k]] = positive ? 8191 : -8192;
    index += (mode.grayCoded ? gray[number] : number) * (1 << field.shift) + field.offset;
    signs += positive << field.sign;
  }
  codeword[0] = static_cast<Zpp16s>(index);
  codeword[1] = static_cast<Zpp16s>(signs);
  ownFilteredCode_GSMAMR_16s(impulse, positions, weights, mode.pulses, filteredCode);
}

void searchSparse475(int subframe, const Zpp16s* target, const Zpp16s* impulse, Zpp16s* code, Zpp16s* filteredCode,
                     Zpp16s* codeword) {
  Sequence sequences[2] = {};
  for (int pair = 0; pair < 2; ++pair)
    for (int k = 0; k < 2; ++k) sequences[pair][k] = static_cast<Zpp8u>(startPos[pair][subframe][k]);
  const SparseMode mode = {2, 8, sequences, 2, pairsOf(sequences, 2, 2), false, kFields475, true};
  searchSparse(mode, target, impulse, code, filteredCode, codeword);
}

// --- Two pulses a track ----------------------------------------------------------------------------------------------

struct DenseMode {
  const Grid& grid;
  Zpp16s amplitude;                       // of a pulse in the code vector
  Zpp16s positiveWeight, negativeWeight;  // of the impulse response in the filtered vector, Q15
  // Position numbers of the first and then of the second pulses of the tracks, signs of the first ones, to codeword
  void (*pack)(const int* numbers, const bool* negative, Zpp16s* codeword);
};

// 12.2 kbit/s: Gray-coded numbers, those of the first pulses with the sign
void pack122(const int* numbers, const bool* negative, Zpp16s* codeword) {
  for (int track = 0; track < 5; ++track) {
    codeword[track] = static_cast<Zpp16s>(gray[numbers[track]] + (negative[track] ? 8 : 0));
    codeword[track + 5] = gray[numbers[track + 5]];
  }
}

// Three numbers 0..9 in 10 bits: parities, then halves as digits of base 5
Zpp16s ownCompressCode_10(int number0, int number1, int number2) {
  const int parities = (number0 & 1) + 2 * (number1 & 1) + 4 * (number2 & 1);
  return static_cast<Zpp16s>(parities + 8 * ((number0 >> 1) + 5 * (number1 >> 1) + 25 * (number2 >> 1)));
}

// Two numbers 0..9 in 7 bits: parities, then the halves, the first running back and forth, as 25 values spread over 32
Zpp16s ownCompressCode_M102_GSMAMR_16s(int number3, int number7) {
  const int half7 = number7 >> 1, half3 = half7 % 2 == 0 ? number3 >> 1 : 4 - (number3 >> 1);
  const int spread = ((32 * (5 * half7 + half3) + 12) * 1311) >> 15;
  return static_cast<Zpp16s>(4 * spread + 2 * (number7 & 1) + (number3 & 1));
}

// 10.2 kbit/s: four signs, then the numbers compressed
void pack102(const int* numbers, const bool* negative, Zpp16s* codeword) {
  for (int track = 0; track < 4; ++track) codeword[track] = negative[track];
  codeword[4] = ownCompressCode_10(numbers[0], numbers[4], numbers[1]);
  codeword[5] = ownCompressCode_10(numbers[2], numbers[6], numbers[5]);
  codeword[6] = ownCompressCode_M102_GSMAMR_16s(numbers[3], numbers[7]);
}

constexpr DenseMode kMode102 = {kFourTracks, 8191, 32767, -32768, pack102};
constexpr DenseMode kMode122 = {kFiveTracks, 4096, 8192, -8192, pack122};

// Orders the two pulses of each track so that their order tells the second sign: equal signs by ascending position, others by
// descending position.
template <const Grid& grid>
void orderTrackPulses(const Zpp16s* slots, const Zpp16s* sign, int* numbers, bool* negative) {
  int pairs[5][2] = {}, count[5] = {};
  for (int k = 0; k < 2 * grid.tracks; ++k) {
    const int track = grid.trackOf(slots[k]);
    pairs[track][count[track]++ & 1] = slots[k];
  }
  for (int track = 0; track < grid.tracks; ++track) {
    const int earlier = pairs[track][0], later = pairs[track][1];
    const bool sameSign = (sign[later] < 0) == (sign[earlier] < 0), keeps = sameSign == (later >= earlier);
    const int first = keeps ? earlier : later;
    numbers[track] = grid.numberOf(first);
    numbers[track + grid.tracks] = grid.numberOf(keeps ? later : earlier);
    negative[track] = sign[first] < 0;
  }
}

template <const DenseMode& mode>
void searchDense(const Zpp16s* target, const Zpp16s* ltpResidual, const Zpp16s* impulse, Zpp16s* code, Zpp16s* filteredCode,
                 Zpp16s* codeword) {
  constexpr const Grid& grid = mode.grid;
  constexpr int pulses = 2 * grid.tracks;
  Zpp16s corr[kSubframe], sign[kSubframe], trackBest[5], trackOrder[10], slots[10], positions[10], weights[10];
  alignas(16) Zpp16s matrix[kSubframe * kSubframe];
  ownTargetSignalCorr_X2_GSMAMR_16s(target, impulse, corr, 2, grid);
  ownSetSign_M102M122_GSMAMR_16s(ltpResidual, corr, sign, trackBest, trackOrder, grid);
  ownToeplizMatrix_GSMAMR_16s(impulse, sign, matrix, grid.tracks, kAllPairs);
  ownSearchOptimalPulsePos_M102M122_GSMAMR_16s(corr, matrix, trackBest, trackOrder, slots, pulses, grid.tracks);

  ownSet_16s(0, code, kSubframe);
  for (int k = 0; k < pulses; ++k) {
    const bool positive = sign[slots[k]] > 0;
    positions[k] = grid.positionOf[slots[k]];
    weights[k] = positive ? mode.positiveWeight : mode.negativeWeight;
    Zpp16s& pulse = code[positions[k]];
    pulse = static_cast<Zpp16s>(pulse + (positive ? mode.amplitude : -mode.amplitude));
  }
  int numbers[10] = {};
  bool negative[5] = {};
  orderTrackPulses<grid>(slots, sign, numbers, negative);
  mode.pack(numbers, negative, codeword);
  ownFilteredCode_GSMAMR_16s(impulse, positions, weights, pulses, filteredCode);
}

}  // namespace

void ownAlgebraicCodebookSearch_GSMAMR_16s(int lag, Zpp16s gain, const Zpp16s* target, const Zpp16s* ltpResidual,
                                           Zpp16s* impulse, Zpp16s* code, Zpp16s* filteredCode, Zpp16s* codeword, int subframe,
                                           ZppSpeechRate rate) {
  const bool wraps = rate == ZPP_RATE_6700 || rate == ZPP_RATE_7400 || rate == ZPP_RATE_7950 || rate == ZPP_RATE_10200;
  const Zpp16s sharpening = wraps ? wrap16(gain * 2) : shlSat16(gain, 1);
  const bool sharpened = lag > 0 && lag < kSubframe;
  if (sharpened) ownHarmonicFilter_16s(sharpening, lag, impulse + lag, kSubframe - lag);
  switch (rate) {
    case ZPP_RATE_4750:
    case ZPP_RATE_5150:
      searchSparse475(subframe, target, impulse, code, filteredCode, codeword);
      break;
    case ZPP_RATE_5900:
      searchSparse(kMode59, target, impulse, code, filteredCode, codeword);
      break;
    case ZPP_RATE_6700:
      searchSparse(kMode67, target, impulse, code, filteredCode, codeword);
      break;
    case ZPP_RATE_7400:
    case ZPP_RATE_7950:
      searchSparse(kMode74, target, impulse, code, filteredCode, codeword);
      break;
    case ZPP_RATE_10200:
      searchDense<kMode102>(target, ltpResidual, impulse, code, filteredCode, codeword);
      break;
    default:
      searchDense<kMode122>(target, ltpResidual, impulse, code, filteredCode, codeword);
      break;
  }
  if (sharpened) ownHarmonicFilter_16s(sharpening, lag, code + lag, kSubframe - lag);
}

// --- The correlation matrix by itself --------------------------------------------------------------------------------

namespace {

// In the order of the positions, 32 bits an entry
void toeplizMatrix(const Zpp16s* impulse, const Zpp16s* sign, Zpp32s* matrix, TrackPairs pairs) {
  const Grid& grid = kFiveTracks;
  Zpp16s ordered[kSubframe];
  alignas(16) Zpp16s narrow[kSubframe * kSubframe];
  for (int n = 0; n < kSubframe; ++n) ordered[grid.slotOf[n]] = sign[n];
  ownToeplizMatrix_GSMAMR_16s(impulse, ordered, narrow, grid.tracks, pairs);
  for (int i = 0; i < kSubframe; ++i)
    for (int j = 0; j < kSubframe; ++j)
      if (i == j || (pairs & pairOf(i % grid.tracks, j % grid.tracks)))
        matrix[i * kSubframe + j] = narrow[grid.slotOf[i] * kSubframe + grid.slotOf[j]];
}

}  // namespace

void _zppsToeplizMatrix_GSMAMR_16s32s(const Zpp16s* impulse, const Zpp16s* sign, Zpp32s* matrix) {
  toeplizMatrix(impulse, sign, matrix, kAllPairs);
}

void _zppsToeplizMatrix_GSMAMR_r74_16s32s(const Zpp16s* impulse, const Zpp16s* sign, Zpp32s* matrix) {
  toeplizMatrix(impulse, sign, matrix, kMode74.pairs);
}

void _zppsToeplizMatrix_r67_GSMAMR_16s32s(const Zpp16s* impulse, const Zpp16s* sign, Zpp32s* matrix) {
  toeplizMatrix(impulse, sign, matrix, kMode67.pairs);
}

void _zppsToeplizMatrix_r59_GSMAMR_16s32s(const Zpp16s* impulse, const Zpp16s* sign, Zpp32s* matrix) {
  toeplizMatrix(impulse, sign, matrix, kMode59.pairs);
}

void _zppsToeplizMatrix_r515_GSMAMR_16s32s(const Zpp16s* impulse, const Zpp16s* sign, Zpp32s* matrix, Zpp16s subframe) {
  TrackPairs pairs = 0;
  for (const auto& ofPair : startPos) pairs |= pairOf(ofPair[subframe & 3][0], ofPair[subframe & 3][1]);
  toeplizMatrix(impulse, sign, matrix, pairs);
}
