// Every decoder on arbitrary payloads: sizes that no payload has, losses, frames for which nothing was sent, streams that go on
// in a copy of their memory.
#include "fuzz.h"

using namespace fuzz;

namespace {

// What one call has done to a decoder
struct Outcome {
  int result;
  std::vector<std::int16_t> heard;
  std::vector<unsigned char> state;
};

Outcome decode(const Decoder& decoder, const std::vector<unsigned char>* payload, std::size_t capacity) {
  std::vector<std::int16_t> heard = pattern(capacity);
  heard.shrink_to_fit();
  const Block octets(payload == nullptr ? 0 : payload->size(), 1);
  if (payload != nullptr && !payload->empty()) std::memcpy(octets.data(), payload->data(), payload->size());
  const int result = zppcDecode(decoder.get(), payload == nullptr ? nullptr : octets.data(), static_cast<int>(octets.size()),
                                heard.data(), static_cast<int>(capacity));
  return {result, heard, decoder.content()};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  FuzzedDataProvider data(bytes, size);
  const auto [codec, options] = choose(data);
  Decoder decoder(zppcDecoderSize(codec), zppcDecoderInit, codec, options, 0);
  if (!decoder.started()) return 0;
  const auto frame = static_cast<std::size_t>(codec->frameSamples);
  const bool ofSamples = sampleBased(*codec);
  while (data.remaining_bytes() > 0) {
    const int kind = data.ConsumeIntegralInRange(0, 7);
    std::size_t capacity = frame;
    if (ofSamples) capacity *= data.ConsumeIntegralInRange<std::size_t>(1, 20);
    std::vector<unsigned char> payload;
    if (kind >= 2) {
      const int most = codec->maxPayload * (ofSamples ? 20 : 1) + 1;
      payload = data.ConsumeBytes<unsigned char>(data.ConsumeIntegralInRange<std::size_t>(1, static_cast<std::size_t>(most)));
      if (kind == 7 && !payload.empty()) payload.resize(static_cast<std::size_t>(codec->maxPayload));
    }
    Decoder twin = decoder.movedTo(data.ConsumeIntegralInRange<std::size_t>(0, 3));
    const auto before = decoder.content();
    const Outcome outcome = decode(decoder, kind == 0 ? nullptr : &payload, capacity);
    const Outcome copied = decode(twin, kind == 0 ? nullptr : &payload, capacity);
    expect(outcome.result == copied.result && outcome.heard == copied.heard, "a copied stream goes on as the original");
    if (outcome.result < 0) {
      expect(outcome.state == before, "an error leaves the stream as it was");
      expect(outcome.heard == pattern(capacity), "an error writes nothing");
    } else {
      expect(outcome.result <= static_cast<int>(capacity), "no more samples than there is room for");
      expect(ofSamples || outcome.result == codec->frameSamples, "a payload is a frame");
      for (std::size_t n = static_cast<std::size_t>(outcome.result); n < capacity; ++n)
        expect(outcome.heard[n] == 0x5a5a, "nothing is written behind the samples");
    }
    if (kind == 3) decoder = std::move(twin);
  }
  return 0;
}
