// Kernels of ITU-T G.728 and their processor variants.
#pragma once

#include "core/variants.h"

// ownZeroInputSums_G728_16s: what the memory of the synthesis filter of order 50 contributes to its next five outputs.
//   coef: 50, Q14. memory: 50 mantissas of 14 bits, oldest first: ten vectors, the k-th to be shifted right by shift[k] bits.
//   sums[n] = the sum over the vectors of (minus the sum of coef times mantissas) >> shift. A shift of the oldest vector by 30
//   or more drops it.
// ownLevinsonDurbin_G728_16s: continues the recursion from startOrder, 1 or more, to order; r: order + 1. a: startOrder
//   coefficients in, as many as stages are complete out, with 15 - *shift bits behind the point; all order words are scratch.
//   Returns the order reached; *residual and *shift are those of that order.
// ownWeightLPC_G728_16s: dst[n] = the upper half of src[n] * weight[n] * 2^shift, rounded; false, nothing written, when one
//   does not fit. shift 1..3; dst may be src.
// ownShapeEnergy_G728_16s: as the entry. ownCodebookSearch_G728_16s: the code; target: five backward-filtered words.
// ownPastSums_G728_16s: what a filter of order 10 knows of its next five outputs before the first of them. sums[n] = the sum
//   over k = 0..9 of coefZero[k] * x[n - 1 - k], less that over k = n..9 of coefPole[k] * y[n - 1 - k], the past outputs. Reads
//   x[-10..3] and y[-10..-1].
// ownWindow_G728_16s: dst[n] = the upper half of src[n] * window[n] * 2^shift, rounded; shift, -1..14, brings src to 15 bits.
// ownWindowBlock_G728_16s: the same for `vectors` vectors of five with a shift each, 1 or less, saturated.
// ownFinishLags_G728_32s16s: lags 1..order of an analysis, see hybrid_window.h. Returns the last autocorrelation before
//   rounding.
namespace zpp::g728 {
struct LagShifts;
}

#define ZPP_G728_KERNELS(KERNEL)                                                                                           \
  KERNEL(ownZeroInputSums_G728_16s, W7, void(const Zpp16s* coef, const Zpp16s* memory, const Zpp16s* shift, Zpp64s* sums)) \
  KERNEL(ownLevinsonDurbin_G728_16s, W7,                                                                                   \
         int(const Zpp16s* r, int startOrder, int order, Zpp16s* a, Zpp16s* residual, int* shift))                         \
  KERNEL(ownShapeEnergy_G728_16s, W7, void(const Zpp16s* response, Zpp16s* energy))                                        \
  KERNEL(ownCodebookSearch_G728_16s, W7, int(const Zpp16s* target, const Zpp16s* energy))                                  \
  KERNEL(ownWindow_G728_16s, W7, void(const Zpp16s* src, const Zpp16s* window, Zpp16s* dst, int len, int shift))           \
  KERNEL(ownWindowBlock_G728_16s, W7,                                                                                      \
         void(const Zpp16s* src, const Zpp16s* window, const Zpp16s* shift, Zpp16s* dst, int vectors))                     \
  KERNEL(ownPastSums_G728_16s, W7,                                                                                         \
         void(const Zpp16s* coefZero, const Zpp16s* coefPole, const Zpp16s* x, const Zpp16s* y, Zpp64s* sums))             \
  KERNEL(ownWeightLPC_G728_16s, W7, bool(const Zpp16s* src, const Zpp16s* weight, Zpp16s* dst, int len, int shift))        \
  KERNEL(ownFinishLags_G728_32s16s, W7,                                                                                    \
         Zpp32s(const Zpp32s* leaving, const Zpp32s* newest, Zpp16s* sums, Zpp16s* dst, int order,                         \
                const zpp::g728::LagShifts& shifts))
ZPP_G728_KERNELS(ZPP_DECLARE_KERNEL)

// The weighting filter on five samples: x and y point at them, ten past samples of each before; outputs y = W(z) x.
void ownWeightingFilter_G728_16s(const Zpp16s* coefZero, const Zpp16s* coefPole, const Zpp16s* x, Zpp16s* y);
