// The drop-in libraries by what zppcodecs gives, and by what their interfaces promise beyond it. Programs that were built for
// the libraries which they stand in for: scripts/verify-compat.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <memory>
#include <random>
#include <vector>

#include "bcg729/decoder.h"
#include "bcg729/encoder.h"
#include "gsm/gsm.h"
#include "opencore-amrnb/interf_dec.h"
#include "opencore-amrnb/interf_enc.h"
#include "opencore-amrwb/dec_if.h"
#include "vo-amrwbenc/enc_if.h"
#include "zppcodecs.h"

namespace {

using Pcm = std::vector<std::int16_t>;
using Octets = std::vector<std::uint8_t>;

// A buzz that comes and goes, over noise
Pcm speech(int samples) {
  std::mt19937 random(7);
  Pcm pcm(static_cast<std::size_t>(samples));
  for (int n = 0; n < samples; ++n) {
    const double loud = n / 8000 % 2 == 0 ? 9000 : 0;
    pcm[static_cast<std::size_t>(n)] = static_cast<std::int16_t>(loud * std::sin(n * 0.09) * (n % 73 < 20 ? 1 : 0.3) +
                                                                 static_cast<double>(random() % 41) - 20);
  }
  return pcm;
}

struct Encoder {
  Encoder(const char* codec, ZppcOptions options)
      : stream(zppcEncoderCreate(zppcFindCodec(codec), &options, nullptr), &zppcEncoderDestroy),
        frame(zppcFindCodec(codec)->frameSamples) {}
  Octets encode(const std::int16_t* pcm) {
    Octets payload(80);
    payload.resize(static_cast<std::size_t>(zppcEncode(stream.get(), pcm, frame, payload.data(), 80)));
    return payload;
  }
  std::unique_ptr<ZppcEncoder, decltype(&zppcEncoderDestroy)> stream;
  int frame;
};

struct Decoder {
  explicit Decoder(const char* codec)
      : stream(zppcDecoderCreate(zppcFindCodec(codec), nullptr, nullptr), &zppcDecoderDestroy),
        frame(zppcFindCodec(codec)->frameSamples) {}
  Pcm decode(const std::uint8_t* payload, std::size_t octets) {
    Pcm pcm(static_cast<std::size_t>(frame));
    EXPECT_EQ(zppcDecode(stream.get(), payload, static_cast<int>(octets), pcm.data(), frame), frame);
    return pcm;
  }
  std::unique_ptr<ZppcDecoder, decltype(&zppcDecoderDestroy)> stream;
  int frame;
};

TEST(Gsm, PairedFramesCarryTheSameParametersAsSingleOnes) {
  Pcm pcm = speech(160 * 40), heard(160), pairHeard(160);
  const gsm plain = gsm_create(), pairing = gsm_create(), decoder = gsm_create(), pairDecoder = gsm_create();
  int on = 3;
  EXPECT_EQ(gsm_option(pairing, GSM_OPT_WAV49, &on), 0);
  EXPECT_EQ(gsm_option(pairing, GSM_OPT_WAV49, nullptr), 1);
  gsm_option(pairDecoder, GSM_OPT_WAV49, &on);
  Encoder direct("gsm-fr", {});
  for (int pair = 0; pair < 20; ++pair) {
    gsm_byte frames[2][33], octets[65];
    for (int i = 0; i < 2; ++i) {
      gsm_signal* const samples = pcm.data() + 160 * (2 * pair + i);
      gsm_encode(plain, samples, frames[i]);
      EXPECT_EQ(direct.encode(samples), Octets(frames[i], frames[i] + 33));
      gsm_encode(pairing, samples, octets + 32 * i);
      EXPECT_EQ(gsm_option(pairing, GSM_OPT_FRAME_INDEX, nullptr), 1 - i);
    }
    for (int i = 0; i < 2; ++i) {
      EXPECT_EQ(gsm_decode(decoder, frames[i], heard.data()), 0);
      EXPECT_EQ(gsm_decode(pairDecoder, octets + 33 * i, pairHeard.data()), 0);
      EXPECT_EQ(heard, pairHeard);
    }
  }
  for (const gsm state : {plain, pairing, decoder, pairDecoder}) gsm_destroy(state);
}

TEST(Gsm, RefusesWhatLacksTheMagicAndTakesFramesApart) {
  const gsm state = gsm_create(), twin = gsm_create();
  Pcm pcm = speech(160), heard(160, 77), twinHeard(160);
  gsm_byte frame[33], built[33];
  gsm_encode(state, pcm.data(), frame);
  gsm_signal parameters[76];
  ASSERT_EQ(gsm_explode(state, frame, parameters), 0);
  for (gsm_signal& p : parameters) p = static_cast<gsm_signal>(p | 0x4000);  // beyond any width
  gsm_implode(state, parameters, built);
  EXPECT_EQ(Octets(frame, frame + 33), Octets(built, built + 33));

  built[0] ^= 0x20;
  EXPECT_EQ(gsm_explode(state, built, parameters), -1);
  EXPECT_EQ(gsm_print(stderr, state, built), -1);
  EXPECT_EQ(gsm_decode(state, built, heard.data()), -1);
  EXPECT_EQ(heard, Pcm(160, 77));
  gsm_decode(state, frame, heard.data());
  gsm_decode(twin, frame, twinHeard.data());
  EXPECT_EQ(heard, twinHeard);
  EXPECT_EQ(gsm_option(state, GSM_OPT_LTP_CUT, nullptr), -1);
  gsm_destroy(state);
  gsm_destroy(twin);
}

TEST(AmrNarrowBand, SwitchesModesAndSendsAnOctetWhereNothingIsSent) {
  const Pcm pcm = speech(160 * 300);
  void* const encoder = Encoder_Interface_init(1);
  Encoder direct("amr", {.bitRate = 0, .dtx = 1, .variant = 0});
  int silent = 0;
  for (int k = 0; k < 300; ++k) {
    const int mode = k / 7 % 8;
    Octets out(64, 0xaa);
    const int octets = Encoder_Interface_Encode(encoder, static_cast<enum Mode>(mode), pcm.data() + 160 * k, out.data(), 0);
    ASSERT_EQ(out[static_cast<std::size_t>(octets)], 0xaa);
    out.resize(static_cast<std::size_t>(octets));
    zppcEncoderSetBitRate(direct.stream.get(), zppcFindCodec("amr")->bitRates[mode]);
    Octets expected = direct.encode(pcm.data() + 160 * k);
    if (expected.empty()) expected = {0x7c}, ++silent;
    ASSERT_EQ(out, expected) << k;
  }
  EXPECT_GT(silent, 50);
  Encoder_Interface_exit(encoder);
}

TEST(AmrNarrowBand, BadFramesAreThoseOfTheArgument) {
  const Pcm pcm = speech(160 * 60);
  Encoder encoder("amr", {.bitRate = 7400, .dtx = 0, .variant = 0});
  Decoder direct("amr");
  void* const decoder = Decoder_Interface_init();
  for (int k = 0; k < 60; ++k) {
    Octets payload = encoder.encode(pcm.data() + 160 * k);
    Pcm heard(160, 99);
    const bool bad = k % 9 == 4;
    const Pcm expected = direct.decode(bad ? nullptr : payload.data(), payload.size());
    payload[0] = static_cast<std::uint8_t>(payload[0] & ~4);  // the quality bit
    Decoder_Interface_Decode(decoder, payload.data(), heard.data(), bad ? -1 : 0);
    ASSERT_EQ(heard, expected) << k;
    payload[0] = static_cast<std::uint8_t>((9 + k % 6) << 3 | 4);
    Decoder_Interface_Decode(decoder, payload.data(), heard.data(), 0);
    ASSERT_EQ(heard, expected) << k;  // untouched
  }
  Decoder_Interface_exit(decoder);
}

TEST(AmrWideBand, CodesBothWays) {
  const Pcm pcm = speech(320 * 200);
  for (const int dtx : {0, 1}) {
    void* const encoder = E_IF_init();
    void* const decoder = D_IF_init();
    Encoder direct("amr-wb", {.bitRate = 0, .dtx = dtx, .variant = 0});
    Decoder directDecoder("amr-wb");
    for (int k = 0; k < 200; ++k) {
      const int mode = k / 7 % 10;  // the tenth is the highest too
      Octets out(80);
      out.resize(static_cast<std::size_t>(E_IF_encode(encoder, mode == 9 ? -1 : mode, pcm.data() + 320 * k, out.data(), dtx)));
      zppcEncoderSetBitRate(direct.stream.get(), zppcFindCodec("amr-wb")->bitRates[std::min(mode, 8)]);
      Octets expected = direct.encode(pcm.data() + 320 * k);
      if (expected.empty()) expected = {0x7c};
      ASSERT_EQ(out, expected) << k;
      const bool bad = k % 11 == 5, lost = k % 11 == 8;
      Pcm heard(320);
      const Pcm expectedHeard = directDecoder.decode(bad || lost ? nullptr : out.data(), out.size());
      out[0] = static_cast<std::uint8_t>(lost ? 14 << 3 : out[0] & ~4);
      D_IF_decode(decoder, out.data(), heard.data(), bad ? 1 : 0);
      ASSERT_EQ(heard, expectedHeard) << k;
    }
    E_IF_exit(encoder);
    D_IF_exit(decoder);
  }
}

TEST(G729, FlagsTellWhatAFrameIs) {
  const Pcm pcm = speech(80 * 600);
  bcg729EncoderChannelContextStruct* const encoder = initBcg729EncoderChannel(1);
  bcg729DecoderChannelContextStruct* const decoder = initBcg729DecoderChannel();
  bcg729DecoderChannelContextStruct* const noiseDecoder = initBcg729DecoderChannel();
  Encoder direct("g729a", {.bitRate = 0, .dtx = 1, .variant = 0});
  Decoder directDecoder("g729a");
  int descriptors = 0, unsent = 0;
  for (int k = 0; k < 600; ++k) {
    std::uint8_t out[10], noise[11], length = 99;
    bcg729Encoder(encoder, pcm.data() + 80 * k, out, &length);
    ASSERT_EQ(Octets(out, out + length), direct.encode(pcm.data() + 80 * k)) << k;
    const bool descriptor = length == 2, nothing = length == 0, lost = k % 13 == 5;
    descriptors += descriptor;
    unsent += nothing;
    const Pcm expected = directDecoder.decode(lost ? nullptr : out, length);
    Pcm heard(80), noiseHeard(80);
    // Nothing sent: an erased frame, or a descriptor without octets
    bcg729Decoder(decoder, nothing ? nullptr : out, length, lost || (nothing && k % 2), descriptor || nothing, 0, heard.data());
    ASSERT_EQ(heard, expected) << k;
    // The payload of RFC 3389 comes back as the very descriptor.
    if (descriptor) bcg729GetRFC3389Payload(encoder, noise);
    bcg729Decoder(noiseDecoder, descriptor ? noise : out, descriptor ? 11 : length, lost || nothing, descriptor, descriptor,
                  noiseHeard.data());
    ASSERT_EQ(noiseHeard, expected) << k;
  }
  EXPECT_GT(descriptors, 5);
  EXPECT_GT(unsent, 50);
  closeBcg729EncoderChannel(encoder);
  closeBcg729DecoderChannel(decoder);
  closeBcg729DecoderChannel(noiseDecoder);
}

// Level in -dBov, and the first coefficient positive where neighbouring samples are alike
TEST(G729, Rfc3389PayloadTellsLevelAndSpectrum) {
  for (const int tilt : {-1, 1}) {
    std::mt19937 random(5);
    bcg729EncoderChannelContextStruct* const encoder = initBcg729EncoderChannel(1);
    std::uint8_t out[10], noise[11] = {}, length;
    double y = 0, energy = 0;
    for (int k = 0; k < 300; ++k) {
      Pcm pcm(80);
      for (std::int16_t& sample : pcm) {
        y = 0.7 * tilt * y + static_cast<double>(random() % 401) - 200;
        sample = static_cast<std::int16_t>(y);
        energy += y * y;
      }
      bcg729Encoder(encoder, pcm.data(), out, &length);
      if (length == 2) bcg729GetRFC3389Payload(encoder, noise);
    }
    const double level = 90.3 - 10 * std::log10(energy / (300 * 80));
    EXPECT_NEAR(noise[0], level, 7);
    EXPECT_GT(tilt * (noise[1] - 127), 25);
    closeBcg729EncoderChannel(encoder);
  }
}

}  // namespace
