// The sum of 40 products, in double precision, as four partial sums in a fixed order.
#pragma once

#include "zppsc.h"

namespace zpp {

inline Zpp64f dotProduct40(const Zpp32f* a, const Zpp32f* b) {
  Zpp64f sum[4] = {};
  for (int n = 0; n < 40; n += 4)
    for (int k = 0; k < 4; ++k) sum[k] += Zpp64f{a[n + k]} * Zpp64f{b[n + k]};
  return (sum[0] + sum[1]) + (sum[2] + sum[3]);
}

}  // namespace zpp
