#include "exports/export_table.h"

namespace test {

std::vector<Export> lpcExports() {
  const Argument lenSrc = length("src"), lenDst = count("lenDst", 11), norm = inOut("norm", 1);
  const Argument src240 = in("src", 240), dst11 = inOut("dst", 11);
  const Argument coef = in("coef", 11), src = in("src", 40), dst = out("dst", 40), srcDst = inOut("srcDst", 40);
  const Argument hist = in("hist", 10).orNull(), scaleFactor = scale("scaleFactor", 12, {11, 14, -1});
  const Argument src1 = in("src1", 40), src2 = in("src2", 40), len1 = length("src1");
  const Argument max = inOut("max", 1), lag = inOut("lag", 1), minLag = value("minLag", 20), maxLag = value("maxLag", 40);
  return {
      row(FUNCTION(zppsAutoCorr_16s32s), src240, lenSrc, dst11, lenDst),
      row(FUNCTION(zppsAutoCorr_NormE_16s32s), src240, lenSrc, dst11, lenDst, norm),
      row(FUNCTION(zppsAutoCorr_NormE_NR_16s), src240, lenSrc, dst11, lenDst, norm),
      row(FUNCTION(_zppsAutoCorr_NormE_Step_NR_16s), src240, lenSrc, value("firstLag", 2), value("step", 2), dst11,
          value("lenDst", 11), norm)
          .trusting(),
      row(FUNCTION(_zppsAutoCorr_G729_16s32s_Sfs), src240, lenSrc, dst11, value("lenDst", 11), value("firstLag", 1),
          value("shift", 3))
          .trusting(),
      row(FUNCTION(_zppsAutoCorr_Inv_16s32s), in("src", 80).before(10, "len"), value("len", 80), dst11, value("lenDst", 11))
          .trusting(),

      row(FUNCTION(zppsSynthesisFilter_NR_16s_Sfs), coef, src, dst, lenSrc, scaleFactor, hist),
      row(FUNCTION(zppsSynthesisFilter_NR_16s_ISfs), coef, srcDst, length("srcDst"), scaleFactor, hist),
      row(FUNCTION(zppsSynthesisFilterLow_NR_16s_ISfs), coef, srcDst, length("srcDst"), scaleFactor, hist),
      row(FUNCTION(zppsSynthesisFilterZeroStateResponse_NR_16s), coef, dst, count("len", 40), scaleFactor),
      row(FUNCTION(zppsSynthesisFilter_G729E_16s), in("coef", 31), count("order", 30), src, dst, lenSrc,
          in("hist", 30).orNull()),
      row(FUNCTION(zppsSynthesisFilter_G729_16s), coef, src, inOut("dst", 40).before(10), lenSrc),
      row(FUNCTION(zppsResidualFilter_G729_16s), coef, src.before(10), dst, count("len", 40)),
      row(FUNCTION(zppsHarmonicFilter_16s_I), value("gain", 13000),
          value("lag", 25).refusing({0, -1, INT32_MIN}, zppStsOutOfRange, 2), srcDst.after("lag", 25), length("srcDst")),
      row(FUNCTION(zppsConvPartial_16s_Sfs), src1, src2, dst, len1,
          value("scaleFactor", 12).refusing({-1, INT32_MIN}, zppStsBadArgument, 3)),
      row(FUNCTION(zppsConvPartial_16s32s), src1, src2, dst, len1),

      row(FUNCTION(zppsCrossCorrLagMax_16s), src1, in("src2", 80), len1,
          value("maxLag", 40).refusing({-1, INT32_MIN}, zppStsOutOfRange, 2), max, lag),
      row(FUNCTION(zppsAutoCorrLagMax_Fwd_16s), in("src", 80), count("len", 40), minLag, maxLag, max, lag),
      row(FUNCTION(zppsAutoCorrLagMax_Inv_16s), in("src", 40).before(40, "len"), count("len", 40), minLag, maxLag, max, lag),
      row(FUNCTION(_zppsCrossCorrLagMax_Inv_16s), in("target", 40), in("signal", 40).after("maxLag", 40), length("target"),
          minLag, maxLag, max, lag)
          .trusting(),
      row(FUNCTION(zppsCrossCorr_16s32s_Sfs), src1, src2, len1, dst, value("scaleFactor", 4)),
      row(FUNCTION(zppsCrossCorr_NR_16s), src1, in("src2", 60), len1, out("dst", 21), count("lags", 21)),
      row(FUNCTION(zppsCrossCorr_NormM_16s), in("target", 40), in("signal", 40), length("target"), dst),
      row(FUNCTION(zppsDotProd_G729A_16s32s), src1, src2, len1, out("dp", 1)),

      row(FUNCTION(_zppsComputeAdaptiveCodebookGain_16s), in("target", 40), in("filtered", 40), out("gain", 1),
          out("coeffs", 4).orNull())
          .trusting(),
  };
}

}  // namespace test
