// Tables of ITU-T G.722.1 beside those inside the library: the region powers' code, decoding trees, reconstruction.
#pragma once

#include <array>
#include <cstdint>

namespace codecs::g7221 {

inline constexpr int kRegions = 14;

// Differences of region powers, -12..11: lengths and words of their code, by region (the first region has none) and difference
// + 12
extern const std::uint8_t powerCodeLengths[kRegions][24];
extern const std::uint16_t powerCodes[kRegions][24];
// Decoding trees: 23 nodes of two entries, one for each value of the next bit. A positive entry is the next node, others are
// leaves, minus the decoded value.
extern const std::int8_t powerTrees[kRegions][46];
// Trees of the vector codes, by category, as above: the decoded value is the vector index. Where the next eight bits lead is
// looked up: to a leaf by `bits` of them, or to a node by all eight.
struct VectorTree {
  struct Entry {
    std::int16_t node;
    std::uint8_t bits;
  };
  const std::int16_t* nodes;
  std::array<Entry, 256> shortcuts;
};
extern const VectorTree vectorTrees[7];

// Bits that a region takes on average, by category
extern const std::uint8_t expectedBits[8];
// Standard deviation of a region's coefficients by power index, a factor sqrt(2) a step, 1 at index 24
extern const std::int16_t standardDeviations[64];
// Reconstruction points in standard deviations, Q12, by category and quantised value
extern const std::int16_t centroids[7][14];
// Amplitude of the noise that fills coefficients without a value, in standard deviations, Q15, for categories 5, 6, 7
extern const std::int16_t noiseFactors[3];

}  // namespace codecs::g7221
