// Thin wrappers over SSE2 for kernels of 16- and 32-bit integers. Include it from *_w7.cpp, *_t7.cpp and *_v3.cpp files only.
#pragma once

#include <cstring>
#include <utility>

#include "core/sse.h"
#if defined(__aarch64__)
#include "core/simd_n8.h"
#endif
#include "zppsc.h"

namespace zpp {

using V = __m128i;  // eight 16-bit, four 32-bit or two 64-bit lanes

// Unaligned loads and stores; `load4` reads the low half only (four 16-bit lanes).
inline V load(const void* p) { return _mm_loadu_si128(static_cast<const V*>(p)); }
inline void store(void* p, V v) { _mm_storeu_si128(static_cast<V*>(p), v); }
inline V load4(const void* p) { return _mm_loadl_epi64(static_cast<const V*>(p)); }
inline void store4(void* p, V v) { _mm_storel_epi64(static_cast<V*>(p), v); }

// The lower 64-bit lane
inline Zpp64s lowLane64(V v) {
#if defined(__x86_64__) || defined(__aarch64__)
  return _mm_cvtsi128_si64(v);
#else
  Zpp64s lane;
  store4(&lane, v);
  return lane;
#endif
}

// The first n (0..7) of eight 16-bit lanes; the others are zero. Nothing beyond the n elements is touched.
inline V loadFirst(const Zpp16s* p, int n) {
  alignas(16) Zpp16s lanes[8] = {};
  std::memcpy(lanes, p, static_cast<unsigned>(n) * sizeof(Zpp16s));
  return _mm_load_si128(reinterpret_cast<const V*>(lanes));
}

// Two 16-bit values in each 32-bit lane, the first in its lower half
inline V pairOf(Zpp32s first, Zpp32s second) {
  return _mm_set1_epi32(static_cast<int>((static_cast<Zpp32u>(second) << 16) | (static_cast<Zpp32u>(first) & 0xffff)));
}

// body(0), body(1) .. body(count - 1), written out: compilers that optimise for size as well keep short loops, and with them
// arrays of vectors in memory.
template <int count, class Body>
[[gnu::always_inline]] inline void unrolled(Body body) {
  [&]<int... i>(std::integer_sequence<int, i...>) __attribute__((always_inline)) {
    (body(std::integral_constant<int, i>{}), ...);
  }
  (std::make_integer_sequence<int, count>{});
}

// The two 16-bit halves of each 32-bit lane exchanged
inline V swappedPairs(V v) {
  return _mm_shufflehi_epi16(_mm_shufflelo_epi16(v, _MM_SHUFFLE(2, 3, 0, 1)), _MM_SHUFFLE(2, 3, 0, 1));
}

// Interleaves the first four of eight rows with the last four: a third of a transposition.
inline void interleave(const V (&rows)[8], V (&out)[8]) {
  out[0] = _mm_unpacklo_epi16(rows[0], rows[4]);
  out[1] = _mm_unpackhi_epi16(rows[0], rows[4]);
  out[2] = _mm_unpacklo_epi16(rows[1], rows[5]);
  out[3] = _mm_unpackhi_epi16(rows[1], rows[5]);
  out[4] = _mm_unpacklo_epi16(rows[2], rows[6]);
  out[5] = _mm_unpackhi_epi16(rows[2], rows[6]);
  out[6] = _mm_unpacklo_epi16(rows[3], rows[7]);
  out[7] = _mm_unpackhi_epi16(rows[3], rows[7]);
}
// Transposes eight rows of eight 16-bit lanes.
inline void transpose(V (&rows)[8]) {
  V first[8], second[8];
  interleave(rows, first);
  interleave(first, second);
  interleave(second, rows);
}

#if !defined(__aarch64__)  // there they are core/simd_n8.h's
// Eight 16-bit lanes in reverse order
inline V reversed(V v) {
  v = _mm_shufflehi_epi16(_mm_shufflelo_epi16(v, _MM_SHUFFLE(0, 1, 2, 3)), _MM_SHUFFLE(0, 1, 2, 3));
  return _mm_shuffle_epi32(v, _MM_SHUFFLE(1, 0, 3, 2));
}

// Sign-extended low and high halves of eight 16-bit lanes
inline V widenLow(V v) { return _mm_srai_epi32(_mm_unpacklo_epi16(v, v), 16); }
inline V widenHigh(V v) { return _mm_srai_epi32(_mm_unpackhi_epi16(v, v), 16); }
// Exact 32-bit products of the low and high four 16-bit lanes
inline V mulLow(V a, V b) { return _mm_unpacklo_epi16(_mm_mullo_epi16(a, b), _mm_mulhi_epi16(a, b)); }
inline V mulHigh(V a, V b) { return _mm_unpackhi_epi16(_mm_mullo_epi16(a, b), _mm_mulhi_epi16(a, b)); }

// (a * b) >> 15 of eight lanes; -32768 times itself wraps to -32768
inline V mulWrapQ15(V a, V b) {
  return _mm_or_si128(_mm_slli_epi16(_mm_mulhi_epi16(a, b), 1), _mm_srli_epi16(_mm_mullo_epi16(a, b), 15));
}
// mulQ15 of eight lanes: the one product that wraps is the only way to -32768, and is to give 32767.
inline V mulQ15(V a, V b) {
  const V product = mulWrapQ15(a, b);
  return _mm_xor_si128(product, _mm_cmpeq_epi16(product, _mm_set1_epi16(-32768)));
}

// Sum of the four 32-bit lanes, modulo 2^32
inline Zpp32s sumLanes32(V v) {
  v = _mm_add_epi32(v, _mm_shuffle_epi32(v, _MM_SHUFFLE(1, 0, 3, 2)));
  v = _mm_add_epi32(v, _mm_shuffle_epi32(v, _MM_SHUFFLE(2, 3, 0, 1)));
  return _mm_cvtsi128_si32(v);
}
// The lane sums of four vectors, in order, modulo 2^32
inline V sumsOfLanes32(V a, V b, V c, V d) {
  const V ab = _mm_add_epi32(_mm_unpacklo_epi32(a, b), _mm_unpackhi_epi32(a, b));
  const V cd = _mm_add_epi32(_mm_unpacklo_epi32(c, d), _mm_unpackhi_epi32(c, d));
  return _mm_add_epi32(_mm_unpacklo_epi64(ab, cd), _mm_unpackhi_epi64(ab, cd));
}
// Adds the four signed 32-bit lanes of v to the two 64-bit lanes of acc
inline V addWide64(V acc, V v) {
  const V sign = _mm_srai_epi32(v, 31);
  return _mm_add_epi64(acc, _mm_add_epi64(_mm_unpacklo_epi32(v, sign), _mm_unpackhi_epi32(v, sign)));
}
// Sum of the two 64-bit lanes
inline Zpp64s sumLanes64(V v) { return lowLane64(_mm_add_epi64(v, _mm_unpackhi_epi64(v, v))); }

// mask ? a : b, lane by lane, for masks of all ones or all zeros
inline V select(V mask, V a, V b) { return _mm_or_si128(_mm_and_si128(mask, a), _mm_andnot_si128(mask, b)); }
#endif

// Adds the four unsigned 32-bit lanes of v to the two 64-bit lanes of acc, or to zero
inline V addUnsigned64(V v) { return _mm_add_epi64(_mm_srli_epi64(v, 32), _mm_and_si128(v, _mm_set_epi32(0, -1, 0, -1))); }
inline V addUnsigned64(V acc, V v) { return _mm_add_epi64(acc, addUnsigned64(v)); }

}  // namespace zpp
