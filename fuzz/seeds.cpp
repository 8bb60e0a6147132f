// Writes inputs for the fuzz targets that are whole streams of speech: seeds SPEECH_8000.pcm SPEECH_16000.pcm FOLDER
//
// An input is read from both ends, as FuzzedDataProvider does: octets from the front, numbers from the back.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "codecs/framing/stream.h"

using namespace codecs::framing;

namespace {

class Seed {
 public:
  // A number as ConsumeIntegralInRange(least, most) gives it
  Seed& number(long value, long least, long most) {
    int octets = 0;
    while (octets < 8 && (most - least) >> (8 * octets) > 0) ++octets;
    for (int i = octets - 1; i >= 0; --i) back_.push_back(static_cast<std::uint8_t>((value - least) >> (8 * i)));
    return *this;
  }
  void octets(const void* from, std::size_t count) {
    const auto* const bytes = static_cast<const std::uint8_t*>(from);
    front_.insert(front_.end(), bytes, bytes + count);
  }
  void write(const std::filesystem::path& file) const {
    Bytes all = front_;
    all.insert(all.end(), back_.rbegin(), back_.rend());
    std::ofstream(file, std::ios::binary)
        .write(reinterpret_cast<const char*>(all.data()), static_cast<std::streamsize>(all.size()));
  }

 private:
  Bytes front_, back_;
};

Samples readPcm(const char* name) {
  std::ifstream file(name, std::ios::binary);
  const std::vector<char> bytes(std::istreambuf_iterator<char>(file), {});
  Samples samples;
  for (std::size_t n = 0; n + 1 < bytes.size(); n += 2)
    samples.push_back(static_cast<std::int16_t>(static_cast<unsigned char>(bytes[n]) | bytes[n + 1] << 8));
  return samples;
}

// The loudest stretch of so many samples, by steps of its length
std::span<const std::int16_t> loudest(const Samples& speech, std::size_t count) {
  const auto level = [&](std::size_t at) {
    long sum = 0;
    for (std::size_t n = at; n < at + count; ++n) sum += std::abs(long{speech[n]});
    return sum;
  };
  std::size_t best = 0;
  for (std::size_t at = 0; at + count <= speech.size(); at += count)
    if (level(at) > level(best)) best = at;
  return std::span(speech).subspan(best, count);
}

// What choose() of fuzz.h and then the two targets read
void writeCodec(int c, int rate, int dtx, const Samples& speech, const std::filesystem::path& folder) {
  int count = 0;
  const ZppcCodec& codec = zppcCodecs(&count)[c];
  const ZppcOptions options = {codec.bitRates[rate], dtx, 0};
  ZppcEncoder* const encoder = zppcEncoderCreate(&codec, &options, nullptr);
  if (encoder == nullptr) return;
  Seed decoder, coder;
  for (Seed* seed : {&decoder, &coder})
    seed->number(c, 0, count - 1).number(rate, -1, codec.bitRateCount).number(dtx, 0, 1).number(0, 0, 2);
  const bool ofSamples = sampleBased(codec);
  const int packet = ofSamples ? 20 : 1, size = packet * codec.frameSamples, frames = ofSamples ? 20 : 6;
  const int most = codec.maxPayload * packet + 1;
  Bytes payload(static_cast<std::size_t>(most));
  const auto signal = loudest(speech, static_cast<std::size_t>(frames * size));
  for (int f = 0; f < frames; ++f) {
    const std::int16_t* const pcm = signal.data() + f * size;
    const int octets = zppcEncode(encoder, pcm, size, payload.data(), most);
    const bool lost = f % 5 == 3 || octets == 0;
    decoder.number(lost ? 0 : 4, 0, 7);
    if (ofSamples) decoder.number(packet, 1, 20);
    if (!lost) decoder.number(octets, 1, most).octets(payload.data(), static_cast<std::size_t>(octets));
    decoder.number(f, 0, 3);
    coder.number(0, 0, 1);
    if (ofSamples) coder.number(packet, 1, 20);
    coder.number(0, 0, 5).octets(pcm, 2 * static_cast<std::size_t>(size));
    coder.number(f, 0, 3);
  }
  zppcEncoderDestroy(encoder);
  const std::string name = std::string(codec.name) + "-" + std::to_string(codec.bitRates[rate]) + (dtx ? "-dtx" : "");
  decoder.write(folder / "decoder" / name);
  coder.write(folder / "encoder" / name);
}

void writeStream(std::size_t e, std::size_t framing, const Samples& speech, const std::filesystem::path& folder) {
  const Entry& entry = catalogue()[e];
  const Format format = {&entry, entry.framings[framing].name, entry.options};
  Seed seed;
  seed.number(static_cast<long>(e), 0, static_cast<long>(catalogue().size()) - 1);
  seed.number(static_cast<long>(framing), 0, static_cast<long>(entry.framings.size()) - 1);
  if ((entry.codec->features & ZPPC_FEATURE_DTX) != 0) seed.number(0, 0, 1);
  seed.number(2, 0, 8).number(0, 0, 1).number(1, 0, 1).number(100, 1, 600).number(0, 0, 1);
  StreamEncoder encoder(format);
  Bytes stream;
  encoder.add(loudest(speech, static_cast<std::size_t>(std::max(4 * entry.codec->frameSamples, 320))), stream);
  encoder.finish(stream);
  seed.octets(stream.data(), stream.size());
  seed.write(folder / "stream" / (std::string(entry.name) + "-" + std::string(format.framing)));
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 4) return 2;
  const Samples narrow = readPcm(arguments[1]), wide = readPcm(arguments[2]);
  const std::filesystem::path folder = arguments[3];
  for (const char* target : {"decoder", "encoder", "stream"}) std::filesystem::create_directories(folder / target);
  int codecs = 0;
  const ZppcCodec* const all = zppcCodecs(&codecs);
  for (int c = 0; c < codecs; ++c)
    for (int rate = 0; rate < all[c].bitRateCount; ++rate)
      for (int dtx = 0; dtx < 2; ++dtx) writeCodec(c, rate, dtx, all[c].sampleRate == 8000 ? narrow : wide, folder);
  for (std::size_t e = 0; e < catalogue().size(); ++e)
    for (std::size_t f = 0; f < catalogue()[e].framings.size(); ++f)
      writeStream(e, f, catalogue()[e].codec->sampleRate == 8000 ? narrow : wide, folder);
}
