#include "codecs/gsmfr/encoder.h"

#include <algorithm>
#include <memory>

namespace codecs::gsmfr {

// Pre-processing and LPC analysis: leaves the pre-emphasised frame, its LAR and what the voice activity detector needs.
void Encoder::analyse(const Zpp16s* pcm, FrameAnalysis& analysis, Frame& frame) {
  Zpp16s refl[kOrder];
  require(zppsOffsetCompensation_GSMFR_16s(pcm, analysis.offsetFree, kFrame, offset_));
  require(zppsPreemphasize_GSMFR_16s(analysis.offsetFree, analysis.signal, kFrame, &emphasis_));
  require(zppsAutoCorr_GSMFR_16s32s_I(analysis.signal, analysis.autoCorr, &analysis.scale));
  require(zppsSchur_GSMFR_32s16s(analysis.autoCorr, refl));
  require(zppsReflToLAR_GSMFR_16s(refl, analysis.noise.lar));
  require(zppsLARQuant_GSMFR_16s(analysis.noise.lar, frame.larCode));
}

void Encoder::filterShortTerm(const Zpp16s* larCode, Zpp16s* signal) {
  forEachPart(larCode, lar_, [&](const Zpp16s* refl, int first, int len) {
    require(zppsShortTermAnalysisFilter_GSMFR_16s_I(refl, signal + first, len, lattice_));
  });
}

// history: the last 120 samples of the reconstructed residual, behind which those of this subframe are written
void Encoder::codeSubframe(const Zpp16s* residual, Zpp16s* history, Subframe& subframe, Zpp16s& maximum) const {
  Zpp16s estimate[kSubframe], error[kSubframe], weighted[kSubframe], pulses[kSubframe];
  require(zppsLTPSearch_GSMFR_16s(residual, history, &subframe.lag, &subframe.gain));
  require(zppsLTPPredict_GSMFR_16s(history, estimate, subframe.lag, subframe.gain));
  require(zppsSub_16s(estimate, residual, error, kSubframe));
  require(zppsWeightingFilter_GSMFR_16s(error, weighted));
  require(zppsRPEQuant_GSMFR_16s(weighted, subframe.pulses, &subframe.grid, &subframe.amplitude, &maximum));
  require(zppsRPEQuantDecode_GSMFR_16s(subframe.pulses, pulses, subframe.amplitude, subframe.grid));
  require(zppsAdd_16s(pulses, estimate, history + kHistory, kSubframe));
}

int Encoder::encode(const Zpp16s* pcm, Zpp8u* payload) {
  Frame frame;
  FrameAnalysis analysis;
  analyse(pcm, analysis, frame);
  filterShortTerm(frame.larCode, analysis.signal);

  Zpp16s reconstructed[kHistory + kFrame];
  std::copy_n(history_, kHistory, reconstructed);
  for (int s = 0; s < kSubframes; ++s)
    codeSubframe(analysis.signal + s * kSubframe, reconstructed + s * kSubframe, frame.subframe[s], analysis.noise.maxima[s]);
  std::copy_n(reconstructed + kFrame, kHistory, history_);

  if (dtx_) {
    const bool voice = handler_.detectVoice(analysis, frame);
    const bool speech = handler_.replaceByDescriptor(voice, analysis.noise, frame);
    flags_ = (voice ? kVoice : 0) | (speech ? kSpeech : 0);
  }
  pack(frame, payload);

  constexpr Zpp16s kHomingSample = 8;
  if (std::all_of(pcm, pcm + kFrame, [](Zpp16s x) { return x == kHomingSample; })) {
    const unsigned flags = flags_;
    std::construct_at(this, Options{0, dtx_, 0});
    flags_ = flags;
  }
  return kPayload;
}

}  // namespace codecs::gsmfr
