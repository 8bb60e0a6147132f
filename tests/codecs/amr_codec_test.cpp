// GSM-AMR on streams of 3GPP TS 26.073's programs, by checksums: all rates, both detectors, rate switching, homing, losses and
// receive types.
#include <gtest/gtest.h>

#include <random>

#include "codecs/amr/amr.h"
#include "codecs/streams.h"

namespace test {
namespace {

using codecs::framing::Bytes;
using codecs::framing::Format;
using codecs::framing::Samples;
using codecs::framing::StreamError;

std::string pathOf(const std::string& name) { return "amr/streams/" + name; }

std::uint32_t crcOf(const Bytes& bytes) {
  Samples words;
  for (std::size_t n = 0; n + 1 < bytes.size(); n += 2)
    words.push_back(static_cast<std::int16_t>(bytes[n] | bytes[n + 1] << 8));
  std::uint32_t crc = ~crc32(words);
  if (bytes.size() % 2 == 0) return ~crc;
  crc ^= bytes.back();
  for (int bit = 0; bit < 8; ++bit) crc = crc >> 1 ^ (crc & 1 ? 0xedb88320 : 0);
  return ~crc;
}

std::vector<int> numbersOf(const std::string& name) {
  const Bytes bytes = fileBytes(pathOf(name));
  return std::vector<int>(bytes.begin(), bytes.end());
}

Format formatOf(std::string_view name, std::string_view framing, std::string_view detector) {
  const Codec& codec = codecNamed(name);
  Format format = {&codec, framing, codec.options};
  format.options.dtx = detector.empty() ? 0 : 1;
  format.options.variant = detector == "vad2" ? 1 : 0;
  return format;
}

struct Coded {
  const char *codec, *signal, *detector;
  std::uint32_t stream, speech;  // checksums; speech 0: the signal is for the encoder only
};

TEST(AmrCodec, CodesAndDecodesAsTheReferenceDoes) {
  static constexpr Coded kCoded[] = {
      {"amr-4.75", "speech", "", 0x702768f4, 0xbc727761},
      {"amr-4.75", "speech", "vad1", 0x62ddea37, 0x12b23c91},
      {"amr-5.15", "speech", "", 0x2a0004c1, 0x12c1afee},
      {"amr-5.15", "speech", "vad2", 0x0ea44020, 0xe523faa6},
      {"amr-5.90", "speech", "", 0x218381db, 0x3b846468},
      {"amr-5.90", "speech", "vad2", 0xdd757f8e, 0x5a347f6a},
      {"amr-6.70", "speech", "", 0x37785aa0, 0xcbff095f},
      {"amr-6.70", "speech", "vad1", 0x602338d5, 0xf1ce093f},
      {"amr-7.40", "speech", "", 0x2328d916, 0x78fe8b1c},
      {"amr-7.40", "speech", "vad2", 0x2e263c1a, 0x0695f40a},
      {"amr-7.95", "speech", "", 0x93de8a80, 0x43a0547a},
      {"amr-7.95", "speech", "vad1", 0x2097d758, 0x435af68b},
      {"amr-10.2", "speech", "", 0x22b3cd78, 0xc8652bb4},
      {"amr-10.2", "speech", "vad2", 0x257f1cef, 0xb5c9a060},
      {"amr-12.2", "speech", "", 0x6c85cefc, 0x88b21ff1},
      {"amr-12.2", "speech", "vad1", 0x0bcec879, 0x159f0d7a},
      {"amr-12.2", "speech", "vad2", 0x3a81f5d2, 0x04abccbf},
      {"amr", "speech", "", 0xa5f57d5e, 0xeb795997},
      {"amr", "speech", "vad1", 0x59ed3236, 0x3b8005c4},
      {"amr", "speech", "vad2", 0x14ff219d, 0x48446747},
      {"amr-4.75", "homing", "", 0x80478818, 0xde444355},
      {"amr-5.15", "homing", "", 0xcfd11759, 0x8a8aaeb0},
      {"amr-7.95", "homing", "", 0x3b08c4b4, 0x6e43e5b4},
      {"amr-12.2", "homing", "", 0x1e4d508a, 0x630c7d43},
      {"amr-10.2", "tone", "vad2", 0x69f9ca89, 0},
      {"amr-5.90", "tone", "vad2", 0x21f00442, 0},
      {"amr-6.70", "tone", "vad2", 0x1daf9f7d, 0},
      {"amr-7.95", "tone", "vad2", 0x880619e1, 0},
      {"amr-12.2", "gap", "", 0xef54003e, 0},
      {"amr-6.70", "gap", "", 0x1d05ca83, 0},
  };
  for (const Coded& c : kCoded) {
    const std::string label = std::string(c.codec) + ' ' + c.signal + ' ' + c.detector;
    const Format format = formatOf(c.codec, "rfc4867", c.detector);
    const auto rates = format.entry->everyRate ? numbersOf("speech.modes") : std::vector<int>{};
    const Bytes stream = encoded(format, filePcm(pathOf(std::string(c.signal) + ".pcm")), rates);
    EXPECT_EQ(crcOf(stream), c.stream) << label;
    if (c.speech != 0) {
      EXPECT_EQ(crc32(decoded(format, stream)), c.speech) << label;
    }
  }
}

// The standard's own files, whose silence holds descriptors that are not sent
TEST(AmrCodec, ReadsAndWritesTheStandardsWords) {
  const Samples speech = filePcm(pathOf("check.pcm"));
  for (const auto& [detector, stream, heard] :
       {std::tuple{"vad1", 0x4867a850u, 0x0915dcb6u}, {"vad2", 0x0843ab3fu, 0x8ced8664u}}) {
    const Format format = formatOf("amr", "words", detector), received = formatOf("amr", "rx", detector);
    const Bytes words = encoded(format, speech, numbersOf("check.modes"));
    EXPECT_EQ(crcOf(words), stream) << detector;
    EXPECT_EQ(crc32(decoded(format, words)), heard) << detector;
    EXPECT_EQ(crc32(decoded(received, encoded(received, speech, numbersOf("check.modes")))), heard) << detector;
  }
}

// Frames that are lost or damaged, and all receive types in any order: a file *.types holds one a frame.
TEST(AmrCodec, DecodesWhatArrivesDamaged) {
  static constexpr std::pair<const char*, std::uint32_t> kDamaged[] = {
      {"4.75-lost", 0xb58b0d98},    {"7.95-lost", 0xdc265a12},   {"12.2-lost", 0xed51c644},   {"kept", 0xccca14be},
      {"quality", 0x6a0949ce},      {"lag144-10.2", 0x5b8405fc}, {"lag144-7.95", 0xfabe32ce}, {"types-speech", 0xdda6416e},
      {"types-random", 0x9560aa61}, {"mode", 0x0c961015},        {"loud", 0x50303d67},        {"lag45", 0x617aaa34},
      {"afternoise", 0x8128e80d},   {"background", 0xeeb77ba6},
  };
  const Format format = formatOf("amr", "rfc4867", "");
  for (const auto& [name, crc] : kDamaged) {
    codecs::framing::Reception reception;
    const std::string typed = name;
    if (typed.find("lost") == std::string::npos && typed != "kept" && typed != "quality")
      reception.receiveTypes = numbersOf(typed + ".types");
    EXPECT_EQ(crc32(decoded(format, fileBytes(pathOf(typed + ".amr")), 0, reception)), crc) << name;
  }
}

// A lost frame is one of which no data arrived, whether the user, the stream or the receive type says so.
TEST(AmrCodec, KnowsOneKindOfLoss) {
  const Format format = formatOf("amr-7.40", "rfc4867", "");
  Bytes stream = encoded(format, filePcm(pathOf("speech.pcm")));
  stream.resize(6 + 20 * 60);
  std::vector<bool> lost(60);
  lost[40] = lost[41] = true;
  const Samples declared = decoded(format, stream, 0, {lost, {}});
  EXPECT_FALSE(decoded(format, stream) == declared);
  std::vector<int> types(60);
  types[40] = types[41] = codecs::amr::kRxNoData;
  EXPECT_TRUE(decoded(format, stream, 0, {{}, types}) == declared);
  stream.erase(stream.begin() + 6 + 40 * 20, stream.begin() + 6 + 42 * 20);
  for (const int type : {15 << 3 | 4, 9 << 3}) stream.insert(stream.begin() + 6 + 40 * 20, static_cast<std::uint8_t>(type));
  EXPECT_TRUE(decoded(format, stream, 7) == declared);
}

TEST(AmrCodec, RefusesWhatIsNoStream) {
  const auto decodes = [](std::string_view framing, const Bytes& stream) {
    return decoded(formatOf("amr", framing, ""), stream).size();
  };
  const auto text = [](std::string_view s) { return Bytes(s.begin(), s.end()); };
  EXPECT_EQ(decodes("rfc4867", text("#!AMR\n")), 0u);
  for (const std::string_view wrong : {"#!AMR-WB\n\x3c", "#!AMR ", "RIFF", "\x3c", "#!AMX\n"})
    EXPECT_THROW(decodes("rfc4867", text(wrong)), StreamError) << wrong;
  for (const std::string_view cut : {"#!AM", "#!AMR\n\x3c\1\2"})
    EXPECT_THROW(decodes("rfc4867", text(cut)), StreamError) << cut;

  Bytes words = encoded(formatOf("amr-5.90", "words", ""), Samples(160));
  ASSERT_EQ(words.size(), 500u);
  EXPECT_EQ(decodes("words", words), 160u);
  // Its type, a bit, its mode
  for (const auto& [word, least] : {std::pair{0, 8}, {1, 2}, {244, 2}, {245, 8}}) {
    Bytes wrong = words;
    wrong[static_cast<std::size_t>(2 * word)] = static_cast<std::uint8_t>(least);
    EXPECT_THROW(decodes("words", wrong), StreamError) << word;
    EXPECT_THROW(decodes("rx", wrong), StreamError) << word;
  }
}

class AmrPayload : public testing::Test {
 protected:
  codecs::amr::Decoder decoder_{{12200, false, 0}};
  Samples pcm_ = Samples(160, 1234);
};

TEST_F(AmrPayload, HasATypeAndItsLength) {
  const int octets[16] = {13, 14, 16, 18, 20, 21, 27, 32, 6, 0, 0, 0, 0, 0, 0, 1};
  for (int type = 0; type < 16; ++type)
    for (int size = 1; size <= 33; ++size) {
      Bytes payload(static_cast<std::size_t>(size));
      payload[0] = static_cast<std::uint8_t>(8 * type + 4);
      const bool right = size == octets[type];
      pcm_.assign(160, 1234);
      EXPECT_EQ(decoder_.decode(payload.data(), size, pcm_.data()), right) << type << ' ' << size;
      EXPECT_TRUE(right || pcm_ == Samples(160, 1234)) << type << ' ' << size;
      EXPECT_EQ(decoder_.isPayloadSize(size), std::ranges::count(octets, size) != 0) << size;
    }
  Bytes speech(13);
  EXPECT_FALSE(decoder_.decodeAs(8, speech.data(), 13, pcm_.data()));
}

// Any bits, lengths, receive types and losses: the sanitizers watch.
TEST_F(AmrPayload, MayHoldAnything) {
  std::mt19937 random(26073);
  const auto below = [&](unsigned n) { return static_cast<int>(random() % n); };
  for (int frame = 0; frame < 6000; ++frame) {
    Bytes payload(32);
    const int kind = below(20);
    for (auto& octet : payload)
      octet = static_cast<std::uint8_t>(kind < 10 ? random() : kind < 14 ? 0xff : kind < 16 ? 0 : random() & random());
    const int type = below(12);
    payload[0] = static_cast<std::uint8_t>(8 * (type > 8 ? 7 : type) + 4 * (below(8) != 0));
    const int octets = codecs::amr::PayloadHead(payload[0]).octets();
    const int receiveType = below(4) != 0 ? -1 : below(8);
    if (below(30) == 0)
      decoder_.conceal(pcm_.data());
    else
      ASSERT_TRUE(decoder_.decodeAs(receiveType, payload.data(), below(10) == 0 ? 0 : octets, pcm_.data()));
    for (const int sample : pcm_) ASSERT_EQ(sample & 7, 0);
  }
}

// Signals that drive every sum to its limits
TEST(AmrCodec, CodesSquareWavesAndNoiseOfFullScale) {
  std::mt19937 random(1);
  for (const char* detector : {"", "vad1", "vad2"}) {
    Samples speech;
    for (int n = 0; n < 160 * 120; ++n) {
      const int period = 3 + n / 700, kind = n / 3200 % 3;
      const int sample = kind == 0 ? (n / period % 2 ? 32767 : -32768) : kind == 1 ? static_cast<std::int16_t>(random()) : 0;
      speech.push_back(static_cast<std::int16_t>(sample));
    }
    std::vector<int> rates;
    for (int frame = 0; frame < 120; ++frame) rates.push_back(frame * 5 % 8);
    const Format format = formatOf("amr", "rfc4867", detector);
    const Samples heard = decoded(format, encoded(format, speech, rates));
    double level = 0;
    for (const double s : heard) level += s * s;
    EXPECT_GT(level / static_cast<double>(heard.size()), 1e7) << detector;
  }
}

}  // namespace
}  // namespace test
