// LP filter to immittance spectral pairs: roots of the sum and difference polynomials (3GPP TS 26.190 clause 5.2.4).
#include <algorithm>

#include "amrwb/arithmetic.h"
#include "amrwb/lpc/kernels.h"
#include "amrwb/lpc/tables.h"
#include "core/checks.h"

using namespace zpp;
using namespace zpp::amrwb;

namespace {

constexpr int kHalf = kOrder / 2, kRoots = kOrder - 1, kIntervals = 100;

// A polynomial f[0..order] in Chebyshev form at x = cos w, Q15; the result has its scale less one bit (Chebps2). Step by step,
// as the standard does it
template <int order>
[[gnu::noinline]] Zpp16s saturatingChebyshev(Zpp16s x, const Zpp16s* f) {
  Dpf b2 = toDpf(8192 * f[0]);
  Dpf b1 = toDpf(macDbl(shlSat32(mulDpf16(b2, x), 1), f[1], 4096));
  for (int i = 2; i < order; ++i) {
    Zpp32s t = macDbl(mulDpf16(b1, x), b2.hi, -16384);
    t = shlSat32(macDbl(t, f[i], 2048), 1);
    t = msuDbl(t, b2.lo, 1);
    b2 = b1;
    b1 = toDpf(t);
  }
  Zpp32s t = macDbl(mulDpf16(b1, x), b2.hi, -32768);
  t = macDbl(msuDbl(t, b2.lo, 1), f[order], 2048);
  const Zpp16s value = high16(shlSat32(t, 6));
  return std::max<Zpp16s>(value, -32767);
}

// The same on halves of the standard's even numbers, exact where no step saturates: while these stay within 2^28, the sum of a
// step, at most twice one of them, half another and 2^27, stays below 2^30, and it is doubled at most.
template <int order>
inline Zpp16s chebyshev(Zpp16s x, const Zpp16s* f) {
  constexpr Zpp32u limit = Zpp32u{1} << 28;
  const auto times = [x](Zpp32s b) { return static_cast<Zpp32s>((Zpp64s{b} * x) >> 15); };
  Zpp32s b2 = 4096 * f[0], b1 = addWrap32(2 * times(b2), 4096 * f[1]);
  Zpp32u outside = (static_cast<Zpp32u>(b2) + limit) | (static_cast<Zpp32u>(b1) + limit);
  for (int i = 2; i < order; ++i) {
    const Zpp32s b = addWrap32(subWrap32(shlWrap32(times(b1), 1), b2), 4096 * f[i]);
    outside |= static_cast<Zpp32u>(b) + limit;
    b2 = b1;
    b1 = b;
  }
  if (outside >= 2 * limit) [[unlikely]]
    return saturatingChebyshev<order>(x, f);
  const Zpp16s value = sat16((times(b1) - b2 + 2048 * f[order]) >> 9);
  return std::max<Zpp16s>(value, -32767);
}

// The zero of the line through (xlow, ylow) and (xhigh, yhigh)
Zpp16s interpolatedRoot(Zpp16s xlow, Zpp16s ylow, Zpp16s xhigh, Zpp16s yhigh) {
  const Zpp16s x = subSat16(xhigh, xlow), y = subSat16(yhigh, ylow);
  if (y == 0) return xlow;
  const Zpp16s magnitude = absSat16(y);
  const int n = norm16(magnitude);
  const Zpp16s reciprocal = quotientQ15(16383, low16(magnitude << n));
  Zpp16s slope = low16(shlSat32(mulDbl(x, reciprocal), n - 20));  // x / y, Q11
  if (y < 0) slope = negSat16(slope);
  return subSat16(xlow, low16(mulDbl(ylow, slope) >> 11));
}

}  // namespace

ZppStatus zppsLPCToISP_AMRWB_16s(const Zpp16s* lpc, Zpp16s* isp, const Zpp16s* prevIsp) {
  if (anyNull(lpc, isp, prevIsp)) return zppStsNullPointer;
  ownLPCToISP_AMRWB_16s(lpc, isp, prevIsp);
  return zppStsOk;
}

void ownLPCToISP_AMRWB_16s(const Zpp16s* lpc, Zpp16s* isp, const Zpp16s* prevIsp) {
  Zpp16s sum[kHalf + 1], difference[kHalf];
  for (int i = 0; i < kHalf; ++i) {
    sum[i] = roundHigh16(sat32(Zpp64s{lpc[i] + lpc[kOrder - i]} * 32768));
    difference[i] = roundHigh16(sat32(Zpp64s{lpc[i] - lpc[kOrder - i]} * 32768));
  }
  sum[kHalf] = lpc[kHalf];
  for (int i = 2; i < kHalf; ++i) difference[i] = addSat16(difference[i], difference[i - 2]);  // its roots at +-1 divided out

  // The roots of the two alternate.
  Zpp16s roots[kRoots];
  int found = 0;
  const auto value = [&](Zpp16s x) { return found % 2 == 0 ? chebyshev<kHalf>(x, sum) : chebyshev<kHalf - 1>(x, difference); };
  Zpp16s xlow = ispGrid[0], ylow = value(xlow);
  for (int j = 1; j <= kIntervals && found < kRoots; ++j) {
    Zpp16s xhigh = xlow, yhigh = ylow;
    xlow = ispGrid[j];
    ylow = value(xlow);
    if (ylow * yhigh > 0) continue;
    for (int halving = 0; halving < 2; ++halving) {
      const Zpp16s xmid = addSat16(xlow >> 1, xhigh >> 1), ymid = value(xmid);
      if (ylow * ymid <= 0)
        xhigh = xmid, yhigh = ymid;
      else
        xlow = xmid, ylow = ymid;
    }
    xlow = interpolatedRoot(xlow, ylow, xhigh, yhigh);
    roots[found++] = xlow;
    ylow = value(xlow);
  }
  if (found < kRoots) {
    std::copy_n(prevIsp, kOrder, isp);
    return;
  }
  std::copy_n(roots, kRoots, isp);
  isp[kRoots] = shlSat16(lpc[kOrder], 3);
}
