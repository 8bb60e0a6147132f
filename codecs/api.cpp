// The C API: checks, and the table row's function on the stream's object.
//
// A stream is a block of the caller's memory at any address: a header of bytes, then the codec's object at the first place that
// suits its alignment. Where that is depends on the block's address; the header remembers it, and a copy of the block that lies
// differently puts its object right before the first call.
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "codecs/registry.h"

using namespace codecs;

namespace {

struct Header {
  Zpp8u codec;   // number of the row
  Zpp8u offset;  // of the object in the block
};

template <class Row>
Zpp8u offsetIn(const void* block, const Row& row) {
  const auto first = reinterpret_cast<std::uintptr_t>(block) + sizeof(Header);
  return static_cast<Zpp8u>(sizeof(Header) + ((0 - first) & (row.alignment - 1)));  // alignments are powers of two
}

template <class Row>
long blockSize(const Row& row) {
  return static_cast<long>(sizeof(Header) + row.alignment - 1 + row.size);
}

template <class Row>
void* objectIn(void* block, const Row& row) {
  auto* const bytes = static_cast<Zpp8u*>(block);
  Header header;
  std::memcpy(&header, bytes, sizeof header);
  const Zpp8u offset = offsetIn(block, row);
  if (header.offset != offset) {
    std::memmove(bytes + offset, bytes + header.offset, row.size);
    header.offset = offset;
    std::memcpy(bytes, &header, sizeof header);
  }
  return bytes + offset;
}

const CodecRow& rowIn(const void* block) {
  Header header;
  std::memcpy(&header, block, sizeof header);
  return codecRows()[header.codec];
}

bool hasBitRate(const ZppcCodec& codec, int bitRate) {
  for (int i = 0; i < codec.bitRateCount; ++i)
    if (codec.bitRates[i] == bitRate) return true;
  return false;
}

// A division would cost as much as some ten samples of G.711.
bool isWholeFrames(int samples, int frame) { return frame == 1 || samples % frame == 0; }

bool sampleBased(const CodecRow& row) { return (row.codec.features & ZPPC_FEATURE_SAMPLE_BASED) != 0; }

// 0, or an error
int checkOptions(const CodecRow& row, const ZppcOptions* wanted, Options& options) {
  options = {row.codec.defaultBitRate, false, 0};
  if (wanted == nullptr) return 0;
  if (wanted->bitRate != 0) {
    if (!hasBitRate(row.codec, wanted->bitRate)) return ZPPC_ERROR_OPTION;
    options.bitRate = wanted->bitRate;
  }
  if (wanted->dtx != 0) {
    if (wanted->dtx != 1 || (row.codec.features & ZPPC_FEATURE_DTX) == 0) return ZPPC_ERROR_OPTION;
    options.dtx = true;
  }
  if (wanted->variant < 0 || wanted->variant > row.lastVariant) return ZPPC_ERROR_OPTION;
  options.variant = wanted->variant;
  return 0;
}

template <class Row>
long sizeOf(const ZppcCodec* codec, Row CodecRow::*side) {
  if (codec == nullptr) return ZPPC_ERROR_NULL;
  const CodecRow* const row = rowOf(codec);
  return row == nullptr ? long{ZPPC_ERROR_CODEC} : blockSize(row->*side);
}

// The block for a stream: the caller's, or with `own` a new one
template <class Row>
void* start(void* memory, std::size_t bytes, bool own, const ZppcCodec* codec, const ZppcOptions* wanted, int* error,
            Row CodecRow::*side) {
  const auto fail = [error](int code) {
    if (error != nullptr) *error = code;
    return nullptr;
  };
  if (codec == nullptr || (memory == nullptr && !own)) return fail(ZPPC_ERROR_NULL);
  const CodecRow* const row = rowOf(codec);
  if (row == nullptr) return fail(ZPPC_ERROR_CODEC);
  Options options;
  if (const int wrong = checkOptions(*row, wanted, options)) return fail(wrong);
  const auto size = static_cast<std::size_t>(blockSize(row->*side));
  if (own) {
    memory = std::malloc(size);
    if (memory == nullptr) return fail(ZPPC_ERROR_MEMORY);
  } else if (bytes < size) {
    return fail(ZPPC_ERROR_SIZE);
  }
  const Header header = {static_cast<Zpp8u>(row - codecRows().data()), offsetIn(memory, row->*side)};
  std::memset(memory, 0, size);
  std::memcpy(memory, &header, sizeof header);
  (row->*side).start(static_cast<Zpp8u*>(memory) + header.offset, options);
  if (error != nullptr) *error = 0;
  return memory;
}

}  // namespace

const ZppcCodec* zppcFindCodec(const char* name) {
  if (name == nullptr) return nullptr;
  int count = 0;
  const ZppcCodec* const rows = zppcCodecs(&count);
  for (int i = 0; i < count; ++i)
    if (std::strcmp(rows[i].name, name) == 0) return rows + i;
  return nullptr;
}

const char* zppcVersion(void) { return ZPPCODECS_VERSION; }

