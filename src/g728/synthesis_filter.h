// The synthesis filter of order 50 in block floating point, shared by the decoder's filter and the encoder's cascade
// (ITU-T G.728 Annex G, blocks 9, 22, 32).
#pragma once

#include "g728/arithmetic.h"

namespace zpp::g728 {

inline constexpr int kOrder = 50, kPastVectors = 10;

// The last ten vectors of speech, oldest first, as they lie in a state block
struct SpeechMemory {
  Zpp16s mantissa[kPastVectors * kVector];
  Zpp16s q[kPastVectors];

  static constexpr int kQuietQ = 16;
  void reset() {
    std::fill_n(mantissa, kPastVectors * kVector, Zpp16s{});
    std::fill_n(q, kPastVectors, Zpp16s{kQuietQ});
  }
  // The k-th newest vector, k = 0 the last one
  Block newest(int k) const {
    Block b;
    std::copy_n(mantissa + (kPastVectors - 1 - k) * kVector, kVector, b.mantissa);
    b.q = q[kPastVectors - 1 - k];
    return b;
  }
  void append(const Block& b) {
    std::copy(mantissa + kVector, mantissa + kPastVectors * kVector, mantissa);
    std::copy(q + 1, q + kPastVectors, q);
    std::copy_n(b.mantissa, kVector, mantissa + (kPastVectors - 1) * kVector);
    q[kPastVectors - 1] = static_cast<Zpp16s>(b.q);
  }
  // Exponents are kept where those of a stream are, within -32..96, so that a block of rubbish yields noise and nothing worse.
  void limit() {
    for (Zpp16s& e : q) e = std::clamp<Zpp16s>(e, -128, 127);
  }
};

}  // namespace zpp::g728

// What the memory gives when nothing is put in, normalised to 15 bits
zpp::g728::Block ownZeroInput_G728_16s(const Zpp16s* coef, const zpp::g728::SpeechMemory& memory);
// What the filter at rest gives for an excitation, in the q of the excitation, which is halved until the response fits 15 bits
void ownZeroState_G728_16s(const Zpp16s* coef, zpp::g728::Block* exc, Zpp16s* response);
// Their sum, clipped to +-4095 and normalised to 14 bits
zpp::g728::Block ownSpeechVector_G728_16s(const zpp::g728::Block& zeroInput, const Zpp16s* response, int responseQ);
