// Hybrid window and autocorrelation of the backward LP analysis (ITU-T G.729 Annex E), fixed point.
#include "g729/lsp/hybrid_window.h"

#include <cstring>

#include "core/checks.h"
#include "core/fixed_point.h"
#include "core/kernels.h"
#include "g729/lsp/kernels.h"
#include "g729/lsp/tables.h"
#include "lpc/kernels.h"

using namespace zpp;

namespace {

constexpr Zpp16s kDecay = 10368;  // of the recursive sums from frame to frame, 0.75^4, Q15

// The standard's doubled sum of w[n] * w[n - lag] over n = from..to-1, saturated at every step
Zpp32s saturatedSum(Zpp32s sum, const Zpp16s* w, int lag, int from, int to) {
  for (int n = from; n < to; ++n) sum = macDbl(sum, w[n], w[n - lag]);
  return sum;
}

}  // namespace

void ownWinHybrid_G729E_16s32s(const Zpp16s* src, Zpp32s* dst, void* state) {
  Zpp16s w[kHybridLength];
  constexpr int vectors = kHybridLength / 8 * 8;
  const auto windowed = [src](int n) { return static_cast<Zpp16s>((src[n] * hw[n]) >> 15); };
  for (int n = 0; n < vectors; ++n) w[n] = windowed(n);
  for (int n = vectors; n < kHybridLength; ++n) w[n] = windowed(n);

  // No sum of products exceeds the energy of all samples, nor does one of magnitudes: when twice the energy fits 32 bits, the
  // sums that start at 0 cannot saturate, and those that start at some value cannot while that much room is left.
  const Zpp64s energy = 2 * ownDotProd_16s(w, w, kHybridLength);
  const bool exact = energy <= kMax32;
  Zpp32s recursive[kHybridLags], newest[kHybridLags], sums[kHybridLags];
  if (exact) {
    ownAutoCorr_Inv_16s32s(w + kRecursiveFrom, kNonRecursiveFrom - kRecursiveFrom, recursive, kHybridLags);
    ownAutoCorr_Inv_16s32s(w + kNonRecursiveFrom, kHybridLength - kNonRecursiveFrom, newest, kHybridLags);
  }
  std::memcpy(sums, state, kHybridStateSize);
  for (int lag = 0; lag < kHybridLags; ++lag) {
    const Zpp32s leaving = exact ? recursive[lag] : saturatedSum(0, w, lag, kRecursiveFrom, kNonRecursiveFrom) >> 1;
    sums[lag] = addSat32(mulDpf16(toDpf(sums[lag]), kDecay), leaving);
    const Zpp32s start = shlSat32(sums[lag], 1);
    const bool room = absSat32(start) + energy <= kMax32;
    const Zpp32s whole = room ? start + 2 * newest[lag] : saturatedSum(start, w, lag, kNonRecursiveFrom, kHybridLength);
    dst[lag] = whole >> 1;
  }
  std::memcpy(state, sums, kHybridStateSize);
}

ZppStatus zppsWinHybridInit_G729E_16s(void* state) {
  if (anyNull(state)) return zppStsNullPointer;
  std::memset(state, 0, kHybridStateSize);
  return zppStsOk;
}

ZppStatus zppsWinHybrid_G729E_16s32s(const Zpp16s* src, Zpp32s* dst, void* state) {
  if (anyNull(src, dst, state)) return zppStsNullPointer;
  ownWinHybrid_G729E_16s32s(src, dst, state);
  return zppStsOk;
}
