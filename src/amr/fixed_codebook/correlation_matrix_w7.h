// Correlation matrix of the impulse response, for SSE2 and wider. Include it from *_w7.cpp and *_v3.cpp files only.
//
// With g[j] = h[39 - j] an entry is the sum of g[j + t] g[i + t] over t: that of the next two positions plus one product. The
// entries of a row with all positions of one track stand side by side; from the last row to the first they become those of the
// row before and the track before, in which the positions move by one where that is the last track.
#pragma once

#include "amr/fixed_codebook/kernels.h"
#include "core/fixed_point.h"
#include "core/simd_w7.h"

namespace zpp::amr {

template <int Tracks>
class Matrix {
 public:
  Matrix(const Zpp16s* h, const Zpp16s* sign, Zpp16s* matrix) : matrix_(matrix) {
    for (int track = 0; track < Tracks; ++track)
      for (int number = 0; number < kPerTrack; ++number)
        response_[track][number] = static_cast<Zpp16u>(h[kSubframe - 1 - track - number * Tracks]);
    for (int n = 0; n < kSubframe; n += 8) {
      const V values = load(h + n), low = _mm_unpacklo_epi16(values, _mm_setzero_si128()),
              high = _mm_unpackhi_epi16(values, _mm_setzero_si128());
      unrolled<4>([&](auto lane) {
        constexpr int i = decltype(lane)::value;
        factor_[kSubframe - 1 - n - i] = _mm_shuffle_epi32(low, i * 0x55);
        factor_[kSubframe - 5 - n - i] = _mm_shuffle_epi32(high, i * 0x55);
      });
      const V negative = _mm_srai_epi16(load(sign + n), 15), one = _mm_set1_epi16(1);
      unrolled<2>([&](int row) {  // of a positive row, of a negative one
        const V differs = row == 0 ? negative : _mm_xor_si128(negative, _mm_set1_epi16(-1));
        store(signs_[row].unit + n, _mm_or_si128(differs, one));
        store(signs_[row].rest + n, _mm_sub_epi16(_mm_and_si128(differs, _mm_set1_epi16(6)), _mm_set1_epi16(4)));
      });
    }
    for (int slot = 0; slot < kSubframe; ++slot) ofRow_[slot] = &signs_[sign[slot] < 0];
  }

  // The blocks of each track with the one `Distance` further, modulo their number
  template <int Distance>
  void fill() {
    V sum[kQuads];
    for (V& s : sum) s = _mm_set1_epi32(0x4000);
    for (int number = kPerTrack - 1; number >= 0; --number) {
      const V offDiagonal = load(kAllButOne + kLanes - number % kLanes);
      unrolled<Tracks>([&](auto k) {
        constexpr int track = Tracks - 1 - decltype(k)::value, other = (track + Distance) % Tracks;
        if constexpr (other == Tracks - 1) {
          unrolled<kQuads - 1>(
              [&](int q) { sum[q] = _mm_or_si128(_mm_srli_si128(sum[q], 4), _mm_slli_si128(sum[q + 1], 12)); });
          sum[kQuads - 1] = _mm_or_si128(_mm_srli_si128(sum[kQuads - 1], 4), _mm_setr_epi32(0, 0, 0, 0x4000));
        }
        const V factor = factor_[number * Tracks + track];
        unrolled<kQuads>(
            [&](int q) { sum[q] = _mm_add_epi32(sum[q], _mm_madd_epi16(factor, load(response_[other] + 4 * q))); });
        const int row = track * kPerTrack + number;
        Zpp16s* const dst = matrix_ + row * kSubframe + other * kPerTrack;
        const Signs& signs = *ofRow_[row];
        // e times 32766 or -32767, >> 15: e - 4 e / 65536 or -e + 2 e / 65536; the diagonal has no signs.
        const auto entries = [&](V low, V high, int from) {
          const V e = _mm_packs_epi32(_mm_srai_epi32(low, 15), _mm_srai_epi32(high, 15));
          V rest = load(signs.rest + other * kPerTrack + from);
          if (Distance == 0 && from / kLanes == number / kLanes) rest = _mm_and_si128(rest, offDiagonal);
          return _mm_add_epi16(_mm_mullo_epi16(e, load(signs.unit + other * kPerTrack + from)), _mm_mulhi_epi16(e, rest));
        };
        store(dst, entries(sum[0], sum[1], 0));
        if constexpr (kQuads > 2) {  // two more
          const int last = _mm_cvtsi128_si32(entries(sum[kQuads - 1], sum[kQuads - 1], kLanes));
          std::memcpy(dst + kLanes, &last, sizeof last);
        }
      });
    }
  }

  // The diagonal alone: energies of the responses
  void fillDiagonal(const Zpp16s* h) {
    Zpp32s sum = 0x4000;
    for (int number = kPerTrack - 1; number >= 0; --number)
      for (int track = Tracks - 1; track >= 0; --track) {
        sum += *h * *h;
        ++h;
        matrix_[(track * kPerTrack + number) * (kSubframe + 1)] = static_cast<Zpp16s>(sum >> 15);
      }
  }

 protected:
  static constexpr int kLanes = 8, kPerTrack = kSubframe / Tracks, kQuads = (kPerTrack + 3) / 4;
  // Read from kLanes - i on, lane i is clear.
  alignas(16) static constexpr Zpp16s kAllButOne[2 * kLanes] = {-1, -1, -1, -1, -1, -1, -1, -1, 0, -1, -1, -1, -1, -1, -1, -1};

  struct Signs {
    alignas(16) Zpp16s unit[kSubframe + kLanes], rest[kSubframe + kLanes];  // 1 and -4, or -1 and 2
  };

  Zpp16s* matrix_;
  alignas(16) Zpp32s response_[Tracks][4 * kQuads] = {};  // g, a track a row, in the low halves of 32-bit lanes
  V factor_[kSubframe];                                   // g, each value in the low halves of all lanes
  Signs signs_[2];                                        // by sign of the row, slots of the other position
  const Signs* ofRow_[kSubframe];
};

// Whether all are 32767 or -32767, as in every search; others are factors like any.
inline bool areSigns(const Zpp16s* sign) {
  V all = _mm_set1_epi16(-1);
  const V unit = _mm_set1_epi16(kMax16);
  for (int n = 0; n < kSubframe; n += 8) {
    const V v = load(sign + n);
    all = _mm_and_si128(all, _mm_cmpeq_epi16(_mm_max_epi16(v, _mm_sub_epi16(_mm_setzero_si128(), v)), unit));
  }
  return _mm_movemask_epi8(all) == 0xffff;
}

// Whether blocks of tracks at this distance, modulo five, are wanted
constexpr bool wants(TrackPairs pairs, int distance) {
  TrackPairs atDistance = 0;
  for (int track = 0; track < 5; ++track) atDistance |= TrackPairs{1} << (track * 5 + (track + distance) % 5);
  return (pairs & atDistance) != 0;
}

}  // namespace zpp::amr
