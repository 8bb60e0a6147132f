#include "g723/lsf/kernels.h"
#include "g723/pitch/kernels.h"

#include "g723/tables.h"
#include "kernels/rig.h"

namespace test {

ZPP_G723_LSF_KERNELS(ZPP_KERNEL_TYPE)
ZPP_G723_PITCH_KERNELS(ZPP_KERNEL_TYPE)

void runG723Kernels(const Options& options,
                    Tally& tally){ZPP_G723_LSF_KERNELS(ZPP_RUN_KERNEL) ZPP_G723_PITCH_KERNELS(ZPP_RUN_KERNEL)}

// Any block with an energy below 2^31: 180 * 3454^2
DRIVE(ownAutoCorr_NormE_G723_16s32s, only({180})) {
  rig.run(rig.in<Zpp16s>(180, -3454, 3454), 0, rig.out<Zpp32s>(10));
}
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

}  // namespace test
