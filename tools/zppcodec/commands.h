// The subcommands of zppcodec. Each throws UsageError or DataError.
#ifndef ZPPCODEC_COMMANDS_H
#define ZPPCODEC_COMMANDS_H

#include <string>
#include <string_view>

#include "codecs/framing/stream.h"

struct Job {
  codecs::framing::Format format = {};  // bench: no entry for all
  std::string in, out;                  // "-": standard input, output
  bool raw = false;                     // PCM without a header
  bool tsv = false;                     // results as tab-separated values
  std::string rates, lost, frameTypes;  // files with a number for each frame; empty: none
};

void encodeFile(const Job& job);
void decodeFile(const Job& job);
void roundtrip(const Job& job);
void bench(const Job& job);
void list(const Job& job);

#endif
