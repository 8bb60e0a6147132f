// AMR-WB on streams: all rates, pauses, changes of rate, homing frames and the three framings (amrwb_decoder_test.cpp has
// damage and losses). What decoders give is compared frame by frame with checksums of the standard's output.
#include <gtest/gtest.h>

#include <algorithm>

#include "codecs/streams.h"
#include "support/golden.h"
#include "zppcodecs.h"

namespace test {
namespace {

using codecs::framing::Bytes;
using codecs::framing::Format;
using codecs::framing::Samples;
using codecs::framing::StreamError;

constexpr std::size_t kFrame = 320, kMagic = 9;
constexpr const char* kNames[] = {"amr-wb-6.60",  "amr-wb-8.85",  "amr-wb-12.65", "amr-wb-14.25", "amr-wb-15.85",
                                  "amr-wb-18.25", "amr-wb-19.85", "amr-wb-23.05", "amr-wb-23.85"};

std::string path(const std::string& name) { return "amrwb/streams/" + name; }
Format format(const char* name, std::string_view framing, bool dtx) {
  const Codec& codec = codecNamed(name);
  Format format{&codec, framing, codec.options};
  format.options.dtx = dtx;
  return format;
}
GoldenCase caseOf(const std::string& label) {
  for (auto& golden : readGolden(TEST_DATA_DIR "/amrwb/streams/decoded.cases"))
    if (golden.label == label) return golden;
  throw std::runtime_error("no case " + label);
}
void compare(const Samples& samples, const std::string& label) {
  const auto expected = caseOf(label).out.at("crc");
  ASSERT_EQ(samples.size(), expected.size() * kFrame) << label;
  for (std::size_t f = 0; f < expected.size(); ++f)
    ASSERT_EQ(crc32(std::span(samples).subspan(f * kFrame, kFrame)), expected[f]) << label << ", frame " << f;
}

TEST(AmrWbCodec, CodesSpeechAtAllRates) {
  const Samples speech = filePcm(path("speech.pcm"));
  for (int mode = 0; mode < 9; ++mode) {
    const std::string label = "mode" + std::to_string(mode);
    const Bytes expected = fileBytes(path(label + ".awb"));
    EXPECT_TRUE(encoded(format(kNames[mode], "rfc4867", true), speech) == expected) << label;
    compare(decoded(format("amr-wb", "rfc4867", false), expected, mode == 0 ? 1 : 0), label);
  }
}

// Loud tones out of near silence as well: the codebook search then meets energies below 0.
TEST(AmrWbCodec, SendsDescriptorsInPausesWhileTheRateChanges) {
  const std::vector<int> rates = {8, 8, 5, 8, 8, 8, 8, 8, 5, 0, 0, 0, 2, 2, 2, 2, 2, 2, 2, 2, 8, 8, 8,
                                  8, 8, 8, 8, 8, 0, 0, 0, 0, 0, 0, 0, 0, 2, 2, 2, 2, 2, 2, 2, 2, 2, 1};
  const Samples speech = filePcm(path("pauses.pcm"));
  EXPECT_TRUE(encoded(format("amr-wb", "rfc4867", true), speech, rates) == fileBytes(path("pauses.awb")));
}

TEST(AmrWbCodec, HomingFramesResetBothSides) {
  const Bytes expected = fileBytes(path("homing_frames.awb"));
  EXPECT_TRUE(encoded(codecNamed("amr-wb-12.65"), "rfc4867", filePcm(path("homing_frames.pcm"))) == expected);
  compare(decoded(codecNamed("amr-wb"), "rfc4867", expected), "homing_frames");
}

// Frames that the serial format marks as lost, and comfort noise of another rate than the speech before, which only the words
// of the test program tell
TEST(AmrWbCodec, TakesLossesAndRatesFromTheFile) {
  compare(decoded(codecNamed("amr-wb"), "itu", fileBytes(path("lost.itu")), 7), "lost");
  compare(decoded(codecNamed("amr-wb"), "words", fileBytes(path("noise_modes.words"))), "noise_modes");
}

TEST(AmrWbCodec, FramingsHoldTheSameFrames) {
  const Bytes words = encoded(codecNamed("amr-wb-6.60"), "words", filePcm(path("speech.pcm"))),
              expected = fileBytes(path("mode0.words"));
  ASSERT_GT(words.size(), expected.size());
  EXPECT_TRUE(std::equal(expected.begin(), expected.end(), words.begin()));
  const Samples pauses = filePcm(path("pauses.pcm"));
  const auto through = [&](std::string_view framing) {
    const Format f = format("amr-wb-12.65", framing, true);
    return decoded(f, encoded(f, pauses));
  };
  const Samples stored = through("rfc4867");
  EXPECT_TRUE(through("words") == stored);
  EXPECT_TRUE(through("itu") == stored);
}

// The test program's words have a descriptor's bits also where it is not sent; its storage format has them nowhere else.
TEST(AmrWbCodec, WordsHoldTheNoiseThatIsNotSent) {
  const Bytes words = encoded(format("amr-wb-6.60", "words", true), filePcm(path("pauses.pcm")));
  int unsent = 0, first = 0;
  for (std::size_t at = 0; at < words.size();) {
    const unsigned type = words[at + 2];
    const std::size_t bits = type == 0 ? 132 : 35;
    first += type == 1 ? 1 : 0;
    if (type == 1 || type == 3) {
      const auto ones = std::count(words.begin() + static_cast<std::ptrdiff_t>(at) + 6,
                                   words.begin() + static_cast<std::ptrdiff_t>(at + 6 + 2 * bits), 127);
      EXPECT_GT(ones, 3);
      ++unsent;
    }
    at += 2 * (3 + bits);
  }
  EXPECT_EQ(first, 1);
  EXPECT_GT(unsent, 20);
}

TEST(AmrWbCodec, RefusesWhatIsNoStream) {
  const auto refuses = [](std::string_view framing, Bytes stream) {
    EXPECT_THROW(decoded(codecNamed("amr-wb"), framing, stream), StreamError) << framing << ", " << stream.size() << " bytes";
  };
  Bytes stored = fileBytes(path("mode2.awb"));
  refuses("rfc4867", Bytes(stored.begin() + 1, stored.end()));
  refuses("rfc4867", Bytes(stored.begin(), stored.end() - 1));
  Bytes words = fileBytes(path("mode0.words"));
  for (const auto& [at, value] : {std::pair<std::size_t, int>{0, 0x22}, {2, 4}, {4, 9}, {6, 1}}) {
    Bytes wrong = words;
    wrong[at] = static_cast<std::uint8_t>(value);
    refuses("words", wrong);
  }
  Bytes serial = fileBytes(path("lost.itu"));
  Bytes wrongFirst = serial, wrongCount = serial;
  wrongFirst[0] = 0x22;
  wrongCount[2] = 100, wrongCount[3] = 0;
  refuses("itu", wrongFirst);
  refuses("itu", wrongCount);
}

// Octets that are no payload leave the stream as it is.
TEST(AmrWbCodec, RefusesWhatIsNoPayload) {
  const Bytes stored = fileBytes(path("mode2.awb"));
  const std::span<const std::uint8_t> frames = std::span(stored).subspan(kMagic);
  ZppcDecoder *plain = zppcDecoderCreate(zppcFindCodec("amr-wb"), nullptr, nullptr),
              *disturbed = zppcDecoderCreate(zppcFindCodec("amr-wb"), nullptr, nullptr);
  Samples expected(kFrame), pcm(kFrame, 77);
  for (std::size_t f = 0; f < 6; ++f) {
    const auto payload = frames.subspan(33 * f, 33);
    ASSERT_EQ(zppcDecode(plain, payload.data(), 33, expected.data(), 320), 320);
    Bytes wrong(payload.begin(), payload.end());
    wrong[0] = 3 << 3;  // of another rate, which has more octets
    const Samples before = pcm;
    EXPECT_EQ(zppcDecode(disturbed, wrong.data(), 33, pcm.data(), 320), ZPPC_ERROR_PAYLOAD);
    EXPECT_EQ(zppcDecode(disturbed, wrong.data(), 32, pcm.data(), 320), ZPPC_ERROR_SIZE);
    EXPECT_TRUE(pcm == before);
    ASSERT_EQ(zppcDecode(disturbed, payload.data(), 33, pcm.data(), 320), 320);
    ASSERT_TRUE(pcm == expected);
  }
  zppcDecoderDestroy(plain);
  zppcDecoderDestroy(disturbed);
}

}  // namespace
}  // namespace test
