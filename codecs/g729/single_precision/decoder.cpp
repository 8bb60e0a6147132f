#include "codecs/g729/single_precision/decoder.h"

#include <cmath>

#include "codecs/codec.h"
#include "codecs/g729/delay_coding.h"
#include "codecs/g729/single_precision/functions.h"
#include "codecs/g729/single_precision/tables.h"

namespace codecs::g729f {
namespace {

// Four pulses (clause 4.1.4)
Subframe codeVector(Zpp16s positions, int signs) {
  Subframe code{};
  for (const int position : g729::pulsePositions(positions)) {
    code[position] = signs & 1 ? 1 : -1;
    signs >>= 1;
  }
  return code;
}

// Rounded, half away from zero; what is no number is silence.
Zpp16s toSample(Zpp32f x) {
  if (!(x > -32768)) return x < 0 ? Zpp16s{-32768} : Zpp16s{0};
  if (x >= 32767) return 32767;
  return static_cast<Zpp16s>(x < 0 ? x - 0.5f : x + 0.5f);
}

}  // namespace

template <class Postfilter>
void FrameDecoder<Postfilter>::play(const SpeechParameters& parameters, bool lost, Zpp16s* samples) {
  const SubframeFilters filters = interpolation_.moveTo(decodeLsp(parameters.lsp, lost));
  for (int s = 0; s < kSubframes; ++s) {
    const PitchDelay delay = takeDelay(parameters, s, lost);
    delays_[s] = delay[0];
    decodeSubframe(parameters.subframes[s], delay, s, lost);
    synthesise(filters[s], excitation(s), synthesis(s), synthesis(s));
  }

  voiced_ = false;
  std::array<Zpp32f, kFrameSize> output;
  for (int s = 0; s < kSubframes; ++s) {
    const int delay = delays_[Postfilter::kDelayOfFrame ? 0 : s];
    if (postfilter_.filter(filters[s], delay, synthesis(s), output.data() + kSubframeSize * s)) voiced_ = true;
  }
  highPass_.filter(output);
  std::ranges::transform(output, samples, toSample);
  shiftFrame(excitation_);
  shiftFrame(synthesis_);
}

// Clauses 4.1.1 and 4.4.1
template <class Postfilter>
Lsp FrameDecoder<Postfilter>::decodeLsp(const std::array<Zpp16s, 2>& code, bool lost) {
  if (lost) {
    require(zppsLSFDecodeErased_G729_32f(maMode_, maMemory_.data(), lsf_.data()));
  } else {
    maMode_ = static_cast<Zpp16s>(code[0] >> 7);
    const std::array<Zpp16s, 4> index = {maMode_, static_cast<Zpp16s>(code[0] & 127), static_cast<Zpp16s>(code[1] >> 5),
                                         static_cast<Zpp16s>(code[1] & 31)};
    warns(zppsLSFDecode_G729_32f(index.data(), maMemory_.data(), lsf_.data()));  // of LSFs at the ends of their range
  }
  Lsp lsp;
  std::ranges::transform(lsf_, lsp.begin(),
                         [](Zpp32f angle) { return static_cast<Zpp32f>(cosine(static_cast<double>(angle))); });
  return lsp;
}

// Without a good delay the last one is used, and grows slowly.
template <class Postfilter>
PitchDelay FrameDecoder<Postfilter>::takeDelay(const SpeechParameters& parameters, int subframe, bool lost) {
  const Zpp16s code = parameters.subframes[subframe].delay;
  if (lost || (subframe == 0 && parameters.parity != g729::delayParity(code, parameters.rate))) {
    const PitchDelay delay = {lastDelay_, 0};
    lastDelay_ = std::min<Zpp16s>(static_cast<Zpp16s>(lastDelay_ + 1), kLongestDelay);
    return delay;
  }
  const PitchDelay delay = subframe == 0 ? g729::decodeDelay(code) : g729::decodeDelay(code, parameters.rate, delays_[0]);
  lastDelay_ = delay[0];
  return delay;
}

// The excitation (clauses 4.1.3 to 4.1.5 and 4.4)
template <class Postfilter>
void FrameDecoder<Postfilter>::decodeSubframe(const SpeechParameters::Subframe& parameters, const PitchDelay& delay,
                                              int subframe, bool lost) {
  require(zppsDecodeAdaptiveVector_G729_32f_I(delay.data(), excitation(subframe) - kPastExcitation));
  Zpp16s positions = parameters.positions, signs = parameters.signs;
  if (lost) {
    positions = random_.next();
    signs = random_.next();
  }
  Subframe code = codeVector(positions, signs);
  sharpen(code, delay[0], sharpening_);
  decodeGains(code, lost ? nullptr : parameters.gains);
  sharpening_ = sharpeningFor(pitchGain_);

  Zpp32f pitchGain = pitchGain_, codeGain = codeGain_;
  if (lost && Postfilter::kDelayOfFrame) (voiced_ ? codeGain : pitchGain) = 0;
  mixExcitation(excitation(subframe), code, pitchGain, codeGain);
}

// index: null for a lost frame
template <class Postfilter>
void FrameDecoder<Postfilter>::decodeGains(const Subframe& code, const Zpp16s* index) {
  Zpp32f error;  // of the prediction, dB
  if (index == nullptr) {
    pitchGain_ = std::min(0.9f * pitchGain_, 0.9f);
    codeGain_ *= 0.98f;
    error = std::max((gainMemory_[0] + gainMemory_[1] + gainMemory_[2] + gainMemory_[3]) / 4 - 4, -14.f);
  } else {
    constexpr std::array<Zpp32f, 4> predictor = {0.68f, 0.58f, 0.34f, 0.19f};
    const GainPair &first = firstGains[index[0]], &second = secondGains[index[1]];
    const auto correction = static_cast<double>(first.correction + second.correction);
    const Zpp32f energy = 0.01f + energyOf(code.data());
    const double decibels = 36 - 10 * log10Of(static_cast<double>(energy) / kSubframeSize) +
                            static_cast<double>(product(predictor.data(), gainMemory_.data(), 4));
    pitchGain_ = first.pitch + second.pitch;
    codeGain_ = static_cast<Zpp32f>(correction * powerOf10(decibels / 20));
    error = static_cast<Zpp32f>(20 * log10Of(correction));
  }
  std::shift_right(gainMemory_.begin(), gainMemory_.end(), 1);
  gainMemory_[0] = error;
}

template class FrameDecoder<MainBodyPostfilter>;
template class FrameDecoder<AnnexAPostfilter>;

}  // namespace codecs::g729f
