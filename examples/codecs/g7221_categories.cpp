#include "g7221_categories.h"

#include <numeric>

namespace codecs::g7221 {
namespace {

int categoryAt(int offset, int power) { return std::clamp((offset - power) >> 1, 0, kNoiseCategory); }

Categories categoriesAt(int offset, const Powers& powers) {
  Categories categories;
  std::ranges::transform(powers, categories.begin(), [offset](int power) { return categoryAt(offset, power); });
  return categories;
}

int bitsOf(const Categories& categories) {
  return std::accumulate(categories.begin(), categories.end(), 0, [](int sum, int c) { return sum + expectedBits[c]; });
}

// The coarsest offset from which the expected bits come to within 32 of those available
int findOffset(const Powers& powers, int bits) {
  int offset = -32;
  for (int step = 32; step > 0; step /= 2)
    if (bitsOf(categoriesAt(offset + step, powers)) >= bits - 32) offset += step;
  return offset;
}

// In the envelope of a damaged frame no region may qualify for a change; the first then stands in.
constexpr int kNobody = 0;

}  // namespace

Categorisation categorise(const Powers& powers, int bits) {
  if (bits > 320) bits = 320 + ((bits - 320) * 5 >> 3);
  const int offset = findOffset(powers, bits);
  Categories rich = categoriesAt(offset, powers), poor = rich;
  int richBits = bitsOf(rich), poorBits = richBits;

  // Regions are raised at the rich end or lowered at the poor end, whichever keeps both around the number of bits. The list
  // of regions grows at both of its ends: from the richest categorisation on, they are lowered in its order.
  constexpr int kChanges = kCategorisations - 1;
  std::array<int, 2 * kChanges> list{};
  int begin = kChanges, end = kChanges;
  const auto surplus = [&](int r, const Categories& categories) { return offset - powers[r] - 2 * categories[r]; };
  while (end - begin < kChanges) {
    int chosen = kNobody;
    if (richBits + poorBits <= 2 * bits) {
      int least = 99;
      for (int r = 0; r < kRegions; ++r) {
        if (rich[r] == 0 || surplus(r, rich) >= least) continue;
        least = surplus(r, rich);
        chosen = r;
      }
      richBits -= expectedBits[rich[chosen]];
      lower(rich[chosen]);
      richBits += expectedBits[rich[chosen]];
      list[--begin] = chosen;
    } else {
      int most = -99;
      for (int r = kRegions - 1; r >= 0; --r) {
        if (poor[r] == kNoiseCategory || surplus(r, poor) <= most) continue;
        most = surplus(r, poor);
        chosen = r;
      }
      poorBits -= expectedBits[poor[chosen]];
      raise(poor[chosen]);
      poorBits += expectedBits[poor[chosen]];
      list[end++] = chosen;
    }
  }
  Categorisation result{rich, {}};
  std::copy_n(list.begin() + begin, kChanges, result.cheapened.begin());
  return result;
}

}  // namespace codecs::g7221
