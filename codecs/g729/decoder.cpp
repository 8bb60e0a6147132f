#include "codecs/g729/decoder.h"

#include <algorithm>

#include "codecs/codec.h"
#include "codecs/fixed_point.h"
#include "codecs/g729/tables.h"

namespace codecs::g729 {
namespace {

Lsp toLsp(const Lsf& lsf) {
  Lsp lsp;
  require(zppsLSFToLSP_G729_16s(lsf.data(), lsp.data()));
  return lsp;
}

constexpr Zpp16s sample(int sign) { return sign & 1 ? 8191 : -8192; }

Subframe fourPulses(Zpp16s positions, int signs) {
  Subframe code{};
  for (const int position : pulsePositions(positions)) {
    code[position] = sample(signs);
    signs >>= 1;
  }
  return code;
}

// The first is on tracks 1 and 3, the second on all others and then on track 1; Gray codes number the samples.
Subframe twoPulses(int positions, int signs) {
  constexpr std::array<int, 32> fromGray = {0,  1,  3,  2,  7,  6,  4,  5,  15, 14, 12, 13, 8,  9,  11, 10,
                                            31, 30, 28, 29, 24, 25, 27, 26, 16, 17, 19, 18, 23, 22, 20, 21};
  constexpr std::array<int, 32> second = {0,  2,  4,  5,  7,  9,  10, 12, 14, 15, 17, 19, 20, 22, 24, 25,
                                          27, 29, 30, 32, 34, 35, 37, 39, 1,  6,  11, 16, 21, 26, 31, 36};
  const int entry = fromGray[positions & 15];
  Subframe code{};
  code[5 * (entry >> 1) + (entry & 1 ? 3 : 1)] = sample(signs);
  Zpp16s& other = code[second[fromGray[positions >> 4 & 31]]];
  other = static_cast<Zpp16s>(other + sample(signs >> 1));
  return code;
}

// Two or three pulses on a track: the sign of the first, and those after it whose sign changes where their position is higher
void addPulses(Subframe& code, int track, int word, int pulses) {
  const auto position = [&](int shift) { return 5 * (word >> shift & 7) + track; };
  Zpp16s amplitude = word & 8 ? -4096 : 4096;
  int last = position(0);
  code[last] = static_cast<Zpp16s>(code[last] + amplitude);
  for (int pulse = 1, shift = 4; pulse < pulses; ++pulse, shift += 3) {
    const int next = position(shift);
    if (next > last) amplitude = static_cast<Zpp16s>(-amplitude);
    code[next] = static_cast<Zpp16s>(code[next] + amplitude);
    last = next;
  }
}

Subframe manyPulses(const std::array<Zpp16s, 5>& words, bool backward) {
  constexpr int tracks = 5;
  Subframe code{};
  const int start = backward ? std::min(words[0] >> 10 & 7, tracks - 1) : 0;
  for (int i = 0; i < tracks; ++i) addPulses(code, (start + i) % tracks, words[i], backward && i < 2 ? 3 : 2);
  return code;
}

}  // namespace

LspDecoder::LspDecoder() { std::copy_n(maMemory_.data(), kOrder, lsf_.begin()); }

Lsp LspDecoder::decode(const std::array<Zpp16s, 2>& code) {
  maMode_ = static_cast<Zpp16s>(code[0] >> 7);
  const std::array<Zpp16s, 4> index = {maMode_, static_cast<Zpp16s>(code[0] & 127), static_cast<Zpp16s>(code[1] >> 5),
                                       static_cast<Zpp16s>(code[1] & 31)};
  warns(zppsLSFDecode_G729_16s(index.data(), maMemory_.data(), lsf_.data()));  // of LSFs at the ends of their range
  return toLsp(lsf_);
}

Lsp LspDecoder::repeat() {
  require(zppsLSFDecodeErased_G729_16s(maMode_, maMemory_.data(), lsf_.data()));
  return toLsp(lsf_);
}

Lsp LspDecoder::decode(const SidParameters& sid) {
  Lsf lsf;
  warns(zppsLSFDecode_G729B_16s(sid.lsf.data(), maMemory_.data(), lsf.data()));
  return toLsp(lsf);
}

SilenceDecoder::SilenceDecoder() : gain_(sidGains[0]) {}

void SilenceDecoder::remember(const Zpp16s* excitation) {
  Zpp32s energy = 0;  // doubled
  require(zppsDotProd_16s32s_Sfs(excitation, excitation, kFrameSize, &energy, -1));
  const int norm = norm32(energy);
  energy_ = roundHigh16(shlSat32(energy, norm));
  exponent_ = 16 - norm;
}

std::array<ComfortNoise::Gains, kSubframes> SilenceDecoder::play(const SidParameters* sid, bool afterSpeech,
                                                                 LspDecoder& decoder, Zpp16s* excitation) {
  if (sid != nullptr) {
    gain_ = sidGains[sid->gain];
    lsp_ = decoder.decode(*sid);
  } else if (afterSpeech) {
    gain_ = sidGains[guessSidGain(energy_, exponent_).index];
  }
  noise_.approach(gain_, afterSpeech);
  return noise_.excite(excitation);
}

Subframe codeVector(const SpeechParameters::Subframe& parameters, Rate rate, bool backward) {
  if (rate == Rate::kbit6) return twoPulses(parameters.positions, parameters.signs);
  if (rate == Rate::kbit8) return fourPulses(parameters.positions, parameters.signs);
  return manyPulses(parameters.pulses, backward);
}

}  // namespace codecs::g729
