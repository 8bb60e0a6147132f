// Quantisation of a region: portable kernel.
#include "g7221/quantisation.h"

#include "g7221/kernels.h"

void ownPreHuffman_16s_PX(const Zpp16s* src, Zpp16s* levels, Zpp32s category, Zpp32s powerIndex) {
  const Quantiser quantise(category, powerIndex);
  for (int n = 0; n < 20; ++n) levels[n] = quantise(src[n]);
}
