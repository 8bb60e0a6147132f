// The G.729 codecs on the standard's streams: ITU-T's test vectors, beginnings of the longer ones; "stress" and "damaged":
// loud, artificial and broken ones. A file *.frames holds for each frame its length in octets, then the octets.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <sstream>

#include "codecs/g729/dtx.h"
#include "codecs/g729/music.h"
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
  for (std::size_t f = 0; f < frames.size(); ++f)
    appendSerial(frames[f], std::ranges::count(lost, f) != 0, stream, frames[f].size() == 15 ? 2 : 0);  // 118 bits
  return stream;
}

// The same behind length octets
Bytes withLengths(const std::vector<Bytes>& frames, const std::vector<double>& lost = {}) {
  Bytes stream;
  for (std::size_t f = 0; f < frames.size(); ++f) {
    const bool isLost = std::ranges::count(lost, f) != 0;
    stream.push_back(static_cast<std::uint8_t>(isLost ? 255 : frames[f].size()));
    if (!isLost) stream.insert(stream.end(), frames[f].begin(), frames[f].end());
  }
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
std::vector<const Codec*> codecsOfAnnexI() { return {&codecNamed("g729d"), &codecNamed("g729e"), &codecNamed("g729i")}; }

bool pauses(const Codec& codec) { return codec.options.dtx != 0; }
// Whether "rfc3551" puts an octet with its length before each frame
bool tellsLengths(const Codec& codec) { return pauses(codec) || codec.everyRate; }

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
    const bool hasPauses = std::ranges::count(frames, std::size_t{0}, &Bytes::size) > static_cast<std::ptrdiff_t>(lost.size());
    const Samples samples = decoded(codec, "itu", serial(frames, lost));
    ASSERT_EQ(samples.size(), 80 * frames.size());
    std::vector<double> checksums;
    for (std::size_t n = 0; n < samples.size(); n += 800)
      checksums.push_back(crc32(std::span(samples).subspan(n, std::min<std::size_t>(800, samples.size() - n))));
    EXPECT_EQ(checksums, golden.out.at("crc")) << golden.label;
    if (tellsLengths(codec)) {
      EXPECT_TRUE(decoded(codec, "rfc3551", withLengths(frames, lost)) == samples) << golden.label;
    } else if (lost.empty() && !hasPauses) {
      EXPECT_TRUE(decoded(codec, "rfc3551", joined(frames)) == samples) << golden.label;
    }
  }
}

// Two and ten to twelve pulses, forward and backward filters, rates that change from frame to frame, pauses at each
TEST(G729Codec, EncodesTheReferenceStreamsOfTheOtherRates) {
  const struct {
    std::string signal, codec;
    bool pauses, switches;
  } streams[] = {{"testfile", "g729d", false, false}, {"speech", "g729e", false, false}, {"fixed35", "g729e", false, false},
                 {"fixed44", "g729e", false, false},  {"music", "g729e", true, false},   {"mix", "g729i", true, true},
                 {"musicswitch", "g729i", true, true}};
  for (const auto& [signal, name, pauses, switches] : streams) {
    const std::string stream = "g729/streams/" + signal + "-" + name;
    const Codec& codec = codecNamed(name);
    codecs::framing::Format format{&codec, "itu", codec.options};
    format.options.dtx = pauses;
    std::vector<int> rates;
    if (switches)
      for (const std::int16_t rate : filePcm(stream + ".rates")) rates.push_back(rate);
    const auto frames = framesOf(fileBytes(stream + ".frames"));
    EXPECT_TRUE(encoded(format, filePcm("g729/streams/" + signal + ".pcm"), rates) == serial(frames)) << stream;
    format.framing = "rfc3551";
    const bool lengths = pauses || switches;
    EXPECT_TRUE(encoded(format, filePcm("g729/streams/" + signal + ".pcm"), rates) ==
                (lengths ? withLengths(frames) : joined(frames)))
        << stream;
  }
}

