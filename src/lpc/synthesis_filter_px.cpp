// LP synthesis filters: portable kernels.
#include <cstring>

#include "lpc/kernels.h"
#include "lpc/synthesis_filter.h"

using namespace zpp;

bool ownSynthesisFilter_NR_16s_PX(const Zpp16s* coef, const Zpp16s* src, Zpp16s* dst, int len, int scaleFactor,
                                  const Zpp16s* hist) {
  Zpp16s start[2 * kLpcOrder] = {};  // the past outputs and the first new ones
  if (hist != nullptr) std::memcpy(start, hist, kLpcOrder * sizeof(Zpp16s));
  bool overflow = false;
  Zpp32s a[kLpcOrder + 1];
  for (int i = 0; i <= kLpcOrder; ++i) a[i] = coef[i];
  Zpp32s latest = start[kLpcOrder - 1];  // in a register: the next output waits for it
  // past[-1] is the latest output
  const auto filtered = [&](const Zpp16s* past, Zpp16s x) {
    Zpp32s acc = addWrap32(a[0] * x, 1 << (scaleFactor - 1));
    for (int i = kLpcOrder; i > 1; --i) acc = subWrap32(acc, a[i] * past[-i]);
    const Zpp32s y = subWrap32(acc, a[1] * latest) >> scaleFactor;
    latest = sat16(y);
    overflow |= y != latest;
    return low16(latest);
  };
  for (int n = 0; n < len && n < kLpcOrder; ++n) dst[n] = start[kLpcOrder + n] = filtered(start + kLpcOrder + n, src[n]);
  for (int n = kLpcOrder; n < len; ++n) dst[n] = filtered(dst + n, src[n]);
  return overflow;
}

bool ownSynthesisFilter_G729E_16s_PX(const Zpp16s* coef, int order, const Zpp16s* src, Zpp16s* dst, int len,
                                     const Zpp16s* hist) {
  bool overflow = false;
  for (int n = 0; n < len; ++n) {
    Zpp32s acc = Zpp32s{coef[0]} * src[n];
    const int inBlock = n < order ? n : order;
    for (int i = 1; i <= inBlock; ++i) acc = subWrap32(acc, Zpp32s{coef[i]} * dst[n - i]);
    if (hist != nullptr)
      for (int i = inBlock + 1; i <= order; ++i) acc = subWrap32(acc, Zpp32s{coef[i]} * hist[order + n - i]);
    dst[n] = synthesisOutput(acc, 12, overflow);
  }
  return overflow;
}
