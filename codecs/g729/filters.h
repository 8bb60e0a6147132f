// What encoder and decoder of ITU-T G.729 share: shapes, LP filters, excitation.
#pragma once

#include <algorithm>
#include <array>
#include <span>

#include "zppsc.h"

namespace codecs::g729 {

inline constexpr int kFrameSize = 80, kSubframeSize = 40, kSubframes = 2;  // samples at 8 kHz
inline constexpr int kOrder = 10;                                          // of the LP filters

using Subframe = std::array<Zpp16s, kSubframeSize>;
using Lsp = std::array<Zpp16s, kOrder>;         // cosines, Q15
using Lsf = std::array<Zpp16s, kOrder>;         // frequencies, Q13 radians; "normalised": over 2 pi, Q15
using Filter = std::array<Zpp16s, kOrder + 1>;  // LP coefficients, Q12
using SubframeFilters = std::array<Filter, kSubframes>;

// Annex E: LP filters of order 30 from the past synthesis. Where they may stand in for one another, a filter tells its order,
// and memories hold the past of the longer one.
inline constexpr int kBackwardOrder = 30;
using BackwardFilter = std::array<Zpp16s, kBackwardOrder + 1>;
struct AnyFilter {
  AnyFilter() = default;
  AnyFilter(const Filter& forward) { std::copy(forward.begin(), forward.end(), a.begin()); }
  AnyFilter(const BackwardFilter& backward) : order(kBackwardOrder), a(backward) {}

  Zpp16s order = kOrder;   // of 16 bits, so that nothing undefined lies behind the last element
  BackwardFilter a{4096};  // zeros behind the order
};
using AnySubframeFilters = std::array<AnyFilter, kSubframes>;

// The integer part and the fraction in thirds
using PitchDelay = std::array<Zpp16s, 2>;
inline constexpr Zpp16s kShortestDelay = 20, kLongestDelay = 143;

inline constexpr int kPastExcitation = 154;  // that the adaptive codebook reaches back

// The predictor memory of the LSP quantiser and of its decoder (clause 3.2.4): the LSFs of a flat spectrum at the start
class MaMemory {
 public:
  MaMemory();
  Zpp16s* data() { return rows_.data(); }
  void push(const Lsf& codeVector);

 private:
  std::array<Zpp16s, 4 * kOrder> rows_;
};

// The predictor memory of the gain quantiser and of its decoder (clause 3.9.1)
using GainMemory = std::array<Zpp16s, 4>;
inline constexpr GainMemory kInitialGainMemory = {-14336, -14336, -14336, -14336};

// Clauses 3.2.5 and 3.2.6
Lsp meanOf(const Lsp& a, const Lsp& b);
Filter toFilter(const Lsp& lsp);

// The LSPs of a flat spectrum, with which both sides start
inline constexpr Lsp kInitialLsp = {30000, 26000, 21000, 15000, 8000, 0, -8000, -15000, -21000, -26000};

// The quantised LSPs from frame to frame
class LspInterpolation {
 public:
  // The filters of both subframes on the way to the next LSPs
  SubframeFilters moveTo(const Lsp& lsp);
  const Lsp& last() const { return lsp_; }
  void set(const Lsp& lsp) { lsp_ = lsp; }

 private:
  Lsp lsp_ = kInitialLsp;
};

// A(z / gamma), gamma Q15 (clause 3.3)
Filter weight(const Filter& a, Zpp16s gamma);

// 1/A(z) of a subframe, memory being the kOrder outputs before it. True if an output was clamped.
bool synthesise(const Filter& a, const Zpp16s* input, Zpp16s* output, const Zpp16s* memory);

// The same three of filters of either order: A(z / gamma); A(z) over a subframe of speech and what stands before it; 1/A(z),
// past being the end of the outputs before it, or null for silence
AnyFilter weight(const AnyFilter& filter, Zpp16s gamma);
void residual(const AnyFilter& filter, const Zpp16s* speech, Zpp16s* output);
bool synthesise(const AnyFilter& filter, const Zpp16s* input, Zpp16s* output, const Zpp16s* past);

// The memory that a subframe leaves to the next
template <int order = kOrder>
using FilterMemory = std::array<Zpp16s, order>;
template <int order = kOrder, std::size_t size>
FilterMemory<order> lastOf(const std::array<Zpp16s, size>& samples) {
  FilterMemory<order> last;
  std::copy(samples.end() - order, samples.end(), last.begin());
  return last;
}

// Makes room for the next frame at the end of a buffer.
template <class Sample, std::size_t size>
void shiftFrame(std::array<Sample, size>& buffer) {
  std::copy(buffer.begin() + kFrameSize, buffer.end(), buffer.begin());
}

// One of the signal filters of clauses 3.1 and 4.2.5
class HighPassFilter {
 public:
  enum class Kind { input, output };  // 140 Hz, halving; 100 Hz, doubling
  explicit HighPassFilter(Kind kind);
  void filter(std::span<Zpp16s> signal);

 private:
  std::array<Zpp8u, 24> state_;
  int scaleFactor_;
};

// The samples of the four pulses that a position word names (clause 3.8.2)
std::array<int, 4> pulsePositions(Zpp16s positions);

// Pitch sharpening of the fixed-codebook contribution (clause 3.8): adds the past of the code vector, or of an impulse
// response, that lies a delay below 40 back. The strength follows the pitch gain, Q14.
inline constexpr Zpp16s kLeastSharpening = 3277;
void sharpen(Subframe& code, int delay, Zpp16s sharpening);
Zpp16s sharpeningFor(Zpp16s pitchGain);

// excitation = pitchGain * excitation + codeGain * code; gains Q14 and Q1, code Q13 (clause 3.10)
void mixExcitation(Zpp16s* excitation, const Subframe& code, Zpp16s pitchGain, Zpp16s codeGain);

// The noise of clause 4.4.4 and Annex B
class RandomNumbers {
 public:
  explicit constexpr RandomNumbers(Zpp16s seed) : value_(seed) {}
  Zpp16s next() { return value_ = static_cast<Zpp16s>(value_ * 31821 + 13849); }

 private:
  Zpp16s value_;
};

}  // namespace codecs::g729
