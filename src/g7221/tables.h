// Constant tables of this room. Content, shape, Q format, the standard's name.
#pragma once

#include "zppsc.h"

// --- Windows and transforms ---------------------------------------------------------------------------------------------

// Analysis window, 320 factor pairs in folding order, 18318 = 1.0: pairs 0..159 are (w[159-i], w[160+i]), pairs 160..319 are
// (w[319-i], -w[i]) of samples_to_rmlt_window
extern const Zpp16s cnstSamples2MLT_G722[640];
// Synthesis window, 320 factor pairs in unfolding order, about 18096 = 1.0: pairs 0..159 are (w[i], w[319-i]), pairs 160..319
// are (w[160+i], -w[159-i]) of rmlt_to_samples_window
extern const Zpp16s cnstMLT2Samples_G722[640];
// Offsets on the forward transform's input: anal_bias
extern const Zpp16s cnstAnalBias_G722[320];
// 0 or 1 on the inverse transform's first splitting stage: dither
extern const Zpp16s cnstDither_G722[320];
// Offsets on the inverse transform's output: syn_bias_7khz
extern const Zpp16s cnstSynthesisBias7khz_G722[320];
// 10-point core matrix of the forward transform, symmetric, Q15: dct_core_a
extern const Zpp16s cnstDCTCoreFwd_G722[100];
// 10-point core matrix of the inverse transform, symmetric, Q15: dct_core_s
extern const Zpp16s cnstDCTCoreInv_G722[100];
// (cos, -sin) pairs of the forward rotations, Q15 times 0.91, stages of 10, 20, 40, 80, 160 pairs: a_cos_msin_2, _4 .. _32
extern const Zpp16s cnstCosSinFwd_G722[620];
// (cos, -sin) pairs of the inverse rotations, Q14 times 1.125, stages as above: s_cos_msin_2, _4 .. _32
extern const Zpp16s cnstCosSinInv_G722[620];

// --- Region coding ------------------------------------------------------------------------------------------------------

// By category 0..7: coefficients of a vector: vector_dimension
extern const Zpp16s cnstVecDimentions_G722[8];
// Vectors of a region: number_of_vectors
extern const Zpp16s cnstVecNumbers_G722[8];
// Largest quantised value: max_bin
extern const Zpp16s cnstMaxBin_G722[8];
// Inverse step size, 8192 for category 3: step_size_inverse_table
extern const Zpp16s cnstStepSizeInv_G722[8];
// Rounding offset of the quantiser, Q13: int_dead_zone
extern const Zpp16s cnstIntDeadZone_G722[8];
// Two more fractional bits of it: int_dead_zone_low_bits
extern const Zpp16s cnstIntDeadZone_G722_low_bits[8];
// By power index 0..63: inverse standard deviation, Q15, limited to 32767: standard_deviation_inverse_table
extern const Zpp16s cnstStdDeviationInv_G722[64];

// Lengths and words of the vector Huffman codes of categories 0..6, by vector index (digits to base MaxBin + 1, the first
// coefficient most significant): mlt_sqvh_bitcount_category_0 .. _6, mlt_sqvh_code_category_0 .. _6
extern const Zpp16s cnstMltSqvhBitcountCtg0_G722[196];
extern const Zpp16s cnstMltSqvhBitcountCtg1_G722[100];
extern const Zpp16s cnstMltSqvhBitcountCtg2_G722[49];
extern const Zpp16s cnstMltSqvhBitcountCtg3_G722[625];
extern const Zpp16s cnstMltSqvhBitcountCtg4_G722[256];
extern const Zpp16s cnstMltSqvhBitcountCtg5_G722[243];
extern const Zpp16s cnstMltSqvhBitcountCtg6_G722[32];
extern const Zpp16u cnstMltSqvhCodeCtg0_G722[196];
extern const Zpp16u cnstMltSqvhCodeCtg1_G722[100];
extern const Zpp16u cnstMltSqvhCodeCtg2_G722[49];
extern const Zpp16u cnstMltSqvhCodeCtg3_G722[625];
extern const Zpp16u cnstMltSqvhCodeCtg4_G722[256];
extern const Zpp16u cnstMltSqvhCodeCtg5_G722[243];
extern const Zpp16u cnstMltSqvhCodeCtg6_G722[32];
