#include "codecs/g729/annex_a_decoder.h"

#include <algorithm>

#include "codecs/codec.h"
#include "codecs/g729/delay_coding.h"

namespace codecs::g729 {

void AnnexADecoder::conceal(Zpp16s* samples) {
  Frame frame;
  if (lastType_ == FrameType::speech) frame.type = FrameType::speech;
  play(frame, true, samples);
}

void AnnexADecoder::play(const Frame& frame, bool lost, Zpp16s* samples) {
  const bool noise = frame.type != FrameType::speech;
  if (noise) {
    decodeNoise(frame.type == FrameType::sid ? &frame.sid : nullptr);
  } else {
    decodeSpeech(frame.speech, lost);
  }
  lastType_ = frame.type;
  if (!lost) silence_.remember(excitation(0));

  for (int s = 0; s < kSubframes; ++s)
    postfilter_.filter(filters_[s], delays_[s], noise, synthesis(s), samples + kSubframeSize * s);
  highPass_.filter({samples, kFrameSize});
  shiftFrame(excitation_);
  shiftFrame(synthesis_);
}

void AnnexADecoder::decodeSpeech(const SpeechParameters& parameters, bool lost) {
  silence_.restart();
  filters_ = interpolation_.moveTo(lost ? lsp_.repeat() : lsp_.decode(parameters.lsp));
  for (int s = 0; s < kSubframes; ++s) {
    const PitchDelay delay = takeDelay(parameters, s, lost);
    delays_[s] = delay[0];
    decodeSubframe(parameters.subframes[s], delay, s, lost);
    synthesiseSubframe(s);
  }
}

// Without a good delay the last one is used, and grows slowly.
PitchDelay AnnexADecoder::takeDelay(const SpeechParameters& parameters, int subframe, bool lost) {
  const Zpp16s code = parameters.subframes[subframe].delay;
  if (lost || (subframe == 0 && parameters.parity != delayParity(code, parameters.rate))) {
    const PitchDelay delay = {lastDelay_, 0};
    lastDelay_ = std::min<Zpp16s>(static_cast<Zpp16s>(lastDelay_ + 1), kLongestDelay);
    return delay;
  }
  const PitchDelay delay = subframe == 0 ? decodeDelay(code) : decodeDelay(code, parameters.rate, delays_[0]);
  lastDelay_ = delay[0];
  return delay;
}

// The excitation (clauses 4.1.3 to 4.1.5 and 4.4)
void AnnexADecoder::decodeSubframe(const SpeechParameters::Subframe& parameters, const PitchDelay& delay, int subframe,
                                   bool lost) {
  require(zppsDecodeAdaptiveVector_G729_16s_I(delay.data(), excitation(subframe) - kPastExcitation));
  SpeechParameters::Subframe pulses = parameters;
  if (lost) {
    pulses.positions = random_.next();
    pulses.signs = random_.next();
  }
  Subframe code = codeVector(pulses, Rate::kbit8, false);
  sharpen(code, delay[0], sharpening_);

  Zpp32s energy = 0;
  require(zppsDotProd_16s32s_Sfs(code.data(), code.data(), kSubframeSize, &energy, 0));
  require(zppsDecodeGain_G729_16s(energy, gainMemory_.data(), lost ? nullptr : parameters.gains, gains_.data()));
  sharpening_ = sharpeningFor(gains_[0]);
  mixExcitation(excitation(subframe), code, gains_[0], gains_[1]);
}

void AnnexADecoder::decodeNoise(const SidParameters* sid) {
  silence_.play(sid, lastType_ == FrameType::speech, lsp_, excitation(0));
  filters_ = interpolation_.moveTo(silence_.lsp());
  for (int s = 0; s < kSubframes; ++s) synthesiseSubframe(s);
  sharpening_ = kLeastSharpening;
}

// Where the synthesis is clamped, the whole excitation is scaled down and the subframe synthesised again.
void AnnexADecoder::synthesiseSubframe(int subframe) {
  Zpp16s* const output = synthesis(subframe);
  if (!synthesise(filters_[subframe], excitation(subframe), output, output - kOrder)) return;
  require(zppsRShiftC_16s_I(excitation_.data(), static_cast<int>(excitation_.size()), 2));
  synthesise(filters_[subframe], excitation(subframe), output, output - kOrder);
}

}  // namespace codecs::g729
