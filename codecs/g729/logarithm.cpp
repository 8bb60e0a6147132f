#include "codecs/g729/logarithm.h"

#include <array>

#include "codecs/fixed_point.h"

namespace codecs::g729 {
namespace {

// log2(1 + n / 32), Q15
// clang-format off
constexpr std::array<Zpp16s, 33> logarithms = {
    0, 1455, 2866, 4236, 5568, 6863, 8124, 9352, 10549, 11716, 12855, 13967, 15054, 16117, 17156, 18172, 19167, 20142, 21097,
    22033, 22951, 23852, 24735, 25603, 26455, 27291, 28113, 28922, 29716, 30497, 31266, 32023, 32767};
// clang-format on

}  // namespace

Logarithm log2Of(Zpp32s value) {
  if (value <= 0) return {0, 0};
  const int shift = norm32(value);
  const Zpp32s mantissa = value << shift;
  const int n = (mantissa >> 25) - 32, between = mantissa >> 10 & 0x7fff;
  const Zpp32s logarithm = fromHigh16(logarithms[n]) + 2 * between * (logarithms[n + 1] - logarithms[n]);
  return {static_cast<Zpp16s>(30 - shift), high16(logarithm)};
}

Zpp16s logEnergy(Zpp32s energy, int exponent) {
  constexpr Zpp16s log10Of2 = 9864;  // Q15
  const auto [integer, fraction] = log2Of(energy);
  const Zpp32s level = macDbl(mulDbl32(fromHigh16(integer) + 2 * fraction, log10Of2), log10Of2, sat16(exponent - 2));
  return subSat16(high16(shlSat32(level, 11)), 4875);
}

}  // namespace codecs::g729
