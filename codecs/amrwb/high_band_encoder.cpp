#include "codecs/amrwb/high_band_encoder.h"

namespace codecs::amrwb {

Zpp16s HighBandEncoder::encode(const Zpp16s* lpc, const Zpp16s* excitation, int scale, const Zpp16s* input, int vadHist,
                               int hangover) {
  // The decoder's low band, from whose tilt the gain is estimated
  Zpp32s synthesis[kOrder + kSubframe];
  std::copy_n(synthesis_, kOrder, synthesis);
  require(zppsSynthesisFilter_AMRWB_16s32s(lpc, excitation, synthesis + kOrder, kSubframe, scale));
  std::copy_n(synthesis + kSubframe, kOrder, synthesis_);
  Zpp16s lowBand[kSubframe];
  require(zppsDeemphasize_AMRWB_32s16s(synthesis + kOrder, lowBand, kSubframe, kPreemphasis, &deemphasis_));
  highPass50_.filter(lowBand, kSubframe, 2);
  Zpp16s noise[kInputSubframe];
  require(zppsHighBandNoise_AMRWB_16s(excitation, noise, scale, &seed_));
  highPass400_.filter(lowBand, kSubframe, 1);
  Zpp16s estimate = 0;
  require(zppsHighBandGain_AMRWB_16s(lowBand, vadHist, &estimate));

  // Noise of the decoder's high band and the input in the same band
  Zpp16s weighted[kFilter];
  weight(lpc, kHighBandWeight, weighted);
  require(zppsSynthesisFilter_AMRWB_16s_I(weighted, noise, kInputSubframe, kOrder, noiseSynthesis_));
  require(zppsHighBandFilter_AMRWB_16s_I(noise, kInputSubframe, 0, noiseBand_));
  Zpp16s band[kInputSubframe];
  std::copy_n(input, kInputSubframe, band);
  require(zppsHighBandFilter_AMRWB_16s_I(band, kInputSubframe, 0, inputBand_));

  alpha_ = hangover > 6 ? Zpp16s{32767} : mulQ15(alpha_, sat16(4681 * hangover));  // a seventh of the hangover
  Zpp16s index = 0;
  require(zppsHighBandGainQuant_AMRWB_16s(band, noise, estimate, alpha_, &index));
  return index;
}

}  // namespace codecs::amrwb
