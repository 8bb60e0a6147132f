#include "codecs/framing/stream.h"

#include <algorithm>

#include "codecs/registry.h"

namespace codecs::framing {
namespace {

std::size_t frameOf(const ZppcCodec& codec) { return static_cast<std::size_t>(codec.frameSamples); }

ZppcOptions withVariant(const Format& format) {
  ZppcOptions options = format.options;
  if (const int variant = findFraming(*format.entry, format.framing)->variant) options.variant = variant;
  return options;
}

template <class T>
T* started(T* stream, int error) {
  if (stream == nullptr) throw std::logic_error(zppcErrorText(error));
  return stream;
}

template <class T>
void dropFront(std::vector<T>& values, std::size_t count) {
  values.erase(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(count));
}

std::unique_ptr<Framing> framingOf(const Format& format) {
  return findFraming(*format.entry, format.framing)->make(*format.entry, format.options);
}

}  // namespace

Format defaultFormat(const Entry& entry) { return {&entry, entry.framings.front().name, entry.options}; }

const Choice* findFraming(const Entry& entry, std::string_view name) {
  const auto choice = std::ranges::find(entry.framings, name, &Choice::name);
  return choice == entry.framings.end() ? nullptr : &*choice;
}

const Entry* findEntry(std::string_view name) {
  const auto entry = std::ranges::find(catalogue(), name, &Entry::name);
  return entry == catalogue().end() ? nullptr : &*entry;
}

StreamEncoder::StreamEncoder(const Format& format, std::vector<int> rates)
    : codec_(*format.entry->codec),
      framing_(framingOf(format)),
      encoder_(nullptr, zppcEncoderDestroy),
      rates_(std::move(rates)) {
  const ZppcOptions options = withVariant(format);
  int error = 0;
  ZppcEncoder* const encoder = zppcEncoderCreate(&codec_, &options, &error);
  encoder_.reset(started(encoder, error));
}

// count: of the frames' samples, those that belong to the signal
void StreamEncoder::encode(std::span<const std::int16_t> frames, int count, Bytes& stream) {
  if (!begun_) framing_->begin(stream);
  begun_ = true;
  if (frames.empty()) return;
  if (!rates_.empty()) {
    const int rate = rates_[std::min(frame_, rates_.size() - 1)];
    if (rate < 0 || rate >= codec_.bitRateCount)
      throw StreamError("rate " + std::to_string(rate) + " of frame " + std::to_string(frame_) + " is none of its " +
                        std::to_string(codec_.bitRateCount));
    zppcEncoderSetBitRate(encoder_.get(), codec_.bitRates[rate]);
  }
  ++frame_;
  payload_.resize(frames.size() / frameOf(codec_) * static_cast<std::size_t>(codec_.maxPayload));
  const int octets = zppcEncode(encoder_.get(), frames.data(), static_cast<int>(frames.size()), payload_.data(),
                                static_cast<int>(payload_.size()));
  if (octets < 0) throw std::logic_error(zppcErrorText(octets));
  unsent_.resize(static_cast<std::size_t>(codec_.maxPayload));
  const int unsent = unsentPayload(encoder_.get(), unsent_.data());
  framing_->append({.payload = std::span(payload_).first(static_cast<std::size_t>(octets)),
                    .samples = count,
                    .unsent = std::span(unsent_).first(static_cast<std::size_t>(unsent)),
                    .flags = flagsOf(encoder_.get())},
                   stream);
}

void StreamEncoder::add(std::span<const std::int16_t> samples, Bytes& stream) {
  pending_.insert(pending_.end(), samples.begin(), samples.end());
  const std::size_t frame = frameOf(codec_), whole = pending_.size() / frame * frame;
  if (sampleBased(codec_)) {
    encode(std::span(pending_).first(whole), -1, stream);
  } else {
    for (std::size_t n = 0; n < whole; n += frame) encode(std::span(pending_).subspan(n, frame), -1, stream);
  }
  dropFront(pending_, whole);
}

void StreamEncoder::finish(Bytes& stream) {
  const std::size_t rest = pending_.size();
  if (sampleBased(codec_) && rest > 0) {
    pending_.resize(frameOf(codec_));
    encode(pending_, static_cast<int>(rest), stream);
  }
  while (!framing_->mayEnd()) encode(Samples(frameOf(codec_)), -1, stream);
  encode({}, 0, stream);
  pending_.clear();
  framing_->end(stream);
}

StreamDecoder::StreamDecoder(const Format& format, Reception reception)
    : codec_(*format.entry->codec),
      framing_(framingOf(format)),
      decoder_(nullptr, zppcDecoderDestroy),
      reception_(std::move(reception)) {
  const ZppcOptions options = withVariant(format);
  int error = 0;
  ZppcDecoder* const decoder = zppcDecoderCreate(&codec_, &options, &error);
  decoder_.reset(started(decoder, error));
}

void StreamDecoder::decode(const Frame& frame, Samples& samples) {
  const std::size_t start = samples.size();
  // A bit is worth a sample at least.
  const std::size_t most =
      sampleBased(codec_) ? std::max<std::size_t>(8 * frame.payload.size(), frameOf(codec_)) : frameOf(codec_);
  const bool lost = frame_ < reception_.lost.size() ? reception_.lost[frame_] || frame.lost : frame.lost;
  const int receiveType = frame_ < reception_.receiveTypes.size() ? reception_.receiveTypes[frame_] : frame.receiveType;
  samples.resize(start + most);
  // Nothing sent is a payload without octets, which still has a place.
  static constexpr std::uint8_t nothing = 0;
  const std::uint8_t* const payload = lost ? nullptr : frame.payload.empty() ? &nothing : frame.payload.data();
  const int capacity = static_cast<int>(lost ? frameOf(codec_) : most);
  const int count =
      decodeAs(decoder_.get(), receiveType, payload, static_cast<int>(frame.payload.size()), samples.data() + start, capacity);
  if (count < 0) throw StreamError("frame " + std::to_string(frame_) + ": " + zppcErrorText(count));
  ++frame_;
  samples.resize(start + static_cast<std::size_t>(frame.samples >= 0 ? std::min(frame.samples, count) : count));
}

void StreamDecoder::decode(bool ended, Samples& samples) {
  std::size_t used = framing_->takeBegin(pending_);
  const bool single = !reception_.lost.empty();
  while (const auto frame = framing_->take(std::span(pending_).subspan(used), ended, single)) {
    used += frame->size;
    decode(*frame, samples);
  }
  dropFront(pending_, used);
}

void StreamDecoder::add(std::span<const std::uint8_t> bytes, Samples& samples) {
  pending_.insert(pending_.end(), bytes.begin(), bytes.end());
  decode(false, samples);
}

std::size_t StreamDecoder::finish(Samples& samples) {
  decode(true, samples);
  return pending_.size();
}

}  // namespace codecs::framing
