// Codes speech-like frames with every codec and marks for callgrind where the counting of each begins and ends
// (--collect-atstart=no).
#include <valgrind/callgrind.h>

#include <cstdio>
#include <string>
#include <vector>

#include "bench/speech.h"
#include "codecs/framing/framing.h"

namespace {

using codecs::framing::Entry;

constexpr int kSkipped = 20, kCounted = 50;  // frames; samples of sample-based codecs come in packets of 20 ms

void count(const Entry& entry, const std::vector<std::int16_t>& speech) {
  const ZppcCodec& codec = *entry.codec;
  const int packet = codecs::framing::packetSamples(codec), room = packet / codec.frameSamples * codec.maxPayload;
  std::vector<std::uint8_t> payload(static_cast<std::size_t>(room));
  std::vector<std::int16_t> heard(static_cast<std::size_t>(packet));
  ZppcEncoder* const encoder = zppcEncoderCreate(&codec, &entry.options, nullptr);
  ZppcDecoder* const decoder = zppcDecoderCreate(&codec, &entry.options, nullptr);
  CALLGRIND_ZERO_STATS;
  for (const bool encodes : {true, false}) {
    for (int n = 0; n < kSkipped + kCounted; ++n) {
      const std::int16_t* const pcm = &speech[static_cast<std::size_t>(n * packet)];
      const bool counted = n >= kSkipped;
      if (counted && encodes) CALLGRIND_TOGGLE_COLLECT;
      const int octets = zppcEncode(encoder, pcm, packet, payload.data(), room);
      if (counted && encodes) CALLGRIND_TOGGLE_COLLECT;
      if (encodes) continue;
      if (counted) CALLGRIND_TOGGLE_COLLECT;
      zppcDecode(decoder, payload.data(), octets, heard.data(), packet);
      if (counted) CALLGRIND_TOGGLE_COLLECT;
    }
    const std::string what = std::string(entry.name) + (encodes ? " encode" : " decode");
    CALLGRIND_DUMP_STATS_AT(what.c_str());
  }
  zppcDecoderDestroy(decoder);
  zppcEncoderDestroy(encoder);
}

}  // namespace

int main() {
  std::printf("%d\n", kCounted);
  for (const int sampleRate : {8000, 16000}) {
    const auto speech = speechLike(sampleRate);
    for (const Entry& entry : codecs::framing::catalogue())
      if (entry.codec->sampleRate == sampleRate) count(entry, speech);
  }
}
