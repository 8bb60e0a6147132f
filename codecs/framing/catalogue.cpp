// The names under which the program offers the codecs, and how their payloads may lie in files.
#include "codecs/framing/amr_files.h"
#include "codecs/framing/amrwb_files.h"
#include "codecs/framing/framing.h"
#include "codecs/framing/groups.h"
#include "codecs/framing/kinds.h"
#include "codecs/framing/octets.h"
#include "codecs/framing/parameters.h"
#include "codecs/framing/words.h"
#include "codecs/gsmfr/frame.h"

namespace codecs::framing {
namespace {

Entry entry(std::string_view name, const char* codec, int bitRate, std::vector<int> octets, std::vector<Choice> framings,
            bool dtx = false, bool everyRate = false) {
  return {.name = name,
          .codec = zppcFindCodec(codec),
          .options = {.bitRate = bitRate, .dtx = dtx, .variant = 0},
          .everyRate = everyRate,
          .octets = std::move(octets),
          .framings = std::move(framings),
          .encoderSwitch = {},
          .decoderSwitch = {}};
}

// The same with an option of the program that switches a part of the decoder off
Entry decodingWithout(std::string_view decoderSwitch, Entry whole) {
  whole.decoderSwitch = decoderSwitch;
  return whole;
}

// A name for a rate of G.723.1, 0 for both
Entry g723(std::string_view name, int bitRate) {
  static const std::vector<Choice> framings = {{"frames", kindsAndOctets}, {"rfc3551", kindsAndOctetsOfSpeech}};
  Entry named = decodingWithout("no-postfilter", entry(name, "g723.1", bitRate, {24, 20, 4}, framings));
  named.encoderSwitch = "no-highpass";
  named.everyRate = bitRate == 0;
  return named;
}

// A name for a rate of GSM-AMR, 0 for all
Entry amr(std::string_view name, int bitRate) {
  static const std::vector<Choice> framings = {{"rfc4867", amrStorage}, {"words", amrSentWords}, {"rx", amrReceivedWords}};
  Entry named = entry(name, "amr", bitRate == 0 ? 12200 : bitRate, {32, 27, 21, 20, 18, 16, 14, 13, 6, 1}, framings);
  named.encoderSwitch = "vad";
  named.everyRate = bitRate == 0;
  return named;
}

constexpr ParameterLayout kFullRate = {gsmfr::kSignatureBits, gsmfr::kSignature, gsmfr::kParameterBits};

template <class AFraming>
std::unique_ptr<Framing> fullRate(const Entry&, const ZppcOptions& options) {
  return std::make_unique<AFraming>(kFullRate, options.dtx != 0);
}

}  // namespace

const std::vector<Entry>& catalogue() {
  static const std::vector<Choice> octets = {{"octets", bareOctets}};
  static const std::vector<Choice> adpcm = {{"rfc3551", bareOctets}, {"aal2", bareOctets, 1}, {"codes", codePerByte}};
  static const std::vector<Choice> transform = {{"packed", packedWords}, {"rfc5577", bareOctets}, {"itu", serialBits}};
  static const std::vector<Choice> celp = {{"rfc3551", octetsOrLength}, {"itu", serialBitsOfG729}};
  static const std::vector<Choice> lowDelay = {{"rfc3551", bareOctets}, {"words", codePerWord}, {"itu", serialGroups}};
  static const std::vector<Choice> rpe = {
      {"rfc3551", fullRate<SignedOctets>}, {"wav49", fullRate<PairedParameters>}, {"words", fullRate<ParameterWords>}};
  static const std::vector<Choice> wideBand = {{"rfc4867", amrWbStorage}, {"words", amrWbWords}, {"itu", amrWbSerial}};
  static const std::vector<int> wideBandOctets = {61, 59, 51, 47, 41, 37, 33, 24, 18, 6, 1};
  // name, row of the table, bit rate, octets of a payload, framings
  static const std::vector<Entry> entries = {
      // clang-format off
      entry("g711-mulaw", "g711-mulaw", 64000, {}, octets),
      entry("g711-alaw", "g711-alaw", 64000, {}, octets),
      entry("g726-16", "g726", 16000, {}, adpcm),
      entry("g726-24", "g726", 24000, {}, adpcm),
      entry("g726-32", "g726", 32000, {}, adpcm),
      entry("g726-40", "g726", 40000, {}, adpcm),
      entry("g722.1-24", "g722.1", 24000, {60}, transform),
      entry("g722.1-32", "g722.1", 32000, {80}, transform),
      g723("g723.1-5.3", 5300),
      g723("g723.1-6.3", 6300),
      g723("g723.1", 0),
      decodingWithout("no-postfilter", entry("g728", "g728", 16000, {5}, lowDelay)),
      entry("g729", "g729", 8000, {10, 2}, celp),
      entry("g729a", "g729a", 8000, {10, 2}, celp),
      entry("g729b", "g729", 8000, {10, 2}, celp, true),
      entry("g729ab", "g729a", 8000, {10, 2}, celp, true),
      entry("g729d", "g729i", 6400, {8, 2}, celp),
      entry("g729e", "g729i", 11800, {15, 2}, celp),
      entry("g729i", "g729i", 8000, {15, 10, 8, 2}, celp, false, true),
      entry("g729f", "g729f", 8000, {10}, celp),
      entry("g729af", "g729af", 8000, {10}, celp),
      entry("gsm-fr", "gsm-fr", 13000, {33}, rpe),
      amr("amr-4.75", 4750),
      amr("amr-5.15", 5150),
      amr("amr-5.90", 5900),
      amr("amr-6.70", 6700),
      amr("amr-7.40", 7400),
      amr("amr-7.95", 7950),
      amr("amr-10.2", 10200),
      amr("amr-12.2", 12200),
      amr("amr", 0),
      entry("amr-wb-6.60", "amr-wb", 6600, wideBandOctets, wideBand),
      entry("amr-wb-8.85", "amr-wb", 8850, wideBandOctets, wideBand),
      entry("amr-wb-12.65", "amr-wb", 12650, wideBandOctets, wideBand),
      entry("amr-wb-14.25", "amr-wb", 14250, wideBandOctets, wideBand),
      entry("amr-wb-15.85", "amr-wb", 15850, wideBandOctets, wideBand),
      entry("amr-wb-18.25", "amr-wb", 18250, wideBandOctets, wideBand),
      entry("amr-wb-19.85", "amr-wb", 19850, wideBandOctets, wideBand),
      entry("amr-wb-23.05", "amr-wb", 23050, wideBandOctets, wideBand),
      entry("amr-wb-23.85", "amr-wb", 23850, wideBandOctets, wideBand),
      entry("amr-wb", "amr-wb", 12650, wideBandOctets, wideBand, false, true),
      // clang-format on
  };
  return entries;
}

}  // namespace codecs::framing
