// Long-term prediction: interpolation of the past excitation (3GPP TS 26.090 clause 5.6.1), portable kernel.
#include "amr/pitch/kernels.h"
#include "amr/tables.h"
#include "core/fixed_point.h"

using namespace zpp;

void ownPredLt_GSMAMR_16s_I_PX(Zpp16s* excitation, int lag, int sixths) {
  int phase = -sixths;
  const Zpp16s* past = excitation - lag;
  if (phase < 0) {
    phase += 6;
    --past;
  }
  // Ascending: with lags below the subframe's length later samples continue earlier ones.
  for (int n = 0; n < kSubframe; ++n) {
    Zpp32s sum = 0;
    for (int i = 0; i < 10; ++i) {
      sum = macDbl(sum, past[n - i], inter6Excitation[6 * i + phase]);
      sum = macDbl(sum, past[n + 1 + i], inter6Excitation[6 * i + 6 - phase]);
    }
    excitation[n] = roundHigh16(sum);
  }
}
