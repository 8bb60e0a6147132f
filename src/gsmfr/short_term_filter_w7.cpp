// Short-term lattices: kernels of the SSE2 level.
#include "core/fixed_point.h"
#include "gsmfr/kernels.h"
#include "gsmfr/simd_rounding_w7.h"

using namespace zpp;
using namespace zpp::gsmfr;

namespace {

// Eight samples in all stages, which have no feedback: a stage needs those of the stage before it, and their last one from the
// block before.
struct Analysis {
  V refl[kGsmFrOrder];
  V last[kGsmFrOrder];  // in lane 0: the backward signal of the sample before, the others zero

  Analysis(const Zpp16s* coefficients, const Zpp16s* memory) {
    for (int i = 0; i < kGsmFrOrder; ++i) {
      refl[i] = _mm_set1_epi16(coefficients[i]);
      last[i] = _mm_cvtsi32_si128(static_cast<Zpp16u>(memory[i]));
    }
  }
  // keep(i, backward): what becomes of the backward signals
  template <class Keep>
  V filter(V x, Keep keep) {
    V forward = x, backward = x;
    for (int i = 0; i < kGsmFrOrder; ++i) {
      const V delayed = _mm_or_si128(_mm_slli_si128(backward, 2), last[i]);
      keep(i, backward);
      backward = _mm_adds_epi16(delayed, mulRoundWrapQ15(refl[i], forward));
      forward = _mm_adds_epi16(forward, mulRoundWrapQ15(refl[i], delayed));
    }
    return forward;
  }
};

}  // namespace

void ownShortTermAnalysisFilter_GSMFR_16s_I_W7(const Zpp16s* refl, Zpp16s* srcDst, int len, Zpp16s* memory) {
  // A coefficient of -1 may have a product that does not fit.
  if (_mm_movemask_epi8(_mm_cmpeq_epi16(load(refl), _mm_set1_epi16(-32768))) != 0)
    return ownShortTermAnalysisFilter_GSMFR_16s_I_PX(refl, srcDst, len, memory);
  Analysis analysis(refl, memory);
  int n = 0;
  for (; n + 8 <= len; n += 8)
    store(srcDst + n, analysis.filter(load(srcDst + n), [&](int i, V v) { analysis.last[i] = _mm_srli_si128(v, 14); }));
  const int rest = len - n;
  if (rest == 0) {
    for (int i = 0; i < kGsmFrOrder; ++i) memory[i] = low16(_mm_cvtsi128_si32(analysis.last[i]));
    return;
  }
  alignas(16) Zpp16s backward[kGsmFrOrder][8], filtered[8];
  store(filtered, analysis.filter(loadFirst(srcDst + n, rest), [&](int i, V v) { store(backward[i], v); }));
  std::memcpy(srcDst + n, filtered, static_cast<unsigned>(rest) * sizeof(Zpp16s));
  for (int i = 0; i < kGsmFrOrder; ++i) memory[i] = backward[i][rest - 1];
}

void ownShortTermSynthesisFilter_GSMFR_16s_W7(const Zpp16s* refl, const Zpp16s* src, Zpp16s* dst, int len, Zpp16s* memory) {
  ownShortTermSynthesisFilter_GSMFR_16s_PX(refl, src, dst, len, memory);
}
