// Correlation sums with AVX2: four lags a pass share the loads of one operand.
#pragma once

#include "core/simd_v3.h"

namespace zpp {

struct FourLagsWide {
  W sum0 = _mm256_setzero_si256(), sum1 = sum0, sum2 = sum0, sum3 = sum0;

  // Sixteen products of each lag: x with y[0..15] to y[3..18], modulo 2^32
  void add(W x, const Zpp16s* y) {
    sum0 = _mm256_add_epi32(sum0, _mm256_madd_epi16(x, loadWide(y)));
    sum1 = _mm256_add_epi32(sum1, _mm256_madd_epi16(x, loadWide(y + 1)));
    sum2 = _mm256_add_epi32(sum2, _mm256_madd_epi16(x, loadWide(y + 2)));
    sum3 = _mm256_add_epi32(sum3, _mm256_madd_epi16(x, loadWide(y + 3)));
  }
  // Eight products of each lag
  void add(V x, const Zpp16s* y) {
    const W last = _mm256_zextsi128_si256(x);  // 128-bit loads of y: nothing behind y[10] is read
    sum0 = _mm256_add_epi32(sum0, _mm256_madd_epi16(last, _mm256_castsi128_si256(load(y))));
    sum1 = _mm256_add_epi32(sum1, _mm256_madd_epi16(last, _mm256_castsi128_si256(load(y + 1))));
    sum2 = _mm256_add_epi32(sum2, _mm256_madd_epi16(last, _mm256_castsi128_si256(load(y + 2))));
    sum3 = _mm256_add_epi32(sum3, _mm256_madd_epi16(last, _mm256_castsi128_si256(load(y + 3))));
  }
  void add(const Zpp16s* x, const Zpp16s* y, int len) {  // len: a multiple of 8
    int n = 0;
    for (; n + 16 <= len; n += 16) add(loadWide(x + n), y + n);
    if (n < len) add(load(x + n), y + n);
  }
  V total() const { return sumsOfLanes32(sum0, sum1, sum2, sum3); }
};

}  // namespace zpp
