#include "codecs/g729/decoder.h"

#include <algorithm>

#include "codecs/codec.h"
#include "codecs/fixed_point.h"
#include "codecs/g729/tables.h"

namespace codecs::g729 {
namespace {

// Four pulses, Q13 (clause 4.1.4)
Subframe codeVector(Zpp16s positions, int signs) {
  Subframe code{};
  for (const int position : pulsePositions(positions)) {
    code[position] = signs & 1 ? 8191 : -8192;
    signs >>= 1;
  }
  return code;
}

}  // namespace

template <class Postfilter>
FrameDecoder<Postfilter>::FrameDecoder() : sidGain_(sidGains[0]) {
  std::copy_n(maMemory_.data(), kOrder, lsf_.begin());
}

template <class Postfilter>
void FrameDecoder<Postfilter>::decode(const Frame& frame, std::span<Zpp16s, kFrameSize> samples) {
  play(frame, false, samples);
}

// Speech goes on as speech, silence as silence.
template <class Postfilter>
void FrameDecoder<Postfilter>::conceal(std::span<Zpp16s, kFrameSize> samples) {
  Frame frame;
  if (lastType_ == FrameType::speech) frame.type = FrameType::speech;
  play(frame, true, samples);
}

template <class Postfilter>
void FrameDecoder<Postfilter>::play(const Frame& frame, bool lost, std::span<Zpp16s, kFrameSize> samples) {
  const bool noise = frame.type != FrameType::speech;
  if (noise) {
    decodeNoise(frame.type == FrameType::sid ? &frame.sid : nullptr);
  } else {
    decodeSpeech(frame.speech, lost);
  }
  lastType_ = frame.type;
  if (!lost) {
    Zpp32s energy = 0;  // doubled
    require(zppsDotProd_16s32s_Sfs(excitation(0), excitation(0), kFrameSize, &energy, -1));
    const int norm = norm32(energy);
    excitationEnergy_ = roundHigh16(shlSat32(energy, norm));
    excitationExponent_ = 16 - norm;
  }

  voiced_ = false;
  for (int s = 0; s < kSubframes; ++s) {
    const Zpp16s delay = delays_[kMainBody ? 0 : s];
    if (postfilter_.filter(filters_[s], delay, noise, synthesis(s), samples.data() + kSubframeSize * s)) voiced_ = true;
  }
  highPass_.filter(samples);
  shiftFrame(excitation_);
  shiftFrame(synthesis_);
}

template <class Postfilter>
void FrameDecoder<Postfilter>::decodeSpeech(const SpeechParameters& parameters, bool lost) {
  noise_.restart();
  filters_ = interpolation_.moveTo(decodeLsp(parameters.lsp, lost));
  for (int s = 0; s < kSubframes; ++s) {
    const PitchDelay delay = decodeDelay(parameters, s, lost);
    delays_[s] = delay[0];
    decodeSubframe(parameters.subframes[s], delay, s, lost);
    synthesiseSubframe(s);
  }
}

// Clauses 4.1.1 and 4.4.1
template <class Postfilter>
Lsp FrameDecoder<Postfilter>::decodeLsp(const std::array<Zpp16s, 2>& code, bool lost) {
  if (lost) {
    require(zppsLSFDecodeErased_G729_16s(maMode_, maMemory_.data(), lsf_.data()));
  } else {
    maMode_ = static_cast<Zpp16s>(code[0] >> 7);
    const std::array<Zpp16s, 4> index = {maMode_, static_cast<Zpp16s>(code[0] & 127), static_cast<Zpp16s>(code[1] >> 5),
                                         static_cast<Zpp16s>(code[1] & 31)};
    warns(zppsLSFDecode_G729_16s(index.data(), maMemory_.data(), lsf_.data()));  // of LSFs at the ends of their range
  }
  Lsp lsp;
  require(zppsLSFToLSP_G729_16s(lsf_.data(), lsp.data()));
  return lsp;
}

// Clauses 4.1.2 and 4.1.3. Without a good delay the last one is used, and grows slowly.
template <class Postfilter>
PitchDelay FrameDecoder<Postfilter>::decodeDelay(const SpeechParameters& parameters, int subframe, bool lost) {
  const int code = parameters.subframes[subframe].delay;
  const int samples = ((code + 2) * 10923 >> 15) - 1;  // (code - 1) / 3, rounded down
  PitchDelay delay;
  if (lost || (subframe == 0 && parameters.parity != delayParity(parameters.subframes[0].delay))) {
    delay = {lastDelay_, 0};
    lastDelay_ = std::min<Zpp16s>(static_cast<Zpp16s>(lastDelay_ + 1), kLongestDelay);
    return delay;
  }
  if (subframe == 1) {
    delay = {static_cast<Zpp16s>(samples + earliestDelay(delays_[0])), static_cast<Zpp16s>(code - 2 - 3 * samples)};
  } else if (code < 197) {
    delay = {static_cast<Zpp16s>(samples + 20), static_cast<Zpp16s>(code - 3 * (samples + 20) + 58)};
  } else {
    delay = {static_cast<Zpp16s>(code - 112), 0};
  }
  lastDelay_ = delay[0];
  return delay;
}

// The excitation (clauses 4.1.3 to 4.1.5 and 4.4)
template <class Postfilter>
void FrameDecoder<Postfilter>::decodeSubframe(const SpeechParameters::Subframe& parameters, const PitchDelay& delay,
                                              int subframe, bool lost) {
  require(zppsDecodeAdaptiveVector_G729_16s_I(delay.data(), excitation(subframe) - kPastExcitation));

  Zpp16s positions = parameters.positions, signs = parameters.signs;
  if (lost) {
    positions = static_cast<Zpp16s>(random_.next() & 0x1fff);
    signs = static_cast<Zpp16s>(random_.next() & 15);
  }
  Subframe code = codeVector(positions, signs);
  sharpen(code, delay[0], sharpening_);

  Zpp32s energy = 0;
  require(zppsDotProd_16s32s_Sfs(code.data(), code.data(), kSubframeSize, &energy, 0));
  require(zppsDecodeGain_G729_16s(energy, gainMemory_.data(), lost ? nullptr : parameters.gains, gains_.data()));
  sharpening_ = sharpeningFor(gains_[0]);

  auto [pitchGain, codeGain] = gains_;
  if (lost && kMainBody) (voiced_ ? codeGain : pitchGain) = 0;
  mixExcitation(excitation(subframe), code, pitchGain, codeGain);
}

// Annex B. Without a descriptor the last one holds; if that was lost, the level follows the end of the speech.
template <class Postfilter>
void FrameDecoder<Postfilter>::decodeNoise(const SidParameters* sid) {
  const bool afterSpeech = lastType_ == FrameType::speech;
  if (sid != nullptr) {
    sidGain_ = sidGains[sid->gain];
    Lsf lsf;
    warns(zppsLSFDecode_G729B_16s(sid->lsf.data(), maMemory_.data(), lsf.data()));
    require(zppsLSFToLSP_G729_16s(lsf.data(), sidLsp_.data()));
  } else if (afterSpeech) {
    sidGain_ = sidGains[guessSidGain(excitationEnergy_, excitationExponent_).index];
  }
  noise_.approach(sidGain_, afterSpeech);
  noise_.excite(excitation(0));
  filters_ = interpolation_.moveTo(sidLsp_);
  for (int s = 0; s < kSubframes; ++s) synthesiseSubframe(s);
  delays_.fill(lastDelay_);
  sharpening_ = kLeastSharpening;
}

// Where the synthesis is clamped, the whole excitation is scaled down and the subframe synthesised again.
template <class Postfilter>
void FrameDecoder<Postfilter>::synthesiseSubframe(int subframe) {
  Zpp16s* const output = synthesis(subframe);
  if (!synthesise(filters_[subframe], excitation(subframe), output, output - kOrder)) return;
  require(zppsRShiftC_16s_I(excitation_.data(), static_cast<int>(excitation_.size()), 2));
  synthesise(filters_[subframe], excitation(subframe), output, output - kOrder);
}

template class FrameDecoder<MainBodyPostfilter>;
template class FrameDecoder<AnnexAPostfilter>;

}  // namespace codecs::g729
