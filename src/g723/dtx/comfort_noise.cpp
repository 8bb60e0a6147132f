// Excitation of the comfort noise (ITU-T G.723.1 Annex A, clause A.4): random adaptive vectors and pulses, scaled to a gain.
#include <algorithm>
#include <cstring>

#include "core/checks.h"
#include "core/fixed_point.h"
#include "g723/arithmetic.h"
#include "g723/dtx/kernels.h"
#include "g723/pitch/kernels.h"
#include "g723/tables.h"

using namespace g723;
using namespace zpp;

namespace {

constexpr int kHalves = 2, kHalfFrame = 120, kPulses = 11;  // of a half frame

// The pulses of a half frame
struct RandomPulses {
  int position[kPulses];
  bool positive[kPulses];
};

// 0..limit-1
int drawn(Zpp16s* seed, int limit) {
  *seed = nextSeed(*seed);
  return ((*seed & 0x7fff) * limit) >> 15;
}

void drawPulses(Zpp16s* seed, RandomPulses* halves) {
  constexpr int kPlaces = 30;
  int grids[kHalves][2];
  for (int half = 0; half < kHalves; ++half) {
    const int bits = drawn(seed, 1 << (2 + kPulses));
    for (int i = 0; i < 2; ++i) grids[half][i] = bits >> i & 1;
    for (int k = 0; k < kPulses; ++k) halves[half].positive[k] = (bits >> (2 + k) & 1) != 0;
  }
  for (int half = 0; half < kHalves; ++half) {
    int* position = halves[half].position;
    for (int i = 0; i < 2; ++i) {
      int places[kPlaces], left = kPlaces;
      for (int k = 0; k < kPlaces; ++k) places[k] = k;
      for (int k = 0; k < Nb_puls[i]; ++k) {
        const int choice = drawn(seed, left);
        *position++ = 2 * places[choice] + grids[half][i] + kSubframe * i;
        places[choice] = places[--left];
      }
    }
  }
}

// Amplitude of the pulses that brings a half frame to the energy of the gain: the smaller root of a quadratic equation, or
// the value nearest to a root where there is none
Zpp16s pulseAmplitude(const Zpp16s* excitation, const RandomPulses& pulses, Zpp16s gain) {
  constexpr Zpp16s kInversePulses = 2979;  // Q15: 1/11
  constexpr Zpp16s kMaxAmplitude = 10000;
  const Zpp16s largest = ownMaxAbs_16s(excitation, kHalfFrame);
  const int shift = largest == 0 ? 0 : std::max(4 - norm16(largest), -2);
  Zpp16s scaled[kHalfFrame];
  for (int n = 0; n < kHalfFrame; ++n) scaled[n] = shlSat16(excitation[n], -shift);
  Zpp32s sum = 0;  // of eleven samples of 13 bits
  for (int k = 0; k < kPulses; ++k) sum += pulses.positive[k] ? scaled[pulses.position[k]] : -scaled[pulses.position[k]];
  const Zpp32s wanted = mulDbl(low16(mulDbl(gain, kSubframe) >> 6), gain);
  const Zpp32s surplus = subSat32(zpp::energy(scaled, kHalfFrame), shr32(wanted, 2 * shift + 4));
  const Zpp16s middle = mulRoundQ15(low16(sum), kInversePulses);
  const Zpp32s discriminant = negSat32(subSat32(mul32Q15(surplus, kInversePulses), mulDbl(middle, middle)));
  Zpp16s amplitude = negSat16(middle);
  if (discriminant > 0) {
    const Zpp16s root = squareRoot(discriminant);
    amplitude = subSat16(root, middle);
    const Zpp16s other = addSat16(middle, root);
    if (absSat16(other) < absSat16(amplitude)) amplitude = negSat16(other);
  }
  return std::clamp<Zpp16s>(shlSat16(amplitude, shift + 1), -kMaxAmplitude, kMaxAmplitude);
}

}  // namespace

ZppStatus zppsComfortNoise_G723_16s(Zpp16s* history, Zpp16s* seed, Zpp16s* dst, Zpp16s* lags, Zpp16s* gainIndices,
                                    Zpp16s gain) {
  if (anyNull(history, seed, dst, lags) || anyNull(gainIndices)) return zppStsNullPointer;
  if (outside<int>(gain, 0, 16383)) return zppStsBadArgument;
  ownComfortNoise_G723_16s(history, seed, dst, lags, gainIndices, gain);
  return zppStsOk;
}

void ownComfortNoise_G723_16s(Zpp16s* history, Zpp16s* seed, Zpp16s* dst, Zpp16s* lags, Zpp16s* gainIndices, Zpp16s gain) {
  constexpr int kOffsets[4] = {1, 0, 1, 3};
  lags[0] = static_cast<Zpp16s>(drawn(seed, 21) + 123);
  lags[1] = static_cast<Zpp16s>(drawn(seed, 19) + 123);
  for (int i = 0; i < 4; ++i) gainIndices[i] = static_cast<Zpp16s>(drawn(seed, 50) + 1);
  RandomPulses pulses[kHalves];
  drawPulses(seed, pulses);

  for (int half = 0; half < kHalves; ++half, dst += kHalfFrame) {
    // The delays are longer than a half frame: its second vector takes nothing of the first one, nor of the zeros.
    Zpp16s past[kHistory + kSubframe] = {};
    std::copy_n(history, kHistory, past);
    for (int i = 0; i < 2; ++i) {
      const int delay = lags[half] + kOffsets[2 * half + i] - 1;
      ownDecodeAdaptiveVector_G723_16s(delay, AdCdbkGainTblLowRate[gainIndices[2 * half + i]], past + kSubframe * i,
                                       dst + kSubframe * i);
    }
    const Zpp16s amplitude = pulseAmplitude(dst, pulses[half], gain);
    for (int k = 0; k < kPulses; ++k) {
      Zpp16s& sample = dst[pulses[half].position[k]];
      sample = addSat16(sample, mulQ15(amplitude, pulses[half].positive[k] ? Zpp16s{16384} : Zpp16s{-16384}));
    }
    std::memmove(history, history + kHalfFrame, (kHistory - kHalfFrame) * sizeof(Zpp16s));
    std::copy_n(dst, kHalfFrame, history + kHistory - kHalfFrame);
  }
}
