// What the kernels of the codebook search share.
#pragma once

#include <bit>

#include "amrwb/arithmetic.h"
#include "amrwb/fixed_codebook/kernels.h"

namespace zpp::amrwb {

inline constexpr Zpp16s kPositive = 32767, kNegativeSign = -32768;  // signs as factors in Q15

// Element of PulseTarget's arrays for a position 0..63
constexpr int placeOf(int position) { return 16 * (position % 4) + position / 4; }

// Factors that bring the residual's and the backward-filtered target to unit energy before they choose the signs
struct SignGains {
  Zpp16s residual, corr;

  // weight: of the backward-filtered target, Q15
  SignGains(const Zpp16s* residualTarget, const Zpp16s* backward, Zpp16s weight)
      : residual(gain(residualTarget, 5)), corr(mulRoundQ15(weight, gain(backward, 8))) {}

 private:
  static Zpp16s gain(const Zpp16s* x, int shift) {
    const Floating inverse = inverseSqrt(energy12(x, kSubframe));
    return roundHigh16(shlSat32(inverse.mantissa, inverse.exponent + shift));
  }
};

// The largest ratio of a squared correlation to an energy so far, the first of equals. Squares are no energies of -32768, so
// that the difference of the two products keeps its sign in 32 bits.
struct BestRatio {
  Zpp16s square = -1, energy = 1;

  constexpr bool isBelow(Zpp16s otherSquare, Zpp16s otherEnergy) const { return energy * otherSquare > square * otherEnergy; }

  // Plays candidates in turn, of which those that pass against this ratio have their bit set, every second one counting; calls
  // take(candidate) for each that is better than all before.
  template <class Take>
  void play(unsigned passing, const Zpp16s* squares, const Zpp16s* energies, Take take) {
    for (; passing != 0; passing &= passing - 1) {
      const int i = std::countr_zero(passing) / 2;
      if (!isBelow(squares[i], energies[i])) continue;
      square = squares[i], energy = energies[i];
      take(i);
    }
  }
};

}  // namespace zpp::amrwb
