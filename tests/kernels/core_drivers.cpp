#include "core/kernels.h"

#include "kernels/rig.h"

namespace test {

ZPP_CORE_KERNELS(ZPP_KERNEL_TYPE)

void runCoreKernels(const Options& options, Tally& tally){ZPP_CORE_KERNELS(ZPP_RUN_KERNEL)}

DRIVE(ownSet_16s, upTo(200)) {
  rig.run(rig.scalar<Zpp16s>(-32768, 32767), rig.out<Zpp16s>(n), n);
}
DRIVE(ownSet_32s, upTo(200)) { rig.run(rig.scalar<Zpp32s>(-32768, 32767), rig.out<Zpp32s>(n), n); }
DRIVE(ownAbs_16s, upTo(200)) { rig.run(rig.in<Zpp16s>(n), rig.out<Zpp16s>(n), n); }
DRIVE(ownAdd_16s, upTo(200)) { rig.run(rig.in<Zpp16s>(n), rig.in<Zpp16s>(n), rig.out<Zpp16s>(n), n); }
DRIVE(ownSub_16s, upTo(200)) { rig.run(rig.in<Zpp16s>(n), rig.in<Zpp16s>(n), rig.out<Zpp16s>(n), n); }
DRIVE(ownSubCRev_16s_Sfs, upTo(200)) {
  rig.run(rig.in<Zpp16s>(n), rig.scalar<Zpp16s>(-32768, 32767), rig.out<Zpp16s>(n), n, rig.scalar(-40, 40));
}
DRIVE(ownMul_16s32s_Sfs, upTo(200)) {
  rig.run(rig.in<Zpp16s>(n), rig.in<Zpp16s>(n), rig.out<Zpp32s>(n), n, rig.scalar(-40, 40));
}
DRIVE(ownMul_NR_16s_Sfs, upTo(200)) { rig.run(rig.in<Zpp16s>(n), rig.in<Zpp16s>(n), rig.out<Zpp16s>(n), n, rig.scalar(0, 35)); }
DRIVE(ownMulC_NR_16s_Sfs, upTo(200)) {
  rig.run(rig.in<Zpp16s>(n), rig.scalar<Zpp16s>(-32768, 32767), rig.out<Zpp16s>(n), n, rig.scalar(0, 35));
}
DRIVE(ownMulPowerC_NR_16s_Sfs, upTo(40, {11, 17})) {
  const int scaleFactor = rig.keep || rig.scalar(0, 3) > 0 ? 15 : rig.scalar(0, 35);
  rig.run(rig.in<Zpp16s>(n), rig.scalar<Zpp16s>(-32768, 32767), rig.out<Zpp16s>(n), n, scaleFactor);
}
DRIVE(ownLShiftC_16s, upTo(200)) { rig.run(rig.in<Zpp16s>(n), rig.out<Zpp16s>(n), n, rig.scalar(0, 20)); }
DRIVE(ownLShiftCSat_16s, upTo(200, {40, 223})) {
  rig.run(rig.in<Zpp16s>(n), rig.out<Zpp16s>(n), n, rig.keep ? 3 : rig.scalar(0, 15));
}
DRIVE(ownLShiftC_32s, upTo(200)) { rig.run(rig.in<Zpp32s>(n), rig.out<Zpp32s>(n), n, rig.scalar(0, 40)); }
DRIVE(ownRShiftC_16s, upTo(200)) { rig.run(rig.in<Zpp16s>(n), rig.out<Zpp16s>(n), n, rig.scalar(0, 20)); }
DRIVE(ownRShiftC_32s, upTo(200)) { rig.run(rig.in<Zpp32s>(n), rig.out<Zpp32s>(n), n, rig.scalar(0, 40)); }
DRIVE(ownConvert_16s32s, upTo(200)) { rig.run(rig.in<Zpp16s>(n), rig.out<Zpp32s>(n), n); }
DRIVE(ownConvert_NR_32s16s_Sfs, upTo(200)) { rig.run(rig.in<Zpp32s>(n), rig.out<Zpp16s>(n), n, rig.scalar(0, 35)); }
DRIVE(ownAdd_32f, upTo(200)) { rig.run(rig.in<Zpp32f>(n), rig.in<Zpp32f>(n), rig.out<Zpp32f>(n), n); }
DRIVE(ownSub_32f, upTo(200)) { rig.run(rig.in<Zpp32f>(n), rig.in<Zpp32f>(n), rig.out<Zpp32f>(n), n); }
DRIVE(ownMul_32f, upTo(200)) { rig.run(rig.in<Zpp32f>(n), rig.in<Zpp32f>(n), rig.out<Zpp32f>(n), n); }
DRIVE(ownMulC_32f, upTo(200)) { rig.run(rig.in<Zpp32f>(n), 0.37f, rig.out<Zpp32f>(n), n); }
DRIVE(ownSum_16s, upTo(200)) { rig.run(rig.in<Zpp16s>(n), n); }
DRIVE(ownDotProd_16s, upTo(200)) { rig.run(rig.in<Zpp16s>(n), rig.in<Zpp16s>(n), n); }
DRIVE(ownMax_16s, upTo(200)) { rig.run(rig.in<Zpp16s>(n), n); }
DRIVE(ownMin_16s, upTo(200)) { rig.run(rig.in<Zpp16s>(n), n); }
DRIVE(ownMaxAbs_16s, upTo(200)) { rig.run(rig.in<Zpp16s>(n), n); }
DRIVE(ownMinIndx_16s, upTo(200)) { rig.run(rig.in<Zpp16s>(n), n); }
DRIVE(ownMaxIndx_32f, upTo(200)) { rig.run(rig.in<Zpp32f>(n), n); }
DRIVE(ownMinIndx_32f, upTo(200)) { rig.run(rig.in<Zpp32f>(n), n); }
DRIVE(ownHighPassInputs_16s32s, {{1, 7, 8, 9, 64, 80}, {64, 80}}) {
  rig.run(rig.in<Zpp16s>(4), rig.in<Zpp16s>(n, -32768, 32767, 3), rig.out<Zpp32s>(n), n);
}
DRIVE(ownLinToMuLaw_16s8u, upTo(200, {160})) { rig.run(rig.in<Zpp16s>(n), rig.out<Zpp8u>(n), n); }
DRIVE(ownLinToALaw_16s8u, upTo(200, {160})) { rig.run(rig.in<Zpp16s>(n), rig.out<Zpp8u>(n), n); }

}  // namespace test
