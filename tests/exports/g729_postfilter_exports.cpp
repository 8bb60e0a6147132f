#include "exports/export_table.h"

namespace test {

std::vector<Export> g729PostfilterExports() {
  const Argument coef = in("coef", 11), speech = in("speech", 40).before(10), residual = inOut("residual", 194);
  const Argument src = in("src", 40), dst = out("dst", 40), srcDst = inOut("srcDst", 40);
  const Argument memory = inOut("memory", 1), gain = inOut("gain", 1), state = inOut("state", 20);
  return {
      row(FUNCTION(zppsLongTermPostFilter_G729_16s),
          value("gainFactor", 16384).refusing({-1, 16385, -32768, 32767}, zppStsOutOfRange, 3),
          choice("delay", 60, {17, 144, 0, INT32_MIN, INT32_MAX}), in("residual", 40).before(152), dst, result("delayOut")),
      row(FUNCTION(zppsLongTermPostFilter_G729A_16s), choice("delay", 60, {17, 146, -32768, 32767}), speech, coef, residual,
          dst),
      row(FUNCTION(zppsLongTermPostFilter_G729B_16s), choice("delay", 60, {-1, 144, -32768, 32767}), speech, coef, residual,
          dst, result("voicing"), value("frameType", 1).refusing({-1, 3}, zppStsOutOfRange, 3)),
      row(FUNCTION(_zppsHarmonicPostFilter_G729A_16s), value("delay", 60), in("residual", 40).before(143), dst).trusting(),
      row(FUNCTION(zppsShortTermPostFilter_G729_16s), coef, in("residual", 40), inOut("dst", 40).before(10),
          out("impulse", 20)),
      row(FUNCTION(zppsShortTermPostFilter_G729A_16s), coef, src, inOut("dst", 40).before(10)),
      row(FUNCTION(zppsTiltCompensation_G729_16s), value("tilt", -9000), srcDst, memory),
      row(FUNCTION(zppsTiltCompensation_G729E_16s), value("tilt", 9000), srcDst, memory),
      row(FUNCTION(zppsTiltCompensation_G729A_16s), in("coef", 22), inOut("signal", 40).before(1)),
      row(FUNCTION(zppsPreemphasize_G729A_16s), src, dst, length("src"), value("factor", 9000), memory),
      row(FUNCTION(zppsPreemphasize_G729A_16s_I), srcDst, length("srcDst"), value("factor", 9000), memory),
      row(FUNCTION(zppsGainControl_G729_16s_I), src, srcDst, gain),
      row(FUNCTION(zppsGainControl_G729A_16s_I), src, srcDst, gain),
      row(FUNCTION(zppsPhaseDispersionInit_G729D_16s), state),
      row(FUNCTION(zppsPhaseDispersionUpdate_G729D_16s), value("pitchGain", 12000), value("codeGain", 300), state),
      row(FUNCTION(zppsPhaseDispersion_G729D_16s), in("excitation", 40), in("code", 40), dst, value("codeGain", 300),
          value("pitchGain", 12000), state),
  };
}

}  // namespace test
