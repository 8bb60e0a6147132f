// What every codec promises under all the names and in all the framings that the program offers.
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "codecs/streams.h"

namespace test {
namespace {

using codecs::framing::Bytes;
using codecs::framing::catalogue;
using codecs::framing::Samples;

// Frames of noise that comes and goes
Samples signalFor(const Codec& codec, int samples, std::uint32_t seed = 1) {
  std::mt19937 random(seed);
  Samples signal;
  const int frame = codec.codec->frameSamples;
  int last = 0;
  for (int n = 0; n < (samples + frame - 1) / frame * frame; ++n) {
    last = (3 * last + static_cast<int>(random() % 8001) - 4000) / 4;
    signal.push_back(static_cast<std::int16_t>(2 * last * (1 + std::cos(n / 900.))));
  }
  return signal;
}

TEST(EveryCodec, DecodesPiecesOfAnySizeInEveryFraming) {
  for (const Codec& codec : catalogue())
    for (const auto& framing : codec.framings) {
      const Samples speech = signalFor(codec, 4160);
      const Bytes stream = encoded(codec, framing.name, speech);
      const Samples whole = decoded(codec, framing.name, stream);
      ASSERT_EQ(whole.size(), speech.size()) << codec.name;
      for (const std::size_t piece : {1, 3, 9, 11, 59, 61, 163, 977})
        EXPECT_TRUE(decoded(codec, framing.name, stream, piece) == whole) << codec.name << ' ' << framing.name << ' ' << piece;
    }
}

// Frames that the user declares lost are concealed, whatever the stream holds, and the length stays.
TEST(EveryCodec, TakesFramesForLostInEveryFraming) {
  for (const Codec& codec : catalogue())
    for (const auto& framing : codec.framings) {
      const codecs::framing::Format format{&codec, framing.name, codec.options};
      const Samples speech = signalFor(codec, 4160);
      const Bytes stream = encoded(format, speech);
      const auto frame = static_cast<std::size_t>(codec.codec->frameSamples);
      const Samples whole = decoded(format, stream);
      const Samples all = decoded(format, stream, 0, {std::vector<bool>(speech.size() / frame + 5, true), {}});
      const Samples none = decoded(format, stream, 7, {std::vector<bool>(1, false), {}});
      std::vector<bool> once(5, false);
      once[4] = true;
      const Samples some = decoded(format, stream, 100, {once, {}});
      EXPECT_TRUE(none == whole) << codec.name << ' ' << framing.name;
      ASSERT_EQ(all.size(), whole.size()) << codec.name << ' ' << framing.name;
      ASSERT_EQ(some.size(), whole.size()) << codec.name << ' ' << framing.name;
      EXPECT_TRUE(std::equal(some.begin(), some.begin() + static_cast<std::ptrdiff_t>(4 * frame), whole.begin())) << codec.name;
      EXPECT_FALSE(some == whole) << codec.name;
    }
}

TEST(EveryCodec, LagsBehindByItsDelay) {
  for (const Codec& codec : catalogue()) {
    const Samples speech = signalFor(codec, 16000);
    const Samples heard = decoded(codec, defaultFraming(codec), encoded(codec, defaultFraming(codec), speech));
    const auto errorAt = [&](int delay) {
      double error = 0;
      for (std::size_t n = 1; n + static_cast<std::size_t>(delay) < heard.size(); ++n)
        error += std::pow(heard[n + static_cast<std::size_t>(delay)] - speech[n], 2);
      return error;
    };
    // A codec of few bits may hit this noise as well a sample earlier: its filters do not delay all frequencies alike.
    const int delay = codec.codec->delaySamples;
    int best = std::max(delay - 5, 0);
    for (int other = best; other <= delay + 5; ++other)
      if (errorAt(other) < errorAt(best)) best = other;
    EXPECT_NEAR(best, delay, 1) << codec.name;
  }
}

}  // namespace
}  // namespace test
