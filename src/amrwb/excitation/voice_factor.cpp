// Voicing factor: the energies of the two parts of the excitation compared (3GPP TS 26.190 clause 6.1).
#include "amrwb/arithmetic.h"
#include "amrwb/excitation/kernels.h"
#include "core/checks.h"

using namespace zpp;
using namespace zpp::amrwb;

ZppStatus zppsVoiceFactor_AMRWB_16s(const Zpp16s* vector, const Zpp16s* code, int scale, Zpp16s gainPitch, Zpp16s gainCode,
                                    Zpp16s* factor) {
  if (anyNull(vector, code, factor)) return zppStsNullPointer;
  *factor = ownVoiceFactor_AMRWB_16s(vector, code, scale, gainPitch, gainCode);
  return zppStsOk;
}

Zpp16s ownVoiceFactor_AMRWB_16s(const Zpp16s* vector, const Zpp16s* code, int scale, Zpp16s gainPitch, Zpp16s gainCode) {
  scale = sat16(scale);
  const Floating vectorEnergy = energy12(vector, kSubframe);
  const Floating pitchSquare = normalised(mulDbl(gainPitch, gainPitch));
  Zpp16s voiced = mulQ15(high16(vectorEnergy.mantissa), high16(pitchSquare.mantissa));
  const int voicedExponent = vectorEnergy.exponent - 2 * scale - (30 - pitchSquare.exponent) - 10;

  const Floating codeEnergy = energy12(code, kSubframe);
  const int norm = norm16(gainCode);
  const Zpp16s gain = shlSat16(gainCode, norm);
  Zpp16s unvoiced = mulQ15(high16(codeEnergy.mantissa), mulQ15(gain, gain));

  // To a common exponent, and a bit of headroom
  const int ahead = voicedExponent - (codeEnergy.exponent - 2 * norm);
  voiced = shr16(voiced, ahead >= 0 ? 1 : 1 - ahead);
  unvoiced = shr16(unvoiced, ahead >= 0 ? ahead + 1 : 1);
  const Zpp16s difference = subSat16(voiced, unvoiced), sum = addSat16(addSat16(voiced, unvoiced), 1);
  const Zpp16s ratio = quotientQ15(absSat16(difference), sum);
  return difference < 0 ? negSat16(ratio) : ratio;
}