// Two bits that contradict each other on whether the frame is backward, and the descriptor's last bit, which may be missing
TEST(G729Codec, TakesWhatTheOtherRatesMayBring) {
  const Codec& codec = codecNamed("g729i");
  auto frames = framesOf(fileBytes("g729/streams/speech-g729e.frames"));
  const Samples lost = decoded(codec, "itu", serial(frames, {40}));
  for (const unsigned mode : {0x40u, 0x80u}) {
    auto damaged = frames;
    damaged[40][0] = static_cast<std::uint8_t>((damaged[40][0] & 0x3f) | mode);
    EXPECT_TRUE(decoded(codec, "itu", serial(damaged)) == lost);
    EXPECT_TRUE(decoded(codec, "rfc3551", withLengths(damaged)) == lost);
  }
  EXPECT_FALSE(decoded(codec, "itu", serial(frames)) == lost);

  frames = framesOf(fileBytes("g729/streams/mix-g729i.frames"));
  Bytes stream;
  for (const Bytes& frame : frames) appendSerial(frame, false, stream, frame.size() == 15 ? 2 : frame.size() == 2 ? 1 : 0);
  EXPECT_TRUE(decoded(codec, "itu", stream) == decoded(codec, "itu", serial(frames)));
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
  std::vector<const Codec*> all = codecsOfG729();
  for (const Codec* codec : codecsOfAnnexI()) all.push_back(codec);
  for (const Codec* codec : all) {
    std::vector<Bytes> frames;
    std::vector<double> lost;
    for (int f = 0; f < 6000; ++f) {
      const unsigned kind = random() % 16;
      const auto size = codec->octets[random() % (codec->octets.size() - 1)];
      Bytes octets(kind < 12 ? static_cast<std::size_t>(size) : kind < 14 ? 2 : 0);
      const unsigned mask = f / 1000 % 2 ? random() : ~0u;
      std::ranges::generate(octets, [&] { return static_cast<std::uint8_t>(random() & mask); });
      if (size == 15 && !octets.empty() && random() % 4 != 0)  // as a rule the mode bits agree
        octets[0] = static_cast<std::uint8_t>(octets[0] & 0x80 ? octets[0] | 0xc0 : octets[0] & 0x3f);
      if (random() % 8 == 0) lost.push_back(f);
      frames.push_back(octets);
    }
    const Bytes stream = serial(frames, lost);
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

// Silent frames of given autocorrelations
class Silence {
 public:
  using Lags = std::array<Zpp16s, codecs::g729::kOrder + 1>;
  std::optional<codecs::g729::SidParameters> play(const Lags& lags, int exponent = -22) {  // without voice
    using namespace codecs::g729;
    Correlations correlations{};
    correlations.windowed[0] = 65536 * lags[0];
    correlations.original = lags;
    correlations.exponent = exponent;
    constexpr std::array<Zpp16s, kWindowSize> speech{};
    const bool voice = dtx_.detect(correlations, kInitialLsp, 0, speech);
    EXPECT_FALSE(voice);
    dtx_.accept(correlations, voice);
    std::array<Zpp16s, kPastExcitation + kFrameSize> excitation{};
    return dtx_.playSilence({levinsonDurbin_, maMemory_, taming_, toLsp, kInitialLsp}, excitation.data() + kPastExcitation);
  }
  static codecs::g729::Lsp toLsp(const codecs::g729::Filter& a, const codecs::g729::Lsp& previous) {
    codecs::g729::Lsp lsp;
    EXPECT_EQ(zppsLPCToLSP_G729_16s(a.data(), previous.data(), lsp.data()), zppStsOk);
    return lsp;
  }

 private:
  codecs::g729::Dtx dtx_;
  codecs::g729::LevinsonDurbin levinsonDurbin_;
  codecs::g729::MaMemory maMemory_;
  codecs::g729::Taming taming_;
};

// Lags of a decaying oscillation
Silence::Lags resonance(int energy, double radius, double frequency) {
  Silence::Lags lags;
  for (std::size_t i = 0; i < lags.size(); ++i) {
    const auto lag = static_cast<double>(i);
    lags[i] = static_cast<Zpp16s>(std::lround(energy * std::pow(radius, lag) * std::cos(frequency * lag)));
  }
  return lags;
}

// Annex B clause B.4.1.3: noise has changed when the filter last described leaves 15 % (4855 / 32768) more of it than its own
// filter does. Of white noise the predictor of a first-order process leaves 1 + rho^2 times the energy.
TEST(G729Codec, DescribesNoiseAnewWhenItsResidualHasGrown) {
  const auto describedAgain = [](int energy, double rho) {
    Silence silence;
    // As loud, after its filter, as the white noise that follows
    const int louder = static_cast<int>(std::lround(energy / (1 - rho * rho)));
    for (int f = 0; f < 8; ++f) silence.play(resonance(louder / 2, std::abs(rho), rho < 0 ? M_PI : 0), -21);
    bool again = false;
    for (int f = 0; f < 8; ++f) again |= silence.play({static_cast<Zpp16s>(energy)}).has_value();
    return again;
  };
  for (const int energy : {16384, 24000, 28600, 32000, 32767})
    for (const int sign : {-1, 1}) {
      EXPECT_FALSE(describedAgain(energy, sign * 0.38)) << energy;
      EXPECT_TRUE(describedAgain(energy, sign * 0.39)) << energy;
    }
}

// Sharp resonances have LSFs closer to each other, or to the ends, than a descriptor can tell: Q13 radians.
TEST(G729Codec, SpacesTheSpectrumOfADescriptor) {
  using namespace codecs::g729;
  std::mt19937 random(42);
  const auto between = [&random](double low, double high) { return low + (high - low) * random() / 4294967296.0; };
  for (int trial = 0; trial <= 2000; ++trial) {
    // Near either end, or anywhere
    const auto somewhere = [&](int kind) {
      const double frequency = kind == 0 ? between(0, 0.1) : kind == 1 ? between(3, M_PI) : between(0, M_PI);
      return resonance(15000, between(0.9, 1), frequency);
    };
    Silence::Lags lags = somewhere(trial % 4);
    const Silence::Lags other = somewhere(trial % 3);
    std::ranges::transform(lags, other, lags.begin(), [](Zpp16s x, Zpp16s y) { return static_cast<Zpp16s>(x + y); });
    // One more whose last LSF is set to the end of the range, where a unit more would be another index
    if (trial == 2000) lags = {16543, -16496, 16442, -16315, 16171, -15965, 15736, -15451, 15139, -14779, 14388};
    const auto sid = Silence().play(lags);
    ASSERT_TRUE(sid);

    std::array<Zpp32s, kOrder + 1> autocorrelation;
    std::ranges::transform(lags, autocorrelation.begin(), [](Zpp16s lag) { return lag * 65536; });
    const Lsp lsp = Silence::toLsp(LevinsonDurbin().solve(autocorrelation.data()), kInitialLsp);
    Lsf lsf, quantised;
    ASSERT_EQ(zppsLSPToLSF_G729_16s(lsp.data(), lsf.data()), zppStsOk);
    std::array<int, kOrder> spaced;
    std::ranges::copy(lsf, spaced.begin());
    spaced[0] = std::max(spaced[0], 40);
    for (std::size_t i = 1; i < kOrder; ++i) spaced[i] = std::max(spaced[i], spaced[i - 1] + 642);
    spaced[9] = std::min(spaced[9], 25681);
    if (spaced[8] > spaced[9]) spaced[8] = spaced[9] - 321;
    std::ranges::transform(spaced, lsf.begin(), [](int x) { return static_cast<Zpp16s>(x); });
    MaMemory maMemory;
    std::array<Zpp16s, 3> indices;
    EXPECT_GE(zppsLSFQuant_G729B_16s(lsf.data(), maMemory.data(), quantised.data(), indices.data()), zppStsOk);
    EXPECT_EQ(sid->lsf, indices) << trial;
  }
}

// Annex G clause G.3: what the backward predictor has told of music is forgotten after 151 frames without resonance, that is with
// a second reflection coefficient of 0..0.45 and a mean pitch gain below 0.5.
TEST(G729Codec, ForgetsMusicAfterFlatFrames) {
  using namespace codecs::g729;
  const auto framesOfMusic = [](Zpp16s secondReflection) {
    MusicDetector detector;
    Reflection reflection{};
    int frame = 0;
    const auto take = [&](bool voice) {
      ++frame;
      return detector.take({1 << 20, 0, reflection, voice, voice, 2000, frame, voice, Rate::kbit12});
    };
    while (frame < 64) take(true);
    for (int i = 0; i < 5; ++i) detector.takePitchGain(0);
    reflection[1] = secondReflection;
    int music = 0;
    while (music < 400 && take(false)) ++music;
    return music;
  };
  EXPECT_EQ(framesOfMusic(0), framesOfMusic(14746));
  EXPECT_GE(framesOfMusic(0), 150);
  EXPECT_LE(framesOfMusic(0), 153);  // the mean pitch gain falls first
  EXPECT_EQ(framesOfMusic(-1), 400);
  EXPECT_EQ(framesOfMusic(14747), 400);
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
    const bool voice = detector.take(correlations, flat, 0, speech);
    detector.accept(voice);
    if (voice) lastVoice = f;
  }
  EXPECT_LT(lastVoice, 300);
}

}  // namespace
}  // namespace test
