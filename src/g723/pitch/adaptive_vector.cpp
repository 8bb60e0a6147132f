// Adaptive-codebook decoding (ITU-T G.723.1 clause 2.18; in the decoder "Decoding of the pitch information").
#include <algorithm>

#include "core/checks.h"
#include "core/fixed_point.h"
#include "g723/pitch/kernels.h"
#include "g723/tables.h"

using namespace zpp;

namespace {

constexpr int kHistory = 145, kWork = 64, kRepeated = kWork - 2;
constexpr int kHighRateGains = 85, kLowRateGains = 170;  // gain vectors

}  // namespace

ZppStatus zppsDecodeAdaptiveVector_G723_16s(Zpp16s lag, Zpp16s offset, Zpp16s gainIndex, const Zpp16s* history, Zpp16s* dst,
                                            ZppSpeechRate rate) {
  if (anyNull(history, dst)) return zppStsNullPointer;
  if (outside<int>(offset, 0, 3) || lag < 18 || lag + offset > 146) return zppStsBadCodedParam;
  if (outside(int{gainIndex}, 0, kLowRateGains - 1)) return zppStsBadCodedParam;
  if (rate != ZPP_RATE_5300 && rate != ZPP_RATE_6300) return zppStsOutOfRange;
  // The index behind the last row is let through: it finds the spare row.
  if (ownTakesHighRateGains(lag, rate) && gainIndex > kHighRateGains) return zppStsBadCodedParam;
  ownDecodeAdaptiveVector_G723_16s(lag + offset - 1, AdCdbkGainTbl_G723[ownTakesHighRateGains(lag, rate) ? 0 : 1][gainIndex],
                                   history, dst);
  return zppStsOk;
}

ZppStatus _zppsExcitationDelay_G723_16s(const Zpp16s* history, Zpp16s* work, int delay) {
  ownExcitationDelay_G723_16s(history, work, delay);
  return zppStsOk;
}

ZppStatus _zppsAdaptiveCodebookDecode_G723_16s(const Zpp16s* taps, const Zpp16s* work, Zpp16s* dst) {
  ownAdaptiveCodebookDecode_G723_16s(taps, work, dst);
  return zppStsOk;
}

ZppStatus _zppsPitchPredictor_G723_16s(const Zpp16s* taps, const Zpp16s* history, Zpp16s* dst, int delay) {
  ownDecodeAdaptiveVector_G723_16s(delay, taps, history, dst);
  return zppStsOk;
}

void ownDecodeAdaptiveVector_G723_16s(int delay, const Zpp16s* taps, const Zpp16s* history, Zpp16s* dst) {
  alignas(16) Zpp16s work[kWork];
  ownExcitationDelay_G723_16s(history, work, delay);
  ownAdaptiveCodebookDecode_G723_16s(taps, work, dst);
}

void ownExcitationDelay_G723_16s(const Zpp16s* history, Zpp16s* work, int delay) {
  const int start = kHistory - delay;  // of the repeated part; what lies before the history counts as zero
  work[0] = start >= 2 ? history[start - 2] : Zpp16s{0};
  work[1] = start >= 1 ? history[start - 1] : Zpp16s{0};
  Zpp16s* repeated = work + 2;
  int done = std::min(delay, kRepeated);
  std::copy_n(history + start, done, repeated);
  while (done < kRepeated) {  // done is a multiple of the delay
    const int more = std::min(done, kRepeated - done);
    std::copy_n(repeated, more, repeated + done);
    done += more;
  }
}
