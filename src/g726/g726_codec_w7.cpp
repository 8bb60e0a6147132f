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

// The six products of the zeros side by side; the two poles, which are known last, stay in scalar arithmetic.
//
// FMULT multiplies numbers of a 6-bit mantissa and an exponent, and single precision holds each of its steps exactly: a number
// is truncated to 6 bits by a mask, the normalised zero of the standard (mantissa 32, exponent 0) is the number 1/2, and the
// product's exponent comes with the product.
class Predictor {
 public:
  explicit Predictor(const AdpcmState& s)
      : zero(load(s.coefficient)),
        a1(s.coefficient[zeros]),
        a2(s.coefficient[zeros + 1]),
        sr1(Floating::fromWord(s.history[zeros])),
        sr2(Floating::fromWord(s.history[zeros + 1])) {
    const V word = load(s.history);
    sign = _mm_srai_epi16(_mm_slli_epi16(word, 5), 15);
    past[0] = number(_mm_unpacklo_epi16(word, _mm_setzero_si128()));
    past[1] = _mm_move_epi64(number(_mm_unpackhi_epi16(word, _mm_setzero_si128())));
  }

  void store(AdpcmState& s) const {
    zpp::store(s.coefficient, zero);
    s.coefficient[zeros] = static_cast<Zpp16s>(a1);
    s.coefficient[zeros + 1] = static_cast<Zpp16s>(a2);
    const V words = _mm_packs_epi32(word(past[0]), word(past[1]));
    zpp::store(s.history, _mm_or_si128(words, _mm_and_si128(sign, _mm_set1_epi16(1 << 10))));
    s.history[zeros] = sr1.word();
    s.history[zeros + 1] = sr2.word();
  }

  int pole1() const { return a1; }
  int pole2() const { return a2; }

  [[gnu::always_inline]] Estimate estimate() const {
    // Doubled magnitude, Q13, for which 1 stands in when it is zero
    const V negative = _mm_srai_epi16(zero, 15);
    const V even = _mm_set1_epi16(2 * 8191);
    V twice = _mm_and_si128(_mm_srai_epi16(zero, 1), _mm_set1_epi16(-2));
    twice = _mm_sub_epi16(_mm_xor_si128(twice, negative), negative);
    twice = _mm_max_epi16(_mm_and_si128(twice, even), _mm_set1_epi16(1));
    const V low = product(_mm_unpacklo_epi16(twice, _mm_setzero_si128()), past[0]);
    const V high = product(_mm_unpackhi_epi16(twice, _mm_setzero_si128()), past[1]);
    const V signs = _mm_or_si128(_mm_xor_si128(negative, sign), _mm_set1_epi16(1));
    const V pairs = _mm_madd_epi16(_mm_packs_epi32(low, high), signs);  // b1 b2, b3 b4, b5 b6, 0
    const V sums = _mm_add_epi32(_mm_add_epi32(pairs, _mm_shuffle_epi32(pairs, 2)), _mm_shuffle_epi32(pairs, 1));
    const int sum = _mm_cvtsi128_si32(sums);
    return {wrap16(sum + multiplied(a2, sr2) + multiplied(a1, sr1)) >> 1, wrap16(sum) >> 1};
  }

  template <int leak>
  [[gnu::always_inline]] void update(int new1, int new2, Difference dq, int reconstructed) {
    V step = _mm_set1_epi16(static_cast<short>(dq.magnitude == 0 ? 0 : withSign(128, dq.sign)));
    step = _mm_sub_epi16(_mm_xor_si128(step, sign), sign);
    zero = _mm_add_epi16(_mm_sub_epi16(zero, _mm_srai_epi16(zero, leak)), step);
    a1 = new1;
    a2 = new2;

    sign = _mm_insert_epi16(_mm_slli_si128(sign, 2), dq.sign, 0);
    past[1] = _mm_move_epi64(_mm_unpacklo_epi32(_mm_shuffle_epi32(past[0], 3), past[1]));
    const V newest = scaled(_mm_cvtsi32_si128(std::max(2 * dq.magnitude, 1)), -1);
    past[0] = asInt(_mm_move_ss(asFloat(_mm_slli_si128(past[0], 4)), asFloat(newest)));
    sr2 = sr1;
    sr1 = Floating::of(reconstructed >> 31, std::abs(reconstructed) & 32767);
  }

