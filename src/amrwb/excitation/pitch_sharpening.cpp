// Emphasis of the adaptive vector in the excitation of the two lowest rates (3GPP TS 26.173, "enhancer").
#include <algorithm>

#include "amrwb/arithmetic.h"
#include "amrwb/excitation/kernels.h"
#include "core/checks.h"

using namespace zpp;
using namespace zpp::amrwb;

namespace {

// Doubled energy of src / 4
Zpp32s quarterEnergy(const Zpp16s* src) {
  Zpp16s quarter[kSubframe];
  for (int n = 0; n < kSubframe; ++n) quarter[n] = static_cast<Zpp16s>(src[n] >> 2);
  return energy(quarter, kSubframe);
}

// Brings srcDst to the level that reference has (agc2).
void keepLevel(const Zpp16s* reference, Zpp16s* srcDst) {
  const Zpp32s outputEnergy = quarterEnergy(srcDst);
  if (outputEnergy == 0) return;
  const int outputNorm = norm32(outputEnergy) - 1;
  const Zpp16s output = roundHigh16(shlSat32(outputEnergy, outputNorm));
  const Zpp32s inputEnergy = quarterEnergy(reference);
  Zpp16s gain = 0;
  if (inputEnergy != 0) {
    const int inputNorm = norm32(inputEnergy);
    const Zpp16s input = roundHigh16(shlWrap32(inputEnergy, inputNorm));
    const Zpp32s ratio = shlSat32(shlSat32(quotientQ15(output, input), 7), inputNorm - outputNorm);
    const int norm = norm32(ratio);
    const Floating root = inverseSqrt({shlWrap32(ratio, norm), 31 - norm});
    gain = roundHigh16(shlSat32(shlSat32(root.mantissa, root.exponent), 9));
  }
  for (int n = 0; n < kSubframe; ++n) srcDst[n] = high16(shlSat32(mulDbl(srcDst[n], gain), 2));
}

}  // namespace

ZppStatus zppsPitchSharpening_AMRWB_16s_I(const Zpp16s* vector, Zpp16s* srcDst, Zpp16s gainPitch) {
  if (anyNull(vector, srcDst)) return zppStsNullPointer;
  ownPitchSharpening_AMRWB_16s_I(vector, srcDst, gainPitch);
  return zppStsOk;
}

void ownPitchSharpening_AMRWB_16s_I(const Zpp16s* vector, Zpp16s* srcDst, Zpp16s gainPitch) {
  const Zpp16s doubled = shlSat16(gainPitch, 1);
  if (doubled <= 16384) return;
  Zpp16s sharpened[kSubframe];
  for (int n = 0; n < kSubframe; ++n) {
    const Zpp16s eighth = scaleRound16(vector[n], -3);
    sharpened[n] = addSat16(roundHigh16(mulDbl(mulQ15(eighth, doubled), gainPitch) >> 1), srcDst[n]);
  }
  keepLevel(srcDst, sharpened);
  std::copy_n(sharpened, kSubframe, srcDst);
}
