// Steps of the fixed-point arithmetic of ITU-T G.723.1 that its functions share.
#pragma once

#include "core/fixed_point.h"
#include "core/kernels.h"
#include "lpc/dot_product.h"

namespace g723 {

inline constexpr int kFrame = 240, kSubframe = 60, kOrder = 10;
inline constexpr int kHistory = 145;  // past excitation, and past weighted speech

constexpr bool isRate(ZppSpeechRate rate) { return rate == ZPP_RATE_5300 || rate == ZPP_RATE_6300; }

// Block scaling: normalised to three guard bits. Returns the shift to the left, -3 for a block of zeros.
inline int blockScale(const Zpp16s* src, Zpp16s* dst, int len) {
  constexpr int kGuardBits = 3;
  const int scale = ownAutoScale_16s(src, dst, len) - kGuardBits;
  ownRShiftC_16s(dst, dst, len, kGuardBits);
  return scale;
}

// num / (2 den) of a 32-bit numerator of 0 or more; 32767 from num = den * 2^16 on
constexpr Zpp16s quotient(Zpp32s num, Zpp16s den) {
  return num >= zpp::fromHigh16(den) ? Zpp16s{32767} : static_cast<Zpp16s>((num >> 1) / den);
}

// The largest even r with 2 r^2 <= x; 0 for a negative x
constexpr Zpp16s squareRoot(Zpp32s x) {
  Zpp16s root = 0;
  for (Zpp16s bit = 1 << 14; bit > 1; bit = static_cast<Zpp16s>(bit >> 1)) {
    const Zpp16s larger = zpp::addSat16(root, bit);
    if (x >= zpp::mulDbl(larger, larger)) root = larger;
  }
  return root;
}

// The random generator of concealment and comfort noise
constexpr Zpp16s nextSeed(Zpp16s seed) { return zpp::wrap16(static_cast<Zpp16u>(seed) * 521 + 259); }

}  // namespace g723
