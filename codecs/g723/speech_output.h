// From excitation to speech: synthesis filter, formant postfilter and gain control (ITU-T G.723.1 clauses 3.7 to 3.9).
#pragma once

#include "codecs/g723/frame.h"

namespace codecs::g723 {

class SpeechOutput {
 public:
  explicit SpeechOutput(bool postfilter) : postfilter_(postfilter) {}
  // Turns the excitation of a frame into its speech.
  void filter(const Filters& filters, Zpp16s* speech);

 private:
  void postfilter(const Filter& filter, Zpp16s* speech);

  bool postfilter_;
  std::array<Zpp16s, kOrder> synthesisMemory_{};
  std::array<Zpp16s, 2 * kOrder> postfilterMemory_{};
  Zpp16s tilt_ = 0, gain_ = 4096;
};

}  // namespace codecs::g723
