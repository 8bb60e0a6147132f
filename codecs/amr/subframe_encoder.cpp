#include "codecs/amr/subframe_encoder.h"

#include <cstring>

#include "codecs/codec.h"
#include "codecs/fixed_point.h"

namespace codecs::amr {

struct SubframeEncoder::Subframe {
  Subframe(const FrameAnalysis& frame, int k, Zpp16s* buffer)
      : mode(frame.mode),
        number(k),
        rate(rateOf(frame.mode)),
        openLoopLags(frame.openLoopLags),
        speech(frame.speech + kSubframe * k),
        quantA(frame.quantA + kSet * k),
        excitation(buffer + kPast + kSubframe * k),
        weighting(frame.weighting[k]) {}

  int mode, number;
  ZppSpeechRate rate;
  const Zpp16s *openLoopLags, *speech, *quantA;
  Zpp16s* excitation;  // of this subframe, with the past before it
  const Weighting& weighting;

  Zpp16s impulse[kSubframe], residual[kSubframe], target[kSubframe];
  Zpp16s lag, lagIndex, vector[kSubframe], filteredVector[kSubframe], coefficients[4];
  Zpp16s codeTarget[kSubframe], longTermResidual[kSubframe];
  Zpp16s code[kSubframe], filteredCode[kSubframe];
  Zpp16s limit, pitchGain, codeGain;  // Q14, Q14, Q1

