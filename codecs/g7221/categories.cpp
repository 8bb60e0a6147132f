#include "codecs/g7221/categories.h"

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

// The powers of a damaged frame may leave no region that qualifies for a change; the first then stands in.
constexpr int kStandIn = 0;

}  // namespace

Categorisation categorise(const Powers& powers, int bits) {
  if (bits > 320) bits = 320 + ((bits - 320) * 5 >> 3);
  const int offset = findOffset(powers, bits);
  Categories rich = categoriesAt(offset, powers), poor = rich;
  int richBits = bitsOf(rich), poorBits = richBits;

  // One region after the other is refined in the rich categorisation or coarsened in the poor one, whichever keeps both around
  // the number of bits. The list grows at both ends, so that in its order the rich one turns into the poor one.
  constexpr int kChanges = kCategorisations - 1;
  std::array<int, 2 * kChanges> list{};
  int begin = kChanges, end = kChanges;
  const auto surplus = [&](int r, const Categories& categories) { return offset - powers[r] - 2 * categories[r]; };
  while (end - begin < kChanges) {
    int chosen = kStandIn;
    if (richBits + poorBits <= 2 * bits) {
      int least = 99;
      for (int r = 0; r < kRegions; ++r) {
        if (rich[r] == 0 || surplus(r, rich) >= least) continue;
        least = surplus(r, rich);
        chosen = r;
      }
      richBits -= expectedBits[rich[chosen]];
      refine(rich[chosen]);
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
      coarsen(poor[chosen]);
      poorBits += expectedBits[poor[chosen]];
      list[end++] = chosen;
    }
  }
  Categorisation result{rich, {}};
  std::copy_n(list.begin() + begin, kChanges, result.cheapened.begin());
  return result;
}

}  // namespace codecs::g7221
