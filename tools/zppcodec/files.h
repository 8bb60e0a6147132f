// Byte input and output: files, or standard input and output for "-".
#ifndef ZPPCODEC_FILES_H
#define ZPPCODEC_FILES_H

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "temporary_file.h"

class InputFile {
 public:
  explicit InputFile(const std::string& path);
  ~InputFile();
  InputFile(const InputFile&) = delete;
  InputFile& operator=(const InputFile&) = delete;

  // Reads what is there, up to the size of bytes, and waits for the first byte only. 0: the end.
  std::size_t read(std::span<std::uint8_t> bytes);
  std::vector<std::uint8_t> readAll();

  // Whether the input begins like a WAV file. Ask before the first read.
  bool startsLikeWav();

  int descriptor() const { return descriptor_; }
  const std::string& name() const { return name_; }  // for messages
  std::optional<std::uint64_t> size() const;         // of a regular file

 private:
  std::string name_;
  int descriptor_;
  std::vector<std::uint8_t> ahead_;  // read but not yet delivered
};

// A new file appears under its name, replacing an older one, at commit(); without commit() nothing is left behind. What is no
// regular file (a pipe, a device) is written at once.
class OutputFile {
 public:
  // Refuses to write over the input, under whatever name.
  OutputFile(const std::string& path, const InputFile& input);
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  void write(std::span<const std::uint8_t> bytes);
  void commit();

 private:
  std::string name_;
  std::optional<TemporaryFile> temporary_;  // none when written at once
  int descriptor_ = -1;
};

#endif
