// ITU-T G.729: the main body, Annex A, and the other rates of Annexes D and E (together Annex I), with the discontinuous
// transmission of Annex B on request. A payload is 10 octets of speech, at the other rates 8 or 15, or 2 of a silence
// descriptor, the first bit in the most significant bit of the first octet (RFC 3551).
//
// To read on: frame (the bits of a frame), encoder with main_body and annex_a, decoder with main_body_decoder, annex_a_decoder
// and postfilter; what they share is in filters. analysis and taming are parts of the encoder. Annex B is dtx with vad for the
// encoder, comfort_noise for both sides. 11.8 kbit/s is backward for both sides, mode_decision and music for the encoder.
#pragma once

#include "codecs/g729/annex_a.h"
#include "codecs/g729/annex_a_decoder.h"
#include "codecs/g729/main_body.h"
#include "codecs/g729/main_body_decoder.h"

namespace codecs::g729 {

// The main body
class Encoder {
 public:
  explicit Encoder(const Options& options) : coder_(options.dtx, false) {}
  int encode(const Zpp16s* pcm, Zpp8u* payload) { return pack(coder_.encode(pcm, Rate::kbit8), payload); }

 private:
  MainBodyEncoder coder_;
};

// Annex I: all rates
class EncoderI {
 public:
  explicit EncoderI(const Options& options) : coder_(options.dtx, true) { setBitRate(options.bitRate); }
  int encode(const Zpp16s* pcm, Zpp8u* payload) { return pack(coder_.encode(pcm, rate_), payload); }
  void setBitRate(int bitRate) { rate_ = bitRate < 8000 ? Rate::kbit6 : bitRate > 8000 ? Rate::kbit12 : Rate::kbit8; }

 private:
  MainBodyEncoder coder_;
  Rate rate_ = Rate::kbit8;
};

class EncoderA {
 public:
  explicit EncoderA(const Options& options) : coder_(options.dtx) {}
  int encode(const Zpp16s* pcm, Zpp8u* payload) { return pack(coder_.encode(pcm), payload); }

 private:
  AnnexAEncoder coder_;
};

template <class FrameDecoder, bool everyRate>
class AnyDecoder {
 public:
  explicit AnyDecoder(const Options&) {}
  bool isPayloadSize(int octets) const {
    return octets == octetsOf(Rate::kbit8) || octets == kSidOctets ||
           (everyRate && (octets == octetsOf(Rate::kbit6) || octets == octetsOf(Rate::kbit12)));
  }
  bool decode(const Zpp8u* payload, int octets, Zpp16s* pcm) {
    // Damage that can be seen makes it a lost frame.
    if (const auto frame = unpack(payload, octets))
      decoder_.decode(*frame, pcm);
    else
      decoder_.conceal(pcm);
    return true;
  }
  void conceal(Zpp16s* pcm) { decoder_.conceal(pcm); }

 private:
  FrameDecoder decoder_;
};
using Decoder = AnyDecoder<MainBodyDecoder, false>;
using DecoderI = AnyDecoder<MainBodyDecoder, true>;
using DecoderA = AnyDecoder<AnnexADecoder, false>;

}  // namespace codecs::g729
