// The weighting filter of the RPE: portable kernel.
#include <algorithm>

#include "core/fixed_point.h"
#include "gsmfr/kernels.h"
#include "gsmfr/tables.h"

using namespace zpp;
using namespace zpp::gsmfr;

// The magnitudes of the impulse response add up to 25598 in Q13: no sum leaves 31 bits.
void ownWeightingFilter_GSMFR_16s_PX(const Zpp16s* src, Zpp16s* dst) {
  constexpr int kDelay = 5;
  Zpp16s x[kGsmFrSubframe];  // src may be dst
  std::copy_n(src, kGsmFrSubframe, x);
  for (int n = 0; n < kGsmFrSubframe; ++n) {
    Zpp32s sum = 4096;
    const int last = std::min(n + kDelay, kGsmFrSubframe - 1);
    for (int m = std::max(n - kDelay, 0); m <= last; ++m) sum += weighting[n + kDelay - m] * x[m];
    dst[n] = sat16(sum >> 13);
  }
}
