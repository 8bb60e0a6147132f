// G.726 as streams: sequences of ITU-T G.726 Appendix II, speech, and what must hold whatever the stream and its state block.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "g726/tables.h"
#include "support/guarded.h"
#include "zppsc.h"

namespace {

using Codes = std::vector<Zpp8u>;
using Samples = std::vector<Zpp16s>;

constexpr int rates[] = {ZPP_RATE_16000, ZPP_RATE_24000, ZPP_RATE_32000, ZPP_RATE_40000};
constexpr int muLaw = 0, aLaw = 1, linear = 2;

// A file of the golden data, one value a byte
Codes fileBytes(const std::string& name) {
  std::ifstream file(TEST_DATA_DIR "/g726/" + name, std::ios::binary);
  if (!file) throw std::runtime_error("no vectors " + name);
  return Codes(std::istreambuf_iterator<char>(file), {});
}

// 16-bit little-endian
Samples fileSamples(const std::string& name) {
  const Codes bytes = fileBytes(name);
  Samples samples;
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) samples.push_back(static_cast<Zpp16s>(bytes[i] | bytes[i + 1] << 8));
  return samples;
}

// Coders whose state block lies between unreadable pages, at an odd address, full of rubbish before Init
class Encoder {
 public:
  explicit Encoder(int rate) {
    Zpp32s size = 0;
    EXPECT_EQ(zppsEncodeGetStateSize_G726_16s8u(&size), zppStsOk);
    state = memory.claim(static_cast<std::size_t>(size), {test::Place::Kind::middle, 1}, 1);
    std::memset(state, 0x5A, memory.size());
    EXPECT_EQ(zppsEncodeInit_G726_16s8u(state, rate), zppStsOk);
  }
  ~Encoder() { EXPECT_TRUE(memory.canariesIntact()); }
  Codes operator()(const Samples& src) {
    Codes dst(src.size());
    EXPECT_EQ(zppsEncode_G726_16s8u(state, src.data(), dst.data(), static_cast<Zpp32u>(src.size())), zppStsOk);
    return dst;
  }
  test::Guarded memory{256};
  unsigned char* state;
};

class Decoder {
 public:
  Decoder(int rate, int law) {
    Zpp32s size = 0;
    EXPECT_EQ(zppsDecodeGetStateSize_G726_8u16s(&size), zppStsOk);
    state = memory.claim(static_cast<std::size_t>(size), {test::Place::Kind::middle, 1}, 1);
    std::memset(state, 0x5A, memory.size());
    EXPECT_EQ(zppsDecodeInit_G726_8u16s(state, rate, law), zppStsOk);
  }
  ~Decoder() { EXPECT_TRUE(memory.canariesIntact()); }
  Samples operator()(const Codes& src) {
    Samples dst(src.size());
    EXPECT_EQ(zppsDecode_G726_8u16s(state, src.data(), dst.data(), static_cast<Zpp32u>(src.size())), zppStsOk);
    return dst;
  }
  test::Guarded memory{256};
  unsigned char* state;
};

// Code words of a law as the encoder's samples
Samples expanded(const Codes& words, int law) {
  Samples samples;
  for (const Zpp8u word : words) samples.push_back(zpp::g726::lawLevels[law].value[word]);
  return samples;
}

Codes narrowed(const Samples& words) { return Codes(words.begin(), words.end()); }

// Blocks of held codes and of random ones, and everything in between
Codes harshCodes(int bits, unsigned seed) {
  std::mt19937 random(seed);
  Codes codes;
  while (codes.size() < 4000) {
    const auto held = static_cast<Zpp8u>(random() & ((1u << bits) - 1));
    const unsigned noise = random() % 4, run = 1 + random() % 200;
    for (unsigned i = 0; i < run; ++i)
      codes.push_back(random() % 4 < noise ? static_cast<Zpp8u>(random() & ((1u << bits) - 1)) : held);
  }
  return codes;
}

