#include "gsmfr/kernels.h"

#include "kernels/rig.h"

namespace test {

ZPP_GSMFR_KERNELS(ZPP_KERNEL_TYPE)

void runGsmFrKernels(const Options& options, Tally& tally) { ZPP_GSMFR_KERNELS(ZPP_RUN_KERNEL) }

namespace {

// Half of the coefficients are what speech has, so that loud signals come through the lattices without saturation as well.
const Zpp16s* reflection(RigBase& rig) {
  const Zpp16s most = rig.random.between(0, 1) == 0 ? 18000 : 32767;
  return rig.in<Zpp16s>(kGsmFrOrder, static_cast<Zpp16s>(-most - (most == 32767)), most);
}

}  // namespace

DRIVE(ownPreemphasize_GSMFR_16s, upTo(60, {160})) { rig.run(rig.in<Zpp16s>(n), rig.out<Zpp16s>(n), n, rig.inOut<Zpp16s>(1)); }
DRIVE(ownDeemphasize_GSMFR_16s_I, upTo(100, {160})) { rig.run(rig.inOut<Zpp16s>(n), n, rig.inOut<Zpp16s>(1)); }
DRIVE(ownLARDecode_GSMFR_16s, only({kGsmFrOrder})) { rig.run(rig.in<Zpp16s>(n), rig.out<Zpp16s>(n)); }
DRIVE(ownLARToRefl_GSMFR_16s, only({kGsmFrOrder})) { rig.run(rig.in<Zpp16s>(n), rig.in<Zpp16s>(n), rig.out<Zpp16s>(4 * n)); }
DRIVE(ownShortTermAnalysisFilter_GSMFR_16s_I, upTo(60, {13, 120})) {
  rig.run(reflection(rig), rig.inOut<Zpp16s>(n), n, rig.inOut<Zpp16s>(kGsmFrOrder));
}
DRIVE(ownShortTermSynthesisFilter_GSMFR_16s, upTo(130, {13, 120})) {
  const Zpp16s level = rig.random.between(0, 1) == 0 ? 32767 : 3000;
  const auto* refl = reflection(rig);
  const auto* src = rig.in<Zpp16s>(n, static_cast<Zpp16s>(-level), level);
  rig.run(refl, src, rig.out<Zpp16s>(n), n, rig.inOut<Zpp16s>(kGsmFrOrder, static_cast<Zpp16s>(-level - 1), level));
}
DRIVE(ownSpeechSynthesis_GSMFR_16s, only({160})) {
  const Zpp16s level = rig.scalar<Zpp16s>(0, 3) == 0 ? Zpp16s{32767} : rig.scalar<Zpp16s>(100, 3000);
  const Zpp16s most = rig.scalar(0, 1) == 0 ? 18000 : 32767;
  const auto* refl = rig.in<Zpp16s>(4 * kGsmFrOrder, static_cast<Zpp16s>(-most - (most == 32767)), most);
  const auto* src = rig.in<Zpp16s>(n, static_cast<Zpp16s>(-level), level);
  rig.run(refl, src, rig.out<Zpp16s>(n), rig.inOut<Zpp16s>(kGsmFrOrder, static_cast<Zpp16s>(-level - 1), level),
          rig.inOut<Zpp16s>(1));
}
DRIVE(ownLTPCorrelation_GSMFR_16s, only({kGsmFrSubframe})) {
  rig.run(rig.in<Zpp16s>(n, -512, 512), rig.in<Zpp16s>(kGsmFrHistory));
}
DRIVE(ownLTPPredict_GSMFR_16s, only({kGsmFrSubframe})) {
  rig.run(rig.in<Zpp16s>(kGsmFrHistory), rig.out<Zpp16s>(n), rig.scalar(kGsmFrShortestLag, kGsmFrLongestLag), rig.scalar(0, 3));
}
DRIVE(ownWeightingFilter_GSMFR_16s, only({kGsmFrSubframe})) { rig.run(rig.in<Zpp16s>(n), rig.out<Zpp16s>(n)); }

}  // namespace test
