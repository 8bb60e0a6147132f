// The extents of the buffers of those functions of zppsc.h whose shapes do not depend on other arguments, in the order of
// the arguments; 0 where a buffer has none. Written by the program tests/exports/extents.cpp.
#ifndef ZPPSC_EXTENTS_HPP
#define ZPPSC_EXTENTS_HPP

#include <array>
#include <cstdint>

#include "zppsc.h"

namespace zpp {

template <auto function>
inline constexpr std::array<std::uint16_t, 0> extents{};

template <>
inline constexpr std::uint16_t extents<_zppsAdaptiveCodebookDecode_G723_16s>[] = {5, 64, 60};
template <>
inline constexpr std::uint16_t extents<_zppsComputeAdaptiveCodebookGain_16s>[] = {40, 40, 0, 0};
template <>
inline constexpr std::uint16_t extents<_zppsLPCToLSF_Norm_G723_16s>[] = {10, 10};
template <>
inline constexpr std::uint16_t extents<_zppsLSFQuant_G723_16s_I>[] = {10, 10, 3};
template <>
inline constexpr std::uint16_t extents<_zppsToeplizMatrix_G729D_16s32s>[] = {40, 616};
template <>
inline constexpr std::uint16_t extents<_zppsToeplizMatrix_GSMAMR_16s32s>[] = {40, 40, 1600};
template <>
inline constexpr std::uint16_t extents<_zppsToeplizMatrix_GSMAMR_r74_16s32s>[] = {40, 40, 1600};
template <>
inline constexpr std::uint16_t extents<_zppsToeplizMatrix_r59_GSMAMR_16s32s>[] = {40, 40, 1600};
template <>
inline constexpr std::uint16_t extents<_zppsToeplizMatrix_r67_GSMAMR_16s32s>[] = {40, 40, 1600};
template <>
inline constexpr std::uint16_t extents<zppsAdaptiveCodebookDecodeInit_AMRWB_16s>[] = {24};
template <>
inline constexpr std::uint16_t extents<zppsAdaptiveCodebookGainCoeffs_GSMAMR_16s>[] = {40, 40, 0, 4};
template <>
inline constexpr std::uint16_t extents<zppsAdaptiveCodebookGain_G729A_16s>[] = {40, 11, 40, 40, 0};
template <>
inline constexpr std::uint16_t extents<zppsAdaptiveCodebookGain_G729_16s>[] = {40, 40, 40, 40, 0};
template <>
inline constexpr std::uint16_t extents<zppsAdaptiveCodebookGain_GSMAMR_16s>[] = {40, 40, 0};
template <>
inline constexpr std::uint16_t extents<zppsAutoCorr_AMRWB_16s32s>[] = {384, 17};
template <>
inline constexpr std::uint16_t extents<zppsAutoCorr_G723_16s>[] = {180, 0, 11};
template <>
inline constexpr std::uint16_t extents<zppsAutoCorr_GSMFR_16s32s_I>[] = {160, 9, 0};
template <>
inline constexpr std::uint16_t extents<zppsAutoCorr_NormE_G723_16s>[] = {180, 11, 0};
template <>
inline constexpr std::uint16_t extents<zppsBackgroundNoise_GSMAMR_16s>[] = {160, 9, 60, 0, 0, 0};
template <>
inline constexpr std::uint16_t extents<zppsCodeGainConceal_GSMAMR_16s_I>[] = {0, 7, 0, 7};
template <>
inline constexpr std::uint16_t extents<zppsCombinedFilterInit_G728_16s>[] = {208};
template <>
inline constexpr std::uint16_t extents<zppsCombinedFilterZeroInput_G728_16s>[] = {50, 10, 10, 5, 0};
template <>
inline constexpr std::uint16_t extents<zppsCombinedFilterZeroState_G728_16s>[] = {4, 4, 4, 6, 6, 0};
template <>
inline constexpr std::uint16_t extents<zppsComfortNoiseInit_GSMAMR_16s>[] = {416};
template <>
inline constexpr std::uint16_t extents<zppsComfortNoiseUpdate_GSMAMR_16s>[] = {160, 10, 0};
template <>
inline constexpr std::uint16_t extents<zppsDCTFwd_G722_16s>[] = {320, 320};
template <>
inline constexpr std::uint16_t extents<zppsDCTInv_G722_16s>[] = {320, 320};
template <>
inline constexpr std::uint16_t extents<zppsDTXHistory_GSMAMR_16s>[] = {160, 10, 80, 8};
template <>
inline constexpr std::uint16_t extents<zppsDecodeAdaptiveVector_G729_16s>[] = {0, 154, 40};
template <>
inline constexpr std::uint16_t extents<zppsDecodeAdaptiveVector_G729_16s_I>[] = {0, 194};
template <>
inline constexpr std::uint16_t extents<zppsDecodeAdaptiveVector_G729_32f_I>[] = {0, 194};
template <>
inline constexpr std::uint16_t extents<zppsDecomposeDCTToMLT_G722_16s>[] = {320, 160, 320};
template <>
inline constexpr std::uint16_t extents<zppsDecomposeMLTToDCT_G722_16s>[] = {320, 320, 320};
template <>
inline constexpr std::uint16_t extents<zppsExtrapolationInit_G728_16s>[] = {384};
template <>
inline constexpr std::uint16_t extents<zppsExtrapolationUpdate_G728_16s>[] = {6, 0};
template <>
inline constexpr std::uint16_t extents<zppsExtrapolation_G728_16s>[] = {6, 0, 0};
template <>
inline constexpr std::uint16_t extents<zppsFixedCodebookSearch_G729A_16s>[] = {40, 616, 40, 2};
template <>
inline constexpr std::uint16_t extents<zppsFixedCodebookSearch_G729A_32f>[] = {40, 616, 40, 2};
template <>
inline constexpr std::uint16_t extents<zppsFixedCodebookSearch_G729A_32s16s>[] = {40, 616, 40, 2};
template <>
inline constexpr std::uint16_t extents<zppsFixedCodebookSearch_G729D_16s>[] = {40, 40, 40, 40, 0, 0};
template <>
inline constexpr std::uint16_t extents<zppsFixedCodebookSearch_G729D_32f>[] = {40, 40, 40, 40, 0, 0};
template <>
inline constexpr std::uint16_t extents<zppsFormantPostFilter_G723_16s_I>[] = {10, 60, 20, 0, 0};
template <>
inline constexpr std::uint16_t extents<zppsGainControl_G729A_16s_I>[] = {40, 40, 0};
template <>
inline constexpr std::uint16_t extents<zppsGainControl_G729_16s_I>[] = {40, 40, 0};
template <>
inline constexpr std::uint16_t extents<zppsGainControl_G729_32f_I>[] = {40, 40, 0};
template <>
inline constexpr std::uint16_t extents<zppsGainQuantFirst_GSMAMR_16s>[] = {40, 40, 40, 40, 40, 4, 8, 8, 14, 0};
template <>
inline constexpr std::uint16_t extents<zppsGainQuant_G723_16s>[] = {60, 60, 0};
template <>
inline constexpr std::uint16_t extents<zppsHighPassFilterInit_G729>[] = {6, 12};
template <>
inline constexpr std::uint16_t extents<zppsIIR16sInit_G728_16s>[] = {64};
template <>
inline constexpr std::uint16_t extents<zppsIIR16s_G728_16s>[] = {10, 10, 5, 5, 0};
template <>
inline constexpr std::uint16_t extents<zppsISFExtrapolate_AMRWB_16s>[] = {16, 20};
template <>
inline constexpr std::uint16_t extents<zppsImpulseResponseTarget_GSMAMR_16s>[] = {50, 11, 11, 11, 10, 10, 40, 40, 40};
template <>
inline constexpr std::uint16_t extents<zppsImpulseResponse_G728_16s>[] = {4, 4, 4, 5};
template <>
inline constexpr std::uint16_t extents<zppsInterpolateISP_AMRWB_16s>[] = {16, 16, 68};
template <>
inline constexpr std::uint16_t extents<zppsLARDecode_GSMFR_16s>[] = {8, 8};
template <>
inline constexpr std::uint16_t extents<zppsLARQuant_GSMFR_16s>[] = {8, 8};
template <>
inline constexpr std::uint16_t extents<zppsLARToRefl_GSMFR_16s>[] = {8, 8, 32};
template <>
inline constexpr std::uint16_t extents<zppsLPCAutoCorr_G723_16s>[] = {10, 11, 0};
template <>
inline constexpr std::uint16_t extents<zppsLPCInverseFilter_G728_16s>[] = {10, 5, 5, 0};
template <>
inline constexpr std::uint16_t extents<zppsLPCToISP_AMRWB_16s>[] = {17, 16, 16};
template <>
inline constexpr std::uint16_t extents<zppsLPCToLSF_G723_16s>[] = {10, 0, 10};
template <>
inline constexpr std::uint16_t extents<zppsLPCToLSP_G729A_16s>[] = {11, 0, 10};
template <>
inline constexpr std::uint16_t extents<zppsLPCToLSP_G729A_32f>[] = {11, 10, 10};
template <>
inline constexpr std::uint16_t extents<zppsLPCToLSP_G729_16s>[] = {11, 0, 10};
template <>
inline constexpr std::uint16_t extents<zppsLPCToLSP_G729_32f>[] = {11, 10, 10};
template <>
inline constexpr std::uint16_t extents<zppsLPCToLSP_GSMAMR_16s>[] = {11, 0, 10};
template <>
inline constexpr std::uint16_t extents<zppsLSFDecode_G729B_16s>[] = {3, 40, 10};
template <>
inline constexpr std::uint16_t extents<zppsLSFDecode_G729B_32f>[] = {3, 40, 10};
template <>
inline constexpr std::uint16_t extents<zppsLSFDecode_G729_16s>[] = {4, 40, 10};
template <>
inline constexpr std::uint16_t extents<zppsLSFDecode_G729_32f>[] = {4, 40, 10};
template <>
inline constexpr std::uint16_t extents<zppsLSFInterpolation_G723_16s>[] = {10, 10, 40};
template <>
inline constexpr std::uint16_t extents<zppsLSFQuant_G723_16s32s>[] = {10, 10, 0};
template <>
inline constexpr std::uint16_t extents<zppsLSFQuant_G729B_16s>[] = {10, 40, 10, 3};
template <>
inline constexpr std::uint16_t extents<zppsLSFQuant_G729B_32f>[] = {10, 40, 10, 3};
template <>
inline constexpr std::uint16_t extents<zppsLSFQuant_G729_16s>[] = {10, 40, 10, 4};
template <>
inline constexpr std::uint16_t extents<zppsLSFToLPC_G723_16s>[] = {10, 10};
template <>
inline constexpr std::uint16_t extents<zppsLSFToLPC_G723_16s_I>[] = {10};
template <>
inline constexpr std::uint16_t extents<zppsLSFToLSP_G729_16s>[] = {10, 10};
template <>
inline constexpr std::uint16_t extents<zppsLSPQuant_G729E_16s>[] = {10, 40, 10, 10, 2};
template <>
inline constexpr std::uint16_t extents<zppsLSPQuant_G729E_32f>[] = {10, 40, 10, 10, 2};
template <>
inline constexpr std::uint16_t extents<zppsLSPQuant_G729_16s>[] = {10, 40, 10, 2};
template <>
inline constexpr std::uint16_t extents<zppsLSPToLPC_G729_16s>[] = {10, 11};
template <>
inline constexpr std::uint16_t extents<zppsLSPToLPC_G729_32f>[] = {10, 11};
template <>
inline constexpr std::uint16_t extents<zppsLSPToLSF_G729_16s>[] = {10, 10};
template <>
inline constexpr std::uint16_t extents<zppsLSPToLSF_Norm_G729_16s>[] = {10, 10};
template <>
inline constexpr std::uint16_t extents<zppsLTPSearch_GSMFR_16s>[] = {40, 120, 0, 0};
template <>
inline constexpr std::uint16_t extents<zppsLagWindow_G729E_32s_I>[] = {31};
template <>
inline constexpr std::uint16_t extents<zppsLevinsonDurbin_AMRWB_32s16s>[] = {17, 17, 16};
template <>
inline constexpr std::uint16_t extents<zppsLevinsonDurbin_G723_16s>[] = {0, 0, 0, 10};
template <>
inline constexpr std::uint16_t extents<zppsLevinsonDurbin_G729B>[] = {0, 11, 2, 0};
template <>
inline constexpr std::uint16_t extents<zppsLogEnergy_AMRWB_16s>[] = {256, 0};
template <>
inline constexpr std::uint16_t extents<zppsLogGainPredict_G728_16s>[] = {10, 10, 0, 0, 2};
template <>
inline constexpr std::uint16_t extents<zppsOpenLoopPitchSearch_G723_16s>[] = {120, 0};
template <>
inline constexpr std::uint16_t extents<zppsOpenLoopPitchSearch_G729A_16s>[] = {80, 0};
template <>
inline constexpr std::uint16_t extents<zppsOpenLoopPitchSearch_G729A_32f>[] = {80, 0};
template <>
inline constexpr std::uint16_t extents<zppsOpenLoopPitchSearch_G729_16s>[] = {80, 0};
template <>
inline constexpr std::uint16_t extents<zppsPhaseDispersionInit_G729D_16s>[] = {20};
template <>
inline constexpr std::uint16_t extents<zppsPitchGainConceal_GSMAMR_16s_I>[] = {0, 7, 7};
template <>
inline constexpr std::uint16_t extents<zppsPitchPeriod_G728_16s>[] = {20, 0, 0};
template <>
inline constexpr std::uint16_t extents<zppsPostFilterAdapterInit_G728>[] = {176};
template <>
inline constexpr std::uint16_t extents<zppsPostFilterInit_G728_16s>[] = {64};
template <>
inline constexpr std::uint16_t extents<zppsRPEQuant_GSMFR_16s>[] = {40, 13, 0, 0, 0};
template <>
inline constexpr std::uint16_t extents<zppsReflToLAR_GSMFR_16s>[] = {8, 8};
template <>
inline constexpr std::uint16_t extents<zppsRingingUpdate_G723_16s_I>[] = {10, 20, 60, 145, 20};
template <>
inline constexpr std::uint16_t extents<zppsSIDDecode_AMRWB_16s>[] = {5, 16};
template <>
inline constexpr std::uint16_t extents<zppsSIDQuant_AMRWB_16s>[] = {16, 16, 5};
template <>
inline constexpr std::uint16_t extents<zppsSIDQuant_GSMAMR_16s>[] = {80, 8, 8, 5};
template <>
inline constexpr std::uint16_t extents<zppsSIDQuant_GSMFR_16s>[] = {32, 16, 8, 0};
template <>
inline constexpr std::uint16_t extents<zppsSchur_GSMFR_32s16s>[] = {0, 8};
template <>
inline constexpr std::uint16_t extents<zppsShapeEnergy_G728_16s>[] = {5, 128};
template <>
inline constexpr std::uint16_t extents<zppsShortTermPostFilter_G729A_16s>[] = {11, 40, 40};
template <>
inline constexpr std::uint16_t extents<zppsShortTermPostFilter_G729_16s>[] = {11, 0, 40, 20};
template <>
inline constexpr std::uint16_t extents<zppsSynthesisFilterInit_G728_16s>[] = {144};
template <>
inline constexpr std::uint16_t extents<zppsSynthesisFilter_G723_16s_I>[] = {10, 60, 10};
template <>
inline constexpr std::uint16_t extents<zppsTargetNormalize_G728_16s>[] = {5, 2, 6};
template <>
inline constexpr std::uint16_t extents<zppsTargetUpdate_G723_16s_I>[] = {60, 60, 60};
template <>
inline constexpr std::uint16_t extents<zppsTiltCompensation_G729A_16s>[] = {22, 40};
template <>
inline constexpr std::uint16_t extents<zppsToeplizMatrix_G729D_32f>[] = {40, 616};
template <>
inline constexpr std::uint16_t extents<zppsToeplizMatrix_G729_16s32s>[] = {40, 616};
template <>
inline constexpr std::uint16_t extents<zppsToeplizMatrix_G729_16s>[] = {40, 616};
template <>
inline constexpr std::uint16_t extents<zppsToeplizMatrix_G729_32f>[] = {40, 616};
template <>
inline constexpr std::uint16_t extents<zppsVAD1Init_GSMAMR_16s>[] = {116};
template <>
inline constexpr std::uint16_t extents<zppsVAD1_GSMAMR_16s>[] = {160, 0, 0, 0};
template <>
inline constexpr std::uint16_t extents<zppsVAD2Init_GSMAMR_16s>[] = {188};
template <>
inline constexpr std::uint16_t extents<zppsVADInit_AMRWB_16s>[] = {148};
template <>
inline constexpr std::uint16_t extents<zppsVAD_AMRWB_16s>[] = {256, 0, 0, 148};
template <>
inline constexpr std::uint16_t extents<zppsWeightingFilter_G723_16s_I>[] = {20, 60, 20};
template <>
inline constexpr std::uint16_t extents<zppsWeightingFilter_GSMFR_16s>[] = {40, 40};
template <>
inline constexpr std::uint16_t extents<zppsWeightingLPC_G723_16s>[] = {10, 20};
template <>
inline constexpr std::uint16_t extents<zppsWinHybridBlock_G728_16s>[] = {24, 51, 0, 0};
template <>
inline constexpr std::uint16_t extents<zppsWinHybridInit_G729E_16s>[] = {124};
template <>
inline constexpr std::uint16_t extents<zppsWinHybridInit_G729E_32f>[] = {124};
template <>
inline constexpr std::uint16_t extents<zppsWinHybrid_G728_16s>[] = {20, 51, 0, 0};
template <>
inline constexpr std::uint16_t extents<zppsWinHybrid_G729E_16s32s>[] = {145, 31, 124};
template <>
inline constexpr std::uint16_t extents<zppsWinHybrid_G729E_32f>[] = {145, 31, 124};

}  // namespace zpp

#endif
