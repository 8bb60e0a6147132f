// Decoding of the gain pair (ITU-T G.729 clause 4.1.5, Annex D and Annex I) and its concealment (clause 4.4.2).
#include "core/checks.h"
#include "core/fixed_point.h"
#include "g729/gain/prediction.h"
#include "g729/gain/tables.h"

using namespace zpp;

namespace {

// Both gains of the last subframe fade.
void conceal(Zpp16s pitchFactor, Zpp16s codeFactor, Zpp16s* memory, Zpp16s* gain) {
  gain[0] = mulQ15(gain[0], pitchFactor);
  gain[1] = mulQ15(gain[1], codeFactor);
  ownGainUpdateErasure(memory);
}

void decode(Zpp32s energy, Zpp16s* memory, const Zpp16s* index, Zpp16s* gain) {
  const Zpp16s *first = gbk1[imap1[index[0] & 7]], *second = gbk2[imap2[index[1] & 15]];
  const PredictedGain predicted = ownGainPredict(energy, memory);
  const Zpp32s correction = first[1] + second[1];
  gain[0] = static_cast<Zpp16s>(first[0] + second[0]);
  gain[1] = sat16(shlSat32(predicted.mantissa * (correction >> 1), -(predicted.q + 11)));
  ownGainUpdate(correction, memory);
}

// Unlike at 8 kbit/s the correction is halved first, for the memory as well. Returns the code gain before it is fitted into 16
// bits; mantissa and correction are of 15 bits and the shift saturates, so that it is not negative.
Zpp32s decode6k(Zpp32s energy, Zpp16s* memory, const Zpp16s* index, Zpp16s* gain) {
  const Zpp16s *first = gbk1_6k[imap1_6k[index[0] & 7]], *second = gbk2_6k[imap2_6k[index[1] & 7]];
  const PredictedGain predicted = ownGainPredict(energy, memory);
  const Zpp32s correction = (first[1] + second[1]) >> 1;
  gain[0] = static_cast<Zpp16s>(first[0] + second[0]);
  ownGainUpdate(correction, memory);
  return shlSat32(predicted.mantissa * correction, -(predicted.q + 12));
}

}  // namespace

ZppStatus zppsDecodeGain_G729_16s(Zpp32s energy, Zpp16s* memory, const Zpp16s* index, Zpp16s* gain) {
  if (anyNull(memory, gain)) return zppStsNullPointer;
  if (index != nullptr)
    decode(energy, memory, index, gain);
  else
    conceal(29491, 32111, memory, gain);  // 0.9 and 0.98
  return zppStsOk;
}

ZppStatus zppsDecodeGain_G729I_16s(Zpp32s energy, Zpp16s attenuation, Zpp16s* memory, const Zpp16s* index, Zpp16s* gain) {
  if (anyNull(memory, gain)) return zppStsNullPointer;
  if (index != nullptr)
    gain[1] = low16(decode6k(energy, memory, index, gain));
  else
    conceal(attenuation, attenuation, memory, gain);
  return zppStsOk;
}

ZppStatus zppsDecodeGain_G729D_16s(Zpp32s energy, Zpp16s* memory, const Zpp16s* index, Zpp16s* gain) {
  if (anyNull(memory, gain)) return zppStsNullPointer;
  if (index != nullptr)
    gain[1] = sat16(decode6k(energy, memory, index, gain));
  else
    conceal(29491, 32111, memory, gain);  // as at 8 kbit/s
  return zppStsOk;
}
