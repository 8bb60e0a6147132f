#include <CLI/CLI.hpp>
#include <algorithm>
#include <csignal>
#include <cstdio>
#include <iostream>
#include <optional>
#include <string_view>

#include "codecs/registry.h"
#include "commands.h"
#include "errors.h"

namespace {

template <class Names>
std::string joined(const Names& names) {
  std::string text;
  for (const auto& name : names) text += (text.empty() ? "" : ", ") + std::string(name);
  return text;
}

using codecs::framing::Entry;

template <class Rows>
std::vector<std::string_view> namesOf(const Rows& rows) {
  std::vector<std::string_view> names;
  for (const auto& row : rows) names.push_back(row.name);
  return names;
}

const Entry& entryNamed(const std::string& name) {
  const Entry* const entry = codecs::framing::findEntry(name);
  if (entry == nullptr)
    throw UsageError("there is no codec '" + name + "'; choose one of " + joined(namesOf(codecs::framing::catalogue())));
  return *entry;
}

std::string_view framingNamed(const Entry& entry, const std::optional<std::string>& name) {
  if (!name) return entry.framings.front().name;
  if (const auto* framing = codecs::framing::findFraming(entry, *name)) return framing->name;
  throw UsageError(std::string(entry.name) + " has no framing '" + *name + "'; choose one of " +
                   joined(namesOf(entry.framings)));
}

// What the user says of the codec beside its name
struct Wishes {
  std::optional<std::string> codec, framing;
  bool dtx = false;
  int vad = 1;
  bool noHighPass = false, noPostfilter = false;
};

codecs::framing::Format formatOf(const Wishes& wishes, const Job& job) {
  const Entry& entry = entryNamed(*wishes.codec);
  codecs::framing::Format format = {&entry, framingNamed(entry, wishes.framing), entry.options};
  const auto lacks = [&entry](const std::string& what) { return UsageError(std::string(entry.name) + " has no " + what); };
  if (wishes.dtx) {
    if ((entry.codec->features & ZPPC_FEATURE_DTX) == 0) throw lacks("discontinuous transmission (--dtx)");
    format.options.dtx = 1;
  }
  const auto choose = [&](std::string_view codecsSwitch, const std::string& option, bool wanted) {
    if (!wanted) return;
    if (codecsSwitch != option) throw lacks("option --" + option);
    format.options.variant = 1;
  };
  choose(entry.encoderSwitch, "vad", wishes.vad == 2);
  choose(entry.encoderSwitch, "no-highpass", wishes.noHighPass);
  choose(entry.decoderSwitch, "no-postfilter", wishes.noPostfilter);
  if (!job.rates.empty() && !entry.everyRate) throw lacks("rates to switch between (--rates)");
  if (!job.frameTypes.empty() && !codecs::rowOf(entry.codec)->decoder.takesReceiveTypes)
    throw lacks("receive types (--frame-types)");
  return format;
}

std::string version() {
  const ZppLibraryVersion& library = *zppscGetLibVersion();
  return "zppcodec " ZPPCODEC_VERSION ", libzppcodecs " + std::string(zppcVersion()) + ", " + std::string(library.Name) + " " +
         library.Version + ", level " + std::string(library.targetCpu, 2);
}

int run(int argc, char** argv) {
  CLI::App app("Codes speech to the bit streams of telephony codecs, and back.", "zppcodec");
  app.set_version_flag("--version", version);
  app.require_subcommand(0, 1);
  app.footer("Exit status: 0 success, 1 wrong usage, 2 unusable data or failed input or output.");

  Job job;
  Wishes wishes;
  const auto command = [&](const char* name, const char* description, void (*action)(const Job&)) {
    CLI::App* sub = app.add_subcommand(name, description);
    sub->callback([&, action] {
      if (wishes.codec) job.format = formatOf(wishes, job);
      action(job);
    });
    return sub;
  };
  const auto chooseCodec = [&](CLI::App* sub) {
    sub->add_option("--framing", wishes.framing, "How the codes are packed; 'zppcodec list' names the choices");
    sub->add_flag("--dtx", wishes.dtx, "Discontinuous transmission: send little or nothing in pauses");
    return sub->add_option("-c,--codec", wishes.codec, "The codec: " + joined(namesOf(codecs::framing::catalogue())));
  };
  const auto name = [&](CLI::App* sub, const char* option, std::string& value, const char* help) {
    const auto complaint = [](const std::string& text) { return std::string(text.empty() ? "the name is empty" : ""); };
    return sub->add_option(option, value, help)->check(CLI::Validator(complaint, ""));
  };
  const auto chooseEncoder = [&](CLI::App* sub) {
    name(sub, "--rates", job.rates, "File of 16-bit words, low byte first: for each frame the index of its bit rate");
    sub->add_option("--vad", wishes.vad, "Voice activity detector of GSM-AMR, 1 or 2")->check(CLI::Range(1, 2));
    sub->add_flag("--no-highpass", wishes.noHighPass, "Leave out the encoder's high-pass filter");
  };
  const auto chooseDecoder = [&](CLI::App* sub) {
    name(sub, "--lost", job.lost, "File of 16-bit words, low byte first: another one than 0 marks the frame as lost");
    name(sub, "--frame-types", job.frameTypes, "Text file of numbers: for each frame its receive type by the standard");
    sub->add_flag("--no-postfilter", wishes.noPostfilter, "Leave out the decoder's postfilter");
  };
  const char* rawHelp = "PCM is raw 16-bit little-endian, without a header";
  const char* tsvHelp = "Print tab-separated values, without a heading";

  CLI::App* encode = command("encode", "Code speech to a bit stream", encodeFile);
  chooseCodec(encode)->required();
  chooseEncoder(encode);
  encode->add_flag("--raw", job.raw, rawHelp);
  name(encode, "IN", job.in, "Speech: WAV or what else libsndfile reads, one channel; - for standard input")->required();
  name(encode, "OUT", job.out, "Bit stream; - for standard output")->required();

  CLI::App* decode = command("decode", "Decode a bit stream to speech", decodeFile);
  chooseCodec(decode)->required();
  chooseDecoder(decode);
  decode->add_flag("--raw", job.raw, rawHelp);
  name(decode, "IN", job.in, "Bit stream; - for standard input")->required();
  name(decode, "OUT", job.out, "Speech: .wav, .flac, .au or .aiff; - for standard output (WAV)")->required();

  CLI::App* trip = command("roundtrip", "Code and decode speech and print the signal-to-noise ratio", roundtrip);
  chooseCodec(trip)->required();
  trip->add_flag("--raw", job.raw, rawHelp);
  trip->add_flag("--tsv", job.tsv, tsvHelp);
  name(trip, "IN", job.in, "Speech; - for standard input")->required();
  name(trip, "OUT", job.out, "The decoded speech");

  CLI::App* timing = command("bench", "Time the codecs", bench);
  CLI::Option* chosen = chooseCodec(timing);
  timing->get_option("--framing")->needs(chosen);
  timing->add_flag("--raw", job.raw, rawHelp);
  timing->add_flag("--tsv", job.tsv, tsvHelp);
  name(timing, "IN", job.in, "Speech to code; a synthetic signal without it");

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

// The sentence that tells what went wrong, on one line whatever the names in it are made of: control characters, those of
// UTF-8 beyond ASCII too, show as their octets.
void complain(std::string_view sentence) {
  std::string text;
  for (std::size_t n = 0; n < sentence.size(); ++n) {
    const auto octet = [&](std::size_t at) { return at < sentence.size() ? static_cast<unsigned char>(sentence[at]) : 0u; };
    const bool wide = octet(n) == 0xc2 && octet(n + 1) >= 0x80 && octet(n + 1) < 0xa0;
    char escaped[9];
    if (wide)
      std::snprintf(escaped, sizeof escaped, "\\xc2\\x%02x", octet(++n));
    else
      std::snprintf(escaped, sizeof escaped, "\\x%02x", octet(n));
    if (wide || octet(n) < 0x20 || octet(n) == 0x7f)
      text += escaped;
    else
      text += sentence[n];
  }
  std::cerr << "zppcodec: " << text << '\n';
}

}  // namespace

int main(int argc, char** argv) {
  // A closed pipe and a file at its limit show as failed writes.
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  int status = 2;
  try {
    return run(argc, argv);
  } catch (const UsageError& error) {
    complain(error.what());
    status = 1;
  } catch (const std::exception& error) {
    complain(error.what());
  }
  return status;
}
