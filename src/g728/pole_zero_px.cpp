// Filters of order 10: portable kernel.
#include "g728/arithmetic.h"
#include "g728/kernels.h"

using namespace zpp;
using namespace zpp::g728;

void ownPastSums_G728_16s_PX(const Zpp16s* coefZero, const Zpp16s* coefPole, const Zpp16s* x, const Zpp16s* y, Zpp64s* sums) {
  for (int n = 0; n < kVector; ++n) {
    sums[n] = 0;
    for (int k = 0; k < 10; ++k) sums[n] += coefZero[k] * x[n - 1 - k];
    for (int k = n; k < 10; ++k) sums[n] -= coefPole[k] * y[n - 1 - k];
  }
}
