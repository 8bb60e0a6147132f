// The table of codecs behind the C API: for each what it tells about itself, and its two directions as functions on memory.
#pragma once

#include <concepts>
#include <cstddef>
#include <new>
#include <span>
#include <type_traits>

#include "codecs/codec.h"
#include "zppcodecs.h"

namespace codecs {

struct EncoderRow {
  std::size_t size, alignment;
  void (*start)(void* memory, const Options& options);
  int (*encode)(void* encoder, const Zpp16s* pcm, int samples, Zpp8u* payload);
  int (*capacityFor)(const void* encoder, int samples);  // octets of these samples at most
  void (*setBitRate)(void* encoder, int bitRate);        // null: the rate stays
  int (*unsent)(const void* encoder, Zpp8u* payload);    // null: unknown
  unsigned (*flags)(const void* encoder);                // of the last frame; null: the codec has none
};

struct DecoderRow {
  std::size_t size, alignment;
  void (*start)(void* memory, const Options& options);
  int (*samplesOf)(const void* decoder, int octets);  // that a payload of so many octets decodes to; 0: no payload has so many
  // False: no payload of this codec. receiveType: below 0, as the payload says; another one only where takesReceiveTypes
  bool (*decode)(void* decoder, int receiveType, const Zpp8u* payload, int octets, Zpp16s* pcm);
  void (*conceal)(void* decoder, Zpp16s* pcm);  // null: lost samples are silence
  bool takesReceiveTypes;
};

struct CodecRow {
  ZppcCodec codec;
  int lastVariant;
  EncoderRow encoder;
  DecoderRow decoder;
};

std::span<const CodecRow> codecRows();
// The row of the public table; null if the pointer is none of its rows
const CodecRow* rowOf(const ZppcCodec* codec);

// zppcDecode with a receive type of the codec's standard instead of the payload's own, for those who read files that hold it
int decodeAs(ZppcDecoder* decoder, int receiveType, const Zpp8u* payload, int octets, Zpp16s* pcm, int capacity);

// After a frame of comfort noise: the payload that describes it, sent or not, where the standard's files hold it. Returns its
// octets, 0 where the codec does not tell.
int unsentPayload(ZppcEncoder* encoder, Zpp8u* payload);
// What the standard's test files tell of the last frame beside its bits; 0 of codecs that have nothing to tell
unsigned flagsOf(ZppcEncoder* encoder);

// A codec of which a call takes any number of whole frames
template <class Encoder>
concept SampleBasedEncoder = requires(Encoder& e, const Zpp16s* pcm, int samples, Zpp8u* payload) {
  { e.octetsOf(samples) } -> std::same_as<int>;
  e.encode(pcm, samples, payload);
};
template <class Decoder>
concept SampleBasedDecoder = requires(Decoder& d, const Zpp8u* payload, int octets, Zpp16s* pcm) {
  { d.samplesOf(octets) } -> std::same_as<int>;
  d.decode(payload, octets, pcm);
};

template <class Encoder, int maxPayload>
constexpr EncoderRow encoderRow() {
  static_assert(std::is_trivially_copyable_v<Encoder> && std::is_trivially_destructible_v<Encoder>);
  EncoderRow row{};
  row.size = sizeof(Encoder), row.alignment = alignof(Encoder);
  row.start = [](void* memory, const Options& options) { new (memory) Encoder(options); };
  if constexpr (SampleBasedEncoder<Encoder>) {
    row.encode = [](void* encoder, const Zpp16s* pcm, int samples, Zpp8u* payload) {
      Encoder& e = *static_cast<Encoder*>(encoder);
      e.encode(pcm, samples, payload);
      return e.octetsOf(samples);
    };
    row.capacityFor = [](const void* encoder, int samples) { return static_cast<const Encoder*>(encoder)->octetsOf(samples); };
  } else {
    row.encode = [](void* encoder, const Zpp16s* pcm, int, Zpp8u* payload) {
      return static_cast<Encoder*>(encoder)->encode(pcm, payload);
    };
    row.capacityFor = [](const void*, int) { return maxPayload; };
  }
  if constexpr (requires(Encoder & e) { e.setBitRate(0); })
    row.setBitRate = [](void* encoder, int bitRate) { static_cast<Encoder*>(encoder)->setBitRate(bitRate); };
  if constexpr (requires(const Encoder& e, Zpp8u* payload) { e.unsent(payload); })
    row.unsent = [](const void* encoder, Zpp8u* payload) { return static_cast<const Encoder*>(encoder)->unsent(payload); };
  if constexpr (requires(const Encoder& e) { e.flags(); })
    row.flags = [](const void* encoder) { return static_cast<const Encoder*>(encoder)->flags(); };
  return row;
}

template <class Decoder, int frameSamples>
constexpr DecoderRow decoderRow() {
  static_assert(std::is_trivially_copyable_v<Decoder> && std::is_trivially_destructible_v<Decoder>);
  DecoderRow row{};
  row.size = sizeof(Decoder), row.alignment = alignof(Decoder);
  row.start = [](void* memory, const Options& options) { new (memory) Decoder(options); };
  if constexpr (SampleBasedDecoder<Decoder>) {
    row.samplesOf = [](const void* decoder, int octets) { return static_cast<const Decoder*>(decoder)->samplesOf(octets); };
    row.decode = [](void* decoder, int, const Zpp8u* payload, int octets, Zpp16s* pcm) {
      static_cast<Decoder*>(decoder)->decode(payload, octets, pcm);
      return true;
    };
  } else {
    row.samplesOf = [](const void* decoder, int octets) {
      return static_cast<const Decoder*>(decoder)->isPayloadSize(octets) ? frameSamples : 0;
    };
    row.decode = [](void* decoder, [[maybe_unused]] int receiveType, const Zpp8u* payload, int octets, Zpp16s* pcm) {
      Decoder& d = *static_cast<Decoder*>(decoder);
      if constexpr (requires { d.decodeAs(receiveType, payload, octets, pcm); })
        if (receiveType >= 0) return d.decodeAs(receiveType, payload, octets, pcm);
      return d.decode(payload, octets, pcm);
    };
    row.conceal = [](void* decoder, Zpp16s* pcm) { static_cast<Decoder*>(decoder)->conceal(pcm); };
    row.takesReceiveTypes = requires(Decoder & d, const Zpp8u* payload, Zpp16s* pcm) { d.decodeAs(0, payload, 0, pcm); };
  }
  return row;
}

template <class Encoder, class Decoder, int frameSamples, int maxPayload>
constexpr CodecRow codecRow(ZppcCodec codec, int lastVariant = 0) {
  codec.frameSamples = frameSamples;
  codec.maxPayload = maxPayload;
  if (SampleBasedEncoder<Encoder>) codec.features |= ZPPC_FEATURE_SAMPLE_BASED;
  if (requires(Encoder & e) { e.setBitRate(0); }) codec.features |= ZPPC_FEATURE_RATE_SWITCH;
  return {codec, lastVariant, encoderRow<Encoder, maxPayload>(), decoderRow<Decoder, frameSamples>()};
}

}  // namespace codecs
