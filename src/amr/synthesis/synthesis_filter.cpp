// LP synthesis filter as the decoder needs it: saturation at every step, and told.
#include <algorithm>
#include <cstring>

#include "amr/synthesis/kernels.h"
#include "core/checks.h"
#include "core/fixed_point.h"
#include "core/kernels.h"
#include "lpc/kernels.h"

using namespace zpp;

ZppStatus zppsSynthesisFilter_GSMAMR_16s(const Zpp16s* a, const Zpp16s* src, Zpp16s* dst, int len, const Zpp16s* hist) {
  if (anyNull(a, src, dst, hist)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  return ownSynthesisFilter_GSMAMR_16s(a, src, dst, len, hist) ? zppStsOverflowWarn : zppStsOk;
}

namespace {

// Step by step, as the standard does it
bool filterSaturating(const Zpp16s* a, const Zpp16s* src, Zpp16s* dst, int len, const Zpp16s* hist) {
  Zpp16s past[kLpcOrder + kSubframe];
  std::memcpy(past, hist, kLpcOrder * sizeof *hist);
  bool overflow = false;
  const auto saturated = [&](Zpp64s exact) {
    const Zpp32s value = sat32(exact);
    overflow |= value != exact;
    return value;
  };
  for (int n = 0; n < len; ++n) {
    Zpp16s* const y = past + kLpcOrder + n;
    Zpp32s sum = saturated(Zpp64s{2} * src[n] * a[0]);
    for (int i = 1; i <= kLpcOrder; ++i) sum = saturated(sum - Zpp64s{saturated(Zpp64s{2} * a[i] * y[-i])});
    sum = saturated(Zpp64s{sum} * 8);
    *y = high16(saturated(Zpp64s{sum} + 0x8000));
  }
  std::memcpy(dst, past + kLpcOrder, static_cast<unsigned>(len) * sizeof *dst);
  return overflow;
}

// At most a subframe. Where no sum of its terms can saturate, the filter that does not look gives the same; this is told from
// its outputs: as long as they have been right, so is the bound on the next one's sum. -32768 is left to the steps, for it may
// come of a sum that saturated.
bool filterBlock(const Zpp16s* a, const Zpp16s* src, Zpp16s* dst, int len, const Zpp16s* hist) {
  Zpp16s outputs[kLpcOrder + kSubframe], *const result = outputs + kLpcOrder;  // with the past ones
  std::memcpy(outputs, hist, kLpcOrder * sizeof *hist);
  if (ownSynthesisFilter_NR_16s(a, src, result, len, 12, outputs)) return filterSaturating(a, src, dst, len, hist);
  const Zpp64s largest = ownMaxAbs_16s(outputs, kLpcOrder + len);
  Zpp64s feedback = 0;
  for (int i = 1; i <= kLpcOrder; ++i) feedback += a[i] < 0 ? -a[i] : a[i];
  const Zpp64s input = Zpp64s{a[0] < 0 ? -a[0] : a[0]} * (ownMaxAbs_16s(src, len) + 1);
  if (largest == kMax16 || input + feedback * (largest + 1) >= 1 << 30) return filterSaturating(a, src, dst, len, hist);
  std::memcpy(dst, result, static_cast<unsigned>(len) * sizeof *dst);
  return false;
}

}  // namespace

bool ownSynthesisFilter_GSMAMR_16s(const Zpp16s* a, const Zpp16s* src, Zpp16s* dst, int len, const Zpp16s* hist) {
  bool overflow = false;
  Zpp16s past[kLpcOrder];
  std::memcpy(past, hist, sizeof past);
  for (int n = 0; n < len; n += kSubframe) {
    const int count = std::min(len - n, kSubframe);
    overflow |= filterBlock(a, src + n, dst + n, count, past);
    if (n + kSubframe < len) std::memcpy(past, dst + n + kSubframe - kLpcOrder, sizeof past);
  }
  return overflow;
}
