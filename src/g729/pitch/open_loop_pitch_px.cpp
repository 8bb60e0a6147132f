// Open-loop pitch analysis: portable kernel.
#include "g729/pitch/kernels.h"

void ownSplitPairs_16s_PX(const Zpp16s* src, Zpp16s* first, Zpp16s* second, int pairs) {
  for (int k = 0; k < pairs; ++k) {
    first[k] = src[2 * k];
    second[k] = src[2 * k + 1];
  }
}
