// Coding of the pitch lag (3GPP TS 26.090 clauses 5.6.1 and 6.1): a lag with its fraction to the index of the bit stream and
// back.
#pragma once

#include "zppsc.h"

inline constexpr int kMaxLag = 143;

// A lag of samples + fraction / 3, at 12.2 kbit/s samples + fraction / 6
struct PitchLag {
  int samples, fraction;
};

// Integer lags that a subframe may use
struct LagRange {
  int min, max;
};
// From `below` under the centre on, `length` further, moved into minLag..143
constexpr LagRange getRange(int centre, int below, int length, int minLag) {
  const int min = centre - below < minLag ? minLag : centre - below;
  return min + length > kMaxLag ? LagRange{kMaxLag - length, kMaxLag} : LagRange{min, min + length};
}
// The lag around which 4 bits code a range of 9
constexpr int centreOf(LagRange range) { return range.min + 5; }

// How an index stands for a lag: by itself, relative to a range, or in 4 bits around the centre of a range
enum class LagCoding { absolute, delta, delta4 };

int ownEncLag3(PitchLag lag, LagCoding coding, LagRange range);
int ownEncLag6(PitchLag lag, LagCoding coding, LagRange range);
PitchLag ownDecLag3(int index, LagCoding coding, LagRange range);
PitchLag ownDecLag6(int index, LagCoding coding, LagRange range);
