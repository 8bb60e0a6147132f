// How the pulses of a track are numbered in the bit stream (3GPP TS 26.190 clause 5.8.2). The range of N bits of position is
// halved; how many pulses lie in which half comes first in a number, then the pulses of either half by themselves.
#include "amrwb/fixed_codebook/pulse_numbering.h"

#include <utility>

namespace zpp::amrwb {

namespace {

// --- Pulses to numbers --------------------------------------------------------------------------------------------------

struct Range {
  int bits;

  int position(int pulse) const { return pulse & ((1 << bits) - 1); }
  bool isUpper(int pulse) const { return ((pulse >> (bits - 1)) & 1) != 0; }
};
constexpr int signBit(int pulse) { return pulse >> 4 & 1; }

Zpp32s one(int p, int bits) { return Range{bits}.position(p) + (signBit(p) << bits); }

// The order of the two positions tells whether the signs are equal.
Zpp32s two(int p, int q, int bits) {
  const Range range = {bits};
  const bool ascending = range.position(p) <= range.position(q), equal = signBit(p) == signBit(q);
  const int upper = ascending == equal ? p : q, lower = ascending == equal ? q : p;
  return (range.position(upper) << bits) + range.position(lower) + (signBit(upper) << (2 * bits));
}

// Moves two pulses of the same half to the front and returns that half: among three there is such a pair.
bool pairUp(int* p, int bits) {
  const Range range = {bits};
  if (range.isUpper(p[0]) != range.isUpper(p[1])) {
    // The pulse that is alone goes behind the pair: p[1] where p[0] and p[2] match, else p[0].
    if (range.isUpper(p[0]) == range.isUpper(p[2])) {
      std::swap(p[1], p[2]);
    } else {
      const int alone = p[0];
      p[0] = p[1], p[1] = p[2], p[2] = alone;
    }
  }
  return range.isUpper(p[0]);
}

Zpp32s three(int p, int q, int r, int bits) {
  int pulses[3] = {p, q, r};
  const Zpp32s half = pairUp(pulses, bits) ? 1 : 0;
  return two(pulses[0], pulses[1], bits - 1) + (half << (2 * bits - 1)) + (one(pulses[2], bits) << (2 * bits));
}
Zpp32s three(const int* p, int bits) { return three(p[0], p[1], p[2], bits); }

// Four pulses without regard to their halves but for one pair
Zpp32s fourByPairs(const int* p, int bits) {
  int pulses[3] = {p[0], p[1], p[2]};
  const Zpp32s half = pairUp(pulses, bits) ? 1 : 0;
  return two(pulses[0], pulses[1], bits - 1) + (half << (2 * bits - 1)) + (two(pulses[2], p[3], bits) << (2 * bits));
}

// The pulses of the lower and of the upper half, in order
struct Halves {
  int lower[kMaxTrackPulses], upper[kMaxTrackPulses], inLower = 0, inUpper = 0;

  Halves(const int* p, int count, int bits) {
    for (int i = 0; i < count; ++i) Range{bits}.isUpper(p[i]) ? upper[inUpper++] = p[i] : lower[inLower++] = p[i];
  }
};

Zpp32s four(const int* p, int bits) {
  const Halves h(p, 4, bits);
  const int *lower = h.lower, *upper = h.upper, half = bits - 1;
  Zpp32s number = 0;
  switch (h.inLower) {
    case 0:
      number = (1 << (4 * bits - 3)) + fourByPairs(upper, half);
      break;
    case 1:
      number = (one(lower[0], half) << (3 * half + 1)) + three(upper, half);
      break;
    case 2:
      number = (two(lower[0], lower[1], half) << (2 * half + 1)) + two(upper[0], upper[1], half);
      break;
    case 3:
      number = (three(lower, half) << bits) + one(upper[0], half);
      break;
    default:
      number = fourByPairs(lower, half);
      break;
  }
  return number + ((h.inLower & 3) << (4 * bits - 2));
}

Zpp32s five(const int* p, int bits) {
  const Halves h(p, 5, bits);
  const int *lower = h.lower, *upper = h.upper, half = bits - 1;
  Zpp32s majority = 0, rest = 0;
  switch (h.inLower) {
    case 0:
      majority = three(upper, half), rest = two(upper[3], upper[4], bits);
      break;
    case 1:
      majority = three(upper, half), rest = two(upper[3], lower[0], bits);
      break;
    case 2:
      majority = three(upper, half), rest = two(lower[0], lower[1], bits);
      break;
    case 3:
      majority = three(lower, half), rest = two(upper[0], upper[1], bits);
      break;
    case 4:
      majority = three(lower, half), rest = two(lower[3], upper[0], bits);
      break;
    default:
      majority = three(lower, half), rest = two(lower[3], lower[4], bits);
      break;
  }
  return ((h.inLower <= 2 ? 1 : 0) << (5 * bits - 1)) + (majority << (2 * bits + 1)) + rest;
}

Zpp32s six(const int* p, int bits) {
  const Halves h(p, 6, bits);
  const int *lower = h.lower, *upper = h.upper, half = bits - 1;
  Zpp32s number = 0, split = 0;
  switch (h.inLower) {
    case 0:
      number = (five(upper, half) << bits) + one(upper[5], half), split = 0;
      break;
    case 1:
      number = (five(upper, half) << bits) + one(lower[0], half), split = 1;
      break;
    case 2:
      number = (four(upper, half) << (2 * half + 1)) + two(lower[0], lower[1], half), split = 2;
      break;
    case 3:
      number = (three(lower, half) << (3 * half + 1)) + three(upper, half), split = 3;
      break;
    case 4:
      number = (four(lower, half) << (2 * half + 1)) + two(upper[0], upper[1], half), split = 2;
      break;
    case 5:
      number = (five(lower, half) << bits) + one(upper[0], half), split = 1;
      break;
    default:
      number = (five(lower, half) << bits) + one(lower[5], half), split = 0;
      break;
  }
  return number + ((h.inLower <= 2 ? 1 : 0) << (6 * bits - 5)) + (split << (6 * bits - 4));
}

// --- Numbers to pulses --------------------------------------------------------------------------------------------------

constexpr int kBits = 4;

constexpr int field(Zpp32s number, int shift, int bits) { return number >> shift & ((1 << bits) - 1); }
constexpr bool bit(Zpp32s number, int shift) { return field(number, shift, 1) != 0; }

// Writes the pulses of numbers one after the other; first: where the range of positions begins.
struct Reader {
  Zpp8u* next;

