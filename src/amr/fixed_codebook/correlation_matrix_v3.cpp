// Correlation matrix of the impulse response: AVX2 kernel, the blocks of two distances side by side.
#include "amr/fixed_codebook/correlation_matrix_w7.h"
#include "core/simd_v3.h"

using namespace zpp;
using namespace zpp::amr;

namespace {

class FiveTracks : public Matrix<5> {
 public:
  using Matrix::Matrix;

  // The blocks of each track with those `First` and `Second` further, neither of them 0: one in each half of the registers
  template <int First, int Second>
  void fillTwo() {
    constexpr int tracks = 5;
    const auto two = [](const auto* first, const auto* second) { return joined(load(first), load(second)); };
    W samples[tracks][kQuads];
    unrolled<tracks>([&](int track) {
      const Zpp32s *const first = response_[(track + First) % tracks], *const second = response_[(track + Second) % tracks];
      unrolled<kQuads>([&](int q) { samples[track][q] = two(first + 4 * q, second + 4 * q); });
    });
    const W start = _mm256_set1_epi32(0x4000);
    W low = start, high = start;
    for (int number = kPerTrack - 1; number >= 0; --number)
      unrolled<tracks>([&](auto k) __attribute__((always_inline)) {
        constexpr int track = tracks - 1 - decltype(k)::value;
        constexpr int first = (track + First) % tracks, second = (track + Second) % tracks;
        if constexpr (first == tracks - 1 || second == tracks - 1) {
          constexpr int half = first == tracks - 1 ? 0x0f : 0xf0;
          low = _mm256_blend_epi32(low, _mm256_alignr_epi8(high, low, 4), half);
          high = _mm256_blend_epi32(high, _mm256_alignr_epi8(start, high, 4), half);
        }
        const W factor = _mm256_broadcastsi128_si256(factor_[number * tracks + track]);
        low = _mm256_add_epi32(low, _mm256_madd_epi16(factor, samples[track][0]));
        high = _mm256_add_epi32(high, _mm256_madd_epi16(factor, samples[track][1]));
        const int row = track * kPerTrack + number;
        const Signs& signs = *ofRow_[row];
        const W e = _mm256_packs_epi32(_mm256_srai_epi32(low, 15), _mm256_srai_epi32(high, 15));
        const W unit = two(signs.unit + first * kPerTrack, signs.unit + second * kPerTrack);
        const W rest = two(signs.rest + first * kPerTrack, signs.rest + second * kPerTrack);
        const W entries = _mm256_add_epi16(_mm256_mullo_epi16(e, unit), _mm256_mulhi_epi16(e, rest));
        Zpp16s* const dst = matrix_ + row * kSubframe;
        store(dst + first * kPerTrack, lowHalf(entries));
        store(dst + second * kPerTrack, highHalf(entries));
      });
  }
};

}  // namespace

void ownToeplizMatrix_GSMAMR_16s_V3(const Zpp16s* impulse, const Zpp16s* sign, Zpp16s* matrix, int tracks, TrackPairs pairs) {
  Zpp16s h[kSubframe];
  if (tracks != 5 || ownScaleResponse_GSMAMR_16s(impulse, h) || !areSigns(sign))
    return ownToeplizMatrix_GSMAMR_16s_W7(impulse, sign, matrix, tracks, pairs);
  FiveTracks blocks(h, sign, matrix);
  if (wants(pairs, 0))
    blocks.fill<0>();
  else
    blocks.fillDiagonal(h);
  if (wants(pairs, 1)) blocks.fillTwo<1, 4>();  // a pair of tracks lies at one distance in one order, at the other in the other
  if (wants(pairs, 2)) blocks.fillTwo<2, 3>();
}
