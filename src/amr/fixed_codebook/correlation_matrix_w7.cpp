// Correlation matrix of the impulse response: SSE2 kernel.
//
// Eight diagonals side by side, their distances a multiple of the number of tracks apart: every row of the matrix then gains
// eight neighbours in track order, entries with earlier positions of one track. Those with later positions are their mirror
// image.
#include "amr/fixed_codebook/kernels.h"
#include "amr/fixed_codebook/simd_w7.h"
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

// What the diagonals have in common, by position: the response in steps of one track, and where the rows lie.
struct Rows {
  Rows(const Zpp16s* h, const Zpp16s* sign, Zpp16s* matrix, const SignProducts& products, const Grid& grid) {
    int phase = 0, at = grid.perTrack - 1;
    for (int n = 0; n < kSubframe; ++n) {
      row[n] = matrix + grid.slotOf[n] * kSubframe;
      productsOf[n] = products.with(sign[grid.slotOf[n]]);
      later[n] = &backward[phase][at];
      backward[phase][at + kLanes - 1] = static_cast<Zpp16u>(h[n]);
      if (++phase < grid.tracks) continue;
      phase = 0;
      --at;
    }
  }

  Zpp16s* row[kSubframe];
  const Zpp16s* productsOf[kSubframe];  // of the position's sign
  const Zpp32s* later[kSubframe];       // the response at the position in the last of eight lanes, at later ones before it
  // A phase a row, backward, in the low halves of 32-bit lanes, after zeros for what lies beyond the response
  alignas(16) Zpp32s backward[5][10 + kLanes - 1] = {};
};

// The entries at the distances first, first + tracks ... first + 7 * tracks. Lanes without an earlier position write to slots
// in front of the track: the diagonal and entries with later positions, which are filled afterwards.
void fillDiagonals(const Zpp16s* h, const Rows& rows, const Grid& grid, int first, TrackPairs pairs) {
  bool wanted[5];
  for (int track = 0; track < grid.tracks; ++track)
    wanted[track] = pairs >> (track * 5 + (track + grid.tracks - first) % grid.tracks) & 1;
  V low = _mm_set1_epi32(0x4000), high = low;
  const auto value = [&] { return _mm_packs_epi32(_mm_srai_epi32(low, 15), _mm_srai_epi32(high, 15)); };
  const auto nearest = [](V sums) { return static_cast<Zpp16s>(_mm_extract_epi16(sums, kLanes - 1)); };
  const auto addProducts = [&](int n) {
    const V factor = _mm_set1_epi32(static_cast<Zpp16u>(h[n]));
    const Zpp32s* const later = rows.later[n + first];
    low = _mm_add_epi32(low, _mm_madd_epi16(factor, load(later)));
    high = _mm_add_epi32(high, _mm_madd_epi16(factor, load(later + 4)));
  };
  int j = kSubframe - 1;
  for (; j >= grid.tracks; --j) {
    addProducts(kSubframe - 1 - j);
    const V sums = value();
    if (wanted[grid.track[j]]) {
      const int slots = grid.slotOf[j - first] - (kLanes - 1);
      store(rows.row[j] + slots, mulWrapQ15(sums, load(rows.productsOf[j] + slots)));
    }
    if (first == 0) rows.row[j][grid.slotOf[j]] = nearest(sums);
  }
  // Rows of the tracks' first positions: one earlier position at most
  for (; j >= first; --j) {
    addProducts(kSubframe - 1 - j);
    const int slot = grid.slotOf[j - first];
    rows.row[j][slot] = first == 0 ? nearest(value()) : zpp::mulQ15(nearest(value()), rows.productsOf[j][slot]);
  }
}

// What lies further apart than the diagonals of all tracks reach (10.2 kbit/s)
void fillFarthest(const Zpp16s* h, const Rows& rows, const Grid& grid) {
  for (int distance = kLanes * grid.tracks; distance < kSubframe; ++distance) {
    Zpp32s sum = 0x4000;
    for (int n = 0, j = kSubframe - 1; j >= distance; ++n, --j) {
      sum += h[n] * h[n + distance];
      const int slotI = grid.slotOf[j - distance];
      rows.row[j][slotI] = zpp::mulQ15(sat16(sum >> 15), rows.productsOf[j][slotI]);
    }
  }
}

// Completes the two blocks of five-track order whose entries with earlier positions stand in `rows` up to lane `row` (track1's
// positions against those of the earlier track2) and in `columns` below lane `row`.
void mirrorBlocks(Zpp16s* matrix, int track1, int track2) {
  alignas(16) static constexpr Zpp16s kFrom[2 * kLanes] = {-1, -1, -1, -1, -1, -1, -1, -1, 0, 0, 0, 0, 0, 0, 0, 0};
  Zpp16s* const lower = matrix + track1 * kLanes * kSubframe + track2 * kLanes;
  Zpp16s* const upper = matrix + track2 * kLanes * kSubframe + track1 * kLanes;
  V block[kLanes];
  unrolled<kLanes>([&](int row) { block[row] = load(upper + row * kSubframe); });
  transpose(block);
  unrolled<kLanes>([&](int row) {
    block[row] = select(load(kFrom + kLanes - 1 - row), load(lower + row * kSubframe), block[row]);
    store(lower + row * kSubframe, block[row]);
  });
  if (track1 == track2) return;
  transpose(block);
  unrolled<kLanes>([&](int row) { store(upper + row * kSubframe, block[row]); });
}

}  // namespace

void ownToeplizMatrix_GSMAMR_16s_W7(const Zpp16s* impulse, const Zpp16s* sign, Zpp16s* matrix, int tracks, TrackPairs pairs) {
  const Grid& grid = gridOf(tracks);
  Zpp16s h[kSubframe];
  if (ownScaleResponse_GSMAMR_16s(impulse, h)) return ownToeplizMatrix_GSMAMR_16s_PX(impulse, sign, matrix, tracks, pairs);
  const SignProducts products(sign);
  const Rows rows(h, sign, matrix, products, grid);
  for (int first = tracks - 1; first >= 0; --first) fillDiagonals(h, rows, grid, first, pairs);
  fillFarthest(h, rows, grid);
  if (tracks == 5) {
    for (int track1 = 0; track1 < tracks; ++track1)
      for (int track2 = 0; track2 <= track1; ++track2)
        if (pairs >> (track1 * 5 + track2) & 1) mirrorBlocks(matrix, track1, track2);
  } else {
    for (int j = 1; j < kSubframe; ++j)
      for (int i = 0; i < j; ++i)
        matrix[grid.slotOf[i] * kSubframe + grid.slotOf[j]] = matrix[grid.slotOf[j] * kSubframe + grid.slotOf[i]];
  }
}
