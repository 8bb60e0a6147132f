// Correlation matrix of the impulse response: SSE2 kernel.
#include "amr/fixed_codebook/correlation_matrix_w7.h"

using namespace zpp;
using namespace zpp::amr;

void ownToeplizMatrix_GSMAMR_16s_W7(const Zpp16s* impulse, const Zpp16s* sign, Zpp16s* matrix, int tracks, TrackPairs pairs) {
  Zpp16s h[kSubframe];
  if (ownScaleResponse_GSMAMR_16s(impulse, h) || !areSigns(sign))
    return ownToeplizMatrix_GSMAMR_16s_PX(impulse, sign, matrix, tracks, pairs);
  if (tracks == 4) {
    Matrix<4> all(h, sign, matrix);
    unrolled<4>([&](auto distance) { all.fill<decltype(distance)::value>(); });
  } else {
    Matrix<5> blocks(h, sign, matrix);
    if (!wants(pairs, 0)) blocks.fillDiagonal(h);
    unrolled<5>([&](auto distance) {
      if (wants(pairs, distance)) blocks.fill<decltype(distance)::value>();
    });
  }
}
