// Every codec that the program names, through the C API, and the peers that are installed.
#include "codecs/framing/framing.h"
#include "contender.h"

namespace {

using codecs::framing::Entry;

class OurCoder {
 public:
  explicit OurCoder(const Entry& entry) : entry_(&entry) {
    const ZppcCodec& codec = *entry.codec;
    packet_ = codecs::framing::packetSamples(codec);
    room_ = packet_ / codec.frameSamples * codec.maxPayload;
  }

  void encode(const Samples& speech) {
    sizes_.resize(speech.size() / static_cast<std::size_t>(packet_));
    octets_.resize(sizes_.size() * static_cast<std::size_t>(room_));
    ZppcEncoder* const encoder = zppcEncoderCreate(entry_->codec, &entry_->options, nullptr);
    const std::int16_t* pcm = speech.data();
    std::uint8_t* payload = octets_.data();
    for (int& size : sizes_) {
      size = zppcEncode(encoder, pcm, packet_, payload, room_);
      pcm += packet_, payload += room_;
    }
    zppcEncoderDestroy(encoder);
  }

  void decode(Samples& speech) {
    ZppcDecoder* const decoder = zppcDecoderCreate(entry_->codec, &entry_->options, nullptr);
    std::int16_t* pcm = speech.data();
    const std::uint8_t* payload = octets_.data();
    for (const int size : sizes_) {
      zppcDecode(decoder, payload, size, pcm, packet_);
      pcm += packet_, payload += room_;
    }
    zppcDecoderDestroy(decoder);
  }

 private:
  const Entry* entry_;
  int packet_, room_;  // samples and octets of a packet
  Octets octets_;
  std::vector<int> sizes_;
};

}  // namespace

int main(int argc, char** argv) {
  for (const Entry& entry : codecs::framing::catalogue())
    enter(std::string(entry.name), "zppcodecs", entry.codec->sampleRate, OurCoder(entry),
          static_cast<double>(zppcEncoderSize(entry.codec) + zppcDecoderSize(entry.codec)));
#ifdef ZPPSC_HAVE_SPANDSP
  enterSpandsp();
#endif
#ifdef ZPPSC_HAVE_BCG729
  enterBcg729();
#endif
#ifdef ZPPSC_HAVE_LIBGSM
  enterLibgsm();
#endif
#ifdef ZPPSC_HAVE_OPENCORE_AMRNB
  enterOpencoreAmrnb();
#endif
#ifdef ZPPSC_HAVE_AMRWB
  enterAmrwb();
#endif
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
}
