#include "g726/kernels.h"

#include "g726/state.h"
#include "kernels/rig.h"

namespace test {

ZPP_G726_KERNELS(ZPP_KERNEL_TYPE)

void runG726Kernels(const Options& options, Tally& tally) { ZPP_G726_KERNELS(ZPP_RUN_KERNEL) }

namespace {

// Half of the states are as Init leaves them, half of them are rubbish.
bool initialised(RigBase& rig) { return rig.random.between(0, 1) == 0; }

}  // namespace

DRIVE(ownEncode_G726_16s8u, upTo(100, {80, 240})) {
  auto* state = rig.inOut<Zpp8u>(zpp::g726::encoderStateSize);
  if (rig.keep || initialised(rig)) ownEncodeInit_G726_16s8u(state, rig.scalar(0, 3));
  rig.run(static_cast<void*>(state), rig.in<Zpp16s>(n), rig.out<Zpp8u>(n), static_cast<Zpp32u>(n));
}
DRIVE(ownDecode_G726_8u16s, upTo(100, {80, 240})) {
  auto* state = rig.inOut<Zpp8u>(zpp::g726::decoderStateSize);
  if (rig.keep || initialised(rig)) ownDecodeInit_G726_8u16s(state, rig.scalar(0, 3), rig.scalar(0, 2));
  rig.run(static_cast<void*>(state), rig.in<Zpp8u>(n), rig.out<Zpp16s>(n), static_cast<Zpp32u>(n));
}

}  // namespace test
