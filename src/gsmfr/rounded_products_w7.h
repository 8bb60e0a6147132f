// The rounded product of the standard: in eight lanes, and as a step of a recursion.
#pragma once

#include "core/fixed_point.h"
#include "core/simd_w7.h"

namespace zpp::gsmfr {

// (a * b + 16384) >> 15 of eight lanes; -32768 times itself wraps to -32768
inline V mulRoundWrapQ15(V a, V b) {
  const V upper = _mm_mulhi_epi16(a, b);
  const V carry = _mm_avg_epu16(_mm_srli_epi16(_mm_mullo_epi16(a, b), 14), _mm_setzero_si128());
  return _mm_add_epi16(_mm_add_epi16(upper, upper), carry);
}

// x - mulRound(a, b) and x + mulRound(a, b), modulo 2^32. The bit that a shift to the right moves out last is the carry, which
// rounds at no cost in time; as few ports of x86 take additions with carry, recursions do best
// there with both ways.
inline Zpp32s minusRounded(Zpp32s x, Zpp32s a, Zpp32s b) {
  const Zpp32u product = static_cast<Zpp32u>(a) * static_cast<Zpp32u>(b);
  return subWrap32(x, static_cast<Zpp32s>(product + 16384) >> 15);
}
inline Zpp32s plusRounded(Zpp32s x, Zpp32s a, Zpp32s b) {
#if defined(__x86_64__) || defined(__i386__)
  auto product = static_cast<Zpp32s>(static_cast<Zpp32u>(a) * static_cast<Zpp32u>(b));
  asm("sarl $15, %0\n\tadcl %1, %0" : "+&r"(product) : "g"(x) : "cc");
  return product;
#else
  return addWrap32(x, static_cast<Zpp32s>(static_cast<Zpp32u>(a) * static_cast<Zpp32u>(b) + 16384) >> 15);
#endif
}

}  // namespace zpp::gsmfr
