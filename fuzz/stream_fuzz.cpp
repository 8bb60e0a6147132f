// The readers of the program: every framing of every codec on arbitrary bytes that come in pieces, and speech through a framing
// and back.
#include <algorithm>

#include "codecs/framing/stream.h"
#include "fuzz.h"

using namespace codecs::framing;
using fuzz::expect;

namespace {

Samples decoded(const Format& format, const Reception& reception, const Bytes& stream, std::size_t piece) {
  Samples heard;
  StreamDecoder decoder(format, reception);
  for (std::size_t at = 0; at < stream.size(); at += piece)
    decoder.add(std::span(stream).subspan(at, std::min(piece, stream.size() - at)), heard);
  decoder.finish(heard);
  return heard;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  FuzzedDataProvider data(bytes, size);
  const Entry& entry = catalogue()[data.ConsumeIntegralInRange<std::size_t>(0, catalogue().size() - 1)];
  const Choice& choice = entry.framings[data.ConsumeIntegralInRange<std::size_t>(0, entry.framings.size() - 1)];
  Format format = {&entry, choice.name, entry.options};
  if ((entry.codec->features & ZPPC_FEATURE_DTX) != 0 && data.ConsumeBool()) format.options.dtx = 1;
  Reception reception;
  for (std::size_t n = data.ConsumeIntegralInRange<std::size_t>(0, 8); n > 0; --n) reception.lost.push_back(data.ConsumeBool());
  const auto piece = data.ConsumeIntegralInRange<std::size_t>(1, 600);

  if (data.ConsumeBool()) {  // speech and back: what the framing writes, it reads, in pieces of any size
    const Bytes octets = data.ConsumeRemainingBytes<std::uint8_t>();
    Samples speech(octets.size() / 2);
    if (!speech.empty()) std::memcpy(speech.data(), octets.data(), 2 * speech.size());
    StreamEncoder encoder(format);
    Bytes stream;
    encoder.add(speech, stream);
    encoder.finish(stream);
    const Samples heard = decoded(format, {}, stream, piece);
    expect(heard == decoded(format, {}, stream, stream.size() + 1), "the pieces of a stream do not matter");
    const std::size_t frame = static_cast<std::size_t>(entry.codec->frameSamples);
    expect(heard.size() >= speech.size() / frame * frame, "every whole frame comes back");
    return 0;
  }
  try {
    decoded(format, reception, data.ConsumeRemainingBytes<std::uint8_t>(), piece);
  } catch (const StreamError& error) {
    expect(error.what()[0] != 0, "an error says what is wrong");
  }
  return 0;
}
