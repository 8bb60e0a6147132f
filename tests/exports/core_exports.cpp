#include "exports/export_table.h"

namespace test {

std::vector<Export> coreExports() {
  const auto scaleFrom0 = scale("scaleFactor", 4, {-1, INT32_MIN});
  const auto anyScale = value("scaleFactor", 4);
  const Argument src = in("src", 19), src1 = in("src1", 19), src2 = in("src2", 19), dst = out("dst", 19),
                 srcDst = inOut("srcDst", 19);
  const Argument lenDst = length("dst"), lenSrc = length("src"), lenSrcDst = length("srcDst");
  const auto sizeQuery = [](const char* name, ZppStatus (*query)(Zpp32s*)) { return row(name, query, result("size")); };
  return {
      sizeQuery(FUNCTION(zppsHighPassFilterSize_G729)),
      sizeQuery(FUNCTION(zppsAdaptiveCodebookDecodeGetSize_AMRWB_16s)),
      sizeQuery(FUNCTION(zppsVADGetSize_AMRWB_16s)),
      sizeQuery(FUNCTION(zppsPhaseDispersionGetStateSize_G729D_16s)),
      sizeQuery(FUNCTION(zppsWinHybridGetStateSize_G729E_16s)),
      sizeQuery(FUNCTION(zppsWinHybridGetStateSize_G729E_32f)),
      row(FUNCTION(zppsHighPassFilterGetSize_AMRWB_16s), choice("order", 2, {1, 4, -1}), result("size")),
      row(FUNCTION(zppsHighPassFilterInit_G729), in("coef", 6), out("state", 12).of(Element::s16)),
      row(FUNCTION(zppsHighPassFilter_G729_16s_ISfs), srcDst, lenSrcDst, scale("scaleFactor", 12, {11, 14, -1}),
          inOut("state", 24).preparedBy([](void* p) {
            const Zpp16s at140Hz[] = {1899, -3798, 1899, 4096, 7807, -3733};
            zppsHighPassFilterInit_G729(at140Hz, p);
          })),

      row(FUNCTION(zppsZero_16s), dst, lenDst),
      row(FUNCTION(zppsZero_32f), dst, lenDst),
      row(FUNCTION(zppsZero_16sc), out("dst", 38), lenDst),
      row(FUNCTION(zppsSet_16s), value("value", -5), dst, lenDst),
      row(FUNCTION(zppsSet_32s), value("value", -5), dst, lenDst),
      row(FUNCTION(zppsCopy_16s), src, dst, lenSrc),
      row(FUNCTION(zppsCopy_32f), src, dst, lenSrc),
      row(FUNCTION(zppsMove_16s), src, dst, lenSrc),
      row(FUNCTION(zppsMove_32f), src, dst, lenSrc),

      row(FUNCTION(zppsAbs_16s), src, dst, lenSrc),
      row(FUNCTION(zppsAdd_16s), src1, src2, dst, lenDst),
      row(FUNCTION(zppsAdd_16s_I), src, srcDst, lenSrc),
      row(FUNCTION(zppsAdd_32f_I), src, srcDst, lenSrc),
      row(FUNCTION(zppsSub_16s), src1, src2, dst, lenDst),
      row(FUNCTION(zppsSub_16s_I), src, srcDst, lenSrc),
      row(FUNCTION(zppsSub_32f_I), src, srcDst, lenSrc),
      row(FUNCTION(zppsSubCRev_16s_Sfs), src, value("value", 77), dst, lenSrc, anyScale),
      row(FUNCTION(zppsMul_32f), src1, src2, dst, lenDst),
      row(FUNCTION(zppsMulC_32f_I), srcDst, value("value", 0.5), lenSrcDst),
      row(FUNCTION(zppsMul_16s32s_Sfs), src1, src2, dst, lenDst, anyScale),
      row(FUNCTION(zppsMul_NR_16s_Sfs), src1, src2, dst, lenDst, scaleFrom0),
      row(FUNCTION(zppsMul_NR_16s_ISfs), src, srcDst, lenSrc, scaleFrom0),
      row(FUNCTION(zppsMulC_NR_16s_Sfs), src, value("value", 77), dst, lenSrc, scaleFrom0),
      row(FUNCTION(zppsMulC_NR_16s_ISfs), srcDst, value("value", 77), lenSrcDst, scaleFrom0),
      row(FUNCTION(zppsMulPowerC_NR_16s_Sfs), src, value("value", 30000), dst, lenSrc,
          value("scaleFactor", 15).refusing({-1, INT32_MIN}, zppStsBadScale, 0)),
      row(FUNCTION(zppsLShiftC_16s), src, dst, lenSrc, shift("shift", 3)),
      row(FUNCTION(zppsLShiftC_16s_I), srcDst, lenSrcDst, shift("shift", 3)),
      row(FUNCTION(zppsLShiftC_16u), src, dst, lenSrc, shift("shift", 3)),
      row(FUNCTION(zppsLShiftC_16u_I), srcDst, lenSrcDst, shift("shift", 3)),
      row(FUNCTION(zppsLShiftC_32s_I), srcDst, lenSrcDst, shift("shift", 3)),
      row(FUNCTION(zppsRShiftC_16s), src, dst, lenSrc, shift("shift", 3)),
      row(FUNCTION(zppsRShiftC_16s_I), srcDst, lenSrcDst, shift("shift", 3)),
      row(FUNCTION(zppsRShiftC_32s_I), srcDst, lenSrcDst, shift("shift", 3)),
      row(FUNCTION(zppsConvert_16s32s), src, dst, lenSrc),
      row(FUNCTION(_zppsConvert_NR_32s16s_Sfs), src, dst, lenSrc, scaleFrom0),

      row(FUNCTION(zppsSum_16s32s_Sfs), src, lenSrc, result("sum"), anyScale),
      row(FUNCTION(zppsSum_16s_Sfs), src, lenSrc, result("sum"), anyScale),
      row(FUNCTION(_zppsSumSquare_NS_16s32s_Sfs), src, lenSrc, result("sum"), anyScale),
      row(FUNCTION(zppsDotProd_16s32s_Sfs), src1, src2, length("src1"), result("dp"), anyScale),
      row(FUNCTION(zppsMax_16s), src, lenSrc, result("value")),
      row(FUNCTION(zppsMin_16s), src, lenSrc, result("value")),
      row(FUNCTION(zppsMax_32f), src, lenSrc, result("value")),
      row(FUNCTION(zppsMin_32f), src, lenSrc, result("value")),
      row(FUNCTION(zppsMaxIndx_32f), src, lenSrc, result("value"), result("index").orNull()),
      row(FUNCTION(zppsMinIndx_32f), src, lenSrc, result("value"), result("index").orNull()),
      row(FUNCTION(zppsMinIndx_16s), src, lenSrc, result("value"), result("index").orNull()),
      row(FUNCTION(zppsAutoScale_16s), src, dst, lenSrc,
          inOut("scale", 1).preparedBy([](void* p) { *static_cast<int*>(p) = 0; })),
      row(FUNCTION(zppsAutoScale_16s_I), srcDst, lenSrcDst,
          inOut("scale", 1).preparedBy([](void* p) { *static_cast<int*>(p) = 0; })),
      row(FUNCTION(zppsInvSqrt_32s_I), srcDst, lenSrcDst),

      row(FUNCTION(zppsLinToMuLaw_16s8u), src, dst, lenSrc),
      row(FUNCTION(zppsLinToALaw_16s8u), src, dst, lenSrc),
  };
}

}  // namespace test
