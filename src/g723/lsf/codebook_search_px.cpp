// Search of one band's LSF codebook: portable kernel.
#include "core/fixed_point.h"
#include "g723/lsf/kernels.h"

using namespace zpp;

// Maximises 4 sum x t - 2 sum e t: minus the weighted squared error, less its part without the entry e, where t is the weighted
// entry rounded to 16 bits. The standard saturates each step; with |t| <= |e| and these codebooks, whose rows have magnitudes
// of at most 14281 and squares of at most 68860525 in all, the sums stay below 2^31 for every 16-bit target x. Half of the
// metric decides as well.
int ownLspSvq_PX(const Zpp16s* target, const Zpp16s* weight, const Zpp16s (*codebook)[4]) {
  Zpp32s best = -1;
  int nearest = 0;
  for (int entry = 0; entry < 256; ++entry) {
    const Zpp16s* e = codebook[entry];
    Zpp32s metric = 0;
    for (int j = 0; j < 4; ++j) metric += ((weight[j] * e[j] + 16384) >> 15) * (2 * target[j] - e[j]);
    if (metric > best) {
      best = metric;
      nearest = entry;
    }
  }
  return nearest;
}
