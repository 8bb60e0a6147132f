#include "commands.h"

#include <cmath>
#include <cstdio>
#include <sstream>

#include "errors.h"
#include "files.h"
#include "pcm.h"
#include "progress.h"
#include "quality.h"

using codecs::framing::Bytes;
using codecs::framing::Entry;
using codecs::framing::Samples;
using codecs::framing::StreamDecoder;
using codecs::framing::StreamEncoder;

namespace {

// Sentences for what is no stream
class Decoding {
 public:
  Decoding(const Job& job, std::string source, codecs::framing::Reception reception = {})
      : decoder_(job.format, std::move(reception)),
        source_(std::move(source)),
        kind_(std::string(job.format.entry->name) + " stream in framing " + std::string(job.format.framing)) {}

  void add(std::span<const std::uint8_t> bytes, Samples& samples) {
    guarded([&] { decoder_.add(bytes, samples); });
  }

  void finish(Samples& samples) {
    std::size_t rest = 0;
    guarded([&] { rest = decoder_.finish(samples); });
    if (rest == 0) return;
    throw DataError(source_ + " is truncated, or no " + kind_ + ": it ends with " + std::to_string(rest) +
                    (rest == 1 ? " byte that is" : " bytes that are") + " no whole frame");
  }

 private:
  template <class Action>
  void guarded(Action action) const {
    try {
      action();
    } catch (const codecs::framing::StreamError& error) {
      throw DataError(source_ + " is no " + kind_ + ": " + error.what());
    }
  }

  StreamDecoder decoder_;
  std::string source_, kind_;
};

// A file of 16-bit words, low byte first: one a frame
std::vector<int> frameWords(const std::string& path) {
  InputFile in(path);
  const Bytes bytes = in.readAll();
  if (bytes.empty() || bytes.size() % 2 != 0) throw DataError(in.name() + " does not hold 16-bit words, one a frame");
  std::vector<int> words;
  for (std::size_t n = 0; n < bytes.size() / 2; ++n) words.push_back(static_cast<int>(codecs::framing::wordAt(bytes, n)));
  return words;
}

// A text file of numbers, one a frame
std::vector<int> frameNumbers(const std::string& path) {
  InputFile in(path);
  const Bytes bytes = in.readAll();
  std::istringstream text(std::string(bytes.begin(), bytes.end()));
  std::vector<int> numbers;
  for (int number = 0; text >> number;) numbers.push_back(number);
  if (!text.eof() || numbers.empty()) throw DataError(in.name() + " does not hold numbers, one a frame");
  return numbers;
}

std::vector<int> ratesOf(const Job& job) { return job.rates.empty() ? std::vector<int>{} : frameWords(job.rates); }

codecs::framing::Reception receptionOf(const Job& job) {
  codecs::framing::Reception reception;
  if (!job.lost.empty())
    for (const int word : frameWords(job.lost)) reception.lost.push_back(word != 0);
  if (!job.frameTypes.empty()) reception.receiveTypes = frameNumbers(job.frameTypes);
  return reception;
}

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
  const auto reader = openPcm(in, job.raw, job.format.entry->codec->sampleRate);
  StreamEncoder encoding(job.format, ratesOf(job));
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
  const auto writer = createPcm(out, job.raw, job.out, job.format.entry->codec->sampleRate);
  if (in.startsLikeWav()) {
    throw DataError(in.name() + " is a WAV file; decode needs a bit stream of " + std::string(job.format.entry->name));
  }
  Decoding decoding(job, in.name(), receptionOf(job));
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
  samples.clear();
  decoding.finish(samples);
  writer->write(samples);
  writer->finish();
  out.commit();
}

void roundtrip(const Job& job) {
  const ZppcCodec& codec = *job.format.entry->codec;
  InputFile in(job.in);
  std::optional<OutputFile> out;
  std::unique_ptr<PcmWriter> writer;
  if (!job.out.empty()) {
    out.emplace(job.out, in);
    writer = createPcm(*out, job.raw, job.out, codec.sampleRate);
  }
  const Samples original = readAllPcm(in, job.raw, codec.sampleRate);

  StreamEncoder encoding(job.format, ratesOf(job));
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
  decoding.finish(decoded);
  if (writer) {
    writer->write(decoded);
    writer->finish();
    out->commit();
  }

  const auto delay = std::min(static_cast<std::size_t>(codec.delaySamples), decoded.size());
  const std::size_t common = std::min(original.size(), decoded.size() - delay);
  const auto reference = std::span(original).first(common);
  const auto delivered = std::span(decoded).subspan(delay, common);
  const std::string whole = decibels(snr(reference, delivered));
  const std::string segmental = decibels(segmentalSnr(reference, delivered, codec.sampleRate));
  const double seconds = static_cast<double>(original.size()) / codec.sampleRate;
  const std::string name(job.format.entry->name), framing(job.format.framing);
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

namespace {

// "24 kbit/s", "6.4-11.8 kbit/s"; from 0 on where pauses are not sent
std::string bitRateOf(const Entry& entry) {
  const ZppcCodec& codec = *entry.codec;
  const auto kilobits = [](int bitRate) {
    char text[16];
    std::snprintf(text, sizeof text, "%g", bitRate / 1000.0);
    return std::string(text);
  };
  const int lowest = entry.everyRate ? codec.bitRates[0] : entry.options.bitRate;
  const int highest = entry.everyRate ? codec.bitRates[codec.bitRateCount - 1] : entry.options.bitRate;
  const std::string from = entry.options.dtx != 0 ? "0-" : lowest != highest ? kilobits(lowest) + "-" : "";
  return from + kilobits(highest) + " kbit/s";
}

}  // namespace

void list(const Job& job) {
  if (!job.tsv)
    std::printf("%-13s  %6s  %6s  %6s  %-16s  %s\n", "codec", "Hz", "frame", "delay", "bit rate", "framings (default first)");
  for (const Entry& entry : codecs::framing::catalogue()) {
    std::string framings;
    for (const auto& framing : entry.framings)
      framings += (framings.empty() ? "" : job.tsv ? "," : ", ") + std::string(framing.name);
    const ZppcCodec& codec = *entry.codec;
    std::printf(job.tsv ? "%s\t%d\t%d\t%d\t%s\t%s\n" : "%-13s  %6d  %6d  %6d  %-16s  %s\n", std::string(entry.name).c_str(),
                codec.sampleRate, codec.frameSamples, codec.delaySamples, bitRateOf(entry).c_str(), framings.c_str());
  }
}
