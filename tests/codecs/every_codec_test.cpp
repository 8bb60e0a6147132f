// What every codec promises, whatever its standard.
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "codecs/streams.h"

namespace test {
namespace {

using codecs::Bytes;
using codecs::Codec;
using codecs::Samples;

// Frames of noise that comes and goes
Samples signalFor(const Codec& codec, int frames, std::uint32_t seed = 1) {
  std::mt19937 random(seed);
  Samples signal;
  int last = 0;
  for (int n = 0; n < frames * codec.samplesPerFrame; ++n) {
    last = (3 * last + static_cast<int>(random() % 8001) - 4000) / 4;
    signal.push_back(static_cast<std::int16_t>(2 * last * (1 + std::cos(n / 900.))));
  }
  return signal;
}

int framesIn(const Codec& codec, int samples) { return (samples + codec.samplesPerFrame - 1) / codec.samplesPerFrame; }

TEST(EveryCodec, DecodesPiecesOfAnySizeInEveryFraming) {
  for (const Codec& codec : codecs::registry())
    for (const std::string_view framing : codec.framings) {
      const Samples speech = signalFor(codec, framesIn(codec, 4000));
      const Bytes stream = encoded(codec, framing, speech);
      const Samples whole = decoded(codec, framing, stream);
      ASSERT_EQ(whole.size(), speech.size()) << codec.name;
      for (const std::size_t piece : {1, 3, 9, 11, 59, 61, 163, 977})
        EXPECT_TRUE(decoded(codec, framing, stream, piece) == whole) << codec.name << ' ' << framing << ' ' << piece;
    }
}

// Coding frame by frame is the same as coding all at once, beside another stream of the same codec.
TEST(EveryCodec, KeepsStreamsApart) {
  for (const Codec& codec : codecs::registry()) {
    const std::string_view framing = codec.framings.front();
    const auto frame = static_cast<std::size_t>(codec.samplesPerFrame);
    const Samples speech[2] = {signalFor(codec, framesIn(codec, 4000), 1), signalFor(codec, framesIn(codec, 4000), 2)};
    const std::unique_ptr<codecs::Encoder> encoders[2] = {codec.makeEncoder(framing), codec.makeEncoder(framing)};
    const std::unique_ptr<codecs::Decoder> decoders[2] = {codec.makeDecoder(framing), codec.makeDecoder(framing)};
    Bytes streams[2];
    Samples heard[2];
    for (std::size_t n = 0; n < speech[0].size(); n += frame)
      for (int i = 0; i < 2; ++i) {
        const std::size_t before = streams[i].size();
        encoders[i]->encode(std::span(speech[i]).subspan(n, frame), streams[i]);
        decoders[i]->decode(std::span(streams[i]).subspan(before), heard[i]);
      }
    for (int i = 0; i < 2; ++i) {
      EXPECT_TRUE(streams[i] == encoded(codec, framing, speech[i])) << codec.name;
      EXPECT_TRUE(heard[i] == decoded(codec, framing, streams[i])) << codec.name;
    }
  }
}

// Nothing that an application may feed in makes a call fail.
TEST(EveryCodec, EncodesAnySignal) {
  for (const Codec& codec : codecs::registry()) {
    std::mt19937 random(1);
    const int part = 40 * codec.samplesPerFrame;
    Samples signal;
    for (int n = 0; n < part; ++n) signal.push_back(static_cast<std::int16_t>(random()));
    for (int n = 0; n < part; ++n) signal.push_back(n / 7 % 2 ? 32767 : -32768);
    for (int n = 0; n < part; ++n) signal.push_back(n % 977 == 0 ? -32768 : 0);
    for (int n = 0; n < part; ++n) signal.push_back(static_cast<std::int16_t>(32767 * std::sin(n * 0.05)));
    signal.insert(signal.end(), static_cast<std::size_t>(part), -32768);
    signal.insert(signal.end(), static_cast<std::size_t>(part), 0);
    const std::string_view framing = codec.framings.front();
    EXPECT_EQ(decoded(codec, framing, encoded(codec, framing, signal)).size(), signal.size()) << codec.name;
  }
}

TEST(EveryCodec, LagsBehindByItsDelay) {
  for (const Codec& codec : codecs::registry()) {
    const Samples speech = signalFor(codec, framesIn(codec, 16000));
    const Samples heard = decoded(codec, codec.framings.front(), encoded(codec, codec.framings.front(), speech));
    const auto errorAt = [&](int delay) {
      double error = 0;
      for (std::size_t n = 1; n + static_cast<std::size_t>(delay) < heard.size(); ++n)
        error += std::pow(heard[n + static_cast<std::size_t>(delay)] - speech[n], 2);
      return error;
    };
    EXPECT_LT(errorAt(codec.delay), errorAt(codec.delay + 1)) << codec.name;
    if (codec.delay > 0) {
      EXPECT_LT(errorAt(codec.delay), errorAt(codec.delay - 1)) << codec.name;
    }
  }
}

}  // namespace
}  // namespace test
