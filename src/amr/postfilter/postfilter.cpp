// The postfilter: formants, tilt, and the level kept (3GPP TS 26.090 clause 6.2.1).
#include <cstring>

#include "amr/arithmetic.h"
#include "amr/frame.h"
#include "amr/postfilter/kernels.h"
#include "amr/postfilter/tables.h"
#include "amr/synthesis/kernels.h"
#include "core/checks.h"
#include "core/kernels.h"
#include "lpc/kernels.h"

using namespace zpp;
using namespace zpp::amr;

ZppStatus zppsPostFilter_GSMAMR_16s_I(const Zpp16s* a, Zpp16s* speech, Zpp16s* mem, ZppSpeechRate rate) {
  if (anyNull(a, speech, mem)) return zppStsNullPointer;
  if (!isSpeechRate(rate)) return zppStsOutOfRange;
  ownPostFilter_GSMAMR_16s_I(a, speech, mem, modeOf(rate));
  return zppStsOk;
}

namespace {

constexpr int kSet = kLpcOrder + 1;

void weigh(const Zpp16s* a, const Zpp16s* gamma, Zpp16s* weighted) {
  weighted[0] = a[0];
  ownMul_NR_16s_Sfs(a + 1, gamma, weighted + 1, kLpcOrder, 15);
}

// A(z) over x[-10..39] with saturation at every step, which only loud input needs
void residual(const Zpp16s* a, const Zpp16s* x, Zpp16s* dst) {
  Zpp64s weights = 0;
  for (int i = 0; i <= kLpcOrder; ++i) weights += a[i] < 0 ? -a[i] : a[i];
  if (weights * (ownMaxAbs_16s(x - kLpcOrder, kLpcOrder + kSubframe) + 1) < 1 << 30)
    return ownResidualFilter_G729_16s(a, x, dst, kSubframe);
  for (int n = 0; n < kSubframe; ++n) {
    Zpp32s sum = mulDbl(x[n], a[0]);
    for (int i = 1; i <= kLpcOrder; ++i) sum = macDbl(sum, a[i], x[n - i]);
    dst[n] = roundHigh16(shlSat32(sum, 3));
  }
}

// The tilt of a filter, from the first 22 samples of its impulse response: Q15
Zpp16s tilt(const Zpp16s* h) {
  constexpr int kResponse = 22;
  const Zpp32s whole = energy(h, kResponse);
  // No partial sum of neighbours' products exceeds the energy.
  const Zpp32s neighbours =
      whole < kMax32 ? static_cast<Zpp32s>(2 * ownDotProd_16s(h, h + 1, kResponse - 1)) : dotProduct(h, h + 1, kResponse - 1);
  const Zpp16s r0 = high16(whole), r1 = high16(neighbours);
  return r1 <= 0 ? Zpp16s{0} : divQ15(mulQ15(r1, 26214), r0);
}

}  // namespace

void ownPostFilter_GSMAMR_16s_I(const Zpp16s* a, Zpp16s* speech, Zpp16s* mem, Mode mode) {
  Zpp16s *pastInput = mem, *pastOutput = mem + kLpcOrder, &pastResidual = mem[2 * kLpcOrder], &gain = mem[2 * kLpcOrder + 1];
  const bool highRate = mode >= k102;
  Zpp16s input[kLpcOrder + kFrame];
  std::memcpy(input, pastInput, kLpcOrder * sizeof *input);
  std::memcpy(input + kLpcOrder, speech, kFrame * sizeof *input);
  std::memcpy(pastInput, input + kFrame, kLpcOrder * sizeof *input);

  FormantFilter filters[kSubframes];
  FormantResponse responses[kSubframes];
  for (int k = 0; k < kSubframes; ++k) {
    weigh(a + kSet * k, highRate ? gamma3MR122 : gamma3, filters[k].numerator);
    weigh(a + kSet * k, highRate ? gamma4MR122 : gamma4, filters[k].denominator);
  }
  ownFormantResponses_GSMAMR_16s(filters, responses);

  for (int k = 0; k < kSubframes; ++k) {
    const Zpp16s* in = input + kLpcOrder + kSubframe * k;
    Zpp16s withPast[1 + kSubframe], *const r = withPast + 1, *out = speech + kSubframe * k;
    residual(filters[k].numerator, in, r);

    r[-1] = pastResidual;
    pastResidual = r[kSubframe - 1];
    ownCompensateTilt_GSMAMR_16s_I(tilt(responses[k].at), r);

    ownSynthesisFilter_GSMAMR_16s(filters[k].denominator, r, out, kSubframe, pastOutput);
    std::memcpy(pastOutput, out + kSubframe - kLpcOrder, kLpcOrder * sizeof *out);

    const Zpp32s actual = subframeEnergy(out);
    if (actual == 0) {
      gain = 0;
      continue;
    }
    const Zpp16s step = mulQ15(levelGain(subframeEnergy(in), actual), 3276);
    // Neither can saturate: the step is 0 to 3276, a tenth of full scale.
    Zpp16s gains[kSubframe];
    Zpp32s running = gain;
    for (Zpp16s& g : gains) g = static_cast<Zpp16s>(running = ((running * 29491) >> 15) + step);
    gain = gains[kSubframe - 1];
    ownApplyGains_GSMAMR_16s_I(gains, out);
  }
}
