// The subcommands of zppcodec. Each throws UsageError or DataError.
#ifndef ZPPCODEC_COMMANDS_H
#define ZPPCODEC_COMMANDS_H

#include <string>
#include <string_view>

#include "codec.h"

struct Job {
  const codecs::Codec* codec = nullptr;  // bench: null for all
  std::string_view framing;
  std::string in, out;  // "-": standard input, output
  bool raw = false;     // PCM without a header
  bool tsv = false;     // results as tab-separated values
};

void encodeFile(const Job& job);
void decodeFile(const Job& job);
void roundtrip(const Job& job);
void bench(const Job& job);
void list(const Job& job);

#endif
