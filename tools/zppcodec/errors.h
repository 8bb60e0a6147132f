// The two ways to fail: each message is one sentence that says what is wrong and what would be right.
#ifndef ZPPCODEC_ERRORS_H
#define ZPPCODEC_ERRORS_H

#include <stdexcept>

// The command line asks for something that the program does not offer: exit status 1.
class UsageError : public std::runtime_error {
  using std::runtime_error::runtime_error;
};

// A file or stream is not what it should be, or cannot be read or written: exit status 2.
class DataError : public std::runtime_error {
  using std::runtime_error::runtime_error;
};

#endif
