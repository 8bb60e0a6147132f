// Element-wise arithmetic on single-precision vectors: SSE kernels.
#include "core/kernels.h"
#include "core/sse.h"

namespace {

template <class Operation>
inline int quads(const Zpp32f* a, const Zpp32f* b, Zpp32f* dst, int len, Operation operation) {
  int n = 0;
  for (; n + 4 <= len; n += 4) _mm_storeu_ps(dst + n, operation(_mm_loadu_ps(a + n), _mm_loadu_ps(b + n)));
  return n;
}

}  // namespace

void ownAdd_32f_A6(const Zpp32f* src1, const Zpp32f* src2, Zpp32f* dst, int len) {
  const int n = quads(src1, src2, dst, len, [](__m128 a, __m128 b) { return _mm_add_ps(a, b); });
  ownAdd_32f_PX(src1 + n, src2 + n, dst + n, len - n);
}

void ownSub_32f_A6(const Zpp32f* src1, const Zpp32f* src2, Zpp32f* dst, int len) {
  const int n = quads(src1, src2, dst, len, [](__m128 a, __m128 b) { return _mm_sub_ps(b, a); });
  ownSub_32f_PX(src1 + n, src2 + n, dst + n, len - n);
}

void ownMul_32f_A6(const Zpp32f* src1, const Zpp32f* src2, Zpp32f* dst, int len) {
  const int n = quads(src1, src2, dst, len, [](__m128 a, __m128 b) { return _mm_mul_ps(a, b); });
  ownMul_32f_PX(src1 + n, src2 + n, dst + n, len - n);
}

void ownMulC_32f_A6(const Zpp32f* src, Zpp32f value, Zpp32f* dst, int len) {
  const __m128 factor = _mm_set1_ps(value);
  const int n = quads(src, src, dst, len, [factor](__m128 a, __m128) { return _mm_mul_ps(a, factor); });
  ownMulC_32f_PX(src + n, value, dst + n, len - n);
}
