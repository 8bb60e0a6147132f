// Autocorrelation of 180 samples: SSE2 kernel.
#include <cstring>

#include "core/simd_w7.h"
#include "g723/lsf/kernels.h"

using namespace zpp;

namespace {

// Products of x with the block that begins at y
V products(V x, const Zpp16s* y) { return _mm_madd_epi16(x, load(y)); }

}  // namespace

// The final sums fit 32 bits, so modular sums in any order are exact; the pair of -32768s that overflows a product of pmaddwd
// is covered by this as well. Zeros around the block stand for the products that a lag leaves out. Five lags a pass, for eight
// registers.
void ownAutoCorr_NormE_G723_16s32s_W7(const Zpp16s* src, int norm, Zpp32s* corr) {
  constexpr int kBefore = 16, kBlocks = 23;
  alignas(16) Zpp16s padded[kBefore + 8 * kBlocks] = {};
  std::memcpy(padded + kBefore, src, 180 * sizeof(Zpp16s));
  V lag[12] = {};
  for (int k = 0; k < 10; k += 5) {
    V s0{}, s1{}, s2{}, s3{}, s4{};
    const Zpp16s* now = padded + kBefore;
    const Zpp16s* before = now - k - 5;
    for (int block = 0; block < kBlocks; ++block, now += 8, before += 8) {
      const V x = load(now);
      s0 = _mm_add_epi32(s0, products(x, before + 4));
      s1 = _mm_add_epi32(s1, products(x, before + 3));
      s2 = _mm_add_epi32(s2, products(x, before + 2));
      s3 = _mm_add_epi32(s3, products(x, before + 1));
      s4 = _mm_add_epi32(s4, products(x, before));
    }
    lag[k] = s0, lag[k + 1] = s1, lag[k + 2] = s2, lag[k + 3] = s3, lag[k + 4] = s4;
  }
  const V shift = _mm_cvtsi32_si128(norm);
  store(corr, _mm_sll_epi32(sumsOfLanes32(lag[0], lag[1], lag[2], lag[3]), shift));
  store(corr + 4, _mm_sll_epi32(sumsOfLanes32(lag[4], lag[5], lag[6], lag[7]), shift));
  store4(corr + 8, _mm_sll_epi32(sumsOfLanes32(lag[8], lag[9], lag[10], lag[11]), shift));
}
