// Memory between two unreadable pages, for buffers that must not be read or written beyond their ends.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdlib>
#include <cstring>

namespace test {

// Where a buffer lies: its end or its start at an unreadable page, or some bytes off a 16-byte boundary in between.
struct Place {
  enum class Kind { end, start, middle } kind = Kind::end;
  unsigned offset = 0;

  // Places for one call's buffers differ, so that they are not all aligned alike.
  Place next(unsigned step = 6) const { return kind == Kind::middle ? Place{kind, (offset + step) % 16} : *this; }
};

class Guarded {
 public:
  explicit Guarded(std::size_t capacity) {
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    span_ = (capacity + 64 + page - 1) / page * page;
    mapped_ = span_ + 2 * page;
    base_ = static_cast<unsigned char*>(mmap(nullptr, mapped_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    if (base_ == MAP_FAILED || mprotect(base_ + page, span_, PROT_READ | PROT_WRITE) != 0) std::abort();
    inner_ = base_ + page;
  }
  ~Guarded() { munmap(base_, mapped_); }
  Guarded(const Guarded&) = delete;
  Guarded& operator=(const Guarded&) = delete;

  // Room for `bytes` at the place; offsets count in whole elements. The bytes around it are filled with canaries.
  unsigned char* claim(std::size_t bytes, Place place, std::size_t elementSize) {
    bytes_ = bytes;
    at_ = place.kind == Place::Kind::end     ? span_ - bytes
          : place.kind == Place::Kind::start ? 0
                                             : 16 + place.offset / elementSize * elementSize;
    std::memset(inner_ + marginBegin(), kCanary, marginEnd() - marginBegin());
    return inner_ + at_;
  }
  unsigned char* data() { return inner_ + at_; }
  std::size_t size() const { return bytes_; }

  bool canariesIntact() const {
    for (std::size_t i = marginBegin(); i < at_; ++i)
      if (inner_[i] != kCanary) return false;
    for (std::size_t i = at_ + bytes_; i < marginEnd(); ++i)
      if (inner_[i] != kCanary) return false;
    return true;
  }

 private:
  static constexpr unsigned char kCanary = 0xA5;
  static constexpr std::size_t kMargin = 64;
  std::size_t marginBegin() const { return at_ < kMargin ? 0 : at_ - kMargin; }
  std::size_t marginEnd() const { return at_ + bytes_ + kMargin > span_ ? span_ : at_ + bytes_ + kMargin; }
  std::size_t span_ = 0, mapped_ = 0, at_ = 0, bytes_ = 0;
  unsigned char *base_ = nullptr, *inner_ = nullptr;
};

}  // namespace test
