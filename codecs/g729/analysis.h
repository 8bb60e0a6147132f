// LP analysis of ITU-T G.729 (clauses 3.2.1 and 3.2.2).
#pragma once

#include "codecs/g729/filters.h"

namespace codecs::g729 {

inline constexpr int kWindowSize = 240;
inline constexpr int kLags = 13;  // 0..12; Annex B looks at the last two

using Reflection = std::array<Zpp16s, kOrder>;  // coefficients, Q15

// The Levinson-Durbin recursion, and the filter that stands in where the recursion finds an unstable one: the last that was
// stable.
class LevinsonDurbin {
 public:
  // autocorrelation: lags 0..10, normalised; energy, where it is wanted: of the residual, kept when the filter is unstable
  const Filter& solve(const Zpp32s* autocorrelation, Zpp16s* energy = nullptr);
  // Of the last filter
  const Reflection& reflection() const { return reflection_; }

 private:
  Filter filter_ = {4096};
  Reflection reflection_{};
};

struct Correlations {
  std::array<Zpp32s, kLags> windowed;       // by the lag window, normalised
  std::array<Zpp16s, kOrder + 1> original;  // upper halves from before the lag window
  int exponent;                             // what the normalisation took: energy * 2^exponent
};

Correlations autocorrelate(std::span<const Zpp16s, kWindowSize> speech);

}  // namespace codecs::g729
