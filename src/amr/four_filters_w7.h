// Four recursions 1/A(z) of order 10 side by side, one a lane: SSE2. Include it from *_w7.cpp files only.
//
// The path from one output to the next is one pmaddwd, one subtraction and one shift; all older outputs arrive in pairs. Sums
// are modulo 2^32 and nothing is clamped: where an output leaves 16 bits, that is told and all of them are to be computed anew.
#pragma once

#include "core/simd_w7.h"
#include "lpc/kernels.h"

namespace zpp::amr {

// The coefficients of the four lanes, Q12
struct FourFactors {
  static constexpr int kPairs = kLpcOrder / 2, kScale = 12, kRounding = 1 << (kScale - 1);

  V input, latest, pairs[kPairs];  // of the input and 1; of the latest output; of outputs 2 k + 3 (low) and 2 k + 2 steps back

  FourFactors(const Zpp16s* a0, const Zpp16s* a1, const Zpp16s* a2, const Zpp16s* a3) {
    const V highHalves = _mm_set1_epi32(static_cast<int>(0xffff0000));
    V ends[4];  // coefficients 0 (low) and 1; 9 and 10
    transpose4(swappedPairs(load(a0 + 2)), swappedPairs(load(a1 + 2)), swappedPairs(load(a2 + 2)), swappedPairs(load(a3 + 2)),
               pairs);
    transpose4(endsOf(a0), endsOf(a1), endsOf(a2), endsOf(a3), ends);
    input = _mm_or_si128(_mm_andnot_si128(highHalves, ends[0]), _mm_set1_epi32(kRounding << 16));
    latest = _mm_srli_epi32(ends[0], 16);
    pairs[4] = _mm_and_si128(ends[2], highHalves);
  }

 private:
  static V endsOf(const Zpp16s* a) { return _mm_unpacklo_epi64(load4(a), _mm_srli_si128(load4(a + kLpcOrder - 3), 4)); }
  // The 32-bit lanes of four rows as four columns
  static void transpose4(V row0, V row1, V row2, V row3, V* columns) {
    const V low01 = _mm_unpacklo_epi32(row0, row1), high01 = _mm_unpackhi_epi32(row0, row1),
            low23 = _mm_unpacklo_epi32(row2, row3), high23 = _mm_unpackhi_epi32(row2, row3);
    columns[0] = _mm_unpacklo_epi64(low01, low23);
    columns[1] = _mm_unpackhi_epi64(low01, low23);
    columns[2] = _mm_unpacklo_epi64(high01, high23);
    columns[3] = _mm_unpackhi_epi64(high01, high23);
  }
};

template <int steps>
class FourFilters {
 public:
  static constexpr int kBlock = 8;

  alignas(16) Zpp16s input[4][steps] = {};  // a row a lane

  // Past outputs, the oldest first; null for zeros
  void start(const Zpp16s* past0, const Zpp16s* past1, const Zpp16s* past2, const Zpp16s* past3) {
    const Zpp16s* const lanes[4] = {past0, past1, past2, past3};
    alignas(16) Zpp32s pair[kLpcOrder][4] = {}, last[4] = {};
    for (int lane = 0; lane < 4; ++lane) {
      const Zpp16s* const p = lanes[lane];
      if (p == nullptr) continue;
      for (int i = 0; i < kLpcOrder; ++i) pair[i][lane] = p[i] * 65536 | (i > 0 ? p[i - 1] & 0xffff : 0);
      last[lane] = p[kLpcOrder - 1];
    }
    for (int i = 0; i < kLpcOrder; ++i) past_[i] = load(pair[i]);
    latest_ = load(last);
    beyond_ = _mm_setzero_si128();
  }

  // Eight steps from n on, and the outputs of each lane in a row
  void run(int n, const FourFactors& factors, V (&output)[4]) {
    const V low01 = _mm_unpacklo_epi16(load(input[0] + n), load(input[1] + n)),
            high01 = _mm_unpackhi_epi16(load(input[0] + n), load(input[1] + n)),
            low23 = _mm_unpacklo_epi16(load(input[2] + n), load(input[3] + n)),
            high23 = _mm_unpackhi_epi16(load(input[2] + n), load(input[3] + n));
    const V inputs[4] = {_mm_unpacklo_epi32(low01, low23), _mm_unpackhi_epi32(low01, low23), _mm_unpacklo_epi32(high01, high23),
                         _mm_unpackhi_epi32(high01, high23)};  // of two steps
    const V one = _mm_set1_epi16(1), lowHalves = _mm_set1_epi32(0xffff), bias = _mm_set1_epi32(0x8000);
    V* const now = past_ + kLpcOrder + n;
    V latest = latest_, beyond = beyond_;
    unrolled<kBlock>([&](int i) __attribute__((always_inline)) {
      const V x = i % 2 == 0 ? _mm_unpacklo_epi16(inputs[i / 2], one) : _mm_unpackhi_epi16(inputs[i / 2], one);
      V sum = _mm_madd_epi16(x, factors.input);
      unrolled<FourFactors::kPairs>([&](int k) __attribute__((always_inline)) {  // the oldest first
        const int pair = FourFactors::kPairs - 1 - k;
        sum = _mm_sub_epi32(sum, _mm_madd_epi16(now[i - 2 - 2 * pair], factors.pairs[pair]));
      });
      const V y = _mm_srai_epi32(_mm_sub_epi32(sum, _mm_madd_epi16(latest, factors.latest)), FourFactors::kScale);
      now[i] = _mm_or_si128(_mm_slli_epi32(y, 16), _mm_and_si128(latest, lowHalves));
      beyond = _mm_or_si128(beyond, _mm_add_epi32(y, bias));
      latest = y;
    });
    latest_ = latest;
    beyond_ = beyond;
    const V low = _mm_unpacklo_epi32(now[1], now[3]), high = _mm_unpackhi_epi32(now[1], now[3]);
    const V laterLow = _mm_unpacklo_epi32(now[5], now[7]), laterHigh = _mm_unpackhi_epi32(now[5], now[7]);
    output[0] = _mm_unpacklo_epi64(low, laterLow);
    output[1] = _mm_unpackhi_epi64(low, laterLow);
    output[2] = _mm_unpacklo_epi64(high, laterHigh);
    output[3] = _mm_unpackhi_epi64(high, laterHigh);
  }

  // Whether an output of any lane was to be clamped
  bool clamps() const { return _mm_movemask_epi8(_mm_cmpeq_epi32(_mm_srli_epi32(beyond_, 16), _mm_setzero_si128())) != 0xffff; }

 private:
  V past_[kLpcOrder + steps];  // at kLpcOrder + n: outputs n - 1 (low) and n
  V latest_, beyond_;          // beyond: from bit 16 on set where an output left 16 bits
};

}  // namespace zpp::amr
