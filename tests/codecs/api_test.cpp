// What the C API promises, for every row of the table.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "support/painted_stack.h"
#include "zppcodecs.h"

// Counts allocations where no sanitizer does it; the library's calls of malloc arrive here.
#if defined(__SANITIZE_ADDRESS__)
#define COUNTS_ALLOCATIONS 0
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define COUNTS_ALLOCATIONS 0
#endif
#endif
#ifndef COUNTS_ALLOCATIONS
#define COUNTS_ALLOCATIONS 1
#endif

namespace {
int allocations = 0;
}

#if COUNTS_ALLOCATIONS
extern "C" void* __libc_malloc(std::size_t bytes);
extern "C" void* malloc(std::size_t bytes) {
  ++allocations;
  return __libc_malloc(bytes);
}
#endif

namespace {

using Bytes = std::vector<std::uint8_t>;
using Samples = std::vector<std::int16_t>;

constexpr std::uint8_t kUnwritten = 0xA5;
constexpr std::int16_t kUnwrittenSample = -23131;

std::vector<const ZppcCodec*> allCodecs() {
  int count = 0;
  const ZppcCodec* const rows = zppcCodecs(&count);
  std::vector<const ZppcCodec*> codecs;
  for (int i = 0; i < count; ++i) codecs.push_back(rows + i);
  return codecs;
}

bool has(const ZppcCodec& codec, unsigned feature) { return (codec.features & feature) != 0; }

// What a codec may be started with: every bit rate, with and without pauses, both variants where there are two
std::vector<ZppcOptions> allOptions(const ZppcCodec& codec) {
  std::vector<ZppcOptions> all;
  for (int rate = 0; rate < codec.bitRateCount; ++rate)
    for (int dtx = 0; dtx <= (has(codec, ZPPC_FEATURE_DTX) ? 1 : 0); ++dtx)
      for (int variant = 0; variant < 2; ++variant) {
        const ZppcOptions options{codec.bitRates[rate], dtx, variant};
        ZppcEncoder* const encoder = zppcEncoderCreate(&codec, &options, nullptr);
        if (encoder != nullptr) all.push_back(options);
        zppcEncoderDestroy(encoder);
      }
  return all;
}

// Noise of a moving level with pauses, clipped at times
Samples signalFor(const ZppcCodec& codec, int frames, std::uint32_t seed = 1) {
  std::mt19937 random(seed);
  Samples signal;
  double last = 0;
  for (int n = 0; n < frames * codec.frameSamples; ++n) {
    const double t = static_cast<double>(n) / codec.sampleRate;
    const double level = std::fmod(t, 2.0) > 1.2 ? 30 : 20000 * (1 + std::sin(9 * t));
    last = 0.8 * last + level * (static_cast<double>(random() % 2001) / 1000 - 1);
    signal.push_back(static_cast<std::int16_t>(std::fmax(-32768, std::fmin(32767, last))));
  }
  return signal;
}

// Null for a lost frame; a payload without octets has a place all the same.
const std::uint8_t* octetsOf(const Bytes* payload) {
  static const std::uint8_t nothing = 0;
  return payload == nullptr ? nullptr : payload->empty() ? &nothing : payload->data();
}

class Encoder {
 public:
  Encoder(const ZppcCodec& codec, const ZppcOptions& options) : codec_(codec), memory_(sizeFor(codec)) {
    int error = 1;
    stream_ = zppcEncoderInit(memory_.data(), memory_.size(), &codec, &options, &error);
    EXPECT_NE(stream_, nullptr) << codec.name;
    EXPECT_EQ(error, 0);
  }
  Bytes encode(const std::int16_t* frame) {
    Bytes payload(static_cast<std::size_t>(codec_.maxPayload), kUnwritten);
    const int octets = zppcEncode(stream_, frame, codec_.frameSamples, payload.data(), codec_.maxPayload);
    EXPECT_GE(octets, 0) << codec_.name;
    payload.resize(static_cast<std::size_t>(std::max(octets, 0)));
    return payload;
  }
  ZppcEncoder* stream() { return stream_; }
  Bytes& memory() { return memory_; }

