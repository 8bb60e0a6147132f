#include <cstring>

#include "exports/export_table.h"

namespace test {
namespace {

constexpr auto decaying = [](void* p) {
  double r = 20000;
  for (int n = 0; n < 51; ++n, r *= 0.6) {
    const auto word = static_cast<Zpp16s>(r);
    std::memcpy(static_cast<char*>(p) + 2 * n, &word, 2);
  }
};
template <int value>
constexpr auto filledWith = [](void* p) { *static_cast<int*>(p) = value; };
template <int value>
constexpr auto filledWith16 = [](void* p) { *static_cast<Zpp16s*>(p) = value; };

// A state block behind its Init
template <class Init>
Argument state(std::size_t size, Init init) {
  return inOut("state", size).preparedBy(init);
}
Argument rate() {
  return choice("rate", ZPP_RATE_16000, {0, 9, 13, 15, 16, 18, 25, -1, INT32_MAX})
      .refusing({ZPP_RATE_9600, ZPP_RATE_12800}, zppStsBadArgument, 5);
}
Argument index() { return coded("index", 1001, {-1, 1024, INT32_MIN, INT32_MAX}); }
Argument pitch() { return choice("pitch", 50, {19, 141, 0, -1, INT32_MIN, INT32_MAX}); }
Argument geometry(const char* name, int accepted, int tooLarge) {
  return value(name, accepted).refusing({0, -1, tooLarge, INT32_MAX, INT32_MIN}, zppStsBadSize, 1);
}
constexpr Zpp16s window[105] = {};

}  // namespace

std::vector<Export> g728Exports() {
  const auto order = [] { return geometry("order", 50, 51); };
  const auto lenNew = [] { return geometry("lenNew", 20, 172); };
  const auto lenNonRec = [] { return geometry("lenNonRec", 35, 187); };
  const auto plainWindow = [](void* p) { zppsWinHybridInit_G728_16s(window, 50, 20, 35, 2, p); };
  return {
      row(FUNCTION(zppsIIR16sGetStateSize_G728_16s), result("size")),
      row(FUNCTION(zppsIIR16sInit_G728_16s), out("state", 64)),
      row(FUNCTION(zppsIIR16s_G728_16s), in("coefZero", 10), in("coefPole", 10), in("src", 5), out("dst", 5),
          state(64, zppsIIR16sInit_G728_16s)),
      row(FUNCTION(zppsSynthesisFilterGetStateSize_G728_16s), result("size")),
      row(FUNCTION(zppsSynthesisFilterInit_G728_16s), out("state", 144)),
      row(FUNCTION(zppsSynthesisFilter_G728_16s), in("coef", 50), in("exc", 6), out("dst", 6), choice("erased", 1, {-1, 2}),
          state(144, zppsSynthesisFilterInit_G728_16s)),
      row(FUNCTION(zppsCombinedFilterGetStateSize_G728_16s), result("size")),
      row(FUNCTION(zppsCombinedFilterInit_G728_16s), out("state", 208)),
      row(FUNCTION(zppsCombinedFilterZeroInput_G728_16s), in("coef", 50), in("coefZero", 10), in("coefPole", 10), out("dst", 5),
          state(208, zppsCombinedFilterInit_G728_16s)),
      row(FUNCTION(zppsCombinedFilterZeroState_G728_16s), in("coef", 4), in("coefZero", 4), in("coefPole", 4), in("exc", 6),
          out("dst", 6), state(208, zppsCombinedFilterInit_G728_16s)),
      row(FUNCTION(zppsWinHybridGetStateSize_G728_16s), order(), lenNew(), lenNonRec(), result("size")),
      row(FUNCTION(zppsWinHybridInit_G728_16s), in("window", 105), order(), lenNew(), lenNonRec(),
          scale("decay", 2, {0, 16, -1, INT32_MIN}), out("state", 580)),
      row(FUNCTION(zppsWinHybrid_G728_16s), in("src", 20), out("dst", 51), result("valid"), state(580, plainWindow)),
      row(FUNCTION(zppsWinHybridBlock_G728_16s), in("src", 24), out("dst", 51), result("valid"), state(580, plainWindow)),
      row(FUNCTION(zppsLevinsonDurbin_G728_16s_Sfs), in("src", 51).preparedBy(decaying), order(), out("dst", 50), result("rc1"),
          result("residual"), result("scale")),
      row(FUNCTION(zppsLevinsonDurbin_G728_16s_ISfs), in("src", 51).preparedBy(decaying),
          choice("startOrder", 10, {-1, 51, INT32_MIN, INT32_MAX}), order(), inOut("srcDst", 50), inOut("rc1", 1),
          inOut("residual", 1).preparedBy(filledWith16<20000>), inOut("scale", 1).preparedBy(filledWith<15>)),
      row(FUNCTION(zppsWeightLPC_G728_16s_Sfs), in("src", 33), in("weight", 33), out("dst", 33), length("src"),
          scale("scale", 13, {12, 16, 0, -1})),
      row(FUNCTION(zppsLogGainPredict_G728_16s), in("coef", 10), in("src", 10), in("previous", 1).orNull(), result("logGain"),
          out("gain", 2)),
      row(FUNCTION(zppsLogGainUpdate_G728_16s), value("logGain", 500), result("dst"), index(), rate()),
      row(FUNCTION(zppsImpulseResponse_G728_16s), in("coef", 4), in("coefZero", 4), in("coefPole", 4), out("dst", 5)),
      row(FUNCTION(zppsShapeEnergy_G728_16s), in("src", 5), out("dst", 128)),
      row(FUNCTION(zppsTargetNormalize_G728_16s), in("src", 5), in("gain", 2), out("dst", 6)),
      row(FUNCTION(zppsCodebookSearch_G728_16s), in("target", 6), in("response", 5), in("energy", 128), result("index"),
          rate()),
      row(FUNCTION(zppsExcitationVector_G728_16s), in("gain", 2), out("dst", 6), index(), rate()),
      row(FUNCTION(zppsConvertBlock_G728_16s_Sfs), in("src", 6), out("dst", 5), scale("scale", 3, {-1, 16})),
      row(FUNCTION(zppsPostFilterAdapterGetStateSize_G728), result("size")),
      row(FUNCTION(zppsPostFilterAdapterInit_G728), out("state", 176)),
      row(FUNCTION(zppsLPCInverseFilter_G728_16s), in("coef", 10), in("src", 5), out("dst", 5),
          state(176, zppsPostFilterAdapterInit_G728)),
      row(FUNCTION(zppsPitchPeriod_G728_16s), in("src", 20).before(220), result("pitch"),
          state(176, zppsPostFilterAdapterInit_G728)),
      row(FUNCTION(zppsLongTermPostFilterCoeffs_G728_16s), in("src", 100).after("pitch", 50), pitch(), result("tap"),
          out("ltp", 2)),
      row(FUNCTION(zppsPostFilterGetStateSize_G728_16s), result("size")),
      row(FUNCTION(zppsPostFilterInit_G728_16s), out("state", 64)),
      row(FUNCTION(zppsPostFilter_G728_16s), in("ltp", 2), in("coefZero", 10), in("coefPole", 10), in("src", 5),
          in("history", 1).before(50), out("dst", 5), pitch(), value("tilt", 3000), state(64, zppsPostFilterInit_G728_16s)),
      row(FUNCTION(zppsExtrapolationGetStateSize_G728_16s), result("size")),
      row(FUNCTION(zppsExtrapolationInit_G728_16s), out("state", 384)),
      row(FUNCTION(zppsExtrapolationUpdate_G728_16s), in("exc", 6), state(384, zppsExtrapolationInit_G728_16s)),
      row(FUNCTION(zppsExtrapolationSetup_G728_16s), pitch(), value("tap", 9000), choice("step", 0, {-1, INT32_MIN}),
          state(384, zppsExtrapolationInit_G728_16s)),
      row(FUNCTION(zppsExtrapolation_G728_16s), out("dst", 6), result("logGain"), state(384, zppsExtrapolationInit_G728_16s)),
  };
}

}  // namespace test
