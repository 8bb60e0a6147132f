#include "g726/tables.h"

namespace zpp::g726 {

// {32 W(I), DQLN, 512 F(I)}; a code and its inverse differ in sign only.
// clang-format off
constexpr CodeMeaning codeMeaning[60] = {
    // 16 kbit/s
    {-704, 116, 0}, {14048, 365, 3584}, {14048, 365, 3584}, {-704, 116, 0},
    // 24 kbit/s
    {-128, -2048, 0}, {960, 135, 512}, {4384, 273, 1024}, {18624, 373, 3584},
    {18624, 373, 3584}, {4384, 273, 1024}, {960, 135, 512}, {-128, -2048, 0},
    // 32 kbit/s
    {-384, -2048, 0}, {576, 4, 0}, {1312, 135, 0}, {2048, 213, 512},
    {3584, 273, 512}, {6336, 323, 512}, {11360, 373, 1536}, {35904, 425, 3584},
    {35904, 425, 3584}, {11360, 373, 1536}, {6336, 323, 512}, {3584, 273, 512},
    {2048, 213, 512}, {1312, 135, 0}, {576, 4, 0}, {-384, -2048, 0},
    // 40 kbit/s
    {448, -2048, 0}, {448, -66, 0}, {768, 28, 0}, {1248, 104, 0},
    {1280, 169, 0}, {1312, 224, 512}, {1856, 274, 512}, {3200, 318, 512},
    {4512, 358, 512}, {5728, 395, 512}, {7008, 429, 1024}, {8960, 459, 1536},
    {11456, 488, 2048}, {14080, 514, 2560}, {16928, 539, 3072}, {22272, 566, 3072},
    {22272, 566, 3072}, {16928, 539, 3072}, {14080, 514, 2560}, {11456, 488, 2048},
    {8960, 459, 1536}, {7008, 429, 1024}, {5728, 395, 512}, {4512, 358, 512},
    {3200, 318, 512}, {1856, 274, 512}, {1312, 224, 512}, {1280, 169, 0},
    {1248, 104, 0}, {768, 28, 0}, {448, -66, 0}, {448, -2048, 0},
};
// clang-format on

namespace {

// Decision levels of QUAN in ascending order, Q7, without the level 0 where the intervals on both of its sides have the same
// code. The number of levels not above DLN is the code of a difference of 0 or more; a negative one has the inverted bits.
// Where the all-zero code is not used, at every rate but the lowest, the lowest interval has the all-one code with both signs.
constexpr Zpp16s levels16[] = {261};
constexpr Zpp16s levels24[] = {8, 218, 331};
constexpr Zpp16s levels32[] = {-124, 80, 178, 246, 300, 349, 400};
constexpr Zpp16s levels40[] = {-122, -16, 68, 139, 198, 250, 298, 339, 378, 413, 445, 475, 502, 528, 553};

template <int levels>
constexpr Quantiser makeQuantiser(const Zpp16s (&level)[levels]) {
  constexpr int ones = 2 * levels + 1;
  Quantiser quantiser{};
  for (int log = lowestLog; log <= highestLog; ++log) {
    int code = 0;
    while (code < levels && level[code] <= log) ++code;
    Quantiser::Interval& interval = quantiser.interval[log - lowestLog];
    interval.code[0] = static_cast<Zpp8u>(code == 0 && levels > 1 ? ones : code);
    interval.code[1] = static_cast<Zpp8u>(ones - code);
    interval.logMagnitude = codeMeaning[ones - 3 + code].logMagnitude;
  }
  return quantiser;
}

// Code words in the order of their values; mu-law has two zeros, 127 and 255, which are one step of the scale.
constexpr LawLevels makeMuLaw() {
  LawLevels law{};
  for (int code = 0; code < 256; ++code) {
    const int magnitude = ~code & 127;
    const int value = ((2 * (magnitude & 15) + 33) << (magnitude >> 4)) - 33;
    const bool negative = code < 128;
    law.value[code] = static_cast<Zpp16s>(negative ? -value : value);
    const int outer = magnitude == 127 ? code : code - 1;
    const int inner = code + 1;
    law.smaller[code] = static_cast<Zpp8u>(magnitude == 0 ? 126 : negative ? outer : inner);
    law.greater[code] = static_cast<Zpp8u>(magnitude == 0 ? 254 : negative ? inner : outer);
  }
  return law;
}

constexpr LawLevels makeALaw() {
  LawLevels law{};
  for (int code = 0; code < 256; ++code) {
    const int plain = code ^ 0x55, magnitude = plain & 127, segment = magnitude >> 4;
    const int value = segment == 0 ? 4 * (magnitude & 15) + 2 : (4 * (magnitude & 15) + 66) << (segment - 1);
    const bool negative = plain < 128;
    law.value[code] = static_cast<Zpp16s>(negative ? -value : value);
    const int outer = magnitude == 127 ? plain : plain + 1;
    const int inner = magnitude == 0 ? plain ^ 128 : plain - 1;
    law.smaller[code] = static_cast<Zpp8u>((negative ? outer : inner) ^ 0x55);
    law.greater[code] = static_cast<Zpp8u>((negative ? inner : outer) ^ 0x55);
  }
  return law;
}

}  // namespace

constinit const Quantiser quantisers[4] = {makeQuantiser(levels16), makeQuantiser(levels24), makeQuantiser(levels32),
                                           makeQuantiser(levels40)};

constinit const LawLevels lawLevels[2] = {makeMuLaw(), makeALaw()};

}  // namespace zpp::g726
