#include <cstring>

#include "exports/export_table.h"

namespace test {

namespace {

constexpr std::size_t kVadState = 320;

void commonLags(void* lags) {
  const Zpp16s some[] = {40, 80, 120, 57};
  std::memcpy(lags, some, sizeof some);
}

}  // namespace

std::vector<Export> gsmfrExports() {
  const Argument src = in("src", 40), dst40 = out("dst", 40), history = in("history", 120), refl = in("refl", 8),
                 lattice = inOut("memory", 8);
  return {
      row(FUNCTION(zppsOffsetCompensation_GSMFR_16s), src, dst40, length("src"), inOut("memory", 2)),
      row(FUNCTION(zppsPreemphasize_GSMFR_16s), src, dst40, length("src"), inOut("memory", 1)),
      row(FUNCTION(zppsAutoCorr_GSMFR_16s32s_I), inOut("srcDst", 160), out("autoCorr", 9), result("scale")),
      row(FUNCTION(zppsSchur_GSMFR_32s16s), in("autoCorr", 9), out("refl", 8)),
      row(FUNCTION(zppsReflToLAR_GSMFR_16s), refl, out("lar", 8)),
      row(FUNCTION(zppsLARQuant_GSMFR_16s), in("lar", 8), out("larCode", 8)),
      row(FUNCTION(zppsLARDecode_GSMFR_16s), in("larCode", 8), out("lar", 8)),
      row(FUNCTION(zppsLARToRefl_GSMFR_16s), in("prevLar", 8), in("lar", 8), out("refl", 32)),
      row(FUNCTION(zppsShortTermAnalysisFilter_GSMFR_16s_I), refl, inOut("srcDst", 40), length("srcDst"), lattice),
      row(FUNCTION(zppsShortTermSynthesisFilter_GSMFR_16s), refl, src, dst40, length("src"), lattice),
      row(FUNCTION(zppsLTPSearch_GSMFR_16s), src, history, result("lag"), result("gain")),
      row(FUNCTION(zppsLTPPredict_GSMFR_16s), history, dst40, coded("lag", 57, {39, 121, INT16_MIN, INT16_MAX}),
          coded("gain", 2, {-1, 4, INT16_MIN, INT16_MAX})),
      row(FUNCTION(zppsWeightingFilter_GSMFR_16s), src, dst40),
      row(FUNCTION(zppsRPEQuant_GSMFR_16s), src, out("pulses", 13), result("grid"), result("amplitude"), result("maximum")),
      row(FUNCTION(zppsRPEQuantDecode_GSMFR_16s), in("pulses", 13), dst40, scale("amplitude", 33, {-1, 64, INT16_MIN}),
          coded("grid", 3, {-1, 4, INT16_MIN, INT16_MAX})),
      row(FUNCTION(zppsSpeechSynthesis_GSMFR_16s), in("refl", 32), in("src", 160), out("dst", 160), lattice,
          inOut("emphasis", 1)),
      row(FUNCTION(zppsDeemphasize_GSMFR_16s_I), inOut("srcDst", 40), length("srcDst"), inOut("memory", 1)),
      row(FUNCTION(zppsVADGetSize_GSMFR_16s), result("size")),
      row(FUNCTION(zppsVADInit_GSMFR_16s), out("state", kVadState), choice("direction", 1, {-1, 2, INT32_MIN})),
      row(FUNCTION(zppsVAD_GSMFR_16s), in("autoCorr", 9), in("offsetFree", 160), in("lags", 4).preparedBy(commonLags),
          result("vad"), scale("scale", 2, {-1, 5, INT32_MIN}),
          inOut("state", kVadState).preparedBy([](void* p) { zppsVADInit_GSMFR_16s(p, 1); })),
      row(FUNCTION(zppsSIDQuant_GSMFR_16s), in("lar", 32), in("maxima", 16), out("larCode", 8), result("amplitude")),
  };
}

}  // namespace test