  void clearCoefficients() {
    zero = _mm_setzero_si128();
    a1 = a2 = 0;
  }

 private:
  static constexpr int exponentOne = 1 << 23;
  static V leading(V x) { return _mm_and_si128(x, _mm_set1_epi32(255 * exponentOne)); }
  // The six leading bits of a positive integer
  static V truncated(V x) { return _mm_and_si128(asInt(_mm_cvtepi32_ps(x)), _mm_set1_epi32(-1 << 18)); }

  // The history is kept times 2^-12: the scale from the doubled factor to the result.
  static V scaled(V x, int exponent) { return _mm_add_epi32(truncated(x), _mm_set1_epi32((exponent - 12) * exponentOne)); }
  // Floating words, without their sign, to mantissa / 64 * 2^exponent in that scale; and back
  static V number(V w) {
    const V exponent = _mm_slli_epi32(_mm_and_si128(w, _mm_set1_epi32(0x3c0)), 23 - 6);
    const V fraction = _mm_slli_epi32(_mm_and_si128(w, _mm_set1_epi32(31)), 23 - 5);
    return _mm_add_epi32(_mm_add_epi32(exponent, fraction), _mm_set1_epi32((126 - 12) * exponentOne));
  }
  static V word(V x) {
    const V bits = _mm_sub_epi32(x, _mm_set1_epi32((126 - 12) * exponentOne));
    const V exponent = _mm_slli_epi32(_mm_srli_epi32(bits, 23), 6);
    const V fraction = _mm_and_si128(_mm_srli_epi32(bits, 18), _mm_set1_epi32(31));
    return _mm_or_si128(_mm_or_si128(exponent, fraction), _mm_set1_epi32(32));
  }

  // Magnitudes of the products of doubled coefficients and past signals.
  // With mantissas m, n and the exponents' sum E the standard has floor((m n + 48) / 16) * 2^(E - 19). The bits below that
  // quotient are cut off by a mask; 4096 on top of 48 brings the leading bit of the sum to a known place, and leaves again
  // after the conversion.
  [[gnu::always_inline]] static V product(V twice, V signal) {
    const V factor = truncated(twice);
    const F exact = _mm_mul_ps(asFloat(factor), asFloat(signal));
    const V offsetUnit = _mm_add_epi32(leading(signal), _mm_set1_epi32(2 * exponentOne + exponentOne * 48 / 4096));
    const F offset = _mm_mul_ps(asFloat(leading(factor)), asFloat(offsetUnit));  // 4096 + 48
    const V sum = _mm_and_si128(asInt(_mm_add_ps(exact, offset)), _mm_set1_epi32(-1 << 15));
    const V raised = _mm_cvttps_epi32(asFloat(sum)), base = _mm_cvttps_epi32(asFloat(leading(asInt(offset))));
    return _mm_and_si128(_mm_sub_epi32(raised, base), _mm_set1_epi32(32767));
  }

  V zero;     // b1..b6, Q14; the two lanes behind them are of no consequence
  V sign;     // of dq1..dq6, all ones for negative
  V past[2];  // magnitudes of dq1..dq4 and of dq5, dq6, 0, 0 as single-precision numbers
  int a1, a2;
  Floating sr1, sr2;
};

}  // namespace

void ownEncode_G726_16s8u_W7(void* state, const Zpp16s* src, Zpp8u* dst, Zpp32u len) {
  encodeAtRate<Predictor>(state, src, dst, len);
}

void ownDecode_G726_8u16s_W7(void* state, const Zpp8u* src, Zpp16s* dst, Zpp32u len) {
  decodeAtRate<Predictor>(state, src, dst, len);
}
