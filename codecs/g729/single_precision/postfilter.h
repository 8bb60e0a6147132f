// The postfilter of ITU-T G.729 Annex C (clauses 4.2 and A.4.2): long-term, short-term, tilt compensation, gain control.
#pragma once

#include "codecs/g729/single_precision/filters.h"

namespace codecs::g729f {

// What the postfilters of main body and Annex A have in common. Both have
//
//   bool filter(const Filter& a, int delay, const Zpp32f* synthesis, Zpp32f* output)
//
// a: the subframe's quantised LP filter; delay: of the frame's first subframe or of the subframe; synthesis: a subframe, with
// kOrder samples before it. Returns whether the long-term part was at work.
class Postfilter {
 protected:
  static constexpr int kPastResidual = 154;

  Zpp32f* residue() { return residual_.data() + kPastResidual; }
  // 1/A(z), into output, with its memory
  void synthesiseShortTerm(const Filter& denominator, const Subframe& input, Zpp32f* output);
  void shift();

  std::array<Zpp32f, kPastResidual + kSubframeSize> residual_{};  // through the numerator
  FilterMemory shortTerm_{};                                      // through the denominator as well
  Zpp32f gain_ = 1;
};

class MainBodyPostfilter : public Postfilter {
 public:
  static constexpr bool kDelayOfFrame = true;
  bool filter(const Filter& a, int delay, const Zpp32f* synthesis, Zpp32f* output);

 private:
  bool filterLongTerm(int delay, Subframe& output);
};

class AnnexAPostfilter : public Postfilter {
 public:
  static constexpr bool kDelayOfFrame = false;
  bool filter(const Filter& a, int delay, const Zpp32f* synthesis, Zpp32f* output);

 private:
  bool filterLongTerm(int delay, Subframe& output);

  Zpp32f tiltMemory_ = 0;
};

}  // namespace codecs::g729f
