// Speech samples from and to files: raw 16-bit little-endian PCM in every build; WAV and its like in builds with libsndfile.
#ifndef ZPPCODEC_PCM_H
#define ZPPCODEC_PCM_H

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "files.h"

class PcmReader {
 public:
  virtual ~PcmReader() = default;
  virtual std::size_t read(std::span<std::int16_t> samples) = 0;  // 0: the end
  virtual std::optional<std::uint64_t> length() const = 0;        // samples, where known before the end
};

class PcmWriter {
 public:
  virtual ~PcmWriter() = default;
  virtual void write(std::span<const std::int16_t> samples) = 0;
  virtual void finish() = 0;
};

// Raw PCM, or an audio file whose rate and number of channels are those that the codec needs.
std::unique_ptr<PcmReader> openPcm(InputFile& file, bool raw, int sampleRate);
std::vector<std::int16_t> readAllPcm(InputFile& file, bool raw, int sampleRate);

// path: its ending chooses the format of an audio file.
std::unique_ptr<PcmWriter> createPcm(OutputFile& file, bool raw, const std::string& path, int sampleRate);

// The audio files among them, with libsndfile or with the regret that there is none.
std::unique_ptr<PcmReader> openAudio(InputFile& file, int sampleRate);
std::unique_ptr<PcmWriter> createAudio(OutputFile& file, const std::string& path, int sampleRate);

#endif
