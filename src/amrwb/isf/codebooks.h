// The split codebooks of the ISF quantisers: which part of the vector each serves.
#pragma once

#include "amrwb/arithmetic.h"
#include "amrwb/isf/tables.h"
#include "amrwb/rate.h"

namespace zpp::amrwb {

struct Codebook {
  const Zpp16s* components;       // by component, then by entry
  int first, dimension, entries;  // ISFs first .. first + dimension - 1; entries: a power of two

  // ISF first + i of an entry; the index counts by its low bits.
  Zpp16s component(int index, int i) const { return components[entries * i + (index & (entries - 1))]; }
};

template <int entries, int dimension>
constexpr Codebook codebook(const Zpp16s (&components)[dimension][entries], int first) {
  return {components[0], first, dimension, entries};
}

// First stage: two codebooks
inline constexpr Codebook kStage1Low = codebook(isfStage1Low, 0), kStage1High = codebook(isfStage1High, 9);

// Second stages, each part within one part of the first
inline constexpr Codebook kStage2[5] = {codebook(isfStage2Part1, 0), codebook(isfStage2Part2, 3), codebook(isfStage2Part3, 6),
                                        codebook(isfStage2Part4, 9), codebook(isfStage2Part5, 12)};
inline constexpr Codebook kStage2LowRate[3] = {codebook(isfStage2LowRatePart1, 0), codebook(isfStage2LowRatePart2, 5),
                                               codebook(isfStage2LowRatePart3, 9)};
inline constexpr Codebook kNoise[5] = {codebook(isfNoisePart1, 0), codebook(isfNoisePart2, 2), codebook(isfNoisePart3, 5),
                                       codebook(isfNoisePart4, 8), codebook(isfNoisePart5, 12)};

struct SecondStage {
  const Codebook* parts;
  int lowParts, count;  // parts that refine kStage1Low, all parts
};
constexpr SecondStage secondStage(Mode mode) {
  return mode == mode660 ? SecondStage{kStage2LowRate, 2, 3} : SecondStage{kStage2, 3, 5};
}

inline constexpr Zpp16s kPrediction = 10923;  // 1/3, Q15
inline constexpr Zpp16s kSpacing = 128;       // least distance of ISFs, 50 Hz

// Keeps the first 15 ISFs apart and in order (Reorder_isf).
constexpr void separate(Zpp16s* isf) {
  Zpp16s lowest = kSpacing;
  for (int i = 0; i < kOrder - 1; ++i) {
    if (isf[i] < lowest) isf[i] = lowest;
    lowest = addSat16(isf[i], kSpacing);
  }
}

}  // namespace zpp::amrwb
