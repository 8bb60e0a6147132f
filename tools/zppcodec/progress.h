// A progress bar on stderr for long work; silent when stderr is no terminal or the length is not known.
#ifndef ZPPCODEC_PROGRESS_H
#define ZPPCODEC_PROGRESS_H

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

class Progress {
 public:
  Progress(std::string label, std::optional<std::uint64_t> total);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void advance(std::uint64_t amount);

 private:
  using Clock = std::chrono::steady_clock;

  std::string label_;
  std::uint64_t total_;
  std::uint64_t done_ = 0;
  Clock::time_point next_;  // when to draw again
  bool active_;
  bool drawn_ = false;
};

#endif
