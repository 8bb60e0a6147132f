#include "exports/export_table.h"

namespace test {

namespace {

// Frames of a voice activity detector's golden sequences come one after the other from Init: see amr_codec_test.cpp.
void startVad1(void* state) { zppsVAD1Init_GSMAMR_16s(state); }
void startVad2(void* state) { zppsVAD2Init_GSMAMR_16s(state); }
void startNoise(void* state) { zppsComfortNoiseInit_GSMAMR_16s(state); }

template <int state>
void goodCondition(void* words) {
  const Zpp16s values[7] = {0, 1, 0, 0, 1, 3, state};
  for (int i = 0; i < 7; ++i) static_cast<Zpp16s*>(words)[i] = values[i];
}

}  // namespace

std::vector<Export> amrCodecExports() {
  const std::vector<std::int64_t> otherRates = {-1, 2, 4, 5, 9, 10, 13, 24, 26};
  const auto rate = [&](double accepted) { return choice("rate", accepted, otherRates).refusing({25}, zppStsOutOfRange, 2); };
  const auto rateOrDtx = [&](double accepted) { return choice("rate", accepted, otherRates); };
  const Argument subframe = choice("subframe", 1, {-1, 4}), condition = in("condition", 7).preparedBy(goodCondition<2>);
  const Argument residualMem = inOut("residualMem", 10), lsf = inOut("lsf", 10), gainMem = inOut("gainMem", 8);
  const Argument weighted = in("weighted", 160).before(143), lagMem = inOut("lagMem", 8), vadMem = inOut("vadMem", 5),
                 gainFlag = inOut("gainFlag", 2), lags = out("lags", 2);
  const Argument speech = in("speech", 160), flag = result("flag");
  const Argument target = in("target", 40), codeTarget = in("codeTarget", 40), filteredVector = in("filteredVector", 40),
                 filteredCode = in("filteredCode", 40), code = in("code", 40), vector = in("vector", 40),
                 coefficients = in("coefficients", 4), limit = value("limit", 15565);
  const Argument vad1 = inOut("state", 116).preparedBy(startVad1), vad2 = inOut("state", 188).preparedBy(startVad2),
                 noise = inOut("state", 416).preparedBy(startNoise);
  return {
      row(FUNCTION(zppsLPCToLSP_GSMAMR_16s), in("a", 11), in("prevLsp", 10), out("lsp", 10)),
      row(FUNCTION(zppsInterpolateLSP_GSMAMR_16s), in("prevLsp", 10), in("lsp", 20), out("a", 44), rate(12)),
      row(FUNCTION(zppsLSPQuant_GSMAMR_16s), in("lsp", 20), residualMem, out("quantLsp", 20), out("idx", 5), rateOrDtx(12)),
      row(FUNCTION(zppsLSPDecode_GSMAMR_16s), in("idx", 5), value("badFrame", 0), residualMem, lsf, out("quantLsp", 20),
          rateOrDtx(12)),

      row(FUNCTION(zppsOpenLoopPitchSearchNonDTX_GSMAMR_16s), weighted, lagMem, gainFlag, lags, rate(11)),
      row(FUNCTION(zppsOpenLoopPitchSearchDTXVAD1_GSMAMR_16s), weighted, lagMem, vadMem, gainFlag, lags, rate(12)),
      row(FUNCTION(zppsOpenLoopPitchSearchDTXVAD2_GSMAMR_16s32s), weighted, lagMem, gainFlag, lags, out("correlation", 2),
          result("ltpFlag"), rate(0)),

      row(FUNCTION(zppsVAD1GetSize_GSMAMR_16s), result("size")),
      row(FUNCTION(zppsVAD1Init_GSMAMR_16s), out("state", 116)),
      row(FUNCTION(zppsVAD1_GSMAMR_16s), in("speech", 160).before(40), vadMem, flag, vad1),
      row(FUNCTION(zppsVAD2GetSize_GSMAMR_16s), result("size")),
      row(FUNCTION(zppsVAD2Init_GSMAMR_16s), out("state", 188)),
      row(FUNCTION(zppsVAD2_GSMAMR_16s), speech, value("ltpFlag", 1), flag, vad2),

      row(FUNCTION(zppsDTXDecision_GSMAMR_16s), value("vadFlag", 0), inOut("dtxMem", 2), result("silence"), result("newSid")),
      row(FUNCTION(zppsDTXHistory_GSMAMR_16s), speech, in("lsp", 10), inOut("lspHist", 80), inOut("logEnergyHist", 8)),
      row(FUNCTION(zppsSIDQuant_GSMAMR_16s), in("lspHist", 80), in("logEnergyHist", 8), out("gainMem", 8), out("sid", 5)),

      row(FUNCTION(zppsPitchGainQuant_GSMAMR_16s), limit, inOut("gain", 1), result("idx")),
      row(FUNCTION(zppsGainQuant_GSMAMR_16s), target, codeTarget, filteredVector, filteredCode, code, in("residual", 40),
          vector, coefficients, limit, gainMem, inOut("adaptMem", 8), inOut("pitchGain", 1), result("codeGain"), out("idx", 2),
          rate(8).refusing({0}, zppStsOutOfRange, 2)),
      row(FUNCTION(zppsGainQuantFirst_GSMAMR_16s), target, codeTarget, filteredVector, filteredCode, code, coefficients,
          in("gainMem", 8), out("unquantMem", 8), out("first", 14), result("codeGain")),
      row(FUNCTION(zppsGainQuantSecond_GSMAMR_16s), target, codeTarget, filteredVector, filteredCode, code, coefficients, limit,
          in("unquantMem", 8), in("first", 14), gainMem, out("pitchGain", 2), out("codeGain", 2), result("idx")),
      row(FUNCTION(zppsPitchGainDecode_GSMAMR_16s), value("idx", 7), result("gain"),
          rate(8).refusing({0, 1, 3, 6, 7, 11}, zppStsOutOfRange, 2)),
      row(FUNCTION(zppsGainDecode_GSMAMR_16s), value("idx", 33), code, gainMem, inOut("pitchGain", 1), result("codeGain"),
          subframe, rate(0)),
      row(FUNCTION(zppsPitchGainConceal_GSMAMR_16s_I), inOut("gain", 1), inOut("mem", 7), condition),
      row(FUNCTION(zppsCodeGainConceal_GSMAMR_16s_I), inOut("gain", 1), inOut("mem", 7), gainMem, condition),
      row(FUNCTION(zppsCodeGainSmooth_GSMAMR_16s), value("codeGain", 500), in("prevLsf", 10), in("lsf", 10), in("lsfMean", 10),
          inOut("mem", 9), result("smoothed"), condition, subframe, rate(1)),

      row(FUNCTION(zppsPhaseDispersion_GSMAMR_16s_I), value("pitchGain", 5000), value("codeGain", 300), inOut("code", 40),
          inOut("mem", 8), condition, rate(3)),
      row(FUNCTION(zppsExcitationControl_GSMAMR_16s_I), inOut("excitation", 40), inOut("energyHist", 9), condition, rate(0)),
      row(FUNCTION(zppsPitchEmphasis_GSMAMR_16s), vector, in("excitation", 40), value("sharpening", 20000),
          value("pitchGain", 9000), out("dst", 40), rate(12)),
      row(FUNCTION(zppsSynthesisFilter_GSMAMR_16s), in("a", 11), in("src", 40), out("dst", 40), length("src"), in("hist", 10)),
      row(FUNCTION(zppsBackgroundNoise_GSMAMR_16s), speech, in("pitchGainHist", 9), inOut("energyHist", 60),
          inOut("noiseCount", 1), inOut("voicedHangover", 1), result("backgroundNoise")),
      row(FUNCTION(zppsPostFilter_GSMAMR_16s_I), in("a", 44), inOut("speech", 160), inOut("mem", 22), rate(12)),

      row(FUNCTION(zppsComfortNoiseGetSize_GSMAMR_16s), result("size")),
      row(FUNCTION(zppsComfortNoiseInit_GSMAMR_16s), out("state", 416)),
      row(FUNCTION(zppsDTXReceive_GSMAMR_16s), choice("frameType", 5, {-1, 8}), choice("prevState", 1, {-1, 3}),
          result("newState"), noise),
      row(FUNCTION(zppsComfortNoise_GSMAMR_16s), in("sid", 5), choice("prevState", 0, {-1, 3}),
          choice("newState", 1, {-1, 0, 3}), residualMem, lsf, gainMem, inOut("synthMem", 10), out("speech", 160), out("a", 44),
          out("lsp", 10), noise, rate(7)),
      row(FUNCTION(zppsComfortNoiseUpdate_GSMAMR_16s), speech, in("lsf", 10), noise),
  };
}

}  // namespace test
