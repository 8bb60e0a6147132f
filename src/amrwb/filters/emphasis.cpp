// Pre-emphasis and de-emphasis by 1 - gamma z^-1 and the filter that emphasises the pitch harmonics (3GPP TS 26.190 clauses
// 5.1, 5.8 and 6.1).
#include "amrwb/filters/emphasis.h"
#include "amrwb/filters/kernels.h"
#include "core/checks.h"
#include "lpc/kernels.h"

using namespace zpp;
using namespace zpp::amrwb;

ZppStatus zppsPreemphasisScale_AMRWB_16s(const Zpp16s* src, int len, Zpp16s gamma, Zpp16s prev, int* shift) {
  if (anyNull(src, shift)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  *shift = ownPreemphasisScale_AMRWB_16s(src, len, gamma, prev);
  return zppStsOk;
}

ZppStatus zppsPreemphasize_AMRWB_16s_I(Zpp16s* srcDst, int len, Zpp16s gamma, int shift, Zpp16s* mem) {
  if (anyNull(srcDst, mem)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  if (outside(shift, 0, 15)) return zppStsBadScale;
  ownPreemphasize_AMRWB_16s_I(srcDst, len, gamma, shift, mem);
  return zppStsOk;
}

ZppStatus zppsDeemphasize_AMRWB_16s_I(Zpp16s* srcDst, int len, Zpp16s gamma, Zpp16s* mem) {
  if (anyNull(srcDst, mem)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  ownDeemphasize_AMRWB_16s_I(srcDst, len, gamma, mem);
  return zppStsOk;
}

ZppStatus zppsDeemphasize_AMRWB_32s16s(const Zpp32s* src, Zpp16s* dst, int len, Zpp16s gamma, Zpp16s* mem) {
  if (anyNull(src, dst, mem)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  ownDeemphasize_AMRWB_32s16s(src, dst, len, gamma, mem);
  return zppStsOk;
}

ZppStatus zppsHarmonicFilter_AMRWB_16s_I(Zpp16s gain, int lag, Zpp16s* srcDst, int len) {
  if (anyNull(srcDst)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  if (lag < 1) return zppStsOutOfRange;
  ownHarmonicFilter_AMRWB_16s_I(gain, lag, srcDst, len);
  return zppStsOk;
}

int ownPreemphasisScale_AMRWB_16s(const Zpp16s* src, int len, Zpp16s gamma, Zpp16s prev) {
  Zpp32s largest = 0;
  for (int n = 0; n < len; ++n) {
    const Zpp32s magnitude = absSat32(preemphasised(src[n], prev, gamma));
    if (magnitude > largest) largest = magnitude;
    prev = src[n];
  }
  const Zpp16s upper = high16(largest);
  if (upper == 0) return 8;
  const int shift = norm16(upper) - 1;
  return shift < 0 ? 0 : shift > 8 ? 8 : shift;
}

namespace {

// The exact sum in, the output in 16 bits out: saturated once, which no order of saturation before could change, since the sum
// has two terms. The branch is hardly ever taken, and keeps saturation off the way from one output to the next.
Zpp16s limited(Zpp64s output) {
  if (output != static_cast<Zpp16s>(output)) [[unlikely]]
    return sat16(sat32(output));
  return static_cast<Zpp16s>(output);
}

}  // namespace

void ownDeemphasize_AMRWB_16s_I(Zpp16s* srcDst, int len, Zpp16s gamma, Zpp16s* mem) {
  Zpp16s y = *mem;
  for (int n = 0; n < len; ++n) srcDst[n] = y = limited((Zpp64s{srcDst[n]} * 16384 + Zpp32s{y} * gamma + 0x4000) >> 15);
  *mem = y;
}

void ownDeemphasize_AMRWB_32s16s(const Zpp32s* src, Zpp16s* dst, int len, Zpp16s gamma, Zpp16s* mem) {
  const Zpp32s halfGamma = gamma >> 1;
  Zpp16s y = *mem;
  for (int n = 0; n < len; ++n) {
    const Zpp32s x = shlSat32(src[n], 7);  // the 28 bits of the synthesis
    dst[n] = y = limited((Zpp64s{x} + 2 * y * halfGamma + 0x4000) >> 15);
  }
  *mem = y;
}

void ownHarmonicFilter_AMRWB_16s_I(Zpp16s gain, int lag, Zpp16s* srcDst, int len) {
  for (int n = lag; n < len; ++n) srcDst[n] = roundHigh16(macDbl(fromHigh16(srcDst[n]), srcDst[n - lag], gain));
}
