// GSM full rate on streams: the standard's sequences and stress signals, pauses, homing, lost frames, and the three framings.
#include <gtest/gtest.h>

#include <algorithm>

#include "codecs/gsmfr/frame.h"
#include "codecs/streams.h"
#include "support/golden.h"

namespace test {
namespace {

using codecs::framing::Bytes;
using codecs::framing::Format;
using codecs::framing::Samples;

constexpr std::size_t kFrame = 160, kPayload = 33;

const Codec& codec() { return codecNamed("gsm-fr"); }
Format format(std::string_view framing, bool dtx) { return {&codec(), framing, {.bitRate = 13000, .dtx = dtx, .variant = 0}}; }
std::string path(const std::string& name) { return "gsmfr/streams/" + name; }

TEST(GsmFrCodec, EncodesSpeechAndStressSignals) {
  EXPECT_TRUE(encoded(codec(), "rfc3551", filePcm(path("stress.pcm"))) == fileBytes(path("stress.gsm")));
  EXPECT_TRUE(encoded(codec(), "wav49", filePcm(path("speech.pcm"))) == fileBytes(path("speech.wav49")));
}

// The official sequences of the voice activity detector, with its flag and that of speech frames
TEST(GsmFrCodec, SendsDescriptorsInPauses) {
  for (const std::string name : {"adapt_i1", "pitch1", "pole1", "spec_a1"}) {
    const Samples speech = filePcm(path(name + ".pcm"));
    EXPECT_TRUE(encoded(format("words", true), speech) == fileBytes(path(name + ".words"))) << name;
    EXPECT_FALSE(encoded(format("words", false), speech) == fileBytes(path(name + ".words"))) << name;
  }
}

TEST(GsmFrCodec, DecodesEveryValueHomingLossesAndPauses) {
  for (const auto& golden : readGolden(TEST_DATA_DIR "/gsmfr/streams/decoded.cases")) {
    const bool words = golden.label == "every_value" || golden.label == "homing";
    const bool dtx = golden.label.starts_with("dtx");
    const Bytes stream = fileBytes(path(golden.label + (words ? ".words" : ".gsm")));
    const auto& expected = golden.out.at("crc");
    const auto compare = [&](const Samples& samples, const char* how) {
      ASSERT_EQ(samples.size(), expected.size() * kFrame);
      for (std::size_t f = 0; f < expected.size(); ++f)
        ASSERT_EQ(crc32(std::span(samples).subspan(f * kFrame, kFrame)), expected[f]) << golden.label << how << f;
    };
    compare(decoded(format(words ? "words" : "rfc3551", dtx), stream), ", frame ");
    if (!golden.in.count("lost")) continue;
    // The same frames lost by the user's word instead of the stream's
    codecs::framing::Reception reception{std::vector<bool>(expected.size(), false), {}};
    Bytes filled = stream;
    for (const double frame : golden.in.at("lost")) {
      reception.lost[static_cast<std::size_t>(frame)] = true;
      std::copy_n(stream.begin(), kPayload,
                  filled.begin() + static_cast<std::ptrdiff_t>(kPayload * static_cast<std::size_t>(frame)));
    }
    compare(decoded(format("rfc3551", dtx), filled, 0, reception), ", declared lost, frame ");
  }
}

// A homing frame brings both sides to their start: what follows is coded as at the beginning of a stream.
TEST(GsmFrCodec, StartsAnewBehindHomingFrames) {
  const Samples speech = filePcm(path("adapt_i1.pcm"));
  for (const bool dtx : {false, true}) {
    Samples homed = speech;
    homed.insert(homed.end(), 2 * kFrame, 8);
    homed.insert(homed.end(), speech.begin(), speech.end());
    const Bytes once = encoded(format("rfc3551", dtx), speech), twice = encoded(format("rfc3551", dtx), homed);
    const auto second = once.size() + 2 * kPayload;
    EXPECT_TRUE(std::equal(once.begin(), once.end(), twice.begin() + static_cast<std::ptrdiff_t>(second)));
    std::vector<std::uint8_t> homing(kPayload);
    codecs::gsmfr::pack(codecs::gsmfr::kHomingFrame, homing.data());
    EXPECT_TRUE(std::equal(homing.begin(), homing.end(), twice.begin() + static_cast<std::ptrdiff_t>(once.size() + kPayload)));
    const Samples heard = decoded(format("rfc3551", dtx), twice), heardOnce = decoded(format("rfc3551", dtx), once);
    EXPECT_TRUE(std::equal(heardOnce.begin(), heardOnce.end(), heard.end() - static_cast<std::ptrdiff_t>(speech.size())));
  }
}

TEST(GsmFrCodec, CarriesTheSameFramesInEveryFraming) {
  const Samples speech = filePcm(path("stress.pcm"));
  const Samples expected = decoded(codec(), "rfc3551", fileBytes(path("stress.gsm")));
  for (const auto& framing : codec().framings)
    EXPECT_TRUE(decoded(codec(), framing.name, encoded(codec(), framing.name, speech)) == expected) << framing.name;
  // Bits above a parameter's width do not count.
  Bytes words = encoded(codec(), "words", speech);
  for (std::size_t n = 0; n < words.size(); n += 2) words[n + 1] ^= static_cast<std::uint8_t>(0x80 | (n % 152 < 16 ? 0x40 : 1));
  EXPECT_TRUE(decoded(codec(), "words", words) == expected);
  // An odd last frame gets one of silence to make up a pair.
  const auto odd = std::span(speech).first(3 * kFrame);
  Samples padded(odd.begin(), odd.end());
  padded.resize(4 * kFrame);
  EXPECT_TRUE(encoded(codec(), "wav49", odd) == encoded(codec(), "wav49", padded));
  EXPECT_EQ(encoded(codec(), "wav49", odd).size(), 130u);
}

TEST(GsmFrCodec, TakesForeignSignaturesForLostFramesAndRefusesTruncatedFiles) {
  const Bytes stream = fileBytes(path("stress.gsm"));
  Bytes foreign = stream, zeros = stream;
  foreign[2 * kPayload] ^= 0x10;
  std::fill_n(zeros.begin() + 2 * kPayload, kPayload, std::uint8_t{0});
  const Samples heard = decoded(codec(), "rfc3551", foreign);
  EXPECT_TRUE(heard == decoded(codec(), "rfc3551", zeros));
  EXPECT_FALSE(heard == decoded(codec(), "rfc3551", stream));
  for (const auto& framing : codec().framings) {
    Bytes cut = encoded(codec(), framing.name, filePcm(path("speech.pcm")));
    for (const std::size_t missing : {1, 32, 64}) {
      if (framing.name == "rfc3551" && missing > 32) continue;
      EXPECT_THROW(decoded(codec(), framing.name, std::span(cut).first(cut.size() - missing)), codecs::framing::StreamError);
    }
  }
}

// Through the C API a payload without signature is refused and changes nothing; payloads without octets are conceivable only
// as pauses, and sound like lost frames.
TEST(GsmFrCodec, RefusesPayloadsWithoutSignature) {
  const Bytes stream = fileBytes(path("stress.gsm"));
  ZppcDecoder* const disturbed = zppcDecoderCreate(codec().codec, nullptr, nullptr);
  ZppcDecoder* const other = zppcDecoderCreate(codec().codec, nullptr, nullptr);
  Samples pcm(kFrame), expected(kFrame);
  const auto decode = [](ZppcDecoder* decoder, const std::uint8_t* payload, int octets, Samples& to) {
    return zppcDecode(decoder, payload, octets, to.data(), static_cast<int>(kFrame));
  };
  for (std::size_t f = 0; f < 20; ++f) {
    Bytes payload(stream.begin() + static_cast<std::ptrdiff_t>(f * kPayload),
                  stream.begin() + static_cast<std::ptrdiff_t>((f + 1) * kPayload));
    for (int nibble = 0; nibble < 16; ++nibble) {
      if (nibble == 13) continue;
      Bytes wrong = payload;
      wrong[0] = static_cast<std::uint8_t>((wrong[0] & 15) | nibble << 4);
      pcm.assign(kFrame, -77);
      EXPECT_EQ(decode(disturbed, wrong.data(), 33, pcm), ZPPC_ERROR_PAYLOAD);
      EXPECT_EQ(pcm, Samples(kFrame, -77));
    }
    const bool absent = f % 5 == 4;
    ASSERT_EQ(decode(disturbed, payload.data(), absent ? 0 : 33, pcm), static_cast<int>(kFrame));
    ASSERT_EQ(decode(other, absent ? nullptr : payload.data(), 33, expected), static_cast<int>(kFrame));
    EXPECT_EQ(pcm, expected);
  }
  zppcDecoderDestroy(disturbed);
  zppcDecoderDestroy(other);
}

}  // namespace
}  // namespace test
