#include "exports/export_table.h"

namespace test {

std::vector<Export> g729FloatLspExports() {
  const auto autoCorr = in("autoCorr", 31).preparedBy([](void* p) { *static_cast<Zpp32f*>(p) = 1e6f; });
  // Spaced like a flat spectrum, so that no limit acts
  const auto flat = [](std::size_t count) {
    return [count](void* p) {
      for (std::size_t i = 0; i < count; ++i) static_cast<Zpp32f*>(p)[i] = 0.2856f * static_cast<Zpp32f>(i % 10 + 1);
    };
  };
  const Argument lsf = in("lsf", 10).preparedBy(flat(10)), maMem = inOut("maMem", 40).preparedBy(flat(40));
  const Argument readMaMem = in("maMem", 40).preparedBy(flat(40));
  const auto indices = [](const char* name, std::size_t count) {
    return in(name, count).preparedBy([=](void* p) { std::fill_n(static_cast<Zpp16s*>(p), count, Zpp16s{1}); });
  };
  const Argument a = in("a", 11), lsp = in("lsp", 10), prevLsp = in("prevLsp", 10), quantLsf = out("quantLsf", 10);
  const Argument state = inOut("state", 124);
  return {
      row(FUNCTION(zppsLevinsonDurbin_G729_32f), autoCorr, choice("order", 30, {0, 31, -1, INT32_MIN, INT32_MAX}), out("a", 31),
          out("refl", 30), result("energy")),
      row(FUNCTION(zppsLPCToLSP_G729_32f), a, prevLsp, out("lsp", 10)),
      row(FUNCTION(zppsLPCToLSP_G729A_32f), a, prevLsp, out("lsp", 10)),
      row(FUNCTION(zppsLSPToLPC_G729_32f), lsp, out("a", 11)),

      row(FUNCTION(zppsLSPQuant_G729E_32f), lsp, readMaMem, out("residual", 10), out("quantLsp", 10), out("code", 2)),
      row(FUNCTION(zppsLSFDecode_G729_32f), indices("idx", 4), maMem, quantLsf),
      row(FUNCTION(zppsLSFDecodeErased_G729_32f), coded("maMode", 1, {-1, 4, 32767, -32768}), maMem, lsf),
      row(FUNCTION(zppsLSFQuant_G729B_32f), lsf, maMem, quantLsf, out("sidIdx", 3)),
      row(FUNCTION(zppsLSFDecode_G729B_32f), indices("sidIdx", 3), maMem, quantLsf),
      row(FUNCTION(zppsInterpolateC_G729_32f), in("src1", 19), value("weight1", 0.25), in("src2", 19), value("weight2", 0.75),
          out("dst", 19), length("dst")),

      row(FUNCTION(zppsWinHybridInit_G729E_16s), state),
      row(FUNCTION(zppsWinHybridInit_G729E_32f), state),
      row(FUNCTION(zppsWinHybrid_G729E_16s32s), in("src", 145), out("dst", 31), state),
      row(FUNCTION(zppsWinHybrid_G729E_32f), in("src", 145), out("dst", 31), state),
  };
}

}  // namespace test
