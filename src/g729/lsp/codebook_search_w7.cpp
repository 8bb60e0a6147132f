// Searches of the two LSF codebook stages (ITU-T G.729 clause 3.2.4): SSE2 kernels, four entries at a time.
#include "core/fixed_point.h"
#include "core/simd_w7.h"
#include "g729/lsp/kernels.h"
#include "g729/lsp/tables.h"

using namespace zpp;

namespace {

// Distances are unsigned 32-bit sums; an offset of -2^31 makes the signed comparison order them.
constexpr Zpp32s kOffset = kMin32;

// The least distance so far and its block, for each of four entries. Only what is below 2^30, where the standard's sums
// saturate, counts.
struct Nearest {
  V least = _mm_set1_epi32(kOffset + (1 << 30)), block = _mm_setzero_si128();

  void offer(V distance, int thisBlock) {
    const V smaller = _mm_cmpgt_epi32(least, distance);
    least = select(smaller, distance, least);
    block = select(smaller, _mm_set1_epi32(thisBlock), block);
  }
  // Among equals the first entry of the codebook wins.
  int entry() const {
    Zpp32s distances[4], blocks[4];
    store(distances, least);
    store(blocks, block);
    int found = 0;
    for (int lane = 1; lane < 4; ++lane)
      if (distances[lane] < distances[found] || (distances[lane] == distances[found] && blocks[lane] < blocks[found]))
        found = lane;
    return 4 * blocks[found] + found;
  }
};

// Whether an element of the ten is outside the bounds; the two loads overlap.
bool outsideBounds(const Zpp16s* src, V lowest, V lowestFrom2, V highest, V highestFrom2) {
  const V first = load(src), last = load(src + 2);
  const V below = _mm_or_si128(_mm_cmpgt_epi16(lowest, first), _mm_cmpgt_epi16(lowestFrom2, last));
  const V above = _mm_or_si128(_mm_cmpgt_epi16(first, highest), _mm_cmpgt_epi16(last, highestFrom2));
  return _mm_movemask_epi8(_mm_or_si128(below, above)) != 0;
}

// Elements at and at + 1 in all four places
V pairOf(const Zpp16s* src) {
  Zpp32s both;
  std::memcpy(&both, src, sizeof both);
  return _mm_set1_epi32(both);
}
// One element and a zero
V singleOf(const Zpp16s* src) { return _mm_set1_epi32(*src & 0xffff); }

}  // namespace

int ownLspPreSelect_W7(const Zpp16s* target) {
  // Ten squares of differences within +-20724 stay below 2^32.
  const V reach = _mm_set1_epi16(20724);
  const auto reachDown = [reach](const Zpp16s* largest) { return _mm_subs_epi16(load(largest), reach); };
  const auto reachUp = [reach](const Zpp16s* least) { return _mm_adds_epi16(load(least), reach); };
  const LspCode1Range& range = LSPCode1_range;
  if (outsideBounds(target, reachDown(range.largest), reachDown(range.largest + 2), reachUp(range.least),
                    reachUp(range.least + 2)))
    return ownLspPreSelect_PX(target);

  V t[5];
  for (int pair = 0; pair < 5; ++pair) t[pair] = pairOf(target + 2 * pair);
  const V offset = _mm_set1_epi32(kOffset);
  Nearest nearest;
  for (int block = 0; block < 32; ++block) {
    const auto term = [&](int pair) {
      const V error = _mm_sub_epi16(t[pair], load(LSPCode1_quads.at[block][pair]));
      return _mm_madd_epi16(error, error);
    };
    const V sum = _mm_add_epi32(_mm_add_epi32(term(0), term(1)), _mm_add_epi32(term(2), term(3)));
    nearest.offer(_mm_add_epi32(sum, _mm_add_epi32(term(4), offset)), block);
  }
  return nearest.entry();
}

void ownLspSelect2_W7(const Zpp16s* residual, const Zpp16s* weight, Zpp16s* index) {
  // Elements of LSPCode2 are within +-2400, and five products of at most 28400^2 stay below 2^32.
  const V bound = _mm_set1_epi16(26000), negative = _mm_set1_epi16(-26000);
  if (outsideBounds(residual, negative, negative, bound, bound)) return ownLspSelect2_PX(residual, weight, index);

  V t[6], w[6];
  for (int half = 0; half < 2; ++half) {
    for (int pair = 0; pair < 2; ++pair) {
      t[3 * half + pair] = pairOf(residual + 5 * half + 2 * pair);
      w[3 * half + pair] = pairOf(weight + 5 * half + 2 * pair);
    }
    t[3 * half + 2] = singleOf(residual + 5 * half + 4);
    w[3 * half + 2] = singleOf(weight + 5 * half + 4);
  }
  const V offset = _mm_set1_epi32(kOffset);
  Nearest lower, upper;
  for (int block = 0; block < 8; ++block) {
    const auto term = [&](int pair) {
      const V error = _mm_sub_epi16(t[pair], load(LSPCode2_quads.at[block][pair]));
      // (weight * error) >> 15, within 16 bits as the weight is not negative
      const V weighted =
          _mm_or_si128(_mm_slli_epi16(_mm_mulhi_epi16(error, w[pair]), 1), _mm_srli_epi16(_mm_mullo_epi16(error, w[pair]), 15));
      return _mm_madd_epi16(weighted, error);
    };
    lower.offer(_mm_add_epi32(_mm_add_epi32(term(0), term(1)), _mm_add_epi32(term(2), offset)), block);
    upper.offer(_mm_add_epi32(_mm_add_epi32(term(3), term(4)), _mm_add_epi32(term(5), offset)), block);
  }
  index[0] = static_cast<Zpp16s>(lower.entry());
  index[1] = static_cast<Zpp16s>(upper.entry());
}
