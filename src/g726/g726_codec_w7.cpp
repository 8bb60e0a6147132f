// ITU-T G.726 ADPCM: SSE2 kernels.
#include "core/simd_w7.h"
#include "g726/adpcm.h"
#include "g726/kernels.h"

using namespace zpp;
using namespace zpp::g726;

namespace {

using F = __m128;  // four single-precision lanes

inline F asFloat(V v) { return _mm_castsi128_ps(v); }
inline V asInt(F f) { return _mm_castps_si128(f); }

// The eight products of the predictor side by side, lanes b1..b6, a1, a2.
//
// FMULT multiplies numbers of a 6-bit mantissa and an exponent, and single precision holds each of its steps exactly: a number
// is truncated to 6 bits by a mask, the normalised zero of the standard (mantissa 32, exponent 0) is the number 1/2, and the
// product's exponent comes with the product.
class Predictor {
 public:
  explicit Predictor(const AdpcmState& s) : coefficient(load(s.coefficient)) {
    const V word = load(s.history);
    sign = _mm_srai_epi16(_mm_slli_epi16(word, 5), 15);
    past[0] = number(_mm_unpacklo_epi16(word, _mm_setzero_si128()));
    past[1] = number(_mm_unpackhi_epi16(word, _mm_setzero_si128()));
    a1 = s.coefficient[zeros];
    a2 = s.coefficient[zeros + 1];
  }

  void store(AdpcmState& s) const {
    zpp::store(s.coefficient, coefficient);
    const V words = _mm_packs_epi32(word(past[0]), word(past[1]));
    zpp::store(s.history, _mm_or_si128(words, _mm_and_si128(sign, _mm_set1_epi16(1 << 10))));
  }

  int pole1() const { return a1; }
  int pole2() const { return a2; }

  Estimate estimate() const {
    const V negative = _mm_srai_epi16(coefficient, 15);
    V magnitude = _mm_sub_epi16(_mm_xor_si128(_mm_srai_epi16(coefficient, 2), negative), negative);
    magnitude = _mm_and_si128(magnitude, _mm_set1_epi16(8191));
    const V low = product(_mm_unpacklo_epi16(magnitude, _mm_setzero_si128()), past[0]);
    const V high = product(_mm_unpackhi_epi16(magnitude, _mm_setzero_si128()), past[1]);
    const V minus = _mm_xor_si128(negative, sign);
    const V products = _mm_sub_epi16(_mm_xor_si128(_mm_packs_epi32(low, high), minus), minus);
    // Sums of pairs: b1 b2, b3 b4, b5 b6, a1 a2
    V sums = _mm_madd_epi16(products, _mm_set1_epi16(1));
    const int poles = _mm_cvtsi128_si32(_mm_shuffle_epi32(sums, 3));
    sums = _mm_add_epi32(sums, _mm_add_epi32(_mm_shuffle_epi32(sums, 1), _mm_shuffle_epi32(sums, 2)));
    const int sum = _mm_cvtsi128_si32(sums);
    return {wrap16(sum + poles) >> 1, wrap16(sum) >> 1};
  }

  template <int leak>
  void update(int new1, int new2, Difference dq, int reconstructed) {
    const V dqSign = _mm_set1_epi16(static_cast<short>(-dq.negative));
    // 128 with equal signs, -128 with different ones
    V step = _mm_sub_epi16(_mm_xor_si128(_mm_set1_epi16(128), _mm_xor_si128(sign, dqSign)), _mm_xor_si128(sign, dqSign));
    step = _mm_and_si128(step, _mm_set1_epi16(static_cast<short>(dq.magnitude == 0 ? 0 : -1)));
    coefficient = _mm_add_epi16(_mm_sub_epi16(coefficient, _mm_srai_epi16(coefficient, leak)), step);
    coefficient = _mm_insert_epi16(coefficient, new1, zeros);
    coefficient = _mm_insert_epi16(coefficient, new2, zeros + 1);
    a1 = new1;
    a2 = new2;

    V both = _mm_unpacklo_epi32(_mm_cvtsi32_si128(dq.magnitude), _mm_cvtsi32_si128(std::abs(reconstructed) & 32767));
    const F newest = truncated(_mm_cvtepi32_ps(both));
    const F older = _mm_shuffle_ps(past[0], past[1], _MM_SHUFFLE(2, 0, 3, 3));  // dq4 dq4 dq5 sr1
    past[0] = _mm_move_ss(asFloat(_mm_slli_si128(asInt(past[0]), 4)), newest);
    past[1] = _mm_shuffle_ps(_mm_shuffle_ps(older, older, _MM_SHUFFLE(2, 2, 2, 1)),
                             _mm_shuffle_ps(newest, past[1], _MM_SHUFFLE(2, 2, 1, 1)), _MM_SHUFFLE(2, 0, 1, 0));
    const int sr1Sign = _mm_extract_epi16(sign, zeros);
    sign = _mm_insert_epi16(_mm_slli_si128(sign, 2), -dq.negative, 0);
    sign = _mm_insert_epi16(_mm_insert_epi16(sign, reconstructed >> 15, zeros), sr1Sign, zeros + 1);
  }

