// What the C++ headers add to the C ones: which calls compile, what is found out at run time, and streams as values.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <numeric>
#include <vector>

#include "zppcodecs.hpp"
#include "zppsc.hpp"

namespace {

using Lsp = std::array<Zpp16s, 10>;
template <std::size_t n>
using Span = std::span<Zpp16s, n>;

// Shapes and types are the compiler's business.
static_assert(zpp::CallableWith<zppsLSPToLSF_G729_16s, const Lsp&, Lsp&>);
static_assert(zpp::CallableWith<zppsLSPToLSF_G729_16s, Zpp16s (&)[10], std::vector<Zpp16s>&>);
static_assert(zpp::CallableWith<zppsLSPToLSF_G729_16s, Span<11>, Span<10>>, "more than enough");
static_assert(!zpp::CallableWith<zppsLSPToLSF_G729_16s, std::array<Zpp16s, 9>&, Lsp&>, "a source that is too short");
static_assert(!zpp::CallableWith<zppsLSPToLSF_G729_16s, Lsp&, Span<9>>, "a destination that is too short");
static_assert(!zpp::CallableWith<zppsLSPToLSF_G729_16s, Zpp16s (&)[9], Lsp&>);
static_assert(!zpp::CallableWith<zppsLSPToLSF_G729_16s, Lsp&, const Lsp&>, "a constant destination");
static_assert(!zpp::CallableWith<zppsLSPToLSF_G729_16s, std::array<Zpp32s, 10>&, Lsp&>, "another element type");
static_assert(!zpp::CallableWith<zppsLSPToLSF_G729_16s, Lsp&>, "an argument less");
static_assert(!zpp::CallableWith<zppsAdd_16s, Lsp&, Lsp&, Lsp&, double>, "a length that is no whole number");
static_assert(zpp::CallableWith<zppsAdd_16s, std::nullptr_t, Zpp16s*, Lsp&, std::size_t>);
static_assert(!zpp::CallableWith<zppsAdd_16s, const Zpp16s*, Lsp&, const Zpp16s*, int>);

TEST(Call, GivesTheStatusAndTheResultOfTheFunction) {
  const std::vector<Zpp16s> a = {1, 32767, -5}, b = {2, 1, -6};
  std::vector<Zpp16s> sum(3);
  EXPECT_EQ(zpp::call<zppsAdd_16s>(a, b, sum, sum.size()), zppStsOk);
  EXPECT_EQ(sum, (std::vector<Zpp16s>{3, 32767, -11}));
  EXPECT_EQ(zpp::call<zppsAdd_16s>(a, nullptr, sum, 3), zppStsNullPointer);

  Zpp32s product = 0;  // a variable takes a single result
  EXPECT_EQ(zpp::call<zppsDotProd_16s32s_Sfs>(a, b, 3, product, 0), zppStsOk);
  EXPECT_EQ(product, 2 + 32767 + 30);
}

TEST(Call, RefusesWhatOnlyRunningShows) {
  Lsp lsp{}, lsf;
  lsf.fill(77);
  const auto untouched = lsf;
  EXPECT_EQ(zpp::call<zppsLSPToLSF_G729_16s>(std::span<const Zpp16s>(lsp).first(9), lsf), zppStsBadSize);
  EXPECT_EQ(zpp::call<zppsLSPToLSF_G729_16s>(lsp, std::span<Zpp16s>(lsf).first(9)), zppStsBadSize);
  // Lengths that would become 10 if they were cut to the width of the parameter
  EXPECT_EQ(zpp::call<zppsAdd_16s>(lsp, lsp, lsf, (std::uint64_t{1} << 32) + 10), zppStsBadSize);
  std::array<Zpp8u, 10> codes{};
  auto decoder = zpp::State<zppsDecodeGetStateSize_G726_8u16s, zppsDecodeInit_G726_8u16s>::create(ZPP_RATE_32000, 2).value();
  EXPECT_EQ(zpp::call<zppsDecode_G726_8u16s>(decoder, codes, lsf, -(std::int64_t{1} << 32) + 10), zppStsBadSize);
  EXPECT_EQ(lsf, untouched);
}

TEST(Status, IsErrorOrWarningOrNeither) {
  EXPECT_FALSE(zpp::Status(zppStsOk).failed() || zpp::Status(zppStsOk).warned());
  EXPECT_NO_THROW(zpp::Status(zppStsOverflowWarn).orThrow());
  EXPECT_TRUE(zpp::Status(zppStsOverflowWarn).warned());
  try {
    zpp::Status(zppStsBadScale).orThrow();
    FAIL();
  } catch (const zpp::Exception<zpp::Status>& e) {
    EXPECT_EQ(e.failure(), zppStsBadScale);
    EXPECT_STREQ(e.what(), "a scale factor that the function does not support");
  }
}

TEST(State, StartsOrSaysWhyNot) {
  using Coder = zpp::State<zppsEncodeGetStateSize_G726_16s8u, zppsEncodeInit_G726_16s8u>;
  EXPECT_EQ(Coder::create(ZPP_RATE_5300).error(), zppStsOutOfRange);
  EXPECT_THROW((void)Coder::create(ZPP_RATE_5300).value(), zpp::Exception<zpp::Status>);

  Coder coder = Coder::create(ZPP_RATE_16000).value();
  std::vector<Zpp16s> pcm(64);
  std::iota(pcm.begin(), pcm.end(), Zpp16s{-1000});
  std::vector<Zpp8u> first(64), second(64), again(64);
  zpp::call<zppsEncode_G726_16s8u>(coder, pcm, first, 64).orThrow();
  Coder copy = coder;
  zpp::call<zppsEncode_G726_16s8u>(coder, pcm, second, 64).orThrow();
  zpp::call<zppsEncode_G726_16s8u>(copy, pcm, again, 64).orThrow();
  EXPECT_EQ(second, again);
  EXPECT_NE(first, second);
}

// The size depends on arguments, and the state is the last but not the only pointer of the start.
TEST(State, TakesTheArgumentsOfItsTwoFunctions) {
  using Window = zpp::State<zppsWinHybridGetStateSize_G728_16s, zppsWinHybridInit_G728_16s>;
  constexpr int order = 10, lenNew = 20, lenNonRec = 30;
  const std::vector<Zpp16s> window(order + lenNew + lenNonRec, 16384);
  const Window state = Window::create(zpp::Sized(order, lenNew, lenNonRec), window, order, lenNew, lenNonRec, 1).value();
  EXPECT_EQ(state.size(), 16u + 2 * (order + 1) + 4 * 60 + 2 * 12 + 2);

  using HighPass = zpp::State<zppsHighPassFilterSize_G729, zppsHighPassFilterInit_G729>;
  EXPECT_EQ(HighPass::create(std::array<Zpp16s, 6>{}).value().size(), 24u);
}

TEST(Streams, CodeAndConceal) {
  const ZppcCodec& codec = *zpp::findCodec("g729");
  auto encoder = zpp::Encoder::create(codec, {.dtx = true}).value();
  auto decoder = zpp::Decoder::create(codec).value();
  std::array<std::int16_t, 80> silence{}, heard;
  std::array<std::uint8_t, 10> buffer;
  std::size_t shortest = 10;
  for (int frame = 0; frame < 20; ++frame) {
    const auto payload = encoder.encode(silence, buffer).value();
    shortest = std::min(shortest, payload.size());
    EXPECT_EQ(decoder.decode(payload, heard).value().size(), 80u);
  }
  EXPECT_EQ(shortest, 0u);
  EXPECT_EQ(decoder.conceal(heard).value().data(), heard.data());
}

// Nothing sent is not the same as lost: a span without octets may have a null pointer, which in C stands for a loss.
TEST(Streams, TellNothingSentFromLoss) {
  auto decoder = zpp::Decoder::create(*zpp::findCodec("g711-mulaw")).value();
  std::array<std::int16_t, 8> heard;
  EXPECT_EQ(decoder.conceal(heard).value().size(), 8u);
  const auto nothing = decoder.decode({}, heard);
  std::int16_t pcm[8];
  const std::uint8_t octet = 0;
  const int direct = zppcDecode(decoder.handle(), &octet, 0, pcm, 8);
  EXPECT_EQ(nothing ? static_cast<int>(nothing->size()) : nothing.error().code(), direct);
}

TEST(Streams, AreValues) {
  for (const ZppcCodec& codec : zpp::codecs()) {
    SCOPED_TRACE(codec.name);
    std::vector<zpp::Encoder> streams{zpp::Encoder::create(codec).value()};
    const std::size_t samples = static_cast<std::size_t>(
        (codec.features & ZPPC_FEATURE_SAMPLE_BASED) != 0 ? 80 * codec.frameSamples : codec.frameSamples);
    std::vector<std::int16_t> pcm(samples);
    for (std::size_t n = 0; n < samples; ++n) pcm[n] = static_cast<std::int16_t>(n * n % 4001);
    std::vector<std::uint8_t> first(2 * samples + 100), second(first.size());
    (void)streams[0].encode(pcm, first).value();
    streams.push_back(streams[0]);
    const auto one = streams[0].encode(pcm, first).value(), other = streams[1].encode(pcm, second).value();
    EXPECT_TRUE(std::equal(one.begin(), one.end(), other.begin(), other.end()));
  }
}

TEST(Streams, SayWhatIsWrong) {
  EXPECT_EQ(zpp::findCodec("g729 "), nullptr);
  const ZppcCodec& codec = *zpp::findCodec("g726");
  EXPECT_EQ(zpp::bitRates(codec).size(), 4u);
  EXPECT_EQ(zpp::Encoder::create(codec, {.bitRate = 1}).error().code(), ZPPC_ERROR_OPTION);
  EXPECT_THROW((void)zpp::Decoder::create(codec, {.variant = 7}).value(), zpp::Exception<zpp::CodecError>);
  auto encoder = zpp::Encoder::create(codec).value();
  std::array<std::int16_t, 8> pcm{};
  std::array<std::uint8_t, 8> buffer;
  EXPECT_EQ(encoder.encode(std::span(pcm).first(7), buffer).error().code(), ZPPC_ERROR_SIZE);
  EXPECT_EQ(encoder.encode(pcm, std::span(buffer).first(1)).error().code(), ZPPC_ERROR_CAPACITY);
  EXPECT_EQ(encoder.setBitRate(16000).error().code(), ZPPC_ERROR_OPTION);
}

}  // namespace
