// Hybrid window and autocorrelation of the backward LP analysis (ITU-T G.729 Annex E) in single precision (Annex C+). The sums
// are formed in double precision: a recursion of order 30 follows.
#include <cstring>

#include "core/checks.h"
#include "g729/lsp/hybrid_window.h"
#include "g729/lsp/kernels.h"
#include "g729/lsp/tables_32f.h"

using namespace zpp;

namespace {

constexpr Zpp64f kDecay = 0.31640625;  // of the recursive sums from frame to frame, 0.75^4

Zpp64f sumOfProducts(const Zpp64f* w, int lag, int from, int to) {
  Zpp64f sum = 0;
  for (int n = from; n < to; ++n) sum += w[n] * w[n - lag];
  return sum;
}

}  // namespace

void ownWinHybrid_G729E_32f(const Zpp32f* src, Zpp32f* dst, void* state) {
  Zpp64f w[kHybridLength];
  for (int n = 0; n < kHybridLength; ++n) w[n] = Zpp64f{src[n]} * hw_32f[kHybridLength - 1 - n];
  Zpp32f sums[kHybridLags];
  std::memcpy(sums, state, kHybridStateSize);
  for (int lag = 0; lag < kHybridLags; ++lag) {
    const Zpp64f recursive = kDecay * sums[lag] + sumOfProducts(w, lag, kRecursiveFrom, kNonRecursiveFrom);
    sums[lag] = static_cast<Zpp32f>(recursive);
    dst[lag] = static_cast<Zpp32f>(recursive + sumOfProducts(w, lag, kNonRecursiveFrom, kHybridLength));
  }
  std::memcpy(state, sums, kHybridStateSize);
}

ZppStatus zppsWinHybridInit_G729E_32f(void* state) {
  if (anyNull(state)) return zppStsNullPointer;
  std::memset(state, 0, kHybridStateSize);
  return zppStsOk;
}

ZppStatus zppsWinHybrid_G729E_32f(const Zpp32f* src, Zpp32f* dst, void* state) {
  if (anyNull(src, dst, state)) return zppStsNullPointer;
  ownWinHybrid_G729E_32f(src, dst, state);
  return zppStsOk;
}
