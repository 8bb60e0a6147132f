// LP synthesis filter as the decoder needs it: saturation at every step, and told.
#include <cstring>

#include "amr/synthesis/kernels.h"
#include "core/checks.h"
#include "core/fixed_point.h"
#include "lpc/kernels.h"

using namespace zpp;

ZppStatus zppsSynthesisFilter_GSMAMR_16s(const Zpp16s* a, const Zpp16s* src, Zpp16s* dst, int len, const Zpp16s* hist) {
  if (anyNull(a, src, dst, hist)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  return ownSynthesisFilter_GSMAMR_16s(a, src, dst, len, hist) ? zppStsOverflowWarn : zppStsOk;
}

bool ownSynthesisFilter_GSMAMR_16s(const Zpp16s* a, const Zpp16s* src, Zpp16s* dst, int len, const Zpp16s* hist) {
  Zpp16s past[2 * kLpcOrder];  // the past outputs and the first new ones
  std::memcpy(past, hist, kLpcOrder * sizeof *hist);
  bool overflow = false;
  // Exact sums stay within 11 * 2^31, so that the doubled sum tells every saturation after it.
  const auto saturated = [&](Zpp64s exact) {
    const Zpp32s value = sat32(exact);
    overflow |= value != exact;
    return value;
  };
  for (int n = 0; n < len; ++n) {
    const Zpp16s* before = n < kLpcOrder ? past + kLpcOrder + n : dst + n;
    Zpp32s sum = saturated(Zpp64s{2} * src[n] * a[0]);
    for (int i = 1; i <= kLpcOrder; ++i) sum = saturated(sum - Zpp64s{saturated(Zpp64s{2} * a[i] * before[-i])});
    sum = saturated(Zpp64s{sum} * 8);
    dst[n] = high16(saturated(Zpp64s{sum} + 0x8000));
    if (n < kLpcOrder) past[kLpcOrder + n] = dst[n];
  }
  return overflow;
}
