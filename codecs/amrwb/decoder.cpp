#include "codecs/amrwb/decoder.h"

#include <algorithm>

#include "codecs/amrwb/homing.h"

namespace codecs::amrwb {

namespace {

constexpr Zpp16s kMostScale = 8;

// Weights of a frame's ISFs in its subframes, Q15, interpol_frac
constexpr Zpp16s interpolation[kSubframes] = {14746, 26214, 31457, 32767};

// What a frame of a mode tells about one subframe
struct SubframeFields {
  Zpp16s lag, select, code[8], gains, highBand;
};

SubframeFields readSubframe(FieldReader& reader, const FieldWidths& widths, int mode, int subframe) {
  SubframeFields fields;
  fields.lag = reader.take(hasAbsoluteLag(mode, subframe) ? widths.absoluteLag : widths.relativeLag);
  fields.select = reader.take(widths.filterSelect);
  for (int i = 0; i < widths.codeCount; ++i) fields.code[i] = reader.take(widths.code[i]);
  fields.gains = reader.take(widths.gains);
  fields.highBand = reader.take(widths.highBand);
  return fields;
}

}  // namespace

SpeechDecoder::SpeechDecoder() {
  std::copy_n(initialIsp, kOrder, isp_);
  std::copy_n(initialIsf, kOrder, isf_);
  for (int i = 0; i < 3; ++i) std::copy_n(initialIsf, kOrder, isfHistory_ + i * kOrder);
  require(zppsAdaptiveCodebookDecodeInit_AMRWB_16s(lagState_));
  restart();
}

void SpeechDecoder::restart() {
  first_ = true;
  std::fill_n(excitation_, kPastExcitation, Zpp16s{0});
  std::fill_n(pastResidual_, kOrder, Zpp16s{0});
  std::fill_n(dispersion_, 8, Zpp16s{0});
  tilt_ = 0;
  smoothedGain_ = 0;
  scale_ = kMostScale;
  std::fill_n(subframeScales_, kSubframes, kMostScale);
  require(zppsAdaptiveCodebookDecodeReset_AMRWB_16s(lagState_));
}

void SpeechDecoder::decode(ReceiveType type, int mode, const Zpp8u* bits, Zpp16s* pcm) {
  const Sound sound = noise_.receive(type);
  const bool bad = isBad(type);
  if (sound != Sound::speech) decodeNoise(sound, mode, bad, bits, pcm);
  state_ = bad ? std::min(state_ + 1, 6) : state_ / 2;
  if (noise_.last() != Sound::speech) {
    state_ = 5;
    previousBad_ = noise_.last() == Sound::mutedNoise;
  }
  if (sound == Sound::speech) decodeSpeech(type, mode, bits, pcm);
  previousBad_ = bad;
  noise_.finish(sound);
  for (int n = 0; n < kInputFrame; ++n) pcm[n] = static_cast<Zpp16s>(pcm[n] & ~3);  // 14 bits
}

void SpeechDecoder::decodeNoise(Sound sound, int mode, bool bad, const Zpp8u* bits, Zpp16s* pcm) {
  Zpp16s excitation[kFrame], isp[kOrder], lpc[kFilter];
  noise_.generate(bits, sound, isf_, excitation);
  require(zppsISFToISP_AMRWB_16s(isf_, isp, kOrder));
  require(zppsISPToLPC_AMRWB_16s(isp, lpc, kOrder, 1));
  const bool highest = mode == kHighestMode;
  const HighBand highBand = {highest && !bad ? 1 : -1, highest, nullptr, inactiveFrames_};
  for (int k = 0; k < kSubframes; ++k)
    synthesis_.subframe(lpc, excitation + k * kSubframe, 0, highBand, pcm + k * kInputSubframe);
  restart();
}

// The scale of the coming excitation: the largest that neither the code gain nor the last four subframes forbid. Rescales the
// past and the adaptive vector; roundedGain: the gain at that scale.
int SpeechDecoder::rescale(Zpp32s gainCode, Zpp16s* excitation, Zpp16s& roundedGain) {
  const int most = std::min(kMostScale, *std::min_element(subframeScales_, subframeScales_ + kSubframes));
  int scaling = 0;
  while (gainCode < 1 << 27 && scaling < most) {
    gainCode *= 2;
    ++scaling;
  }
  roundedGain = roundHigh16(gainCode);
  scale(excitation - kPastExcitation, kPastExcitation + kSubframe, scaling - scale_);
  scale_ = static_cast<Zpp16s>(scaling);
  return scaling;
}

void SpeechDecoder::decodeSpeech(ReceiveType type, int mode, const Zpp8u* bits, Zpp16s* pcm) {
  const bool bad = isBad(type), unusable = isUnusable(type);
  const ZppSpeechRate rate = rateOf(mode);
  const FieldWidths& widths = fieldWidths[mode];
  FieldReader reader(bits);

  // An unusable frame is read like the others; nothing of it is used.
  const bool active = reader.take(1) != 0;
  noise_.noteActivity(bad, active);
  if (!bad) inactiveFrames_ = active ? Zpp16s{0} : addSat16(inactiveFrames_, 1);

  // Spectrum
  Zpp16s isfIndex[7], oldIsf[kOrder], isp[kOrder], lpc[kSubframes * kFilter], stability = 0;
  for (int i = 0; i < widths.isfCount; ++i) isfIndex[i] = reader.take(widths.isf[i]);
  std::copy_n(isf_, kOrder, oldIsf);
  require(zppsISFDecode_AMRWB_16s(isfIndex, pastResidual_, oldIsf, isfHistory_, isf_, bad, rate));
  require(zppsISFToISP_AMRWB_16s(isf_, isp, kOrder));
  if (first_) std::copy_n(isp, kOrder, isp_);
  first_ = false;
  require(zppsInterpolateISP_AMRWB_16s(isp_, isp, lpc));
  std::copy_n(isp, kOrder, isp_);
  require(zppsISFStability_AMRWB_16s(isf_, oldIsf, &stability));

  Zpp16s signal[kPastExcitation + kFrame + 1];
  std::copy_n(excitation_, kPastExcitation, signal);
  for (int k = 0; k < kSubframes; ++k) {
    const SubframeFields fields = readSubframe(reader, widths, mode, k);
    Zpp16s* const excitation = signal + kPastExcitation + k * kSubframe;

    // Adaptive vector
    Zpp16s lag = 0, fraction = 0;
    require(zppsAdaptiveCodebookDecode_AMRWB_16s(fields.lag, gainMem_ + 17, excitation, &lag, &fraction, k, bad, unusable,
                                                 lagState_, rate));
    const bool plain = unusable || (!isLowRate(mode) && fields.select != 0);
    if (!plain) {
      Zpp16s smooth[kSubframe];
      require(zppsAdaptiveCodebookLowPass_AMRWB_16s(excitation, smooth, kSubframe));
      std::copy_n(smooth, kSubframe, excitation);
    }

    // Code vector
    Zpp16s code[kSubframe], silence = 0;
    if (unusable) {
      for (Zpp16s& x : code) {
        codeSeed_ = low16(31821 * codeSeed_ + 13849);
        x = static_cast<Zpp16s>(codeSeed_ >> 3);
      }
    } else {
      require(zppsAlgebraicCodebookDecode_AMRWB_16s(fields.code, code, rate));
    }
    require(zppsPreemphasize_AMRWB_16s_I(code, kSubframe, tilt_, 1, &silence));
    require(zppsHarmonicFilter_AMRWB_16s_I(kPitchSharpening, lag + (fraction > 2 ? 1 : 0), code, kSubframe));

    // Gains
    Zpp16s gainPitch = 0, scaledGain = 0, voicing = 0;
    Zpp32s gainCode = 0;
    require(zppsDecodeGain_AMRWB_16s(fields.gains, code, &gainPitch, &gainCode, gainMem_, bad, previousBad_, unusable, state_,
                                     inactiveFrames_, rate));

    // Total excitation
    const int scaling = rescale(gainCode, excitation, scaledGain);
    Zpp16s vector[kSubframe], enhanced[kSubframe];
    scale(excitation, vector, kSubframe, -3);
    require(zppsVoiceFactor_AMRWB_16s(vector, code, -3, gainPitch, scaledGain, &voicing));
    tilt_ = addSat16(static_cast<Zpp16s>(voicing >> 2), 8192);
    std::copy_n(excitation, kSubframe, vector);
    std::copy_n(excitation, kSubframe, enhanced);
    require(zppsExcitation_AMRWB_16s_I(code, excitation, scaledGain, gainPitch));
    Zpp16s most = 0, least = 0;
    require(zppsMax_16s(excitation, kSubframe, &most));
    require(zppsMin_16s(excitation, kSubframe, &least));
    const Zpp16s largest = std::max({most, absSat16(least), Zpp16s{1}});
    std::copy_backward(subframeScales_, subframeScales_ + kSubframes - 1, subframeScales_ + kSubframes);
    subframeScales_[0] = static_cast<Zpp16s>(norm16(largest) + scaling - 1);

    // What is heard: dispersed, smoothed in noise, sharpened at the low rates
    require(zppsPhaseDispersion_AMRWB_16s_I(code, high16(gainCode), gainPitch, dispersion_, rate));
    require(
        zppsExcitationEnhance_AMRWB_16s_I(code, enhanced, gainPitch, gainCode, stability, voicing, scaling, &smoothedGain_));
    if (isLowRate(mode)) require(zppsPitchSharpening_AMRWB_16s_I(vector, enhanced, gainPitch));

    const bool highest = mode == kHighestMode;
    HighBand highBand = {highest && !bad ? fields.highBand : -1, highest, nullptr, inactiveFrames_};
    Zpp16s isfOfSubframe[kOrder];
    if (mode == 0) {
      const Zpp16s weightOfNew = interpolation[k], weightOfOld = subSat16(32767, weightOfNew);
      for (int i = 0; i < kOrder; ++i)
        isfOfSubframe[i] = roundHigh16(macDbl(mulDbl(oldIsf[i], weightOfOld), isf_[i], weightOfNew));
      highBand.isf = isfOfSubframe;
    } else {
      synthesis_.shortenHighBandMemory();
    }
    synthesis_.subframe(lpc + k * kFilter, enhanced, scaling, highBand, pcm + k * kInputSubframe);
  }
  std::copy_n(signal + kFrame, kPastExcitation, excitation_);

  Zpp16s logEnergy = 0;
  scale(signal + kPastExcitation, kFrame, -scale_);
  require(zppsLogEnergy_AMRWB_16s(signal + kPastExcitation, &logEnergy));
  noise_.learn(isf_, logEnergy);
}

// --- Frames and homing
// -----------------------------------------------------------------------------------------------------------

bool Decoder::isPayloadSize(int octets) const {
  for (int type = 0; type <= frameNoData; ++type)
    if (octets == octetsOf(type)) return true;
  return false;
}

bool Decoder::decode(const Zpp8u* payload, int octets, Zpp16s* pcm) {
  if (octets > 0) return decodeAs(-1, payload, octets, pcm);
  decodeFrame(noData, pcm);
  return true;
}

bool Decoder::decodeAs(int receiveType, const Zpp8u* payload, int octets, Zpp16s* pcm) {
  Frame frame;
  if (octets > 0 && !unpack(payload, octets, frame)) return false;
  if (receiveType > withMode(noData, kHighestMode)) return false;
  ReceiveType type = receiveType < 0 ? receiveTypeOf(frame) : static_cast<ReceiveType>(receiveType % 8);
  // Without a speech frame's bits there is nothing to decode speech from.
  if (frame.type >= kModes && (type == speechGood || type == speechDegraded || type == speechBad)) type = speechLost;
  if (!isUnusable(type)) {
    if (frame.type < kModes) mode_ = frame.mode;
    if (receiveType > noData) mode_ = receiveType / 8 - 1;
  }
  std::copy_n(frame.bits.bit, frame.bits.count, bits_);
  decodeFrame(type, pcm);
  return true;
}

void Decoder::conceal(Zpp16s* pcm) { decodeFrame(speechLost, pcm); }

void Decoder::decodeFrame(ReceiveType type, Zpp16s* pcm) {
  bool homing = home_ && !isUnusable(type) && isHomingFrame(bits_, mode_, false);
  if (homing) {
    std::fill_n(pcm, kInputFrame, kHomingSample);
  } else {
    decoder_.decode(type, mode_, bits_, pcm);
    homing = !home_ && isHomingFrame(bits_, mode_, true);
    if (homing) decoder_ = SpeechDecoder();
  }
  home_ = homing;
}

}  // namespace codecs::amrwb
