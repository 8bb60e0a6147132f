// Searches of the two LSF codebook stages (ITU-T G.729 clause 3.2.4): portable kernels.
//
// The standard doubles and saturates its sums of squares. Sums of non-negative terms saturate to the same value in any order,
// so that comparing exact sums gives its choice, as long as no sum from 2^30 on is taken for smaller than another.
#include "core/fixed_point.h"
#include "g729/lsp/kernels.h"
#include "g729/lsp/tables.h"

using namespace zpp;

namespace {

constexpr Zpp64s kSaturated = Zpp64s{1} << 30;

// Index of the first of `count` entries with the least distance; 0 when all of them saturate
template <class Distance>
int nearest(int count, Distance distance) {
  int found = 0;
  Zpp64s least = kSaturated;
  for (int entry = 0; entry < count; ++entry) {
    const Zpp64s d = distance(entry);
    if (d >= least) continue;
    least = d;
    found = entry;
  }
  return found;
}

}  // namespace

int ownLspPreSelect_PX(const Zpp16s* target) {
  return nearest(128, [target](int entry) {
    Zpp64s sum = 0;
    for (int j = 0; j < 10; ++j) {
      const Zpp16s error = subSat16(target[j], LSPCode1[entry][j]);
      sum += error * error;
    }
    return sum;
  });
}

void ownLspSelect2_PX(const Zpp16s* residual, const Zpp16s* weight, Zpp16s* index) {
  for (int half = 0; half < 2; ++half)
    index[half] = static_cast<Zpp16s>(nearest(32, [=](int entry) {
      Zpp64s sum = 0;
      for (int j = 5 * half; j < 5 * half + 5; ++j) {
        const Zpp16s error = subSat16(residual[j], LSPCode2[entry][j]);
        sum += mulQ15(weight[j], error) * error;
      }
      return sum;
    }));
}
