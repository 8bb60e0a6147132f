#include <algorithm>

#include "g729/pitch/kernels.h"
#include "kernels/rig.h"

namespace test {

ZPP_G729_PITCH_KERNELS(ZPP_KERNEL_TYPE)

void runG729PitchKernels(const Options& options, Tally& tally);
void runG729PitchKernels(const Options& options, Tally& tally) { ZPP_G729_PITCH_KERNELS(ZPP_RUN_KERNEL) }

namespace {

// Sizes only repeat the random draws: even ones over the whole range, odd ones within the limits of speech, where no step of
// the arithmetic saturates.
Zpp16s limitOf(int n, int quiet) { return static_cast<Zpp16s>(n % 2 == 0 ? 32767 : quiet); }

Zpp16s* excitation(RigBase& rig, Zpp16s limit) {
  return rig.inOut<Zpp16s>(40, static_cast<Zpp16s>(-limit - (limit == 32767)), limit, 154);
}

}  // namespace

DRIVE(ownSplitPairs_16s, upTo(40, {111})) { rig.run(rig.in<Zpp16s>(2 * n), rig.out<Zpp16s>(n), rig.out<Zpp16s>(n), n); }
DRIVE(ownMeanSquareWeightedError_16s, upTo(300, {15, 17})) {
  const Zpp16s limit = limitOf(n, n % 4 == 1 ? 600 : 3000);
  const Zpp16s* target = rig.in<Zpp16s>(40, static_cast<Zpp16s>(-limit), limit);
  Zpp16s* impulse = rig.inOut<Zpp16s>(40, static_cast<Zpp16s>(-limit / 2), static_cast<Zpp16s>(limit / 2));
  Zpp16s* exc = excitation(rig, limit);
  const int tMin = rig.scalar(16, 124), lags = rig.keep ? n : rig.scalar(1, 18);
  // The scale is chosen for the first delay: here a quiet one meets loud samples afterwards.
  if (n % 4 == 2) {
    for (int i = 0; i < 40; ++i) impulse[i] = static_cast<Zpp16s>(impulse[i] / (n % 8 == 2 ? 4 : 1));
    for (int i = 0; i < 40; ++i) exc[i - tMin] = static_cast<Zpp16s>(exc[i - tMin] / (n % 8 == 2 ? 16 : 128));
  }
  if (n % 4 != 0) impulse[0] = 4096;
  // Constant signals through a single pulse, quiet at the first delay or not: energies and correlations around 2^30
  if (n % 6 == 5 && !rig.keep) {
    const auto level = rig.scalar<Zpp16s>(5000, 32767), targetLevel = rig.scalar<Zpp16s>(0, 1 << rig.scalar(4, 13));
    target = rig.made<Zpp16s>(40, [&](Zpp16s* x) { std::fill_n(x, 40, targetLevel); });
    std::fill_n(impulse + 1, 39, Zpp16s{0});
    std::fill_n(exc - 154, 194, level);
    if (rig.scalar(0, 1) == 0) std::fill_n(exc - tMin, 40, Zpp16s{3});
  }
  // A response that changes its sign: sums of the convolution that leave their range and come back
  if (n % 6 == 4 && !rig.keep) {
    const auto size = rig.scalar<Zpp16s>(3000, 15000);
    std::fill_n(impulse, 20, size);
    std::fill_n(impulse + 20, 20, static_cast<Zpp16s>(-size));
    std::fill_n(exc - 154, 194, rig.scalar<Zpp16s>(3000, 15000));
  }
  rig.run(target, impulse, exc, tMin, tMin + lags - 1, rig.out<Zpp16s>(lags));
}
DRIVE(ownBestFraction_G729_16s, upTo(60, {1})) {
  const Zpp16s limit = limitOf(n, 16383);
  const Zpp16s* corr = rig.in<Zpp16s>(5, static_cast<Zpp16s>(-limit), limit, 4);
  const int first = rig.keep ? -2 : rig.scalar(-2, 0);
  rig.run(corr, first, rig.keep ? 2 : rig.scalar(first, 2));
}
DRIVE(ownDecodeAdaptiveVector_G729_16s_I, {{18, 19, 25, 39, 40, 41, 57, 80, 143, 144}, {18, 57}}) {
  Zpp16s* exc = excitation(rig, limitOf(rig.scalar(0, 1), 8000));
  rig.run(n, rig.scalar(-1, 1), exc);
}
DRIVE(ownAdaptiveCodebookContribution_G729_16s, upTo(20, {1})) {
  rig.run(rig.scalar<Zpp16s>(-32768, 32767), rig.in<Zpp16s>(40), rig.in<Zpp16s>(40), rig.out<Zpp16s>(40));
}

}  // namespace test