 private:
  static std::size_t sizeFor(const ZppcCodec& codec) { return static_cast<std::size_t>(zppcEncoderSize(&codec)); }
  const ZppcCodec& codec_;
  Bytes memory_;
  ZppcEncoder* stream_;
};

class Decoder {
 public:
  Decoder(const ZppcCodec& codec, const ZppcOptions& options) : codec_(codec), memory_(sizeFor(codec)) {
    int error = 1;
    stream_ = zppcDecoderInit(memory_.data(), memory_.size(), &codec, &options, &error);
    EXPECT_NE(stream_, nullptr) << codec.name;
    EXPECT_EQ(error, 0);
  }
  // payload null: lost
  Samples decode(const Bytes* payload) {
    Samples pcm(static_cast<std::size_t>(codec_.frameSamples), kUnwrittenSample);
    static const std::uint8_t nothing = 0;
    const std::uint8_t* const octets = payload == nullptr ? nullptr : payload->empty() ? &nothing : payload->data();
    const int samples = zppcDecode(stream_, octets, payload == nullptr ? -7 : static_cast<int>(payload->size()), pcm.data(),
                                   codec_.frameSamples);
    EXPECT_EQ(samples, codec_.frameSamples) << codec_.name;
    return pcm;
  }
  ZppcDecoder* stream() { return stream_; }
  Bytes& memory() { return memory_; }