// A line a sequence: direction, kbit/s, law, conditioning sequence or -, input, expected output
TEST(G726, CodesTheSequencesOfAppendixII) {
  std::ifstream list(TEST_DATA_DIR "/g726/sequences.txt");
  int sequences = 0, kbits = 0, law = 0;
  for (std::string direction, conditioning, input, expected;
       list >> direction >> kbits >> law >> conditioning >> input >> expected; ++sequences) {
    SCOPED_TRACE(expected);
    const int rate = rates[kbits / 8 - 2];
    const Codes before = conditioning == "-" ? Codes{} : fileBytes(conditioning), stream = fileBytes(input);
    Codes got;
    if (direction == "enc") {
      Encoder encode(rate);
      if (!before.empty()) encode(expanded(before, law));
      got = encode(expanded(stream, law));
    } else {
      Decoder decode(rate, law);
      if (!before.empty()) decode(before);
      got = narrowed(decode(stream));
    }
    EXPECT_TRUE(got == fileBytes(expected));
  }
  EXPECT_EQ(sequences, 20);
}

TEST(G726, CodesSpeech) {
  Samples speech = fileSamples("speech.pcm");
  for (Zpp16s& x : speech) x = static_cast<Zpp16s>(x >> 2);
  for (int kbits = 16; kbits <= 40; kbits += 8) {
    SCOPED_TRACE(kbits);
    const int rate = rates[kbits / 8 - 2];
    const std::string stem = "speech_" + std::to_string(kbits);
    const Codes codes = Encoder(rate)(speech);
    EXPECT_TRUE(codes == fileBytes(stem + ".codes"));
    Samples out = Decoder(rate, linear)(codes);
    for (Zpp16s& x : out) x = static_cast<Zpp16s>(x * 4);
    EXPECT_TRUE(out == fileSamples(stem + ".pcm"));
  }
}

TEST(G726, CallsOfAnyLengthContinueTheStreamAndRefusedOnesLeaveIt) {
  const Codes words = fileBytes("ovr.m");
  const Samples samples = expanded(words, muLaw);
  Zpp8u code = 0;
  Zpp16s sample = 0;
  for (const int rate : rates) {
    SCOPED_TRACE(rate);
    const Codes wholeCodes = Encoder(rate)(samples);
    const Samples wholeWords = Decoder(rate, aLaw)(wholeCodes);
    Encoder encode(rate);
    Decoder decode(rate, aLaw);
    Codes codes;
    Samples out;
    for (std::size_t at = 0, n = 1; at < samples.size(); at += n, n = n % 7 + 1) {
      n = std::min(n, samples.size() - at);
      const auto first = static_cast<std::ptrdiff_t>(at), last = first + static_cast<std::ptrdiff_t>(n);
      const Codes some = encode(Samples(samples.begin() + first, samples.begin() + last));
      const Samples back = decode(some);
      codes.insert(codes.end(), some.begin(), some.end());
      out.insert(out.end(), back.begin(), back.end());

      EXPECT_EQ(zppsEncode_G726_16s8u(encode.state, &sample, &code, 0), zppStsBadSize);
      EXPECT_EQ(zppsEncode_G726_16s8u(encode.state, &sample, nullptr, 1), zppStsNullPointer);
      EXPECT_EQ(zppsEncodeInit_G726_16s8u(encode.state, 16000), zppStsOutOfRange);
      EXPECT_EQ(zppsDecode_G726_8u16s(decode.state, &code, &sample, 0), zppStsBadSize);
      EXPECT_EQ(zppsDecode_G726_8u16s(decode.state, nullptr, &sample, 1), zppStsNullPointer);
      EXPECT_EQ(zppsDecodeInit_G726_8u16s(decode.state, 21, aLaw), zppStsOutOfRange);
      EXPECT_EQ(zppsDecodeInit_G726_8u16s(decode.state, rate, 3), zppStsOutOfRange);
    }
    EXPECT_TRUE(codes == wholeCodes);
    EXPECT_TRUE(out == wholeWords);
  }
}

