// The names under which the program offers the codecs, and how their payloads may lie in files.
#include "codecs/framing/amrwb_files.h"
#include "codecs/framing/framing.h"
#include "codecs/framing/octets.h"
#include "codecs/framing/words.h"

namespace codecs::framing {
namespace {

Entry entry(std::string_view name, const char* codec, int bitRate, std::vector<int> octets, std::vector<Choice> framings,
            bool dtx = false) {
  return {.name = name,
          .codec = zppcFindCodec(codec),
          .options = {.bitRate = bitRate, .dtx = dtx, .variant = 0},
          .everyRate = false,
          .octets = std::move(octets),
          .framings = std::move(framings),
          .encoderSwitch = {},
          .decoderSwitch = {}};
}

Entry amrWbEntry(std::string_view name, int bitRate) {
  static const std::vector<Choice> framings = {{"rfc4867", amrWbStorage}, {"words", amrWbWords}, {"itu", amrWbSerial}};
  return entry(name, "amr-wb", bitRate, {61, 59, 51, 47, 41, 37, 33, 24, 18, 6, 1}, framings);
}

Entry anyRate(Entry codec) {
  codec.everyRate = true;
  return codec;
}

}  // namespace

const std::vector<Entry>& catalogue() {
  static const std::vector<Choice> octets = {{"octets", bareOctets}};
  static const std::vector<Choice> adpcm = {{"rfc3551", bareOctets}, {"aal2", bareOctets, 1}, {"codes", codePerByte}};
  static const std::vector<Choice> transform = {{"packed", packedWords}, {"rfc5577", bareOctets}, {"itu", serialBits}};
  static const std::vector<Choice> celp = {{"rfc3551", octetsOrLength}, {"itu", serialBitsOrNone}};
  // name, row of the table, bit rate, octets of a payload, framings
  static const std::vector<Entry> entries = {
      entry("g711-mulaw", "g711-mulaw", 64000, {}, octets),
      entry("g711-alaw", "g711-alaw", 64000, {}, octets),
      entry("g726-16", "g726", 16000, {}, adpcm),
      entry("g726-24", "g726", 24000, {}, adpcm),
      entry("g726-32", "g726", 32000, {}, adpcm),
      entry("g726-40", "g726", 40000, {}, adpcm),
      entry("g722.1-24", "g722.1", 24000, {60}, transform),
      entry("g722.1-32", "g722.1", 32000, {80}, transform),
      entry("g729", "g729", 8000, {10, 2}, celp),
      entry("g729a", "g729a", 8000, {10, 2}, celp),
      entry("g729b", "g729", 8000, {10, 2}, celp, true),
      entry("g729ab", "g729a", 8000, {10, 2}, celp, true),
      amrWbEntry("amr-wb-6.60", 6600),
      amrWbEntry("amr-wb-8.85", 8850),
      amrWbEntry("amr-wb-12.65", 12650),
      amrWbEntry("amr-wb-14.25", 14250),
      amrWbEntry("amr-wb-15.85", 15850),
      amrWbEntry("amr-wb-18.25", 18250),
      amrWbEntry("amr-wb-19.85", 19850),
      amrWbEntry("amr-wb-23.05", 23050),
      amrWbEntry("amr-wb-23.85", 23850),
      anyRate(amrWbEntry("amr-wb", 12650)),
  };
  return entries;
}

}  // namespace codecs::framing
