// Immittance spectral pairs to LP filters, and their interpolation over the subframes (3GPP TS 26.190 clauses 5.2.6 and 5.2.7).
#include "amrwb/arithmetic.h"
#include "amrwb/lpc/kernels.h"
#include "amrwb/lpc/tables.h"
#include "core/checks.h"

using namespace zpp;
using namespace zpp::amrwb;

namespace {

constexpr int kMaxHalf = 10;

// The double-precision product as one of 64 bits, for c other than -32768: the two halves of x share its factor.
constexpr Zpp32s product(Zpp32s x, Zpp16s c) { return 2 * static_cast<Zpp32s>((Zpp64s{x >> 1} * c) >> 15); }

// f = the product over i of (1 - 2 isp[2i] z + z^2), its first degree + 1 coefficients, in Q23 (Get_isp_pol). The high band's
// filters need two bits of headroom while the product grows.
void multiplyOut(const Zpp16s* isp, Zpp32s* f, int degree, bool headroom) {
  const Zpp16s unit = headroom ? 64 : 256;
  f[0] = unit * 32768;
  f[1] = mulDbl(isp[0], static_cast<Zpp16s>(-unit));
  for (int i = 2; i <= degree; ++i) {
    const Zpp16s q = isp[2 * (i - 1)];
    f[i] = f[i - 2];
    for (int t = i; t >= 2; --t) {
      const Zpp32s half = q == kMin16 ? mulDpf16(toDpf(f[t - 1]), q) : product(f[t - 1], q);
      f[t] = addSat32(subSat32(f[t], addSat32(half, half)), f[t - 2]);
    }
    f[1] = msuDbl(f[1], q, unit);
  }
  if (headroom)
    for (int i = 0; i <= degree; ++i) f[i] = shlSat32(f[i], 2);
}

constexpr Zpp16s narrowed(Zpp32s x, int shift) { return low16(shrRound32(x, shift)); }

}  // namespace

ZppStatus zppsISPToLPC_AMRWB_16s(const Zpp16s* isp, Zpp16s* lpc, int order, int scaling) {
  if (anyNull(isp, lpc)) return zppStsNullPointer;
  if (order != 16 && order != 20) return zppStsBadSize;
  if (outside(scaling, 0, 1)) return zppStsOutOfRange;
  ownISPToLPC_AMRWB_16s(isp, lpc, order, scaling == 1);
  return zppStsOk;
}

ZppStatus zppsInterpolateISP_AMRWB_16s(const Zpp16s* prevIsp, const Zpp16s* isp, Zpp16s* lpc) {
  if (anyNull(prevIsp, isp, lpc)) return zppStsNullPointer;
  ownInterpolateISP_AMRWB_16s(prevIsp, isp, lpc);
  return zppStsOk;
}

void ownISPToLPC_AMRWB_16s(const Zpp16s* isp, Zpp16s* lpc, int order, bool scaling) {
  const int half = order / 2;
  const Zpp16s last = isp[order - 1];
  Zpp32s sum[kMaxHalf + 1], difference[kMaxHalf];
  multiplyOut(isp, sum, half, order == 20);
  multiplyOut(isp + 1, difference, half - 1, order == 20);
  for (int i = half - 1; i >= 2; --i) difference[i] = subSat32(difference[i], difference[i - 2]);
  for (int i = 0; i < half; ++i) {
    sum[i] = addSat32(sum[i], mulDpf16(toDpf(sum[i]), last));
    difference[i] = subSat32(difference[i], mulDpf16(toDpf(difference[i]), last));
  }

  Zpp32s front[kMaxHalf], back[kMaxHalf], magnitudes = 1;
  for (int i = 1; i < half; ++i) {
    front[i] = addSat32(sum[i], difference[i]);
    back[i] = subSat32(sum[i], difference[i]);
    magnitudes |= absSat32(front[i]) | absSat32(back[i]);
  }
  const int lowered = scaling && norm32(magnitudes) < 4 ? 4 - norm32(magnitudes) : 0;  // bits of the Q format given up
  lpc[0] = static_cast<Zpp16s>(4096 >> lowered);
  for (int i = 1; i < half; ++i) {
    lpc[i] = narrowed(front[i], 12 + lowered);
    lpc[order - i] = narrowed(back[i], 12 + lowered);
  }
  lpc[half] = narrowed(addSat32(sum[half], mulDpf16(toDpf(sum[half]), last)), 12 + lowered);
  lpc[order] = narrowed(last, 3 + lowered);
}

void ownInterpolateISP_AMRWB_16s(const Zpp16s* prevIsp, const Zpp16s* isp, Zpp16s* lpc) {
  for (int k = 0; k < 3; ++k) {
    const Zpp16s weight = ispInterpolation[k];
    Zpp16s between[kOrder];
    for (int i = 0; i < kOrder; ++i)
      between[i] = roundHigh16(macDbl(mulDbl(prevIsp[i], low16(32768 - weight)), isp[i], weight));
    ownISPToLPC_AMRWB_16s(between, lpc + (kOrder + 1) * k, kOrder, false);
  }
  ownISPToLPC_AMRWB_16s(isp, lpc + (kOrder + 1) * 3, kOrder, false);
}
