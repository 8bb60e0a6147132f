// The postfilter of ITU-T G.729 (clauses 4.2 and A.4.2): long-term, short-term, tilt compensation, gain control.
#pragma once

#include "codecs/g729/filters.h"

namespace codecs::g729 {

// What the postfilters of main body and Annex A have in common. Both have
//
//   bool filter(const Filter& a, Zpp16s delay, bool noise, const Zpp16s* synthesis, Zpp16s* output)
//
// a: the subframe's quantised LP filter; synthesis: a subframe, with kOrder samples before it; noise has no long-term part.
// Returns whether the long-term part was at work.
class Postfilter {
 protected:
  void shiftHistory();

  static constexpr int kPastResidual = 154;
  alignas(16) std::array<Zpp16s, kPastResidual + kSubframeSize> residual_{};  // through A(z/0.55)
  alignas(16) std::array<Zpp16s, kOrder + kSubframeSize> shortTerm_{};        // through 1/A(z/0.7) as well
};

class MainBodyPostfilter : public Postfilter {
 public:
  bool filter(const Filter& a, Zpp16s delay, bool noise, const Zpp16s* synthesis, Zpp16s* output);

 private:
  Zpp16s tiltMemory_ = 0;
  Zpp16s gain_ = 16384;  // Q14
};

class AnnexAPostfilter : public Postfilter {
 public:
  bool filter(const Filter& a, Zpp16s delay, bool noise, const Zpp16s* synthesis, Zpp16s* output);

 private:
  Zpp16s tiltMemory_ = 0;
  Zpp16s gain_ = 4096;  // Q12
};

}  // namespace codecs::g729
