// The G.728 codec on the standard's streams and others: speech, noise and tones at several levels, tones from reset on which
// the recursion breaks down (start), clipped and artificial signals, random and damaged indices, with cycles lost.
#include <gtest/gtest.h>

#include "codecs/streams.h"
#include "support/golden.h"

namespace test {
namespace {

using codecs::framing::Bytes;
using codecs::framing::Samples;

constexpr std::size_t kCycle = 20, kOctets = 5;

const Codec& codec() { return codecNamed("g728"); }

Bytes octetsOf(const std::string& name) { return fileBytes("g728/streams/" + name + ".octets"); }

Bytes asWords(const Bytes& octets, unsigned upperBits = 0) {
  Bytes words;
  for (std::size_t n = 0; n < octets.size(); n += kOctets) {
    std::uint64_t window = 0;
    for (std::size_t k = 0; k < kOctets; ++k) window = window << 8 | octets[n + k];
    for (int k = 3; k >= 0; --k) {
      const auto word = static_cast<unsigned>(window >> 10 * k & 1023) | upperBits;
      words.push_back(static_cast<std::uint8_t>(word));
      words.push_back(static_cast<std::uint8_t>(word >> 8));
    }
  }
  return words;
}

// In serial frames of so many cycles; lost: by frame, repeated
Bytes serial(const Bytes& octets, std::size_t cycles, const std::vector<double>& lost = {0}) {
  Bytes stream;
  for (std::size_t at = 0, frame = 0; at < octets.size(); ++frame) {
    const std::size_t size = std::min(cycles * kOctets, octets.size() - at);
    appendSerial(std::span(octets).subspan(at, size), lost[frame % lost.size()] != 0, stream);
    at += size;
  }
  return stream;
}

TEST(G728Codec, EncodesTheReferenceStreamsInEveryFraming) {
  for (const char* name : {"in3", "mix", "start_1", "start_2", "start_3", "start_4", "start_5"}) {
    const Samples speech = filePcm(std::string("g728/streams/") + name + ".pcm");
    const Bytes expected = octetsOf(name);
    EXPECT_TRUE(encoded(codec(), "rfc3551", speech) == expected) << name;
    EXPECT_TRUE(encoded(codec(), "words", speech) == asWords(expected)) << name;
    EXPECT_TRUE(encoded(codec(), "itu", speech) == serial(expected, 4)) << name;
    // Only whole cycles are coded; the last serial frame may be a short one.
    const auto rest = std::span(speech).first(7 * kCycle + 19);
    EXPECT_TRUE(encoded(codec(), "itu", rest) == serial(Bytes(expected.begin(), expected.begin() + 7 * kOctets), 4)) << name;
  }
  EXPECT_EQ(defaultFraming(codec()), "rfc3551");
}

TEST(G728Codec, DecodesTheReferenceStreamsWithCyclesLost) {
  for (const auto& golden : readGolden(TEST_DATA_DIR "/g728/streams/decoded.cases")) {
    codecs::framing::Format format{&codec(), "rfc3551", codec().options};
    format.options.variant = golden.in.at("plain")[0] != 0;
    const auto samples = static_cast<std::size_t>(golden.out.at("samples")[0]);
    const double crc = golden.out.at("crc")[0];
    Bytes octets = octetsOf(golden.label);
    ASSERT_GE(octets.size() / kOctets * kCycle, samples) << golden.label;
    octets.resize(samples / kCycle * kOctets);
    if (!golden.in.count("lost")) {
      EXPECT_EQ(crc32(decoded(format, octets)), crc) << golden.label << golden.in.at("plain")[0];
      format.framing = "words";
      EXPECT_EQ(crc32(decoded(format, asWords(octets, 0xfc00))), crc) << golden.label;
      format.framing = "itu";
      EXPECT_EQ(crc32(decoded(format, serial(octets, 3))), crc) << golden.label;
      continue;
    }
    // The same losses as serial frames say them, and as the user does
    const auto& lost = golden.in.at("lost");
    const auto cycles = static_cast<std::size_t>(golden.in.at("cycles")[0]);
    std::vector<bool> byCycle;
    for (std::size_t n = 0; n < samples / kCycle; ++n) byCycle.push_back(lost[n / cycles % lost.size()] != 0);
    EXPECT_EQ(crc32(decoded(format, octets, 0, {byCycle, {}})), crc) << golden.label << cycles;
    format.framing = "itu";
    EXPECT_EQ(crc32(decoded(format, serial(octets, cycles, lost))), crc) << golden.label << cycles;
  }
}

TEST(G728Codec, SerialFramesHoldOneToEightCycles) {
  const Bytes octets = octetsOf("start_1");
  Bytes stream = serial(octets, 4);
  const Samples speech = decoded(codec(), "itu", stream);
  // A lost frame of no bits lasts 10 ms; a bit that is neither 0 nor 1 loses all cycles of its frame.
  stream.insert(stream.end(), {0x20, 0x6b, 0, 0});
  EXPECT_EQ(decoded(codec(), "itu", stream).size(), speech.size() + 4 * kCycle);
  const Samples firstLost = decoded(codec(), "itu", serial(octets, 4, {1, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
  stream = serial(octets, 4);
  stream[4 + 2 * 100] = 0;
  EXPECT_TRUE(decoded(codec(), "itu", stream) == firstLost);
  for (const unsigned bits : {0u, 39u, 41u, 360u}) {
    stream = serial(octets, 4);
    stream[2] = static_cast<std::uint8_t>(bits);
    stream[3] = static_cast<std::uint8_t>(bits >> 8);
    EXPECT_THROW(decoded(codec(), "itu", stream), codecs::framing::StreamError) << bits;
  }
}

// The longer an erasure lasts, the fainter it is; in the end there is silence, and the speech comes back behind it.
TEST(G728Codec, LongErasuresFadeAndSpeechReturns) {
  const Bytes octets = octetsOf("speech");
  const std::size_t cycles = octets.size() / kOctets, from = 400, to = 800;
  ASSERT_GT(cycles, 1500u);
  std::vector<bool> lost(cycles, false);
  std::fill(lost.begin() + from, lost.begin() + to, true);
  for (const int variant : {0, 1}) {
    codecs::framing::Format format{&codec(), "rfc3551", codec().options};
    format.options.variant = variant;
    const Samples clean = decoded(format, octets), heard = decoded(format, octets, 0, {lost, {}});
    const auto energy = [](const Samples& s, std::size_t cycle, std::size_t count) {
      double sum = 0;
      for (std::size_t n = cycle * kCycle; n < (cycle + count) * kCycle; ++n) sum += s[n] * s[n];
      return sum;
    };
    EXPECT_TRUE(std::equal(heard.begin(), heard.begin() + from * kCycle, clean.begin()));
    EXPECT_LT(energy(heard, to - 100, 100), 100 * kCycle * 100.0) << variant;
    EXPECT_GT(energy(heard, 1200, 200), 0.2 * energy(clean, 1200, 200)) << variant;
    EXPECT_LT(energy(heard, 1200, 200), 5 * energy(clean, 1200, 200)) << variant;
  }
}

}  // namespace
}  // namespace test
