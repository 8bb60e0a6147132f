// Search of the gain codebooks: SSE2 kernel, eight pairs at a time.
#include "amrwb/gain/kernels.h"
#include "amrwb/least_error_w7.h"

using namespace zpp;
using namespace zpp::amrwb;

namespace {

// mulRoundQ15 of factors of 0 or more
inline V mulRound(V a, V b) {
  const V half = _mm_set1_epi32(0x4000);
  const V low = _mm_add_epi32(mulLow(a, b), half), high = _mm_add_epi32(mulHigh(a, b), half);
  return _mm_packs_epi32(_mm_srai_epi32(low, 15), _mm_srai_epi32(high, 15));
}

struct Sums {
  V low, high;
};
// a * first + b * second
inline Sums sumOfTwo(V a, Zpp16s first, V b, Zpp16s second) {
  const V factors = pairOf(first, second);
  return {_mm_madd_epi16(_mm_unpacklo_epi16(a, b), factors), _mm_madd_epi16(_mm_unpackhi_epi16(a, b), factors)};
}
inline Sums operator+(Sums a, Sums b) { return {_mm_add_epi32(a.low, b.low), _mm_add_epi32(a.high, b.high)}; }
inline Sums shifted(Sums a, int right) { return {_mm_srai_epi32(a.low, right), _mm_srai_epi32(a.high, right)}; }

// Five terms of 12 bits below 2^15 times factors below 2^15, doubled, and an eighth of one of 28 bits stay below 2^31. So do
// the upper parts if these are below 2^15 together, with some room for what the lower ones carry.
bool fits(const Zpp16s* coarse, const Zpp16s* fine) {
  int magnitude = 0;
  for (int i = 0; i < 5; ++i) {
    magnitude += coarse[i] < 0 ? -coarse[i] : coarse[i];
    if (fine[i] < 0 || fine[i] > 4095) return false;
  }
  return magnitude <= 32760;
}

}  // namespace

int ownSearchGains_AMRWB_16s_W7(const Zpp16s (*pairs)[2], int count, Zpp16s predicted, const GainError* error) {
  const Zpp16s *coarse = error->coarse, *fine = error->fine;
  if (!fits(coarse, fine)) return ownSearchGains_AMRWB_16s_PX(pairs, count, predicted, error);
  const V scale = _mm_set1_epi16(predicted), zero = _mm_setzero_si128();
  LeastError least;
  for (int i = 0; i < count; i += 8) {
    const V first = load(pairs[i]), second = load(pairs[i + 4]);
    const V pitch =
        _mm_packs_epi32(_mm_srai_epi32(_mm_slli_epi32(first, 16), 16), _mm_srai_epi32(_mm_slli_epi32(second, 16), 16));
    const V code = mulRound(_mm_packs_epi32(_mm_srai_epi32(first, 16), _mm_srai_epi32(second, 16)), scale);
    const V pitchSquare = mulRound(pitch, pitch), product = mulRound(code, pitch);
    const V codeSquare = mulWrapQ15(code, code), below = _mm_and_si128(_mm_mullo_epi16(code, code), _mm_set1_epi16(0x7fff));
    const auto sums = [&](const Zpp16s* c) {
      return sumOfTwo(pitchSquare, c[0], pitch, c[1]) + sumOfTwo(codeSquare, c[2], code, c[3]) +
             sumOfTwo(product, c[4], zero, 0);
    };
    const Sums lower = sums(fine), upper = sums(coarse), rest = shifted(sumOfTwo(below, coarse[2], zero, 0), 2);
    const Sums carried = shifted(rest + lower + lower, 12);
    const Sums total = carried + upper + upper;
    least.take(total.low);
    least.take(total.high);
  }
  return least.found().index;
}
