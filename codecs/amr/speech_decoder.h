// Speech frames of the decoder: parameters to synthesis, and what stands in for a frame that did not arrive (3GPP TS 26.090
// clause 6.1, TS 26.091).
#pragma once

#include "codecs/amr/tables.h"

namespace codecs::amr {

// What the frames before and comfort noise tell of a frame
struct FrameStatus {
  bool bad, degraded;
  bool parametersMissing;  // they are made up
  int dtxState;            // after the frame before: 0 speech, 1 comfort noise, 2 fading comfort noise
};

class SpeechDecoder {
 public:
  SpeechDecoder();
  // parameters: kMaxParameters, replaced where missing. speech: 160, before the postfilter; a: 4 x 11, Q12
  void decode(Zpp16s* parameters, int mode, const FrameStatus& status, Zpp16s* speech, Zpp16s* a);
  // A frame of comfort noise in the state that DTXReceive gave. state: the block of the comfort noise
  void comfortNoise(const Zpp16s* sid, int mode, int prevState, int newState, Zpp16s* speech, Zpp16s* a, void* state);

  const Zpp16s* lsf() const { return m_.lsf; }
  void updateLsfMean();

 private:
  struct Subframe;
  class ParameterReader;

  // What comfort noise starts anew
  struct Memory {
    Memory();

    Zpp16s excitation[154 + kSubframe] = {};
    Zpp16s sharpening = 0, lastLag = 40;
    Zpp16s residualMem[kOrder] = {}, lsf[kOrder];
    Zpp16s pitchConceal[7] = {1640, 1640, 1640, 1640, 1640, 0, 16384}, codeConceal[7] = {1, 1, 1, 1, 1, 0, 1};
    Zpp16s smoothing[9] = {}, dispersion[8] = {};
    Zpp16s pitchGainHist[9] = {};
    Zpp16s noiseEnergyHist[60] = {}, noiseCount = 0;
    Zpp16s condition[7] = {};  // as zppsc takes it
    Zpp16s seed = 21845;
  };

  void makeUp(Zpp16s* parameters, int mode);
  void conceal(int dtxState, const FrameStatus& status);
  void decodeSubframe(int k, int mode, ParameterReader& parameters, const Zpp16s* prevLsf, const Zpp16s* a, Zpp16s* speech);
  void decodeCode(Subframe& s, const Zpp16s* codeword);
  void decodeGains(Subframe& s, ParameterReader& parameters);
  void synthesise(const Subframe& s, Zpp16s* excitation, Zpp16s sharpening, Zpp16s pitchGain, const Zpp16s* a, Zpp16s* speech);

  Memory m_;
  Zpp16s lsp_[kOrder], synthMem_[kOrder] = {};
  Zpp16s lsfMean_[kOrder], controlHist_[9] = {};
  Zpp16s gainMem_[8] = {-2381, -2381, -2381, -2381, -14336, -14336, -14336, -14336};
};

}  // namespace codecs::amr
