#include "exports/export_table.h"

namespace test {

std::vector<Export> g729FcbExports() {
  const Argument target = in("target", 40), impulse = in("impulse", 40), code = out("code", 40), filtered = out("filtered", 40),
                 codeword = out("codeword", 2), budget = inOut("budget", 1);
  return {
      row(FUNCTION(zppsToeplizMatrix_G729_16s), impulse, out("matrix", 616)),
      row(FUNCTION(zppsToeplizMatrix_G729_16s32s), impulse, out("matrix", 616)),
      row(FUNCTION(_zppsToeplizMatrix_G729D_16s32s), impulse, out("matrix", 616)).trusting(),
      row(FUNCTION(zppsFixedCodebookSearch_G729_32s16s), target, inOut("matrix", 616), code, codeword, budget,
          choice("subframe", 5, {-1, INT16_MIN})),
      row(FUNCTION(zppsFixedCodebookSearch_G729_16s), target, inOut("matrix", 616), code, codeword, budget,
          choice("subframe", 1, {-1, 2, INT16_MIN, INT16_MAX})),
      row(FUNCTION(zppsFixedCodebookSearch_G729A_32s16s), target, inOut("matrix", 616), code, codeword),
      row(FUNCTION(zppsFixedCodebookSearch_G729A_16s), target, inOut("matrix", 616), code, codeword),
      row(FUNCTION(zppsFixedCodebookSearch_G729D_16s), target, impulse, code, filtered, result("sign"), result("position")),
      row(FUNCTION(zppsFixedCodebookSearch_G729E_16s), value("mode", 1), target, in("residual", 40), impulse, code, filtered,
          out("index", 5)),
  };
}

}  // namespace test
