// The G.722.1 codec on the standard's streams (official: ITU-T's test vectors; harsh: quiet, clipped and artificial signals),
// with frames lost and damaged, and on what no encoder would send.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "codecs/streams.h"
#include "support/golden.h"

namespace test {
namespace {

using codecs::framing::Bytes;
using codecs::framing::Samples;

constexpr std::size_t frameSamples = 320;

std::size_t frameBytes(const Codec& codec) { return codec.name == "g722.1-24" ? 60 : 80; }

std::vector<const Codec*> bothRates() { return {&codecNamed("g722.1-24"), &codecNamed("g722.1-32")}; }

std::string rateOf(const Codec& codec) { return std::string(codec.name.substr(codec.name.size() - 2)); }

Bytes swapped(Bytes stream) {
  for (std::size_t n = 0; n + 1 < stream.size(); n += 2) std::swap(stream[n], stream[n + 1]);
  return stream;
}

// A packed stream in the serial format, some frames marked as lost
Bytes serial(const Bytes& packed, std::size_t frame, const std::vector<double>& lost = {}) {
  const Bytes octets = swapped(packed);
  Bytes stream;
  for (std::size_t start = 0; start < octets.size(); start += frame)
    appendSerial(std::span(octets).subspan(start, frame), std::ranges::count(lost, start / frame) != 0, stream);
  return stream;
}

TEST(G7221Codec, EncodesTheReferenceStreamsInEveryFraming) {
  for (const char* signal : {"official", "harsh"})
    for (const Codec* codec : bothRates()) {
      const std::string name = std::string("g7221/streams/") + signal;
      const Samples speech = filePcm(name + ".pcm");
      const Bytes expected = fileBytes(name + "-" + rateOf(*codec) + ".pak");
      EXPECT_TRUE(encoded(*codec, "packed", speech) == expected) << name << codec->name;
      EXPECT_TRUE(encoded(*codec, "rfc5577", speech) == swapped(expected)) << name << codec->name;
      EXPECT_TRUE(encoded(*codec, "itu", speech) == serial(expected, frameBytes(*codec))) << name << codec->name;
      EXPECT_EQ(defaultFraming(*codec), "packed");
    }
}

TEST(G7221Codec, DecodesTheReferenceStreamsWithLostAndDamagedFrames) {
  for (const auto& golden : readGolden(TEST_DATA_DIR "/g7221/streams/decoded.cases")) {
    const Codec& codec = codecNamed(golden.label.find("-24") != std::string::npos ? "g722.1-24" : "g722.1-32");
    const Bytes packed = fileBytes("g7221/streams/" + golden.label + ".pak");
    const auto lost = golden.in.count("lost") ? golden.in.at("lost") : std::vector<double>{};
    const Samples samples = decoded(codec, "itu", serial(packed, frameBytes(codec), lost));
    const auto& expected = golden.out.at("crc");
    ASSERT_EQ(samples.size(), expected.size() * frameSamples);
    for (std::size_t f = 0; f < expected.size(); ++f)
      ASSERT_EQ(crc32(std::span(samples).subspan(f * frameSamples, frameSamples)), expected[f])
          << golden.label << ", " << lost.size() << " lost, frame " << f;
    if (!lost.empty()) continue;
    EXPECT_TRUE(decoded(codec, "packed", packed) == samples);
    EXPECT_TRUE(decoded(codec, "rfc5577", swapped(packed)) == samples);
  }
}

TEST(G7221Codec, RefusesSerialFramesOfAnotherSizeAndConcealsEmptyOnes) {
  const Codec& codec = codecNamed("g722.1-24");
  Bytes stream = serial(encoded(codec, "packed", Samples(frameSamples, 1000)), 60);
  const Samples speech = decoded(codec, "itu", stream);
  stream.insert(stream.end(), {0x20, 0x6b, 0, 0});
  EXPECT_EQ(decoded(codec, "itu", stream).size(), 2 * frameSamples);
  for (const unsigned bits : {0u, 479u, 481u, 640u}) {
    Bytes other = stream;
    other[2] = static_cast<std::uint8_t>(bits);
    other[3] = static_cast<std::uint8_t>(bits >> 8);
    EXPECT_THROW(decoded(codec, "itu", other), codecs::framing::StreamError) << bits;
  }
  // A bit word that is neither 0 nor 1 marks the frame as lost: nothing has been heard yet, so silence is repeated.
  Bytes broken = stream;
  broken[100] = 0;
  EXPECT_TRUE(decoded(codec, "itu", broken) == decoded(codec, "itu", serial(Bytes(120), 60, {0, 1})));
  EXPECT_FALSE(decoded(codec, "itu", broken) == speech);
}

// Damage of every kind: the sanitizers watch for accesses outside the buffers, and nothing may depend on what was not sent.
TEST(G7221Codec, SurvivesRandomFrames) {
  std::mt19937 random(7221);
  for (const Codec* codec : bothRates()) {
    const std::size_t frame = frameBytes(*codec);
    const Bytes good = fileBytes("g7221/streams/harsh-" + rateOf(*codec) + ".pak");
    Bytes stream;
    for (int f = 0; f < 6000; ++f) {
      const std::size_t at = random() % (good.size() / frame) * frame;
      Bytes octets(good.begin() + static_cast<std::ptrdiff_t>(at), good.begin() + static_cast<std::ptrdiff_t>(at + frame));
      const auto begin = octets.begin() + random() % frame;  // kept up to here
      switch (f % 6) {
        case 0:
          std::generate(octets.begin(), octets.end(), [&] { return static_cast<std::uint8_t>(random()); });
          break;
        case 1:
          std::generate(begin, octets.end(), [&] { return static_cast<std::uint8_t>(random()); });
          break;
        case 2:
          std::fill(begin, octets.end(), static_cast<std::uint8_t>(random() % 2 * 255));
          break;
        case 3:
          for (std::uint8_t& octet : octets) octet = static_cast<std::uint8_t>(random() & random() & random());
          break;
        case 4:
          for (std::uint8_t& octet : octets) octet = static_cast<std::uint8_t>(random() | random() | random());
          break;
        default:
          break;
      }
      stream.insert(stream.end(), octets.begin(), octets.end());
    }
    const Samples samples = decoded(*codec, "rfc5577", stream);
    EXPECT_EQ(samples.size(), 6000 * frameSamples);
    EXPECT_TRUE(decoded(*codec, "rfc5577", stream, 1 + frame / 3) == samples);
  }
}

TEST(G7221Codec, FadesOutWhenFramesKeepMissing) {
  for (const Codec* codec : bothRates()) {
    Bytes packed = fileBytes("g7221/streams/official-" + rateOf(*codec) + ".pak");
    packed.resize(60 * frameBytes(*codec));
    std::vector<double> lost;
    for (int f = 50; f < 60; ++f) lost.push_back(f);
    const Samples samples = decoded(*codec, "itu", serial(packed, frameBytes(*codec), lost));
    const auto loudest = [&](std::size_t f) {
      const auto part = std::span(samples).subspan(f * frameSamples, frameSamples);
      return std::abs(*std::ranges::max_element(part, {}, [](int s) { return std::abs(s); }));
    };
    EXPECT_GT(loudest(50), loudest(49) / 8) << "the first lost frame repeats the last good one";
    for (std::size_t f = 52; f < 60; ++f) EXPECT_LE(loudest(f), 32) << "but for the biases of the transform, frame " << f;
  }
}

}  // namespace
}  // namespace test
