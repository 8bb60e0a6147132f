// LP residual and synthesis filters: portable kernels.
#include <cstring>

#include "amrwb/filters/kernels.h"

using namespace zpp;
using amrwb::kOrder;

void ownResidualFilter_AMRWB_16s_PX(const Zpp16s* lpc, const Zpp16s* src, Zpp16s* dst, int len) {
  for (int n = 0; n < len; ++n) {
    Zpp32s sum = 0;
    for (int j = 0; j <= kOrder; ++j) sum = macDbl(sum, lpc[j], src[n - j]);
    dst[n] = roundHigh16(shlSat32(sum, 4));
  }
}

void ownSynthesisFilter_AMRWB_16s_I_PX(const Zpp16s* lpc, int order, Zpp16s inputFactor, int shift, Zpp16s* srcDst, int len,
                                       Zpp16s* mem) {
  constexpr int mostOrder = 20;
  Zpp16s start[2 * mostOrder];  // the past outputs and the first new ones
  std::memcpy(start, mem, static_cast<unsigned>(order) * sizeof(Zpp16s));
  // past[-1] is the latest output
  const auto filtered = [&](const Zpp16s* past, Zpp16s x) {
    Zpp32s sum = mulDbl(x, inputFactor);
    for (int j = 1; j <= order; ++j) sum = msuDbl(sum, lpc[j], past[-j]);
    return roundHigh16(shlSat32(sum, shift));
  };
  for (int n = 0; n < len && n < order; ++n) srcDst[n] = start[order + n] = filtered(start + order + n, srcDst[n]);
  for (int n = order; n < len; ++n) srcDst[n] = filtered(srcDst + n, srcDst[n]);
  std::memcpy(mem, len < order ? start + len : srcDst + len - order, static_cast<unsigned>(order) * sizeof(Zpp16s));
}

// The past outputs are split into 16 upper and 12 lower bits, each with its own saturating sum.
void ownSynthesisFilter_AMRWB_16s32s_PX(const Zpp16s* lpc, const Zpp16s* src, Zpp32s* dst, int len, int scale) {
  const int shift = norm16(lpc[0]) + 1;
  const Zpp16s inputFactor = shr16(lpc[0], 4 + scale);
  for (int n = 0; n < len; ++n) {
    Zpp32s sum = 0;
    for (int j = 1; j <= kOrder; ++j) sum = msuDbl(sum, static_cast<Zpp16s>(dst[n - j] & 4095), lpc[j]);
    sum = macDbl(sum >> 12, src[n], inputFactor);
    for (int j = 1; j <= kOrder; ++j) sum = msuDbl(sum, low16(dst[n - j] >> 12), lpc[j]);
    dst[n] = shlSat32(sum, shift) >> 4;
  }
}
