// G.729 in single precision beside what the standard's programs do in double precision: streams where no decision is close, and
// decoded speech within one unit.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "codecs/g729/single_precision/functions.h"
#include "codecs/streams.h"

namespace test {
namespace {

using codecs::framing::Bytes;
using codecs::framing::Samples;

const char* const kNames[] = {"g729f", "g729af"};

// How far the decoded speech is from the standard's: dB, and the largest difference
struct Distance {
  double ratio;
  int largest;
};
Distance distanceOf(const Samples& samples, const Samples& expected) {
  double signal = 0, noise = 1e-9;
  int largest = 0;
  for (std::size_t n = 0; n < expected.size(); ++n) {
    const int difference = samples[n] - expected[n];
    signal += std::pow(expected[n], 2);
    noise += std::pow(difference, 2);
    largest = std::max(largest, std::abs(difference));
  }
  return {10 * std::log10(signal / noise), largest};
}

Bytes withoutLengths(const Bytes& frames) {
  Bytes stream;
  for (std::size_t n = 0; n < frames.size(); ++n)
    if (n % 11 != 0) stream.push_back(frames[n]);
  return stream;
}

// To the last bits: every term of the series counts.
TEST(G729InSinglePrecision, ComputesFunctionsOfItsOwn) {
  using namespace codecs::g729f;
  for (int i = -1000; i <= 1000; ++i) {
    const double x = i / 1000.0;
    EXPECT_NEAR(arccosine(x), std::acos(x), 2e-13) << x;
    EXPECT_NEAR(cosine((x + 1) * kPi / 2), std::cos((x + 1) * kPi / 2), 1e-14) << x;
    const double power = std::pow(10, 8 * x);
    EXPECT_NEAR(powerOf10(8 * x) / power, 1, 1e-14) << x;
    EXPECT_NEAR(log10Of(power), 8 * x, 2e-14) << x;
  }
  EXPECT_EQ(arccosine(1.5), 0);
}

TEST(G729InSinglePrecision, EncodesAsInDoublePrecision) {
  const Samples speech = filePcm("g729/streams/annexc.pcm");
  for (const std::string name : kNames)
    EXPECT_TRUE(encoded(codecNamed(name), "rfc3551", speech) ==
                withoutLengths(fileBytes("g729/streams/annexc-" + name + ".frames")))
        << name;
}

TEST(G729InSinglePrecision, DecodesAsInDoublePrecision) {
  for (const std::string name : kNames) {
    const std::string stream = "g729/streams/annexc-" + name;
    const Samples expected = filePcm(stream + ".pcm");
    const Samples samples = decoded(codecNamed(name), "rfc3551", withoutLengths(fileBytes(stream + ".frames")));
    ASSERT_GE(samples.size(), expected.size());
    EXPECT_GT(distanceOf(samples, expected).ratio, 80) << name;
    EXPECT_LE(distanceOf(samples, expected).largest, 1) << name;
  }
}

TEST(G729InSinglePrecision, ConcealsAsInDoublePrecision) {
  for (const std::string name : kNames) {
    const Samples expected = filePcm("g729/streams/annexc-damaged-" + name + ".pcm");
    Bytes stream;
    const Bytes file = fileBytes("g729/streams/annexc-damaged-" + name + ".frames");
    for (std::size_t at = 0; at < file.size();) {
      const bool lost = file[at] == 255;
      const std::size_t octets = lost ? 0 : file[at];
      appendSerial(std::span(file).subspan(at + 1, octets), lost, stream);
      at += 1 + octets;
    }
    const Samples samples = decoded(codecNamed(name), "itu", stream);
    ASSERT_EQ(samples.size(), expected.size());
    EXPECT_GT(distanceOf(samples, expected).ratio, 80) << name;
    EXPECT_LE(distanceOf(samples, expected).largest, 1) << name;
  }
}

// Either arithmetic understands the other's stream.
TEST(G729InSinglePrecision, AgreesWithFixedPoint) {
  const Samples speech = filePcm("g729/streams/annexc.pcm");
  const char* const fixedPoint[] = {"g729", "g729a"};
  for (int i = 0; i < 2; ++i) {
    const Codec &fixed = codecNamed(fixedPoint[i]), &single = codecNamed(kNames[i]);
    for (const Codec* encoder : {&fixed, &single}) {
      const Bytes stream = encoded(*encoder, "rfc3551", speech);
      EXPECT_GT(distanceOf(decoded(single, "rfc3551", stream), decoded(fixed, "rfc3551", stream)).ratio, 20) << kNames[i];
    }
  }
}

// Full-scale noise, silence and broken frames give samples, not stray indices; the sanitizers watch.
TEST(G729InSinglePrecision, SurvivesExtremes) {
  std::mt19937 random(7);
  for (const std::string name : kNames) {
    Samples signal;
    for (int n = 0; n < 80 * 300; ++n) {
      const bool square = n / 8000 % 2 == 1;
      signal.push_back(n < 1600 ? std::int16_t{0}
                       : square ? static_cast<std::int16_t>(n / 37 % 2 ? 32767 : -32768)
                                : static_cast<std::int16_t>(random()));
    }
    const Codec& codec = codecNamed(name);
    Bytes stream = encoded(codec, "rfc3551", signal);
    EXPECT_EQ(decoded(codec, "rfc3551", stream).size(), signal.size());
    for (std::uint8_t& octet : stream) octet = static_cast<std::uint8_t>(random());
    EXPECT_EQ(decoded(codec, "rfc3551", stream).size(), signal.size());
    const Samples quiet = decoded(codec, "rfc3551", encoded(codec, "rfc3551", Samples(8000)));
    EXPECT_LT(std::abs(*std::ranges::max_element(quiet, {}, [](int s) { return std::abs(s); })), 4) << name;
  }
}

}  // namespace
}  // namespace test
