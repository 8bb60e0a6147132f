#include "files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <system_error>

#include "errors.h"

namespace {

std::string reason() { return std::strerror(errno); }

struct stat statusOf(int descriptor) {
  struct stat status = {};
  fstat(descriptor, &status);
  return status;
}

bool sameFile(const struct stat& a, const struct stat& b) {
  return S_ISREG(a.st_mode) && S_ISREG(b.st_mode) && a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

}  // namespace

InputFile::InputFile(const std::string& path) : name_(path == "-" ? "standard input" : path) {
  descriptor_ = path == "-" ? STDIN_FILENO : open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor_ < 0) throw DataError("cannot read " + name_ + ": " + reason());
  if (S_ISDIR(statusOf(descriptor_).st_mode)) {
    if (descriptor_ != STDIN_FILENO) close(descriptor_);
    throw DataError("cannot read " + name_ + ": it is a directory, not a file");
  }
}

InputFile::~InputFile() {
  if (descriptor_ != STDIN_FILENO) close(descriptor_);
}

std::size_t InputFile::read(std::span<std::uint8_t> bytes) {
  if (!ahead_.empty()) {
    const std::size_t count = std::min(bytes.size(), ahead_.size());
    std::copy_n(ahead_.begin(), count, bytes.begin());
    ahead_.erase(ahead_.begin(), ahead_.begin() + static_cast<std::ptrdiff_t>(count));
    return count;
  }
  ssize_t count;
  do {
    count = ::read(descriptor_, bytes.data(), bytes.size());
  } while (count < 0 && errno == EINTR);
  if (count < 0) throw DataError("cannot read " + name_ + ": " + reason());
  return static_cast<std::size_t>(count);
}

std::vector<std::uint8_t> InputFile::readAll() {
  std::vector<std::uint8_t> all;
  std::size_t end = 0;
  while (true) {
    all.resize(std::max<std::size_t>(2 * end, 1 << 16));
    const std::size_t count = read(std::span(all).subspan(end));
    end += count;
    if (count != 0) continue;
    all.resize(end);
    return all;
  }
}

bool InputFile::startsLikeWav() {
  std::vector<std::uint8_t> head(12);
  std::size_t end = 0;
  while (end < head.size()) {
    const std::size_t count = read(std::span(head).subspan(end));
    if (count == 0) break;
    end += count;
  }
  head.resize(end);
  ahead_ = head;
  return end == 12 && std::memcmp(head.data(), "RIFF", 4) == 0 && std::memcmp(head.data() + 8, "WAVE", 4) == 0;
}

std::optional<std::uint64_t> InputFile::size() const {
  const struct stat status = statusOf(descriptor_);
  if (!S_ISREG(status.st_mode)) return std::nullopt;
  return static_cast<std::uint64_t>(status.st_size);
}

OutputFile::OutputFile(const std::string& path, const InputFile& input) : name_(path == "-" ? "standard output" : path) {
  const auto refuse = [this](const std::string& why) { return DataError("cannot write " + name_ + ": " + why); };
  struct stat status = {};
  const bool standard = path == "-";
  const bool exists = (standard ? fstat(STDOUT_FILENO, &status) : stat(path.c_str(), &status)) == 0;
  if (!exists && errno != ENOENT) throw refuse(reason());
  if (exists && sameFile(status, statusOf(input.descriptor())))
    throw UsageError(name_ + " is the input itself; give the output another name");
  if (standard) {
    descriptor_ = STDOUT_FILENO;
  } else if (exists && S_ISDIR(status.st_mode)) {
    throw refuse("it is a directory, not a file");
  } else if (exists && !S_ISREG(status.st_mode)) {
    descriptor_ = open(path.c_str(), O_WRONLY | O_CLOEXEC);
    if (descriptor_ < 0) throw refuse(reason());
  } else {
    if (exists && access(path.c_str(), W_OK) != 0) throw refuse(reason());
    const mode_t mask = umask(0);
    umask(mask);
    try {
      temporary_.emplace(linkTarget(path), exists ? status.st_mode & 0777 : 0666 & ~mask);  // a link stays a link
    } catch (const std::system_error& error) {
      throw refuse(error.code().message());
    }
    descriptor_ = temporary_->descriptor();
  }
}

OutputFile::~OutputFile() {
  if (!temporary_ && descriptor_ > STDERR_FILENO) close(descriptor_);
}

void OutputFile::write(std::span<const std::uint8_t> bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(descriptor_, bytes.data(), bytes.size());
    if (count >= 0) {
      bytes = bytes.subspan(static_cast<std::size_t>(count));
    } else if (errno == EPIPE) {
      throw DataError("cannot write " + name_ + ": its reader has closed the pipe");
    } else if (errno != EINTR) {
      throw DataError("cannot write " + name_ + ": " + reason());
    }
  }
}

void OutputFile::commit() {
  if (!temporary_) return;
  try {
    temporary_->replace();
  } catch (const std::system_error& error) {
    throw DataError("cannot write " + name_ + ": " + error.code().message());
  }
}
