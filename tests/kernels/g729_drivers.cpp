#include "g729/kernels.h"

#include "kernels/rig.h"

namespace test {

ZPP_G729_LSP_KERNELS(ZPP_KERNEL_TYPE)

void runG729Kernels(const Options& options, Tally& tally){ZPP_G729_LSP_KERNELS(ZPP_RUN_KERNEL)}

// --- LP analysis and LSP quantisation -------------------------------------------------------------------------------------
// Sizes only repeat the random draws: half of them over the whole range, half in the range of speech.

DRIVE(ownLspPreSelect, upTo(60, {1})) {
  if (n % 2 == 0) return rig.run(rig.in<Zpp16s>(10));
  const auto centre = rig.scalar<Zpp16s>(2000, 24000);
  rig.run(rig.in<Zpp16s>(10, static_cast<Zpp16s>(centre - 5000), static_cast<Zpp16s>(centre + 5000)));
}
DRIVE(ownLspSelect2, upTo(60, {1})) {
  const auto limit = static_cast<Zpp16s>(n % 2 == 0 ? 32767 : 4000);
  rig.run(rig.in<Zpp16s>(10, static_cast<Zpp16s>(-limit), limit), rig.in<Zpp16s>(10, 0), rig.out<Zpp16s>(2));
}

}  // namespace test
