#include "codecs/amrwb/encoder.h"

#include <algorithm>
#include <memory>

namespace codecs::amrwb {
namespace {

constexpr Zpp16s kWeighting = 30147;  // 0.92, Q15

// The tilt and the pitch of the last subframe shape the codebook's pulses.
void shapePulses(Zpp16s* x, Zpp16s tilt, int lag) {
  Zpp16s past = 0;
  require(zppsPreemphasize_AMRWB_16s_I(x, kSubframe, tilt, 1, &past));
  require(zppsHarmonicFilter_AMRWB_16s_I(kPitchSharpening, lag, x, kSubframe));
}

}  // namespace

FrameEncoder::FrameEncoder() {
  require(zppsVADInit_AMRWB_16s(vad_));
  std::copy_n(initialIsp, kOrder, isp_);
  std::copy_n(initialIsp, kOrder, quantIsp_);
  std::copy_n(initialIsf, kOrder, lastIsf_);
  resetAfterNoise();
}

void FrameEncoder::resetAfterNoise() {
  std::ranges::fill(excitation_, Zpp16s{0});
  std::ranges::fill(synthesis_, Zpp16s{0});
  std::ranges::fill(pastResidual_, Zpp16s{0});
  weightedTarget_ = 0;
  tilt_ = 0;
  smoothedCodeGain_ = 0;
  first_ = true;
  isfGap_ = 307;      // 120 Hz
  pitchGain_ = 9830;  // 0.6
}

bool FrameEncoder::encode(const Zpp16s* pcm, int mode, bool dtx, FrameBits& bits) {
  mode_ = mode;
  input_.process(pcm);
  amrwb::scale(excitation_, kPastExcitation, input_.scaleChange());
  amrwb::scale(synthesis_, kOrder, input_.scaleChange());
  amrwb::scale(&weightedTarget_, 1, input_.scaleChange());

  detectVoice();
  const bool noise = dtx && noise_.decide(active_);
  Spectrum spectrum;
  analyse(spectrum);
  updateClipping(spectrum.isf, !noise && isLowRate(mode_));
  openLoop_.weighSpeech(spectrum.lpc, input_.speech(0), input_.scaleChange());
  Zpp16s lags[2];
  openLoop_.search(mode_ == 0 && !noise, &toneFlag_, lags);
  if (noise) {
    encodeNoise(pcm, spectrum, bits);
  } else {
    encodeSpeech(pcm, spectrum, lags, bits);
  }
  return !noise;
}

void FrameEncoder::detectVoice() {
  Zpp16s speech[kFrame], active = 0;
  input_.newSpeech(speech);
  require(zppsVAD_AMRWB_16s(speech, &toneFlag_, &active, vad_));
  active_ = active != 0;
  vadHist_ = active_ ? Zpp16s{0} : addSat16(vadHist_, 1);
}

// LP analysis (clause 5.2)
void FrameEncoder::analyse(Spectrum& spectrum) {
  Zpp32s autocorrelation[kFilter];
  Zpp16s lpc[kFilter], isp[kOrder];
  require(zppsAutoCorr_AMRWB_16s32s(input_.window(), autocorrelation));
  require(zppsLevinsonDurbin_AMRWB_32s16s(autocorrelation, lpc, stableLpc_));
  require(zppsLPCToISP_AMRWB_16s(lpc, isp, isp_));
  require(zppsInterpolateISP_AMRWB_16s(isp_, isp, spectrum.lpc));
  std::copy_n(isp, kOrder, isp_);
  require(zppsISPToISF_AMRWB_16s(isp, spectrum.isf, kOrder));
}

void FrameEncoder::updateClipping(const Zpp16s* isf, bool low) {
  Zpp16s gap = subSat16(isf[1], isf[0]);
  for (int i = 2; i < kOrder - 1; ++i) gap = std::min(gap, subSat16(isf[i], isf[i - 1]));
  const Zpp16s smoothed = high16(macDbl(mulDbl(26214, isfGap_), 6554, gap));  // 0.8 and 0.2
  isfGap_ = std::min<Zpp16s>(smoothed, low ? 384 : 307);
}

// A sharp resonance and a high pitch gain: a lost frame could make the decoder ring.
bool FrameEncoder::clipsPitchGain() const {
  if (!isLowRate(mode_)) return isfGap_ < 154 && pitchGain_ > 14746;
  return pitchGain_ > addSat16(14746, mulQ15(1638, low16(84 * isfGap_)));
}

void FrameEncoder::encodeSpeech(const Zpp16s* pcm, const Spectrum& spectrum, const Zpp16s (&openLoopLags)[2], FrameBits& bits) {
  const FieldWidths& widths = fieldWidths[mode_];
  bits.put(active_ ? 1 : 0, 1);
  Zpp16s isf[kOrder], index[7], isp[kOrder], stability = 0, quantLpc[kSubframes * kFilter];
  require(zppsISFQuant_AMRWB_16s(spectrum.isf, pastResidual_, isf, index, rateOf(mode_)));
  for (int i = 0; i < widths.isfCount; ++i) bits.put(index[i], widths.isf[i]);
  require(zppsISFStability_AMRWB_16s(isf, lastIsf_, &stability));
  std::copy_n(isf, kOrder, lastIsf_);
  require(zppsISFToISP_AMRWB_16s(isf, isp, kOrder));
  if (first_) std::copy_n(isp, kOrder, quantIsp_);
  first_ = false;
  require(zppsInterpolateISP_AMRWB_16s(quantIsp_, isp, quantLpc));
  std::copy_n(isp, kOrder, quantIsp_);

  if (!active_) {
    Zpp16s residual[kFrame];
    for (int k = 0; k < kSubframes; ++k)
      require(zppsResidualFilter_AMRWB_16s(quantLpc + kFilter * k, input_.speech(k), residual + kSubframe * k, kSubframe));
    noise_.remember(residual, input_.scale(), isf, mode_);
  }
  for (int k = 0; k < kSubframes; ++k)
    encodeSubframe(k, pcm + kInputSubframe * k, spectrum.lpc + kFilter * k, quantLpc + kFilter * k, openLoopLags[k / 2],
                   stability, bits);
  std::copy_n(excitation_ + kFrame, kPastExcitation, excitation_);
}

void FrameEncoder::encodeSubframe(int subframe, const Zpp16s* pcm, const Zpp16s* lpc, const Zpp16s* quantLpc,
                                  Zpp16s openLoopLag, Zpp16s stability, FrameBits& bits) {
  const FieldWidths& widths = fieldWidths[mode_];
  const ZppSpeechRate rate = rateOf(mode_);
  const int scale = input_.scale(), shift = openLoop_.shift();
  Zpp16s* const excitation = excitation_ + kPastExcitation + kSubframe * subframe;

  // Target and impulse response (clauses 5.6 and 5.7)
  Zpp16s weighting[kFilter], target[kSubframe], residualTarget[kSubframe], impulse[kSubframe], pulseResponse[kSubframe];
  weight(lpc, kWeighting, weighting);
  require(zppsImpulseResponseTarget_AMRWB_16s(input_.speech(subframe), weighting, quantLpc, synthesis_, excitation, target,
                                              residualTarget, impulse, weightedTarget_));
  amrwb::scale(impulse, pulseResponse, kSubframe, -2);
  amrwb::scale(target, kSubframe, shift);
  amrwb::scale(impulse, kSubframe, 1 + shift);

  // Adaptive codebook (clause 5.7)
  Zpp16s lag = 0, fraction = 0, lagIndex = 0;
  require(zppsAdaptiveCodebookSearch_AMRWB_16s(target, impulse, excitation, &lowestLag_, &lag, &fraction, &lagIndex,
                                               openLoopLag, subframe, rate));
  bits.put(lagIndex, hasAbsoluteLag(mode_, subframe) ? widths.absoluteLag : widths.relativeLag);
  const int clip = clipsPitchGain() ? 1 : 0;
  Zpp16s codeTarget[kSubframe], filteredVector[kSubframe], pitchGain = 0, coefficients[4], select = 0;
  require(zppsAdaptiveCodebookContribution_AMRWB_16s(target, impulse, excitation, residualTarget, codeTarget, filteredVector,
                                                     &pitchGain, coefficients, &select, clip, rate));
  bits.put(select, widths.filterSelect);
  amrwb::scale(residualTarget, kSubframe, shift);

  // Algebraic codebook (clause 5.8)
  const int sharpeningLag = lag + (fraction > 2 ? 1 : 0);
  shapePulses(pulseResponse, tilt_, sharpeningLag);
  Zpp16s code[kSubframe], filteredCode[kSubframe], codeIndex[8];
  require(
      zppsAlgebraicCodebookSearch_AMRWB_16s(codeTarget, residualTarget, pulseResponse, code, filteredCode, codeIndex, rate));
  for (int i = 0; i < widths.codeCount; ++i) bits.put(codeIndex[i], widths.code[i]);
  shapePulses(code, tilt_, sharpeningLag);

  // Gains (clause 5.9)
  Zpp16s gainIndex = 0;
  Zpp32s codeGain = 0;
  require(zppsGainQuant_AMRWB_16s(target, filteredVector, filteredCode, code, coefficients, &pitchGain, &codeGain, &gainIndex,
                                  pastEnergies_, scale + shift, clip, rate));
  bits.put(gainIndex, widths.gains);
  const Zpp32s smoothed =
      isLowRate(mode_) ? macDbl(mulDbl(32113, pitchGain_), 655, pitchGain) : macDbl(mulDbl(29491, pitchGain_), 3277, pitchGain);
  pitchGain_ = std::max<Zpp16s>(high16(smoothed), 9830);

  // Memories of the next subframe (clause 5.10)
  const Zpp16s gain = roundHigh16(shlSat32(codeGain, scale));
  Zpp16s vector[kSubframe], voiceFactor = 0;
  amrwb::scale(excitation, vector, kSubframe, shift);
  require(zppsVoiceFactor_AMRWB_16s(vector, code, shift, pitchGain, gain, &voiceFactor));
  tilt_ = addSat16(static_cast<Zpp16s>(voiceFactor >> 2), 8192);
  constexpr int last = kSubframe - 1;
  Zpp32s rest = subSat32(0, shlSat32(mulDbl(gain, filteredCode[last]), 5 + shift));
  rest = macDbl(rest, target[last], 16384);
  rest = subSat32(rest, mulDbl(filteredVector[last], pitchGain));
  weightedTarget_ = roundHigh16(shlSat32(rest, 1 - shift));

  std::copy_n(excitation, kSubframe, vector);
  require(zppsExcitation_AMRWB_16s_I(code, excitation, gain, pitchGain));
  Zpp16s synthesis[kSubframe];
  std::copy_n(excitation, kSubframe, synthesis);
  require(zppsSynthesisFilter_AMRWB_16s_I(quantLpc, synthesis, kSubframe, kOrder, synthesis_));
  if (mode_ != kHighestMode) return;
  require(
      zppsExcitationEnhance_AMRWB_16s_I(code, vector, pitchGain, codeGain, stability, voiceFactor, scale, &smoothedCodeGain_));
  bits.put(highBand_.encode(quantLpc, vector, scale, pcm, vadHist_, noise_.hangover()), widths.highBand);
}

// Comfort noise (TS 26.192)
void FrameEncoder::encodeNoise(const Zpp16s* pcm, const Spectrum& spectrum, FrameBits& bits) {
  Zpp16s noise[kFrame], isf[kOrder], lpc[kFilter];
  require(zppsResidualFilter_AMRWB_16s(spectrum.lpc + kFilter * (kSubframes - 1), input_.speech(0), noise, kFrame));
  noise_.remember(noise, input_.scale(), spectrum.isf, mode_);
  noise_.describe(bits, isf);

  // The high band's memories follow what the decoder will play.
  noise_.excite(noise);
  Zpp16s isp[kOrder];
  require(zppsISFToISP_AMRWB_16s(isf, isp, kOrder));
  require(zppsISPToLPC_AMRWB_16s(isp, lpc, kOrder, 0));
  for (int k = 0; k < kSubframes; ++k)
    highBand_.encode(lpc, noise + kSubframe * k, 0, pcm + kInputSubframe * k, vadHist_, noise_.hangover());
  std::copy_n(isf, kOrder, lastIsf_);
  resetAfterNoise();
}

void Encoder::setBitRate(int bitRate) {
  constexpr int bitRates[kModes] = {6600, 8850, 12650, 14250, 15850, 18250, 19850, 23050, 23850};
  mode_ = static_cast<int>(std::ranges::find(bitRates, bitRate) - bitRates);
}

int Encoder::encode(const Zpp16s* pcm, Zpp8u* payload) {
  Zpp16s samples[kInputFrame];
  for (int n = 0; n < kInputFrame; ++n) samples[n] = static_cast<Zpp16s>(pcm[n] & ~3);
  Frame frame;
  frame.mode = mode_;
  const bool speech = coder_.encode(samples, mode_, dtx_, frame.bits);
  if (std::all_of(pcm, pcm + kInputFrame, [](Zpp16s x) { return x == kHomingSample; }))
    std::construct_at(&coder_);  // in place: a copy would not fit the stack
  if (speech) {
    schedule_.speech();
    frame.type = mode_;
    return pack(frame, payload);
  }
  std::copy_n(frame.bits.bit, kNoiseBits, noiseBits_);
  const NoiseSchedule::Sent sent = schedule_.noise();
  if (sent == NoiseSchedule::Sent::nothing) return 0;
  frame.type = frameNoise;
  frame.update = sent == NoiseSchedule::Sent::update;
  // The first frame of comfort noise only says that speech has ended.
  if (!frame.update) std::fill_n(frame.bits.bit, kNoiseBits, Zpp8u{0});
  return pack(frame, payload);
}

int Encoder::unsent(Zpp8u* payload) const {
  Frame frame;
  frame.type = frameNoise;
  frame.mode = mode_;
  std::copy_n(noiseBits_, kNoiseBits, frame.bits.bit);
  return pack(frame, payload);
}

}  // namespace codecs::amrwb
