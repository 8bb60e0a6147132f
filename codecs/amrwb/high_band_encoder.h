// The gain of the band from 6.4 to 7 kHz, which 23.85 kbit/s transmits (3GPP TS 26.190 clause 5.11).
#pragma once

#include "codecs/amrwb/common.h"

namespace codecs::amrwb {

class HighBandEncoder {
 public:
  // lpc: the quantised filter. excitation: 64, scaled by 2^scale. input: 80 samples at 16 kHz. vadHist: frames since the last
  // with voice activity. hangover: of the discontinuous transmission. Returns the index of the gain.
  Zpp16s encode(const Zpp16s* lpc, const Zpp16s* excitation, int scale, const Zpp16s* input, int vadHist, int hangover);

 private:
  Zpp32s synthesis_[kOrder] = {};
  Zpp16s deemphasis_ = 0;
  HighPass highPass50_{kHighPass50}, highPass400_{kHighPass400};
  Zpp16s noiseSynthesis_[kOrder] = {};
  Zpp16s noiseBand_[30] = {}, inputBand_[30] = {};
  Zpp16s seed_ = 21845;
  Zpp16s alpha_ = 32767;  // weight of the measured gain against the estimate, Q15
};

}  // namespace codecs::amrwb
