#include "codecs/g728/decoder.h"

#include <algorithm>

namespace codecs::g728 {

void Erasure::beginCycle(bool lost) {
  constexpr int kLongestHold = 16;
  constexpr int kLong = 1 << 20;  // whole periods; from here on all periods are alike
  if (!lost_ && hold_ > 0) --hold_;
  lost_ = lost;
  if (lost) {
    if (++cycles_ == kLong) cycles_ -= 4;
  } else {
    hold_ = std::min(hold_ + cycles_, kLongestHold);
    cycles_ = 0;
  }
}

Decoder::Decoder(const Options& options) : postfilters_(options.variant == 0) {
  require(zppsSynthesisFilterInit_G728_16s(synthesisFilter_));
  require(zppsExtrapolationInit_G728_16s(extrapolation_));
}

bool Decoder::decode(const Zpp8u* payload, int octets, Zpp16s* pcm) {
  if (octets == 0) {
    conceal(pcm);
    return true;
  }
  Zpp32s index[kVectors];
  unpack(payload, index);
  decodeCycle(index, pcm);
  return true;
}

void Decoder::decodeCycle(const Zpp32s* index, Zpp16s* pcm) {
  erasure_.beginCycle(index == nullptr);
  if (erasure_.lost() && erasure_.beginsPeriod())
    require(zppsExtrapolationSetup_G728_16s(postfilter_.pitch(), postfilter_.tap(), erasure_.period(), extrapolation_));
  Zpp16s excitation[kBlock], speech[kVectors * kBlock];
  for (int vector = 0; vector < kVectors; ++vector) {
    if (erasure_.lost())
      extrapolate(excitation);
    else
      receive(index[vector], excitation);
    Zpp16s* block = speech + kBlock * vector;
    require(zppsSynthesisFilter_G728_16s(synthesis_.filter(), excitation, block, erasure_.lost(), synthesisFilter_));
    output(vector, block, pcm + kVector * vector);
    adapt(vector, speech);
  }
}

void Decoder::receive(Zpp32s index, Zpp16s* excitation) {
  Zpp16s gain[2];
  gain_.predict(erasure_.limitsGain(), gain);
  require(zppsExcitationVector_G728_16s(gain, excitation, index, ZPP_RATE_16000));
  require(zppsExtrapolationUpdate_G728_16s(excitation, extrapolation_));
  gain_.update(index);
}

void Decoder::extrapolate(Zpp16s* excitation) {
  Zpp16s logGain = 0;
  require(zppsExtrapolation_G728_16s(excitation, &logGain, extrapolation_));
  gain_.extrapolated(logGain);
}

void Decoder::output(int vector, const Zpp16s* speech, Zpp16s* pcm) {
  Zpp16s fine[kVector];  // Q2; PCM is Q3
  require(zppsConvertBlock_G728_16s_Sfs(speech, fine, 2));
  postfilter_.process(vector, postfilters_, fine);
  if (postfilters_)
    require(zppsAdd_16s(fine, fine, pcm, kVector));
  else
    require(zppsConvertBlock_G728_16s_Sfs(speech, pcm, 3));
}

// In an erasure the filter is not what the analysis of extrapolated speech makes of it, but damped from cycle to cycle; the
// gain predictor stays.
void Decoder::adapt(int vector, const Zpp16s* speech) {
  switch (vector) {
    case 0:
      if (erasure_.cycles() <= 1) synthesis_.complete();
      gain_.adapt(!erasure_.lost());
      break;
    case 1:
      if (!erasure_.lost())
        synthesis_.update();
      else if (erasure_.beginsPeriod())
        synthesis_.damp(erasure_.isFirst());
      break;
    case 3:
      if (synthesis_.analyse(speech)) postfilter_.adapt(synthesis_.shortPredictor());
      break;
    default:
      break;
  }
}

}  // namespace codecs::g728
