#include "exports/export_table.h"

namespace test {

std::vector<Export> amrExports() {
  const Argument lag = value("lag", 30), gain = value("gain", 9000), target = in("target", 40),
                 residual = in("ltpResidual", 40), impulse = in("impulse", 40), sharpened = inOut("impulse", 40),
                 code = out("code", 40), filteredCode = out("filteredCode", 40), codeword = out("codeword", 10);
  const Argument subframe = choice("subframe", 1, {-1, 4}),
                 badSizeSubframe = value("subframe", 1).refusing({-1, 4}, zppStsBadSize, 1);
  const std::vector<std::int64_t> otherRates = {-1, 2, 4, 5, 9, 10, 13, 24, 26};
  const auto rate = [&](double accepted) { return choice("rate", accepted, otherRates); };
  const Argument filtered = in("filteredVector", 40), coefficients = out("coefficients", 4);
  const Argument sign = in("sign", 40).preparedBy([](void* data) {
    for (int n = 0; n < 40; ++n) static_cast<Zpp16s*>(data)[n] = n % 3 == 0 ? -32767 : 32767;
  });
  const Argument matrix = inOut("matrix", 1600);
  const Argument excitation = inOut("excitation", 194), vector = out("vector", 40), pitchLag = inOut("lag", 1);
  return {
      row(FUNCTION(zppsAlgebraicCodebookSearch_GSMAMR_16s), lag, gain, target, residual, sharpened, code, filteredCode,
          codeword, subframe, rate(12)),
      row(FUNCTION(zppsAlgebraicCodebookSearchEX_GSMAMR_16s), lag, gain, target, residual, sharpened, code, filteredCode,
          out("codeword", 7), subframe, rate(11), in("work", 16)),
      row(FUNCTION(zppsFixedCodebookDecode_GSMAMR_16s), in("codeword", 10), code, subframe, rate(25)),
      row(FUNCTION(_zppsToeplizMatrix_GSMAMR_16s32s), impulse, sign, matrix).trusting(),
      row(FUNCTION(_zppsToeplizMatrix_GSMAMR_r74_16s32s), impulse, sign, matrix).trusting(),
      row(FUNCTION(_zppsToeplizMatrix_r67_GSMAMR_16s32s), impulse, sign, matrix).trusting(),
      row(FUNCTION(_zppsToeplizMatrix_r59_GSMAMR_16s32s), impulse, sign, matrix).trusting(),
      row(FUNCTION(_zppsToeplizMatrix_r515_GSMAMR_16s32s), impulse, sign, matrix, value("subframe", 3)).trusting(),
      row(FUNCTION(zppsAdaptiveCodebookSearch_GSMAMR_16s), target, impulse, in("openLoopLags", 2), pitchLag, excitation,
          result("fraction"), result("lagIndex"), vector, badSizeSubframe, rate(8).refusing({25}, zppStsOutOfRange, 2)),
      row(FUNCTION(zppsAdaptiveCodebookDecode_GSMAMR_16s), value("lagIndex", 7).refusing({-1, 512}, zppStsOutOfRange, 4),
          inOut("lastGoodLag", 1), result("decodedLag"), excitation, pitchLag, vector, badSizeSubframe, value("badFrame", 0),
          value("backgroundNoise", 0), value("voicedHangover", 0), rate(25)),
      row(FUNCTION(zppsAdaptiveCodebookGain_GSMAMR_16s), target, filtered, result("gain")),
      row(FUNCTION(zppsAdaptiveCodebookGainCoeffs_GSMAMR_16s), target, filtered, result("gain"), coefficients),
      row(FUNCTION(zppsImpulseResponseTarget_GSMAMR_16s), in("speech", 50), in("weight1", 11), in("weight2", 11),
          in("quantLpc", 11), in("errorMem", 10), in("weightMem", 10), out("impulse", 40), out("residual", 40),
          out("target", 40)),
  };
}

}  // namespace test
