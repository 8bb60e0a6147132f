#include "codecs/g729/frame.h"

#include <bit>

#include "codecs/bit_stream.h"

namespace codecs::g729 {
namespace {

// Hands each field of the frame to visit(value, bits), in the order of transmission.
template <class Speech, class Visitor>
void visitSpeech(Speech& speech, Visitor visit) {
  visit(speech.lsp[0], 8);
  visit(speech.lsp[1], 10);
  for (int s = 0; s < 2; ++s) {
    auto& subframe = speech.subframes[s];
    visit(subframe.delay, s == 0 ? 8 : 5);
    if (s == 0) visit(speech.parity, 1);
    visit(subframe.positions, 13);
    visit(subframe.signs, 4);
    visit(subframe.gains[0], 3);
    visit(subframe.gains[1], 4);
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

Zpp16s delayParity(Zpp16s delay) { return static_cast<Zpp16s>(1 - std::popcount(delay & 0xfcu) % 2); }

int pack(const Frame& frame, Zpp8u* payload) {
  const int octets = frame.type == FrameType::speech ? kSpeechOctets : frame.type == FrameType::sid ? kSidOctets : 0;
  BitWriter writer({payload, static_cast<std::size_t>(octets)});
  const auto put = [&](Zpp16s value, int bits) { writer.put(static_cast<Zpp32u>(value), bits); };
  if (frame.type == FrameType::speech) visitSpeech(frame.speech, put);
  if (frame.type == FrameType::sid) visitSid(frame.sid, put);
  return octets;
}

Frame unpack(const Zpp8u* payload, int octets) {
  Frame frame;
  BitReader reader({payload, static_cast<std::size_t>(octets)});
  const auto get = [&](Zpp16s& value, int bits) { value = static_cast<Zpp16s>(reader.bits(bits)); };
  if (octets == kSpeechOctets) {
    frame.type = FrameType::speech;
    visitSpeech(frame.speech, get);
  } else if (octets == kSidOctets) {
    frame.type = FrameType::sid;
    visitSid(frame.sid, get);
  }
  return frame;
}

}  // namespace codecs::g729
