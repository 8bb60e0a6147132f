// What encoder and decoder share: sizes, the fields of a frame, LSF and filters.
#pragma once

#include <array>

#include "codecs/codec.h"

namespace codecs::g723 {

inline constexpr int kFrame = 240, kSubframes = 4, kSubframe = 60, kOrder = 10;
inline constexpr int kHistory = 145;  // samples of the past that pitch delays reach: of excitation, of weighted speech
inline constexpr int kMaxPayload = 24;

using Lsf = std::array<Zpp16s, kOrder>;
using Filter = std::array<Zpp16s, kOrder>;  // Q13
using Filters = std::array<Filter, kSubframes>;
using History = std::array<Zpp16s, kHistory>;  // oldest first
using Excitation = std::array<Zpp16s, kFrame>;

inline constexpr Lsf kMeanLsf = {3131, 4721, 7690, 10806, 13872, 16495, 19752, 22260, 25484, 27718};

enum class Kind { highRate, lowRate, descriptor, untransmitted };  // as the first two bits of a payload number them

inline constexpr ZppSpeechRate rateOf(Kind speech) { return speech == Kind::highRate ? ZPP_RATE_6300 : ZPP_RATE_5300; }

// Level, grid, pulse train, positions, signs
using Codeword = std::array<Zpp32s, 5>;

struct Frame {
  Kind kind = Kind::untransmitted;
  Zpp32s lsfIndex = 0;
  Zpp16s noiseGain = 0;  // of a descriptor, an index
  // Of speech
  std::array<Zpp16s, 2> lag{};  // of the half frames
  std::array<Zpp16s, kSubframes> offset{}, gainIndex{};
  std::array<Codeword, kSubframes> codeword{};
};

// The LSF of an index; those of the frame before where the decoder finds none that are stable
Lsf decodedLsf(Zpp32s index, const Lsf& previous);
Lsf concealedLsf(const Lsf& previous);
Filters interpolatedFilters(const Lsf& previous, const Lsf& lsf);

// The excitation of a subframe: its two vectors, the fixed one doubled. history ends with the subframe before.
void decodeSubframe(const Frame& frame, int subframe, const Zpp16s* history, Zpp16s* excitation);
void decodeAdaptive(const Frame& frame, int subframe, const Zpp16s* history, Zpp16s* vector);

// Shifts out the oldest samples of a history for as many new ones.
void enterHistory(History& history, const Zpp16s* samples, int count);

// A copy normalised to 12 bits and the sign. Returns the shift to the left.
int blockScaled(const Zpp16s* samples, Zpp16s* scaled, int count);

}  // namespace codecs::g723
