#include "amrwb/excitation/kernels.h"
#include "amrwb/filters/kernels.h"
#include "amrwb/fixed_codebook/kernels.h"
#include "amrwb/gain/kernels.h"
#include "amrwb/isf/kernels.h"
#include "amrwb/noise/kernels.h"
#include "amrwb/pitch/kernels.h"

#include "amrwb/arithmetic.h"
#include "amrwb/filters/tables.h"
#include "amrwb/gain/tables.h"
#include "amrwb/isf/tables.h"
#include "kernels/rig.h"

namespace test {

ZPP_AMRWB_EXCITATION_KERNELS(ZPP_KERNEL_TYPE)
ZPP_AMRWB_FILTER_KERNELS(ZPP_KERNEL_TYPE)
ZPP_AMRWB_FIXED_CODEBOOK_KERNELS(ZPP_KERNEL_TYPE)
ZPP_AMRWB_GAIN_KERNELS(ZPP_KERNEL_TYPE)
ZPP_AMRWB_ISF_KERNELS(ZPP_KERNEL_TYPE)
ZPP_AMRWB_NOISE_KERNELS(ZPP_KERNEL_TYPE)
ZPP_AMRWB_PITCH_KERNELS(ZPP_KERNEL_TYPE)

void runAmrWbKernels(const Options& options, Tally& tally) {
  ZPP_AMRWB_EXCITATION_KERNELS(ZPP_RUN_KERNEL)
  ZPP_AMRWB_FILTER_KERNELS(ZPP_RUN_KERNEL)
  ZPP_AMRWB_FIXED_CODEBOOK_KERNELS(ZPP_RUN_KERNEL)
  ZPP_AMRWB_GAIN_KERNELS(ZPP_RUN_KERNEL)
  ZPP_AMRWB_ISF_KERNELS(ZPP_RUN_KERNEL)
  ZPP_AMRWB_NOISE_KERNELS(ZPP_RUN_KERNEL)
  ZPP_AMRWB_PITCH_KERNELS(ZPP_RUN_KERNEL)
}

namespace {

// Levels at both sides of where the faster paths end, one a call
template <class Rig>
Zpp16s level(Rig& rig) {
  constexpr Zpp16s levels[] = {300, 3000, 6750, 8200, 12000, 17500, 28910, 30083, 32767};
  return levels[rig.scalar(0, 8)];
}
template <class Rig>
const Zpp16s* within(Rig& rig, int n, Zpp16s most, int history = 0) {
  return rig.template in<Zpp16s>(n, static_cast<Zpp16s>(-most), most, history);
}

// LP coefficients 1.0 and a decaying rest: mostly of a stable filter, now and then of one that soon saturates. Beside constant
// signals often one whose sum leaves its range half-way and comes back, now and then within its last four terms.
template <class Rig>
const Zpp16s* filter(Rig& rig, int order) {
  const bool constant = rig.content == Content::constant || rig.content == Content::turning;
  if (constant && rig.scalar(0, 1) == 0) {
    // Four outputs in a row: the latest ones, which are no longer constant, do not count.
    const int first = rig.scalar(0, 1) == 0 ? 5 : order - 3, turn = (first + order - 1) / 2;
    const auto size = static_cast<Zpp16s>(first == 5 ? 32767 >> rig.scalar(0, 3) : 32767);
    return rig.template made<Zpp16s>(order + 1, [&](Zpp16s* a) {
      std::fill_n(a, order + 1, Zpp16s{0});
      a[0] = 4096;
      for (int j = first; j <= order; ++j) a[j] = j <= turn ? size : static_cast<Zpp16s>(-size);
    });
  }
  const bool wild = rig.scalar(0, 5) == 0;
  const int strength = rig.scalar(0, 5) == 0 ? 4 : 1;
  const auto unit = static_cast<Zpp16s>(4096 >> rig.scalar(0, 4));
  return rig.template made<Zpp16s>(order + 1, [&](Zpp16s* a) {
    a[0] = unit;
    for (int j = 1; j <= order; ++j)
      a[j] = static_cast<Zpp16s>(wild ? rig.scalar(-32768, 32767) : rig.scalar(-unit, unit) * strength / (2 * j + 2));
  });
}

// An impulse response that decays
template <class Rig>
const Zpp16s* response(Rig& rig, int start) {
  return rig.template made<Zpp16s>(64, [&](Zpp16s* h) {
    for (int n = 0; n < 64; ++n) h[n] = static_cast<Zpp16s>(rig.scalar(-start, start) * 8 / (n + 8));
  });
}

}  // namespace

DRIVE(ownDownSampling_AMRWB_16s, {{5, 10, 15, 80, 320}, {320}}) {
  auto* mem = rig.inOut<Zpp16s>(30);
  rig.run(rig.in<Zpp16s>(n), rig.out<Zpp16s>(n * 4 / 5), n, mem);
}
DRIVE(ownUpSampling_AMRWB_16s, {{4, 8, 64, 256}, {64}}) {
  const Zpp16s most = level(rig);
  auto* mem = rig.inOut<Zpp16s>(24, static_cast<Zpp16s>(-most), most);
  rig.run(within(rig, n, most), rig.out<Zpp16s>(n * 5 / 4), n, mem);
}
DRIVE(ownDecimateBy2_AMRWB_16s_I, {{4, 6, 8, 14, 256}, {256}}) {
  auto* mem = rig.inOut<Zpp16s>(3);
  rig.run(rig.inOut<Zpp16s>(n), n, mem);
}
DRIVE(ownHighBandFilter_AMRWB_16s_I, {{1, 3, 4, 79, 80, 81, 200}, {80}}) {
  const Zpp16s most = level(rig);
  auto* mem = rig.inOut<Zpp16s>(30, static_cast<Zpp16s>(-most), most);
  const bool low = rig.scalar(0, 1) == 1;
  auto* samples = rig.inOut<Zpp16s>(n, static_cast<Zpp16s>(-most), most);
  rig.run(low ? lowPass7kHz : bandPass6To7kHz, samples, n, low ? 0 : 2, mem);
}
DRIVE(ownPreemphasize_AMRWB_16s_I, {{1, 7, 8, 9, 64, 268}, {64, 268}}) {
  auto* mem = rig.inOut<Zpp16s>(1);
  const auto gamma = static_cast<Zpp16s>(rig.scalar(0, 3) == 0 ? -32768 + rig.scalar(0, 1) : rig.scalar(-32768, 32767));
  // Where the product of two of -32768 saturates, it is seen in the last bit of a sample that is shifted up to the top.
  rig.run(rig.inOut<Zpp16s>(n), n, gamma, rig.scalar(0, 1) == 0 ? 15 : rig.scalar(0, 14), mem);
}
DRIVE(ownPreemphasisScale_AMRWB_16s, {{1, 7, 8, 9, 64, 320}, {320}}) {
  const auto gamma = static_cast<Zpp16s>(rig.scalar(0, 3) == 0 ? -32768 + rig.scalar(0, 1) : rig.scalar(-32768, 32767));
  const auto most = static_cast<Zpp16s>(32767 >> rig.scalar(0, 15));
  const auto* src = rig.template in<Zpp16s>(n, static_cast<Zpp16s>(-most - 1), most);
  rig.run(src, n, gamma, static_cast<Zpp16s>(rig.scalar(-most - 1, most)));
}
DRIVE(ownResidualFilter_AMRWB_16s, {{1, 7, 8, 9, 16, 31, 64, 256}, {64, 256}}) {
  rig.run(filter(rig, 16), within(rig, n, level(rig), 16), rig.out<Zpp16s>(n), n);
}
DRIVE(ownSynthesisFilter_AMRWB_16s_I, {{1, 3, 4, 5, 15, 16, 17, 23, 64, 80}, {64, 80}}) {
  const int order = rig.scalar(0, 2) == 0 ? 20 : 16;
  const Zpp16s most = level(rig), past = level(rig);
  auto* mem = rig.inOut<Zpp16s>(order, static_cast<Zpp16s>(-past), past);
  const Zpp16s* const lpc = filter(rig, order);
  auto* samples = rig.inOut<Zpp16s>(n, static_cast<Zpp16s>(-most), most);
  const bool response = rig.scalar(0, 3) == 0;
  rig.run(lpc, order, static_cast<Zpp16s>(response ? 16384 : lpc[0] >> 1), response ? 3 : zpp::norm16(lpc[0]) + 1, samples, n,
          mem);
}
DRIVE(ownSynthesisFilter_AMRWB_16s32s, {{1, 3, 4, 5, 16, 23, 64}, {64}}) {
  const Zpp32s most = rig.scalar(0, 3) == 0 ? (1 << 27) - 1 : 1 << 22;
  auto* dst = rig.inOut<Zpp32s>(n, -most, most, 16);
  rig.run(filter(rig, 16), within(rig, n, level(rig)), dst, n, rig.scalar(0, 8));
}

DRIVE(ownNoise_AMRWB_16s, {{8, 16, 80, 256}, {80, 256}}) {
  auto* seed = rig.inOut<Zpp16s>(1);
  rig.run(rig.out<Zpp16s>(n), n, rig.scalar(0, 4), seed);
}

DRIVE(ownConvolution_AMRWB_16s, only({1})) {
  rig.run(within(rig, 64, level(rig)), response(rig, rig.scalar(100, 32767)), rig.out<Zpp16s>(64));
}
DRIVE(ownRemove_AMRWB_16s, only({1})) {
  const auto* y = rig.in<Zpp16s>(64);
  auto* x = rig.inOut<Zpp16s>(64);
  auto* dst = rig.out<Zpp16s>(64);
  rig.run(static_cast<const Zpp16s*>(x), y, static_cast<Zpp16s>(rig.scalar(0, 19661)), rig.scalar(0, 1) == 0 ? x : dst);
}
DRIVE(ownNormCorr_AMRWB_16s, only({1, 9, 24})) {
  const int minLag = rig.scalar(30, 235 - n), maxLag = minLag + n - 1;
  const auto* excitation = within(rig, 64, level(rig), maxLag);
  rig.run(excitation, within(rig, 64, level(rig)), response(rig, rig.scalar(100, 32767)), minLag, maxLag, rig.out<Zpp16s>(n));
}
DRIVE(ownPredLt_AMRWB_16s_I, {{17, 22, 23, 24, 33, 34, 40, 64, 130, 231}, {34, 130}}) {
  const Zpp16s most = level(rig);
  auto* excitation = rig.inOut<Zpp16s>(65, static_cast<Zpp16s>(-most), most, 248);
  rig.run(excitation, n, rig.scalar(0, 3));
}
// The source ends one element behind the last output.
DRIVE(ownAdaptiveCodebookLowPass_AMRWB_16s, upTo(40, {64})) {
  rig.run(rig.in<Zpp16s>(n + 1, -32768, 32767, 1), rig.out<Zpp16s>(n), n);
}

// --- Algebraic codebook: one size, many calls of each kind; n tells the response's level ---------------------------------

namespace {

template <class Rig, class Call>
void repeat(Rig& rig, Call call) {
  for (int run = 0; run < (rig.keep ? 1 : 40); ++run) {
    if (!rig.keep) rig.beginCall();
    call();
  }
}

// The signs of a target, and whatever else it holds within a level
template <class Rig>
zpp::amrwb::PulseTarget* pulseTarget(Rig& rig, Zpp16s most) {
  auto* values = rig.template inOut<Zpp16s>(sizeof(zpp::amrwb::PulseTarget) / sizeof(Zpp16s), static_cast<Zpp16s>(-most), most);
  auto* target = reinterpret_cast<zpp::amrwb::PulseTarget*>(values);
  for (int n = 0; n < 64; ++n) {
    target->sign[n] = target->corr[n] < 0 ? -32768 : 32767;
    if (rig.scalar(0, 3) != 0) target->corr[n] = static_cast<Zpp16s>(target->corr[n] & 0x7fff);
  }
  return target;
}

}  // namespace

// n: bits of the correlations
DRIVE(ownChooseSigns_AMRWB_16s, only({3, 12, 24, 32})) {
  repeat(rig, [&] {
    const auto most = static_cast<Zpp32s>((Zpp64s{1} << (n - 1)) - 1);
    const auto* sums = rig.template in<Zpp32s>(64, -most - 1, most);
    const auto* residualTarget = within(rig, 64, level(rig));
    rig.run(sums, residualTarget, static_cast<Zpp16s>(rig.scalar(2048, 8192)), pulseTarget(rig, 32767),
            rig.template out<Zpp16s>(64));
  });
}

// 5792: the level at which the energy of 64 equal samples begins to saturate
DRIVE(ownPulseCorrelations_AMRWB_16s, only({300, 4096, 5791, 5793, 32767})) {
  repeat(rig, [&] {
    const auto* impulse = rig.scalar(0, 1) == 0 ? response(rig, n) : within(rig, 64, static_cast<Zpp16s>(n));
    rig.run(impulse, pulseTarget(rig, 32767));
  });
}

DRIVE(ownPulseGains_AMRWB_16s, only({300, 4096, 20000, 32767})) {
  repeat(rig, [&] {
    const Zpp16s* const impulse = response(rig, n);
    const Zpp16s* const code = within(rig, 64, level(rig));
    const bool exact = zpp::productsFit(ownDotProd_16s(impulse, impulse, 64), ownDotProd_16s(code, code, 64));
    const zpp::amrwb::PulseTarget* const target = pulseTarget(rig, 32767);
    rig.run(impulse, code, target, rig.scalar(0, 3), rig.template out<Zpp16s>(32), exact);
  });
}

// The energy of the pulses so far on both sides of where the faster path ends
DRIVE(ownSearchPulsePair_AMRWB_16s, only({0, 1000, 16382, 16383, 32767})) {
  repeat(rig, [&] {
    const Zpp16s most = level(rig);
    const zpp::amrwb::PulseTarget* const target = pulseTarget(rig, most);
    const auto energy = static_cast<Zpp16s>(rig.scalar(0, 3) == 0 ? -n : n);
    const auto* gain = rig.template in<Zpp16s>(32, static_cast<Zpp16s>(rig.scalar(0, 2) == 0 ? -most : 0), most);
    const auto* candidate = rig.template in<Zpp16s>(16, 0, 1);
    rig.run(target, rig.scalar(0, 3), static_cast<Zpp16s>(rig.scalar(-most, most)), energy, gain, candidate);
  });
}

// n: what all energies are above, with room for cross terms or without
DRIVE(ownSearchTwoPulses_AMRWB_16s, only({0, 2000, 20000})) {
  repeat(rig, [&] {
    const Zpp16s most = rig.scalar(0, 2) == 0 ? level(rig) : static_cast<Zpp16s>(1000);
    const zpp::amrwb::PulseTarget* const target = pulseTarget(rig, most);
    rig.run(target, rig.template in<Zpp16s>(64, static_cast<Zpp16s>(n), static_cast<Zpp16s>(n + rig.scalar(0, 8000))));
  });
}

// n: bits of the coefficients, 13 as the codec has them
DRIVE(ownSearchGains_AMRWB_16s, only({4, 12, 13, 14})) {
  repeat(rig, [&] {
    const int most = (1 << n) - 1;
    const auto* error = rig.template made<Zpp16s>(10, [&](Zpp16s* c) {
      for (int i = 0; i < 10; ++i) c[i] = static_cast<Zpp16s>(i < 5 ? rig.scalar(-most, most) : rig.scalar(0, 4095));
    });
    const bool small = rig.scalar(0, 1) == 0;
    const auto* pairs = small ? zpp::amrwb::gainCodebook6 : zpp::amrwb::gainCodebook7 + rig.scalar(0, 64);
    rig.run(pairs, small && rig.scalar(0, 1) == 0 ? 48 : 64, static_cast<Zpp16s>(rig.scalar(16384, 32767)),
            reinterpret_cast<const zpp::amrwb::GainError*>(error));
  });
}

// --- ISF codebooks: n tells the dimension ---------------------------------------------------------------------------------

namespace {

struct Book {
  const Zpp16s* components;
  int entries;
};
Book bookOf(int dimension) {
  using namespace zpp::amrwb;
  switch (dimension) {
    case 2:
      return {isfNoisePart1[0], 64};
    case 3:
      return {isfStage2Part2[0], 128};
    case 4:
      return {isfNoisePart5[0], 32};
    case 5:
      return {isfStage2LowRatePart1[0], 128};
    case 7:
      return {isfStage1High[0], 256};
    default:
      return {isfStage1Low[0], 256};
  }
}

// A vector near an entry, between two, or as far as to saturate
template <class Rig>
const Zpp16s* isfTarget(Rig& rig, int dimension) {
  constexpr Zpp16s levels[] = {0, 40, 600, 8600, 8601, 12500, 32767};
  const Zpp16s most = levels[rig.scalar(0, 6)];
  const bool extreme = rig.scalar(0, 1) == 0;
  const Book book = bookOf(dimension);
  const int entry = rig.scalar(0, book.entries - 1);
  return rig.template made<Zpp16s>(dimension, [&](Zpp16s* x) {
    for (int i = 0; i < dimension; ++i) {
      const int offset = !extreme ? rig.scalar(-most, most) : i % 2 == 0 || most < 8600 ? -most : most;
      const int value = (most < 8600 ? book.components[book.entries * i + entry] : 0) + offset;
      x[i] = zpp::sat16(value);
    }
  });
}

}  // namespace

DRIVE(ownIsfDistances_AMRWB_16s, only({7, 9})) {
  repeat(rig, [&] {
    const Book book = bookOf(n);
    rig.run(isfTarget(rig, n), book.components, n, book.entries, rig.template out<Zpp32s>(book.entries));
  });
}

DRIVE(ownNearestIsf_AMRWB_16s, only({2, 3, 4, 5, 7})) {
  repeat(rig, [&] {
    const Book book = bookOf(n);
    rig.run(isfTarget(rig, n), book.components, n, book.entries);
  });
}

DRIVE(ownExcitation_AMRWB_16s_I, only({1})) {
  const Zpp16s most = level(rig);
  auto* vector = rig.inOut<Zpp16s>(64);
  const auto gain = rig.scalar(0, 2) == 0 ? rig.scalar(-32768, 32767) : std::min(32767, (1 << rig.scalar(24, 27)) / most - 1);
  rig.run(within(rig, 64, most), vector, static_cast<Zpp16s>(gain), static_cast<Zpp16s>(rig.scalar(-32768, 32767)));
}

}  // namespace test
