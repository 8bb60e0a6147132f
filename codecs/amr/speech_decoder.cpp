#include "codecs/amr/speech_decoder.h"

#include <cstring>

#include "codecs/codec.h"
#include "codecs/fixed_point.h"

namespace codecs::amr {
namespace {

constexpr int kPast = 154;

// Words of the condition
enum { kBad, kPreviousBad, kDegraded, kPreviousDegraded, kBackgroundNoise, kVoicedHangover, kState };

// Excitation of both codebooks. pitchGain: Q14, at 12.2 kbit/s halved. dst may be a source.
void mix(int mode, const Zpp16s* vector, Zpp16s pitchGain, const Zpp16s* code, Zpp16s codeGain, Zpp16s* dst) {
  const bool highest = mode == k1220;
  require(zppsInterpolateC_NR_G729_16s_Sfs(vector, highest ? static_cast<Zpp16s>(pitchGain >> 1) : pitchGain, code, codeGain,
                                           dst, kSubframe, highest ? 13 : 14));
}

}  // namespace

struct SpeechDecoder::Subframe {
  Subframe(int k, int m, Zpp16s before)
      : mode(m), number(static_cast<Zpp16s>(k)), rate(rateOf(m)), lag(before), lastLag(before) {}

  int mode;
  Zpp16s number;
  ZppSpeechRate rate;
  Zpp16s lag, lastLag;
  Zpp16s vector[kSubframe], code[kSubframe];
  Zpp16s pitchGain, codeGain;  // Q14, Q1
};

class SpeechDecoder::ParameterReader {
 public:
  explicit ParameterReader(const Zpp16s* parameters) : next_(parameters) {}
  Zpp16s get() { return *next_++; }
  const Zpp16s* take(int count) { return (next_ += count) - count; }
  // 4.75 kbit/s: one index for two subframes
  Zpp16s getShared(bool first) { return first ? shared_ = get() : shared_; }

