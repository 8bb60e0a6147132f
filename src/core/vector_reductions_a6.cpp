// Extremes of single-precision vectors: SSE kernels.
//
// maxps and minps return their second operand when either is a NaN: with the running extreme second, a NaN element is passed
// over and a running NaN, which can only come from the first element, stays, just as in the portable kernel.
#include <bit>

#include "core/kernels.h"
#include "core/sse.h"

namespace {

template <class Operation>
int firstExtreme(const Zpp32f* src, int len, Operation operation) {
  __m128 best = _mm_set1_ps(src[0]);
  int n = 0;
  for (; n + 4 <= len; n += 4) best = operation(_mm_loadu_ps(src + n), best);
  if (n < len) best = operation(_mm_loadu_ps(src + len - 4), best);
  best = operation(_mm_movehl_ps(best, best), best);
  best = operation(_mm_shuffle_ps(best, best, _MM_SHUFFLE(1, 1, 1, 1)), best);
  best = _mm_shuffle_ps(best, best, 0);
  for (n = 0; n < len; n += 4) {
    const int first = n + 4 <= len ? n : len - 4;
    const auto equal = static_cast<unsigned>(_mm_movemask_ps(_mm_cmpeq_ps(_mm_loadu_ps(src + first), best)));
    if (equal != 0) return first + std::countr_zero(equal);
  }
  return 0;  // the first element is a NaN
}

}  // namespace

int ownMaxIndx_32f_A6(const Zpp32f* src, int len) {
  return len < 4 ? ownMaxIndx_32f_PX(src, len) : firstExtreme(src, len, [](__m128 a, __m128 b) { return _mm_max_ps(a, b); });
}

int ownMinIndx_32f_A6(const Zpp32f* src, int len) {
  return len < 4 ? ownMinIndx_32f_PX(src, len) : firstExtreme(src, len, [](__m128 a, __m128 b) { return _mm_min_ps(a, b); });
}