TEST(G726, InitStartsAfresh) {
  const Samples samples = expanded(fileBytes("ovr.a"), aLaw);
  Encoder encode(ZPP_RATE_40000);
  encode(samples);
  ASSERT_EQ(zppsEncodeInit_G726_16s8u(encode.state, ZPP_RATE_24000), zppStsOk);
  const Codes codes = encode(samples);
  EXPECT_TRUE(codes == Encoder(ZPP_RATE_24000)(samples));
  Decoder decode(ZPP_RATE_40000, muLaw);
  decode(codes);
  ASSERT_EQ(zppsDecodeInit_G726_8u16s(decode.state, ZPP_RATE_24000, linear), zppStsOk);
  EXPECT_TRUE(decode(codes) == Decoder(ZPP_RATE_24000, linear)(codes));
}

// Synchronous tandem coding loses nothing after its first coding (clause 4.2.8 of the standard).
TEST(G726, TandemCodingsOfCompandedSpeechAreIdentical) {
  for (const int law : {muLaw, aLaw})
    for (const int rate : rates) {
      SCOPED_TRACE(testing::Message() << "law " << law << ", rate " << rate);
      const Codes words = fileBytes(law == muLaw ? "nrm.m" : "nrm.a");
      const Codes first = Encoder(rate)(expanded(words, law));
      const Codes once = narrowed(Decoder(rate, law)(first));
      EXPECT_TRUE(Encoder(rate)(expanded(once, law)) == first);
    }
}

TEST(G726, OutputStaysInItsRangeAndTheUpperBitsOfCodesDoNotCount) {
  for (int index = 0; index < 4; ++index)
    for (unsigned seed = 0; seed < 20; ++seed) {
      Codes codes = harshCodes(index + 2, seed);
      std::vector<Samples> out;
      for (const int law : {muLaw, aLaw, linear}) out.push_back(Decoder(rates[index], law)(codes));
      const auto [lowest, highest] = std::minmax_element(out[2].begin(), out[2].end());
      EXPECT_GE(*lowest, -8192);
      EXPECT_LE(*highest, 8191);
      for (std::size_t n = 0; n < codes.size(); ++n) codes[n] = static_cast<Zpp8u>(codes[n] | (n * 37) << (index + 2));
      for (const int law : {muLaw, aLaw, linear})
        EXPECT_TRUE(Decoder(rates[index], law)(codes) == out[static_cast<std::size_t>(law)]);
    }
}

// With the prediction at one end of the 14-bit range, the other end of the 16-bit range is more than 16 bits away. The
// difference must not wrap round: the outermost code of its sign comes out.
TEST(G726, DifferencesBeyond16BitsSaturate) {
  for (int index = 0; index < 4; ++index)
    for (const int sign : {1, -1}) {
      Samples samples(300, static_cast<Zpp16s>(sign > 0 ? -8192 : 8191));
      samples.push_back(static_cast<Zpp16s>(sign > 0 ? 32767 : -32768));
      const int half = 1 << (index + 1);
      EXPECT_EQ(Encoder(rates[index])(samples).back(), sign > 0 ? half - 1 : half) << index << " " << sign;
    }
}

// Whatever bytes a block holds, coding stays within the block, its tables and the ranges of its output.
TEST(G726, RubbishForAStateIsHarmless) {
  std::mt19937 random(726);
  const Samples samples = expanded(fileBytes("ovr.m"), muLaw);
  for (int round = 0; round < 400; ++round) {
    Encoder encode(ZPP_RATE_32000);
    Decoder decode(ZPP_RATE_32000, linear);
    for (auto* coder : {&encode.memory, &decode.memory})
      for (std::size_t i = 0; i < coder->size(); ++i)
        coder->data()[i] = static_cast<unsigned char>(round == 0 ? 0x00 : round == 1 ? 0xff : round == 2 ? 0x80 : random());
    const Codes codes = encode(Samples(samples.begin(), samples.begin() + 100));
    EXPECT_LT(*std::max_element(codes.begin(), codes.end()), 32);
    const Samples out = decode(codes);
    const auto [lowest, highest] = std::minmax_element(out.begin(), out.end());
    EXPECT_GE(*lowest, -8192);
    EXPECT_LE(*highest, 8191);
  }
}

}  // namespace
