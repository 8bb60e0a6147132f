#include "g7221/kernels.h"

#include "kernels/rig.h"

namespace test {

ZPP_G7221_KERNELS(ZPP_KERNEL_TYPE)

void runG7221Kernels(const Options& options, Tally& tally){ZPP_G7221_KERNELS(ZPP_RUN_KERNEL)}

// The size is the number of bits of the samples: small values take the transforms' fast path, large ones saturate.
DRIVE(ownDecomposeMLTToDCT_G722_16s, only({16})) {
  rig.run(rig.in<Zpp16s>(320), rig.inOut<Zpp16s>(320), rig.out<Zpp16s>(320));
}
DRIVE(ownDecomposeDCTToMLT_G722_16s, only({16})) { rig.run(rig.in<Zpp16s>(320), rig.inOut<Zpp16s>(160), rig.out<Zpp16s>(320)); }
DRIVE(ownDCTFwd_G722_16s, upTo(16, {16})) {
  const auto limit = static_cast<Zpp16s>((1 << (n - 1)) - 1);
  rig.run(rig.in<Zpp16s>(320, static_cast<Zpp16s>(-limit - 1), limit), rig.out<Zpp16s>(320));
}
DRIVE(ownDCTInv_G722_16s, upTo(16, {12})) {
  const auto limit = static_cast<Zpp16s>((1 << (n - 1)) - 1);
  rig.run(rig.in<Zpp16s>(320, static_cast<Zpp16s>(-limit - 1), limit), rig.out<Zpp16s>(320));
}
// The size is the category.
DRIVE(ownPreHuffman_16s, only({0, 1, 2, 3, 4, 5, 6, 7})) {
  rig.run(rig.in<Zpp16s>(20), rig.out<Zpp16s>(20), n, rig.scalar(0, 63));
}

}  // namespace test
