// A frame of ITU-T G.729 as it is sent: the parameters and their bits (clauses 3 and 4.1, Annexes B, D and E).
#pragma once

#include <array>
#include <optional>
#include <span>

#include "codecs/codec.h"

namespace codecs::g729 {

enum class FrameType { untransmitted, speech, sid };  // sid: silence descriptor, of Annex B
enum class Rate : Zpp8u { kbit6, kbit8, kbit12 };     // 6.4 (Annex D), 8, 11.8 kbit/s (Annex E)

struct SpeechParameters {
  struct Subframe {
    Zpp16s delay;                  // P1, 8 bits, or P2, 5 bits; at 6.4 kbit/s 4 bits
    Zpp16s positions;              // C, 13 bits; at 6.4 kbit/s 9 bits
    Zpp16s signs;                  // S, 4 bits; at 6.4 kbit/s 2 bits
    std::array<Zpp16s, 5> pulses;  // at 11.8 kbit/s instead of C and S, 7 bits each, in backward frames 13, 10, 7, 7, 7
    Zpp16s gains[2];               // GA, 3 bits, and GB, 4 bits; at 6.4 kbit/s 3 bits
  };
  Rate rate = Rate::kbit8;
  bool backward = false;        // 11.8 kbit/s: the LP filter comes from the past synthesis
  std::array<Zpp16s, 2> lsp{};  // L0 and L1, 8 bits; L2 and L3, 10 bits; none in backward frames
  Zpp16s parity = 0;            // P0, of the upper six bits of P1; none at 6.4 kbit/s
  std::array<Subframe, 2> subframes{};
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

// The parity bit that belongs to P1; at 11.8 kbit/s bit 1 counts as well
Zpp16s delayParity(Zpp16s delay, Rate rate);

inline constexpr int kSpeechOctets[3] = {8, 10, 15}, kSidOctets = 2;  // speech by rate
inline constexpr int octetsOf(Rate rate) { return kSpeechOctets[static_cast<int>(rate)]; }

// Writes 8, 10 or 15 octets of speech, 2 of a silence descriptor, or none, the first bit in the highest place; returns how
// many.
int pack(const Frame& frame, Zpp8u* payload);
// Of so many octets. None where the two bits that tell backward frames apart contradict each other.
std::optional<Frame> unpack(const Zpp8u* payload, int octets);

}  // namespace codecs::g729
