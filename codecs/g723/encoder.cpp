#include "codecs/g723/encoder.h"

#include <algorithm>
#include <bit>

#include "codecs/g723/payload.h"

namespace codecs::g723 {

Encoder::Encoder(const Options& options) : discontinuous_(options.dtx), highPass_(options.variant == 0) {
  setBitRate(options.bitRate);
}

void Encoder::setBitRate(int bitRate) { rate_ = bitRate == 6300 ? Kind::highRate : Kind::lowRate; }

int Encoder::encode(const Zpp16s* pcm, Zpp8u* payload) {
  Input input;
  std::array<Autocorrelation, kSubframes> autocorrelations;
  takeInput(pcm, input);
  const Filters filters = analyse(input, autocorrelations);
  dtx_.take(autocorrelations);
  const bool speech = !discontinuous_ || dtx_.isSpeech(input.data() + kPastInput, sineDetector_);

  Frame frame;
  frame.kind = rate_;
  if (speech) frame.lsfIndex = quantiseLsf(filters.back());
  Weighting weighting;
  for (unsigned i = 0; i < kSubframes; ++i) require(zppsWeightingLPC_G723_16s(filters[i].data(), weighting[i].data()));
  Weighted weighted, scaled;
  weightSpeech(input, weighting, weighted);
  blockScaled(weighted.data(), scaled.data(), kHistory + kFrame);
  frame.lag = openLoopLags(scaled);
  dtx_.setLags(frame.lag);

  if (speech)
    codeSpeech(weighted, scaled, weighting, frame);
  else
    frame = codeSilence(weighting);
  if (frame.kind == Kind::untransmitted) return 0;
  pack(frame, payload);
  return payloadSize(frame.kind);
}

// High-pass filter (clause 2.3), behind the past that the analysis reaches
void Encoder::takeInput(const Zpp16s* pcm, Input& input) {
  Zpp16s* fresh = std::copy(pastInput_.begin(), pastInput_.end(), input.begin());
  if (highPass_) {
    std::copy_n(pcm, kFrame, fresh);
    require(zppsHighPassFilter_G723_16s_I(fresh, highPassMemory_.data(), kFrame));
  } else {
    require(zppsRShiftC_16s(pcm, fresh, kFrame, 1));
  }
  std::copy(input.end() - kPastInput, input.end(), pastInput_.begin());
}

// LPC analysis (clause 2.4): 180 samples round each subframe
Filters Encoder::analyse(const Input& input, std::array<Autocorrelation, kSubframes>& autocorrelations) {
  constexpr unsigned kDecisions = 0x7fff, kSine = 0x8000;
  Filters filters;
  auto decisions = static_cast<unsigned>(sineDetector_);
  for (unsigned i = 0; i < kSubframes; ++i) {
    Autocorrelation& autocorrelation = autocorrelations[i];
    Zpp16s energy = 0, sine = 0;
    require(zppsAutoCorr_G723_16s(input.data() + kSubframe * i, &autocorrelation.exponent, autocorrelation.lags.data()));
    require(zppsLevinsonDurbin_G723_16s(autocorrelation.lags.data(), &sine, &energy, filters[i].data()));
    decisions = decisions << 1 | (static_cast<unsigned>(sine) & 1);
  }
  decisions &= kDecisions;
  if (std::popcount(decisions) >= 14) decisions |= kSine;
  sineDetector_ = static_cast<Zpp16s>(decisions);
  return filters;
}

// Clause 2.5
Zpp32s Encoder::quantiseLsf(const Filter& filter) const {
  Lsf lsf;
  Zpp32s index = 0;
  require(zppsLPCToLSF_G723_16s(filter.data(), lsf_.data(), lsf.data()));
  require(zppsLSFQuant_G723_16s32s(lsf.data(), lsf_.data(), &index));
  return index;
}

// Formant weighting (clause 2.8)
void Encoder::weightSpeech(const Input& input, const Weighting& weighting, Weighted& weighted) {
  Zpp16s* fresh = std::copy(pastWeighted_.begin(), pastWeighted_.end(), weighted.begin());
  std::copy_n(input.begin() + kDelay, kFrame, fresh);
  for (unsigned i = 0; i < kSubframes; ++i)
    require(zppsWeightingFilter_G723_16s_I(weighting[i].data(), fresh + kSubframe * i, weightingMemory_.data()));
  std::copy(weighted.end() - kHistory, weighted.end(), pastWeighted_.begin());
}

// Clause 2.9: one of each half frame
std::array<Zpp16s, 2> Encoder::openLoopLags(const Weighted& scaled) {
  std::array<Zpp16s, 2> lags;
  for (unsigned half = 0; half < 2; ++half)
    require(zppsOpenLoopPitchSearch_G723_16s(scaled.data() + kHistory + 2 * kSubframe * half, &lags[half]));
  return lags;
}

// Clauses 2.10 to 2.19
void Encoder::codeSpeech(const Weighted& weighted, const Weighted& scaled, const Weighting& weighting, Frame& frame) {
  std::array<HarmonicShaping, kSubframes> shaping;
  Excitation shaped;  // the speech of a subframe, then its target
  for (unsigned i = 0; i < kSubframes; ++i) {
    const std::size_t at = kHistory + kSubframe * i;
    require(zppsHarmonicSearch_G723_16s(scaled.data() + at, &shaping[i].lag, &shaping[i].gain, frame.lag[i / 2]));
    require(zppsHarmonicNoiseShaping_G723_16s(weighted.data() + at, shaped.data() + kSubframe * i, shaping[i].lag,
                                              shaping[i].gain));
  }
  const Filters filters = followLsf(decodedLsf(frame.lsfIndex, lsf_));
  Zpp16s searchTime = 120;  // what the algebraic search of a subframe does not need is the next one's
  for (unsigned i = 0; i < kSubframes; ++i)
    codeSubframe(static_cast<int>(i), filters[i], weighting[i].data(), shaping[i], shaped.data() + kSubframe * i, searchTime,
                 frame);
  dtx_.noise.stop();
}

// Clauses 2.12 to 2.19. target: the weighted and shaped speech
void Encoder::codeSubframe(int subframe, const Filter& filter, const Zpp16s* weighting, const HarmonicShaping& shaping,
                           Zpp16s* target, Zpp16s& searchTime, Frame& frame) {
  const auto i = static_cast<unsigned>(subframe);
  const ZppSpeechRate rate = rateOf(frame.kind);
  Zpp16s &lag = frame.lag[i / 2], &offset = frame.offset[i], &gainIndex = frame.gainIndex[i];
  Codeword& codeword = frame.codeword[i];

  Zpp16s impulse[kSubframe], vector[kSubframe];
  require(zppsImpulseResponse_G723_16s(filter.data(), weighting, impulse, shaping.lag, shaping.gain));
  require(zppsRingingSubtraction_G723_16s_I(filter.data(), weighting, ringing_.data(), ringingMemory_.data(), target,
                                            shaping.lag, shaping.gain));
  require(zppsAdaptiveCodebookSearch_G723(target, impulse, excitation_.data(), taming_.data(), &lag, &offset, &gainIndex,
                                          sineDetector_, subframe, rate));
  decodeAdaptive(frame, subframe, excitation_.data(), vector);
  require(zppsTargetUpdate_G723_16s_I(vector, impulse, target));

  if (frame.kind == Kind::highRate) {
    require(zppsMultiPulseSearch_G723_16s32s(target, impulse, codeword.data(), lag, subframe));
  } else {
    Zpp16s filtered[kSubframe], level = 0;
    require(zppsAlgebraicCodebookSearch_G723_16s32s(target, impulse, filtered, codeword.data(), &searchTime, lag, offset,
                                                    gainIndex));
    require(zppsGainQuant_G723_16s(target, filtered, &level));
    codeword[0] = level;
  }
  Zpp16s excitation[kSubframe];
  decodeSubframe(frame, subframe, excitation_.data(), excitation);
  enterHistory(excitation_, excitation, kSubframe);
  require(zppsTamingUpdate_G723_32s_I(taming_.data(), lag, offset, gainIndex, rate));
  runFilters(filter, weighting, excitation);
}

// Annex A: a frame of silence goes on with the noise that the decoder plays.
Frame Encoder::codeSilence(const Weighting& weighting) {
  const Frame frame = dtx_.describe(lsf_);
  const ComfortNoise::Noise noise = dtx_.noise.play(excitation_);
  const Filters filters = followLsf(dtx_.noise.lsf());
  for (unsigned i = 0; i < kSubframes; ++i) {
    require(zppsTamingUpdate_G723_32s_I(taming_.data(), noise.lag[i / 2], noise.offset[i], noise.gainIndex[i], rateOf(rate_)));
    runFilters(filters[i], weighting[i].data(), noise.excitation.data() + kSubframe * i);
  }
  return frame;
}

// The decoder's filters from the last frame's LSF to these (clause 2.7)
Filters Encoder::followLsf(const Lsf& lsf) {
  const Filters filters = interpolatedFilters(lsf_, lsf);
  lsf_ = lsf;
  return filters;
}

void Encoder::runFilters(const Filter& filter, const Zpp16s* weighting, const Zpp16s* excitation) {
  require(zppsRingingUpdate_G723_16s_I(filter.data(), weighting, excitation, ringing_.data(), ringingMemory_.data()));
}

}  // namespace codecs::g723
