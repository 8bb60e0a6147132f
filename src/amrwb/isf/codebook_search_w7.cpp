// Distances of codebook entries: SSE2 kernels, eight entries at a time.
#include "amrwb/isf/kernels.h"
#include "amrwb/least_error_w7.h"
#include "core/fixed_point.h"
#include "core/kernels.h"

using namespace zpp;
using namespace zpp::amrwb;

namespace {

// The entries are at most 2300: with a target up to 8600 the doubled squares of nine differences stay below 2^31.
bool isHarmless(const Zpp16s* target, int dimension) {
  for (int i = 0; i < dimension; ++i)
    if (target[i] > 8600 || target[i] < -8600) return false;
  return true;
}

struct Distances {
  V low, high;  // of entries 0..3 and 4..7
};

inline Distances distances(const Zpp16s* target, const Zpp16s* components, int dimension, int entries) {
  const auto difference = [&](int i) { return _mm_sub_epi16(_mm_set1_epi16(target[i]), load(components + entries * i)); };
  Distances d = {_mm_setzero_si128(), _mm_setzero_si128()};
  for (int i = 0; i < dimension; i += 2) {
    const V first = difference(i), second = i + 1 < dimension ? difference(i + 1) : _mm_setzero_si128();
    const V low = _mm_unpacklo_epi16(first, second), high = _mm_unpackhi_epi16(first, second);
    d.low = _mm_add_epi32(d.low, _mm_madd_epi16(low, low));
    d.high = _mm_add_epi32(d.high, _mm_madd_epi16(high, high));
  }
  return {_mm_slli_epi32(d.low, 1), _mm_slli_epi32(d.high, 1)};
}

template <int dimension>
NearestEntry nearest(const Zpp16s* target, const Zpp16s* components, int entries) {
  LeastError least;
  for (int entry = 0; entry < entries; entry += 8) {
    const Distances d = distances(target, components + entry, dimension, entries);
    least.take(d.low);
    least.take(d.high);
  }
  const Nearest found = least.found();
  return {found.index, found.error};
}

}  // namespace

void ownIsfDistances_AMRWB_16s_W7(const Zpp16s* target, const Zpp16s* components, int dimension, int entries,
                                  Zpp32s* distance) {
  if (!isHarmless(target, dimension)) return ownIsfDistances_AMRWB_16s_PX(target, components, dimension, entries, distance);
  for (int entry = 0; entry < entries; entry += 8) {
    const Distances d = distances(target, components + entry, dimension, entries);
    store(distance + entry, d.low);
    store(distance + entry + 4, d.high);
  }
}

NearestEntry ownNearestIsf_AMRWB_16s_W7(const Zpp16s* target, const Zpp16s* components, int dimension, int entries) {
  if (!isHarmless(target, dimension)) return ownNearestIsf_AMRWB_16s_PX(target, components, dimension, entries);
  switch (dimension) {  // the codebooks' dimensions
    case 3:
      return nearest<3>(target, components, entries);
    case 4:
      return nearest<4>(target, components, entries);
    case 5:
      return nearest<5>(target, components, entries);
    case 7:
      return nearest<7>(target, components, entries);
    default:
      return nearest<2>(target, components, entries);
  }
}
