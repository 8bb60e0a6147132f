#include "amr/pitch/lag_coding.h"

namespace {

// The standard's divisions by 3 and 6 in Q15
constexpr int thirdOf(int x) { return (x * 10923) >> 15; }
constexpr int sixthOf(int x) { return (x * 5462) >> 15; }

}  // namespace

int ownEncLag3(PitchLag lag, LagCoding coding, LagRange range) {
  const int thirds = 3 * lag.samples + lag.fraction;
  switch (coding) {
    case LagCoding::absolute:
      return lag.samples <= 85 ? thirds - 58 : lag.samples + 112;
    case LagCoding::delta:
      return thirds - 3 * range.min + 2;
    default: {
      // Thirds from centre - 2 to centre + 1, whole samples below and above
      const int centre = centreOf(range), lowest = 3 * (centre - 2);
      if (thirds <= lowest) return lag.samples - centre + 5;
      if (thirds >= 3 * (centre + 1)) return lag.samples - centre + 11;
      return thirds - lowest + 3;
    }
  }
}

int ownEncLag6(PitchLag lag, LagCoding coding, LagRange range) {
  const int sixths = 6 * lag.samples + lag.fraction;
  if (coding != LagCoding::absolute) return sixths - 6 * range.min + 3;
  return lag.samples <= 94 ? sixths - 105 : lag.samples + 368;
}

PitchLag ownDecLag3(int index, LagCoding coding, LagRange range) {
  switch (coding) {
    case LagCoding::absolute: {
      if (index >= 197) return {index - 112, 0};
      const int samples = thirdOf(index + 2) + 19;
      return {samples, index - 3 * samples + 58};
    }
    case LagCoding::delta: {
      const int offset = thirdOf(index + 2) - 1;
      return {range.min + offset, index - 3 * offset - 2};
    }
    default: {
      const int centre = centreOf(range);
      if (index < 4) return {centre + index - 5, 0};
      if (index >= 12) return {centre + index - 11, 0};
      const int offset = thirdOf(index - 5) - 1;
      return {centre + offset, index - 3 * offset - 9};
    }
  }
}

PitchLag ownDecLag6(int index, LagCoding coding, LagRange range) {
  if (coding != LagCoding::absolute) {
    const int offset = sixthOf(index + 5) - 1;
    return {range.min + offset, index - 6 * offset - 3};
  }
  if (index >= 463) return {index - 368, 0};
  const int samples = sixthOf(index + 5) + 17;
  return {samples, index - 6 * samples + 105};
}
