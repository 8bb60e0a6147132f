#include "exports/export_table.h"

namespace test {

// Single precision: pitch, fixed codebook, gains and gain control
std::vector<Export> g729FloatPitchExports() {
  const Argument target = in("target", 40), impulse = in("impulse", 40), filtered = in("filtered", 40), code = out("code", 40),
                 newFiltered = out("filtered", 40), matrix = inOut("matrix", 616), codeword = out("codeword", 2);
  // Delay 57 and a third; the pair comes by pointer, so that its refusals are tested apart.
  const Argument delay = in("delay", 2).preparedBy([](void* p) {
    static_cast<Zpp16s*>(p)[0] = 57;
    static_cast<Zpp16s*>(p)[1] = 1;
  });
  const auto quantiser = [&](const char* name, auto* function) {
    return row(name, function, target, in("adaptive", 40), in("code", 40), filtered, inOut("memory", 4), out("index", 2),
               out("gain", 2).part("pitchGain", 0).part("codeGain", 1), choice("taming", 0, {-1, 2, INT16_MIN}));
  };
  return {
      row(FUNCTION(zppsOpenLoopPitchSearch_G729A_32f), in("wsp", 80).before(143), result("delay")),
      row(FUNCTION(zppsDecodeAdaptiveVector_G729_32f_I), delay, inOut("exc", 194).part("vector", 154)),
      row(FUNCTION(zppsAdaptiveCodebookContribution_G729_32f), value("gain", 0.5), filtered, target, out("result", 40)),

      row(FUNCTION(zppsToeplizMatrix_G729_32f), impulse, out("matrix", 616)),
      row(FUNCTION(zppsToeplizMatrix_G729D_32f), impulse, out("matrix", 616)),
      row(FUNCTION(zppsFixedCodebookSearch_G729_32f), target, matrix, code, codeword, inOut("budget", 1),
          choice("subframe", 5, {-1, INT16_MIN})),
      row(FUNCTION(zppsFixedCodebookSearch_G729A_32f), target, matrix, code, codeword),
      row(FUNCTION(zppsFixedCodebookSearch_G729D_32f), target, impulse, code, newFiltered, result("sign"), result("position")),
      row(FUNCTION(zppsFixedCodebookSearch_G729E_32f), value("mode", 1), target, in("residual", 40), impulse, code, newFiltered,
          out("index", 5)),

      quantiser(FUNCTION(zppsGainCodebookSearch_G729_32f)),
      quantiser(FUNCTION(zppsGainCodebookSearch_G729D_32f)),

      row(FUNCTION(zppsGainControl_G729_32f_I), in("src", 40), inOut("srcDst", 40), inOut("gain", 1)),
  };
}

}  // namespace test
