// Cross-correlation: AVX2 kernels.
#include "lpc/kernels.h"
#include "lpc/simd_correlation_v3.h"
#include "lpc/simd_correlation_w7.h"

using namespace zpp;

void ownCorr_16s32s_V3(const Zpp16s* src1, const Zpp16s* src2, int len, Zpp32s* dst, int lags) {
  if (len < 16 || lags < 4) return ownCorr_16s32s_W7(src1, src2, len, dst, lags);
  for (int k = 0; k < lags; k += 4) {
    if (k > lags - 4) k = lags - 4;  // the last pass may repeat lags of the one before
    FourLagsWide four;
    const Zpp16s* const y = src2 + k;
    int n = 0;
    for (; n + 16 <= len; n += 16) four.add(loadWide(src1 + n), y + n);
    if (n + 8 <= len) {
      four.add(load(src1 + n), y + n);
      n += 8;
    }
    if (n < len) four.add(keepLast(load(src1 + len - 8), len - n), y + len - 8);
    store(dst + k, four.total());
  }
}
