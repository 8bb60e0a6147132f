// The fixed-point operators that a codec's own steps need between the primitives: the saturating arithmetic of ITU-T G.191's
// basic operators. A doubled product turns Q formats a and b into a + b + 1.
#pragma once

#include <algorithm>
#include <bit>

#include "zppsc.h"

namespace codecs {

constexpr Zpp16s sat16(Zpp32s x) { return static_cast<Zpp16s>(std::clamp<Zpp32s>(x, -32768, 32767)); }
constexpr Zpp32s sat32(Zpp64s x) { return static_cast<Zpp32s>(std::clamp<Zpp64s>(x, INT32_MIN, INT32_MAX)); }

constexpr Zpp16s addSat16(Zpp16s a, Zpp16s b) { return sat16(a + b); }
constexpr Zpp16s subSat16(Zpp16s a, Zpp16s b) { return sat16(a - b); }
constexpr Zpp16s absSat16(Zpp16s a) { return sat16(a < 0 ? -a : a); }
constexpr Zpp32s addSat32(Zpp32s a, Zpp32s b) { return sat32(Zpp64s{a} + b); }
constexpr Zpp32s subSat32(Zpp32s a, Zpp32s b) { return sat32(Zpp64s{a} - b); }

// Products of Q15 factors, truncated and rounded
constexpr Zpp16s mulQ15(Zpp16s a, Zpp16s b) { return sat16((a * b) >> 15); }
constexpr Zpp16s mulRoundQ15(Zpp16s a, Zpp16s b) { return sat16((a * b + 16384) >> 15); }

// Doubled products, alone and added to a sum
constexpr Zpp32s mulDbl(Zpp16s a, Zpp16s b) { return sat32(Zpp64s{2} * a * b); }
constexpr Zpp32s macDbl(Zpp32s sum, Zpp16s a, Zpp16s b) { return addSat32(sum, mulDbl(a, b)); }
// The same of a 32-bit value whose halves are multiplied one by one: x * b * 2^-15
constexpr Zpp32s mulDbl32(Zpp32s x, Zpp16s b) {
  const auto upper = static_cast<Zpp16s>(x >> 16);
  const Zpp32s lower = x >> 1 & 0x7fff;
  return addSat32(mulDbl(upper, b), 2 * ((lower * b) >> 15));
}

// x * 2^n, for either sign of n
constexpr Zpp32s shlSat32(Zpp32s x, int n) {
  return n >= 0 ? sat32(Zpp64s{x} * (Zpp64s{1} << std::min(n, 31))) : x >> std::min(-n, 31);
}
// x * 2^-n, rounded where bits are dropped
constexpr Zpp16s shrRound16(Zpp16s x, int n) {
  if (n <= 0) return sat16(shlSat32(x, -n));
  return n > 15 ? Zpp16s{0} : static_cast<Zpp16s>((x + (1 << (n - 1))) >> n);
}
constexpr Zpp16s high16(Zpp32s x) { return static_cast<Zpp16s>(x >> 16); }
constexpr Zpp16s low16(Zpp32s x) { return static_cast<Zpp16s>(x); }
constexpr Zpp32s fromHigh16(Zpp16s x) { return x * 65536; }
constexpr Zpp16s roundHigh16(Zpp32s x) { return high16(addSat32(x, 0x8000)); }

// The left shift that normalises x; 0 for 0
constexpr int norm32(Zpp32s x) { return x == 0 ? 0 : std::countl_zero(static_cast<Zpp32u>(x < 0 ? ~x : x)) - 1; }
constexpr int norm16(Zpp16s x) { return x == 0 ? 0 : norm32(x) - 16; }

}  // namespace codecs
