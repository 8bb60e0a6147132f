#include "codecs/g723/decoder.h"

#include <algorithm>

#include "codecs/g723/payload.h"

namespace codecs::g723 {
namespace {

// Gain levels of the fixed codebooks
constexpr Zpp16s kLevels[] = {1,   2,   3,   4,   6,   9,   13,   18,   26,   38,   55,   80,
                              115, 166, 240, 348, 502, 726, 1050, 1517, 2193, 3170, 4582, 6623};

constexpr Zpp16s threeQuarters(Zpp16s x) { return static_cast<Zpp16s>((3 * x + 2) >> 2); }

}  // namespace

Decoder::Decoder(const Options& options) : postfilter_(options.variant == 0), output_(postfilter_) {}

bool Decoder::isPayloadSize(int octets) const {
  for (const Kind kind : {Kind::highRate, Kind::lowRate, Kind::descriptor, Kind::untransmitted})
    if (octets == payloadSize(kind)) return true;
  return false;
}

bool Decoder::decode(const Zpp8u* payload, int octets, Zpp16s* pcm) {
  Frame frame;
  if (octets != 0) {
    if (octets != payloadSize(kindOf(payload[0]))) return false;
    if (!unpack(payload, frame)) {
      conceal(pcm);
      return true;
    }
  }
  switch (frame.kind) {
    case Kind::highRate:
    case Kind::lowRate:
      decodeSpeech(frame, pcm);
      return true;
    case Kind::descriptor:
      describe(frame);
      break;
    case Kind::untransmitted:
      if (!noise_.playing()) describeLastSpeech();
      break;
  }
  playNoise(pcm);
  return true;
}

// In a pause the noise goes on, speech goes on as it was (clause 3.10).
void Decoder::conceal(Zpp16s* pcm) {
  if (noise_.playing())
    playNoise(pcm);
  else
    concealSpeech(pcm);
}

void Decoder::decodeSpeech(const Frame& frame, Zpp16s* pcm) {
  lossCount_ = 0;
  Past excitation, scaled;
  std::copy(excitation_.begin(), excitation_.end(), excitation.begin());
  for (int i = 0; i < kSubframes; ++i) {
    const Zpp16s* past = excitation.data() + kSubframe * i;
    decodeSubframe(frame, i, past, excitation.data() + kHistory + kSubframe * i);
  }
  std::copy(excitation.end() - kHistory, excitation.end(), excitation_.begin());
  const int shift = blockScaled(excitation.data(), scaled.data(), kHistory + kFrame);
  classify(scaled, shift, frame);
  if (postfilter_)
    postfilterPitch(excitation, scaled, frame, pcm);
  else
    std::copy(excitation.begin() + kHistory, excitation.end(), pcm);

  const Lsf lsf = decodedLsf(frame.lsfIndex, lsf_);
  synthesise(lsf, pcm);
  noise_.setLsf(lsf);
  noise_.stop();
}

// What may be needed when the next frame is missing
void Decoder::classify(const Past& scaled, int shift, const Frame& frame) {
  require(zppsVoicingDecision_G723_16s(scaled.data(), &period_, &energy_, frame.lag[1]));
  energyShift_ = static_cast<Zpp16s>(shift);
  noiseGain_ = kLevels[(frame.codeword[2][0] + frame.codeword[3][0]) >> 1];
}

void Decoder::concealSpeech(Zpp16s* pcm) {
  constexpr int kMutedFrom = 3;
  lossCount_ = std::min(lossCount_ + 1, kMutedFrom);
  noiseGain_ = threeQuarters(noiseGain_);
  require(zppsResidualInterpolation_G723_16s(excitation_.data(), &seed_, pcm, period_, noiseGain_, lossCount_));
  synthesise(concealedLsf(lsf_), pcm);
  noise_.stop();
}

// Clause 3.6
void Decoder::postfilterPitch(const Past& excitation, const Past& scaled, const Frame& frame, Zpp16s* pcm) const {
  for (int i = 0; i < kSubframes; ++i) {
    Zpp16s filterLag = 0, gain = 0, scale = 0;
    require(zppsPitchPostFilterSearch_G723_16s(scaled.data(), &filterLag, &gain, &scale,
                                               frame.lag[static_cast<unsigned>(i / 2)], i, rateOf(frame.kind)));
    require(zppsPitchPostFilter_G723_16s(excitation.data() + kHistory + kSubframe * i, pcm + kSubframe * i, filterLag, gain,
                                         scale));
  }
}

void Decoder::describe(const Frame& descriptor) {
  noise_.setGain(descriptor.noiseGain);
  noise_.setLsf(decodedLsf(descriptor.lsfIndex, lsf_));
}

// A pause without a descriptor: noise at the level of the speech before it
void Decoder::describeLastSpeech() {
  Zpp16s index = 0;
  require(zppsSIDGainQuant_G723_16s(&energy_, &energyShift_, &index, 0));
  noise_.setGain(index);
}

void Decoder::playNoise(Zpp16s* pcm) {
  const ComfortNoise::Noise noise = noise_.play(excitation_);
  std::copy(noise.excitation.begin(), noise.excitation.end(), pcm);
  synthesise(noise_.lsf(), pcm);
}

void Decoder::synthesise(const Lsf& lsf, Zpp16s* pcm) {
  output_.filter(interpolatedFilters(lsf_, lsf), pcm);
  lsf_ = lsf;
}

}  // namespace codecs::g723
