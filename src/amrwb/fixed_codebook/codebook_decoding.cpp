// Decoding of the algebraic codebook (3GPP TS 26.190 clauses 5.8.1 and 6.1).
#include <algorithm>

#include "amrwb/arithmetic.h"
#include "amrwb/fixed_codebook/kernels.h"
#include "amrwb/fixed_codebook/pulse_numbering.h"
#include "core/checks.h"

using namespace zpp;
using namespace zpp::amrwb;

namespace {

constexpr Zpp16s kPulse = 512;  // 1.0, Q9

// Adds a pulse numbered by its position among every step-th sample from the first on and its sign.
void addPulse(Zpp16s* code, int first, int step, int position, bool negative) {
  Zpp16s& sample = code[first + step * position];
  sample = static_cast<Zpp16s>(sample + (negative ? -kPulse : kPulse));
}

void decodeTwoPulses(Zpp16s index, Zpp16s* code) {
  addPulse(code, 0, 2, index >> 6 & 31, (index & 0x800) != 0);
  addPulse(code, 1, 2, index & 31, (index & 0x20) != 0);
}

}  // namespace

ZppStatus zppsAlgebraicCodebookDecode_AMRWB_16s(const Zpp16s* index, Zpp16s* code, ZppSpeechRate rate) {
  if (anyNull(index, code)) return zppStsNullPointer;
  if (!isSpeechRate(rate)) return zppStsOutOfRange;
  ownAlgebraicCodebookDecode_AMRWB_16s(index, code, modeOf(rate));
  return zppStsOk;
}

void ownAlgebraicCodebookDecode_AMRWB_16s(const Zpp16s* index, Zpp16s* code, Mode mode) {
  std::fill_n(code, kSubframe, Zpp16s{0});
  if (mode == mode660) return decodeTwoPulses(index[0], code);
  for (int track = 0; track < kTracks; ++track) {
    const int count = kTrackPulses[mode][track], lowBits = mode > mode1585 ? kLowWordBits[count] : 0;
    Zpp32s number = index[track];
    if (lowBits > 0) number = (number << lowBits) + (index[track + kTracks] & ((1 << lowBits) - 1));
    Zpp8u pulses[kMaxTrackPulses];
    pulsesOfNumber(number, pulses, count);
    for (int i = 0; i < count; ++i) addPulse(code, track, kTracks, pulses[i] & 15, (pulses[i] & kNegative) != 0);
  }
}
