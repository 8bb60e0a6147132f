// Correlation matrices of the impulse response for the fixed codebook searches (ITU-T G.729 clause 3.8.1): entries and scaling.
#include "core/checks.h"
#include "core/kernels.h"
#include "g729/fixed_codebook/kernels.h"
#include "g729/fixed_codebook/fixed_codebook.h"

using namespace zpp;

ZppStatus zppsToeplizMatrix_G729_16s(const Zpp16s* impulse, Zpp16s* matrix) {
  if (anyNull(impulse, matrix)) return zppStsNullPointer;
  ownToeplizMatrix_G729_16s(impulse, matrix);
  return zppStsOk;
}

ZppStatus zppsToeplizMatrix_G729_16s32s(const Zpp16s* impulse, Zpp32s* matrix) {
  if (anyNull(impulse, matrix)) return zppStsNullPointer;
  ownToeplizMatrix_G729_16s32s(impulse, matrix);
  return zppStsOk;
}

ZppStatus _zppsToeplizMatrix_G729D_16s32s(const Zpp16s* impulse, Zpp32s* matrix) {
  ownToeplizMatrix_G729D_16s32s(impulse, matrix);
  return zppStsOk;
}

bool ownScaleImpulse_G729_16s(const Zpp16s* impulse, Zpp16s* scaled) {
  const Zpp32s energy = sat32(2 * ownDotProd_16s(impulse, impulse, kSubframe));
  if (high16(energy) > 32000)
    ownRShiftC_16s(impulse, scaled, kSubframe, 1);
  else
    ownLShiftC_16s(impulse, scaled, kSubframe, norm32(energy) / 2);
  // No sum of products exceeds the energy (Cauchy-Schwarz), and doubled it stays below 2^31.
  return ownDotProd_16s(scaled, scaled, kSubframe) < 1 << 30;
}
