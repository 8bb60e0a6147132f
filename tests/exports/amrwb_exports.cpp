#include "exports/export_table.h"

namespace test {

std::vector<Export> amrwbExports() {
  const Argument rate = choice("rate", 13, {-1, 0, 4, 6, 8, 10, 12, 14, 17, 22, 25}), subframe = choice("subframe", 0, {-1, 4});
  const auto flag = [](const char* name) { return choice(name, 0, {-1, 2}); };
  const Argument gamma = value("gamma", 22282), mem1 = inOut("mem", 1), seed = inOut("seed", 1), lpc = in("lpc", 17),
                 impulse = in("impulse", 64), target = in("target", 64);
  const auto state = [](std::size_t bytes) { return inOut("state", bytes); };
  return {
      // Sampling rates and filters
      row(FUNCTION(zppsDownSampling_AMRWB_16s), in("src", 40), out("dst", 32),
          length("src").refusing({4, 7, 325}, zppStsBadSize, 1), inOut("mem", 30)),
      row(FUNCTION(zppsUpSampling_AMRWB_16s), in("src", 32), out("dst", 40),
          length("src").refusing({2, 6, 260}, zppStsBadSize, 1), inOut("mem", 24)),
      row(FUNCTION(zppsHighPassFilterInit_AMRWB_16s), in("coef", 7), choice("order", 3, {1, 4}), out("state", 40)),
      row(FUNCTION(zppsHighPassFilter_AMRWB_16s_I), inOut("srcDst", 20), length("srcDst"), scale("shift", 2, {0, 3}),
          state(40)),
      row(FUNCTION(zppsHighPassFilterScale_AMRWB_16s), scale("shift", -1, {-32, 32}), state(40)),
      row(FUNCTION(zppsPreemphasisScale_AMRWB_16s), in("src", 20), length("src"), gamma, value("prev", 5), result("shift")),
      row(FUNCTION(zppsPreemphasize_AMRWB_16s_I), inOut("srcDst", 20), length("srcDst"), gamma, scale("shift", 1, {-1, 16}),
          mem1),
      row(FUNCTION(zppsDeemphasize_AMRWB_16s_I), inOut("srcDst", 20), length("srcDst"), gamma, mem1),
      row(FUNCTION(zppsDeemphasize_AMRWB_32s16s), in("src", 20), out("dst", 20), length("src"), gamma, mem1),
      row(FUNCTION(zppsDecimateBy2_AMRWB_16s_I), inOut("srcDst", 20), length("srcDst").refusing({2, 5, 258}, zppStsBadSize, 1),
          inOut("mem", 3)),
      row(FUNCTION(zppsHarmonicFilter_AMRWB_16s_I), value("gain", 9000), choice("lag", 5, {0, -1}), inOut("srcDst", 20),
          length("srcDst")),
      // LP filters
      row(FUNCTION(zppsResidualFilter_AMRWB_16s), lpc, in("src", 20).before(16), out("dst", 20), length("dst")),
      row(FUNCTION(zppsSynthesisFilter_AMRWB_16s_I), in("lpc", 21), inOut("srcDst", 20), length("srcDst"),
          choice("order", 20, {10, 15, 18, 21}), inOut("mem", 20)),
      row(FUNCTION(zppsSynthesisFilter_AMRWB_16s32s), lpc, in("src", 20), inOut("dst", 20).before(16), length("src"),
          scale("scale", 3, {-1, 9})),
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
