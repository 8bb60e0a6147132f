// Codes many frames with every codec, bit rate and option, and prints check sums of all payloads and all that is heard:
//
//   soak FRAMES [THREADS]
//
// FRAMES for every codec. With THREADS each of so many threads does it all, beginning with another codec, and gets the same.
// The signal changes every second: speech-like, noise, silence, clipped, clicks and tones of all levels; frames get lost alone
// and in bursts. All is drawn in integers, so that two builds code the same.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <thread>
#include <vector>

#include "codecs/framing/framing.h"
#include "support/check_sum.h"

namespace {

class Random {
 public:
  explicit Random(std::uint64_t seed) : state_(seed) {}
  std::uint32_t operator()() {
    state_ = state_ * 6364136223846793005u + 1442695040888963407u;
    return static_cast<std::uint32_t>(state_ >> 32);
  }
  int below(int limit) { return static_cast<int>((*this)() % static_cast<std::uint32_t>(limit)); }

 private:
  std::uint64_t state_;
};

class Signal {
 public:
  Signal(int sampleRate, std::uint64_t seed) : random_(seed), second_(sampleRate) {}
  void fill(std::vector<std::int16_t>& frame) {
    for (std::int16_t& sample : frame) {
      if (left_-- == 0) change();
      sample = static_cast<std::int16_t>(std::clamp(next(), -32768, 32767));
    }
  }

 private:
  void change() {
    kind_ = random_.below(8);
    level_ = 1 << random_.below(17);
    period_ = 20 + random_.below(300);
    pole_ = random_.below(3900);
    left_ = second_ / 4 + random_.below(second_);
  }
  int next() {
    ++n_;
    const int noise = random_.below(65536) - 32768;
    const int scaled = static_cast<int>(std::int64_t{noise} * level_ >> 15);
    switch (kind_) {
      case 0:
        return 0;
      case 1:
        return scaled;
      case 2:
        return n_ % period_ < period_ / 2 ? level_ : -level_;
      case 3:
        return n_ % period_ == 0 ? level_ : 0;
      case 4:
        return noise >> 12;
      default: {  // a voice: pulses and some noise through a resonance that moves
        if (n_ % 40 == 0) pole_ = std::clamp(pole_ + random_.below(101) - 50, -3900, 3950);
        const int excitation = (n_ % period_ == 0 ? level_ : 0) + scaled / 64;
        const std::int64_t value =
            excitation + (std::int64_t{2 * pole_} * 15 / 16 * first_ - std::int64_t{3600} * second1_) / 4096;
        second1_ = first_;
        first_ = static_cast<int>(std::clamp<std::int64_t>(value, -100000, 100000));
        return first_;
      }
    }
  }

  Random random_;
  int second_, left_ = 0, kind_ = 0, level_ = 0, period_ = 1, pole_ = 0, n_ = 0, first_ = 0, second1_ = 0;
};

// One loss in 25 frames, at times in bursts, or for so long that comfort noise is muted
class Line {
 public:
  explicit Line(std::uint64_t seed) : random_(seed) {}
  bool loses() {
    if (burst_ > 0) return --burst_, true;
    if (random_.below(25) != 0) return false;
    const int kind = random_.below(32);
    burst_ = kind < 4 ? random_.below(12) : kind == 4 ? 60 + random_.below(60) : 0;
    return true;
  }

