// Distances of codebook entries: portable kernels.
#include "amrwb/isf/kernels.h"
#include "core/fixed_point.h"

using namespace zpp;

namespace {

// No term is negative: saturating the total is saturating every step.
Zpp32s distance(const Zpp16s* target, const Zpp16s* components, int dimension, int entries, int entry) {
  Zpp64s sum = 0;
  for (int i = 0; i < dimension; ++i) {
    const Zpp16s d = subSat16(target[i], components[entries * i + entry]);
    sum += Zpp32s{d} * d;
  }
  return sat32(2 * sum);
}

}  // namespace

void ownIsfDistances_AMRWB_16s_PX(const Zpp16s* target, const Zpp16s* components, int dimension, int entries,
                                  Zpp32s* distances) {
  for (int entry = 0; entry < entries; ++entry) distances[entry] = distance(target, components, dimension, entries, entry);
}

NearestEntry ownNearestIsf_AMRWB_16s_PX(const Zpp16s* target, const Zpp16s* components, int dimension, int entries) {
  NearestEntry nearest = {0, kMax32};
  for (int entry = 0; entry < entries; ++entry) {
    const Zpp32s d = distance(target, components, dimension, entries, entry);
    if (d < nearest.distance) nearest = {entry, d};
  }
  return nearest;
}