const char* zppcErrorText(int error) {
  switch (error) {
    case 0:
      return "no error";
    case ZPPC_ERROR_NULL:
      return "a required pointer is null";
    case ZPPC_ERROR_CODEC:
      return "the codec is not of this library's table";
    case ZPPC_ERROR_OPTION:
      return "the codec does not have this bit rate or option";
    case ZPPC_ERROR_SIZE:
      return "no frame of this codec has this size, or the memory block is too small";
    case ZPPC_ERROR_CAPACITY:
      return "the output does not fit";
    case ZPPC_ERROR_PAYLOAD:
      return "the octets are no payload of this codec";
    case ZPPC_ERROR_MEMORY:
      return "out of memory";
    default:
      return error > 0 ? "no error" : "unknown error";
  }
}

long zppcEncoderSize(const ZppcCodec* codec) { return sizeOf(codec, &CodecRow::encoder); }
long zppcDecoderSize(const ZppcCodec* codec) { return sizeOf(codec, &CodecRow::decoder); }

ZppcEncoder* zppcEncoderInit(void* memory, size_t bytes, const ZppcCodec* codec, const ZppcOptions* options, int* error) {
  return static_cast<ZppcEncoder*>(start(memory, bytes, false, codec, options, error, &CodecRow::encoder));
}
ZppcDecoder* zppcDecoderInit(void* memory, size_t bytes, const ZppcCodec* codec, const ZppcOptions* options, int* error) {
  return static_cast<ZppcDecoder*>(start(memory, bytes, false, codec, options, error, &CodecRow::decoder));
}
ZppcEncoder* zppcEncoderCreate(const ZppcCodec* codec, const ZppcOptions* options, int* error) {
  return static_cast<ZppcEncoder*>(start(nullptr, 0, true, codec, options, error, &CodecRow::encoder));
}
ZppcDecoder* zppcDecoderCreate(const ZppcCodec* codec, const ZppcOptions* options, int* error) {
  return static_cast<ZppcDecoder*>(start(nullptr, 0, true, codec, options, error, &CodecRow::decoder));
}
void zppcEncoderDestroy(ZppcEncoder* encoder) { std::free(encoder); }
void zppcDecoderDestroy(ZppcDecoder* decoder) { std::free(decoder); }

int zppcEncoderSetBitRate(ZppcEncoder* encoder, int bitRate) {
  if (encoder == nullptr) return ZPPC_ERROR_NULL;
  const CodecRow& row = rowIn(encoder);
  if (row.encoder.setBitRate == nullptr || !hasBitRate(row.codec, bitRate)) return ZPPC_ERROR_OPTION;
  row.encoder.setBitRate(objectIn(encoder, row.encoder), bitRate);
  return 0;
}

int zppcEncode(ZppcEncoder* encoder, const int16_t* pcm, int samples, uint8_t* payload, int capacity) {
  if (encoder == nullptr || pcm == nullptr || payload == nullptr) return ZPPC_ERROR_NULL;
  const CodecRow& row = rowIn(encoder);
  const int frame = row.codec.frameSamples;
  if (sampleBased(row) ? samples < frame || !isWholeFrames(samples, frame) : samples != frame) return ZPPC_ERROR_SIZE;
  void* const object = objectIn(encoder, row.encoder);
  if (capacity < row.encoder.capacityFor(object, samples)) return ZPPC_ERROR_CAPACITY;
  return row.encoder.encode(object, pcm, samples, payload);
}

int codecs::unsentPayload(ZppcEncoder* encoder, Zpp8u* payload) {
  const EncoderRow& row = rowIn(encoder).encoder;
  return row.unsent == nullptr ? 0 : row.unsent(objectIn(encoder, row), payload);
}

unsigned codecs::flagsOf(ZppcEncoder* encoder) {
  const EncoderRow& row = rowIn(encoder).encoder;
  return row.flags == nullptr ? 0 : row.flags(objectIn(encoder, row));
}

int zppcDecode(ZppcDecoder* decoder, const uint8_t* payload, int octets, int16_t* pcm, int capacity) {
  return decodeAs(decoder, -1, payload, octets, pcm, capacity);
}

int codecs::decodeAs(ZppcDecoder* decoder, int receiveType, const Zpp8u* payload, int octets, Zpp16s* pcm, int capacity) {
  if (decoder == nullptr || pcm == nullptr) return ZPPC_ERROR_NULL;
  const CodecRow& row = rowIn(decoder);
  void* const object = objectIn(decoder, row.decoder);
  const bool lost = payload == nullptr, absent = lost || octets == 0;
  if (sampleBased(row) && absent) {
    if (capacity < 0) return ZPPC_ERROR_CAPACITY;
    std::memset(pcm, 0, sizeof *pcm * static_cast<std::size_t>(capacity));
    return capacity;
  }
  const int samples = absent ? row.codec.frameSamples : octets < 0 ? 0 : row.decoder.samplesOf(object, octets);
  if (samples == 0) return ZPPC_ERROR_SIZE;
  if (capacity < samples) return ZPPC_ERROR_CAPACITY;
  if (lost) {
    row.decoder.conceal(object, pcm);
    return samples;
  }
  return row.decoder.decode(object, receiveType, payload, octets, pcm) ? samples : int{ZPPC_ERROR_PAYLOAD};
}