 private:
  Random random_;
  int burst_ = 0;
};

void complain(const char* what, const ZppcCodec& codec) {
  std::fprintf(stderr, "soak: %s: %s\n", codec.name, what);
  std::exit(1);
}

// What one stream has come to
struct Result {
  const ZppcCodec* codec;
  ZppcOptions options;
  unsigned long long payloads, speech, states;
};

Result soak(const ZppcCodec& codec, const ZppcOptions& options, long frames) {
  std::vector<unsigned char> encoderMemory(static_cast<std::size_t>(zppcEncoderSize(&codec)));
  std::vector<unsigned char> decoderMemory(static_cast<std::size_t>(zppcDecoderSize(&codec)));
  ZppcEncoder* const encoder = zppcEncoderInit(encoderMemory.data(), encoderMemory.size(), &codec, &options, nullptr);
  ZppcDecoder* const decoder = zppcDecoderInit(decoderMemory.data(), decoderMemory.size(), &codec, &options, nullptr);
  if (encoder == nullptr || decoder == nullptr) complain("no stream", codec);
  const int size = codecs::framing::packetSamples(codec);
  const int room = codec.maxPayload * (size / codec.frameSamples);
  Signal signal(codec.sampleRate, static_cast<std::uint64_t>(options.bitRate) + 1);
  Line line(static_cast<std::uint64_t>(options.bitRate) + 7);
  Random rates(3);
  std::vector<std::int16_t> pcm(static_cast<std::size_t>(size)), heard(pcm.size());
  std::vector<unsigned char> payload(static_cast<std::size_t>(room));
  test::ByteSum payloads, speech, states;
  for (long n = 0; n < frames; ++n) {
    signal.fill(pcm);
    if ((codec.features & ZPPC_FEATURE_RATE_SWITCH) != 0 && rates.below(50) == 0)
      zppcEncoderSetBitRate(encoder, codec.bitRates[rates.below(codec.bitRateCount)]);
    const int octets = zppcEncode(encoder, pcm.data(), size, payload.data(), room);
    if (octets < 0) complain("a frame is not coded", codec);
    payloads.add(payload.data(), static_cast<std::size_t>(octets));
    const auto length = static_cast<unsigned char>(octets);
    payloads.add(&length, 1);
    const bool lost = line.loses();
    const int samples = zppcDecode(decoder, lost ? nullptr : payload.data(), lost ? 0 : octets, heard.data(), size);
    if (samples != size) complain("a payload is not decoded", codec);
    for (const std::int16_t sample : heard) {
      const unsigned char octetsOfSample[] = {static_cast<unsigned char>(sample & 255),
                                              static_cast<unsigned char>(sample >> 8)};
      speech.add(octetsOfSample, sizeof octetsOfSample);
    }
    if (n % 16 == 0) {
      states.add(encoderMemory.data(), encoderMemory.size());
      states.add(decoderMemory.data(), decoderMemory.size());
    }
  }
  return {&codec, options, payloads.value(), speech.value(), states.value()};
}

// All codecs from the first on, with every bit rate and option that they have
std::vector<Result> soakAll(int first, long frames) {
  int codecs = 0;
  const ZppcCodec* const all = zppcCodecs(&codecs);
  std::vector<std::vector<Result>> results(static_cast<std::size_t>(codecs));
  for (int n = 0; n < codecs; ++n) {
    const int c = (first + n) % codecs;
    std::vector<ZppcOptions> choices;
    for (int rate = 0; rate < all[c].bitRateCount; ++rate)
      for (int dtx = 0; dtx < 2; ++dtx)
        for (int variant = 0; variant < 3; ++variant) {
          const ZppcOptions options = {all[c].bitRates[rate], dtx, variant};
          ZppcEncoder* const encoder = zppcEncoderCreate(&all[c], &options, nullptr);
          ZppcDecoder* const decoder = zppcDecoderCreate(&all[c], &options, nullptr);
          if (encoder != nullptr && decoder != nullptr) choices.push_back(options);
          zppcEncoderDestroy(encoder);
          zppcDecoderDestroy(decoder);
        }
    const long share = std::max(1L, frames / static_cast<long>(choices.size()));
    for (const ZppcOptions& options : choices) results[static_cast<std::size_t>(c)].push_back(soak(all[c], options, share));
  }
  std::vector<Result> inOrder;
  for (const auto& some : results) inOrder.insert(inOrder.end(), some.begin(), some.end());
  return inOrder;
}

}  // namespace

int main(int count, char** arguments) {
  const long frames = count > 1 ? std::atol(arguments[1]) : 0;
  const int threads = count > 2 ? std::atoi(arguments[2]) : 1;
  if (frames < 1 || threads < 1) return std::fputs("usage: soak FRAMES [THREADS]\n", stderr), 2;
  std::vector<std::vector<Result>> results(static_cast<std::size_t>(threads));
  std::vector<std::thread> running;
  for (int t = 1; t < threads; ++t)
    running.emplace_back([&results, t, frames] { results[static_cast<std::size_t>(t)] = soakAll(t, frames); });
  results[0] = soakAll(0, frames);
  for (std::thread& thread : running) thread.join();

  int different = 0;
  for (std::size_t i = 0; i < results[0].size(); ++i) {
    const Result& r = results[0][i];
    std::printf("%s %d%s variant %d: payloads %016llx, speech %016llx, states %016llx\n", r.codec->name, r.options.bitRate,
                r.options.dtx ? " dtx" : "", r.options.variant, r.payloads, r.speech, r.states);
    for (const auto& other : results)
      different += other[i].payloads != r.payloads || other[i].speech != r.speech || other[i].states != r.states;
  }
  if (different != 0) std::fprintf(stderr, "soak: %d streams differ between threads\n", different);
  return different != 0;
}
