#include <sndfile.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstring>
#include <filesystem>

#include "errors.h"
#include "pcm.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

// A file in memory: pipes cannot be searched, and the headers of most formats tell lengths.
struct Memory {
  Bytes bytes;
  std::size_t position = 0;
};

SF_VIRTUAL_IO memoryAccess() {
  SF_VIRTUAL_IO access = {};
  access.get_filelen = [](void* user) { return static_cast<sf_count_t>(static_cast<Memory*>(user)->bytes.size()); };
  access.seek = [](sf_count_t offset, int whence, void* user) {
    auto& memory = *static_cast<Memory*>(user);
    const std::size_t base = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? memory.position : memory.bytes.size();
    memory.position = static_cast<std::size_t>(std::max<sf_count_t>(0, static_cast<sf_count_t>(base) + offset));
    return static_cast<sf_count_t>(memory.position);
  };
  access.read = [](void* data, sf_count_t count, void* user) {
    auto& memory = *static_cast<Memory*>(user);
    const std::size_t left = memory.bytes.size() - std::min(memory.position, memory.bytes.size());
    const std::size_t length = std::min(left, static_cast<std::size_t>(std::max<sf_count_t>(0, count)));
    if (length > 0) std::memcpy(data, memory.bytes.data() + memory.position, length);
    memory.position += length;
    return static_cast<sf_count_t>(length);
  };
  access.write = [](const void* data, sf_count_t count, void* user) {
    auto& memory = *static_cast<Memory*>(user);
    const auto length = static_cast<std::size_t>(std::max<sf_count_t>(0, count));
    if (memory.bytes.size() < memory.position + length) memory.bytes.resize(memory.position + length);
    if (length > 0) std::memcpy(memory.bytes.data() + memory.position, data, length);
    memory.position += length;
    return count;
  };
  access.tell = [](void* user) { return static_cast<sf_count_t>(static_cast<Memory*>(user)->position); };
  return access;
}

struct Close {
  void operator()(SNDFILE* file) const { sf_close(file); }
};
using SoundFile = std::unique_ptr<SNDFILE, Close>;

// libsndfile plays what there is of a WAV file that was cut off, so look where its data should end. Writers that cannot go back
// to the header announce a length near 2 or 4 GiB there, and mean all that follows.
bool isCutWav(const Bytes& bytes) {
  const auto word = [&](std::size_t at) {
    return bytes[at] | bytes[at + 1] << 8 | bytes[at + 2] << 16 | static_cast<std::uint64_t>(bytes[at + 3]) << 24;
  };
  if (bytes.size() < 12 || std::memcmp(bytes.data(), "RIFF", 4) != 0) return false;
  for (std::uint64_t at = 12; at + 8 <= bytes.size();) {
    const auto chunk = static_cast<std::size_t>(at);
    const std::uint64_t length = word(chunk + 4);
    if (std::memcmp(bytes.data() + chunk, "data", 4) == 0) return length < 0x7ffff000 && at + 8 + length > bytes.size();
    at += 8 + length + length % 2;
  }
  return true;
}

class SoundFileReader : public PcmReader {
 public:
  SoundFileReader(InputFile& file, int sampleRate) : name_(file.name()), memory_{file.readAll()} {
    SF_VIRTUAL_IO access = memoryAccess();
    file_.reset(sf_open_virtual(&access, SFM_READ, &info_, &memory_));
    const bool cut = isCutWav(memory_.bytes);
    if (!file_ && !cut) throw DataError(name_ + " is no audio file that libsndfile knows; for raw PCM say --raw");
    if (cut) throw DataError(name_ + " is truncated: it holds less than its header announces");
    if (info_.channels != 1) {
      throw DataError(name_ + " has " + std::to_string(info_.channels) + " channels; the codec needs one");
    }
    if (info_.samplerate != sampleRate) {
      throw DataError(name_ + " has " + std::to_string(info_.samplerate) + " samples a second; the codec needs " +
                      std::to_string(sampleRate));
    }
  }

  std::size_t read(std::span<std::int16_t> samples) override {
    const sf_count_t count = isFloat() ? readFloats(samples) : sf_readf_short(file_.get(), samples.data(), std::ssize(samples));
    if (count == 0 && done_ < info_.frames) throw DataError(name_ + " is truncated: it holds less than its header announces");
    done_ += count;
    return static_cast<std::size_t>(count);
  }

  std::optional<std::uint64_t> length() const override { return static_cast<std::uint64_t>(info_.frames); }

 private:
  bool isFloat() const {
    const int subtype = info_.format & SF_FORMAT_SUBMASK;
    return subtype == SF_FORMAT_FLOAT || subtype == SF_FORMAT_DOUBLE;
  }

  // libsndfile would not scale them, or would scale them to the loudest sample.
  sf_count_t readFloats(std::span<std::int16_t> samples) {
    std::vector<float> values(samples.size());
    const sf_count_t count = sf_readf_float(file_.get(), values.data(), std::ssize(values));
    std::ranges::transform(values, samples.begin(), [](float value) {
      const float scaled = std::clamp(32768 * value, -32768.0f, 32767.0f);
      return static_cast<std::int16_t>(std::isnan(scaled) ? 0 : std::lrint(scaled));
    });
    return count;
  }

  std::string name_;
  Memory memory_;
  SF_INFO info_ = {};
  SoundFile file_;
  sf_count_t done_ = 0;
};

int formatOf(const std::string& path) {
  std::string ending = std::filesystem::path(path).extension();
  std::ranges::transform(ending, ending.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  if (ending.empty() || ending == ".wav") return SF_FORMAT_WAV;
  if (ending == ".flac") return SF_FORMAT_FLAC;
  if (ending == ".au") return SF_FORMAT_AU;
  if (ending == ".aiff" || ending == ".aif") return SF_FORMAT_AIFF;
  throw UsageError("the ending '" + ending + "' of " + path +
                   " names no audio format; use .wav, .flac, .au or .aiff, or say --raw for raw PCM");
}

class SoundFileWriter : public PcmWriter {
 public:
  SoundFileWriter(OutputFile& file, const std::string& path, int sampleRate) : out_(file) {
    SF_INFO info = {};
    info.samplerate = sampleRate;
    info.channels = 1;
    info.format = formatOf(path) | SF_FORMAT_PCM_16;
    SF_VIRTUAL_IO access = memoryAccess();
    file_.reset(sf_open_virtual(&access, SFM_WRITE, &info, &memory_));
    if (!file_) throw DataError("libsndfile cannot write this format: " + std::string(sf_strerror(nullptr)));
  }

  void write(std::span<const std::int16_t> samples) override {
    const sf_count_t count = std::ssize(samples);
    if (sf_writef_short(file_.get(), samples.data(), count) != count) throw DataError(sf_strerror(file_.get()));
  }

  void finish() override {
    file_.reset();  // completes the header
    out_.write(memory_.bytes);
  }

 private:
  OutputFile& out_;
  Memory memory_;
  SoundFile file_;
};

}  // namespace

std::unique_ptr<PcmReader> openAudio(InputFile& file, int sampleRate) {
  return std::make_unique<SoundFileReader>(file, sampleRate);
}

std::unique_ptr<PcmWriter> createAudio(OutputFile& file, const std::string& path, int sampleRate) {
  return std::make_unique<SoundFileWriter>(file, path, sampleRate);
}