 private:
  const Zpp16s* next_;
  Zpp16s shared_ = 0;
};

SpeechDecoder::Memory::Memory() { std::memcpy(lsf, meanLsf, sizeof lsf); }

SpeechDecoder::SpeechDecoder() {
  std::memcpy(lsp_, lspInit, sizeof lsp_);
  std::memcpy(lsfMean_, meanLsf, sizeof lsfMean_);
}

void SpeechDecoder::updateLsfMean() {
  require(zppsInterpolateC_NR_G729_16s_Sfs(lsfMean_, 27525, m_.lsf, 5243, lsfMean_, kOrder, 15));  // 0.84, 0.16
}

void SpeechDecoder::comfortNoise(const Zpp16s* sid, int mode, int prevState, int newState, Zpp16s* speech, Zpp16s* a,
                                 void* state) {
  m_ = Memory();
  m_.smoothing[7] = 20;
  require(zppsComfortNoise_GSMAMR_16s(sid, static_cast<Zpp16s>(prevState), static_cast<Zpp16s>(newState), m_.residualMem,
                                      m_.lsf, gainMem_, synthMem_, speech, a, lsp_, state, rateOf(mode)));
}

void SpeechDecoder::decode(Zpp16s* parameters, int mode, const FrameStatus& status, Zpp16s* speech, Zpp16s* a) {
  Zpp16s prevLsf[kOrder], lsp[2 * kOrder];
  if (status.parametersMissing) makeUp(parameters, mode);
  conceal(status.dtxState, status);

  ParameterReader reader(parameters);
  std::memcpy(prevLsf, m_.lsf, sizeof prevLsf);
  require(zppsLSPDecode_GSMAMR_16s(reader.take(mode == k1220 ? 5 : 3), m_.condition[kBad], m_.residualMem, m_.lsf, lsp,
                                   rateOf(mode)));
  require(zppsInterpolateLSP_GSMAMR_16s(lsp_, lsp, a, rateOf(mode)));
  std::memcpy(lsp_, mode == k1220 ? lsp + kOrder : lsp, sizeof lsp_);

  for (int k = 0; k < kSubframes; ++k) decodeSubframe(k, mode, reader, prevLsf, a + kSet * k, speech + kSubframe * k);

  require(zppsBackgroundNoise_GSMAMR_16s(speech, m_.pitchGainHist, m_.noiseEnergyHist, &m_.noiseCount,
                                         &m_.condition[kVoicedHangover], &m_.condition[kBackgroundNoise]));
  m_.condition[kPreviousBad] = m_.condition[kBad];
  m_.condition[kPreviousDegraded] = m_.condition[kDegraded];
}

// Parameters of a frame of which nothing arrived: noise, of which little is used (TS 26.073 Build_CN_param)
void SpeechDecoder::makeUp(Zpp16s* parameters, int mode) {
  const FrameLayout& layout = frameLayouts[mode];
  m_.seed = low16(m_.seed * 31821 + 13849);
  const Zpp16s* noise = window200_40 + (m_.seed & 127);
  for (int i = 0; i < layout.parameters; ++i) parameters[i] = static_cast<Zpp16s>(noise[i] & ((1 << layout.widths[i]) - 1));
}

// The state tells how many frames have been bad lately: the more, the more their gains fade (TS 26.091 clause 6.2.2).
void SpeechDecoder::conceal(int dtxState, const FrameStatus& status) {
  Zpp16s* const c = m_.condition;
  c[kBad] = status.bad;
  c[kDegraded] = status.degraded;
  c[kState] = static_cast<Zpp16s>(status.bad ? std::min(6, c[kState] + 1) : c[kState] == 6 ? 5 : 0);
  if (dtxState == 0) return;
  c[kState] = 5;
  c[kPreviousBad] = dtxState == 2;
}

void SpeechDecoder::decodeSubframe(int k, int mode, ParameterReader& parameters, const Zpp16s* prevLsf, const Zpp16s* a,
                                   Zpp16s* speech) {
  const Zpp16s* const c = m_.condition;
  Zpp16s* const e = m_.excitation + kPast;
  Subframe s(k, mode, m_.lastLag);

  Zpp16s decodedLag;
  require(zppsAdaptiveCodebookDecode_GSMAMR_16s(parameters.get(), &s.lastLag, &decodedLag, m_.excitation, &s.lag, s.vector,
                                                s.number, c[kBad], c[kBackgroundNoise], c[kVoicedHangover], s.rate));
  decodeGains(s, parameters);

  const Zpp16s limited = std::min(s.pitchGain, Zpp16s{13017});  // 0.7945
  Zpp16s sharpening = mode == k1220 ? s.pitchGain : limited;
  if (mode == k1020 && s.lastLag > 45) sharpening = static_cast<Zpp16s>(sharpening >> 2);
  sharpening = sat16(2 * sharpening);
  if (mode != k475 || k % 2 != 0) m_.sharpening = limited;

  if (!c[kBad]) {
    std::memmove(m_.pitchGainHist, m_.pitchGainHist + 1, sizeof m_.pitchGainHist - sizeof m_.pitchGainHist[0]);
    m_.pitchGainHist[8] = s.pitchGain;
  }
  Zpp16s pitchGain = s.pitchGain;
  if ((c[kBad] || c[kPreviousBad]) && c[kBackgroundNoise] && mode <= k590) {
    if (pitchGain > 12288) pitchGain = static_cast<Zpp16s>(((pitchGain - 12288) >> 1) + 12288);
    pitchGain = std::min(pitchGain, Zpp16s{14745});
  }

  Zpp16s smoothedGain, excitation[kSubframe];
  require(
      zppsCodeGainSmooth_GSMAMR_16s(s.codeGain, prevLsf, m_.lsf, lsfMean_, m_.smoothing, &smoothedGain, c, s.number, s.rate));
  mix(mode, s.vector, pitchGain, s.code, s.codeGain, e);
  require(zppsPhaseDispersion_GSMAMR_16s_I(pitchGain, smoothedGain, s.code, m_.dispersion, c, s.rate));
  mix(mode, s.vector, pitchGain, s.code, smoothedGain, excitation);
  synthesise(s, excitation, sharpening, s.pitchGain, a, speech);

  std::memmove(m_.excitation, m_.excitation + kSubframe, kPast * sizeof m_.excitation[0]);
  m_.lastLag = s.lag;
}

void SpeechDecoder::decodeCode(Subframe& s, const Zpp16s* codeword) {
  require(zppsFixedCodebookDecode_GSMAMR_16s(codeword, s.code, s.number, s.rate));
  const Zpp16s sharpening = sat16(2 * (s.mode == k1220 ? s.pitchGain : m_.sharpening));
  if (s.lag < kSubframe) require(zppsHarmonicFilter_16s_I(sharpening, s.lag, s.code + s.lag, kSubframe - s.lag));
}

// The code words lie between the indices of the gains.
void SpeechDecoder::decodeGains(Subframe& s, ParameterReader& parameters) {
  const Zpp16s* const c = m_.condition;
  const bool good = !c[kBad];
  const auto decodePitchGain = [&] {
    const Zpp16s index = parameters.get();
    if (good) require(zppsPitchGainDecode_GSMAMR_16s(index, &s.pitchGain, s.rate));
    require(zppsPitchGainConceal_GSMAMR_16s_I(&s.pitchGain, m_.pitchConceal, c));
  };
  s.pitchGain = s.codeGain = 0;
  if (s.mode == k1220) decodePitchGain();
  decodeCode(s, parameters.take(s.mode == k1220 ? 10 : s.mode == k1020 ? 7 : 2));
  if (s.mode == k795) decodePitchGain();

  const Zpp16s index = s.mode == k475 ? parameters.getShared(s.number % 2 == 0) : parameters.get();
  if (good) require(zppsGainDecode_GSMAMR_16s(index, s.code, gainMem_, &s.pitchGain, &s.codeGain, s.number, s.rate));
  if (s.mode != k1220 && s.mode != k795) require(zppsPitchGainConceal_GSMAMR_16s_I(&s.pitchGain, m_.pitchConceal, c));
  require(zppsCodeGainConceal_GSMAMR_16s_I(&s.codeGain, m_.codeConceal, gainMem_, c));
}

// excitation: for the synthesis only; the past that later frames repeat is another.
void SpeechDecoder::synthesise(const Subframe& s, Zpp16s* excitation, Zpp16s sharpening, Zpp16s pitchGain, const Zpp16s* a,
                               Zpp16s* speech) {
  Zpp16s emphasised[kSubframe];
  require(zppsExcitationControl_GSMAMR_16s_I(excitation, controlHist_, m_.condition, s.rate));
  require(zppsPitchEmphasis_GSMAMR_16s(s.vector, excitation, sharpening, pitchGain, emphasised, s.rate));
  if (warns(zppsSynthesisFilter_GSMAMR_16s(a, emphasised, speech, kSubframe, synthMem_))) {
    // Too loud: once more, softer and without the emphasis
    require(zppsRShiftC_16s_I(m_.excitation, kPast + kSubframe, 2));
    require(zppsRShiftC_16s_I(excitation, kSubframe, 2));
    warns(zppsSynthesisFilter_GSMAMR_16s(a, excitation, speech, kSubframe, synthMem_));
  }
  std::memcpy(synthMem_, speech + kSubframe - kOrder, sizeof synthMem_);
}

}  // namespace codecs::amr
