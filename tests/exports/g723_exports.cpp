#include "exports/export_table.h"

namespace test {

namespace {

// Evenly spaced LSF: a flat spectrum, which every function accepts.
void evenLsf(void* lsf) {
  auto* p = static_cast<Zpp16s*>(lsf);
  for (int j = 0; j < 10; ++j) p[j] = static_cast<Zpp16s>(2979 * (j + 1));
}

}  // namespace

std::vector<Export> g723Exports() {
  const Argument prevLsf = in("prevLsf", 10).preparedBy(evenLsf), lsf = in("lsf", 10).preparedBy(evenLsf),
                 autocorr = out("autocorr", 11);
  // The rate is checked between two checks of the gain index.
  const auto rate = value("rate", ZPP_RATE_6300).refusing({ZPP_RATE_5900, ZPP_RATE_4750, -1}, zppStsOutOfRange, 5);
  return {
      row(FUNCTION(zppsAutoCorr_G723_16s), in("src", 180), result("exponent"), autocorr),
      row(FUNCTION(zppsAutoCorr_NormE_G723_16s), in("src", 180), autocorr, result("norm")),
      row(FUNCTION(zppsLevinsonDurbin_G723_16s), in("autocorr", 11), inOut("sineDetector", 1), result("residualEnergy"),
          out("lpc", 10)),
      row(FUNCTION(zppsLPCToLSF_G723_16s), in("lpc", 10), prevLsf, out("lsf", 10)),
      row(FUNCTION(_zppsLPCToLSF_Norm_G723_16s), in("lpc", 10), out("lsf", 10)).trusting(),
      row(FUNCTION(zppsLSFQuant_G723_16s32s), lsf, prevLsf, result("index")),
      row(FUNCTION(_zppsLSFQuant_G723_16s_I), prevLsf, inOut("lsf", 10).preparedBy(evenLsf), out("index", 3)).trusting(),
      row(FUNCTION(zppsLSFDecode_G723_16s), in("index", 3), prevLsf, value("erased", 0), out("lsf", 10)),
      row(FUNCTION(zppsLSFToLPC_G723_16s), lsf, out("lpc", 10)),
      row(FUNCTION(zppsLSFToLPC_G723_16s_I), inOut("lsfLpc", 10).preparedBy(evenLsf)),
      row(FUNCTION(zppsDecodeAdaptiveVector_G723_16s), coded("lag", 57, {17, 146, -1, INT16_MIN, INT16_MAX}),
          coded("offset", 1, {-1, 4, INT16_MIN, INT16_MAX}),
          coded("gainIndex", 3, {-1, 170, INT16_MIN, INT16_MAX}).refusing({86, 169}, zppStsBadCodedParam, 6),
          in("history", 145), out("dst", 60), rate),
      row(FUNCTION(_zppsExcitationDelay_G723_16s), in("history", 145), out("work", 64), value("delay", 20)).trusting(),
      row(FUNCTION(_zppsAdaptiveCodebookDecode_G723_16s), in("taps", 5), in("work", 64), out("dst", 60)).trusting(),
  };
}

}  // namespace test
