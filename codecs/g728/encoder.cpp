#include "codecs/g728/encoder.h"

#include <algorithm>

#include "codecs/g728/tables.h"

namespace codecs::g728 {

WeightingAdapter::WeightingAdapter() {
  require(zppsWinHybridInit_G728_16s(kWeightingWindow, kShortOrder, kCycle, 30, 1, window_));
}

void WeightingAdapter::adapt(const Zpp16s* speech) {
  Zpp16s autoCorr[kShortOrder + 1], poles[kShortOrder], zeros[kShortOrder];
  Zpp32s valid = 0;
  ShortPredictor p;
  require(zppsWinHybrid_G728_16s(speech, autoCorr, &valid, window_));
  if (!valid || !predict(autoCorr, p) || !expand(p, kWeightingPoles, poles) || !expand(p, kWeightingZeros, zeros)) return;
  std::copy_n(poles, kShortOrder, poles_);
  std::copy_n(zeros, kShortOrder, zeros_);
}

Encoder::Encoder(const Options&) {
  require(zppsIIR16sInit_G728_16s(weightingFilter_));
  require(zppsCombinedFilterInit_G728_16s(combinedFilter_));
  prepareSearch();
}

int Encoder::encode(const Zpp16s* pcm, Zpp8u* payload) {
  std::copy_n(speech_ + kCycle, kCycle, speech_);
  require(zppsRShiftC_16s(pcm, speech_ + kCycle, kCycle, 1));
  Zpp32s index[kVectors];
  Zpp16s quantised[kVectors * kBlock];
  for (int vector = 0; vector < kVectors; ++vector) {
    index[vector] = encodeVector(speech_ + kCycle + kVector * vector, quantised + kBlock * vector);
    adapt(vector, quantised);
  }
  pack(index, payload);
  return kPayload;
}

Zpp32s Encoder::encodeVector(const Zpp16s* speech, Zpp16s* quantised) {
  const Zpp16s *filter = synthesis_.filter(), *zeros = weighting_.zeros(), *poles = weighting_.poles();
  Zpp16s gain[2];
  gain_.predict(false, gain);

  Zpp16s weighted[kVector], ringing[kVector], target[kBlock];
  require(zppsIIR16s_G728_16s(zeros, poles, speech, weighted, weightingFilter_));
  require(zppsCombinedFilterZeroInput_G728_16s(filter, zeros, poles, ringing, combinedFilter_));
  require(zppsSub_16s(ringing, weighted, weighted, kVector));
  require(zppsTargetNormalize_G728_16s(weighted, gain, target));

  Zpp32s index = 0;
  Zpp16s excitation[kBlock];
  require(zppsCodebookSearch_G728_16s(target, response_, energy_, &index, ZPP_RATE_16000));
  require(zppsExcitationVector_G728_16s(gain, excitation, index, ZPP_RATE_16000));
  require(zppsCombinedFilterZeroState_G728_16s(filter, zeros, poles, excitation, quantised, combinedFilter_));
  gain_.update(index);
  return index;
}

void Encoder::adapt(int vector, const Zpp16s* quantised) {
  switch (vector) {
    case 0:
      synthesis_.complete();
      gain_.adapt(true);
      break;
    case 1:
      synthesis_.update();
      weighting_.adapt(speech_ + 2 * kVector);
      prepareSearch();
      break;
    case 3:
      synthesis_.analyse(quantised);
      break;
    default:
      break;
  }
}

void Encoder::prepareSearch() {
  require(zppsImpulseResponse_G728_16s(synthesis_.filter(), weighting_.zeros(), weighting_.poles(), response_));
  require(zppsShapeEnergy_G728_16s(response_, energy_));
}

}  // namespace codecs::g728
