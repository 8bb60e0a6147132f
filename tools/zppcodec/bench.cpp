#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <numbers>

#include "commands.h"
#include "errors.h"
#include "pcm.h"

using codecs::Bytes;
using codecs::Codec;
using codecs::Samples;

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

// Codes the signal in packets of 20 ms, or of one frame where frames are longer.
void benchCodec(const Codec& codec, std::string_view framing, std::span<const std::int16_t> signal, bool tsv) {
  const auto frame = static_cast<std::size_t>(codec.samplesPerFrame);
  const std::size_t packet = std::max<std::size_t>(1, static_cast<std::size_t>(codec.sampleRate) / 50 / frame) * frame;
  const std::size_t packets = signal.size() / packet;
  if (packets == 0) throw DataError("the speech is too short to time " + std::string(codec.name) + "; give a second or more");
  Bytes stream;
  std::vector<std::size_t> ends;  // of the packets in the stream
  const double encoding = secondsOf([&] {
    const auto encoder = codec.makeEncoder(framing);
    stream.clear();
    ends.clear();
    for (std::size_t n = 0; n < packets; ++n) {
      encoder->encode(signal.subspan(n * packet, packet), stream);
      ends.push_back(stream.size());
    }
  });
  Samples samples;
  const double decoding = secondsOf([&] {
    const auto decoder = codec.makeDecoder(framing);
    std::size_t at = 0;
    for (const std::size_t end : ends) {
      samples.clear();
      decoder->decode(std::span(stream).subspan(at, end - at), samples);
      at = end;
    }
  });
  const double seconds = static_cast<double>(packets * packet) / codec.sampleRate;
  std::printf(tsv ? "%s\t%.0f\t%.0f\t%.0f\n" : "%-11s  %10.0f  %10.0f  %10.0f\n", std::string(codec.name).c_str(),
              seconds / encoding, seconds / decoding, seconds / (encoding + decoding));
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
    std::printf("%-11s  %10s  %10s  %10s\n", "codec", "encode", "decode", "channels");
  }
  for (const Codec& codec : codecs::registry()) {
    if (job.codec != nullptr && &codec != job.codec) continue;
    if (speechRate != codec.sampleRate) {
      if (in && speechRate != 0) continue;  // the given speech serves the codecs of one rate
      speech = in ? readAllPcm(*in, job.raw, codec.sampleRate) : babble(codec.sampleRate);
      speechRate = codec.sampleRate;
    }
    benchCodec(codec, job.codec != nullptr ? job.framing : codec.framings.front(), speech, job.tsv);
  }
}
