// Decoding of the algebraic codewords (3GPP TS 26.090 clause 6.1). Fields are masked, so any codeword stays within the
// subframe.
#include "amr/fixed_codebook/kernels.h"
#include "amr/tables.h"
#include "core/checks.h"
#include "core/fixed_point.h"
#include "core/kernels.h"

using namespace zpp;

ZppStatus zppsFixedCodebookDecode_GSMAMR_16s(const Zpp16s* codeword, Zpp16s* code, Zpp16s subframe, ZppSpeechRate rate) {
  if (anyNull(codeword, code)) return zppStsNullPointer;
  if (outside<int>(subframe, 0, 3)) return zppStsOutOfRange;
  switch (rate) {
    case ZPP_RATE_4750:
    case ZPP_RATE_5150:
      ownDecode2i40_9bits(codeword, code, subframe);
      return zppStsOk;
    case ZPP_RATE_5900:
      ownDecode2i40_11bits(codeword, code);
      return zppStsOk;
    case ZPP_RATE_6700:
      ownDecode3i40_14bits(codeword, code);
      return zppStsOk;
    case ZPP_RATE_7400:
    case ZPP_RATE_7950:
      ownDecode4i40_17bits(codeword, code);
      return zppStsOk;
    case ZPP_RATE_10200:
      ownDecode8i40_31bits(codeword, code);
      return zppStsOk;
    case ZPP_RATE_12200:
    case ZPP_RATE_DTX:
      ownDecode10i40_35bits(codeword, code);
      return zppStsOk;
    default:
      return zppStsOutOfRange;
  }
}

namespace {

// The position numbers of two to four pulses: bits `shift` to `shift` + 2 of the index
constexpr int field(int index, int shift) { return (index >> shift) & 7; }

void clear(Zpp16s* code) { ownSet_16s(0, code, kSubframe); }

// Sets the pulses of a two-word codeword; sign bit k set: pulse k positive
void setPulses(const Zpp16s* positions, int pulses, int signs, Zpp16s* code) {
  clear(code);
  for (int k = 0; k < pulses; ++k) code[positions[k]] = (signs >> k) & 1 ? 8191 : -8192;
}

// Two pulses on each track: the second has the sign of the first unless it lies before it. Positions outside the subframe,
// which only malformed codewords have, are left out.
void addTrackPairs(const int* numbers, const bool* negative, Zpp16s amplitude, int tracks, Zpp16s* code) {
  clear(code);
  const auto add = [code](int position, Zpp16s pulse) {
    if (!outside(position, 0, kSubframe - 1)) code[position] = static_cast<Zpp16s>(code[position] + pulse);
  };
  for (int track = 0; track < tracks; ++track) {
    const int first = numbers[track] * tracks + track, second = numbers[track + tracks] * tracks + track;
    const auto pulse = static_cast<Zpp16s>(negative[track] ? -amplitude : amplitude);
    add(first, pulse);
    add(second, static_cast<Zpp16s>(second < first ? -pulse : pulse));
  }
}

// Three position numbers 0..9 of 10.2 kbit/s: their parities in bits 0 to 2, their halves as digits of base 5 above
void ownDecompress10(int code, int* number0, int* number1, int* number2) {
  const int halves = code >> 3 > 124 ? 124 : code >> 3;
  const int half2 = (halves * 1311) >> 15, rest = halves - 25 * half2, half1 = (rest * 6554) >> 15;
  *number0 = 2 * (rest - 5 * half1) + (code & 1);
  *number1 = 2 * half1 + ((code >> 1) & 1);
  *number2 = 2 * half2 + ((code >> 2) & 1);
}

// All eight position numbers of 10.2 kbit/s
void ownDecompressCode(const Zpp16s* words, int* number) {
  ownDecompress10(words[0], &number[0], &number[4], &number[1]);
  ownDecompress10(words[1], &number[2], &number[6], &number[5]);
  const int code = words[2] & 127;
  const int halves = (25 * (code >> 2) + 12) >> 5, half7 = (halves * 6554) >> 15, rest = halves - 5 * half7;
  number[3] = 2 * (half7 % 2 == 0 ? rest : 4 - rest) + (code & 1);
  number[7] = 2 * half7 + ((code >> 1) & 1);
}

}  // namespace

void ownDecode2i40_9bits(const Zpp16s* codeword, Zpp16s* code, int subframe) {
  const int index = codeword[0];
  const Zpp16s* start = startPos[(index >> 6) & 1][subframe];
  const Zpp16s positions[] = {static_cast<Zpp16s>(5 * field(index, 0) + start[0]),
                              static_cast<Zpp16s>(5 * field(index, 3) + start[1])};
  setPulses(positions, 2, codeword[1], code);
}

void ownDecode2i40_11bits(const Zpp16s* codeword, Zpp16s* code) {
  const int index = codeword[0], track1 = (index >> 4) & 3;
  const Zpp16s positions[] = {static_cast<Zpp16s>(5 * field(index, 1) + 1 + 2 * (index & 1)),
                              static_cast<Zpp16s>(5 * field(index, 6) + (track1 == 3 ? 4 : track1))};
  setPulses(positions, 2, codeword[1], code);
}

void ownDecode3i40_14bits(const Zpp16s* codeword, Zpp16s* code) {
  const int index = codeword[0];
  const Zpp16s positions[] = {static_cast<Zpp16s>(5 * field(index, 0)),
                              static_cast<Zpp16s>(5 * field(index, 4) + 1 + 2 * ((index >> 3) & 1)),
                              static_cast<Zpp16s>(5 * field(index, 8) + 2 + 2 * ((index >> 7) & 1))};
  setPulses(positions, 3, codeword[1], code);
}

void ownDecode4i40_17bits(const Zpp16s* codeword, Zpp16s* code) {
  const int index = codeword[0];
  const Zpp16s positions[] = {static_cast<Zpp16s>(5 * dgray[field(index, 0)]),
                              static_cast<Zpp16s>(5 * dgray[field(index, 3)] + 1),
                              static_cast<Zpp16s>(5 * dgray[field(index, 6)] + 2),
                              static_cast<Zpp16s>(5 * dgray[field(index, 10)] + 3 + ((index >> 9) & 1))};
  setPulses(positions, 4, codeword[1], code);
}

void ownDecode8i40_31bits(const Zpp16s* codeword, Zpp16s* code) {
  int numbers[8];
  bool negative[4];
  for (int track = 0; track < 4; ++track) negative[track] = codeword[track] != 0;
  ownDecompressCode(codeword + 4, numbers);
  addTrackPairs(numbers, negative, 8191, 4, code);
}

void ownDecode10i40_35bits(const Zpp16s* codeword, Zpp16s* code) {
  int numbers[10];
  bool negative[5];
  for (int k = 0; k < 10; ++k) numbers[k] = dgray[codeword[k] & 7];
  for (int track = 0; track < 5; ++track) negative[track] = (codeword[track] & 8) != 0;
  addTrackPairs(numbers, negative, 4096, 5, code);
}
