// LP synthesis filter as the decoder needs it: saturation at every step, and told.
#include <algorithm>
#include <cstdlib>
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

// At most a subframe of outputs; the size of a whole one is known to the compiler.
void copyOutputs(const Zpp16s* result, Zpp16s* dst, int len) {
  if (len == kSubframe)
    std::memcpy(dst, result, kSubframe * sizeof *dst);
  else
    std::memcpy(dst, result, static_cast<unsigned>(len) * sizeof *dst);
}

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

// Where the magnitudes of the coefficients add up to less than 8.0 no sum of their products with 16-bit values saturates, half
// of it being less than 2^30; all that may is the last shift, which clamps the output.
constexpr int kTame = 1 << 15;

// At most a subframe of a tame filter. An output of -32768 does not tell whether the shift saturated.
bool filterTame(const Zpp16s* a, const Zpp16s* src, Zpp16s* dst, int len, const Zpp16s* hist) {
  Zpp16s result[kSubframe];
  const bool overflow = ownSynthesisFilter_NR_16s(a, src, result, len, 12, hist);
  if (!overflow && ownMin_16s(result, len) == kMin16) return filterSaturating(a, src, dst, len, hist);
  copyOutputs(result, dst, len);
  return overflow;
}

// At most a subframe of a filter that is not tame. Where no sum of its terms can saturate, the filter that does not look gives
// the same; this is told from its outputs: as long as they have been right, so is the bound on the next one's sum. -32768 is
// left to the steps, for it may come of a sum that saturated.
bool filterBlock(const Zpp16s* a, int magnitudes, const Zpp16s* src, Zpp16s* dst, int len, const Zpp16s* hist) {
  Zpp16s outputs[kLpcOrder + kSubframe], *const result = outputs + kLpcOrder;  // with the past ones
  std::memcpy(outputs, hist, kLpcOrder * sizeof *hist);
  if (ownSynthesisFilter_NR_16s(a, src, result, len, 12, outputs)) return filterSaturating(a, src, dst, len, hist);
  const Zpp16s ofOutputs = ownMaxAbs_16s(outputs, kLpcOrder + len), ofInputs = ownMaxAbs_16s(src, len);
  const Zpp64s largest = std::max(ofOutputs, ofInputs) + 1;  // -32768 counts as 32767
  if (ofOutputs == kMax16 || magnitudes * largest >= 1 << 30) return filterSaturating(a, src, dst, len, hist);
  copyOutputs(result, dst, len);
  return false;
}

}  // namespace

bool ownSynthesisFilter_GSMAMR_16s(const Zpp16s* a, const Zpp16s* src, Zpp16s* dst, int len, const Zpp16s* hist) {
  bool overflow = false;
  Zpp16s past[kLpcOrder];
  std::memcpy(past, hist, sizeof past);
  int magnitudes = 0;
  for (int i = 0; i <= kLpcOrder; ++i) magnitudes += std::abs(a[i]);
  for (int n = 0; n < len; n += kSubframe) {
    const int count = std::min(len - n, kSubframe);
    overflow |= magnitudes < kTame ? filterTame(a, src + n, dst + n, count, past)
                                   : filterBlock(a, magnitudes, src + n, dst + n, count, past);
    if (n + kSubframe < len) std::memcpy(past, dst + n + kSubframe - kLpcOrder, sizeof past);
  }
  return overflow;
}
