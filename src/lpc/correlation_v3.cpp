// Cross-correlation: AVX2 kernels.
#include "lpc/kernels.h"
#include "lpc/simd_correlation_v3.h"
#include "lpc/simd_correlation_w7.h"

using namespace zpp;

void ownCorr_16s32s_V3(const Zpp16s* src1, const Zpp16s* src2, int len, Zpp32s* dst, int lags) {
  if (len < 16 || lags < 4) return ownCorr_16s32s_W7(src1, src2, len, dst, lags);
  const int whole = len & ~7;
  for (int k = 0; k < lags; k += 4) {
    if (k > lags - 4) k = lags - 4;  // the last pass may repeat lags of the one before
    FourLagsWide four;
    const Zpp16s* const y = src2 + k;
    four.add(src1, y, whole);
    if (whole < len) four.add(keepLast(load(src1 + len - 8), len - whole), y + len - 8);
    store(dst + k, four.total());
  }
}
