// The sum of 40 products, in double precision, as four partial sums in a fixed order.
#pragma once

#include "zppsc.h"

namespace zpp {

inline Zpp64f dotProduct40(const Zpp32f* a, const Zpp32f* b) {
  Zpp64f sum0 = 0, sum1 = 0, sum2 = 0, sum3 = 0;
  for (int n = 0; n < 40; n += 4) {
    sum0 += Zpp64f{a[n]} * Zpp64f{b[n]};
    sum1 += Zpp64f{a[n + 1]} * Zpp64f{b[n + 1]};
    sum2 += Zpp64f{a[n + 2]} * Zpp64f{b[n + 2]};
    sum3 += Zpp64f{a[n + 3]} * Zpp64f{b[n + 3]};
  }
  return (sum0 + sum1) + (sum2 + sum3);
}

}  // namespace zpp
