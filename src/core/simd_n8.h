// The operators of simd_w7.h that NEON has as one or two instructions, for level n8. simd_w7.h includes it.
#pragma once

#include <arm_neon.h>

#include "core/sse.h"
#include "zppsc.h"

namespace zpp {

namespace neon {

inline int16x8_t lanes16(__m128i v) { return vreinterpretq_s16_s64(v); }
inline int32x4_t lanes32(__m128i v) { return vreinterpretq_s32_s64(v); }
inline __m128i of(int16x8_t v) { return vreinterpretq_s64_s16(v); }
inline __m128i of(int32x4_t v) { return vreinterpretq_s64_s32(v); }
// Exact products of the low and high four lanes
inline int32x4_t productsLow(__m128i a, __m128i b) { return vmull_s16(vget_low_s16(lanes16(a)), vget_low_s16(lanes16(b))); }
inline int32x4_t productsHigh(__m128i a, __m128i b) { return vmull_high_s16(lanes16(a), lanes16(b)); }

}  // namespace neon

inline __m128i reversed(__m128i v) {
  const int16x8_t halves = vrev64q_s16(neon::lanes16(v));
  return neon::of(vextq_s16(halves, halves, 4));
}

inline __m128i widenLow(__m128i v) { return neon::of(vmovl_s16(vget_low_s16(neon::lanes16(v)))); }
inline __m128i widenHigh(__m128i v) { return neon::of(vmovl_high_s16(neon::lanes16(v))); }
inline __m128i mulLow(__m128i a, __m128i b) { return neon::of(neon::productsLow(a, b)); }
inline __m128i mulHigh(__m128i a, __m128i b) { return neon::of(neon::productsHigh(a, b)); }

inline __m128i mulWrapQ15(__m128i a, __m128i b) {
  return neon::of(vshrn_high_n_s32(vshrn_n_s32(neon::productsLow(a, b), 15), neon::productsHigh(a, b), 15));
}
inline __m128i mulQ15(__m128i a, __m128i b) { return neon::of(vqdmulhq_s16(neon::lanes16(a), neon::lanes16(b))); }

inline Zpp32s sumLanes32(__m128i v) { return vaddvq_s32(neon::lanes32(v)); }
inline __m128i sumsOfLanes32(__m128i a, __m128i b, __m128i c, __m128i d) {
  using neon::lanes32;
  return neon::of(vpaddq_s32(vpaddq_s32(lanes32(a), lanes32(b)), vpaddq_s32(lanes32(c), lanes32(d))));
}
inline __m128i addWide64(__m128i acc, __m128i v) {
  return vaddw_high_s32(vaddw_s32(acc, vget_low_s32(neon::lanes32(v))), neon::lanes32(v));
}
inline Zpp64s sumLanes64(__m128i v) { return vaddvq_s64(v); }

inline __m128i select(__m128i mask, __m128i a, __m128i b) { return vbslq_s64(vreinterpretq_u64_s64(mask), a, b); }

}  // namespace zpp
