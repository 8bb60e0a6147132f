// Correlation matrix of the impulse response: SSE2 kernel.
//
// Eight diagonals side by side, their distances a multiple of the number of tracks apart: every row of the matrix then gains
// eight neighbours in track order, entries with earlier positions of one track. Those with later positions are their mirror
// image; signs come last.
#include "amr/fixed_codebook/kernels.h"
#include "core/fixed_point.h"
#include "core/kernels.h"
#include "core/simd_w7.h"

using namespace zpp;

namespace {

constexpr int kLanes = 8;

// The response in steps of one track, as the diagonals meet it
template <int Tracks>
struct Response {
  static constexpr int kPerTrack = kSubframe / Tracks;

  explicit Response(const Zpp16s* h) {
    unrolled<Tracks>([&](int phase) {
      for (int k = 0; k < kPerTrack; ++k)
        backward[phase][kPerTrack - 1 - k + kLanes - 1] = static_cast<Zpp16u>(h[phase + k * Tracks]);
    });
    for (int n = 0; n < kSubframe; n += kLanes) {
      const V values = load(h + n), low = _mm_unpacklo_epi16(values, _mm_setzero_si128()),
              high = _mm_unpackhi_epi16(values, _mm_setzero_si128());
      unrolled<4>([&](auto lane) {
        constexpr int i = decltype(lane)::value;
        factor[n + i] = _mm_shuffle_epi32(low, i * 0x55);
        factor[n + 4 + i] = _mm_shuffle_epi32(high, i * 0x55);
      });
    }
  }
  // The response at a position in the last of eight lanes, at later ones before it
  const Zpp32s* later(int position) const { return &backward[position % Tracks][kPerTrack - 1 - position / Tracks]; }

