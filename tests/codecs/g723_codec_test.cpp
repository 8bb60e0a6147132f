// The codec G.723.1 on the standard's streams, whole or their beginnings; "damaged": bit errors and frames of random bits.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "codecs/streams.h"
#include "support/golden.h"

namespace test {
namespace {

using codecs::framing::Bytes;
using codecs::framing::Format;
using codecs::framing::Samples;

const std::string kStreams = "g723/streams/";

Format format(std::string_view name, bool dtx = false, bool switched = false) {
  Format f = codecs::framing::defaultFormat(codecNamed(name));
  f.options.dtx = dtx ? 1 : 0;
  f.options.variant = switched ? 1 : 0;
  return f;
}

GoldenCase goldenCase(const std::string& label) {
  const auto cases = readGolden(TEST_DATA_DIR "/" + kStreams + "decoded.cases");
  return *std::ranges::find(cases, label, &GoldenCase::label);
}

TEST(G723Codec, EncodesTheReferenceStreams) {
  const auto check = [](const std::string& stream, const std::string& speech, const Format& f, std::vector<int> rates = {}) {
    EXPECT_TRUE(encoded(f, filePcm(kStreams + speech + ".pcm"), std::move(rates)) == fileBytes(kStreams + stream + ".bit"))
        << stream;
  };
  check("codewords-6.3", "codewords-6.3", format("g723.1-6.3", false, true));
  check("overload-6.3", "overload-6.3", format("g723.1-6.3", false, true));
  check("overload-5.3", "overload-5.3", format("g723.1-5.3"));
  check("ties-5.3", "ties-5.3", format("g723.1-5.3", false, true));
  check("taming-6.3", "taming-6.3", format("g723.1-6.3"));
  check("pauses-5.3", "pauses", format("g723.1-5.3", true));
  const auto rates = goldenCase("rates").out.at("rate");
  check("pauses-mixed", "pauses", format("g723.1", true), {rates.begin(), rates.end()});
}

TEST(G723Codec, DecodesTheReferenceStreams) {
  for (const auto& golden : readGolden(TEST_DATA_DIR "/" + kStreams + "decoded.cases")) {
    if (golden.label == "rates") continue;
    const Bytes stream = fileBytes(kStreams + golden.label + ".bit");
    codecs::framing::Reception reception;
    if (golden.in.count("lost"))
      for (const double frame : golden.in.at("lost")) {
        reception.lost.resize(static_cast<std::size_t>(frame) + 1);
        reception.lost.back() = true;
      }
    const Samples samples =
        decoded(format("g723.1", false, golden.in.at("postfilter").at(0) == 0), stream, 0, std::move(reception));
    std::vector<double> checksums;
    for (std::size_t n = 0; n < samples.size(); n += 1200)
      checksums.push_back(crc32(std::span(samples).subspan(n, std::min<std::size_t>(1200, samples.size() - n))));
    EXPECT_EQ(checksums, golden.out.at("crc")) << golden.label;
  }
}

// As RTP sends a stream: the frames for which nothing is sent have no octets, so that it decodes to fewer samples.
TEST(G723Codec, LeavesOutOfRtpsFramingWhatIsNotSent) {
  const Samples speech = filePcm(kStreams + "pauses.pcm");
  Format rtp = format("g723.1-5.3", true);
  rtp.framing = "rfc3551";
  const Bytes stream = encoded(rtp, speech), whole = fileBytes(kStreams + "pauses-5.3.bit");
  Bytes sent;
  std::size_t frames = 0;
  for (std::size_t at = 0; at < whole.size();) {
    constexpr std::size_t sizes[] = {24, 20, 4, 1};
    const std::size_t size = sizes[whole[at] & 3];
    if (size > 1) sent.insert(sent.end(), &whole[at], &whole[at] + size), ++frames;
    at += size;
  }
  EXPECT_TRUE(stream == sent);
  EXPECT_LT(stream.size(), whole.size());
  EXPECT_EQ(decoded(rtp, stream).size(), 240 * frames);
  EXPECT_THROW(decoded(rtp, Bytes{3}), codecs::framing::StreamError);
}

// Payloads whose length is none, or contradicts their first two bits; what no encoder sends in frames of the right length is
// concealed, and the stream goes on.
TEST(G723Codec, RefusesPayloadsOfTheWrongLengthOnly) {
  const ZppcCodec* codec = zppcFindCodec("g723.1");
  ZppcDecoder* decoder = zppcDecoderCreate(codec, nullptr, nullptr);
  std::vector<std::int16_t> pcm(240);
  const auto decode = [&](const Bytes& payload) {
    return zppcDecode(decoder, payload.data(), static_cast<int>(payload.size()), pcm.data(), 240);
  };
  constexpr std::size_t sizes[] = {24, 20, 4, 1};
  for (std::size_t size = 1; size < 30; ++size)
    for (std::uint8_t kind = 0; kind < 4; ++kind) {
      const int wanted = size == sizes[kind]                    ? 240
                         : std::ranges::count(sizes, size) != 0 ? static_cast<int>(ZPPC_ERROR_PAYLOAD)
                                                                : static_cast<int>(ZPPC_ERROR_SIZE);
      Bytes payload(size, 0xff);  // forbidden lags
      payload[0] = static_cast<std::uint8_t>(0xfc | kind);
      EXPECT_EQ(decode(payload), wanted) << size << ' ' << int{kind};
    }
  zppcDecoderDestroy(decoder);
}

// A frame that nobody can decode is concealed as a lost one is.
TEST(G723Codec, ConcealsForbiddenFieldsAsLosses) {
  const ZppcCodec* codec = zppcFindCodec("g723.1");
  Bytes stream = encoded(format("g723.1-6.3"), filePcm(kStreams + "pauses.pcm"));
  ZppcDecoder *whole = zppcDecoderCreate(codec, nullptr, nullptr), *broken = zppcDecoderCreate(codec, nullptr, nullptr);
  std::vector<std::int16_t> wanted(240), got(240);
  for (std::size_t frame = 0; 24 * frame < stream.size(); ++frame) {
    std::uint8_t* payload = &stream[24 * frame];
    const bool lost = frame % 5 == 4;
    if (lost && frame % 2 == 0) payload[3] |= 0xf0, payload[4] |= 1;  // the first lag: 124 or more
    if (lost && frame % 2 != 0) payload[4] |= 0xf8, payload[5] |= 3;  // the second one
    ASSERT_EQ(zppcDecode(whole, lost ? nullptr : payload, 24, wanted.data(), 240), 240);
    ASSERT_EQ(zppcDecode(broken, payload, 24, got.data(), 240), 240);
    ASSERT_EQ(got, wanted) << "frame " << frame;
  }
  zppcDecoderDestroy(whole);
  zppcDecoderDestroy(broken);
}

TEST(G723Codec, SurvivesRandomFramesAndLosses) {
  std::mt19937 random(3);
  const ZppcCodec* codec = zppcFindCodec("g723.1");
  ZppcDecoder* decoder = zppcDecoderCreate(codec, nullptr, nullptr);
  std::vector<std::int16_t> pcm(240);
  for (int frame = 0; frame < 3000; ++frame) {
    Bytes payload(24);
    for (auto& octet : payload) octet = static_cast<std::uint8_t>(random());
    constexpr int sizes[] = {24, 20, 4, 1};
    const bool lost = random() % 8 == 0, nothing = random() % 16 == 0;
    ASSERT_EQ(zppcDecode(decoder, lost ? nullptr : payload.data(), nothing ? 0 : sizes[payload[0] & 3], pcm.data(), 240), 240);
  }
  zppcDecoderDestroy(decoder);
}

}  // namespace
}  // namespace test
