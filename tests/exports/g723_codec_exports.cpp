#include "exports/export_table.h"

namespace test {

namespace {

void evenLsf(void* lsf) {
  auto* p = static_cast<Zpp16s*>(lsf);
  for (int j = 0; j < 10; ++j) p[j] = static_cast<Zpp16s>(2979 * (j + 1));
}

// A lag of both the open and the closed loop
void middleLag(void* lag) { *static_cast<Zpp16s*>(lag) = 60; }

void startTime(void* searchTime) { *static_cast<Zpp16s*>(searchTime) = 120; }

void someCodeword(void* codeword) {
  auto* p = static_cast<Zpp32s*>(codeword);
  for (const Zpp32s word : {3, 1, 0, 100, 5}) *p++ = word;
}

}  // namespace

// Excitation, filters and Annex A
std::vector<Export> g723CodecExports() {
  const auto refusing = [](const char* name, double accepted, std::vector<std::int64_t> refused) {
    return value(name, accepted).refusing(std::move(refused), zppStsBadArgument, 4);
  };
  const Argument lpc = in("lpc", 10), weighting = in("weighting", 20), target = in("target", 60), impulse = in("impulse", 60),
                 history = in("history", 145), newHistory = inOut("history", 145), newSamples = inOut("srcDst", 60),
                 taming = in("taming", 5), codeword = out("codeword", 5), seed = inOut("seed", 1), dst = out("dst", 60),
                 excitation = in("src", 385);
  const auto rate = choice("rate", ZPP_RATE_6300, {ZPP_RATE_5900, ZPP_RATE_4750, -1, ZPP_RATE_DTX}),
             subframe = choice("subframe", 1, {-1, 4, INT32_MAX});
  const auto lag = coded("lag", 57, {17, 142, -1, INT16_MIN, INT16_MAX}), offset = coded("offset", 1, {-1, 4, INT16_MAX}),
             gainIndex = coded("gainIndex", 3, {-1, 170, INT16_MIN, INT16_MAX});
  const auto shapingLag = refusing("lag", 145, {0, 146, -1, INT16_MIN, INT16_MAX}), shapingGain = value("gain", 9000);
  return {
      row(FUNCTION(zppsHighPassFilter_G723_16s_I), inOut("srcDst", 240), inOut("memory", 2), length("srcDst")),
      row(FUNCTION(zppsWeightingLPC_G723_16s), lpc, out("weighting", 20)),
      row(FUNCTION(zppsWeightingFilter_G723_16s_I), weighting, newSamples, inOut("memory", 20)),
      row(FUNCTION(zppsSynthesisFilter_G723_16s_I), lpc, newSamples, inOut("memory", 10)),
      row(FUNCTION(zppsLSFInterpolation_G723_16s), in("prevLsf", 10).preparedBy(evenLsf), in("lsf", 10).preparedBy(evenLsf),
          out("lpc", 40)),

      row(FUNCTION(zppsOpenLoopPitchSearch_G723_16s), in("src", 120).before(142), result("lag")),
      row(FUNCTION(zppsHarmonicSearch_G723_16s), in("src", 60).before(145), result("lag"), result("gain"),
          refusing("openLoopLag", 142, {17, 143, -1, INT16_MIN, INT16_MAX})),
      row(FUNCTION(zppsHarmonicNoiseShaping_G723_16s), in("src", 60).before(145), dst, shapingLag, shapingGain),
      row(FUNCTION(zppsImpulseResponse_G723_16s), lpc, weighting, out("impulse", 60), shapingLag, shapingGain),
      row(FUNCTION(zppsRingingSubtraction_G723_16s_I), lpc, weighting, history, in("memory", 20), newSamples, shapingLag,
          shapingGain),
      row(FUNCTION(zppsRingingUpdate_G723_16s_I), lpc, weighting, in("excitation", 60), newHistory, inOut("memory", 20)),

      row(FUNCTION(zppsAdaptiveCodebookSearch_G723), target, impulse, history, taming, inOut("lag", 1).preparedBy(middleLag),
          result("offset"), result("gainIndex"), value("sineDetector", 0), subframe, rate),
      row(FUNCTION(zppsTargetUpdate_G723_16s_I), in("vector", 60), impulse, inOut("target", 60)),
      row(FUNCTION(zppsTamingUpdate_G723_32s_I), inOut("taming", 5), coded("lag", 57, {17, 144, -1, INT16_MAX}),
          coded("offset", 1, {-1, 4, INT16_MAX}), coded("gainIndex", 3, {-1, 85, 170, INT16_MIN}), rate),
      row(FUNCTION(_zppsPitchPredictor_G723_16s), in("taps", 5), history, dst, value("delay", 145)).trusting(),

      row(FUNCTION(zppsMultiPulseSearch_G723_16s32s), target, impulse, codeword, lag, subframe),
      row(FUNCTION(zppsAlgebraicCodebookSearch_G723_16s32s), target, impulse, out("filteredCode", 60), inOut("codeword", 5),
          inOut("searchTime", 1).preparedBy(startTime), lag, offset, gainIndex),
      row(FUNCTION(zppsGainQuant_G723_16s), target, in("filteredCode", 60), result("level")),
      row(FUNCTION(zppsFixedCodebookDecode_G723_32s16s), in("codeword", 5).preparedBy(someCodeword), dst, lag, offset,
          gainIndex, subframe, rate),

      row(FUNCTION(zppsVoicingDecision_G723_16s), excitation, result("period"), result("energy"), lag),
      row(FUNCTION(zppsResidualInterpolation_G723_16s), newHistory, seed, out("dst", 240),
          refusing("period", 145, {-1, 146, INT16_MIN, INT16_MAX}), value("gain", 300),
          refusing("lossCount", 2, {0, 4, -1, INT32_MAX})),
      row(FUNCTION(zppsPitchPostFilterSearch_G723_16s), excitation, result("filterLag"), result("gain"), result("scale"), lag,
          subframe, rate),
      row(FUNCTION(zppsPitchPostFilter_G723_16s), in("src", 60).before(145), dst,
          refusing("filterLag", -145, {-146, 146, INT16_MIN, INT16_MAX}), value("gain", 9000), value("scale", 30000)),
      row(FUNCTION(zppsFormantPostFilter_G723_16s_I), lpc, newSamples, inOut("memory", 20), inOut("tilt", 1), result("energy")),
      row(FUNCTION(zppsGainControl_G723_16s_I), newSamples, inOut("gain", 1), refusing("energy", 1000, {-1, INT32_MIN})),

      row(FUNCTION(zppsVAD_G723_16s), in("src", 240), in("lags", 4), in("noiseLpc", 10), inOut("levels", 2),
          inOut("counters", 3), result("vad"), value("sineDetector", 0)),
      row(FUNCTION(zppsAutoCorrSum_G723_16s), in("autocorr", 44), in("exponents", 4), out("dst", 11), result("exponent"),
          count("count", 4).refusing({5, INT32_MAX}, zppStsBadSize, 1)),
      row(FUNCTION(zppsLPCAutoCorr_G723_16s), lpc, out("dst", 11), result("shift")),
      row(FUNCTION(zppsLPCSimilarity_G723_16s), in("lpcAutoCorr", 11), in("autocorr", 11), result("similar"), value("shift", 2),
          value("energy", 1000)),
      row(FUNCTION(zppsSIDGainQuant_G723_16s), in("energies", 3), in("exponents", 3), result("index"),
          refusing("count", 3, {-1, 4, INT32_MIN, INT32_MAX})),
      row(FUNCTION(zppsSIDGainDecode_G723_16s), coded("index", 63, {-1, 64, INT16_MIN, INT16_MAX}), result("gain")),
      row(FUNCTION(zppsComfortNoise_G723_16s), newHistory, seed, out("dst", 240), out("lags", 2), out("gainIndices", 4),
          refusing("gain", 16383, {-1, 16384, INT16_MIN, INT16_MAX})),
  };
}

}  // namespace test
