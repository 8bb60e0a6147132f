// The closed loop of the encoder (3GPP TS 26.090 clauses 5.5 to 5.9): adaptive and fixed codebook, gains, and the filters'
// memories, subframe by subframe.
#pragma once

#include "codecs/amr/analysis.h"

namespace codecs::amr {

// What a frame's subframes share
struct FrameAnalysis {
  int mode;
  const Zpp16s* speech;        // 160, with 10 before them
  const Weighting* weighting;  // of the subframes
  const Zpp16s* quantA;        // 4 x 11, Q12, of the synthesis filter
  const Zpp16s* openLoopLags;
  const Zpp16s* gainFlag;
};

// Takes the parameters of a frame one by one.
class ParameterWriter {
 public:
  explicit ParameterWriter(Zpp16s* parameters) : next_(parameters) {}
  void put(Zpp16s value) { *next_++ = value; }
  Zpp16s* take(int count) { return (next_ += count) - count; }

 private:
  Zpp16s* next_;
};

class SubframeEncoder {
 public:
  void encode(const FrameAnalysis& frame, ResonanceGuard& guard, Zpp16s* lagMem, ParameterWriter& parameters);
  // Instead, in a frame of silence
  void rest();
  Zpp16s* gainMem() { return gainMem_; }

 private:
  struct Subframe;

  void searchAdaptiveCodebook(Subframe& s, const ResonanceGuard& guard, ParameterWriter& parameters);
  void searchFixedCodebook(Subframe& s, ParameterWriter& parameters);
  void quantiseGains(Subframe& s, ParameterWriter& parameters);
  void computeTarget(Subframe& s, const Zpp16s* weightMem);
  void close(const Subframe& s, Zpp16s* synthMem, Zpp16s* weightMem);
  // 4.75 kbit/s: two subframes whose gains are quantised together
  void encodePair(const FrameAnalysis& frame, int k, ResonanceGuard& guard, ParameterWriter& parameters);
  void rebuild(Subframe& s, Zpp16s lagBefore);

  static constexpr int kPast = 154;

  Zpp16s excitation_[kPast + kFrame] = {};
  Zpp16s synthMem_[kOrder] = {}, weightMem_[kOrder] = {}, errorMem_[kOrder] = {};
  Zpp16s lag_ = 0, sharpening_ = 0;  // of the last subframe; the gain Q14
  Zpp16s gainMem_[8] = {-2381, -2381, -2381, -2381, -14336, -14336, -14336, -14336};
  Zpp16s adaptMem_[8] = {};
};

}  // namespace codecs::amr
