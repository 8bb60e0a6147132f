#include "temporary_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <random>
#include <system_error>

namespace {

constexpr int kEnding[] = {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGXCPU};
constexpr int kMostLinks = 40;  // as many as the system follows

// The unfinished file, for the signal handler
volatile int unfinishedIn = -1;
const char* volatile unfinished = nullptr;

void removeUnfinished(int signal) {
  if (unfinished != nullptr) unlinkat(unfinishedIn, unfinished, 0);
  std::signal(signal, SIG_DFL);
  raise(signal);
}

[[noreturn]] void fail() { throw std::system_error(errno, std::generic_category()); }

// Signals that would end the program wait while this lives.
class SignalsHeld {
 public:
  SignalsHeld() {
    sigset_t ending;
    sigemptyset(&ending);
    for (const int signal : kEnding) sigaddset(&ending, signal);
    sigprocmask(SIG_BLOCK, &ending, &before_);
  }
  ~SignalsHeld() { sigprocmask(SIG_SETMASK, &before_, nullptr); }
  SignalsHeld(const SignalsHeld&) = delete;
  SignalsHeld& operator=(const SignalsHeld&) = delete;

 private:
  sigset_t before_;
};

void forget() {
  unfinished = nullptr;
  unfinishedIn = -1;
}

}  // namespace

std::string linkTarget(std::string path) {
  struct stat status = {};
  for (int links = 0; lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode); ++links) {
    char text[PATH_MAX];
    const ssize_t size = links < kMostLinks ? readlink(path.c_str(), text, sizeof text) : (errno = ELOOP, -1);
    if (size < 0) fail();
    path = (std::filesystem::path(path).parent_path() / std::string(text, static_cast<std::size_t>(size))).string();
  }
  return path;
}

TemporaryFile::TemporaryFile(const std::string& target, mode_t mode) {
  const std::filesystem::path path(target);
  target_ = path.filename().string();
  if (target_.empty()) {
    errno = EISDIR;
    fail();
  }
  const std::string parent = path.has_parent_path() ? path.parent_path().string() : ".";
  directory_ = open(parent.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (directory_ < 0) fail();

  const SignalsHeld held;
  std::random_device random;
  do {
    name_ = ".zppcodec-" + std::to_string(random());
    descriptor_ = openat(directory_, name_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  } while (descriptor_ < 0 && errno == EEXIST);
  if (descriptor_ < 0) {
    const int reason = errno;
    close(directory_);
    errno = reason;
    fail();
  }
  fchmod(descriptor_, mode);
  unfinished = name_.c_str();
  unfinishedIn = directory_;
  for (const int signal : kEnding) {
    if (std::signal(signal, removeUnfinished) == SIG_IGN) std::signal(signal, SIG_IGN);
  }
}

TemporaryFile::~TemporaryFile() {
  if (!name_.empty()) {
    unlinkat(directory_, name_.c_str(), 0);
    forget();
  }
  if (descriptor_ >= 0) close(descriptor_);
  close(directory_);
}

void TemporaryFile::replace() {
  const int descriptor = descriptor_;
  descriptor_ = -1;
  if (close(descriptor) != 0 || renameat(directory_, name_.c_str(), directory_, target_.c_str()) != 0) fail();
  forget();
  name_.clear();
}
