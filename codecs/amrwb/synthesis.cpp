#include "codecs/amrwb/synthesis.h"

#include <algorithm>

namespace codecs::amrwb {

namespace {

// Gains of the high band at 23.85 kbit/s: 16 entries, Q14, HP_gain
constexpr Zpp16s codedGains[16] = {3624,  4673,  5597,  6479,  7425,  8378,  9324,  10264,
                                   11210, 12206, 13391, 14844, 16770, 19655, 24289, 32728};
constexpr Zpp16s kExtrapolatedWeight = 29491;  // 0.9, Q15

}  // namespace

void Synthesis::subframe(const Zpp16s* lpc, const Zpp16s* excitation, int scale, const HighBand& highBand, Zpp16s* pcm) {
  Zpp32s synthesised[kOrder + kSubframe];
  std::copy_n(past_, kOrder, synthesised);
  require(zppsSynthesisFilter_AMRWB_16s32s(lpc, excitation, synthesised + kOrder, kSubframe, scale));
  std::copy_n(synthesised + kSubframe, kOrder, past_);

  Zpp16s speech[kSubframe];
  require(zppsDeemphasize_AMRWB_32s16s(synthesised + kOrder, speech, kSubframe, kPreemphasis, &deemphasis_));
  highPass50_.filter(speech, kSubframe, 2);
  require(zppsUpSampling_AMRWB_16s(speech, pcm, kSubframe, upSampling_));

  Zpp16s noise[kInputSubframe], gain = 0;
  require(zppsHighBandNoise_AMRWB_16s(excitation, noise, scale, &seed_));
  highPass400_.filter(speech, kSubframe, 1);
  require(zppsHighBandGain_AMRWB_16s(speech, highBand.inactiveFrames, &gain));
  if (highBand.codedGain >= 0) {
    for (Zpp16s& x : noise) x = shlSat16(mulQ15(x, codedGains[highBand.codedGain]), 1);
  } else {
    for (Zpp16s& x : noise) x = mulQ15(x, gain);
  }
  makeHighBand(lpc, highBand, noise);
  require(zppsAdd_16s_I(noise, pcm, kInputSubframe));
}

// Shapes the noise by a spectrum and limits it to the band.
void Synthesis::makeHighBand(const Zpp16s* lpc, const HighBand& highBand, Zpp16s* noise) {
  Zpp16s filter[kHighOrder + 1];
  if (highBand.isf != nullptr) {
    Zpp16s isp[kHighOrder];
    require(zppsISFExtrapolate_AMRWB_16s(highBand.isf, isp));
    require(zppsISPToLPC_AMRWB_16s(isp, filter, kHighOrder, 0));
    weight(filter, kExtrapolatedWeight, filter, kHighOrder + 1);
    require(zppsSynthesisFilter_AMRWB_16s_I(filter, noise, kInputSubframe, kHighOrder, highBandMemory_));
  } else {
    weight(lpc, kHighBandWeight, filter);
    require(zppsSynthesisFilter_AMRWB_16s_I(filter, noise, kInputSubframe, kOrder, highBandMemory_ + kHighOrder - kOrder));
  }
  require(zppsHighBandFilter_AMRWB_16s_I(noise, kInputSubframe, 0, bandPass_));
  if (highBand.lowPass) require(zppsHighBandFilter_AMRWB_16s_I(noise, kInputSubframe, 1, lowPass_));
}

}  // namespace codecs::amrwb
