// Searches of the two LSF codebook stages (ITU-T G.729 clause 3.2.4): portable kernels.
//
// The standard doubles and saturates its sums of squares. Sums of non-negative terms saturate to the same value in any order,
// so that comparing exact sums gives its choice, as long as no sum from 2^30 on is taken for smaller than another.
#include "core/fixed_point.h"
#include "g729/lsp/kernels.h"
#include "g729/lsp/tables.h"

using namespace zpp;

namespace {

// Index of the first of `count` entries with the least distance; 0 when all of them saturate
template <class Distance>
int nearest(int count, Distance distance) {
  int found = 0;
  auto least = decltype(distance(0)){1} << 30;
  for (int entry = 0; entry < count; ++entry) {
    const auto d = distance(entry);
    if (d >= least) continue;
    least = d;
    found = entry;
  }
  return found;
}

}  // namespace

int ownLspPreSelect_PX(const Zpp16s* target) {
  // Ten squares of differences within +-20724 stay below 2^32.
  bool near = true;
  for (int j = 0; j < 10; ++j)
    near = near && target[j] >= LSPCode1_range.largest[j] - 20724 && target[j] <= LSPCode1_range.least[j] + 20724;
  if (near) [[likely]]
    return nearest(128, [target](int entry) {
      Zpp32u sum = 0;
      for (int j = 0; j < 10; ++j) {
        const Zpp32s error = target[j] - LSPCode1[entry][j];
        sum += static_cast<Zpp32u>(error * error);
      }
      return sum;
    });
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
  // Elements of LSPCode2 are within +-2400, and five products of at most 28400^2 stay below 2^32.
  bool small = true;
  for (int j = 0; j < 10; ++j) small = small && residual[j] >= -26000 && residual[j] <= 26000;
  if (small) [[likely]] {
    for (int half = 0; half < 2; ++half)
      index[half] = static_cast<Zpp16s>(nearest(32, [=](int entry) {
        Zpp32u sum = 0;
        for (int j = 5 * half; j < 5 * half + 5; ++j) {
          const Zpp32s error = residual[j] - LSPCode2[entry][j];
          sum += static_cast<Zpp32u>(((weight[j] * error) >> 15) * error);
        }
        return sum;
      }));
    return;
  }
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
