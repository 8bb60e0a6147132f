#include "exports/export_table.h"

namespace test {

std::vector<Export> g729LspExports() {
  const auto autoCorr = [](std::size_t count) {
    return in("autoCorr", count).preparedBy([](void* p) { *static_cast<Zpp32s*>(p) = 1 << 30; });
  };
  // Spaced like a flat spectrum, so that no limit acts
  const auto lsf = in("lsf", 10).preparedBy([](void* p) {
    for (int i = 0; i < 10; ++i) static_cast<Zpp16s*>(p)[i] = static_cast<Zpp16s>(2339 * (i + 1));
  });
  const auto maMem = inOut("maMem", 40).preparedBy([](void* p) {
    for (int i = 0; i < 40; ++i) static_cast<Zpp16s*>(p)[i] = static_cast<Zpp16s>(2339 * (i % 10 + 1));
  });
  auto readMaMem = maMem;
  readMaMem.role = Argument::Role::in;
  const auto indices = [](const char* name, std::size_t count) {
    return in(name, count).preparedBy([=](void* p) { std::fill_n(static_cast<Zpp16s*>(p), count, Zpp16s{1}); });
  };
  const Argument a = in("a", 11), lsp = in("lsp", 10), prevLsp = in("prevLsp", 10), src1 = in("src1", 19),
                 src2 = in("src2", 19), dst = out("dst", 19), quantLsf = out("quantLsf", 10), quantLsp = out("quantLsp", 10),
                 code = out("code", 2);
  const auto scaleBeforeLength = value("scaleFactor", 12).refusing({-1, INT32_MIN}, zppStsBadScale, 0);
  return {
      row(FUNCTION(zppsLevinsonDurbin_G729_32s16s), autoCorr(31), choice("order", 30, {0, 31, -1, INT32_MIN}), out("a", 31),
          out("refl", 30), result("energy")),
      row(FUNCTION(zppsLevinsonDurbin_G729B), autoCorr(11), out("a", 11), out("refl", 2), result("energy")),
      row(FUNCTION(zppsLagWindow_G729_32s_I), inOut("autoCorr", 12),
          length("autoCorr").refusing({13, INT32_MAX}, zppStsOutOfRange, 1)),

      row(FUNCTION(zppsLPCToLSP_G729_16s), a, prevLsp, out("lsp", 10)),
      row(FUNCTION(zppsLPCToLSP_G729A_16s), a, prevLsp, out("lsp", 10)),
      row(FUNCTION(zppsLSPToLPC_G729_16s), lsp, out("a", 11)),
      row(FUNCTION(zppsLSPToLSF_G729_16s), lsp, out("lsf", 10)),
      row(FUNCTION(zppsLSPToLSF_Norm_G729_16s), lsp, out("lsf", 10)),
      row(FUNCTION(zppsLSFToLSP_G729_16s), lsf, out("lsp", 10)),

      row(FUNCTION(zppsLSFQuant_G729_16s), lsf, maMem, quantLsf, out("idx", 4)),
      row(FUNCTION(zppsLSPQuant_G729_16s), lsp, maMem, quantLsp, code),
      row(FUNCTION(zppsLSPQuant_G729E_16s), lsp, readMaMem, out("residual", 10), quantLsp, code),
      row(FUNCTION(zppsLSFDecode_G729_16s), indices("idx", 4), maMem, quantLsf),
      row(FUNCTION(zppsLSFDecodeErased_G729_16s), coded("maMode", 1, {-1, 4, 32767, -32768}), maMem, lsf),
      row(FUNCTION(zppsLSFQuant_G729B_16s), lsf, maMem, quantLsf, out("sidIdx", 3)),
      row(FUNCTION(zppsLSFDecode_G729B_16s), indices("sidIdx", 3), maMem, quantLsf),

      row(FUNCTION(zppsInterpolate_G729_16s), src1, src2, dst, length("dst")),
      row(FUNCTION(zppsInterpolateC_G729_16s_Sfs), src1, value("weight1", 1000), src2, value("weight2", 3096), dst,
          length("dst"), scaleBeforeLength),
      row(FUNCTION(zppsInterpolateC_NR_G729_16s_Sfs), src1, value("weight1", 1000), src2, value("weight2", 3096), dst,
          length("dst"), scaleBeforeLength),
  };
}

}  // namespace test
