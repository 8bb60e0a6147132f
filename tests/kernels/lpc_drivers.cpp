#include "core/kernels.h"

#include "kernels/rig.h"
#include "lpc/kernels.h"
#include "lpc/tables.h"

namespace test {

ZPP_LPC_KERNELS(ZPP_KERNEL_TYPE)

void runLpcKernels(const Options& options, Tally& tally) { ZPP_LPC_KERNELS(ZPP_RUN_KERNEL) }

namespace {

const Zpp16s* full(RigBase& rig, int n, int history = 0) { return rig.history<Zpp16s>(n, history); }
// Half the runs have the samples of a codec's range, which take the wide-accumulator paths; the others those that leave them.
const Zpp16s* samples(RigBase& rig, int n, int history = 0) {
  const Zpp16s top = rig.random.between(0, 1) == 0 ? Zpp16s{32767} : Zpp16s{2000};
  return rig.in<Zpp16s>(n, static_cast<Zpp16s>(-top - 1), top, history);
}
const Zpp16s* coefficients(RigBase& rig) {
  const Zpp16s top = rig.random.between(0, 1) == 0 ? Zpp16s{32767} : Zpp16s{1000};
  return rig.in<Zpp16s>(11, static_cast<Zpp16s>(-top - 1), top);
}

}  // namespace

DRIVE(ownPartialCorr_16s32s, upTo(300)) {
  const int lags = rig.keep ? n == 40 ? 40 : 11 : rig.scalar(1, n + 5);
  rig.run(full(rig, n), full(rig, n), n, rig.out<Zpp32s>(lags), lags);
}
DRIVE(ownCorr_16s32s, upTo(200, {40, 80})) {
  const int lags = rig.keep ? 124 : rig.scalar(1, 20);
  rig.run(full(rig, n), full(rig, n + lags - 1), n, rig.out<Zpp32s>(lags), lags);
}
DRIVE(ownCrossCorr_16s32s_Sfs, upTo(100, {40})) {
  rig.run(samples(rig, n), samples(rig, n), n, rig.out<Zpp32s>(n), rig.keep ? 0 : rig.scalar(-33, 33));
}
DRIVE(ownCrossCorr_NormM_16s, upTo(300, {40})) { rig.run(samples(rig, n), samples(rig, n), n, rig.out<Zpp16s>(n)); }
DRIVE(ownCrossCorrLagMax_16s, upTo(100, {80})) {
  const int maxLag = rig.keep ? 123 : rig.scalar(0, 70);
  rig.run(samples(rig, n), samples(rig, n + maxLag), n, maxLag);
}
DRIVE(ownCrossCorrLagMax_Inv_16s, upTo(100, {40, 80})) {
  const int minLag = rig.keep ? 20 : rig.scalar(0, 30), maxLag = rig.keep ? n == 40 ? 29 : 143 : rig.scalar(minLag, 100);
  rig.run(samples(rig, n), samples(rig, n - minLag > 0 ? n - minLag : 0, maxLag), n, minLag, maxLag);
}
DRIVE(ownAutoCorrLagMax_Fwd_16s, upTo(100, {80})) {
  const int minLag = rig.keep ? 20 : rig.scalar(0, 30), maxLag = rig.keep ? 143 : rig.scalar(minLag - 2, 100);
  rig.run(full(rig, n + (maxLag > 0 ? maxLag : 0)), n, minLag, maxLag);
}
DRIVE(ownAutoCorrLagMax_Inv_16s, upTo(100, {80})) {
  const int minLag = rig.keep ? 20 : rig.scalar(0, 30), maxLag = rig.keep ? 143 : rig.scalar(minLag - 2, 100);
  rig.run(full(rig, n, maxLag > 0 ? maxLag : 0), n, minLag, maxLag);
}
DRIVE(ownDotProd_G729A_16s32s, upTo(300, {80, 223})) { rig.run(samples(rig, n), samples(rig, n), n, rig.out<Zpp32s>(1)); }
DRIVE(ownSynthesisFilter_NR_16s, upTo(170, {40, 240})) {
  // A quiet signal's outputs are hardly ever clamped, or in the last block alone.
  const bool quiet = rig.keep || rig.scalar(0, 2) == 0;
  const Zpp16s* coef = quiet ? rig.in<Zpp16s>(11, -300, 300) : coefficients(rig);
  const Zpp16s* src = quiet ? rig.in<Zpp16s>(n, -2000, 2000) : samples(rig, n);
  rig.run(coef, src, rig.out<Zpp16s>(n), n, rig.scalar(12, 13), rig.scalar(0, 3) == 0 ? nullptr : samples(rig, 10));
}
DRIVE(ownSynthesisFilter_G729E_16s, upTo(150, {40})) {
  const int order = rig.keep ? 30 : rig.scalar(1, 34);
  const Zpp16s top = rig.keep || n % 3 != 0 ? Zpp16s{300} : Zpp16s{32767};
  const Zpp16s* coef = rig.in<Zpp16s>(order + 1, static_cast<Zpp16s>(-top), top);
  const Zpp16s* hist = n % 5 == 0 ? nullptr : full(rig, order);
  if (n % 2 == 0) return rig.run(coef, order, samples(rig, n), rig.out<Zpp16s>(n), n, hist);
  Zpp16s* srcDst = rig.inOut<Zpp16s>(n);
  rig.run(coef, order, srcDst, srcDst, n, hist);
}
DRIVE(ownResidualFilter_G729_16s, upTo(100, {40})) {
  rig.run(rig.keep ? rig.in<Zpp16s>(11, -5000, 5000) : coefficients(rig), full(rig, n, 10), rig.out<Zpp16s>(n), n);
}
DRIVE(ownResidualFilter_G729E_16s, upTo(100, {40})) {
  const int order = rig.keep ? 30 : rig.scalar(1, 34), top = rig.keep || n % 3 != 0 ? 2000 : 32767;  // the sums stay in 32 bits
  rig.run(rig.in<Zpp16s>(order + 1, -top, top), order, full(rig, n, order), rig.out<Zpp16s>(n), n);
}
DRIVE(ownHarmonicFilter_16s, upTo(100, {20, 40})) {
  const int lag = rig.keep ? 20 : rig.scalar(1, 60);
  rig.run(rig.scalar<Zpp16s>(-32768, rig.scalar(-32768, 32767)), lag, rig.inOut<Zpp16s>(n, -32768, 32767, lag), n);
}
DRIVE(ownConvPartial_16s_Sfs, upTo(200, {40, 80})) {
  rig.run(samples(rig, n), samples(rig, n), rig.out<Zpp16s>(n), n, rig.keep ? 12 : rig.scalar(0, 40));
}
DRIVE(ownConvPartial_16s32s, upTo(200, {40})) { rig.run(full(rig, n), full(rig, n), rig.out<Zpp32s>(n), n); }

// The filter of LSPs around a flat spectrum's, so that most searches find ten roots; both precisions
DRIVE(ownLPCToLSP_16s, upTo(60, {50, 59, 60})) {
  Zpp16s* a = rig.inOut<Zpp16s>(11);
  if (n % 3 != 0 || n >= 50) {
    const Zpp16s* offset = rig.in<Zpp16s>(10, -1400, 1400);
    Zpp16s lsp[10];
    for (int i = 0; i < 10; ++i) lsp[i] = static_cast<Zpp16s>(29250 - 6500 * i + offset[i]);
    zppsLSPToLPC_G729_16s(lsp, a);
  }
  // Odd sizes search a grid of half the points, with fewer halvings.
  const int step = n % 2 + 1, intervals = 60 / step;
  const auto* grid = rig.made<Zpp16s>(intervals + 1, [step, intervals](Zpp16s* points) {
    for (int i = 0; i <= intervals; ++i) points[i] = w_eval_60[step * i];
  });
  rig.run(a, rig.in<Zpp16s>(10), grid, intervals, 6 - 2 * step, n % 4 < 2 ? 10 : 11, rig.out<Zpp16s>(10));
}

}  // namespace test
