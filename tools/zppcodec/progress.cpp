#include "progress.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>

using namespace std::chrono_literals;

Progress::Progress(std::string label, std::optional<std::uint64_t> total)
    : label_(std::move(label)),
      total_(total.value_or(0)),
      next_(Clock::now() + 500ms),  // short work shows nothing
      active_(total_ > 0 && isatty(STDERR_FILENO) != 0) {}

Progress::~Progress() {
  if (drawn_) std::fputs("\r\033[K", stderr);
}

void Progress::advance(std::uint64_t amount) {
  done_ += amount;
  if (!active_ || Clock::now() < next_) return;
  next_ = Clock::now() + 100ms;
  drawn_ = true;
  constexpr int width = 40;
  const double part = std::min(1.0, static_cast<double>(done_) / static_cast<double>(total_));
  const auto filled = static_cast<std::size_t>(part * width);
  const std::string bar = std::string(filled, '#') + std::string(width - filled, '.');
  std::fprintf(stderr, "\r%s [%s] %3d%%", label_.c_str(), bar.c_str(), static_cast<int>(100 * part));
  std::fflush(stderr);
}
