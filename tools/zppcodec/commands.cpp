#include "commands.h"

#include <cmath>
#include <cstdio>

#include "errors.h"
#include "files.h"
#include "pcm.h"
#include "progress.h"
#include "quality.h"

using codecs::Bytes;
using codecs::Codec;
using codecs::Samples;

namespace {

template <class T>
void dropFront(std::vector<T>& values, std::size_t count) {
  values.erase(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(count));
}

// Codes a signal that arrives in pieces of any size.
class Encoding {
 public:
  explicit Encoding(const Job& job)
      : encoder_(job.codec->makeEncoder(job.framing)), frame_(static_cast<std::size_t>(job.codec->samplesPerFrame)) {}

  void add(std::span<const std::int16_t> samples, Bytes& stream) {
    pending_.insert(pending_.end(), samples.begin(), samples.end());
    const std::size_t whole = pending_.size() / frame_ * frame_;
    encoder_->encode(std::span(pending_).first(whole), stream);
    dropFront(pending_, whole);
  }

  void finish(Bytes& stream) { encoder_->finish(pending_, stream); }

 private:
  std::unique_ptr<codecs::Encoder> encoder_;
  std::size_t frame_;
  Samples pending_;
};

// Decodes a stream that arrives in pieces of any size.
class Decoding {
 public:
  Decoding(const Job& job, std::string source)
      : decoder_(job.codec->makeDecoder(job.framing)),
        source_(std::move(source)),
        kind_(std::string(job.codec->name) + " stream in framing " + std::string(job.framing)) {}

  void add(std::span<const std::uint8_t> bytes, Samples& samples) {
    pending_.insert(pending_.end(), bytes.begin(), bytes.end());
    try {
      dropFront(pending_, decoder_->decode(pending_, samples));
    } catch (const codecs::StreamError& error) {
      throw DataError(source_ + " is no " + kind_ + ": " + error.what());
    }
  }

  void finish() const {
    if (pending_.empty()) return;
    throw DataError(source_ + " is truncated, or no " + kind_ + ": it ends with " + std::to_string(pending_.size()) +
                    (pending_.size() == 1 ? " byte that is" : " bytes that are") + " no whole frame");
  }

 private:
  std::unique_ptr<codecs::Decoder> decoder_;
  std::string source_, kind_;
  Bytes pending_;
};

std::string decibels(double value) {
  if (std::isnan(value)) return "n/a";
  char text[32];
  std::snprintf(text, sizeof text, "%.2f", value);
  return text;
}

}  // namespace

void encodeFile(const Job& job) {
  InputFile in(job.in);
  OutputFile out(job.out, in);
  const auto reader = openPcm(in, job.raw, job.codec->sampleRate);
  Encoding encoding(job);
  Progress progress("encoding", reader->length());
  Samples block(1 << 15);
  Bytes stream;
  bool any = false;
  while (const std::size_t count = reader->read(block)) {
    any = true;
    stream.clear();
    encoding.add(std::span(block).first(count), stream);
    out.write(stream);
    progress.advance(count);
  }
  if (!any) throw DataError(in.name() + " holds no samples");
  stream.clear();
  encoding.finish(stream);
  out.write(stream);
  out.commit();
}

void decodeFile(const Job& job) {
  InputFile in(job.in);
  OutputFile out(job.out, in);
  const auto writer = createPcm(out, job.raw, job.out, job.codec->sampleRate);
  if (in.startsLikeWav()) {
    throw DataError(in.name() + " is a WAV file; decode needs a bit stream of " + std::string(job.codec->name));
  }
  Decoding decoding(job, in.name());
  Progress progress("decoding", in.size());
  Bytes block(1 << 15);
  Samples samples;
  bool any = false;
  while (const std::size_t count = in.read(block)) {
    any = true;
    samples.clear();
    decoding.add(std::span(block).first(count), samples);
    writer->write(samples);
    progress.advance(count);
  }
  if (!any) throw DataError(in.name() + " holds no bit stream: it is empty");
  decoding.finish();
  writer->finish();
  out.commit();
}

void roundtrip(const Job& job) {
  const Codec& codec = *job.codec;
  InputFile in(job.in);
  std::optional<OutputFile> out;
  std::unique_ptr<PcmWriter> writer;
  if (!job.out.empty()) {
    out.emplace(job.out, in);
    writer = createPcm(*out, job.raw, job.out, codec.sampleRate);
  }
  const Samples original = readAllPcm(in, job.raw, codec.sampleRate);

  Encoding encoding(job);
  Decoding decoding(job, "the coded stream");
  Progress progress("coding", original.size());
  Samples decoded;
  Bytes stream;
  std::size_t bytes = 0;
  const auto pass = [&] {
    bytes += stream.size();
    decoding.add(stream, decoded);
    stream.clear();
  };
  constexpr std::size_t piece = 1 << 13;
  for (std::size_t at = 0; at < original.size(); at += piece) {
    const std::size_t count = std::min(piece, original.size() - at);
    encoding.add(std::span(original).subspan(at, count), stream);
    pass();
    progress.advance(count);
  }
  encoding.finish(stream);
  pass();
  decoding.finish();
  if (writer) {
    writer->write(decoded);
    writer->finish();
    out->commit();
  }

  const auto delay = std::min(static_cast<std::size_t>(codec.delay), decoded.size());
  const std::size_t common = std::min(original.size(), decoded.size() - delay);
  const auto reference = std::span(original).first(common);
  const auto delivered = std::span(decoded).subspan(delay, common);
  const std::string whole = decibels(snr(reference, delivered));
  const std::string segmental = decibels(segmentalSnr(reference, delivered, codec.sampleRate));
  const double seconds = static_cast<double>(original.size()) / codec.sampleRate;
  const std::string name(codec.name), framing(job.framing);
  // The report gives way to decoded speech on standard output.
  std::FILE* report = job.out == "-" ? stderr : stdout;
  if (job.tsv) {
    std::fprintf(report, "%s\t%zu\t%zu\t%s\t%s\n", name.c_str(), original.size(), bytes, whole.c_str(), segmental.c_str());
    return;
  }
  std::fprintf(report, "codec          %s, framing %s\n", name.c_str(), framing.c_str());
  std::fprintf(report, "speech         %zu samples, %.2f s\n", original.size(), seconds);
  std::fprintf(report, "bit stream     %zu bytes, %.2f kbit/s\n", bytes, 0.008 * static_cast<double>(bytes) / seconds);
  std::fprintf(report, "SNR            %s dB\n", whole.c_str());
  std::fprintf(report, "segmental SNR  %s dB\n", segmental.c_str());
}

void list(const Job& job) {
  if (!job.tsv)
    std::printf("%-11s  %6s  %6s  %6s  %-10s  %s\n", "codec", "Hz", "frame", "delay", "bit rate", "framings (default first)");
  for (const Codec& codec : codecs::registry()) {
    std::string framings;
    for (const auto framing : codec.framings) framings += (framings.empty() ? "" : job.tsv ? "," : ", ") + std::string(framing);
    std::printf(job.tsv ? "%s\t%d\t%d\t%d\t%s\t%s\n" : "%-11s  %6d  %6d  %6d  %-10s  %s\n", std::string(codec.name).c_str(),
                codec.sampleRate, codec.samplesPerFrame, codec.delay, std::string(codec.bitRate).c_str(), framings.c_str());
  }
}
