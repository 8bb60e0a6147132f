// The AMR-WB decoder on damaged, lost and comfort-noise frames in all orders and on homing frames: streams with the receive
// type of each frame, and the checksums of the samples that the standard's decoder makes of them.
#include <gtest/gtest.h>

#include <random>
#include <sstream>

#include "codecs/amrwb/decoder.h"
#include "codecs/streams.h"

namespace test {
namespace {

using codecs::framing::Bytes;
using codecs::framing::Reception;
using codecs::framing::Samples;

Reception typesOf(const std::string& name) {
  const Bytes text = fileBytes(name);
  std::istringstream numbers(std::string(text.begin(), text.end()));
  Reception reception;
  for (int type = 0; numbers >> type;) reception.receiveTypes.push_back(type);
  return reception;
}

Samples heard(const std::string& stream, Reception reception = {}, std::size_t piece = 0) {
  const Codec& codec = codecNamed("amr-wb");
  return decoded({&codec, "rfc4867", codec.options}, fileBytes("amrwb/streams/" + stream + ".awb"), piece,
                 std::move(reception));
}

TEST(AmrWbDecoder, FollowsTheReferenceThroughEveryKindOfFrame) {
  const struct {
    const char* name;
    bool typed;
    std::uint32_t checksum;
  } streams[] = {
      {"homing", true, 0x93b292d3},       {"noise_states", true, 0x36c6c1ba},     {"noise_start", true, 0xf559794e},
      {"noise_limits", true, 0xf5475f2a}, {"errors_6600", true, 0x6655f249},      {"errors_12650", true, 0x0f752e03},
      {"errors_23850", true, 0x1487324a}, {"errors_dtx_12650", true, 0x895892b6}, {"switch", false, 0xd08fbaf7},
  };
  for (const auto& stream : streams) {
    const Reception reception = stream.typed ? typesOf("amrwb/streams/" + std::string(stream.name) + ".types") : Reception{};
    EXPECT_EQ(crc32(heard(stream.name, reception)), stream.checksum) << stream.name;
    EXPECT_EQ(crc32(heard(stream.name, reception, 7)), stream.checksum) << stream.name << " in pieces";
  }
}

// The receive types of the homing stream are those that its payloads tell.
TEST(AmrWbDecoder, ReadsTheReceiveTypeFromThePayload) {
  EXPECT_EQ(heard("homing"), heard("homing", typesOf("amrwb/streams/homing.types")));
}

// Long losses fade to the level of noise and recover with the first good frames.
TEST(AmrWbDecoder, FadesInLongLossesAndRecovers) {
  Reception reception;
  reception.receiveTypes.assign(320, 0);
  std::fill_n(reception.receiveTypes.begin() + 170, 40, 2);
  const Samples samples = heard("errors_6600", reception);
  const auto power = [&](std::size_t frame) {
    double sum = 0;
    for (std::size_t n = 320 * frame; n < 320 * (frame + 10); ++n) sum += double(samples[n]) * samples[n];
    return sum;
  };
  EXPECT_LT(power(200), power(160) / 1000);
  EXPECT_GT(power(220), power(200) * 10);
}

// Whatever arrives, a frame comes out and the next good one is heard; octets of no payload change nothing.
TEST(AmrWbDecoder, SurvivesAnyOctets) {
  std::mt19937 random(5);
  codecs::amrwb::Decoder decoder({12650, false, 0});
  Samples pcm(320), untouched(320, 77);
  for (int frame = 0; frame < 4000; ++frame) {
    Zpp8u payload[64];
    for (Zpp8u& octet : payload) octet = static_cast<Zpp8u>(random());
    const int octets = codecs::amrwb::octetsOf(payload[0] >> 3 & 15), type = static_cast<int>(random() % 10) - 1;
    ASSERT_TRUE(decoder.isPayloadSize(octets));
    ASSERT_EQ(decoder.decodeAs(type, payload, octets, pcm.data()), type < 80);
    for (const Zpp16s x : pcm) ASSERT_EQ(x & 3, 0) << "14 bits";
    Samples same = untouched;
    EXPECT_FALSE(decoder.decode(payload, octets + 1, same.data()));
    EXPECT_EQ(same, untouched);
    if (frame % 5 == 0) decoder.conceal(pcm.data());
  }
}

}  // namespace
}  // namespace test
