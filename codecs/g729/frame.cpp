#include "codecs/g729/frame.h"

#include <bit>

#include "codecs/bit_stream.h"

namespace codecs::g729 {
namespace {

// Hands each field of the frame to visit(value, bits), in the order of transmission. A backward frame at 11.8 kbit/s says so in
// two bits, which come before.
template <class Speech, class Visitor>
void visitSpeech(Speech& speech, Visitor visit) {
  constexpr std::array<int, 5> forwardPulses = {7, 7, 7, 7, 7}, backwardPulses = {13, 10, 7, 7, 7};
  const bool kbit6 = speech.rate == Rate::kbit6, kbit12 = speech.rate == Rate::kbit12;
  if (!speech.backward) {
    visit(speech.lsp[0], 8);
    visit(speech.lsp[1], 10);
  }
  for (int s = 0; s < 2; ++s) {
    auto& subframe = speech.subframes[s];
    visit(subframe.delay, s == 0 ? 8 : kbit6 ? 4 : 5);
    if (s == 0 && !kbit6) visit(speech.parity, 1);
    if (kbit12) {
      for (int i = 0; i < 5; ++i) visit(subframe.pulses[i], speech.backward ? backwardPulses[i] : forwardPulses[i]);
    } else {
      visit(subframe.positions, kbit6 ? 9 : 13);
      visit(subframe.signs, kbit6 ? 2 : 4);
    }
    visit(subframe.gains[0], 3);
    visit(subframe.gains[1], kbit6 ? 3 : 4);
  }
}

template <class Sid, class Visitor>
void visitSid(Sid& sid, Visitor visit) {
  visit(sid.lsf[0], 1);
  visit(sid.lsf[1], 5);
  visit(sid.lsf[2], 4);
  visit(sid.gain, 5);
}

}  // namespace

Zpp16s delayParity(Zpp16s delay, Rate rate) {
  return static_cast<Zpp16s>(1 - std::popcount(delay & (rate == Rate::kbit12 ? 0xfeu : 0xfcu)) % 2);
}

int pack(const Frame& frame, Zpp8u* payload) {
  const int octets = frame.type == FrameType::speech ? octetsOf(frame.speech.rate)
                     : frame.type == FrameType::sid  ? kSidOctets
                                                     : 0;
  BitWriter writer({payload, static_cast<std::size_t>(octets)});
  const auto put = [&](Zpp16s value, int bits) { writer.put(static_cast<Zpp32u>(value), bits); };
  if (frame.type == FrameType::speech) {
    if (frame.speech.rate == Rate::kbit12) put(frame.speech.backward ? 3 : 0, 2);
    visitSpeech(frame.speech, put);
  }
  if (frame.type == FrameType::sid) visitSid(frame.sid, put);
  return octets;
}

std::optional<Frame> unpack(const Zpp8u* payload, int octets) {
  Frame frame;
  BitReader reader({payload, static_cast<std::size_t>(octets)});
  const auto get = [&](Zpp16s& value, int bits) { value = static_cast<Zpp16s>(reader.bits(bits)); };
  if (octets == kSidOctets) {
    frame.type = FrameType::sid;
    visitSid(frame.sid, get);
  } else if (octets != 0) {
    frame.type = FrameType::speech;
    for (const Rate rate : {Rate::kbit6, Rate::kbit8, Rate::kbit12})
      if (octets == octetsOf(rate)) frame.speech.rate = rate;
    if (frame.speech.rate == Rate::kbit12) {
      const int backward = reader.bits(2);
      if (backward == 1 || backward == 2) return std::nullopt;
      frame.speech.backward = backward != 0;
    }
    visitSpeech(frame.speech, get);
  }
  return frame;
}

}  // namespace codecs::g729
