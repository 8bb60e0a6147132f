#include "codecs/g723/payload.h"

#include <algorithm>

namespace codecs::g723 {
namespace {

constexpr int kLeastLag = 18, kLargestLagCode = 123;
constexpr int kLevels = 24;
constexpr int kTrainLags = 58;        // lags below it may have pulse trains
constexpr int kTrainBit = 11;         // of the gain field
constexpr int kLowBits[] = {16, 14};  // of the number of a combination, in even and in odd subframes
constexpr int kSignBits[] = {6, 5};

// Fields from the lowest bit of the first octet upwards
class Writer {
 public:
  explicit Writer(Zpp8u* octets) : octets_(octets) {}
  void put(Zpp32s value, int width) {
    for (int i = 0; i < width; ++i, ++at_) octets_[at_ / 8] |= static_cast<Zpp8u>((value >> i & 1) << (at_ % 8));
  }

 private:
  Zpp8u* octets_;
  int at_ = 0;
};

class Reader {
 public:
  explicit Reader(const Zpp8u* octets) : octets_(octets) {}
  Zpp32s get(int width) {
    Zpp32s value = 0;
    for (int i = 0; i < width; ++i, ++at_) value |= (octets_[at_ / 8] >> (at_ % 8) & 1) << i;
    return value;
  }

 private:
  const Zpp8u* octets_;
  int at_ = 0;
};

// The upper parts of the four numbers share a field: the low parts leave 10 and 9 values.
void putPositions(const Frame& frame, Writer& writer) {
  constexpr int kOddValues = 9, kPairValues = 90;
  const auto high = [&](unsigned i) { return frame.codeword[i][3] >> kLowBits[i % 2]; };
  writer.put(0, 1);
  writer.put((high(0) * kOddValues + high(1)) * kPairValues + high(2) * kOddValues + high(3), 13);
  for (unsigned i = 0; i < kSubframes; ++i) writer.put(frame.codeword[i][3], kLowBits[i % 2]);
}

void getPositions(Reader& reader, Frame& frame) {
  constexpr int kOddValues = 9, kPairValues = 90;
  reader.get(1);
  const Zpp32s high = reader.get(13);
  const Zpp32s parts[] = {high / kPairValues / kOddValues, high / kPairValues % kOddValues, high % kPairValues / kOddValues,
                          high % kPairValues % kOddValues};
  for (unsigned i = 0; i < kSubframes; ++i) frame.codeword[i][3] = parts[i] << kLowBits[i % 2] | reader.get(kLowBits[i % 2]);
}

// Gain index of the adaptive codebook, level of the fixed one and, at the high rate with a short lag, the pulse train
bool getGains(Reader& reader, Frame& frame, unsigned i) {
  const bool mayHaveTrain = frame.kind == Kind::highRate && frame.lag[i / 2] < kTrainLags;
  const Zpp32s field = reader.get(12);
  const Zpp32s number = mayHaveTrain ? field & ((1 << kTrainBit) - 1) : field;
  frame.gainIndex[i] = static_cast<Zpp16s>(number / kLevels);
  frame.codeword[i][0] = number % kLevels;
  frame.codeword[i][2] = mayHaveTrain ? field >> kTrainBit : 0;
  return frame.gainIndex[i] < (mayHaveTrain ? 85 : 170);
}

}  // namespace

void pack(const Frame& frame, Zpp8u* payload) {
  std::fill_n(payload, payloadSize(frame.kind), Zpp8u{0});
  Writer writer(payload);
  writer.put(static_cast<int>(frame.kind), 2);
  writer.put(frame.lsfIndex, 24);
  if (frame.kind == Kind::descriptor) return writer.put(frame.noiseGain, 6);
  for (unsigned half = 0; half < 2; ++half) {
    writer.put(frame.lag[half] - kLeastLag, 7);
    writer.put(frame.offset[2 * half + 1], 2);
  }
  for (unsigned i = 0; i < kSubframes; ++i)
    writer.put(frame.gainIndex[i] * kLevels + frame.codeword[i][0] + (frame.codeword[i][2] << kTrainBit), 12);
  for (const Codeword& codeword : frame.codeword) writer.put(codeword[1], 1);
  if (frame.kind == Kind::highRate) {
    putPositions(frame, writer);
    for (unsigned i = 0; i < kSubframes; ++i) writer.put(frame.codeword[i][4], kSignBits[i % 2]);
  } else {
    for (const Codeword& codeword : frame.codeword) writer.put(codeword[3], 12);
    for (const Codeword& codeword : frame.codeword) writer.put(codeword[4], 4);
  }
}

bool unpack(const Zpp8u* payload, Frame& frame) {
  Reader reader(payload);
  frame.kind = static_cast<Kind>(reader.get(2));
  if (frame.kind == Kind::untransmitted) return true;
  frame.lsfIndex = reader.get(24);
  if (frame.kind == Kind::descriptor) {
    frame.noiseGain = static_cast<Zpp16s>(reader.get(6));
    return true;
  }
  for (unsigned half = 0; half < 2; ++half) {
    const Zpp32s lag = reader.get(7);
    if (lag > kLargestLagCode) return false;
    frame.lag[half] = static_cast<Zpp16s>(lag + kLeastLag);
    frame.offset[2 * half] = 1;
    frame.offset[2 * half + 1] = static_cast<Zpp16s>(reader.get(2));
  }
  for (unsigned i = 0; i < kSubframes; ++i)
    if (!getGains(reader, frame, i)) return false;
  for (Codeword& codeword : frame.codeword) codeword[1] = reader.get(1);
  if (frame.kind == Kind::highRate) {
    getPositions(reader, frame);
    for (unsigned i = 0; i < kSubframes; ++i) frame.codeword[i][4] = reader.get(kSignBits[i % 2]);
  } else {
    for (Codeword& codeword : frame.codeword) codeword[3] = reader.get(12);
    for (Codeword& codeword : frame.codeword) codeword[4] = reader.get(4);
  }
  return true;
}

}  // namespace codecs::g723
