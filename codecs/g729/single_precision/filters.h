// What encoder and decoder of ITU-T G.729 Annex C share: signals and LP filters in single precision and natural units. Speech
// has the size of 16-bit samples.
#pragma once

#include <algorithm>
#include <array>
#include <span>

#include "codecs/g729/filters.h"

namespace codecs::g729f {

using g729::kFrameSize, g729::kSubframeSize, g729::kSubframes, g729::kOrder, g729::kPastExcitation;
using g729::kShortestDelay, g729::kLongestDelay;
using g729::PitchDelay, g729::shiftFrame;

using Subframe = std::array<Zpp32f, kSubframeSize>;
using Lsp = std::array<Zpp32f, kOrder>;  // cosines
using Lsf = std::array<Zpp32f, kOrder>;  // radians
using Filter = std::array<Zpp32f, kOrder + 1>;
using SubframeFilters = std::array<Filter, kSubframes>;
using FilterMemory = std::array<Zpp32f, kOrder>;

// The LSFs of a flat spectrum, with which the predictors start
inline constexpr Lsf kFlatLsf = {0.285599f, 0.571199f, 0.856798f, 1.142397f, 1.427997f,
                                 1.713596f, 1.999195f, 2.284795f, 2.570394f, 2.855993f};
// The predictor memory of the LSP quantiser and of its decoder (clause 3.2.4)
class MaMemory {
 public:
  MaMemory();
  Zpp32f* data() { return rows_.data(); }
  void push(const Lsf& codeVector);

 private:
  std::array<Zpp32f, 4 * kOrder> rows_;
};

// The predictor memory of the gain quantiser and of its decoder, dB (clause 3.9.1)
using GainMemory = std::array<Zpp32f, 4>;
inline constexpr GainMemory kInitialGainMemory = {-14, -14, -14, -14};

// The LSPs with which both sides start
inline constexpr Lsp kInitialLsp = {0.9595f,  0.8413f,  0.6549f,  0.4154f,  0.1423f,
                                    -0.1423f, -0.4154f, -0.6549f, -0.8413f, -0.9595f};

// Clauses 3.2.5 and 3.2.6
Lsp meanOf(const Lsp& a, const Lsp& b);
Filter toFilter(const Lsp& lsp);

// The quantised LSPs from frame to frame
class LspInterpolation {
 public:
  // The filters of both subframes on the way to the next LSPs
  SubframeFilters moveTo(const Lsp& lsp);

 private:
  Lsp lsp_ = kInitialLsp;
};

// A(z / gamma)
Filter weight(const Filter& a, Zpp32f gamma);
// A(z) of a subframe of speech, and what stands before it
void residual(const Filter& a, const Zpp32f* speech, Zpp32f* output);
// 1/A(z) of a number of samples, past being the end of the outputs before them, or null for silence; output may be input.
void synthesise(const Filter& a, const Zpp32f* input, Zpp32f* output, const Zpp32f* past, int length = kSubframeSize);
// The first samples of the response of numerator / denominator
void respond(const Filter& numerator, const Filter& denominator, std::span<Zpp32f> response);

template <std::size_t size>
FilterMemory lastOf(const std::array<Zpp32f, size>& samples) {
  FilterMemory last;
  std::copy(samples.end() - kOrder, samples.end(), last.begin());
  return last;
}

// Sums over a subframe, or so many samples
Zpp32f product(const Zpp32f* a, const Zpp32f* b, int length = kSubframeSize);
inline Zpp32f energyOf(const Zpp32f* a, int length = kSubframeSize) { return product(a, a, length); }

// One of the signal filters of clauses 3.1 and 4.2.5
class HighPassFilter {
 public:
  struct Coefficients {
    Zpp32f b0, b1, b2, a1, a2;
  };
  static constexpr Coefficients kInput = {0.92727435f, -1.8544941f, 0.92727435f, 1.9059465f, -0.91140240f};   // 140 Hz
  static constexpr Coefficients kOutput = {0.93980581f, -1.8795834f, 0.93980581f, 1.9330735f, -0.93589199f};  // 100 Hz
  explicit HighPassFilter(const Coefficients& coefficients) : c_(coefficients) {}
  void filter(std::span<Zpp32f> signal);

 private:
  Coefficients c_;
  Zpp32f x1_ = 0, x2_ = 0, y1_ = 0, y2_ = 0;
};

// Pitch sharpening of the fixed-codebook contribution, or of an impulse response (clause 3.8)
inline constexpr Zpp32f kLeastSharpening = 0.2f;
void sharpen(Subframe& code, int delay, Zpp32f sharpening);
inline Zpp32f sharpeningFor(Zpp32f pitchGain) { return std::clamp(pitchGain, kLeastSharpening, 0.7945f); }

// excitation = pitchGain * excitation + codeGain * code (clause 3.10)
void mixExcitation(Zpp32f* excitation, const Subframe& code, Zpp32f pitchGain, Zpp32f codeGain);

}  // namespace codecs::g729f
