#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <numbers>

#include "commands.h"
#include "errors.h"
#include "pcm.h"

using codecs::framing::Bytes;
using codecs::framing::Entry;
using codecs::framing::Samples;

namespace {

// Ten seconds of something that codecs take for speech: glottal pulses with a moving pitch, formants that glide from vowel to
// vowel, four syllables a second with a pause after every eighth, and a faint noise floor.
Samples babble(int sampleRate) {
  struct Formant {
    double low, high, bandwidth;  // Hz
    double y1, y2;
  };
  Formant formants[] = {{300, 800, 80, 0, 0}, {900, 2100, 110, 0, 0}, {2300, 2900, 160, 0, 0}};
  Samples signal(static_cast<std::size_t>(10 * sampleRate));
  double phase = 0;
  std::uint32_t random = 1;
  for (std::size_t n = 0; n < signal.size(); ++n) {
    const double t = static_cast<double>(n) / sampleRate;
    const double syllable = 4 * t;
    const bool pause = static_cast<int>(syllable) % 9 == 8;
    const double loudness = pause ? 0 : std::pow(std::sin(std::numbers::pi * std::fmod(syllable, 1.0)), 2);
    phase += (120 + 30 * std::sin(2.1 * t)) / sampleRate;
    const bool pulse = phase >= 1;
    if (pulse) phase -= 1;
    random = random * 1664525 + 1013904223;
    const double noise = static_cast<double>(random >> 8) / (1 << 23) - 1;
    double y = pulse ? loudness : 0.002 * loudness * noise;
    for (Formant& f : formants) {
      const double glide = 0.5 + 0.5 * std::sin(2 * std::numbers::pi * t * 1.7 + f.high);
      const double radius = std::exp(-std::numbers::pi * f.bandwidth / sampleRate);
      const double a1 = 2 * radius * std::cos(2 * std::numbers::pi * (f.low + glide * (f.high - f.low)) / sampleRate);
      y += a1 * f.y1 - radius * radius * f.y2;
      f.y2 = f.y1;
      f.y1 = y;
    }
    signal[n] = static_cast<std::int16_t>(std::clamp(700 * y + 8 * noise, -32768.0, 32767.0));
  }
  return signal;
}

// Seconds of one run of work: the median of the runs that fit into a third of a second, three at least.
template <class Work>
double secondsOf(Work work) {
  using Clock = std::chrono::steady_clock;
  std::vector<double> runs;
  const auto start = Clock::now();
  while (runs.size() < 3 || Clock::now() - start < std::chrono::milliseconds(333)) {
    const auto begin = Clock::now();
    work();
    runs.push_back(std::chrono::duration<double>(Clock::now() - begin).count());
  }
  const auto middle = runs.begin() + static_cast<std::ptrdiff_t>(runs.size() / 2);
  std::nth_element(runs.begin(), middle, runs.end());
  return *middle;
}

// Codes the signal in packets of 20 ms, or of one frame where frames are longer, through the C API.
void benchCodec(const codecs::framing::Format& format, std::span<const std::int16_t> signal, bool tsv) {
  const ZppcCodec& codec = *format.entry->codec;
  const auto frame = static_cast<std::size_t>(codec.frameSamples);
  const auto packet = static_cast<std::size_t>(codecs::framing::packetSamples(codec));
  const std::size_t packets = signal.size() / packet;
  const std::string name(format.entry->name);
  if (packets == 0) throw DataError("the speech is too short to time " + name + "; give a second or more");
  const auto size = static_cast<int>(packet);
  const std::size_t room = packet / frame * static_cast<std::size_t>(codec.maxPayload);
  Bytes payloads(packets * room);
  std::vector<int> octets(packets);
  const auto require = [](auto* stream) { return stream != nullptr ? stream : throw std::bad_alloc(); };
  const double encoding = secondsOf([&] {
    ZppcEncoder* const encoder = require(zppcEncoderCreate(&codec, &format.options, nullptr));
    for (std::size_t n = 0; n < packets; ++n)
      octets[n] = zppcEncode(encoder, &signal[n * packet], size, &payloads[n * room], static_cast<int>(room));
    zppcEncoderDestroy(encoder);
  });
  Samples samples(packet);
  const double decoding = secondsOf([&] {
    ZppcDecoder* const decoder = require(zppcDecoderCreate(&codec, &format.options, nullptr));
    for (std::size_t n = 0; n < packets; ++n) zppcDecode(decoder, &payloads[n * room], octets[n], samples.data(), size);
    zppcDecoderDestroy(decoder);
  });
  const double seconds = static_cast<double>(packets * packet) / codec.sampleRate;
  std::printf(tsv ? "%s\t%.0f\t%.0f\t%.0f\n" : "%-13s  %10.0f  %10.0f  %10.0f\n", name.c_str(), seconds / encoding,
              seconds / decoding, seconds / (encoding + decoding));
  std::fflush(stdout);
}

}  // namespace

void bench(const Job& job) {
  std::optional<InputFile> in;
  if (!job.in.empty()) in.emplace(job.in);
  Samples speech;
  int speechRate = 0;
  if (!job.tsv) {
    std::printf("times real time on one core; channels: encoder and decoder of one call each\n");
    std::printf("%-13s  %10s  %10s  %10s\n", "codec", "encode", "decode", "channels");
  }
  for (const Entry& entry : codecs::framing::catalogue()) {
    if (job.format.entry != nullptr && &entry != job.format.entry) continue;
    const ZppcCodec& codec = *entry.codec;
    if (speechRate != codec.sampleRate) {
      if (in && speechRate != 0) continue;  // the given speech serves the codecs of one rate
      speech = in ? readAllPcm(*in, job.raw, codec.sampleRate) : babble(codec.sampleRate);
      speechRate = codec.sampleRate;
    }
    benchCodec(job.format.entry != nullptr ? job.format : codecs::framing::defaultFormat(entry), speech, job.tsv);
  }
}
