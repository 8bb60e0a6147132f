// A frame of ITU-T G.729 as it is sent: the parameters and their bits (clauses 3 and 4.1, Annex B clause B.4.3).
#pragma once

#include <array>
#include <span>

#include "codecs/codec.h"

namespace codecs::g729 {

enum class FrameType { untransmitted, speech, sid };  // sid: silence descriptor, of Annex B

struct SpeechParameters {
  struct Subframe {
    Zpp16s delay;      // P1, 8 bits, or P2, 5 bits
    Zpp16s positions;  // C, 13 bits
    Zpp16s signs;      // S, 4 bits
    Zpp16s gains[2];   // GA, 3 bits, and GB, 4 bits
  };
  std::array<Zpp16s, 2> lsp;  // L0 and L1, 8 bits; L2 and L3, 10 bits
  Zpp16s parity;              // P0, of the upper six bits of P1
  std::array<Subframe, 2> subframes;
};

struct SidParameters {
  std::array<Zpp16s, 3> lsf;  // predictor, 1 bit, and the two stages, 5 and 4 bits
  Zpp16s gain;                // 5 bits
};

struct Frame {
  FrameType type = FrameType::untransmitted;
  SpeechParameters speech{};
  SidParameters sid{};
};

// The parity bit that belongs to P1
Zpp16s delayParity(Zpp16s delay);

inline constexpr int kSpeechOctets = 10, kSidOctets = 2;

// Writes 10 octets of speech, 2 of a silence descriptor, or none, the first bit in the highest place; returns how many.
int pack(const Frame& frame, Zpp8u* payload);
// Of 10, 2 or 0 octets
Frame unpack(const Zpp8u* payload, int octets);

}  // namespace codecs::g729
