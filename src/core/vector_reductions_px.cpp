// Sums, products and extremes: portable kernels.
#include "core/fixed_point.h"
#include "core/kernels.h"

using namespace zpp;

namespace {

// Index of the first extreme element: only a strict improvement replaces it, so a NaN is never chosen unless it comes first.
template <class T, class Better>
int firstExtreme(const T* src, int len, Better better) {
  int found = 0;
  for (int n = 1; n < len; ++n)
    if (better(src[n], src[found])) found = n;
  return found;
}

}  // namespace

Zpp64s ownSum_16s_PX(const Zpp16s* src, int len) {
  Zpp64s sum = 0;
  for (int n = 0; n < len; ++n) sum += src[n];
  return sum;
}

Zpp64s ownDotProd_16s_PX(const Zpp16s* src1, const Zpp16s* src2, int len) {
  // Of a block, the sum modulo 2^32 and one of the upper bytes' products, 2^16 times which is wrong by less than 2^31: a sample
  // is 256 times its upper byte and 0..255, so that a product is wrong by 2^24 at the most.
  constexpr int kBlock = 40;                    // a length that compilers know and make vectors of
  constexpr bool vectors = sizeof(void*) == 8;  // which the least processors of 32 bits do not have
  Zpp64s sum = 0;
  int n = 0;
  for (; vectors && n + kBlock <= len; n += kBlock) {
    Zpp32u exact = 0, coarse = 0;
    for (int i = 0; i < kBlock; ++i) {
      exact += static_cast<Zpp32u>(src1[n + i] * src2[n + i]);
      coarse += static_cast<Zpp32u>((src1[n + i] >> 8) * (src2[n + i] >> 8));
    }
    sum += Zpp64s{static_cast<Zpp32s>(coarse)} * 65536 + static_cast<Zpp32s>(exact - (coarse << 16));
  }
  for (; n < len; ++n) sum += Zpp32s{src1[n]} * src2[n];
  return sum;
}

Zpp16s ownMax_16s_PX(const Zpp16s* src, int len) {
  Zpp16s most = src[0];
  for (int n = 1; n < len; ++n) most = src[n] > most ? src[n] : most;
  return most;
}

Zpp16s ownMin_16s_PX(const Zpp16s* src, int len) {
  Zpp16s least = src[0];
  for (int n = 1; n < len; ++n) least = src[n] < least ? src[n] : least;
  return least;
}

Zpp16s ownMaxAbs_16s_PX(const Zpp16s* src, int len) {
  Zpp16s most = 0;
  for (int n = 0; n < len; ++n) most = absSat16(src[n]) > most ? absSat16(src[n]) : most;
  return most;
}

int ownMinIndx_16s_PX(const Zpp16s* src, int len) {
  return firstExtreme(src, len, [](Zpp16s a, Zpp16s b) { return a < b; });
}

int ownMaxIndx_32f_PX(const Zpp32f* src, int len) {
  return firstExtreme(src, len, [](Zpp32f a, Zpp32f b) { return a > b; });
}

int ownMinIndx_32f_PX(const Zpp32f* src, int len) {
  return firstExtreme(src, len, [](Zpp32f a, Zpp32f b) { return a < b; });
}
