#include "exports/export_table.h"

namespace test {

std::vector<Export> g729PitchExports() {
  const Argument wsp = in("wsp", 80).before(143), target = in("target", 40), impulse = in("impulse", 40),
                 filtered = in("filtered", 40), newFiltered = out("filtered", 40), vector = in("vector", 40),
                 exc = inOut("exc", 194), newDelay = out("delay", 2), gain = result("gain");
  // Delay 57 and a third; the pair comes by pointer, so that its refusals are tested apart.
  const Argument delay = in("delay", 2).preparedBy([](void* p) {
    static_cast<Zpp16s*>(p)[0] = 57;
    static_cast<Zpp16s*>(p)[1] = 1;
  });
  const auto olDelay = choice("olDelay", 60, {17, 146, -1, 32767, -32768});
  const auto subframe = choice("subframe", 1, {-1, 2, INT32_MAX});
  return {
      row(FUNCTION(zppsOpenLoopPitchSearch_G729_16s), wsp, result("delay")),
      row(FUNCTION(zppsOpenLoopPitchSearch_G729A_16s), wsp, result("delay")),

      row(FUNCTION(zppsAdaptiveCodebookSearch_G729_16s), olDelay, target, impulse, exc, subframe, newDelay),
      row(FUNCTION(zppsAdaptiveCodebookSearch_G729A_16s), olDelay, target, impulse, exc, subframe, newDelay),
      row(FUNCTION(zppsAdaptiveCodebookSearch_G729D_16s), olDelay, target, impulse, exc, subframe, newDelay),
      row(FUNCTION(_zppsMeanSquareWeightedError_16s), target, impulse, in("exc", 194), value("tMin", 50), value("tMax", 60),
          out("corr", 11))
          .trusting(),
      row(FUNCTION(_zppsClosedLoopPitchSearch_G729_16s), in("corr", 19), value("subframe", 0), value("tMin", 50),
          value("tMax", 60), result("frac"), result("delay"))
          .trusting(),

      row(FUNCTION(zppsDecodeAdaptiveVector_G729_16s_I), delay, exc),
      row(FUNCTION(zppsDecodeAdaptiveVector_G729_16s), delay, in("exc", 154), out("vector", 40)),
      row(FUNCTION(zppsAdaptiveCodebookGain_G729_16s), target, impulse, vector, newFiltered, gain),
      row(FUNCTION(zppsAdaptiveCodebookGain_G729A_16s), target, in("a", 11), vector, newFiltered, gain),
      row(FUNCTION(zppsAdaptiveCodebookContribution_G729_16s), value("gain", 9000), filtered, target, out("result", 40)),
  };
}

}  // namespace test