  // A phase a row, backward, in the low halves of 32-bit lanes, after zeros for what lies beyond the response
  alignas(16) Zpp32s backward[Tracks][kPerTrack + kLanes - 1] = {};
  V factor[kSubframe];  // each value in the low halves of all lanes
};

// The entries at the distances First, First + Tracks ... First + 7 * Tracks, without signs. Lanes without an earlier position
// write to slots in front of the track: the diagonal and entries with later positions, which are filled afterwards.
template <int Tracks, int First>
void fillDiagonals(const Response<Tracks>& response, Zpp16s* matrix) {
  constexpr int kPerTrack = kSubframe / Tracks, kNextRow = kSubframe + 1;
  V low = _mm_set1_epi32(0x4000), high = low;
  // Position j of the given track, `back` before its last one
  const auto entries = [&](int track, int back) {
    const int n = Tracks - 1 - track;
    const V factor = response.factor[n + Tracks * back];
    const Zpp32s* const later = response.later(n + First) - back;
    low = _mm_add_epi32(low, _mm_madd_epi16(factor, load(later)));
    high = _mm_add_epi32(high, _mm_madd_epi16(factor, load(later + 4)));
    return _mm_packs_epi32(_mm_srai_epi32(low, 15), _mm_srai_epi32(high, 15));
  };
  const auto entryOf = [&](int track, int back) {  // with the position at the distance First
    const int earlier = (track - First + Tracks) % Tracks, wraps = track < First ? 1 : 0;
    const int row = (track + 1) * kPerTrack - 1, column = (earlier + 1) * kPerTrack - 1 - wraps;
    return matrix + row * kSubframe + column - kNextRow * back;
  };
  for (int back = 0; back < kPerTrack - 1; ++back)
    unrolled<Tracks>([&](int k) { store(entryOf(Tracks - 1 - k, back) - (kLanes - 1), entries(Tracks - 1 - k, back)); });
  // Rows of the tracks' first positions: one earlier position at most
  unrolled<Tracks - First>([&](int k) {
    const int track = Tracks - 1 - k;
    *entryOf(track, kPerTrack - 1) = static_cast<Zpp16s>(_mm_extract_epi16(entries(track, kPerTrack - 1), kLanes - 1));
  });
}

// Of five tracks, the pairs at distances of First modulo 5
constexpr TrackPairs pairsAt(int first) {
  TrackPairs pairs = 0;
  for (int track = 0; track < 5; ++track) pairs |= TrackPairs{1} << (track * 5 + (track - first + 5) % 5);
  return pairs;
}

template <int Tracks>
void fillAllDiagonals(const Zpp16s* h, Zpp16s* matrix, TrackPairs pairs) {
  const Response<Tracks> response(h);
  const auto fill = [&](auto back) {
    constexpr int first = Tracks - 1 - decltype(back)::value;
    if (Tracks != 5 || first == 0 || (pairs & pairsAt(first)) != 0) fillDiagonals<Tracks, first>(response, matrix);
  };
  unrolled<Tracks>(fill);
}

// What the signs of positions multiply their entry by, from masks of negative signs: 32766 or -32767
V signProduct(V negative1, V negative2) { return _mm_xor_si128(_mm_set1_epi16(32766), _mm_xor_si128(negative1, negative2)); }

// Completes the two blocks of five-track order whose entries with earlier positions stand in `lower` up to lane `row` (track1's
// positions against those of the earlier track2) and in `upper` below lane `row`.
void completeBlocks(const Zpp16s* sign, Zpp16s* matrix, int track1, int track2) {
  alignas(16) static constexpr Zpp16s kFrom[2 * kLanes] = {-1, -1, -1, -1, -1, -1, -1, -1, 0, 0, 0, 0, 0, 0, 0, 0};
  Zpp16s* const lower = matrix + track1 * kLanes * kSubframe + track2 * kLanes;
  Zpp16s* const upper = matrix + track2 * kLanes * kSubframe + track1 * kLanes;
  V block[kLanes];
  unrolled<kLanes>([&](int row) { block[row] = load(upper + row * kSubframe); });
  transpose(block);
  const V negative1 = _mm_srai_epi16(load(sign + track1 * kLanes), 15),
          negative2 = _mm_srai_epi16(load(sign + track2 * kLanes), 15);
  const V twice[2] = {_mm_unpacklo_epi16(negative1, negative1), _mm_unpackhi_epi16(negative1, negative1)};
  unrolled<kLanes>([&](auto r) {
    constexpr int row = decltype(r)::value;
    const V entries = select(load(kFrom + kLanes - 1 - row), load(lower + row * kSubframe), block[row]);
    block[row] = mulWrapQ15(entries, signProduct(_mm_shuffle_epi32(twice[row / 4], row % 4 * 0x55), negative2));
    // The diagonal has no signs.
    if (track1 == track2) block[row] = _mm_insert_epi16(block[row], _mm_extract_epi16(entries, row), row);
    store(lower + row * kSubframe, block[row]);
  });
  if (track1 == track2) return;
  transpose(block);
  unrolled<kLanes>([&](int row) { store(upper + row * kSubframe, block[row]); });
}

// In four-track order: what lies further apart than the diagonals of all tracks reach, then signs and mirror images
void completeFourTracks(const Zpp16s* h, const Zpp16s* sign, Zpp16s* matrix) {
  const Grid& grid = kFourTracks;
  for (int distance = kLanes * grid.tracks; distance < kSubframe; ++distance) {
    Zpp32s sum = 0x4000;
    for (int n = 0, j = kSubframe - 1; j >= distance; ++n, --j) {
      sum += h[n] * h[n + distance];
      matrix[grid.slotOf[j] * kSubframe + grid.slotOf[j - distance]] = sat16(sum >> 15);
    }
  }
  for (int j = 1; j < kSubframe; ++j)
    for (int i = 0; i < j; ++i) {
      const int slotI = grid.slotOf[i], slotJ = grid.slotOf[j];
      Zpp16s& entry = matrix[slotJ * kSubframe + slotI];
      entry = static_cast<Zpp16s>((entry * (32766 ^ ((sign[slotI] ^ sign[slotJ]) >> 15))) >> 15);
      matrix[slotI * kSubframe + slotJ] = entry;
    }
}

}  // namespace

void ownToeplizMatrix_GSMAMR_16s_W7(const Zpp16s* impulse, const Zpp16s* sign, Zpp16s* matrix, int tracks, TrackPairs pairs) {
  Zpp16s h[kSubframe];
  if (ownScaleResponse_GSMAMR_16s(impulse, h)) return ownToeplizMatrix_GSMAMR_16s_PX(impulse, sign, matrix, tracks, pairs);
  if (tracks == 4) {
    fillAllDiagonals<4>(h, matrix, pairs);
    return completeFourTracks(h, sign, matrix);
  }
  fillAllDiagonals<5>(h, matrix, pairs);
  for (int track1 = 0; track1 < tracks; ++track1)
    for (int track2 = 0; track2 <= track1; ++track2)
      if (pairs >> (track1 * 5 + track2) & 1) completeBlocks(sign, matrix, track1, track2);
}
