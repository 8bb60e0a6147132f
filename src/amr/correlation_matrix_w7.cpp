// Correlation matrix of the impulse response: SSE2 kernel.
//
// Eight diagonals side by side, their distances a multiple of the number of tracks apart: every row of the matrix then gains
// eight neighbours in track order, entries with earlier positions of one track. Those with later positions are their mirror
// image.
#include "amr/kernels.h"
#include "amr/simd_w7.h"
#include "core/fixed_point.h"
#include "core/kernels.h"

using namespace zpp;

namespace {

constexpr int kLanes = 8;

// Products of all slots' signs with a positive and with a negative one; there are as many slots in front as vectors reach back.
struct SignProducts {
  explicit SignProducts(const Zpp16s* sign) {
    for (int slot = 0; slot < kSubframe; slot += kLanes) {
      const V product = _mm_xor_si128(_mm_set1_epi16(32766), _mm_srai_epi16(load(sign + slot), 15));  // 32766, -32767
      store(withPositive + kLanes + slot, product);
      store(withNegative + kLanes + slot, _mm_xor_si128(product, _mm_set1_epi16(-1)));
    }
  }
  const Zpp16s* with(Zpp16s sign) const { return (sign < 0 ? withNegative : withPositive) + kLanes; }

  alignas(16) Zpp16s withPositive[kLanes + kSubframe] = {}, withNegative[kLanes + kSubframe] = {};
};

// The response in steps of one track, backward, in the low halves of 32-bit lanes; zero beyond its end
struct Phases {
  Phases(const Zpp16s* h, int tracks) : last((kSubframe - 1) / tracks) {
    for (int phase = 0; phase < tracks; ++phase)
      for (int i = kLanes - 1; i < last + kLanes; ++i) {
        const int n = (last + kLanes - 1 - i) * tracks + phase;
        if (n < kSubframe) backward[phase][i] = static_cast<Zpp16u>(h[n]);
      }
  }
  // h[n], n = (number + 7) * tracks + phase, in the first lane, down to number * tracks + phase in the last
  const Zpp32s* from(int phase, int number) const { return &backward[phase][last - number]; }

