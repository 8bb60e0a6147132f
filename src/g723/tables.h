// Constant tables of this room. Content, shape, Q format, ITU-T G.723.1's name.
#pragma once

#include "zppsc.h"

// Hamming analysis window, Q15: 180 entries, HammingWindowTable
extern const Zpp16s HammingWindowTbl_G723[180];
// Lag window, Q15, entry k for lag k: 32767, then the ten entries of BinomialWindowTable
extern const Zpp16s BinomWindowCoeffTbl_G723[11];
// Bandwidth expansion 0.994^k, Q15, k = 1..10: 10 entries, BandExpTable
extern const Zpp16s BandwidthExpansionTbl[10];
// cos(2 pi n / 512), Q14: 512 entries, CosineTable
extern const Zpp16s CosineTbl_G723[512];
// Row i of 257: cos(k pi i / 256), Q14, k = 0..5: what one evaluation of a polynomial takes from CosineTable. Zeros fill the
// rows and stand behind the last one, so that points may be taken in blocks.
extern const Zpp16s ReorderedCOS[288][8];

// LSF codebooks of the three bands, LSF units: 256 code vectors of 3, 3 and 4 components, Band0Tb8, Band1Tb8, Band2Tb8.
// A zero fills the rows of three, so that a search may treat all bands alike.
extern const Zpp16s LSPCdbkFirstBand[256][4];
extern const Zpp16s LSPCdbkSecondBand[256][4];
extern const Zpp16s LSPCdbkThirdBand[256][4];
// The three codebooks in band order
extern const Zpp16s (*const LSPCdbk_G723_Tbls[3])[4];
// First LSF and length of each band, BandInfoTable
extern const Zpp16s LSPCdbkParams_G723[3][2];
// Long-term mean of the LSF, LSF units: 10 entries, LspDcTable
extern const Zpp16s LspDcTbl_G723[10];

// Adaptive-codebook gain vectors, Q14: five taps, then the negated squares and products of the taps, 20 entries a row,
// AcbkGainTable085 and AcbkGainTable170. A spare row of zeros answers the one index that the high-rate checks admit beyond 84.
extern const Zpp16s AdCdbkGainTblHighRate[86][20];
extern const Zpp16s AdCdbkGainTblLowRate[170][20];
// High rate, low rate
extern const Zpp16s (*const AdCdbkGainTbl_G723[2])[20];
