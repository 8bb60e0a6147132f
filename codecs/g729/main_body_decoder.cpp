#include "codecs/g729/main_body_decoder.h"

#include <algorithm>
#include <cstdlib>

#include "codecs/codec.h"
#include "codecs/fixed_point.h"
#include "codecs/g729/delay_coding.h"

namespace codecs::g729 {
namespace {

constexpr int kStationaryRun = 30;

}  // namespace

PitchDelay PitchTracker::take(const PitchDelay& delay) {
  constexpr int near = 5, mostSteady = 7;
  int distance = std::abs(delay[0] - previous_);
  PitchDelay taken = delay;
  if (distance < near) {
    steady_ = std::min(steady_ + 1, mostSteady);
    kept_ = delay;
  } else {
    const int small = std::min<int>(delay[0], previous_), large = std::max<int>(delay[0], previous_);
    for (int multiple = 2; multiple <= 4; ++multiple) distance = std::min(distance, std::abs(multiple * small - large));
    if (distance < near) {
      if (steady_ > 0) taken = kept_;
      steady_ = std::max(steady_ - 1, 0);
    } else {
      steady_ = 0;
      kept_ = delay;
    }
  }
  previous_ = taken[0];
  return taken;
}

MainBodyDecoder::MainBodyDecoder() { require(zppsPhaseDispersionInit_G729D_16s(dispersion_.data())); }

void MainBodyDecoder::conceal(Zpp16s* samples) {
  Frame frame;
  if (last_.speech) {
    frame.type = FrameType::speech;
    frame.speech.rate = last_.rate;
    frame.speech.backward = last_.backward;
  }
  play(frame, true, samples);
}

void MainBodyDecoder::play(const Frame& frame, bool lost, Zpp16s* samples) {
  kind_ = {.speech = frame.type == FrameType::speech,
           .lost = lost,
           .rate = frame.speech.rate,
           .backward = frame.speech.backward,
           .voiced = voiced_};
  const bool kbit12 = kind_.speech && kind_.rate == Rate::kbit12;
  if (!kind_.speech) kind_.backward = false;
  // A loss does not change what its last frame began with.
  if (kbit12 && last_.lost) kind_.voiced = last_.voiced;
  if (!lost) {
    muting_ = 32767;
    lostSubframes_ = 0;
  }

  if (kind_.speech) {
    decodeSpeech(frame.speech);
  } else {
    synthesis_.shift();
    decodeNoise(frame.type == FrameType::sid ? &frame.sid : nullptr);
  }
  if (!lost) silence_.remember(excitation(0));

  if (levelOf(synthesis_.synthesis(0), kFrameSize) >= kAudibleLevel) dominance_.count(kind_.backward);
  if (lost)
    shareBeforeLoss_ = 4096;
  else if (!kind_.backward)
    shareBeforeLoss_ = 0;
  else
    shareBeforeLoss_ = std::max<Zpp16s>(static_cast<Zpp16s>(shareBeforeLoss_ - (dominance_.dominant() ? 410 : 2048)), 0);

  postfilter_.start({.noise = !kind_.speech, .kbit12 = kbit12, .music = kind_.backward && dominance_.dominant()}, delay_);
  voiced_ = false;
  for (int s = 0; s < kSubframes; ++s)
    if (postfilter_.filter(filters_[s], synthesis_.synthesis(s), samples + kSubframeSize * s)) voiced_ = true;
  highPass_.filter({samples, kFrameSize});
  shiftFrame(excitation_);
  last_ = kind_;
}

void MainBodyDecoder::decodeSpeech(const SpeechParameters& parameters) {
  silence_.restart();
  deriveFilters(parameters);
  for (int s = 0; s < kSubframes; ++s) {
    const PitchDelay delay = takeDelay(parameters, s);
    if (s == 0) delay_ = delay[0];
    decodeSubframe(parameters.subframes[s], delay, s);
  }
}

void MainBodyDecoder::deriveFilters(const SpeechParameters& parameters) {
  BackwardFilter newest;
  if (kind_.rate == Rate::kbit12) {
    const bool lossBegins = kind_.lost && !last_.lost;
    synthesis_.observe();
    if (kind_.backward || lossBegins) newest = synthesis_.filter();
    if (kind_.backward && shareBeforeLoss_ != 0) newest = mix(newest, beforeLoss_, shareBeforeLoss_);
    if (lossBegins) beforeLoss_ = newest;
  }
  synthesis_.shift();
  if (kind_.backward) {
    filters_ = backwardInterpolation_.towards(newest);
    backwardInterpolation_.useBackward(filters_);
  } else {
    moveForward(kind_.lost ? lsp_.repeat() : lsp_.decode(parameters.lsp), !last_.backward);
  }
}

void MainBodyDecoder::moveForward(const Lsp& lsp, bool interpolated) {
  SubframeFilters filters;
  if (interpolated) {
    filters = interpolation_.moveTo(lsp);
  } else {
    interpolation_.set(lsp);
    filters.fill(toFilter(lsp));
  }
  backwardInterpolation_.useForward(filters);
  filters_ = {filters[0], filters[1]};
}

// Without a good delay the last one is used; below 11.8 kbit/s it grows slowly.
PitchDelay MainBodyDecoder::takeDelay(const SpeechParameters& parameters, int subframe) {
  const bool kbit12 = kind_.rate == Rate::kbit12;
  const Zpp16s code = parameters.subframes[subframe].delay;
  const bool wrong = subframe == 0 && kind_.rate != Rate::kbit6 && parameters.parity != delayParity(code, kind_.rate);
  PitchDelay delay;
  if (!kind_.lost && !wrong) {
    delay = lastDelay_ = subframe == 0 ? decodeDelay(code) : decodeDelay(code, kind_.rate, delay_);
  } else if (kbit12) {
    delay = lastDelay_;
  } else {
    delay = {lastDelay_[0], 0};
    lastDelay_[0] = std::min<Zpp16s>(static_cast<Zpp16s>(lastDelay_[0] + 1), kLongestDelay);
  }
  const PitchDelay tracked = tracker_.take(lastDelay_);
  if (kbit12) lastDelay_ = tracked;
  return delay;
}

// The excitation (clauses 4.1.3 to 4.1.5 and 4.4)
void MainBodyDecoder::decodeSubframe(const SubframeParameters& parameters, const PitchDelay& delay, int subframe) {
  require(zppsDecodeAdaptiveVector_G729_16s_I(delay.data(), excitation(subframe) - kPastExcitation));
  SubframeParameters pulses = parameters;
  if (kind_.lost && kind_.rate == Rate::kbit12) {
    for (Zpp16s& word : pulses.pulses) word = random_.next();
  } else if (kind_.lost) {
    pulses.positions = random_.next();
    pulses.signs = random_.next();
  }
  Subframe code = codeVector(pulses, kind_.rate, kind_.backward);
  sharpen(code, delay[0], sharpening_);

  backwardRun_ = kind_.backward ? std::min(backwardRun_ + 1, kStationaryRun) : 0;
  decodeGains(code, kind_.lost ? nullptr : parameters.gains);
  auto [pitchGain, codeGain] = gains_;
  if (kind_.lost) (kind_.voiced ? codeGain : pitchGain) = 0;
  mixExcitation(excitation(subframe), code, pitchGain, codeGain);
  synthesiseSubframe(subframe, &code);
}

// index: null for a lost frame
void MainBodyDecoder::decodeGains(const Subframe& code, const Zpp16s* index) {
  Zpp32s energy = 0;
  require(zppsDotProd_16s32s_Sfs(code.data(), code.data(), kSubframeSize, &energy, 0));
  const auto decode = kind_.rate == Rate::kbit6 ? zppsDecodeGain_G729D_16s : zppsDecodeGain_G729_16s;
  auto gains = gains_;
  require(decode(energy, gainMemory_.data(), index, gains.data()));
  if (index == nullptr && kind_.rate == Rate::kbit12) {
    fadeGains();
  } else {
    gains_ = gains;
  }
  if (index == nullptr) ++lostSubframes_;
  sharpening_ = sharpeningFor(gains_[0]);
}

// At 11.8 kbit/s the gains of a lost frame hold at first and then fade, those of stationary music later and more slowly.
void MainBodyDecoder::fadeGains() {
  const bool stationary = backwardRun_ == kStationaryRun;
  if (lostSubframes_ < 2) {
    gains_[0] = stationary ? 16384 : 15564;  // 1 or 0.95
    return;
  }
  for (Zpp16s& gain : gains_) gain = mulQ15(gain, muting_);
  if (!stationary)
    muting_ = mulQ15(muting_, 32112);  // 0.98
  else if (lostSubframes_ > 10)
    muting_ = mulQ15(muting_, 32604);  // 0.995
}

void MainBodyDecoder::decodeNoise(const SidParameters* sid) {
  const auto gains = silence_.play(sid, last_.speech, lsp_, excitation(0));
  moveForward(silence_.lsp(), true);
  for (int s = 0; s < kSubframes; ++s) {
    require(zppsPhaseDispersionUpdate_G729D_16s(gains[s].pitch, gains[s].amplitude, dispersion_.data()));
    synthesiseSubframe(s, nullptr);
  }
  delay_ = lastDelay_[0];
  sharpening_ = kLeastSharpening;
  backwardRun_ = 0;
  tracker_.restart();
}

// Where the synthesis is clamped, the whole excitation is scaled down and the subframe synthesised again. code: of speech;
// at 6.4 kbit/s its pulses are dispersed on the way to the synthesis (clause D.6).
void MainBodyDecoder::synthesiseSubframe(int subframe, const Subframe* code) {
  Zpp16s* const output = synthesis_.synthesis(subframe);
  const AnyFilter& filter = filters_[subframe];
  const bool clamped = synthesise(filter, excitation(subframe), output, output);
  if (clamped) require(zppsRShiftC_16s_I(excitation_.data(), static_cast<int>(excitation_.size()), 2));
  const bool dispersed = code != nullptr && kind_.rate == Rate::kbit6;
  if (dispersed) {
    Subframe excitement;
    require(zppsPhaseDispersion_G729D_16s(excitation(subframe), code->data(), excitement.data(), gains_[1], gains_[0],
                                          dispersion_.data()));
    synthesise(filter, excitement.data(), output, output);
  } else {
    if (code != nullptr) require(zppsPhaseDispersionUpdate_G729D_16s(gains_[0], gains_[1], dispersion_.data()));
    if (clamped) synthesise(filter, excitation(subframe), output, output);
  }
}

}  // namespace codecs::g729