  void put(int position, bool negative) { *next++ = static_cast<Zpp8u>(position + (negative ? kNegative : 0)); }

  void one(Zpp32s x, int bits, int first) { put(first + field(x, 0, bits), bit(x, bits)); }

  void two(Zpp32s x, int bits, int first) {
    const int p = field(x, bits, bits), q = field(x, 0, bits);
    const bool negative = bit(x, 2 * bits), opposite = q < p;
    put(first + p, negative);
    put(first + q, negative != opposite);
  }

  void pairInHalf(Zpp32s x, int bits, int first) { two(x, bits - 1, first + (bit(x, 2 * bits - 1) ? 1 << (bits - 1) : 0)); }
  void three(Zpp32s x, int bits, int first) {
    pairInHalf(x, bits, first);
    one(x >> (2 * bits), bits, first);
  }
  void fourByPairs(Zpp32s x, int bits, int first) {
    pairInHalf(x, bits, first);
    two(x >> (2 * bits), bits, first);
  }

  void four(Zpp32s x, int bits, int lower) {
    const int half = bits - 1, upper = lower + (1 << half);
    switch (field(x, 4 * bits - 2, 2)) {
      case 0:
        fourByPairs(x, half, bit(x, 4 * bits - 3) ? upper : lower);
        break;
      case 1:
        one(x >> (3 * half + 1), half, lower), three(x, half, upper);
        break;
      case 2:
        two(x >> (2 * half + 1), half, lower), two(x, half, upper);
        break;
      default:
        three(x >> bits, half, lower), one(x, half, upper);
        break;
    }
  }
  void five(Zpp32s x, int bits, int lower) {
    const int half = bits - 1, upper = lower + (1 << half);
    three(x >> (2 * bits + 1), half, bit(x, 5 * bits - 1) ? upper : lower);
    two(x, bits, lower);
  }
  void six(Zpp32s x, int bits, int lower) {
    const int half = bits - 1, upper = lower + (1 << half);
    int most = lower, fewest = upper;
    if (bit(x, 6 * bits - 5)) std::swap(most, fewest);
    switch (field(x, 6 * bits - 4, 2)) {
      case 0:
        five(x >> bits, half, most), one(x, half, most);
        break;
      case 1:
        five(x >> bits, half, most), one(x, half, fewest);
        break;
      case 2:
        four(x >> (2 * half + 1), half, most), two(x, half, fewest);
        break;
      default:
        three(x >> (3 * half + 1), half, lower), three(x, half, upper);
        break;
    }
  }
};

}  // namespace

Zpp32s numberOfPulses(const Zpp8u* pulses, int count) {
  int p[kMaxTrackPulses];
  for (int i = 0; i < count; ++i) p[i] = pulses[i];
  switch (count) {
    case 1:
      return one(p[0], kBits);
    case 2:
      return two(p[0], p[1], kBits);
    case 3:
      return three(p, kBits);
    case 4:
      return four(p, kBits);
    case 5:
      return five(p, kBits);
    default:
      return six(p, kBits);
  }
}

void pulsesOfNumber(Zpp32s number, Zpp8u* pulses, int count) {
  Reader reader = {pulses};
  switch (count) {
    case 1:
      reader.one(number, kBits, 0);
      break;
    case 2:
      reader.two(number, kBits, 0);
      break;
    case 3:
      reader.three(number, kBits, 0);
      break;
    case 4:
      reader.four(number, kBits, 0);
      break;
    case 5:
      reader.five(number, kBits, 0);
      break;
    default:
      reader.six(number, kBits, 0);
      break;
  }
}

}  // namespace zpp::amrwb