 private:
  static std::size_t sizeFor(const ZppcCodec& codec) { return static_cast<std::size_t>(zppcDecoderSize(&codec)); }
  const ZppcCodec& codec_;
  Bytes memory_;
  ZppcDecoder* stream_;
};

std::vector<Bytes> encodeAll(const ZppcCodec& codec, const ZppcOptions& options, const Samples& signal) {
  Encoder encoder(codec, options);
  std::vector<Bytes> payloads;
  for (std::size_t n = 0; n < signal.size(); n += static_cast<std::size_t>(codec.frameSamples))
    payloads.push_back(encoder.encode(&signal[n]));
  return payloads;
}

class EveryCodec : public testing::TestWithParam<const ZppcCodec*> {
 protected:
  const ZppcCodec& codec() const { return *GetParam(); }
  // Enough for a pause of speech, not too much for the longest frames
  int frames() const { return std::max(50, 2 * codec().sampleRate / std::max(codec().frameSamples, 80)); }
};

TEST_P(EveryCodec, TellsWhatItIs) {
  const ZppcCodec& c = codec();
  EXPECT_EQ(zppcFindCodec(c.name), &c);
  EXPECT_NE(std::string(c.standard), "");
  EXPECT_GT(c.frameSamples, 0);
  EXPECT_GT(c.maxPayload, 0);
  ASSERT_GT(c.bitRateCount, 0);
  bool isOffered = false;
  for (int i = 0; i < c.bitRateCount; ++i) {
    if (i > 0) {
      EXPECT_LT(c.bitRates[i - 1], c.bitRates[i]);
    }
    isOffered |= c.bitRates[i] == c.defaultBitRate;
  }
  EXPECT_TRUE(isOffered);
  // Defaults are those of the row, however they are asked for.
  const Samples signal = signalFor(c, 20);
  const ZppcOptions zero{}, spelled{c.defaultBitRate, 0, 0};
  EXPECT_EQ(encodeAll(c, zero, signal), encodeAll(c, spelled, signal));
}

TEST_P(EveryCodec, RefusesWhatItDoesNotHaveInTheOrderOfTheChecks) {
  const ZppcCodec& c = codec();
  Bytes memory(static_cast<std::size_t>(std::max(zppcEncoderSize(&c), zppcDecoderSize(&c))), kUnwritten);
  const Bytes untouched = memory;
  const auto expect = [&](void* at, std::size_t bytes, const ZppcCodec* row, const ZppcOptions& options, int error) {
    int got = 0;
    EXPECT_EQ(zppcEncoderInit(at, bytes, row, &options, &got), nullptr);
    EXPECT_EQ(got, error);
    got = 0;
    EXPECT_EQ(zppcDecoderInit(at, bytes, row, &options, &got), nullptr);
    EXPECT_EQ(got, error);
    EXPECT_EQ(memory, untouched);
  };
  const ZppcCodec stranger = c;
  const ZppcOptions good{}, badRate{c.defaultBitRate + 1, 0, 0}, badDtx{0, 2, 0}, badVariant{0, 0, 2}, negative{0, 0, -1};
  expect(nullptr, 0, &stranger, badRate, ZPPC_ERROR_NULL);
  expect(memory.data(), memory.size(), nullptr, badRate, ZPPC_ERROR_NULL);
  expect(memory.data(), 0, &stranger, badRate, ZPPC_ERROR_CODEC);
  for (const ZppcOptions& bad : {badRate, badDtx, badVariant, negative}) expect(memory.data(), 0, &c, bad, ZPPC_ERROR_OPTION);
  if (!has(c, ZPPC_FEATURE_DTX)) expect(memory.data(), memory.size(), &c, {0, 1, 0}, ZPPC_ERROR_OPTION);
  expect(memory.data(), 1, &c, good, ZPPC_ERROR_SIZE);
  EXPECT_EQ(zppcEncoderInit(memory.data(), static_cast<std::size_t>(zppcEncoderSize(&c)) - 1, &c, nullptr, nullptr), nullptr);
  EXPECT_EQ(zppcEncoderSize(nullptr), ZPPC_ERROR_NULL);
  EXPECT_EQ(zppcDecoderSize(&stranger), ZPPC_ERROR_CODEC);
}

// Each error leaves output and stream as they were: what follows is what a stream without the errors gives.
TEST_P(EveryCodec, ChangesNothingOnAnError) {
  const ZppcCodec& c = codec();
  const Samples signal = signalFor(c, 12);
  const ZppcOptions options{};
  const std::vector<Bytes> expected = encodeAll(c, options, signal);
  Encoder encoder(c, options);
  Decoder decoder(c, options), undisturbed(c, options);
  for (std::size_t f = 0; f < expected.size(); ++f) {
    const std::int16_t* const frame = &signal[f * static_cast<std::size_t>(c.frameSamples)];
    Bytes payload(static_cast<std::size_t>(c.maxPayload), kUnwritten);
    const Bytes unwritten = payload;
    EXPECT_EQ(zppcEncode(nullptr, frame, 0, payload.data(), 0), ZPPC_ERROR_NULL);
    EXPECT_EQ(zppcEncode(encoder.stream(), nullptr, 0, payload.data(), 0), ZPPC_ERROR_NULL);
    EXPECT_EQ(zppcEncode(encoder.stream(), frame, 0, nullptr, 0), ZPPC_ERROR_NULL);
    for (const int samples : {0, -1, c.frameSamples - 1, -c.frameSamples, INT32_MIN})
      if (samples <= 0 || samples < c.frameSamples) {
        EXPECT_EQ(zppcEncode(encoder.stream(), frame, samples, payload.data(), 0), ZPPC_ERROR_SIZE);
      }
    if (!has(c, ZPPC_FEATURE_SAMPLE_BASED)) {
      EXPECT_EQ(zppcEncode(encoder.stream(), frame, 2 * c.frameSamples, payload.data(), c.maxPayload), ZPPC_ERROR_SIZE);
    }
    const int room = has(c, ZPPC_FEATURE_SAMPLE_BASED) ? static_cast<int>(expected[f].size()) : c.maxPayload;
    for (const int capacity : {0, -1, room - 1})
      EXPECT_EQ(zppcEncode(encoder.stream(), frame, c.frameSamples, payload.data(), capacity), ZPPC_ERROR_CAPACITY);
    EXPECT_EQ(zppcEncoderSetBitRate(encoder.stream(), c.defaultBitRate + 1), ZPPC_ERROR_OPTION);
    EXPECT_EQ(payload, unwritten);
    EXPECT_EQ(encoder.encode(frame), expected[f]) << c.name << ' ' << f;

    Samples pcm(static_cast<std::size_t>(c.frameSamples), kUnwrittenSample);
    const Samples silent = pcm;
    const std::uint8_t* const octets = expected[f].data();
    const int size = static_cast<int>(expected[f].size());
    EXPECT_EQ(zppcDecode(nullptr, octets, -1, pcm.data(), 0), ZPPC_ERROR_NULL);
    EXPECT_EQ(zppcDecode(decoder.stream(), octets, -1, nullptr, 0), ZPPC_ERROR_NULL);
    EXPECT_EQ(zppcDecode(decoder.stream(), octets, -1, pcm.data(), 0), ZPPC_ERROR_SIZE);
    for (const int capacity : {-1, c.frameSamples - 1})
      EXPECT_EQ(zppcDecode(decoder.stream(), octets, size, pcm.data(), capacity), ZPPC_ERROR_CAPACITY);
    EXPECT_EQ(pcm, silent);
    EXPECT_EQ(decoder.decode(&expected[f]), undisturbed.decode(&expected[f])) << c.name << ' ' << f;
  }
}

// A rate is taken from the next frame on; a codec of fixed rate refuses it.
TEST_P(EveryCodec, SwitchesRatesOrSaysThatItCannot) {
  const ZppcCodec& c = codec();
  const ZppcOptions options{};
  Encoder encoder(c, options);
  EXPECT_EQ(zppcEncoderSetBitRate(nullptr, c.defaultBitRate), ZPPC_ERROR_NULL);
  if (!has(c, ZPPC_FEATURE_RATE_SWITCH)) {
    EXPECT_EQ(zppcEncoderSetBitRate(encoder.stream(), c.defaultBitRate), ZPPC_ERROR_OPTION);
    return;
  }
  const Samples signal = signalFor(c, 1);
  std::size_t last = 0;
  for (int i = 0; i < c.bitRateCount; ++i) {
    EXPECT_EQ(zppcEncoderSetBitRate(encoder.stream(), c.bitRates[i]), 0);
    const std::size_t octets = encoder.encode(signal.data()).size();
    EXPECT_GE(octets, last) << c.name << ' ' << c.bitRates[i];
    last = octets;
  }
}

// Copies at every alignment, made in the middle of a stream, go on as the stream does; and two streams do not disturb each
// other.
TEST_P(EveryCodec, ContinuesInACopyOfItsMemory) {
  const ZppcCodec& c = codec();
  for (const ZppcOptions& options : allOptions(c)) {
    const Samples signal = signalFor(c, 36), other = signalFor(c, 36, 2);
    const std::vector<Bytes> expected = encodeAll(c, options, signal);
    Encoder encoder(c, options), neighbour(c, options);
    Decoder decoder(c, options), neighboursDecoder(c, options), whole(c, options);
    const std::size_t encoderSize = encoder.memory().size(), decoderSize = decoder.memory().size();
    Bytes encoderBlock(encoderSize + 64), decoderBlock(decoderSize + 64);
    for (std::size_t f = 0; f < expected.size(); ++f) {
      const std::size_t at = f * static_cast<std::size_t>(c.frameSamples);
      const Bytes theirs = neighbour.encode(&other[at]);
      neighboursDecoder.decode(&theirs);
      const Bytes* const received = f % 7 == 3 ? nullptr : &expected[f];
      const Samples heard = whole.decode(received);
      if (f % 2 == 0) {
        EXPECT_EQ(encoder.encode(&signal[at]), expected[f]) << c.name;
        EXPECT_EQ(decoder.decode(received), heard) << c.name;
        continue;
      }
      // An odd frame: in a copy elsewhere, and back
      std::uint8_t* const moved = encoderBlock.data() + f % 33;
      std::memcpy(moved, encoder.stream(), encoderSize);
      Bytes payload(static_cast<std::size_t>(c.maxPayload));
      const int octets =
          zppcEncode(reinterpret_cast<ZppcEncoder*>(moved), &signal[at], c.frameSamples, payload.data(), c.maxPayload);
      payload.resize(static_cast<std::size_t>(octets));
      EXPECT_EQ(payload, expected[f]) << c.name;
      std::memcpy(encoder.stream(), moved, encoderSize);

      std::uint8_t* const movedDecoder = decoderBlock.data() + f % 31;
      std::memcpy(movedDecoder, decoder.stream(), decoderSize);
      Samples pcm(static_cast<std::size_t>(c.frameSamples));
      zppcDecode(reinterpret_cast<ZppcDecoder*>(movedDecoder), octetsOf(received), static_cast<int>(expected[f].size()),
                 pcm.data(), c.frameSamples);
      EXPECT_EQ(pcm, heard) << c.name;
      std::memcpy(decoder.stream(), movedDecoder, decoderSize);
    }
  }
}

// Memory that a caller leaves behind on the stack
[[gnu::noinline]] int leaveOnStack(unsigned char value) {
  unsigned char memory[20000];
  std::memset(memory, value, sizeof memory);
  asm volatile("" : : "r"(memory) : "memory");
  return memory[value];
}

// Nothing that lay on the stack gets into a stream, so that equal streams are equal octets.
TEST_P(EveryCodec, KeepsNothingButItsState) {
  const ZppcCodec& c = codec();
  for (const ZppcOptions& options : allOptions(c)) {
    const Samples signal = signalFor(c, 36);
    Bytes sent, received;
    for (const unsigned char left : {0x00, 0xa7}) {
      Encoder encoder(c, options);
      Decoder decoder(c, options);
      for (int f = 0; f < 36; ++f) {
        leaveOnStack(left);
        const Bytes payload = encoder.encode(&signal[static_cast<std::size_t>(f * c.frameSamples)]);
        leaveOnStack(left);
        decoder.decode(f % 7 == 3 ? nullptr : &payload);
      }
      EXPECT_TRUE(sent.empty() || sent == encoder.memory()) << c.name;
      EXPECT_TRUE(received.empty() || received == decoder.memory()) << c.name;
      sent = encoder.memory();
      received = decoder.memory();
    }
  }
}

// Coding allocates nothing, whatever the signal, and every payload has a size of the codec's.
TEST_P(EveryCodec, CodesAnySignalWithoutAllocating) {
  const ZppcCodec& c = codec();
  for (const ZppcOptions& options : allOptions(c)) {
    std::vector<Samples> signals = {signalFor(c, frames())};
    const auto length = static_cast<std::size_t>(30 * c.frameSamples);
    std::mt19937 random(1);
    Samples full(length), square(length), impulses(length, 0), lowest(length, -32768), silence(length, 0);
    for (std::size_t n = 0; n < length; ++n) {
      full[n] = static_cast<std::int16_t>(random());
      square[n] = n / 7 % 2 ? 32767 : -32768;
      if (n % 977 == 0) impulses[n] = -32768;
    }
    for (const Samples& s : {full, square, impulses, lowest, silence}) signals.push_back(s);
    Encoder encoder(c, options);
    Decoder decoder(c, options);
    Bytes payload(static_cast<std::size_t>(c.maxPayload));
    Samples pcm(static_cast<std::size_t>(c.frameSamples));
    int frame = 0;
    const int before = allocations;
    for (const Samples& signal : signals)
      for (std::size_t n = 0; n + pcm.size() <= signal.size(); n += pcm.size(), ++frame) {
        const int octets = zppcEncode(encoder.stream(), &signal[n], c.frameSamples, payload.data(), c.maxPayload);
        const bool lost = frame % 11 == 5 || frame % 50 > 44;
        const int samples = zppcDecode(decoder.stream(), lost ? nullptr : payload.data(), octets, pcm.data(), c.frameSamples);
        if (octets < 0 || octets > c.maxPayload || samples != c.frameSamples)
          FAIL() << c.name << ", frame " << frame << ": " << octets << " octets, " << samples << " samples";
      }
    if (COUNTS_ALLOCATIONS) {
      EXPECT_EQ(allocations, before) << c.name;
    }
  }
}

#if COUNTS_ALLOCATIONS
// All frames of a call together
TEST_P(EveryCodec, TakesLittleStack) {
  const ZppcCodec& c = codec();
  test::PaintedStack stack;
  for (const ZppcOptions& options : allOptions(c)) {
    Encoder encoder(c, options);
    Decoder decoder(c, options);
    Bytes payload(static_cast<std::size_t>(c.maxPayload));
    Samples pcm(static_cast<std::size_t>(c.frameSamples));
    const Samples signal = signalFor(c, 20);
    const auto code = [&] {
      for (std::size_t n = 0, frame = 0; n + pcm.size() <= signal.size(); n += pcm.size(), ++frame) {
        const int octets = zppcEncode(encoder.stream(), &signal[n], c.frameSamples, payload.data(), c.maxPayload);
        zppcDecode(decoder.stream(), frame % 7 == 5 ? nullptr : payload.data(), octets, pcm.data(), c.frameSamples);
      }
    };
    EXPECT_LE(stack.depthOf(code), test::kCodecStack) << c.name;
  }
}
#endif

// Octets that no encoder sent: an error that changes nothing, or a frame of sound; never more than told.
TEST_P(EveryCodec, SurvivesGarbage) {
  const ZppcCodec& c = codec();
  for (const ZppcOptions& options : allOptions(c)) {
    std::mt19937 random(7);
    const std::vector<Bytes> good = encodeAll(c, options, signalFor(c, 60));
    Decoder decoder(c, options), twin(c, options);
    for (int round = 0; round < 3000; ++round) {
      Bytes octets;
      if (round % 3 == 0) {
        octets = good[random() % good.size()];
        if (!octets.empty()) octets[random() % octets.size()] ^= static_cast<std::uint8_t>(1u << random() % 8);
      } else {
        octets.resize(random() % static_cast<unsigned>(c.maxPayload + 3));
        for (auto& o : octets) o = static_cast<std::uint8_t>(random());
        if (round % 3 == 2 && !octets.empty()) octets[0] = good[random() % good.size()].empty() ? 0 : octets[0];
      }
      // A block of its own size: the sanitizers see a read beyond it.
      const Bytes payload = octets;
      if (payload.empty()) continue;
      Samples pcm(8 * payload.size() + static_cast<std::size_t>(c.frameSamples), kUnwrittenSample);
      const int samples = zppcDecode(decoder.stream(), payload.data(), static_cast<int>(payload.size()), pcm.data(),
                                     static_cast<int>(pcm.size()));
      if (samples < 0) {
        ASSERT_TRUE(samples == ZPPC_ERROR_SIZE || samples == ZPPC_ERROR_PAYLOAD) << c.name << ' ' << samples;
        ASSERT_TRUE(pcm == Samples(pcm.size(), kUnwrittenSample)) << c.name;
        continue;  // the twin does not see it
      }
      if (!has(c, ZPPC_FEATURE_SAMPLE_BASED)) {
        ASSERT_EQ(samples, c.frameSamples) << c.name;
      }
      Samples same(pcm.size(), kUnwrittenSample);
      ASSERT_EQ(zppcDecode(twin.stream(), payload.data(), static_cast<int>(payload.size()), same.data(),
                           static_cast<int>(same.size())),
                samples);
      ASSERT_TRUE(pcm == same) << c.name << ": a refused payload left a trace";
      for (std::size_t n = static_cast<std::size_t>(samples); n < pcm.size(); ++n)
        ASSERT_EQ(pcm[n], kUnwrittenSample) << c.name;
    }
  }
}

TEST_P(EveryCodec, ConcealsOrIsSilentFromTheFirstFrameOn) {
  const ZppcCodec& c = codec();
  for (const ZppcOptions& options : allOptions(c)) {
    Decoder decoder(c, options);
    for (int f = 0; f < 20; ++f) decoder.decode(nullptr);
    const Bytes nothing;
    for (int f = 0; f < 20; ++f) decoder.decode(&nothing);
    if (!has(c, ZPPC_FEATURE_CONCEALMENT)) {
      EXPECT_EQ(decoder.decode(nullptr), Samples(static_cast<std::size_t>(c.frameSamples), 0));
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Table, EveryCodec, testing::ValuesIn(allCodecs()), [](const auto& row) {
  std::string name = row.param->name;
  for (char& c : name)
    if (std::isalnum(static_cast<unsigned char>(c)) == 0) c = '_';
  return name;
});

// After speech a homing frame brings the encoder home, which makes of the next the one that brings the decoder home, which
// answers that after it with the same (3GPP TS 26.071, 26.171 and 46.001): at every bit rate.
TEST(Api, HomesAtEveryBitRate) {
  for (const char* name : {"amr", "amr-wb", "gsm-fr"}) {
    const ZppcCodec& c = *zppcFindCodec(name);
    for (int rate = 0; rate < c.bitRateCount; ++rate) {
      const ZppcOptions options{c.bitRates[rate], 0, 0};
      Encoder encoder(c, options);
      Decoder decoder(c, options);
      const Samples homing(static_cast<std::size_t>(c.frameSamples), 8);
      Samples speech = signalFor(c, 5), heard(homing.size());
      Bytes payload(static_cast<std::size_t>(c.maxPayload));
      for (int frame = 0; frame < 9; ++frame) {
        const std::int16_t* pcm = frame < 5 ? &speech[static_cast<std::size_t>(frame) * homing.size()] : homing.data();
        const int octets = zppcEncode(encoder.stream(), pcm, c.frameSamples, payload.data(), c.maxPayload);
        ASSERT_EQ(zppcDecode(decoder.stream(), payload.data(), octets, heard.data(), c.frameSamples), c.frameSamples);
        if (frame > 6) {
          EXPECT_EQ(heard, homing) << name << ' ' << c.bitRates[rate] << ", frame " << frame;
        }
      }
    }
  }
}

TEST(Api, FindsCodecsAndExplainsErrors) {
  EXPECT_EQ(zppcFindCodec(nullptr), nullptr);
  EXPECT_EQ(zppcFindCodec("g729 "), nullptr);
  EXPECT_EQ(zppcCodecs(nullptr), allCodecs().front());
  EXPECT_NE(std::string(zppcVersion()), "");
  std::vector<std::string> texts;
  for (int error = ZPPC_ERROR_MEMORY; error <= 0; ++error) texts.emplace_back(zppcErrorText(error));
  for (std::size_t i = 0; i < texts.size(); ++i)
    for (std::size_t j = 0; j < i; ++j) EXPECT_NE(texts[i], texts[j]);
  EXPECT_NE(zppcErrorText(-100), nullptr);
  zppcEncoderDestroy(nullptr);
  zppcDecoderDestroy(nullptr);
}

// A call takes as many frames as there are, and the result is that of a call for each.
TEST(Api, CodesAnyNumberOfFramesWhereSamplesAreCodedOneByOne) {
  for (const ZppcCodec* codec : allCodecs()) {
    if (!has(*codec, ZPPC_FEATURE_SAMPLE_BASED)) continue;
    for (const ZppcOptions& options : allOptions(*codec)) {
      const Samples signal = signalFor(*codec, 500);
      Bytes joined;
      for (const Bytes& payload : encodeAll(*codec, options, signal))
        joined.insert(joined.end(), payload.begin(), payload.end());
      Bytes atOnce(joined.size());
      Encoder encoder(*codec, options);
      ASSERT_EQ(zppcEncode(encoder.stream(), signal.data(), static_cast<int>(signal.size()), atOnce.data(),
                           static_cast<int>(atOnce.size())),
                static_cast<int>(joined.size()));
      EXPECT_EQ(atOnce, joined) << codec->name;
      Decoder one(*codec, options), all(*codec, options);
      Samples heard(signal.size());
      ASSERT_EQ(zppcDecode(all.stream(), joined.data(), static_cast<int>(joined.size()), heard.data(),
                           static_cast<int>(heard.size())),
                static_cast<int>(signal.size()));
      const std::size_t octets = joined.size() / 500, frame = static_cast<std::size_t>(codec->frameSamples);
      for (std::size_t f = 0; f < 500; ++f) {
        const Bytes payload(joined.begin() + static_cast<std::ptrdiff_t>(f * octets),
                            joined.begin() + static_cast<std::ptrdiff_t>((f + 1) * octets));
        const Samples part = one.decode(&payload);
        ASSERT_TRUE(std::equal(part.begin(), part.end(), heard.begin() + static_cast<std::ptrdiff_t>(f * frame)))
            << codec->name;
      }
      // Lost samples are as many as asked for.
      Samples lost(77, 1);
      EXPECT_EQ(zppcDecode(all.stream(), nullptr, 0, lost.data(), 77), 77);
      EXPECT_EQ(lost, Samples(77, 0));
    }
  }
}

}  // namespace
