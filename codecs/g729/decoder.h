// What the frame decoders of ITU-T G.729's main body, with the other rates, and of Annex A have in common: LSPs, delays,
// pulses, silence, and the concealment that belongs to them.
#pragma once

#include <optional>

#include "codecs/g729/comfort_noise.h"
#include "codecs/g729/frame.h"

namespace codecs::g729 {

// Clauses 4.1.1 and 4.4.1
class LspDecoder {
 public:
  LspDecoder();
  Lsp decode(const std::array<Zpp16s, 2>& code);
  // The last ones again, for a lost frame
  Lsp repeat();
  // Of a silence descriptor
  Lsp decode(const SidParameters& sid);

 private:
  MaMemory maMemory_;
  Zpp16s maMode_ = 0;
  Lsf lsf_;
};

// Annex B
class SilenceDecoder {
 public:
  SilenceDecoder();
  // To be called in every frame of speech
  void restart() { noise_.restart(); }
  // To be called after every frame that has arrived, with its excitation
  void remember(const Zpp16s* excitation);
  // Fills the excitation of a frame. Without a descriptor the last one holds; if that was lost, the level follows the end of
  // the speech.
  std::array<ComfortNoise::Gains, kSubframes> play(const SidParameters* sid, bool afterSpeech, LspDecoder& decoder,
                                                   Zpp16s* excitation);
  // Of the last descriptor
  const Lsp& lsp() const { return lsp_; }

 private:
  ComfortNoise noise_;
  Zpp16s gain_;
  Lsp lsp_ = {31441, 27566, 21458, 13612, 4663, -4663, -13612, -21458, -27566, -31441};
  Zpp16s energy_ = 0;  // of the last frame that arrived, energy * 2^exponent
  int exponent_ = 1;
};

// The code vector as the rate has it, Q13; at 11.8 kbit/s Q12 (clauses 4.1.4, D.5 and E.3.8)
Subframe codeVector(const SpeechParameters::Subframe& parameters, Rate rate, bool backward);

}  // namespace codecs::g729
