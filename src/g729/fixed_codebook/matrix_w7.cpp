// Correlation matrices of the impulse response: SSE2 kernels.
#include "core/simd_w7.h"
#include "g729/fixed_codebook/matrix.h"

using namespace zpp;

namespace {

// Transposes four vectors of four 32-bit lanes.
void transpose4(V (&v)[4]) {
  const V a = _mm_unpacklo_epi32(v[0], v[1]), b = _mm_unpackhi_epi32(v[0], v[1]);
  const V c = _mm_unpacklo_epi32(v[2], v[3]), d = _mm_unpackhi_epi32(v[2], v[3]);
  v[0] = _mm_unpacklo_epi64(a, c);
  v[1] = _mm_unpackhi_epi64(a, c);
  v[2] = _mm_unpacklo_epi64(b, d);
  v[3] = _mm_unpackhi_epi64(b, d);
}

class PlainSums {
 public:
  explicit PlainSums(Zpp32s start) : low_(_mm_set1_epi32(start)), high_(low_) {}
  void add(Zpp16s x, const Zpp16s* row) {
    // Beside a zero, pmaddwd is an exact 32-bit product.
    const V factor = _mm_set1_epi32(x), r = load(row), zero = _mm_setzero_si128();
    low_ = _mm_add_epi32(low_, _mm_madd_epi16(_mm_unpacklo_epi16(r, zero), factor));
    high_ = _mm_add_epi32(high_, _mm_madd_epi16(_mm_unpackhi_epi16(r, zero), factor));
  }
  void nextColumn(Zpp32s start) {
    low_ = _mm_or_si128(_mm_srli_si128(low_, 4), _mm_slli_si128(high_, 12));
    high_ = _mm_or_si128(_mm_srli_si128(high_, 4), _mm_slli_si128(_mm_cvtsi32_si128(start), 12));
  }
  void store(Zpp16s* dst) const { zpp::store(dst, _mm_packs_epi32(_mm_srai_epi32(low_, 15), _mm_srai_epi32(high_, 15))); }
  void store(Zpp32s* dst) const {
    zpp::store(dst, low_);
    zpp::store(dst + 4, high_);
  }
  static void transpose(Zpp16s* block) {
    V even[4], odd[4];  // rows in pairs, so that 32-bit lanes hold what stays together
    for (int half = 0; half < 2; ++half) {
      V* pairs = half == 0 ? even : odd;
      for (int i = 0; i < 2; ++i) {
        const V a = load(block + kPositions * (4 * half + 2 * i)), b = load(block + kPositions * (4 * half + 2 * i + 1));
        pairs[i] = _mm_unpacklo_epi16(a, b);
        pairs[i + 2] = _mm_unpackhi_epi16(a, b);
      }
    }
    V left[4] = {even[0], even[1], odd[0], odd[1]}, right[4] = {even[2], even[3], odd[2], odd[3]};
    transpose4(left);
    transpose4(right);
    for (int i = 0; i < 4; ++i) {
      zpp::store(block + kPositions * i, left[i]);
      zpp::store(block + kPositions * (i + 4), right[i]);
    }
  }
  static void transpose(Zpp32s* block) {
    const auto quarter = [block](int i, int j) { return block + kPositions * 4 * i + 4 * j; };
    for (int i = 0; i < 2; ++i)
      for (int j = 0; j <= i; ++j) {
        V a[4], b[4];
        for (int n = 0; n < 4; ++n) a[n] = load(quarter(i, j) + kPositions * n), b[n] = load(quarter(j, i) + kPositions * n);
        transpose4(a);
        transpose4(b);
        for (int n = 0; n < 4; ++n)
          zpp::store(quarter(j, i) + kPositions * n, a[n]), zpp::store(quarter(i, j) + kPositions * n, b[n]);
      }
  }
  static Zpp32s lone(Zpp32s start) { return start; }
  static Zpp32s accumulate(Zpp32s sum, Zpp16s x) { return sum + Zpp32s{x} * x; }
  static Zpp32s value(Zpp32s sum) { return sum; }

 private:
  V low_, high_;
};

// The rare response whose sums saturate is left to the portable kernel.
template <Chain... chains, class T>
void buildMatrix(const Zpp16s* impulse, T* matrix, void (*portable)(const Zpp16s*, T*)) {
  Zpp16s scaled[kSubframe];
  if (ownScaleImpulse_G729_16s(impulse, scaled))
    correlationMatrix<PlainSums, chains...>(scaled, matrix);
  else
    portable(impulse, matrix);
}

template <class T>
void buildMatrixAnnexD(const Zpp16s* impulse, T* matrix, void (*portable)(const Zpp16s*, T*)) {
  buildMatrix<kSameTrackAnnexD, kNextTrackAnnexD, kTrackAfterNextAnnexD>(impulse, matrix, portable);
}

}  // namespace

void ownToeplizMatrix_G729_16s_W7(const Zpp16s* impulse, Zpp16s* matrix) {
  buildMatrix<kNextTrack, kTrackAfterNext>(impulse, matrix, ownToeplizMatrix_G729_16s_PX);
}
void ownToeplizMatrix_G729_16s32s_W7(const Zpp16s* impulse, Zpp32s* matrix) {
  buildMatrix<kNextTrack, kTrackAfterNext>(impulse, matrix, ownToeplizMatrix_G729_16s32s_PX);
}
void ownToeplizMatrix_G729D_16s_W7(const Zpp16s* impulse, Zpp16s* matrix) {
  buildMatrixAnnexD(impulse, matrix, ownToeplizMatrix_G729D_16s_PX);
}
void ownToeplizMatrix_G729D_16s32s_W7(const Zpp16s* impulse, Zpp32s* matrix) {
  buildMatrixAnnexD(impulse, matrix, ownToeplizMatrix_G729D_16s32s_PX);
}

void ownCorrMatrix_G729E_16s_W7(const Zpp16s* impulse, Zpp16s* matrix) {
  if (plainSumsHoldAnnexE(impulse))
    correlationMatrixAnnexE<PlainSums>(impulse, matrix);
  else
    ownCorrMatrix_G729E_16s_PX(impulse, matrix);
}
