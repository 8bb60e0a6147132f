#include "codecs/amr/decoder.h"

#include <algorithm>
#include <cstring>

#include "codecs/fixed_point.h"

namespace codecs::amr {
namespace {

// 60 Hz, and twice the level
constexpr Zpp16s kHighPass[6] = {7699, -15398, 7699, 8192, 15836, -7667};

}  // namespace

Decoder::Decoder(const Options&) { reset(); }

// The state of the standard's decoder; the bits of the last frame belong to its input.
void Decoder::reset() {
  speech_ = SpeechDecoder();
  require(zppsComfortNoiseInit_GSMAMR_16s(comfortNoise_));
  dtxState_ = 1;
  std::memset(postfilterMem_, 0, sizeof postfilterMem_);
  postfilterMem_[21] = 4096;
  require(zppsHighPassFilterInit_G729(kHighPass, highPass_));
  mode_ = k475;
}

bool Decoder::decodeAs(int receiveType, const Zpp8u* payload, int octets, Zpp16s* pcm) {
  if (receiveType > kRxNoData) return false;
  RxType type = kRxNoData;
  int mode = mode_;
  if (octets > 0) {
    const PayloadHead head(payload[0]);
    if (octets != head.octets()) return false;
    if (head.type < kModes) {
      mode = head.type;
      unpackSpeech(payload, mode, bits_);
      type = head.good ? kRxGood : kRxBad;
    } else if (head.type == kSidType) {
      const SidHead sid = unpackSid(payload, bits_);
      mode = sid.mode;
      type = !head.good ? kRxSidBad : sid.update ? kRxSidUpdate : kRxSidFirst;
    }
  }
  decodeFrame(receiveType < 0 ? type : static_cast<RxType>(receiveType), mode, pcm);
  return true;
}

// Decodes what lies in bits_. Homing frames (TS 26.073 clause 8) put the decoder into its start state; the first subframe tells
// whether another one follows.
void Decoder::decodeFrame(RxType type, int mode, Zpp16s* pcm) {
  if (type != kRxNoData) mode_ = mode;
  const FrameLayout& layout = frameLayouts[mode_];
  Zpp16s parameters[kMaxParameters];
  bits_.get(parameters, layout);
  const auto isHoming = [&](int count) { return std::equal(parameters, parameters + count, layout.homing); };

  if (homed_ && isHoming(layout.firstSubframe)) {
    std::fill(pcm, pcm + kFrame, Zpp16s{8});
  } else {
    const bool homing = !homed_ && isHoming(layout.parameters);
    if (type == kRxSidUpdate || type == kRxSidBad) bits_.get(parameters, sidLayout);
    synthesise(type, parameters, pcm);
    homed_ = homing;
  }
  if (homed_) reset();
}

void Decoder::synthesise(RxType type, Zpp16s* parameters, Zpp16s* pcm) {
  Zpp16s a[kSubframes * kSet], newState;
  require(zppsDTXReceive_GSMAMR_16s(static_cast<Zpp16s>(type), static_cast<Zpp16s>(dtxState_), &newState, comfortNoise_));
  if (newState != 0) {
    speech_.comfortNoise(parameters, mode_, dtxState_, newState, pcm, a, comfortNoise_);
  } else {
    const bool missing = type == kRxNoData || type == kRxOnset;
    speech_.decode(parameters, mode_, {missing || type == kRxBad, type == kRxDegraded, missing, dtxState_}, pcm, a);
    require(zppsComfortNoiseUpdate_GSMAMR_16s(pcm, speech_.lsf(), comfortNoise_));
  }
  speech_.updateLsfMean();
  dtxState_ = newState;
  finish(a, pcm);
}

void Decoder::finish(const Zpp16s* a, Zpp16s* pcm) {
  require(zppsPostFilter_GSMAMR_16s_I(a, pcm, postfilterMem_, rateOf(mode_)));
  require(zppsHighPassFilter_G729_16s_ISfs(pcm, kFrame, 13, highPass_));
  for (int n = 0; n < kFrame; ++n) pcm[n] = static_cast<Zpp16s>(pcm[n] & ~7);  // 13 bits
}

}  // namespace codecs::amr
