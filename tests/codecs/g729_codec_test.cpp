// The G.729 codecs on the standard's streams: ITU-T's test vectors, beginnings of the longer ones; "stress" and "damaged":
// loud, artificial and broken ones. A file *.frames holds for each frame its length in octets, then the octets.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <sstream>

#include "codecs/streams.h"
#include "support/golden.h"

namespace test {
namespace {

using codecs::Bytes;
using codecs::Codec;
using codecs::Samples;

std::vector<Bytes> framesOf(const Bytes& file) {
  std::vector<Bytes> frames;
  for (auto at = file.begin(); at != file.end();) {
    const auto octets = at + 1, end = octets + *at;
    frames.emplace_back(octets, end);
    at = end;
  }
  return frames;
}

Bytes serial(const std::vector<Bytes>& frames, const std::vector<double>& lost = {}) {
  Bytes stream;
  for (std::size_t f = 0; f < frames.size(); ++f) appendSerial(frames[f], std::ranges::count(lost, f) != 0, stream);
  return stream;
}

Bytes joined(const std::vector<Bytes>& frames) {
  Bytes stream;
  for (const Bytes& frame : frames) stream.insert(stream.end(), frame.begin(), frame.end());
  return stream;
}

std::vector<const Codec*> codecsOfG729() {
  return {&codecNamed("g729"), &codecNamed("g729a"), &codecNamed("g729b"), &codecNamed("g729ab")};
}

bool pauses(const Codec& codec) { return codec.name.back() == 'b'; }

TEST(G729Codec, EncodesTheReferenceStreamsInBothFramings) {
  for (const char* signal : {"algthm", "fixed", "lsp", "pitch", "speech", "tame", "tstseq2", "stress"})
    for (const Codec* codec : codecsOfG729()) {
      if (pauses(*codec) != (std::string_view(signal).starts_with("ts") || std::string_view(signal).starts_with("st")))
        continue;
      const std::string name = std::string("g729/streams/") + signal;
      const Samples speech = filePcm(name + ".pcm");
      const Bytes file = fileBytes(name + "-" + std::string(codec->name) + ".frames");
      EXPECT_TRUE(encoded(*codec, "itu", speech) == serial(framesOf(file))) << name << ' ' << codec->name;
      EXPECT_TRUE(encoded(*codec, "rfc3551", speech) == (pauses(*codec) ? file : joined(framesOf(file))))
          << name << ' ' << codec->name;
    }
}

// With erased frames, flipped bits, wrong parity, and clamped synthesis
TEST(G729Codec, DecodesTheReferenceStreams) {
  for (const auto& golden : readGolden(TEST_DATA_DIR "/g729/streams/decoded.cases")) {
    std::istringstream label(golden.label);
    std::string name, stream;
    label >> name >> stream;
    const Codec& codec = codecNamed(name);
    const Bytes file = fileBytes("g729/streams/" + stream + ".frames");
    const auto frames = framesOf(file);
    const auto lost = golden.in.count("lost") ? golden.in.at("lost") : std::vector<double>{};
    const Samples samples = decoded(codec, "itu", serial(frames, lost));
    ASSERT_EQ(samples.size(), 80 * frames.size());
    std::vector<double> checksums;
    for (std::size_t n = 0; n < samples.size(); n += 800)
      checksums.push_back(crc32(std::span(samples).subspan(n, std::min<std::size_t>(800, samples.size() - n))));
    EXPECT_EQ(checksums, golden.out.at("crc")) << golden.label;
    if (lost.empty()) {
      EXPECT_TRUE(decoded(codec, "rfc3551", pauses(codec) ? file : joined(frames)) == samples) << golden.label;
    }
  }
}

// A bit that is neither 0 nor 1, and a wrong first word, make a frame an erased one, whatever its bits.
TEST(G729Codec, TakesDamagedWordsForErasedFrames) {
  for (const Codec* codec : codecsOfG729()) {
    auto frames = framesOf(fileBytes("g729/streams/speech-g729a.frames"));
    frames.resize(30);
    const Bytes good = serial(frames);
    Bytes zeroWord = good;
    zeroWord[164 * 20 + 100] = 0;
    const Samples erased = decoded(*codec, "itu", serial(frames, {20}));
    EXPECT_TRUE(decoded(*codec, "itu", zeroWord) == erased) << codec->name;
    EXPECT_FALSE(decoded(*codec, "itu", good) == erased) << codec->name;
    frames[20].assign(10, 0xff);
    EXPECT_TRUE(decoded(*codec, "itu", serial(frames, {20})) == erased) << codec->name;
  }
}

TEST(G729Codec, RefusesFramesOfAnotherSize) {
  for (const Codec* codec : codecsOfG729()) {
    for (const std::size_t octets : {1u, 3u, 8u, 11u, 15u})
      EXPECT_THROW(decoded(*codec, "itu", serial({Bytes(octets)})), codecs::StreamError) << codec->name << ' ' << octets;
    if (!pauses(*codec)) continue;
    for (const std::uint8_t length : {1, 3, 9, 11, 255})
      EXPECT_THROW(decoded(*codec, "rfc3551", Bytes(300, length)), codecs::StreamError) << codec->name << ' ' << int{length};
  }
}

// Frames of every kind in any order: the sanitizers watch for accesses outside the buffers and for overflows.
TEST(G729Codec, SurvivesRandomFrames) {
  std::mt19937 random(729);
  for (const Codec* codec : codecsOfG729()) {
    Bytes stream;
    for (int f = 0; f < 6000; ++f) {
      const unsigned kind = random() % 16;
      Bytes octets(kind < 12 ? 10 : kind < 14 ? 2 : 0);
      const unsigned mask = f / 1000 % 2 ? random() : ~0u;
      std::ranges::generate(octets, [&] { return static_cast<std::uint8_t>(random() & mask); });
      appendSerial(octets, random() % 8 == 0, stream);
    }
    EXPECT_EQ(decoded(*codec, "itu", stream).size(), 80u * 6000) << codec->name;
  }
}

TEST(G729Codec, PausesInSilenceAndHoldsTheNoiseLevel) {
  for (const Codec* codec : codecsOfG729()) {
    if (!pauses(*codec)) continue;
    std::mt19937 random(3);
    const auto noise = [&](int frames) {
      Samples signal;
      for (int n = 0; n < 80 * frames; ++n) signal.push_back(static_cast<std::int16_t>(random() % 401 - 200));
      return signal;
    };
    Samples signal = noise(500);
    const auto frames = framesOf(encoded(*codec, "rfc3551", signal));
    const auto sent = [&](std::size_t octets) { return std::ranges::count(frames, octets, &Bytes::size); };
    EXPECT_LT(sent(10), 150) << codec->name;
    EXPECT_GT(sent(2), 0) << codec->name;
    EXPECT_GT(sent(0), 200) << codec->name;

    const Samples heard = decoded(*codec, "itu", serial(frames));
    const auto power = [](const Samples& samples) {
      double sum = 0;
      for (std::size_t n = samples.size() / 2; n < samples.size(); ++n) sum += samples[n] * samples[n];
      return sum;
    };
    EXPECT_GT(power(heard), power(signal) / 4) << codec->name;
    EXPECT_LT(power(heard), power(signal) * 4) << codec->name;

    // A lost descriptor leaves noise, not silence and not speech.
    std::vector<double> lost;
    for (std::size_t f = 0; f < frames.size(); ++f)
      if (frames[f].size() == 2) lost.push_back(static_cast<double>(f));
    const Samples guessed = decoded(*codec, "itu", serial(frames, lost));
    EXPECT_GT(power(guessed), power(signal) / 100) << codec->name;
    EXPECT_LT(power(guessed), power(signal) * 100) << codec->name;
  }
}

// What a decoder without the descriptor would hear: speech that fades, then silence in Annex A's manner
TEST(G729Codec, FadesOutWhenFramesKeepMissing) {
  for (const Codec* codec : codecsOfG729()) {
    auto frames = framesOf(fileBytes("g729/streams/speech-g729a.frames"));
    frames.resize(100);
    std::vector<double> lost;
    for (int f = 60; f < 100; ++f) lost.push_back(f);
    const Samples samples = decoded(*codec, "itu", serial(frames, lost));
    const auto loudest = [&](std::size_t from, std::size_t to) {
      const auto part = std::span(samples).subspan(80 * from, 80 * (to - from));
      return std::abs(*std::ranges::max_element(part, {}, [](int s) { return std::abs(s); }));
    };
    EXPECT_LT(loudest(90, 100), std::max(loudest(50, 60) / 8, 16)) << codec->name;
  }
}

}  // namespace
}  // namespace test
