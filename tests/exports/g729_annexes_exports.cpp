#include "exports/export_table.h"

namespace test {

std::vector<Export> g729AnnexesExports() {
  return {
      row(FUNCTION(zppsLagWindow_G729E_32s_I), inOut("lags", 31)),
      row(FUNCTION(zppsResidualFilter_G729E_16s), in("coef", 31), count("order", 30), in("src", 40).after("order", 30),
          out("dst", 40), count("len", 40)),
      row(FUNCTION(zppsDecodeGain_G729D_16s), value("energy", 40000000), inOut("memory", 4), in("index", 2).orNull(),
          inOut("gain", 2)),
      row(FUNCTION(zppsLongTermPostFilter_G729I_16s),
          value("gainFactor", 16384).refusing({-1, 16385, -32768, 32767}, zppStsOutOfRange, 3),
          choice("delay", 144, {17, 145, 0, INT32_MIN, INT32_MAX}), in("residual", 40).before(153), out("dst", 40),
          result("delayOut")),
  };
}

}  // namespace test
