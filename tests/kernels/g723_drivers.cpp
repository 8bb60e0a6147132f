#include "g723/filters/kernels.h"
#include "g723/fixed_codebook/kernels.h"
#include "g723/lsf/kernels.h"
#include "g723/pitch/kernels.h"

#include <cstring>

#include "core/fixed_point.h"
#include "g723/tables.h"
#include "kernels/rig.h"

namespace test {

ZPP_G723_LSF_KERNELS(ZPP_KERNEL_TYPE)
ZPP_G723_PITCH_KERNELS(ZPP_KERNEL_TYPE)
ZPP_G723_FILTER_KERNELS(ZPP_KERNEL_TYPE)
ZPP_G723_FCB_KERNELS(ZPP_KERNEL_TYPE)

void runG723Kernels(const Options& options, Tally& tally) {
  ZPP_G723_LSF_KERNELS(ZPP_RUN_KERNEL)
  ZPP_G723_PITCH_KERNELS(ZPP_RUN_KERNEL)
  ZPP_G723_FILTER_KERNELS(ZPP_RUN_KERNEL)
  ZPP_G723_FCB_KERNELS(ZPP_RUN_KERNEL)
}

namespace {

Zpp16s within(int limit) { return static_cast<Zpp16s>(limit); }

// Magnitudes from those of speech to those that saturate
const Sizes levels = {{300, 3000, 12000, 32767}, {3000}};

}  // namespace

// Any block with an energy below 2^31: 180 * 3454^2
DRIVE(ownAutoCorr_NormE_G723_16s32s, only({180})) { rig.run(rig.in<Zpp16s>(180, -3454, 3454), 0, rig.out<Zpp32s>(10)); }
// Arbitrary polynomials: sums that leave 32 bits, roots anywhere; n limits the magnitudes.
DRIVE(ownFindRootLSF_Fast, {{2000, 20000, 21800, 21900, 22500, 32767}, {20000}}) {
  auto* polynomials = rig.inOut<Zpp16s>(16, static_cast<Zpp16s>(-n), static_cast<Zpp16s>(n));
  for (const int zero : {6, 7, 14, 15}) polynomials[zero] = 0;
  auto* lsf = rig.inOut<Zpp16s>(10);
  rig.run(static_cast<const Zpp16s*>(polynomials), lsf);
}
// Taps beyond those of the codebooks as well; now and then in place
DRIVE(ownAdaptiveCodebookDecode_G723_16s, {{8000, 13106, 13107, 13108, 14500, 32767}, {8000}}) {
  const auto* taps = rig.in<Zpp16s>(5, static_cast<Zpp16s>(-n), static_cast<Zpp16s>(n));
  auto* work = rig.inOut<Zpp16s>(64);
  auto* dst = rig.out<Zpp16s>(60);
  rig.run(taps, static_cast<const Zpp16s*>(work), rig.scalar(0, 3) == 0 ? work : dst);
}
// n = band
DRIVE(ownLspSvq, only({0, 1, 2})) { rig.run(rig.in<Zpp16s>(4), rig.in<Zpp16s>(4, 0, 32767), LSPCdbk_G723_Tbls[n]); }

// Coefficients as wild as the signal
DRIVE(ownSynthesisFilter_G723_16s_I, levels) {
  const auto* lpc = rig.in<Zpp16s>(10, within(-n), within(n));
  auto* srcDst = rig.inOut<Zpp16s>(60, within(-n / 2), within(n / 2));
  rig.run(lpc, srcDst, rig.inOut<Zpp16s>(10, within(-n), within(n)));
}
// n = 3000: the poles cancel the zeros, so that a signal that is filtered again and again keeps its level.
DRIVE(ownPoleZeroFilter_G723_16s_I, levels) {
  const auto *zeros = rig.in<Zpp16s>(10, within(-n), within(n)), *others = rig.in<Zpp16s>(10, within(-n / 2), within(n / 2));
  const auto* poles = n == 3000 ? zeros : others;
  const auto tilt = static_cast<Zpp16s>(n == 3000 ? 0 : rig.scalar(-4096, 4096) * 4);
  auto* srcDst = rig.inOut<Zpp16s>(60, within(-n), within(n));
  rig.run(zeros, poles, tilt, srcDst, rig.inOut<Zpp16s>(20, within(-n), within(n)));
}
DRIVE(ownWeightedSynthesis_G723_16s, levels) {
  const auto *lpc = rig.in<Zpp16s>(10, within(-n / 2), within(n / 2)),
             *weighting = rig.in<Zpp16s>(20, within(-n / 2), within(n / 2)),
             *excitation = rig.in<Zpp16s>(60, within(-n), within(n));
  auto *dst = rig.out<Zpp16s>(60), *memory = rig.inOut<Zpp16s>(20, within(-n), within(n));
  rig.run(lpc, weighting, excitation, dst, memory, rig.scalar(0, 1));
}

DRIVE(ownPitchCorrelations_G723_16s32s, levels) {
  const auto* target = rig.in<Zpp16s>(60, within(-n), within(n));
  const auto* impulse = rig.in<Zpp16s>(60, -4000, 8192);
  const auto* work = rig.in<Zpp16s>(64, n == 32767 ? zpp::kMin16 : within(-n), within(n));
  rig.run(target, impulse, work, rig.out<Zpp32s>(20));
}
// n = rows. Values with the signs of a row's drive its sum to the limit.
DRIVE(ownPitchGainSearch_G723_16s, {{51, 83, 85, 93, 141, 170}, {85, 170}}) {
  const auto* table = AdCdbkGainTbl_G723[n <= 85 ? 0 : 1];
  const Zpp16s* loud = table[rig.scalar(0, n - 1)];
  const bool towards = rig.scalar(0, 1) == 0;
  const auto* values = rig.made<Zpp16s>(20, [&](Zpp16s* v) {
    for (int j = 0; j < 20; ++j)
      v[j] = towards ? static_cast<Zpp16s>(loud[j] < 0 ? -32768 : 32767) : rig.scalar<Zpp16s>(-32768, 32767);
  });
  auto* best = rig.inOut<Zpp32s>(1, 0, 3);
  rig.run(values, table, n, best);
}

namespace {

// Pulses on different places, in a buffer as any other
PulseSet* randomSet(RigBase& rig, int count) {
  static_assert(sizeof(PulseSet) == 7 * sizeof(Zpp32s));
  PulseSet set{count, {}, {}};
  const auto amplitude = rig.scalar<Zpp16s>(1, 6623);
  for (int k = 0; k < kMaxPulses; ++k) {
    set.place[k] = static_cast<Zpp16s>((rig.scalar(0, 4) + 5 * k) % kPulsePlaces);
    set.amplitude[k] = rig.scalar(0, 1) == 0 ? amplitude : static_cast<Zpp16s>(-amplitude);
  }
  auto* words = rig.inOut<Zpp32s>(7);
  std::memcpy(words, &set, sizeof set);
  return reinterpret_cast<PulseSet*>(words);
}

}  // namespace

// n: bits of the scores
DRIVE(ownMultiPulseSet_G723_16s32s, {{12, 24, 28, 31}, {28}}) {
  const auto limit = static_cast<Zpp32s>((Zpp64s{1} << n) - 1);
  const auto* scores = rig.in<Zpp32s>(30, n == 31 ? zpp::kMin32 : -limit, limit);
  const auto* autocorr = rig.in<Zpp16s>(30);
  rig.run(scores, autocorr, randomSet(rig, rig.scalar(5, 6)));
}
DRIVE(ownMultiPulseFit_G723_16s32s, levels) {
  const auto *target = rig.in<Zpp16s>(60, within(-n), within(n)), *response = rig.in<Zpp16s>(60, within(-n), within(n));
  const int grid = rig.scalar(0, 1);
  rig.run(target, response, grid, const_cast<const PulseSet*>(randomSet(rig, rig.scalar(5, 6))));
}
// n: budget
DRIVE(ownAlgebraicSearch_G723_16s, {{1, 7, 240, 600}, {240}}) {
  static_assert(sizeof(AlgebraicChoice) == 6 * sizeof(Zpp32s));
  const auto* correlations = rig.in<Zpp16s>(64, -8192, 8192);
  const auto* matrix = reinterpret_cast<const Zpp16s(*)[kPlaces]>(rig.in<Zpp16s>(kPlaces * kPlaces));
  const AlgebraicChoice none{{0, 8, 16, 24}, 0, 0, 32767};
  auto* best = rig.inOut<Zpp32s>(6);
  std::memcpy(best, &none, sizeof none);
  const auto threshold = rig.scalar<Zpp16s>(-2000, 12000);
  rig.run(correlations, matrix, threshold, n, reinterpret_cast<AlgebraicChoice*>(best));
}

}  // namespace test
