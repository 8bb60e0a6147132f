// Postfilter: portable kernels.
#include "core/fixed_point.h"
#include "g729/postfilter/kernels.h"
#include "g729/postfilter/tables.h"

using namespace zpp;

namespace {

constexpr int kSubframe = kPostfilterSubframe;

Zpp32s product(const Zpp16s* a, const Zpp16s* b) {
  Zpp32s sum = 0;
  for (int n = 0; n < kSubframe; ++n) sum += Zpp32s{a[n]} * b[n];
  return 2 * sum;
}

}  // namespace

int ownNormaliseResidual_G729_16s_PX(const Zpp16s* residual, Zpp16s* scaled) {
  constexpr int len = kPostfilterHistory + kSubframe;
  const Zpp16s* src = residual - kPostfilterHistory;
  int magnitudes = 0;
  for (int n = 0; n < len; ++n) magnitudes |= absSat16(src[n]);
  const int shift = 3 - norm16(static_cast<Zpp16s>(magnitudes));
  if (shift > 0)
    for (int n = 0; n < len; ++n) scaled[n] = static_cast<Zpp16s>(src[n] >> shift);
  else
    for (int n = 0; n < len; ++n) scaled[n] = static_cast<Zpp16s>(src[n] * (1 << -shift));
  return shift;
}

void ownMatchFractions_G729_16s_PX(const Zpp16s* c, int delay, DelayedMatch (*match)[2]) {
  const Zpp16s* x = c - delay + 1;
  for (int phase = 0; phase < 7; ++phase) {
    const Zpp16s* h = tab_hup_s[phase];
    Zpp16s y[kSubframe + 1];
    for (int n = 0; n <= kSubframe; ++n)
      y[n] = static_cast<Zpp16s>((h[0] * x[n] + h[1] * x[n - 1] + h[2] * x[n - 2] + h[3] * x[n - 3] + 16384) >> 15);
    match[phase][0] = {product(c, y), product(y, y)};
    match[phase][1] = {product(c, y + 1), product(y + 1, y + 1)};
  }
}

void ownInterpolate_G729_16s_PX(const Zpp16s* src, const Zpp16s* filter, int taps, Zpp16s* dst) {
  for (int n = 0; n < kSubframe; ++n) {
    Zpp32s sum = 16384;
    for (int i = 0; i < taps; ++i) sum += filter[i] * src[n - i];
    dst[n] = static_cast<Zpp16s>(sum >> 15);
  }
}

void ownHarmonicFilter_G729_16s_PX(const Zpp16s* x, const Zpp16s* y, Zpp16s gainX, Zpp16s gainY, Zpp16s* dst) {
  for (int n = 0; n < kSubframe; ++n) dst[n] = static_cast<Zpp16s>((x[n] * gainX + y[n] * gainY + 16384) >> 15);
}

void ownHarmonicFilter_G729A_16s_PX(const Zpp16s* x, const Zpp16s* y, Zpp16s gainX, Zpp16s gainY, Zpp16s* dst) {
  for (int n = 0; n < kSubframe; ++n) dst[n] = addSat16(x[n] * gainX >> 15, y[n] * gainY >> 15);
}

void ownTiltFilter_G729_16s_PX(Zpp16s* srcDst, Zpp16s previous, Zpp16s factor, Zpp16s gain, int shift) {
  Zpp32s past = previous;
  for (int n = 0; n < kSubframe; ++n) {
    const Zpp32s x = srcDst[n];
    const Zpp16s filtered = wrap16((x * 16384 + factor * past + 8192) >> 14);
    srcDst[n] = sat16((filtered * gain + (1 << (shift - 1))) >> shift);
    past = x;
  }
}

void ownPreemphasize_G729A_16s_PX(const Zpp16s* src, Zpp16s* dst, int len, Zpp16s factor, Zpp16s previous) {
  for (int n = 0; n < len; ++n) {
    const Zpp16s x = src[n];
    dst[n] = subSat16(x, mulQ15(factor, previous));
    previous = x;
  }
}

Zpp32s ownMagnitudeSum_16s_PX(const Zpp16s* src) {
  Zpp32s sum = 0;
  for (int n = 0; n < kSubframe; ++n) sum += src[n] < 0 ? -src[n] : src[n];
  return sum;
}

void ownApplyGain_G729A_16s_PX(const Zpp16s* gain, Zpp16s* srcDst) {
  for (int n = 0; n < kSubframe; ++n) srcDst[n] = sat16(srcDst[n] * gain[n] >> 12);
}

void ownConvolveCircular_G729D_16s_PX(const Zpp16s* code, const Zpp16s* response, Zpp16s* dst) {
  for (int n = 0; n < kSubframe; ++n) dst[n] = 0;
  for (int p = 0; p < kSubframe; ++p) {
    if (code[p] == 0) continue;
    for (int n = 0; n < p; ++n) dst[n] = addSat16(dst[n], mulQ15(code[p], response[kSubframe + n - p]));
    for (int n = p; n < kSubframe; ++n) dst[n] = addSat16(dst[n], mulQ15(code[p], response[n - p]));
  }
}
