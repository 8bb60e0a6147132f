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

namespace {

// Off the way from one output to the next, as it hardly ever saturates
template <class Output>
Zpp16s limited(Output output) {
  if (output != static_cast<Zpp16s>(output)) [[unlikely]]
    return sat16(sat32(output));
  return static_cast<Zpp16s>(output);
}

// x / 2 + gamma * y in Q15, y the output before: of magnitude 2^29 and 2^30 at the most. Two factors of -32768 saturate.
constexpr Zpp32s deemphasised(Zpp16s x, Zpp16s gamma, Zpp16s y) { return (x * 16384 + gamma * y + 0x4000) >> 15; }

}  // namespace

void ownDeemphasize_AMRWB_16s_I(Zpp16s* srcDst, int len, Zpp16s gamma, Zpp16s* mem) {
  Zpp16s y = *mem;
  if (gamma == kMin16) [[unlikely]] {
    for (int n = 0; n < len; ++n) srcDst[n] = y = roundHigh16(macDbl(mulDbl(srcDst[n], 16384), y, gamma));
  } else {
    for (int n = 0; n < len; ++n) srcDst[n] = y = limited(deemphasised(srcDst[n], gamma, y));
  }
  *mem = y;
}

void ownDeemphasizeTwo_AMRWB_16s_I(Zpp16s* srcDst1, Zpp16s* srcDst2, int len, Zpp16s gamma, Zpp16s mem1, Zpp16s mem2) {
  for (int n = 0; n < len; ++n) {
    srcDst1[n] = mem1 = limited(deemphasised(srcDst1[n], gamma, mem1));
    srcDst2[n] = mem2 = limited(deemphasised(srcDst2[n], gamma, mem2));
  }
}

void ownDeemphasize_AMRWB_32s16s(const Zpp32s* src, Zpp16s* dst, int len, Zpp16s gamma, Zpp16s* mem) {
  const Zpp32s halfGamma = gamma >> 1;
  Zpp16s y = *mem;
  for (int n = 0; n < len; ++n) {
    const Zpp32s x = shlSat32(src[n], 7);  // the 28 bits of the synthesis
    // Saturated once, which no order of saturation before could change, since the sum has two terms.
    dst[n] = y = limited((Zpp64s{x} + 2 * y * halfGamma + 0x4000) >> 15);
  }
  *mem = y;
}

void ownHarmonicFilter_AMRWB_16s_I(Zpp16s gain, int lag, Zpp16s* srcDst, int len) {
  for (int n = lag; n < len; ++n) srcDst[n] = roundHigh16(macDbl(fromHigh16(srcDst[n]), srcDst[n - lag], gain));
}
