// Decoding of the gains (3GPP TS 26.090 clause 6.1).
#include "amr/gain/kernels.h"
#include "amr/gain/prediction.h"
#include "amr/gain/tables.h"
#include "core/checks.h"

using namespace zpp;
using namespace zpp::amr;

ZppStatus zppsPitchGainDecode_GSMAMR_16s(Zpp16s idx, Zpp16s* gain, ZppSpeechRate rate) {
  if (anyNull(gain)) return zppStsNullPointer;
  if (rate != ZPP_RATE_7950 && rate != ZPP_RATE_12200) return zppStsOutOfRange;
  const Zpp16s decoded = quaGainPitch[idx & 15];
  *gain = rate == ZPP_RATE_12200 ? static_cast<Zpp16s>(decoded & ~3) : decoded;
  return zppStsOk;
}

ZppStatus zppsGainDecode_GSMAMR_16s(Zpp16s idx, const Zpp16s* code, Zpp16s* gainMem, Zpp16s* pitchGain, Zpp16s* codeGain,
                                    Zpp16s subframe, ZppSpeechRate rate) {
  if (anyNull(code, gainMem, pitchGain, codeGain)) return zppStsNullPointer;
  if (outside<int>(subframe, 0, 3)) return zppStsOutOfRange;
  if (!isSpeechRate(rate)) return zppStsOutOfRange;
  ownGainDecode_GSMAMR_16s(idx, code, gainMem, pitchGain, codeGain, subframe, modeOf(rate));
  return zppStsOk;
}

void ownGainDecode_GSMAMR_16s(int idx, const Zpp16s* code, Zpp16s* gainMem, Zpp16s* pitchGain, Zpp16s* codeGain, int subframe,
                              Mode mode) {
  const PredictedGain predicted = predictGain(code, gainMem, mode);
  const Dpf log = predicted.log;
  if (mode == k122 || mode == k795) {
    const Zpp16s* entry = quaGainCode[idx & 31];
    *codeGain = mode == k795 ? scaledGain(entry[0], predicted.mantissa(), 9, log.hi)
                             : shlSat16(mulQ15(shlSat16(low16(ownPow2(log.hi, log.lo)), 4), entry[0]), 1);
    return pushEnergy(gainMem, entry[1], entry[2]);
  }
  if (mode == k475) {
    const Zpp16s* entry = tableGainMR475[idx & 255][subframe % 2];
    *pitchGain = entry[0];
    *codeGain = scaledGain(entry[1], predicted.mantissa(), 10, log.hi);
    return pushFactor(gainMem, entry[1]);
  }
  const Zpp16s* entry = mode >= k670 ? tableGainHighrates[idx & 127] : tableGainLowrates[idx & 63];
  *pitchGain = entry[0];
  *codeGain = scaledGain(entry[1], predicted.mantissa(), 10, log.hi);
  pushEnergy(gainMem, entry[2], entry[3]);
}
