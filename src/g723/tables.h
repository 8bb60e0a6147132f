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

// Formant weighting, 0.9^k and 0.5^k, Q15, k = 1..10: 10 entries each, PerFiltZeroTable and PerFiltPoleTable
extern const Zpp16s PerFiltZeroTable[10];
extern const Zpp16s PerFiltPoleTable[10];
// Formant postfilter, 0.65^k and 0.75^k, Q15, k = 1..10: 10 entries each, PostFiltZeroTable and PostFiltPoleTable
extern const Zpp16s PostFiltZeroTable[10];
extern const Zpp16s PostFiltPoleTable[10];
// Gain of the pitch postfilter at the high and the low rate, Q15: 2 entries, LpfConstTable
extern const Zpp16s LpfConstTable[2];
// Largest gain of each row of AdCdbkGainTblHighRate and AdCdbkGainTblLowRate, Q13: 85 and 170 entries, tabgain85 and tabgain170
extern const Zpp16s tabgain85[85];
extern const Zpp16s tabgain170[170];
// Displacement, 60 for none, and gain, Q15, of the one tap that stands for each row of AdCdbkGainTblLowRate: 170 entries each,
// epsi170 and gain170
extern const Zpp16s epsi170[170];
extern const Zpp16s gain170[170];
// Gain levels of the fixed codebooks: 24 entries, FcbkGainTable
extern const Zpp16s FcbkGainTable[24];
// Pulses of each subframe at the high rate: 4 entries, Nb_puls
extern const Zpp16s Nb_puls[4];
// Combinations of their places: 4 entries, MaxPosTable
extern const Zpp32s MaxPosTable[4];
// Row j, column i: the combinations of the last 5 - j pulses on the 29 - i places behind place i: 6 rows of 30,
// CombinatorialTable
extern const Zpp32s CombinatorialTable[6][30];
// Threshold factors of the voice activity detector by the norm of the noise level: 11 entries, ScfTab
extern const Zpp16s VadScaleTbl[11];
// Factors from residual to gain energies, Q15, for the last good frame and for 1..3 averaged frames: 4 entries, fact
extern const Zpp16s fact[4];
// First gain of each segment of the comfort-noise gain quantiser: 3 entries, base
extern const Zpp16s base[3];
