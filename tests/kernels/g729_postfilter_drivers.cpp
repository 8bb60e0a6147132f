#include "g729/postfilter/kernels.h"
#include "g729/postfilter/tables.h"
#include "kernels/rig.h"

namespace test {

ZPP_G729_POSTFILTER_KERNELS(ZPP_KERNEL_TYPE)

void runG729PostfilterKernels(const Options& options, Tally& tally);
void runG729PostfilterKernels(const Options& options, Tally& tally) { ZPP_G729_POSTFILTER_KERNELS(ZPP_RUN_KERNEL) }

namespace {

// Runs with different inputs for each kind of content
const Sizes repeated = upTo(30, {40});

constexpr int kSubframe = kPostfilterSubframe;

const Zpp16s* subframe(RigBase& rig) { return rig.in<Zpp16s>(kSubframe); }
// Full range, or no more than a few bits
const Zpp16s* residual(RigBase& rig, int n, int history) {
  const int top = n % 3 == 0 ? 32767 >> rig.scalar(1, 14) : 32767;
  return rig.in<Zpp16s>(kSubframe, static_cast<Zpp16s>(-top - 1), static_cast<Zpp16s>(top), history);
}

}  // namespace

DRIVE(ownNormaliseResidual_G729_16s, repeated) {
  rig.run(residual(rig, n, kPostfilterHistory), rig.out<Zpp16s>(kPostfilterHistory + kSubframe));
}
DRIVE(ownMatchFractions_G729_16s, repeated) {
  const int delay = rig.scalar(17, 145);
  const Zpp16s* c = rig.in<Zpp16s>(kSubframe, -4096, 4096, delay + 2);
  rig.run(c, delay, reinterpret_cast<DelayedMatch(*)[2]>(rig.out<Zpp32s>(28)));
}
DRIVE(ownInterpolate_G729_16s, repeated) {
  const int taps = rig.keep || n % 2 == 0 ? 16 : 4, phase = rig.scalar(0, 6);
  rig.run(rig.in<Zpp16s>(kSubframe, -4096, 4096, taps - 1), taps == 16 ? tab_hup_l[phase] : tab_hup_s[phase], taps,
          rig.out<Zpp16s>(kSubframe));
}
DRIVE(ownHarmonicFilter_G729_16s, repeated) {
  const auto gain = rig.scalar<Zpp16s>(1, 32767);
  rig.run(subframe(rig), subframe(rig), gain, static_cast<Zpp16s>(32768 - gain), rig.out<Zpp16s>(kSubframe));
}
DRIVE(ownHarmonicFilter_G729A_16s, repeated) {
  rig.run(subframe(rig), subframe(rig), rig.scalar<Zpp16s>(0, 32767), rig.scalar<Zpp16s>(0, 32767), rig.out<Zpp16s>(kSubframe));
}
DRIVE(ownTiltFilter_G729_16s, repeated) {
  rig.run(rig.inOut<Zpp16s>(kSubframe), rig.scalar<Zpp16s>(-32768, 32767), rig.scalar<Zpp16s>(-16384, 16383),
          rig.scalar<Zpp16s>(0, 32767), n % 2 == 0 ? 11 : 14);
}
DRIVE(ownPreemphasize_G729A_16s, upTo(60, {40})) {
  const auto factor = rig.scalar(0, 9) == 0 ? Zpp16s{-32768} : rig.scalar<Zpp16s>(-32768, 32767);
  const auto previous = rig.scalar<Zpp16s>(-32768, 32767);
  if (n % 2 == 0) return rig.run(rig.in<Zpp16s>(n), rig.out<Zpp16s>(n), n, factor, previous);
  Zpp16s* srcDst = rig.inOut<Zpp16s>(n);
  rig.run(srcDst, srcDst, n, factor, previous);
}
DRIVE(ownMagnitudeSum_16s, repeated) { rig.run(subframe(rig)); }
DRIVE(ownApplyGain_G729A_16s, repeated) { rig.run(subframe(rig), rig.inOut<Zpp16s>(kSubframe)); }
DRIVE(ownConvolveCircular_G729D_16s, repeated) {
  Zpp16s* code = rig.inOut<Zpp16s>(kSubframe);
  if (rig.keep)  // two pulses and their pitch echoes
    for (int p = 0; p < kSubframe; ++p) code[p] = p % 11 == 5 ? Zpp16s{8191} : Zpp16s{0};
  rig.run(code, rig.in<Zpp16s>(kSubframe, -32767), rig.out<Zpp16s>(kSubframe));
}

}  // namespace test
