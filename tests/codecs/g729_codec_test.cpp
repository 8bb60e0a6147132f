// The G.729 codecs on the standard's streams: ITU-T's test vectors, beginnings of the longer ones; "stress" and "damaged":
// loud, artificial and broken ones. A file *.frames holds for each frame its length in octets, then the octets.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <sstream>

#include "codecs/g729/vad.h"
#include "codecs/streams.h"
#include "support/golden.h"

namespace test {
namespace {

using codecs::framing::Bytes;
using codecs::framing::Samples;

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

double powerOf(std::span<const std::int16_t> samples) {
  double sum = 0;
  for (const double s : samples) sum += s * s;
  return sum;
}

TEST(G729Codec, EncodesTheReferenceStreamsInBothFramings) {
  const std::vector<std::string> talking = {"algthm", "fixed", "lsp", "pitch", "speech", "tame", "stress"};
  const std::vector<std::string> pausing = {"tstseq1", "tstseq3"};
  for (const Codec* codec : codecsOfG729())
    for (const std::string& signal : pauses(*codec) ? pausing : talking) {
      const std::string name = "g729/streams/" + signal;
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
TEST(G729Codec, ConcealsWhatIsMarkedAsLost) {
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
    if (!pauses(*codec)) continue;
    Bytes lengths;  // with the length 255 for the lost frame
    for (std::size_t f = 0; f < frames.size(); ++f) {
      lengths.push_back(f == 20 ? 255 : 10);
      if (f != 20) lengths.insert(lengths.end(), frames[f].begin(), frames[f].end());
    }
    EXPECT_TRUE(decoded(*codec, "rfc3551", lengths, 7) == erased) << codec->name;
  }
}

TEST(G729Codec, RefusesFramesOfAnotherSize) {
  for (const Codec* codec : codecsOfG729()) {
    for (const std::size_t octets : {1u, 3u, 8u, 11u, 15u})
      EXPECT_THROW(decoded(*codec, "itu", serial({Bytes(octets)})), codecs::framing::StreamError)
          << codec->name << ' ' << octets;
    if (!pauses(*codec)) continue;
    for (const std::uint8_t length : {1, 3, 9, 11, 254})
      EXPECT_THROW(decoded(*codec, "rfc3551", Bytes(300, length)), codecs::framing::StreamError)
          << codec->name << ' ' << int{length};
  }
}

// Frames of every kind in any order must not make a call fail; the sanitizers watch for accesses outside the buffers and for
// overflows.
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
    const Samples samples = decoded(*codec, "itu", stream);
    EXPECT_EQ(samples.size(), 80u * 6000) << codec->name;
    EXPECT_TRUE(decoded(*codec, "itu", stream, 99) == samples) << codec->name;
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
    const auto power = [](const Samples& samples) { return powerOf(std::span(samples).subspan(samples.size() / 2)); };
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

TEST(G729Codec, RepeatsTheSpeechOfLostFramesAndFadesOut) {
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
    EXPECT_GT(loudest(60, 62), loudest(50, 60) / 8) << codec->name;
    EXPECT_LT(loudest(90, 100), loudest(50, 60) / 8) << codec->name;
  }
}

// One bit stream for all: a decoder hears what the other's encoder meant, but for the postfilter.
TEST(G729Codec, MainBodyAndAnnexAUnderstandEachOther) {
  const Samples speech = filePcm("g729/streams/speech.pcm");
  const Codec* coders[] = {&codecNamed("g729"), &codecNamed("g729a")};
  for (int i = 0; i < 2; ++i) {
    const Bytes stream = encoded(*coders[i], "rfc3551", speech);
    const Samples own = decoded(*coders[i], "rfc3551", stream), other = decoded(*coders[1 - i], "rfc3551", stream);
    Samples difference;
    for (std::size_t n = 0; n < own.size(); ++n) difference.push_back(static_cast<std::int16_t>(own[n] - other[n]));
    EXPECT_LT(powerOf(difference), powerOf(own) / 4) << coders[i]->name;
  }
}

// Days of noise: no counter runs out, and what once was taken for noise stays noise.
TEST(G729Codec, KeepsSilentThroughLongNoise) {
  std::mt19937 random(5);
  codecs::g729::VoiceActivityDetector detector;
  std::vector<std::pair<codecs::g729::Correlations, std::array<Zpp16s, 240>>> frames(50);
  for (auto& [correlations, speech] : frames) {
    for (Zpp16s& s : speech) s = static_cast<Zpp16s>(random() % 401 - 200);
    correlations = codecs::g729::autocorrelate(speech);
  }
  const codecs::g729::Lsf flat = {1489, 2979, 4468, 5958, 7447, 8937, 10426, 11916, 13405, 14894};
  int lastVoice = 0;
  for (int f = 1; f < 70000; ++f) {
    const auto& [correlations, speech] = frames[random() % frames.size()];
    if (detector.take(correlations, flat, 0, speech)) lastVoice = f;
  }
  EXPECT_LT(lastVoice, 300);
}

}  // namespace
}  // namespace test
