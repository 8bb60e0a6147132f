// GSM-AMR decoder (3GPP TS 26.090 to 26.093, fixed point as in TS 26.073).
#pragma once

#include "codecs/amr/frame.h"
#include "codecs/amr/speech_decoder.h"
#include "codecs/codec.h"

namespace codecs::amr {

// What a frame is received as, by the standard's numbers
enum RxType { kRxGood, kRxDegraded, kRxOnset, kRxBad, kRxSidFirst, kRxSidUpdate, kRxSidBad, kRxNoData };

class Decoder {
 public:
  explicit Decoder(const Options& options);
  bool isPayloadSize(int octets) const { return amr::isPayloadSize(octets); }
  bool decode(const Zpp8u* payload, int octets, Zpp16s* pcm) { return decodeAs(-1, payload, octets, pcm); }
  // receiveType: RxType; below 0: as the payload says
  bool decodeAs(int receiveType, const Zpp8u* payload, int octets, Zpp16s* pcm);
  void conceal(Zpp16s* pcm) { decodeFrame(kRxNoData, mode_, pcm); }

 private:
  void decodeFrame(RxType type, int mode, Zpp16s* pcm);
  void synthesise(RxType type, Zpp16s* parameters, Zpp16s* pcm);
  void finish(const Zpp16s* a, Zpp16s* pcm);
  void reset();

  SpeechDecoder speech_;
  Zpp8u comfortNoise_[416];
  int dtxState_ = 1;
  Zpp16s postfilterMem_[22] = {};
  Zpp8u highPass_[24];
  int mode_ = k475;      // of the last frame that had one
  bool homed_ = true;    // the last frame was a homing frame
  FrameBits bits_ = {};  // as the last frames left them: a frame without bits, or with fewer, keeps them
};

}  // namespace codecs::amr
