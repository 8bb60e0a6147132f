// The postfilter of ITU-T G.729 (clauses 4.2 and A.4.2): long-term, short-term, tilt compensation, gain control.
#ifndef ZPPSC_EXAMPLES_G729_POSTFILTER_H
#define ZPPSC_EXAMPLES_G729_POSTFILTER_H

#include "g729_filters.h"

namespace codecs::g729 {

class Postfilter {
 public:
  virtual ~Postfilter() = default;
  // a: the subframe's quantised LP filter; synthesis: a subframe, with kOrder samples before it; noise has no long-term part.
  // Returns whether the long-term part was at work.
  virtual bool filter(const Filter& a, Zpp16s delay, bool noise, const Zpp16s* synthesis, Zpp16s* output) = 0;

 protected:
  void shiftHistory();

  static constexpr int kPastResidual = 154;
  alignas(16) std::array<Zpp16s, kPastResidual + kSubframeSize> residual_{};  // through A(z/0.55)
  alignas(16) std::array<Zpp16s, kOrder + kSubframeSize> shortTerm_{};        // through 1/A(z/0.7) as well
};

class MainBodyPostfilter : public Postfilter {
 public:
  bool filter(const Filter& a, Zpp16s delay, bool noise, const Zpp16s* synthesis, Zpp16s* output) override;

 private:
  Zpp16s tiltMemory_ = 0;
  Zpp16s gain_ = 16384;  // Q14
};

class AnnexAPostfilter : public Postfilter {
 public:
  bool filter(const Filter& a, Zpp16s delay, bool noise, const Zpp16s* synthesis, Zpp16s* output) override;

 private:
  Zpp16s tiltMemory_ = 0;
  Zpp16s gain_ = 4096;  // Q12
};

}  // namespace codecs::g729

#endif
