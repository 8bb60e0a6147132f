// The least of many errors, for SSE2 searches. Include it from *_w7.cpp files only.
#pragma once

#include "core/fixed_point.h"
#include "core/simd_w7.h"

namespace zpp::amrwb {

struct Nearest {
  int index;
  Zpp32s error;
};

// The least of errors that come four at a time, in order, and the first entry that has it; entry 0 where all are the largest
// number
class LeastError {
 public:
  void take(V errors) {
    const V closer = _mm_cmpgt_epi32(error_, errors);
    error_ = select(closer, errors, error_);
    index_ = select(closer, number_, index_);
    number_ = _mm_add_epi32(number_, _mm_set1_epi32(4));
  }
  Nearest found() const {
    Zpp32s errors[4], indices[4];
    store(errors, error_);
    store(indices, index_);
    Nearest best = {indices[0], errors[0]};
    for (int k = 1; k < 4; ++k)
      if (errors[k] < best.error || (errors[k] == best.error && indices[k] < best.index)) best = {indices[k], errors[k]};
    return best;
  }

 private:
  V error_ = _mm_set1_epi32(kMax32), index_ = _mm_setzero_si128(), number_ = _mm_setr_epi32(0, 1, 2, 3);
};

}  // namespace zpp::amrwb
