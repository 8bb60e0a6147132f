#include "g728/hybrid_window.h"

#include <algorithm>
#include <cmath>

#include "g728/kernels.h"
#include "kernels/rig.h"

namespace test {

ZPP_G728_KERNELS(ZPP_KERNEL_TYPE)

void runG728Kernels(const Options& options, Tally& tally){ZPP_G728_KERNELS(ZPP_RUN_KERNEL)}

// The size is the largest shift: with small ones the sums reach far beyond 32 bits.
DRIVE(ownZeroInputSums_G728_16s, upTo(40, {3})) {
  const auto* memory = rig.in<Zpp16s>(50, -8192, 8191);
  rig.run(rig.in<Zpp16s>(50), memory, rig.in<Zpp16s>(10, 0, static_cast<Zpp16s>(n)), rig.out<Zpp64s>(5));
}
// The size is the order.
DRIVE(ownLevinsonDurbin_G728_16s, upTo(50, {10, 50})) {
  // Autocorrelations of a few sinusoids in noise, so that the recursion gets far; now and then anything.
  const int rubbish = rig.scalar(0, 9), start = n > 1 ? rig.scalar(1, n - 1) : 1;
  const int tones = rig.scalar(1, 6), floor = rig.scalar(0, 3000);
  Zpp32s step[6], level[6];
  for (int t = 0; t < tones; ++t) step[t] = rig.scalar(0, 32767), level[t] = rig.scalar(100, 32767 / tones);
  const auto* r = rig.made<Zpp16s>(n + 1, [&](Zpp16s* p) {
    for (int k = 0; k <= n; ++k) {
      double sum = k == 0 ? floor : 0;
      for (int t = 0; t < tones; ++t) sum += level[t] * std::cos(3.14159265 / 32768 * step[t] * k);
      p[k] = static_cast<Zpp16s>(rubbish == 0 ? rig.scalar(-32768, 32767) : std::min(sum, 32767.0));
    }
  });
  // A new recursion at stage 2, or one continued with any predictor
  const bool isNew = rig.keep || rig.scalar(0, 3) != 0;
  const Zpp16s first = r[0] <= 0 || std::abs(r[1]) >= r[0] ? Zpp16s{0} : static_cast<Zpp16s>(-32767 * r[1] / r[0]);
  auto* a = rig.inOut<Zpp16s>(n, isNew ? first : Zpp16s{-6000}, isNew ? first : Zpp16s{6000});
  auto* residual = rig.inOut<Zpp16s>(1, 1, 32767);
  auto* shift = rig.inOut<int>(1, 0, isNew ? 0 : 15);
  if (isNew) *residual = static_cast<Zpp16s>(std::max(1.0, r[0] * (1 - first / 32768.0 * first / 32768.0)));
  rig.run(r, isNew ? 1 : start, n, a, residual, shift);
}
// The size is the number of bits of the impulse response: large ones leave the range of the fast sums.
DRIVE(ownShapeEnergy_G728_16s, upTo(16, {14})) {
  const auto limit = static_cast<Zpp16s>((1 << (n - 1)) - 1);
  if (n == 16 && rig.scalar(0, 1) == 0) {
    // With all filtered vectors within 16 bits the largest energy comes to 1.65 times 2^31: here to half of that and more.
    constexpr Zpp16s loudest[] = {-32767, 32767, -27065, -8617, 12549};
    const int part = rig.scalar(720, 1024);
    return rig.run(rig.made<Zpp16s>(5,
                                    [&](Zpp16s* h) {
                                      for (int i = 0; i < 5; ++i) h[i] = static_cast<Zpp16s>(loudest[i] * part / 1024);
                                    }),
                   rig.out<Zpp16s>(128));
  }
  rig.run(rig.in<Zpp16s>(5, static_cast<Zpp16s>(-limit - 1), limit), rig.out<Zpp16s>(128));
}
DRIVE(ownCodebookSearch_G728_16s, upTo(16, {13})) {
  const auto limit = static_cast<Zpp16s>((1 << (n - 1)) - 1);
  const bool any = !rig.keep && rig.scalar(0, 3) == 0;
  const auto* target = rig.in<Zpp16s>(5, static_cast<Zpp16s>(-limit - 1), limit);
  rig.run(target, rig.in<Zpp16s>(128, any ? Zpp16s{-32768} : Zpp16s{0}, any ? Zpp16s{32767} : limit));
}

// Samples of 15 bits behind the shift
DRIVE(ownWindow_G728_16s, upTo(120, {34, 60})) {
  const int shift = rig.scalar(-1, 14), limit = 16384 >> std::max(shift, 0) << (shift < 0);
  const auto* src = rig.in<Zpp16s>(n, static_cast<Zpp16s>(-limit), static_cast<Zpp16s>(limit - 1));
  rig.run(src, rig.in<Zpp16s>(n), rig.out<Zpp16s>(n), n, shift);
}
// The size is the number of vectors.
DRIVE(ownWindowBlock_G728_16s, upTo(51, {21})) {
  const auto* src = rig.in<Zpp16s>(5 * n);
  const auto* window = rig.in<Zpp16s>(5 * n);
  const Zpp16s lowest = rig.keep ? -3 : static_cast<Zpp16s>(rig.scalar(-40, 1));
  rig.run(src, window, rig.in<Zpp16s>(n, lowest, 1), rig.out<Zpp16s>(5 * n), n);
}
// The size is the order.
DRIVE(ownFinishLags_G728_32s16s, upTo(50, {10, 50})) {
  static zpp::g728::LagShifts shifts;
  const auto small = [&](int lowest, int highest) { return rig.scalar(lowest, rig.scalar(0, 7) == 0 ? highest : 8); };
  shifts = {rig.scalar(1, 15), small(1, 40), small(1, 40), small(0, 31), small(1, 40), small(1, 40), small(-1, 31)};
  const auto* leaving = rig.in<Zpp32s>(n);
  const auto* newest = rig.in<Zpp32s>(n);
  rig.run(leaving, newest, rig.inOut<Zpp16s>(n), rig.out<Zpp16s>(n), n, std::cref(shifts));
}

// The size is the number of bits of the coefficients.
DRIVE(ownPastSums_G728_16s, upTo(16, {15})) {
  const auto limit = static_cast<Zpp16s>((1 << (n - 1)) - 1), lowest = static_cast<Zpp16s>(-limit - 1);
  const auto* zero = rig.in<Zpp16s>(10, lowest, limit);
  const auto* pole = rig.in<Zpp16s>(10, lowest, limit);
  rig.run(zero, pole, rig.history<Zpp16s>(4, 10), rig.history<Zpp16s>(0, 10), rig.out<Zpp64s>(5));
}
DRIVE(ownWeightLPC_G728_16s, upTo(60, {10, 50})) {
  const int shift = rig.scalar(1, 3);
  // With coefficients below 4 nothing is refused; some beyond, and the ends of the range
  const auto limit = static_cast<Zpp16s>(rig.scalar(0, 1) == 0 ? 32767 : 8191);
  const auto* src = rig.in<Zpp16s>(n, static_cast<Zpp16s>(-limit - 1), limit);
  rig.run(src, rig.in<Zpp16s>(n, -16384, 16384), rig.out<Zpp16s>(n), n, shift);
}

}  // namespace test
