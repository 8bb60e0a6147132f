// ITU-T G.728 decoder, 16 kbit/s (LD-CELP, clause 4, fixed point of Annex G), with the frame-erasure concealment of Annex I.
#pragma once

#include "codecs/codec.h"
#include "codecs/g728/adaptation.h"
#include "codecs/g728/frame.h"
#include "codecs/g728/postfilter.h"

namespace codecs::g728 {

// The course of an erasure, and of the time after it, in cycles
class Erasure {
 public:
  void beginCycle(bool lost);

  bool lost() const { return lost_; }
  int cycles() const { return cycles_; }  // that have been lost in a row, this one included
  bool isFirst() const { return cycles_ == 1; }
  bool beginsPeriod() const { return cycles_ % 4 == 1; }  // of 10 ms
  int period() const { return cycles_ / 4; }
  bool limitsGain() const { return hold_ > 0; }  // in good cycles

 private:
  bool lost_ = false;
  int cycles_ = 0;
  int hold_ = 0;  // good cycles for which the gain is limited yet
};

class Decoder {
 public:
  // Variant 1: without postfilter
  explicit Decoder(const Options& options);

  bool isPayloadSize(int octets) const { return octets == kPayload; }
  // Nothing sent is a lost frame: the standard knows no discontinuous transmission.
  bool decode(const Zpp8u* payload, int octets, Zpp16s* pcm);
  void conceal(Zpp16s* pcm) { decodeCycle(nullptr, pcm); }

 private:
  void decodeCycle(const Zpp32s* index, Zpp16s* pcm);  // null: lost
  void receive(Zpp32s index, Zpp16s* excitation);
  void extrapolate(Zpp16s* excitation);
  void output(int vector, const Zpp16s* speech, Zpp16s* pcm);
  void adapt(int vector, const Zpp16s* speech);

  bool postfilters_;
  SynthesisAdapter synthesis_;
  GainAdapter gain_;
  alignas(4) Zpp8u synthesisFilter_[144];
  Postfilter postfilter_;
  Erasure erasure_;
  alignas(4) Zpp8u extrapolation_[384];
};

}  // namespace codecs::g728
