// The inner loops of the Levinson-Durbin recursion: portable kernels.
#include "core/fixed_point.h"
#include "g729/lsp/kernels.h"

using namespace zpp;

Zpp32s ownLevinsonSum_G729_PX(const Dpf* r, const Dpf* coef, int order) {
  Zpp32s sum = 0;
  for (int j = 1; j < order; ++j) sum = addSat32(sum, mulDpf(r[j], coef[order - j]));
  return sum;
}

// Coefficients j and m = order - j are updated together, both from their old values.
void ownLevinsonUpdate_G729_PX(Dpf* coef, int order, Dpf reflection) {
  for (int j = 1, m = order - 1; j <= m; ++j, --m) {
    const Dpf oldJ = coef[j], oldM = coef[m];
    coef[j] = toDpf(addSat32(mulDpf(reflection, oldM), fromDpf(oldJ)));
    coef[m] = toDpf(addSat32(mulDpf(reflection, oldJ), fromDpf(oldM)));
  }
}
