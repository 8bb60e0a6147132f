#include "exports/export_table.h"

namespace test {

std::vector<Export> amrwbExports() {
  const Argument rate = choice("rate", 13, {-1, 0, 4, 6, 8, 10, 12, 14, 17, 22, 25}), subframe = choice("subframe", 0, {-1, 4});
  const auto flag = [](const char* name) { return choice(name, 0, {-1, 2}); };
  const Argument gamma = value("gamma", 22282), mem1 = inOut("mem", 1), seed = inOut("seed", 1), lpc = in("lpc", 17),
                 impulse = in("impulse", 64), target = in("target", 64), isf = in("isf", 16), code = in("code", 64),
                 gainPitch = value("gainPitch", 12000);
  const auto order = [](double accepted) {
    return value("order", accepted).refusing({0, 10, 15, 17, 19, 21}, zppStsBadSize, 1);
  };
  const auto state = [](std::size_t bytes) { return inOut("state", bytes); };
  const Argument highPass = state(40).preparedBy([](void* p) {
    const Zpp16s at50Hz[] = {4053, -8106, 4053, 16211, -8021};
    zppsHighPassFilterInit_AMRWB_16s(at50Hz, 2, p);
  });
  return {
      // Sampling rates and filters
      row(FUNCTION(zppsDownSampling_AMRWB_16s), in("src", 40), out("dst", 32),
          length("src").refusing({4, 7, 325}, zppStsBadSize, 1), inOut("mem", 30)),
      row(FUNCTION(zppsUpSampling_AMRWB_16s), in("src", 32), out("dst", 40),
          length("src").refusing({2, 6, 260}, zppStsBadSize, 1), inOut("mem", 24)),
      row(FUNCTION(zppsHighPassFilterInit_AMRWB_16s), in("coef", 7), choice("order", 3, {1, 4}), out("state", 40)),
      row(FUNCTION(zppsHighPassFilter_AMRWB_16s_I), inOut("srcDst", 20), length("srcDst"), scale("shift", 2, {0, 3}), highPass),
      row(FUNCTION(zppsHighPassFilterScale_AMRWB_16s), scale("shift", -1, {-32, 32}), highPass),
      row(FUNCTION(zppsPreemphasisScale_AMRWB_16s), in("src", 20), length("src"), gamma, value("prev", 5), result("shift")),
      row(FUNCTION(zppsPreemphasize_AMRWB_16s_I), inOut("srcDst", 20), length("srcDst"), gamma, scale("shift", 1, {-1, 16}),
          mem1),
      row(FUNCTION(zppsDeemphasize_AMRWB_16s_I), inOut("srcDst", 20), length("srcDst"), gamma, mem1),
      row(FUNCTION(zppsDeemphasize_AMRWB_32s16s), in("src", 20), out("dst", 20), length("src"), gamma, mem1),
      row(FUNCTION(zppsDecimateBy2_AMRWB_16s_I), inOut("srcDst", 20), length("srcDst").refusing({2, 5, 258}, zppStsBadSize, 1),
          inOut("mem", 3)),
      row(FUNCTION(zppsHarmonicFilter_AMRWB_16s_I), value("gain", 9000), choice("lag", 5, {0, -1}), inOut("srcDst", 20),
          length("srcDst")),
      // Linear prediction
      row(FUNCTION(zppsAutoCorr_AMRWB_16s32s), in("src", 384), out("dst", 17)),
      row(FUNCTION(zppsLevinsonDurbin_AMRWB_32s16s), in("src", 17), out("lpc", 17), inOut("mem", 16)),
      row(FUNCTION(zppsLPCToISP_AMRWB_16s), lpc, out("isp", 16), in("prevIsp", 16)),
      row(FUNCTION(zppsISPToISF_AMRWB_16s), in("isp", 20), out("isf", 20), order(20)),
      row(FUNCTION(zppsISFToISP_AMRWB_16s), in("isf", 20), out("isp", 20), order(20)),
      row(FUNCTION(zppsISPToLPC_AMRWB_16s), in("isp", 16), out("lpc", 17), order(16), flag("scaling")),
      row(FUNCTION(zppsInterpolateISP_AMRWB_16s), in("prevIsp", 16), in("isp", 16), out("lpc", 68)),
      row(FUNCTION(zppsResidualFilter_AMRWB_16s), lpc, in("src", 20).before(16), out("dst", 20), length("dst")),
      row(FUNCTION(zppsSynthesisFilter_AMRWB_16s_I), in("lpc", 21), inOut("srcDst", 20), length("srcDst"),
          choice("order", 20, {10, 15, 18, 21}), inOut("mem", 20)),
      row(FUNCTION(zppsSynthesisFilter_AMRWB_16s32s), lpc, in("src", 20), inOut("dst", 20).before(16), length("src"),
          scale("scale", 3, {-1, 9})),
      // ISF quantisation
      row(FUNCTION(zppsISFQuant_AMRWB_16s), isf, inOut("pastResidual", 16), out("quantIsf", 16), out("index", 7), rate),
      row(FUNCTION(zppsISFDecode_AMRWB_16s), in("index", 7), inOut("pastResidual", 16), in("prevIsf", 16),
          inOut("isfHistory", 48), out("isf", 16), flag("badFrame"), rate),
      row(FUNCTION(zppsSIDQuant_AMRWB_16s), isf, out("quantIsf", 16), out("index", 5)),
      row(FUNCTION(zppsSIDDecode_AMRWB_16s), in("index", 5), out("isf", 16)),
      row(FUNCTION(zppsISFStability_AMRWB_16s), isf, in("prevIsf", 16), result("factor")),
      // Pitch and adaptive codebook
      row(FUNCTION(zppsOpenLoopPitchSearch_AMRWB_16s), in("wsp", 64).before(115), in("hpWsp", 64).before(115),
          value("len", 64).refusing({0, 63, 65, 256}, zppStsBadSize, 1), result("lag"), result("gain"), inOut("mem", 8)),
      row(FUNCTION(zppsImpulseResponseTarget_AMRWB_16s), in("speech", 64).before(16), in("weightLpc", 17), in("quantLpc", 17),
          in("synMem", 16), out("residual", 64), out("target", 64), out("residualTarget", 64), out("impulse", 64),
          value("weightMem", 5)),
      row(FUNCTION(zppsAdaptiveCodebookSearch_AMRWB_16s), target, impulse, inOut("excitation", 65).before(248),
          inOut("minLag", 1), result("lag"), result("fraction"), result("index"), value("openLoopLag", 60), subframe, rate),
      row(FUNCTION(zppsAdaptiveCodebookContribution_AMRWB_16s), target, impulse, inOut("excitation", 65).before(1),
          inOut("residualTarget", 64), out("target2", 64), out("filteredVector", 64), result("gain"), out("coef", 4),
          result("select"), flag("clip"), rate),
      row(FUNCTION(zppsAdaptiveCodebookLowPass_AMRWB_16s), in("src", 21).before(1), out("dst", 20), length("dst")),
      row(FUNCTION(zppsAdaptiveCodebookDecodeInit_AMRWB_16s), out("state", 24)),
      row(FUNCTION(zppsAdaptiveCodebookDecodeReset_AMRWB_16s), state(24)),
      row(FUNCTION(zppsAdaptiveCodebookDecode_AMRWB_16s), value("index", 100), in("gainHistory", 5),
          inOut("excitation", 65).before(248), result("lag"), result("fraction"), subframe, flag("badFrame"), flag("unusable"),
          state(24), rate),
      // Algebraic codebook
      row(FUNCTION(zppsAlgebraicCodebookSearch_AMRWB_16s), target, in("residualTarget", 64), impulse, out("code", 64),
          out("filteredCode", 64), out("index", 4), rate),
      row(FUNCTION(zppsAlgebraicCodebookDecode_AMRWB_16s), in("index", 4), out("code", 64), rate),
      // Gains
      row(FUNCTION(zppsGainQuant_AMRWB_16s), target, in("filteredVector", 64), in("filteredCode", 64), code, in("coef", 4),
          inOut("gainPitch", 1), result("gainCode"), result("index"), inOut("mem", 4), value("scale", 2), flag("clip"), rate),
      row(FUNCTION(zppsDecodeGain_AMRWB_16s), value("index", 45), code, result("gainPitch"), result("gainCode"),
          inOut("mem", 22), flag("badFrame"), flag("prevBadFrame"), flag("unusable"), choice("state", 3, {-1, 7}),
          value("vadHist", 1), rate),
      // Excitation
      row(FUNCTION(zppsVoiceFactor_AMRWB_16s), in("vector", 64), code, value("scale", 2), gainPitch, value("gainCode", 77),
          result("factor")),
      row(FUNCTION(zppsExcitation_AMRWB_16s_I), code, inOut("srcDst", 64), value("gainCode", 77), gainPitch),
      row(FUNCTION(zppsExcitationEnhance_AMRWB_16s_I), code, inOut("srcDst", 64), gainPitch, value("gainCode", 99000),
          value("stability", 9000), value("voiceFactor", -3000), scale("scale", 3, {-1, 9}), inOut("mem", 1)),
      row(FUNCTION(zppsPitchSharpening_AMRWB_16s_I), in("vector", 64), inOut("srcDst", 64), gainPitch),
      row(FUNCTION(zppsPhaseDispersion_AMRWB_16s_I), inOut("srcDst", 64), value("gainCode", 77), value("gainPitch", 3000),
          inOut("mem", 8), rate),
      // High band
      row(FUNCTION(zppsHighBandNoise_AMRWB_16s), in("src", 64), out("dst", 80), value("scale", 3), seed),
      row(FUNCTION(zppsHighBandGain_AMRWB_16s), in("src", 64), value("vadHist", 1), result("gain")),
      row(FUNCTION(zppsHighBandGainQuant_AMRWB_16s), in("speech", 80), in("noise", 80), value("estimate", 5000),
          value("weight", 9000), result("index")),
      row(FUNCTION(zppsISFExtrapolate_AMRWB_16s), in("isf", 16), out("isp", 20)),
      row(FUNCTION(zppsHighBandFilter_AMRWB_16s_I), inOut("srcDst", 20), length("srcDst"), choice("band", 1, {-1, 2}),
          inOut("mem", 30)),
      // Voice activity and discontinuous transmission
      row(FUNCTION(zppsVADInit_AMRWB_16s), out("state", 148)),
      row(FUNCTION(zppsVAD_AMRWB_16s), in("src", 256), inOut("toneFlag", 1), result("vad"), state(148)),
      row(FUNCTION(zppsLogEnergy_AMRWB_16s), in("src", 256), result("logEnergy")),
      row(FUNCTION(zppsISFAverageDTX_AMRWB_16s), in("isfHistory", 128), in("logEnergyHistory", 8), choice("hist", 3, {-1, 8}),
          inOut("distance", 28), inOut("sumDistance", 8), out("isf", 16), result("dither")),
      row(FUNCTION(zppsISFDither_AMRWB_16s_I), inOut("isf", 16), inOut("logEnergy", 1), seed),
      row(FUNCTION(zppsComfortNoise_AMRWB_16s), out("dst", 256), value("logEnergy", 300000), seed),
  };
}

}  // namespace test
