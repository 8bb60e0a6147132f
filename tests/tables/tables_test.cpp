// Every entry of every table, as a check sum of the numbers as the standards print them. The sums were computed from the
// standards, not from our tables; where a table lies in another order or is padded here, it is read in the standard's order.
#include <gtest/gtest.h>

#include "amr/dtx/tables.h"
#include "amr/gain/tables.h"
#include "amr/lsp/tables.h"
#include "amr/pitch/tables.h"
#include "amr/postfilter/tables.h"
#include "amr/synthesis/tables.h"
#include "amr/tables.h"
#include "amr/vad/tables.h"
#include "amrwb/excitation/tables.h"
#include "amrwb/filters/tables.h"
#include "amrwb/gain/tables.h"
#include "amrwb/high_band/tables.h"
#include "amrwb/isf/tables.h"
#include "amrwb/lpc/tables.h"
#include "amrwb/pitch/tables.h"
#include "codecs/amr/tables.h"
#include "codecs/amrwb/payload.h"
#include "codecs/amrwb/payload_tables.h"
#include "codecs/g7221/tables.h"
#include "codecs/g728/tables.h"
#include "codecs/g729/single_precision/tables.h"
#include "codecs/g729/tables.h"
#include "core/tables.h"
#include "g7221/tables.h"
#include "g723/tables.h"
#include "g726/tables.h"
#include "g728/tables.h"
#include "g729/gain/tables.h"
#include "g729/gain/tables_32f.h"
#include "g729/lsp/tables.h"
#include "g729/lsp/tables_32f.h"
#include "g729/pitch/tables.h"
#include "g729/postfilter/tables.h"
#include "gsmfr/tables.h"
#include "lpc/tables.h"
#include "support/check_sum.h"

using namespace test;

