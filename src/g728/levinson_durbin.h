// A stage of the Levinson-Durbin recursion (ITU-T G.728 clauses 3.7 and G.4, blocks 37, 44, 50): what the kernels share.
#pragma once

#include "g728/arithmetic.h"

namespace zpp::g728 {

inline constexpr int kMaxLevinsonOrder = 50;

// num / den in Q16 by restoring division, 65535 when num is den or more; den above 0
constexpr Zpp32u quotientQ16(Zpp32u num, Zpp32u den) { return num >= den ? 65535 : (num << 16) / den; }

// Reflection coefficient of a stage, as a magnitude of Q16, 0..65535, with the sign of the coefficient that the stage adds
struct Reflection {
  Zpp32u magnitude;
  bool negative;

  // Q15
  constexpr int halved() const { return static_cast<int>(std::min((magnitude + 1) >> 1, 32767u)); }
  constexpr Zpp16s rounded() const { return static_cast<Zpp16s>(negative ? -halved() : halved()); }
  // The coefficient that the stage adds, with 15 - shift bits behind the point. Below 2^31 + 2^15 before the last shift.
  constexpr Zpp16s coefficient(int shift) const {
    const auto c = static_cast<int>(std::min(((magnitude << 15 >> shift) + 0x8000) >> 16, 32767u));
    return static_cast<Zpp16s>(negative ? -c : c);
  }
};

// Reflection coefficient from x, the correlation of the prediction error, and *error, the prediction error, which becomes that
// of the stage. False for a breakdown: nothing has changed.
inline bool reflect(int x, Zpp16s* error, Reflection* reflection) {
  const int magnitude = x < 0 ? -x : x;
  if (magnitude >= *error) return false;
  *reflection = {(static_cast<Zpp32u>(magnitude) << 16) / static_cast<Zpp32u>(*error), x > 0};
  // Both terms are below 2^31 in magnitude.
  const Zpp32s left = *error * 65536 - 2 * reflection->halved() * magnitude;
  if (left <= 0) return false;
  *error = roundHigh16(left);
  return true;
}

// a[0..count-1] of the order before becomes that of the order after, pair by pair, outermost first: a[f] + k a[g]. When a
// result does not fit, all coefficients lose a bit, those done already included, and *shift counts it. False when that would be
// the third: breakdown, with a of no use.
inline bool updatePairs(Zpp16s* a, int count, Zpp16s k, int* shift) {
  const auto sum = [k](Zpp16s c, Zpp16s other) { return c * Zpp64s{65536} + Zpp64s{2} * k * other; };
  const auto fits = [](Zpp64s x) { return x == sat32(x); };
  for (int f = 0, g = count - 1; f <= g; ++f, --g) {
    Zpp64s u = sum(a[f], a[g]), v = sum(a[g], a[f]);
    if (!fits(u) || !fits(v)) {
      if (++*shift > 2) return false;
      for (int n = 0; n < count; ++n) a[n] = static_cast<Zpp16s>(a[n] >> 1);
      u = sum(a[f], a[g]), v = sum(a[g], a[f]);
    }
    a[f] = rounded(u);
    a[g] = rounded(v);
  }
  return true;
}

}  // namespace zpp::g728
