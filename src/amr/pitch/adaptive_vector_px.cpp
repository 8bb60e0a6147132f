// Long-term prediction: interpolation of the past excitation (3GPP TS 26.090 clause 5.6.1), portable kernel.
#include "amr/pitch/kernels.h"
#include "amr/tables.h"
#include "core/kernels.h"
#include "lpc/dot_product.h"

using namespace zpp;

void ownPredLt_GSMAMR_16s_I_PX(Zpp16s* excitation, int lag, int sixths) {
  int phase = -sixths;
  const Zpp16s* past = excitation - lag;
  if (phase < 0) {
    phase += 6;
    --past;
  }
  // Weights of the samples from the oldest to the newest
  constexpr int kTaps = 10;
  Zpp16s weight[2 * kTaps];
  for (int i = 0; i < kTaps; ++i) {
    weight[kTaps - 1 - i] = inter6Excitation[6 * i + phase];
    weight[kTaps + i] = inter6Excitation[6 * i + 6 - phase];
  }
  // Samples within +-kHarmless cannot saturate a step: the weights of a phase sum up to less than 2.
  constexpr int kHarmless = 16384;
  bool loud = ownMaxAbs_16s(past + 1 - kTaps, 2 * kTaps - 1) > kHarmless;
  // Ascending: with lags below the subframe's length later samples continue earlier ones.
  for (int n = 0; n < kSubframe; ++n) {
    loud = loud || past[n + kTaps] > kHarmless || past[n + kTaps] < -kHarmless;
    if (!loud) {
      const Zpp16s* const from = past + n + 1 - kTaps;
      excitation[n] =
          roundedSum(exactDotProduct<16>(from, weight) + exactDotProduct<2 * kTaps - 16>(from + 16, weight + 16), 0);
      continue;
    }
    Zpp32s sum = 0;
    for (int i = 0; i < kTaps; ++i) {
      sum = macDbl(sum, past[n - i], weight[kTaps - 1 - i]);
      sum = macDbl(sum, past[n + 1 + i], weight[kTaps + i]);
    }
    excitation[n] = roundHigh16(sum);
  }
}
