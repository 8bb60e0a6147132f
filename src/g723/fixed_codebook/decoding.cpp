// Fixed-codebook vectors from their codewords, and what adds the pitch's periodicity to them (ITU-T G.723.1 clause 2.17; in the
// decoder clause 3.5).
#include <algorithm>

#include "core/checks.h"
#include "core/fixed_point.h"
#include "g723/arithmetic.h"
#include "g723/fixed_codebook/kernels.h"
#include "g723/tables.h"

using namespace g723;
using namespace zpp;

namespace {

constexpr int kAlgebraicPulses = 4, kTrackPlaces = 8;

// Pulses of 6.3 kbit/s: the walk over the grid's places that the number of the combination describes. Every number below the
// count of combinations places all pulses within the 30 places.
void decodePulses(const Zpp32s* codeword, Zpp16s* pulses, int subframe) {
  const Zpp16s amplitude = FcbkGainTable[codeword[0]];
  Zpp32s rest = codeword[3];
  if (rest >= MaxPosTable[subframe]) return;
  for (int i = 0, j = kMaxPulses - Nb_puls[subframe]; j < kMaxPulses; ++i) {
    const Zpp32s skipped = CombinatorialTable[j][i];
    if (rest >= skipped) {
      rest -= skipped;
      continue;
    }
    ++j;
    const bool negative = (codeword[4] >> (kMaxPulses - j) & 1) != 0;
    pulses[codeword[1] + 2 * i] = static_cast<Zpp16s>(negative ? -amplitude : amplitude);
  }
}

// Pulses of 5.3 kbit/s: one a track, that of track k at 8 i + 2 k. Places behind the subframe hold none.
void decodeAlgebraic(const Zpp32s* codeword, Zpp16s* pulses) {
  const Zpp16s amplitude = FcbkGainTable[codeword[0]];
  for (int k = 0; k < kAlgebraicPulses; ++k) {
    const int position = kTrackPlaces * (codeword[3] >> (3 * k) & 7) + 2 * k + codeword[1];
    const bool positive = (codeword[4] >> k & 1) != 0;
    if (position < kSubframe) pulses[position] = static_cast<Zpp16s>(positive ? amplitude : -amplitude);
  }
}

}  // namespace

ZppStatus zppsFixedCodebookDecode_G723_32s16s(const Zpp32s* codeword, Zpp16s* dst, Zpp16s lag, Zpp16s offset, Zpp16s gainIndex,
                                              int subframe, ZppSpeechRate rate) {
  if (anyNull(codeword, dst)) return zppStsNullPointer;
  if (outside(subframe, 0, 3) || !isRate(rate)) return zppStsOutOfRange;
  if (outside(codeword[0], 0, 23) || outside(codeword[1], 0, 1) || outside(codeword[2], 0, 1)) return zppStsBadCodedParam;
  if (outside(codeword[3], 0, rate == ZPP_RATE_5300 ? 4095 : kMax32)) return zppStsBadCodedParam;
  if (outside<int>(lag, 18, 141) || outside<int>(offset, 0, 3) || outside<int>(gainIndex, 0, 169)) return zppStsBadCodedParam;
  ownFixedCodebookDecode_G723_32s16s(codeword, dst, lag, offset, gainIndex, subframe, rate);
  return zppStsOk;
}

void ownFixedCodebookDecode_G723_32s16s(const Zpp32s* codeword, Zpp16s* dst, int lag, int offset, int gainIndex, int subframe,
                                        ZppSpeechRate rate) {
  Zpp16s pulses[kSubframe] = {};
  if (rate == ZPP_RATE_5300) {
    decodeAlgebraic(codeword, pulses);
    ownPitchContribution_G723_16s_I(pulses, lag + offset - 1, gainIndex);
  } else {
    decodePulses(codeword, pulses, subframe);
  }
  if (rate == ZPP_RATE_6300 && codeword[2] != 0)
    ownPulseTrain_G723_16s(pulses, dst, lag);
  else
    std::copy_n(pulses, kSubframe, dst);
}

void ownPulseTrain_G723_16s(const Zpp16s* src, Zpp16s* dst, int lag) {
  std::copy_n(src, kSubframe, dst);
  for (int delay = lag; delay < kSubframe; delay += lag)
    for (int n = delay; n < kSubframe; ++n) dst[n] = addSat16(dst[n], src[n - delay]);
}

void ownPitchContribution_G723_16s_I(Zpp16s* srcDst, int delay, int gainIndex) {
  constexpr int kNone = kSubframe - 2;
  const int shifted = delay + epsi170[gainIndex];
  if (shifted >= kNone) return;
  for (int n = shifted; n < kSubframe; ++n) srcDst[n] = addSat16(srcDst[n], mulQ15(srcDst[n - shifted], gain170[gainIndex]));
}
