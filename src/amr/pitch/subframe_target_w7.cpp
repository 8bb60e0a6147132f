// Impulse response and target of a subframe: SSE2 kernel.
//
// Four recursions run side by side, one a lane: the response and the error through the synthesis filter, and both again through
// the weighting filter. The second two trail the first by two blocks, in which what they take in becomes ready; meanwhile they
// are handed their past outputs. The path from one output to the next is one pmaddwd, one subtraction and one shift; all older
// outputs arrive in pairs.
#include <cstdlib>

#include "amr/pitch/kernels.h"
#include "core/simd_w7.h"
#include "lpc/kernels.h"

using namespace zpp;

namespace {

constexpr int kBlock = 8, kTrail = 2 * kBlock, kSteps = kSubframe + kTrail;
constexpr int kPairs = kLpcOrder / 2;
constexpr int kScale = 12, kRounding = 1 << (kScale - 1);

// Factors of the four lanes: the same for the first two and for the last two
struct Factors {
  V input, latest, pairs[kPairs];  // of the input and 1; of the latest output; of outputs 2 k + 3 (low) and 2 k + 2 steps back

  Factors(const Zpp16s* first, const Zpp16s* last) {
    const auto ofLanes = [&](auto factor) { return _mm_unpacklo_epi64(factor(first), factor(last)); };
    input = ofLanes([](const Zpp16s* a) { return pairOf(a[0], kRounding); });
    latest = ofLanes([](const Zpp16s* a) { return pairOf(a[1], 0); });
    for (int k = 0; k < kPairs; ++k)
      pairs[k] = ofLanes([k](const Zpp16s* a) { return pairOf(k + 1 < kPairs ? a[2 * k + 3] : 0, a[2 * k + 2]); });
  }
};

// Inputs (a row a lane), outputs and what connects them
struct Lanes {
  alignas(16) Zpp16s input[4][kSteps] = {};
  V past[kLpcOrder + kSteps];  // at kLpcOrder + n: outputs n - 1 (low) and n
  V latest, beyond;            // beyond: from bit 16 on set where an output was to be clamped

  // Eight steps from n on, and the outputs of each lane in a row
  void run(int n, const Factors& factors, V (&output)[4]) {
    const V low01 = _mm_unpacklo_epi16(load(input[0] + n), load(input[1] + n)),
            high01 = _mm_unpackhi_epi16(load(input[0] + n), load(input[1] + n)),
            low23 = _mm_unpacklo_epi16(load(input[2] + n), load(input[3] + n)),
            high23 = _mm_unpackhi_epi16(load(input[2] + n), load(input[3] + n));
    const V inputs[4] = {_mm_unpacklo_epi32(low01, low23), _mm_unpackhi_epi32(low01, low23), _mm_unpacklo_epi32(high01, high23),
                         _mm_unpackhi_epi32(high01, high23)};  // of two steps
    const V one = _mm_set1_epi16(1), lowHalves = _mm_set1_epi32(0xffff), bias = _mm_set1_epi32(0x8000);
    V* const now = past + kLpcOrder + n;
    V last = latest, outside = beyond;
    unrolled<kBlock>([&](int i) __attribute__((always_inline)) {
      const V x = i % 2 == 0 ? _mm_unpacklo_epi16(inputs[i / 2], one) : _mm_unpackhi_epi16(inputs[i / 2], one);
      V sum = _mm_madd_epi16(x, factors.input);
      unrolled<kPairs>([&](int k) __attribute__((always_inline)) {  // the oldest first
        const int pair = kPairs - 1 - k;
        sum = _mm_sub_epi32(sum, _mm_madd_epi16(now[i - 2 - 2 * pair], factors.pairs[pair]));
      });
      const V y = _mm_srai_epi32(_mm_sub_epi32(sum, _mm_madd_epi16(last, factors.latest)), kScale);
      now[i] = _mm_or_si128(_mm_slli_epi32(y, 16), _mm_and_si128(last, lowHalves));
      outside = _mm_or_si128(outside, _mm_add_epi32(y, bias));
      last = y;
    });
    latest = last;
    beyond = outside;
    const V low = _mm_unpacklo_epi32(now[1], now[3]), high = _mm_unpackhi_epi32(now[1], now[3]);
    const V laterLow = _mm_unpacklo_epi32(now[5], now[7]), laterHigh = _mm_unpackhi_epi32(now[5], now[7]);
    output[0] = _mm_unpacklo_epi64(low, laterLow);
    output[1] = _mm_unpackhi_epi64(low, laterLow);
    output[2] = _mm_unpacklo_epi64(high, laterHigh);
    output[3] = _mm_unpackhi_epi64(high, laterHigh);
  }
};

}  // namespace

void ownImpulseResponseTarget_GSMAMR_16s_W7(const Zpp16s* speech, const Zpp16s* weight1, const Zpp16s* weight2,
                                            const Zpp16s* quantLpc, const Zpp16s* errorMem, const Zpp16s* weightMem,
                                            Zpp16s* impulse, Zpp16s* residual, Zpp16s* target) {
  static constexpr Zpp16s kPassing[kLpcOrder + 1] = {1 << kScale};
  const Factors filling(quantLpc, kPassing), filtering(quantLpc, weight2);

  ownResidualFilter_G729_16s(quantLpc, speech + kLpcOrder, residual, kSubframe);
  Lanes lanes;
  for (int i = 0; i <= kLpcOrder; ++i) lanes.input[0][i] = weight1[i];
  for (int n = 0; n < kSubframe; n += kBlock) store(lanes.input[1] + n, load(residual + n));
  for (int i = 0; i < kLpcOrder; ++i) lanes.input[3][kTrail - kLpcOrder + i] = weightMem[i];
  Zpp16s error[kLpcOrder + kSubframe];
  for (int i = 0; i < kLpcOrder; ++i) {
    error[i] = errorMem[i];
    lanes.past[i] = _mm_setr_epi32(0, errorMem[i] * 65536 | (i > 0 ? errorMem[i - 1] & 0xffff : 0), 0, 0);
  }
  lanes.latest = _mm_setr_epi32(0, errorMem[kLpcOrder - 1], 0, 0);
  lanes.beyond = _mm_setzero_si128();

  for (int n = 0; n < kSteps; n += kBlock) {
    V output[4];
    lanes.run(n, n < kTrail ? filling : filtering, output);
    if (n < kSubframe) {
      store(lanes.input[2] + kTrail + n, output[0]);
      store(error + kLpcOrder + n, output[1]);
      ownResidualFilter_G729_16s(weight1, error + kLpcOrder + n, lanes.input[3] + kTrail + n, kBlock);
    }
    if (n < kTrail) continue;
    store(impulse + n - kTrail, output[2]);
    store(target + n - kTrail, output[3]);
  }
  if (_mm_movemask_epi8(_mm_cmpeq_epi32(_mm_srli_epi32(lanes.beyond, 16), _mm_setzero_si128())) != 0xffff)
    ownImpulseResponseTarget_GSMAMR_16s_PX(speech, weight1, weight2, quantLpc, errorMem, weightMem, impulse, residual, target);
}
