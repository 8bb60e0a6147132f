#include "pcm.h"

#include "errors.h"

namespace {

class RawReader : public PcmReader {
 public:
  explicit RawReader(InputFile& file) : file_(file) {
    if (file.startsLikeWav()) throw DataError(file.name() + " is a WAV file, not raw PCM; leave out --raw");
  }

  std::size_t read(std::span<std::int16_t> samples) override {
    bytes_.resize(2 * samples.size());
    std::size_t end = odd_ ? 1 : 0;
    if (odd_) bytes_[0] = *odd_;
    do {
      const std::size_t count = file_.read(std::span(bytes_).subspan(end));
      if (count == 0 && end == 0) return 0;
      if (count == 0) throw DataError(file_.name() + " ends in the middle of a sample; raw PCM has two bytes a sample");
      end += count;
    } while (end < 2);
    for (std::size_t n = 0; n < end / 2; ++n) samples[n] = static_cast<std::int16_t>(bytes_[2 * n] | bytes_[2 * n + 1] << 8);
    odd_.reset();
    if (end % 2 != 0) odd_ = bytes_[end - 1];
    return end / 2;
  }

  std::optional<std::uint64_t> length() const override {
    const auto bytes = file_.size();
    return bytes ? std::optional(*bytes / 2) : std::nullopt;
  }

 private:
  InputFile& file_;
  std::vector<std::uint8_t> bytes_;
  std::optional<std::uint8_t> odd_;  // first half of a sample
};

class RawWriter : public PcmWriter {
 public:
  explicit RawWriter(OutputFile& file) : file_(file) {}

  void write(std::span<const std::int16_t> samples) override {
    bytes_.clear();
    for (const int sample : samples) {
      bytes_.push_back(static_cast<std::uint8_t>(sample));
      bytes_.push_back(static_cast<std::uint8_t>(sample >> 8));
    }
    file_.write(bytes_);
  }

  void finish() override {}

 private:
  OutputFile& file_;
  std::vector<std::uint8_t> bytes_;
};

}  // namespace

std::unique_ptr<PcmReader> openPcm(InputFile& file, bool raw, int sampleRate) {
  return raw ? std::make_unique<RawReader>(file) : openAudio(file, sampleRate);
}

std::unique_ptr<PcmWriter> createPcm(OutputFile& file, bool raw, const std::string& path, int sampleRate) {
  return raw ? std::make_unique<RawWriter>(file) : createAudio(file, path, sampleRate);
}

std::vector<std::int16_t> readAllPcm(InputFile& file, bool raw, int sampleRate) {
  const auto reader = openPcm(file, raw, sampleRate);
  std::vector<std::int16_t> all;
  std::vector<std::int16_t> block(1 << 15);
  while (const std::size_t count = reader->read(block)) {
    all.insert(all.end(), block.begin(), block.begin() + static_cast<std::ptrdiff_t>(count));
  }
  if (all.empty()) throw DataError(file.name() + " holds no samples");
  return all;
}