  int last;  // number of the last position of track 0
  alignas(16) Zpp32s backward[5][20] = {};
};

// The entries at the distances first, first + tracks ... first + 7 * tracks. Lanes without an earlier position write to slots
// in front of the track: the diagonal and entries with later positions, which are filled afterwards.
void fillDiagonals(const Zpp16s* h, const Zpp16s* sign, Zpp16s* matrix, const SignProducts& products, const Phases& phases,
                   const Grid& grid, int first, TrackPairs pairs) {
  V low = _mm_set1_epi32(0x4000), high = low;
  const auto value = [&] { return _mm_packs_epi32(_mm_srai_epi32(low, 15), _mm_srai_epi32(high, 15)); };
  int n = 0, phase = first, number = 0;
  const auto addProducts = [&] {
    const V factor = _mm_set1_epi32(static_cast<Zpp16u>(h[n]));
    const Zpp32s* const later = phases.from(phase, number);
    low = _mm_add_epi32(low, _mm_madd_epi16(factor, load(later)));
    high = _mm_add_epi32(high, _mm_madd_epi16(factor, load(later + 4)));
    ++n;
    if (++phase == grid.tracks) {
      phase = 0;
      ++number;
    }
  };
  for (int j = kSubframe - 1; j >= grid.tracks; --j) {
    addProducts();
    const int i = j - first, slotJ = grid.slotOf[j], slots = grid.slotOf[i] - (kLanes - 1);
    if (pairs >> (grid.track[i] * 5 + grid.track[j]) & 1)
      store(matrix + slotJ * kSubframe + slots, mulQ15(value(), load(products.with(sign[slotJ]) + slots)));
  }
  // Rows of the tracks' first positions: one earlier position at most
  for (int j = grid.tracks - 1; j >= first && first > 0; --j) {
    addProducts();
    const int slotI = grid.slotOf[j - first], slotJ = grid.slotOf[j];
    const auto nearest = static_cast<Zpp16s>(_mm_extract_epi16(value(), kLanes - 1));
    matrix[slotJ * kSubframe + slotI] = zpp::mulQ15(nearest, products.with(sign[slotJ])[slotI]);
  }
}

// What lies further apart than the diagonals of all tracks reach (10.2 kbit/s)
void fillFarthest(const Zpp16s* h, const Zpp16s* sign, Zpp16s* matrix, const SignProducts& products, const Grid& grid) {
  for (int distance = kLanes * grid.tracks; distance < kSubframe; ++distance) {
    Zpp32s sum = 0x4000;
    for (int n = 0, j = kSubframe - 1; j >= distance; ++n, --j) {
      sum += h[n] * h[n + distance];
      const int slotI = grid.slotOf[j - distance], slotJ = grid.slotOf[j];
      matrix[slotJ * kSubframe + slotI] = zpp::mulQ15(sat16(sum >> 15), products.with(sign[slotJ])[slotI]);
    }
  }
}

void fillDiagonal(const Zpp16s* h, Zpp16s* matrix, const Grid& grid) {
  Zpp32s sum = 0x4000;
  for (int n = 0; n < kSubframe; ++n) {
    sum += h[n] * h[n];
    matrix[grid.slotOf[kSubframe - 1 - n] * (kSubframe + 1)] = sat16(sum >> 15);
  }
}

// Completes the two blocks of five-track order whose entries with earlier positions stand in `rows` up to lane `row` (track1's
// positions against those of the earlier track2) and in `columns` below lane `row`.
void mirrorBlocks(Zpp16s* matrix, int track1, int track2) {
  alignas(16) static constexpr Zpp16s kFrom[2 * kLanes] = {-1, -1, -1, -1, -1, -1, -1, -1, 0, 0, 0, 0, 0, 0, 0, 0};
  Zpp16s* const lower = matrix + track1 * kLanes * kSubframe + track2 * kLanes;
  Zpp16s* const upper = matrix + track2 * kLanes * kSubframe + track1 * kLanes;
  V block[kLanes];
  for (int row = 0; row < kLanes; ++row) block[row] = load(upper + row * kSubframe);
  transpose(block);
  for (int row = 0; row < kLanes; ++row) {
    const V earlier = load(kFrom + kLanes - 1 - row);
    block[row] = select(earlier, load(lower + row * kSubframe), block[row]);
    store(lower + row * kSubframe, block[row]);
  }
  if (track1 == track2) return;
  transpose(block);
  for (int row = 0; row < kLanes; ++row) store(upper + row * kSubframe, block[row]);
}

}  // namespace

void ownToeplizMatrix_GSMAMR_16s_W7(const Zpp16s* impulse, const Zpp16s* sign, Zpp16s* matrix, int tracks, TrackPairs pairs) {
  const Grid& grid = gridOf(tracks);
  Zpp16s h[kSubframe];
  if (ownScaleResponse_GSMAMR_16s(impulse, h)) return ownToeplizMatrix_GSMAMR_16s_PX(impulse, sign, matrix, tracks, pairs);
  const SignProducts products(sign);
  const Phases phases(h, tracks);
  for (int first = 0; first < tracks; ++first) fillDiagonals(h, sign, matrix, products, phases, grid, first, pairs);
  fillFarthest(h, sign, matrix, products, grid);
  if (tracks == 5) {
    for (int track1 = 0; track1 < tracks; ++track1)
      for (int track2 = 0; track2 <= track1; ++track2)
        if (pairs >> (track1 * 5 + track2) & 1) mirrorBlocks(matrix, track1, track2);
  } else {
    for (int j = 1; j < kSubframe; ++j)
      for (int i = 0; i < j; ++i)
        matrix[grid.slotOf[i] * kSubframe + grid.slotOf[j]] = matrix[grid.slotOf[j] * kSubframe + grid.slotOf[i]];
  }
  fillDiagonal(h, matrix, grid);
}