  Zpp16s* withPast() const { return excitation - kPast; }
};

void SubframeEncoder::encode(const FrameAnalysis& frame, ResonanceGuard& guard, Zpp16s* lagMem, ParameterWriter& parameters) {
  for (int k = 0; k < kSubframes; ++k) {
    if (frame.mode == k475) {
      encodePair(frame, k++, guard, parameters);
      continue;
    }
    Subframe s(frame, k, excitation_);
    computeTarget(s, weightMem_);
    searchAdaptiveCodebook(s, guard, parameters);
    if (k == 0 && frame.gainFlag[0] > 0) lagMem[1] = s.lag;
    if (k == 3 && frame.gainFlag[1] > 0) lagMem[0] = s.lag;
    searchFixedCodebook(s, parameters);
    quantiseGains(s, parameters);
    guard.note(s.pitchGain);
    close(s, synthMem_, weightMem_);
  }
  std::memmove(excitation_, excitation_ + kFrame, kPast * sizeof excitation_[0]);
}

void SubframeEncoder::rest() {
  std::memset(excitation_, 0, sizeof excitation_);
  std::memset(weightMem_, 0, sizeof weightMem_);
  std::memset(errorMem_, 0, sizeof errorMem_);
  lag_ = 0;
  sharpening_ = 0;
}

void SubframeEncoder::computeTarget(Subframe& s, const Zpp16s* weightMem) {
  require(zppsImpulseResponseTarget_GSMAMR_16s(s.speech - kOrder, s.weighting.numerator, s.weighting.denominator, s.quantA,
                                               errorMem_, weightMem, s.impulse, s.residual, s.target));
  std::memcpy(s.excitation, s.residual, sizeof s.residual);
}

void SubframeEncoder::searchAdaptiveCodebook(Subframe& s, const ResonanceGuard& guard, ParameterWriter& parameters) {
  Zpp16s fraction;
  s.lag = lag_;
  require(zppsAdaptiveCodebookSearch_GSMAMR_16s(s.target, s.impulse, s.openLoopLags, &s.lag, s.withPast(), &fraction,
                                                &s.lagIndex, s.vector, static_cast<Zpp16s>(s.number), s.rate));
  lag_ = s.lag;
  parameters.put(s.lagIndex);
  require(zppsConvPartial_16s_Sfs(s.vector, s.impulse, s.filteredVector, kSubframe, 12));
  require(zppsAdaptiveCodebookGainCoeffs_GSMAMR_16s(s.target, s.filteredVector, &s.pitchGain, s.coefficients));

  if (s.mode == k1220) s.pitchGain = static_cast<Zpp16s>(s.pitchGain & ~3);
  const bool limited = guard.limits(s.pitchGain);
  s.limit = limited ? ResonanceGuard::kLimit : Zpp16s{32767};
  if (s.mode <= k515)
    s.pitchGain = std::min(s.pitchGain, Zpp16s{13926});  // 0.85
  else if (limited)
    s.pitchGain = ResonanceGuard::kLimit;
  if (s.mode == k1220) {
    Zpp16s index;
    require(zppsPitchGainQuant_GSMAMR_16s(s.limit, &s.pitchGain, &index));
    parameters.put(index);
  }
}

void SubframeEncoder::searchFixedCodebook(Subframe& s, ParameterWriter& parameters) {
  require(zppsAdaptiveCodebookContribution_G729_16s(s.pitchGain, s.filteredVector, s.target, s.codeTarget));
  require(zppsAdaptiveCodebookContribution_G729_16s(s.pitchGain, s.vector, s.residual, s.longTermResidual));
  Zpp16s sharpened[kSubframe];  // the search sharpens the impulse response
  std::memcpy(sharpened, s.impulse, sizeof sharpened);
  const int codewords = s.mode == k1220 ? 10 : s.mode == k1020 ? 7 : 2;
  require(zppsAlgebraicCodebookSearch_GSMAMR_16s(s.lag, s.mode == k1220 ? s.pitchGain : sharpening_, s.codeTarget,
                                                 s.longTermResidual, sharpened, s.code, s.filteredCode,
                                                 parameters.take(codewords), static_cast<Zpp16s>(s.number), s.rate));
}

void SubframeEncoder::quantiseGains(Subframe& s, ParameterWriter& parameters) {
  require(zppsGainQuant_GSMAMR_16s(s.target, s.codeTarget, s.filteredVector, s.filteredCode, s.code, s.residual, s.vector,
                                   s.coefficients, s.limit, gainMem_, adaptMem_, &s.pitchGain, &s.codeGain,
                                   parameters.take(s.mode == k795 ? 2 : 1), s.rate));
}

// The excitation of both codebooks, and the memories as the decoder's synthesis leaves them
void SubframeEncoder::close(const Subframe& s, Zpp16s* synthMem, Zpp16s* weightMem) {
  constexpr int kRest = kSubframe - kOrder;
  sharpening_ = std::min(s.pitchGain, Zpp16s{13017});  // 0.7945
  const bool highest = s.mode == k1220;
  require(zppsInterpolateC_NR_G729_16s_Sfs(s.excitation, highest ? static_cast<Zpp16s>(s.pitchGain >> 1) : s.pitchGain, s.code,
                                           s.codeGain, s.excitation, kSubframe, highest ? 13 : 14));
  Zpp16s synthesis[kSubframe];
  warns(zppsSynthesisFilter_GSMAMR_16s(s.quantA, s.excitation, synthesis, kSubframe, synthMem));
  std::memcpy(synthMem, synthesis + kRest, kOrder * sizeof *synthMem);
  for (int j = 0; j < kOrder; ++j) {
    const int n = kRest + j;
    errorMem_[j] = subSat16(s.speech[n], synthesis[n]);
    const Zpp16s pitchPart = high16(shlSat32(mulDbl(s.filteredVector[n], s.pitchGain), 1));
    const Zpp16s codePart = high16(shlSat32(mulDbl(s.filteredCode[n], s.codeGain), highest ? 4 : 2));
    weightMem[j] = subSat16(s.target[n], addSat16(pitchPart, codePart));
  }
}

// The even subframe is closed with provisional gains, on copies of the memories, so that the odd one can be searched; with the
// gains of both, both are closed anew.
void SubframeEncoder::encodePair(const FrameAnalysis& frame, int k, ResonanceGuard& guard, ParameterWriter& parameters) {
  Zpp16s synthMem[kOrder], weightMem[kOrder];
  std::memcpy(synthMem, synthMem_, sizeof synthMem);
  std::memcpy(weightMem, weightMem_, sizeof weightMem);
  const Zpp16s sharpeningBefore = sharpening_, lagBefore = lag_;

  Subframe even(frame, k, excitation_);
  computeTarget(even, weightMem);
  searchAdaptiveCodebook(even, guard, parameters);
  searchFixedCodebook(even, parameters);
  Zpp16s unquantMem[8], first[14];
  require(zppsGainQuantFirst_GSMAMR_16s(even.target, even.codeTarget, even.filteredVector, even.filteredCode, even.code,
                                        even.coefficients, gainMem_, unquantMem, first, &even.codeGain));
  Zpp16s* const gainIndex = parameters.take(1);
  guard.note(even.pitchGain);
  close(even, synthMem, weightMem);
  sharpening_ = sharpeningBefore;

  Subframe odd(frame, k + 1, excitation_);
  computeTarget(odd, weightMem);
  searchAdaptiveCodebook(odd, guard, parameters);
  searchFixedCodebook(odd, parameters);
  Zpp16s pitchGains[2], codeGains[2];
  require(zppsGainQuantSecond_GSMAMR_16s(odd.target, odd.codeTarget, odd.filteredVector, odd.filteredCode, odd.code,
                                         odd.coefficients, odd.limit, unquantMem, first, gainMem_, pitchGains, codeGains,
                                         gainIndex));
  even.pitchGain = pitchGains[0], even.codeGain = codeGains[0];
  odd.pitchGain = pitchGains[1], odd.codeGain = codeGains[1];
  guard.note(odd.pitchGain);

  rebuild(even, lagBefore);
  close(even, synthMem_, weightMem_);
  computeTarget(odd, weightMem_);
  rebuild(odd, even.lag);
  close(odd, synthMem_, weightMem_);
}

// The adaptive-codebook vector of a lag that has been chosen, from the excitation as it is now
void SubframeEncoder::rebuild(Subframe& s, Zpp16s lagBefore) {
  Zpp16s decodedLag;
  require(zppsAdaptiveCodebookDecode_GSMAMR_16s(s.lagIndex, &lagBefore, &decodedLag, s.withPast(), &s.lag, s.vector,
                                                static_cast<Zpp16s>(s.number), 0, 0, 0, s.rate));
  require(zppsConvPartial_16s_Sfs(s.vector, s.impulse, s.filteredVector, kSubframe, 12));
}

}  // namespace codecs::amr