  void clearCoefficients() {
    coefficient = _mm_setzero_si128();
    a1 = a2 = 0;
  }

 private:
  // The six leading bits of x; 1/2 for zero
  static F truncated(F x) { return _mm_and_ps(_mm_max_ps(x, _mm_set1_ps(0.5f)), asFloat(_mm_set1_epi32(~0 << 18))); }
  // Floating words, without their sign, to numbers: mantissa / 64 * 2^exponent
  static F number(V w) {
    const V exponent = _mm_slli_epi32(_mm_and_si128(w, _mm_set1_epi32(0x3c0)), 23 - 6);
    const V fraction = _mm_slli_epi32(_mm_and_si128(w, _mm_set1_epi32(31)), 23 - 5);
    return asFloat(_mm_add_epi32(_mm_add_epi32(exponent, fraction), _mm_set1_epi32(126 << 23)));
  }
  static V word(F x) {
    const V bits = _mm_sub_epi32(asInt(x), _mm_set1_epi32(126 << 23));
    const V exponent = _mm_slli_epi32(_mm_srli_epi32(bits, 23), 6);
    return _mm_or_si128(_mm_or_si128(exponent, _mm_set1_epi32(32)),
                        _mm_and_si128(_mm_srli_epi32(bits, 18), _mm_set1_epi32(31)));
  }

  // Magnitudes of the products of coefficients, here 0..8191 (Q12), and past signals.
  // With mantissas m, n and the exponents' sum E the standard has floor((m n + 48) / 16) * 2^(E - 19). The bits below that
  // quotient are cut off by a mask, for which 4096 brings the leading bit of the sum to a known place.
  static V product(V coefficients, F signals) {
    const F leading = asFloat(_mm_set1_epi32(0xff << 23));
    // 2^-11 brings the product to the scale of the result.
    const F factor = asFloat(_mm_sub_epi32(asInt(truncated(_mm_cvtepi32_ps(coefficients))), _mm_set1_epi32(11 << 23)));
    const F exact = _mm_mul_ps(factor, signals);
    const F unit = _mm_mul_ps(_mm_and_ps(factor, leading), _mm_and_ps(signals, leading));  // 1024 in the scale of m n
    F sum = _mm_add_ps(exact, _mm_mul_ps(unit, _mm_set1_ps((4096 + 48) / 1024.0f)));
    sum = _mm_and_ps(sum, asFloat(_mm_set1_epi32(~0 << 15)));
    sum = _mm_sub_ps(sum, _mm_mul_ps(unit, _mm_set1_ps(4)));
    return _mm_and_si128(_mm_cvttps_epi32(sum), _mm_set1_epi32(32767));
  }

  V coefficient;  // b1..b6, a1, a2, Q14
  V sign;         // of the history, all ones for negative
  F past[2];      // magnitudes of dq1..dq4 and of dq5, dq6, sr1, sr2, truncated to 6 bits
  int a1, a2;
};

}  // namespace

void ownEncode_G726_16s8u_W7(void* state, const Zpp16s* src, Zpp8u* dst, Zpp32u len) {
  encodeAtRate<Predictor>(state, src, dst, len);
}

void ownDecode_G726_8u16s_W7(void* state, const Zpp8u* src, Zpp16s* dst, Zpp32u len) {
  decodeAtRate<Predictor>(state, src, dst, len);
}