namespace {

struct Table {
  const char* name;
  std::uint32_t sum, want;
};

void compare(std::initializer_list<Table> tables) {
  for (const Table& table : tables) EXPECT_EQ(table.sum, table.want) << table.name;
}

// Entry by entry, without what fills them up
template <int elements>
std::vector<Zpp16s> rowsOf(const LsfCodebook& codebook) {
  std::vector<Zpp16s> values;
  for (int entry = 0; entry < codebook.size; ++entry)
    for (int i = 0; i < elements; ++i) values.push_back(codebook.at(entry, i));
  return values;
}

// Columns and rows exchanged
template <class T, std::size_t rows, std::size_t columns>
std::vector<T> turned(const T (&table)[rows][columns]) {
  std::vector<T> values;
  for (std::size_t column = 0; column < columns; ++column)
    for (const auto& row : table) values.push_back(row[column]);
  return values;
}

// A table of structures whose members are all of one type
template <class Member, class Structures>
std::vector<Member> membersOf(const Structures& table) {
  constexpr std::size_t octets = sizeof table;
  std::vector<Member> values(octets / sizeof(Member));
  std::memcpy(values.data(), &table, octets);
  return values;
}

template <class T>
std::vector<T> valuesOf(const T* first, std::size_t count) {
  return {first, first + count};
}

TEST(Tables, Core) {
  compare({
      {"tabsqr", sumOf(tabsqr), 0x82b6e58c},
      {"tabsqr_diff", sumOf(tabsqr_diff), 0x0f1574f7},
      {"tablog", sumOf(tablog), 0xc3bcb6ad},
      {"tablog_diff", sumOf(tablog_diff), 0x7988d292},
      {"tabpow", sumOf(tabpow), 0xa2fb7861},
      {"tabpow_diff", sumOf(tabpow_diff), 0x2ef01c8a},
  });
}

TEST(Tables, Lpc) {
  compare({
      {"w_eval_60", sumOf(w_eval_60), 0xdf7d1ea4},
      {"cos15", sumOf(cos15), 0x660bf103},
      {"acos12", sumOf(acos12), 0x426ad278},
  });
}

TEST(Tables, G729) {
  compare({
      {"gbk1", sumOf(gbk1), 0x4f6eb4b2},
      {"gbk2", sumOf(gbk2), 0x7a4e1bef},
      {"gbk1_6k", sumOf(gbk1_6k), 0x5803cef4},
      {"gbk2_6k", sumOf(gbk2_6k), 0x513796c4},
      {"map1", sumOf(map1), 0x5503fa02},
      {"map2", sumOf(map2), 0xa9095e3f},
      {"map1_6k", sumOf(map1_6k), 0x801fec6d},
      {"map2_6k", sumOf(map2_6k), 0x2b1dfe17},
      {"imap1", sumOf(imap1), 0xb460e814},
      {"imap2", sumOf(imap2), 0x55f5ac87},
      {"imap1_6k", sumOf(imap1_6k), 0x28927fc8},
      {"imap2_6k", sumOf(imap2_6k), 0x9c0a11b8},
      {"coef", sumOf(coef), 0xb64dafc5},
      {"L_coef", sumOf(L_coef), 0xc0358fb3},
      {"coef_6k", sumOf(coef_6k), 0x2606fb69},
      {"L_coef_6k", sumOf(L_coef_6k), 0x060525a7},
      {"thr1", sumOf(thr1), 0x066358dd},
      {"thr2", sumOf(thr2), 0xad6adc01},
      {"thr1_6k", sumOf(thr1_6k), 0x4e4c5df8},
      {"thr2_6k", sumOf(thr2_6k), 0xf7818cd5},
      {"gbk1_32f", sumOf(gbk1_32f), 0x130c3534},
      {"gbk2_32f", sumOf(gbk2_32f), 0x7d2eb662},
      {"gbk1_6k_32f", sumOf(gbk1_6k_32f), 0xf1e23179},
      {"gbk2_6k_32f", sumOf(gbk2_6k_32f), 0x340c8f94},
      {"coef_32f", sumOf(coef_32f), 0xce714e88},
      {"coef_6k_32f", sumOf(coef_6k_32f), 0x0c1f8ec6},
      {"thr1_32f", sumOf(thr1_32f), 0xc7358eb3},
      {"thr2_32f", sumOf(thr2_32f), 0xc6ff2033},
      {"thr1_6k_32f", sumOf(thr1_6k_32f), 0x46ab12fc},
      {"thr2_6k_32f", sumOf(thr2_6k_32f), 0x06adbc1c},
      {"pred_32f", sumOf(pred_32f), 0xa6aec817},
      {"LSPCode1", sumOf(LSPCode1), 0x39ca87b6},
      {"LSPCode2", sumOf(LSPCode2), 0x0c1fe5d1},
      {"fg", sumOf(fg), 0xeafde5d8},
      {"fg_sum", sumOf(fg_sum), 0x52b4303e},
      {"fg_sum_inv", sumOf(fg_sum_inv), 0x45c6c2fd},
      {"noise_fg", sumOf(noise_fg), 0x6cf60f14},
      {"noise_fg_sum", sumOf(noise_fg_sum), 0x97c58f71},
      {"noise_fg_sum_inv", sumOf(noise_fg_sum_inv), 0xf2e7ce86},
      {"PtrTab_1", sumOf(PtrTab_1), 0xfe5897cd},
      {"PtrTab_2", sumOf(PtrTab_2), 0xa1728770},
      {"Mp", sumOf(Mp), 0xd53ad86e},
      {"w_eval_50", sumOf(w_eval_50), 0xcc13d627},
      {"slope_cos", sumOf(slope_cos), 0x62e1d78e},
      {"wlag", sumOf(wlag), 0xe5443c7a},
      {"wlagBackward", sumOf(wlagBackward), 0xe5ae6f38},
      {"hw", sumOf(hw), 0x6e18245f},
      {"LSPCode1_32f", sumOf(turned(LSPCode1_32f.at)), 0xab9672f1},
      {"LSPCode2_32f", sumOf(turned(LSPCode2_32f.at)), 0x9a9ed891},
      {"fg_32f", sumOf(fg_32f), 0xf1444889},
      {"fg_sum_32f", sumOf(fg_sum_32f), 0xcff64e6e},
      {"fg_sum_inv_32f", sumOf(fg_sum_inv_32f), 0xe658123f},
      {"noise_fg_32f", sumOf(noise_fg_32f), 0x39d1581d},
      {"noise_fg_sum_32f", sumOf(noise_fg_sum_32f), 0x5c82b36d},
      {"noise_fg_sum_inv_32f", sumOf(noise_fg_sum_inv_32f), 0xcc71182d},
      {"Mp_32f", sumOf(Mp_32f), 0xa68a396a},
      {"w_eval_60_32f", sumOf(w_eval_60_32f), 0xacab11fe},
      {"w_eval_50_32f", sumOf(w_eval_50_32f), 0x55db3a4d},
      {"hw_32f", sumOf(hw_32f), 0x60851997},
      {"inter_3", sumOf(inter_3), 0x55a8e045},
      {"inter_3l", sumOf(inter_3l), 0x5e8f5bda},
      {"inter_3l_32f", sumOf(inter_3l_32f), 0xa3915374},
      {"facGamma1_pst", sumOf(facGamma1_pst), 0x05ceba1b},
      {"facGamma2_pst", sumOf(facGamma2_pst), 0x5e133ec2},
      {"tab_hup_s", sumOf(tab_hup_s), 0x3ae70d70},
      {"tab_hup_l", sumOf(tab_hup_l), 0x78ae8cd9},
      {"ph_imp_low", sumOf(ph_imp_low), 0xaaf01977},
      {"ph_imp_mid", sumOf(ph_imp_mid), 0x28595c7f},
  });
}

TEST(Tables, G723) {
  compare({
      {"HammingWindowTbl_G723", sumOf(HammingWindowTbl_G723), 0x5012beb1},
      {"BinomWindowCoeffTbl_G723", sumOf(BinomWindowCoeffTbl_G723), 0x1297e59d},
      {"BandwidthExpansionTbl", sumOf(BandwidthExpansionTbl), 0x56acb551},
      {"CosineTbl_G723", sumOf(CosineTbl_G723), 0x3e4347e9},
      {"ReorderedCOS", sumOf(ReorderedCOS), 0xa0e2e154},
      {"LSPCdbkFirstBand", sumOf(LSPCdbkFirstBand), 0x14fbc5ad},
      {"LSPCdbkSecondBand", sumOf(LSPCdbkSecondBand), 0x3cb4156f},
      {"LSPCdbkThirdBand", sumOf(LSPCdbkThirdBand), 0xb6b27fe1},
      {"LSPCdbkParams_G723", sumOf(LSPCdbkParams_G723), 0x1b337f38},
      {"LspDcTbl_G723", sumOf(LspDcTbl_G723), 0x88da6eea},
      {"AdCdbkGainTblHighRate", sumOf(AdCdbkGainTblHighRate), 0x34cfe212},
      {"AdCdbkGainTblLowRate", sumOf(AdCdbkGainTblLowRate), 0x9e6735ee},
      {"PerFiltZeroTable", sumOf(PerFiltZeroTable), 0x7fe4c801},
      {"PerFiltPoleTable", sumOf(PerFiltPoleTable), 0xb0452c5c},
      {"PostFiltZeroTable", sumOf(PostFiltZeroTable), 0x3061fd98},
      {"PostFiltPoleTable", sumOf(PostFiltPoleTable), 0xd6d73336},
      {"LpfConstTable", sumOf(LpfConstTable), 0x095e4b20},
      {"tabgain85", sumOf(tabgain85), 0x0ec152ab},
      {"tabgain170", sumOf(tabgain170), 0x5711d036},
      {"epsi170", sumOf(epsi170), 0xccfff5c3},
      {"gain170", sumOf(gain170), 0x453f89c7},
      {"FcbkGainTable", sumOf(FcbkGainTable), 0x94d53d64},
      {"Nb_puls", sumOf(Nb_puls), 0xd638ac14},
      {"MaxPosTable", sumOf(MaxPosTable), 0x4247bb30},
      {"CombinatorialTable", sumOf(CombinatorialTable), 0x60b7615f},
      {"VadScaleTbl", sumOf(VadScaleTbl), 0x28f28be0},
      {"fact", sumOf(fact), 0x9c6a0d71},
      {"base", sumOf(base), 0xb985533a},
  });
}

TEST(Tables, Amr) {
  compare({
      {"lspInitData", sumOf(lspInitData), 0xf4ae6b81},
      {"dtxLogEnAdjust", sumOf(dtxLogEnAdjust), 0x720922bb},
      {"lsfHistMeanScale", sumOf(lsfHistMeanScale), 0x5a0c7ab8},
      {"quaGainPitch", sumOf(quaGainPitch), 0xdac9735b},
      {"quaGainCode", sumOf(quaGainCode), 0x72fb8602},
      {"tableGainLowrates", sumOf(tableGainLowrates), 0xf3a029b2},
      {"tableGainHighrates", sumOf(tableGainHighrates), 0xe2dabfe4},
      {"tableGainMR475", sumOf(tableGainMR475), 0x8ddd1473},
      {"pdown", sumOf(pdown), 0x4b37225a},
      {"cdown", sumOf(cdown), 0x4f518591},
      {"meanLsf3", sumOf(meanLsf3), 0xca41e5fa},
      {"meanLsf5", sumOf(meanLsf5), 0x9b2489b2},
      {"predFac", sumOf(predFac), 0x5295e013},
      {"pastRqInit", sumOf(pastRqInit), 0x4e98108c},
      {"dico1Lsf3", sumOf(rowsOf<3>(dico1Lsf3)), 0x5f099211},
      {"dico2Lsf3", sumOf(rowsOf<3>(dico2Lsf3)), 0x6b93981f},
      {"dico3Lsf3", sumOf(rowsOf<4>(dico3Lsf3)), 0x7cf599c5},
      {"mr515Lsf3", sumOf(rowsOf<4>(mr515Lsf3)), 0xe0820e7b},
      {"mr795Lsf1", sumOf(rowsOf<3>(mr795Lsf1)), 0xbd849fde},
      {"dico1Lsf5", sumOf(rowsOf<4>(dico1Lsf5)), 0x1b5f3b93},
      {"dico2Lsf5", sumOf(rowsOf<4>(dico2Lsf5)), 0x8f420762},
      {"dico3Lsf5", sumOf(rowsOf<4>(dico3Lsf5)), 0x29731d55},
      {"dico4Lsf5", sumOf(rowsOf<4>(dico4Lsf5)), 0xb39c43b5},
      {"dico5Lsf5", sumOf(rowsOf<4>(dico5Lsf5)), 0x01638845},
      {"corrWeight", sumOf(corrWeight), 0x0b5a0fc5},
      {"gamma3", sumOf(gamma3), 0x1d48cc9c},
      {"gamma4", sumOf(gamma4), 0x46954845},
      {"gamma3MR122", sumOf(gamma3MR122), 0x46954845},
      {"gamma4MR122", sumOf(gamma4MR122), 0x08c89c46},
      {"phImpLow", sumOf(phImpLow.twice), 0xfe877076},
      {"phImpMid", sumOf(phImpMid.twice), 0x85662020},
      {"phImpLowMR795", sumOf(phImpLowMR795.twice), 0x9ecaf975},
      {"phImpMidMR795", sumOf(phImpMidMR795.twice), 0x85662020},
      {"gray", sumOf(gray), 0x0fcf1352},
      {"dgray", sumOf(dgray), 0x069639a1},
      {"startPos", sumOf(startPos), 0x3bca6fb8},
      {"inter6Correlation", sumOf(inter6Correlation), 0xf0967b1f},
      {"inter6Excitation", sumOf(inter6Excitation), 0x0bcc370b},
      {"searchPrm", sumOf(membersOf<Zpp16s>(searchPrm)), 0xdd3bfd9f},
      {"sqrtTable", sumOf(sqrtTable), 0xdae0d19c},
      {"phsTbl", sumOf(phsTbl), 0xecdb67f2},
      {"chTbl", sumOf(chTbl), 0x7d6355f4},
      {"chTblSh", sumOf(chTblSh), 0x663680b0},
      {"vmTbl", sumOf(vmTbl), 0x25c93bb6},
      {"vmThresholdTable", sumOf(vmThresholdTable), 0x75e91b3c},
      {"burstcountTable", sumOf(burstcountTable), 0xf87d8dd6},
      {"hangoverTable", sumOf(hangoverTable), 0x6fe6cf6c},
  });
}

TEST(Tables, Amrwb) {
  using namespace zpp::amrwb;
  compare({
      {"strongDispersion", sumOf(strongDispersion), 0x071395bd},
      {"mediumDispersion", sumOf(mediumDispersion), 0xb4db5a9c},
      {"downSamplingTaps", sumOf(downSamplingTaps), 0xda0ceb63},
      {"upSamplingTaps", sumOf(upSamplingTaps), 0x95236c1a},
      {"decimationTaps", sumOf(decimationTaps), 0x075171aa},
      {"bandPass6To7kHz", sumOf(bandPass6To7kHz), 0x671e9657},
      {"lowPass7kHz", sumOf(lowPass7kHz), 0x7d61784c},
      {"gainCodebook6", sumOf(gainCodebook6), 0x3e0b6271},
      {"gainCodebook7", sumOf(gainCodebook7), 0x4df678d6},
      {"energyPrediction", sumOf(energyPrediction), 0x5dd0a6a4},
      {"pitchGainDownUnusable", sumOf(pitchGainDownUnusable), 0xdb2347d8},
      {"pitchGainDownUsable", sumOf(pitchGainDownUsable), 0x6e9d2236},
      {"codeGainDownUnusable", sumOf(codeGainDownUnusable), 0xbe80d21b},
      {"codeGainDownUsable", sumOf(codeGainDownUsable), 0x40c1a97e},
      {"highBandGains", sumOf(highBandGains), 0xdb6c729f},
      {"meanIsf", sumOf(meanIsf), 0x5419e389},
      {"isfStage1Low", sumOf(isfStage1Low), 0x0bcf2c47},
      {"isfStage1High", sumOf(isfStage1High), 0x9618db3a},
      {"isfStage2Part1", sumOf(isfStage2Part1), 0xa0ee1b60},
      {"isfStage2Part2", sumOf(isfStage2Part2), 0x73ef1ceb},
      {"isfStage2Part3", sumOf(isfStage2Part3), 0xe08673fc},
      {"isfStage2Part4", sumOf(isfStage2Part4), 0xb63a7104},
      {"isfStage2Part5", sumOf(isfStage2Part5), 0x43e448bb},
      {"isfStage2LowRatePart1", sumOf(isfStage2LowRatePart1), 0x4bbebfc5},
      {"isfStage2LowRatePart2", sumOf(isfStage2LowRatePart2), 0x3a9e249b},
      {"isfStage2LowRatePart3", sumOf(isfStage2LowRatePart3), 0x2abe062a},
      {"meanIsfNoise", sumOf(meanIsfNoise), 0x118324cb},
      {"isfNoisePart1", sumOf(isfNoisePart1), 0x5243906c},
      {"isfNoisePart2", sumOf(isfNoisePart2), 0xe79e7342},
      {"isfNoisePart3", sumOf(isfNoisePart3), 0xcbc08191},
      {"isfNoisePart4", sumOf(isfNoisePart4), 0x436edbef},
      {"isfNoisePart5", sumOf(isfNoisePart5), 0x66a68a22},
      {"analysisWindow", sumOf(analysisWindow), 0xc6b86c1a},
      {"lagWindowHigh", sumOf(lagWindowHigh), 0x585a8e1d},
      {"lagWindowLow", sumOf(lagWindowLow), 0x0a090e34},
      {"ispGrid", sumOf(ispGrid), 0x8cc900db},
      {"ispCosine", sumOf(ispCosine), 0xe762224b},
      {"ispSlope", sumOf(ispSlope), 0x9819eea9},
      {"ispInterpolation", sumOf(ispInterpolation), 0xe1c38238},
      {"lagWeights", sumOf(lagWeights), 0xd7209bd9},
      {"correlationTaps", sumOf(correlationTaps), 0x188418c7},
      {"excitationTaps", sumOf(excitationTaps), 0x393af1e6},
  });
}

TEST(Tables, G726) {
  using namespace zpp::g726;
  std::vector<int> meaning, interval;
  for (const CodeMeaning& m : codeMeaning) meaning.insert(meaning.end(), {m.scaleFactor, m.logMagnitude, m.speed});
  for (const Quantiser& quantiser : quantisers)
    for (const auto& i : quantiser.interval) interval.insert(interval.end(), {i.code[0], i.code[1], i.logMagnitude});
  compare({
      {"codeMeaning", sumOf(meaning), 0x41d5b315},
      {"quantisers", sumOf(interval), 0xfb0eb43c},
      {"mu law", sumOf(lawLevels[0].value), 0xc17f2297},
      {"mu law, smaller", sumOf(lawLevels[0].smaller), 0x7411429f},
      {"mu law, greater", sumOf(lawLevels[0].greater), 0x40e496f0},
      {"A law", sumOf(lawLevels[1].value), 0xe0f1d643},
      {"A law, smaller", sumOf(lawLevels[1].smaller), 0xcd3f1fef},
      {"A law, greater", sumOf(lawLevels[1].greater), 0x5b6790f2},
  });
}

TEST(Tables, G7221) {
  compare({
      {"cnstSamples2MLT_G722", sumOf(cnstSamples2MLT_G722), 0x8f981489},
      {"cnstMLT2Samples_G722", sumOf(cnstMLT2Samples_G722), 0x31d198ea},
      {"cnstAnalBias_G722", sumOf(cnstAnalBias_G722), 0x63898523},
      {"cnstDither_G722", sumOf(cnstDither_G722), 0xea47093b},
      {"cnstSynthesisBias7khz_G722", sumOf(cnstSynthesisBias7khz_G722), 0x776e16e5},
      {"cnstDCTCoreFwd_G722", sumOf(cnstDCTCoreFwd_G722), 0x86506ad3},
      {"cnstDCTCoreInv_G722", sumOf(cnstDCTCoreInv_G722), 0x5a8b5f71},
      {"cnstCosSinFwd_G722", sumOf(cnstCosSinFwd_G722), 0xd1c1c942},
      {"cnstCosSinInv_G722", sumOf(cnstCosSinInv_G722), 0x401d2e95},
      {"cnstVecDimentions_G722", sumOf(cnstVecDimentions_G722), 0x09bcd742},
      {"cnstVecNumbers_G722", sumOf(cnstVecNumbers_G722), 0xcecd76cb},
      {"cnstMaxBin_G722", sumOf(cnstMaxBin_G722), 0x39619f13},
      {"cnstStepSizeInv_G722", sumOf(cnstStepSizeInv_G722), 0x9c83d070},
      {"cnstIntDeadZone_G722", sumOf(cnstIntDeadZone_G722), 0x4a7a1ef3},
      {"cnstIntDeadZone_G722_low_bits", sumOf(cnstIntDeadZone_G722_low_bits), 0xe5898fc8},
      {"cnstStdDeviationInv_G722", sumOf(cnstStdDeviationInv_G722), 0x492118e9},
      {"cnstMltSqvhBitcountCtg0_G722", sumOf(cnstMltSqvhBitcountCtg0_G722), 0x85963a98},
      {"cnstMltSqvhBitcountCtg1_G722", sumOf(cnstMltSqvhBitcountCtg1_G722), 0x296b97ad},
      {"cnstMltSqvhBitcountCtg2_G722", sumOf(cnstMltSqvhBitcountCtg2_G722), 0x3e7a72f5},
      {"cnstMltSqvhBitcountCtg3_G722", sumOf(cnstMltSqvhBitcountCtg3_G722), 0xb499d91c},
      {"cnstMltSqvhBitcountCtg4_G722", sumOf(cnstMltSqvhBitcountCtg4_G722), 0x82b431b9},
      {"cnstMltSqvhBitcountCtg5_G722", sumOf(cnstMltSqvhBitcountCtg5_G722), 0x606cf226},
      {"cnstMltSqvhBitcountCtg6_G722", sumOf(cnstMltSqvhBitcountCtg6_G722), 0x56741c83},
      {"cnstMltSqvhCodeCtg0_G722", sumOf(cnstMltSqvhCodeCtg0_G722), 0x4ffdc557},
      {"cnstMltSqvhCodeCtg1_G722", sumOf(cnstMltSqvhCodeCtg1_G722), 0xac7f9ed9},
      {"cnstMltSqvhCodeCtg2_G722", sumOf(cnstMltSqvhCodeCtg2_G722), 0xae1e1b5a},
      {"cnstMltSqvhCodeCtg3_G722", sumOf(cnstMltSqvhCodeCtg3_G722), 0x7df591fa},
      {"cnstMltSqvhCodeCtg4_G722", sumOf(cnstMltSqvhCodeCtg4_G722), 0xb04f5c99},
      {"cnstMltSqvhCodeCtg5_G722", sumOf(cnstMltSqvhCodeCtg5_G722), 0x7738590f},
      {"cnstMltSqvhCodeCtg6_G722", sumOf(cnstMltSqvhCodeCtg6_G722), 0x51a2ae85},
  });
}

TEST(Tables, G728) {
  using namespace zpp::g728;
  compare({
      {"shapeCodebook", sumOf(shapeCodebook), 0x7acdec2e},
      {"gainCodebook", sumOf(gainCodebook), 0xf05760e7},
      {"gainShift", sumOf(gainShift), 0xca58ab66},
      {"gainLevel", sumOf(gainLevel), 0xa0f4df06},
      {"shapeLevel", sumOf(shapeLevel), 0x30035d0d},
      {"powerOfTwo", sumOf(powerOfTwo), 0x501336ab},
      {"lowpassZero", sumOf(lowpassZero), 0x0252863b},
      {"lowpassPole", sumOf(lowpassPole), 0x0482c1c3},
      {"erasureGainVoiced", sumOf(erasureGainVoiced), 0x192c32a0},
      {"erasureGainUnvoiced", sumOf(erasureGainUnvoiced), 0x72220e1a},
      {"logarithmOfTwo", sumOf(logarithmOfTwo), 0xe016f8a0},
      {"randomState", sumOf(randomState), 0xf3a0049b},
  });
}

TEST(Tables, Gsmfr) {
  using namespace zpp::gsmfr;
  compare({
      {"larSlope", sumOf(larSlope), 0x78f1edf0},
      {"larOffset", sumOf(larOffset), 0x9fb7fe6c},
      {"larLowest", sumOf(larLowest), 0x219ceb57},
      {"larHighest", sumOf(larHighest), 0xc7fa15f1},
      {"larInverseSlope", sumOf(larInverseSlope), 0x04456c60},
      {"ltpGainLevel", sumOf(ltpGainLevel), 0x3e9a3c68},
      {"ltpGain", sumOf(ltpGain), 0x08ddf120},
      {"weighting", sumOf(weighting), 0xf4a902ad},
      {"inverseMantissa", sumOf(inverseMantissa), 0x1c3e7d73},
      {"toneWindow", sumOf(toneWindow), 0x8471717c},
  });
}

TEST(Tables, GsmFrPulses) { EXPECT_EQ(sumOf(zpp::gsmfr::pulseLevel), 0x87aadaa8); }

TEST(Tables, CodecAmr) {
  using namespace codecs::amr;
  compare({
      {"window200_40", sumOf(window200_40), 0xff4e200d},
      {"window160_80", sumOf(window160_80), 0x2a8dae0a},
      {"window232_8", sumOf(window232_8), 0xb77527c5},
      {"lspInit", sumOf(lspInit), 0xf4ae6b81},
      {"meanLsf", sumOf(meanLsf), 0x9b2489b2},
  });
}

TEST(Tables, CodecAmrFrames) {
  using namespace codecs::amr;
  const std::uint32_t want[kModes] = {0x6e464e8d, 0xc91a95c9, 0x82c90929, 0x299b24f2,
                                      0x8ecdbdce, 0x19c378df, 0x68512d7e, 0x1fad94c9};
  for (int mode = 0; mode < kModes; ++mode) {
    const FrameLayout& frame = frameLayouts[mode];
    EXPECT_EQ(sumOf(valuesOf(frame.widths, frame.parameters), valuesOf(frame.order, frame.bits),
                    valuesOf(frame.homing, frame.parameters)),
              want[mode])
        << mode;
  }
  EXPECT_EQ(sumOf(valuesOf(sidLayout.widths, sidLayout.parameters)), 0x74e2376e);
}

TEST(Tables, CodecAmrWbOrders) {
  const std::size_t bits[10] = {132, 177, 253, 285, 317, 365, 397, 461, 477, 35};
  const std::uint32_t want[10] = {0x8421433f, 0x451ce204, 0x26b2fa4f, 0xfda46125, 0x07bbd2f3,
                                  0xd05229cc, 0xa69e115c, 0x019661fc, 0x2d7739d3, 0x00857d30};
  for (int type = 0; type < 10; ++type)
    EXPECT_EQ(sumOf(valuesOf(codecs::amrwb::bitOrder[type], bits[type])), want[type]) << type;
}

TEST(Tables, CodecG7221) {
  using namespace codecs::g7221;
  compare({
      {"powerCodeLengths", sumOf(powerCodeLengths), 0x17fe96e1},
      {"powerCodes", sumOf(powerCodes), 0x22080d0d},
      {"powerTrees", sumOf(powerTrees), 0x0ea646de},
      {"expectedBits", sumOf(expectedBits), 0x4532aaaf},
      {"standardDeviations", sumOf(standardDeviations), 0xb4648320},
      {"centroids", sumOf(centroids), 0x2c383fcf},
      {"noiseFactors", sumOf(noiseFactors), 0x3703dcda},
  });
}

TEST(Tables, CodecG7221Trees) {
  const std::size_t entries[7] = {360, 186, 94, 1038, 416, 382, 62};
  const std::uint32_t want[7] = {0x36ae8da8, 0x0fe299c3, 0xfe5ae3b8, 0x7a16e809, 0xb5ac4a11, 0x198b073a, 0xe8f57a35};
  for (int category = 0; category < 7; ++category)
    EXPECT_EQ(sumOf(valuesOf(codecs::g7221::vectorTrees[category].nodes, entries[category])), want[category]) << category;
}

TEST(Tables, CodecG728) {
  using namespace codecs::g728;
  compare({
      {"kSynthesisWindow", sumOf(kSynthesisWindow), 0x75f5f197},
      {"kWeightingWindow", sumOf(kWeightingWindow), 0xe5918128},
      {"kLogGainWindow", sumOf(kLogGainWindow), 0xaf4009fb},
      {"kSynthesisExpansion", sumOf(kSynthesisExpansion), 0xf059bdbb},
      {"kLogGainExpansion", sumOf(kLogGainExpansion), 0x32d04ad1},
      {"kWeightingZeros", sumOf(kWeightingZeros), 0x247e0faf},
      {"kWeightingPoles", sumOf(kWeightingPoles), 0x964894cc},
      {"kPostfilterZeros", sumOf(kPostfilterZeros), 0xd0f64ae0},
      {"kPostfilterPoles", sumOf(kPostfilterPoles), 0xb2f9cb32},
      {"kErasureAttenuation", sumOf(kErasureAttenuation), 0xfdb72203},
  });
}

TEST(Tables, CodecG729) {
  compare({
      {"lpWindow", sumOf(codecs::g729f::lpWindow), 0x04469bcd},
      {"lagWindow", sumOf(codecs::g729f::lagWindow), 0xfd23ab29},
      {"correlationFilter", sumOf(codecs::g729f::correlationFilter), 0x2e3be4d7},
      {"shortDelayFilters", sumOf(codecs::g729f::shortDelayFilters), 0xf6c10e25},
      {"longDelayFilters", sumOf(codecs::g729f::longDelayFilters), 0x216c0f9a},
      {"firstGains", sumOf(membersOf<Zpp32f>(codecs::g729f::firstGains)), 0x814c7792},
      {"secondGains", sumOf(membersOf<Zpp32f>(codecs::g729f::secondGains)), 0x711a28ce},
      {"lpWindow", sumOf(codecs::g729::lpWindow), 0xff4e200d},
      {"lowBandCorrelation", sumOf(codecs::g729::lowBandCorrelation), 0x2b1942ba},
      {"vadMeanFactors", sumOf(codecs::g729::vadMeanFactors), 0x16caaf21},
      {"vadMeanShifts", sumOf(codecs::g729::vadMeanShifts), 0x9c787f60},
      {"sidGains", sumOf(codecs::g729::sidGains), 0x8cf36e5f},
  });
}

}  // namespace
