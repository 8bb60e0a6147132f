#include <CLI/CLI.hpp>
#include <algorithm>
#include <csignal>
#include <cstdio>
#include <iostream>
#include <optional>

#include "commands.h"
#include "errors.h"

namespace {

template <class Names>
std::string joined(const Names& names) {
  std::string text;
  for (const auto& name : names) text += (text.empty() ? "" : ", ") + std::string(name);
  return text;
}

std::vector<std::string_view> codecNames() {
  std::vector<std::string_view> names;
  for (const auto& codec : codecs::registry()) names.push_back(codec.name);
  return names;
}

const codecs::Codec& codecNamed(const std::string& name) {
  const auto& rows = codecs::registry();
  const auto row = std::ranges::find(rows, name, &codecs::Codec::name);
  if (row == rows.end()) throw UsageError("there is no codec '" + name + "'; choose one of " + joined(codecNames()));
  return *row;
}

std::string_view framingNamed(const codecs::Codec& codec, const std::optional<std::string>& name) {
  if (!name) return codec.framings.front();
  const auto framing = std::ranges::find(codec.framings, *name);
  if (framing != codec.framings.end()) return *framing;
  throw UsageError(std::string(codec.name) + " has no framing '" + *name + "'; choose one of " + joined(codec.framings));
}

std::string version() {
  const ZppLibraryVersion& library = *zppscGetLibVersion();
  return "zppcodec " ZPPCODEC_VERSION ", " + std::string(library.Name) + " " + library.Version + ", level " +
         std::string(library.targetCpu, 2);
}

int run(int argc, char** argv) {
  CLI::App app("Codes speech to the bit streams of telephony codecs, and back.", "zppcodec");
  app.set_version_flag("--version", version);
  app.require_subcommand(0, 1);
  app.footer("Exit status: 0 success, 1 wrong usage, 2 unusable data or failed input or output.");

  Job job;
  std::optional<std::string> codec, framing;
  const auto command = [&](const char* name, const char* description, void (*action)(const Job&)) {
    CLI::App* sub = app.add_subcommand(name, description);
    sub->callback([&, action] {
      if (codec) {
        job.codec = &codecNamed(*codec);
        job.framing = framingNamed(*job.codec, framing);
      }
      action(job);
    });
    return sub;
  };
  const auto chooseCodec = [&](CLI::App* sub) {
    sub->add_option("--framing", framing, "How the codes are packed; 'zppcodec list' names the choices");
    return sub->add_option("-c,--codec", codec, "The codec: " + joined(codecNames()));
  };
  const char* rawHelp = "PCM is raw 16-bit little-endian, without a header";
  const char* tsvHelp = "Print tab-separated values, without a heading";

  CLI::App* encode = command("encode", "Code speech to a bit stream", encodeFile);
  chooseCodec(encode)->required();
  encode->add_flag("--raw", job.raw, rawHelp);
  encode->add_option("IN", job.in, "Speech: WAV or what else libsndfile reads, one channel; - for standard input")->required();
  encode->add_option("OUT", job.out, "Bit stream; - for standard output")->required();

  CLI::App* decode = command("decode", "Decode a bit stream to speech", decodeFile);
  chooseCodec(decode)->required();
  decode->add_flag("--raw", job.raw, rawHelp);
  decode->add_option("IN", job.in, "Bit stream; - for standard input")->required();
  decode->add_option("OUT", job.out, "Speech: .wav, .flac, .au or .aiff; - for standard output (WAV)")->required();

  CLI::App* trip = command("roundtrip", "Code and decode speech and print the signal-to-noise ratio", roundtrip);
  chooseCodec(trip)->required();
  trip->add_flag("--raw", job.raw, rawHelp);
  trip->add_flag("--tsv", job.tsv, tsvHelp);
  trip->add_option("IN", job.in, "Speech; - for standard input")->required();
  trip->add_option("OUT", job.out, "The decoded speech");

  CLI::App* timing = command("bench", "Time the codecs", bench);
  CLI::Option* chosen = chooseCodec(timing);
  timing->get_option("--framing")->needs(chosen);
  timing->add_flag("--raw", job.raw, rawHelp);
  timing->add_flag("--tsv", job.tsv, tsvHelp);
  timing->add_option("IN", job.in, "Speech to code; a synthetic signal without it");

  command("list", "List the codecs", list)->add_flag("--tsv", job.tsv, tsvHelp);

  try {
    app.parse(argc, argv);
    if (app.get_subcommands().empty()) throw UsageError("say what to do: encode, decode, roundtrip, bench or list; see --help");
  } catch (const CLI::Success& wish) {  // --help, --version
    app.exit(wish);
  } catch (const CLI::ParseError& error) {
    throw UsageError(std::string(error.what()) + "; see zppcodec --help");
  }
  if (!std::cout.flush() || std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
    throw DataError("cannot write to standard output");
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  std::signal(SIGPIPE, SIG_IGN);  // a closed pipe shows as a failed write
  int status = 2;
  try {
    return run(argc, argv);
  } catch (const UsageError& error) {
    std::cerr << "zppcodec: " << error.what() << '\n';
    status = 1;
  } catch (const std::exception& error) {
    std::cerr << "zppcodec: " << error.what() << '\n';
  }
  return status;
}
