// A file that grows beside the one that it is to replace.
#ifndef ZPPCODEC_TEMPORARY_FILE_H
#define ZPPCODEC_TEMPORARY_FILE_H

#include <sys/types.h>

#include <string>

// Where a name leads in the end: what its symbolic links point to, whether or not a file is there. Throws std::system_error for
// links in a circle.
std::string linkTarget(std::string path);

// Until replace() it has a short name of its own in the same directory, so that whatever name the directory allows can be
// replaced. Without replace(), and when a signal ends the program, it goes away. One at a time. Throws std::system_error.
class TemporaryFile {
 public:
  TemporaryFile(const std::string& target, mode_t mode);
  ~TemporaryFile();
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  int descriptor() const { return descriptor_; }
  void replace();

 private:
  int directory_ = -1, descriptor_ = -1;
  std::string target_;  // within the directory
  std::string name_;    // empty once it has become the target
};

#endif
