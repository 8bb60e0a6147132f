// Short-term lattices: kernels of the SSE2 level.
#include <algorithm>
#include <cmath>
#include <cstddef>

#include "core/fixed_point.h"
#include "gsmfr/kernels.h"
#include "gsmfr/rounded_products_w7.h"

using namespace zpp;
using namespace zpp::gsmfr;

namespace {

constexpr int kBlock = 40;  // samples of the synthesis between two looks at what has been seen

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

// The synthesis lattice has feedback through every stage: a sample waits for two products of the sample before. Eight stages in
// the lanes of a register would wait for each other as well, so it runs in general registers; exact, and without saturation,
// which is left out under the proof that none would act. Let a signal stage i be s[i] on the way down, v[i] on the way up:
// s[i+1] = s[i] + r[i] v[i] and v[i+1] = v[i] + r[i] s[i] but for rounding, so neither is larger than (1 + |r[i]|) times the
// larger one of the stage before.

// The largest magnitude of output and memory that keeps all stages within 16 bits: seven products each add up to 1/2 by
// rounding, one more unit covers the arithmetic here.
Zpp32s quietLimit(const Zpp16s* refl) {
  float growth = 1;
  for (int i = 0; i < kGsmFrOrder - 1; ++i) growth *= 1 + std::abs(static_cast<float>(refl[i])) * (1 / 32768.f);
  return static_cast<Zpp32s>(32767 / growth) - 5;
}

bool isWithin(const Zpp16s* memory, Zpp32s limit) {
  const V v = load(memory), bound = _mm_set1_epi16(static_cast<short>(limit));
  const V beyond = _mm_or_si128(_mm_cmpgt_epi16(v, bound), _mm_cmplt_epi16(v, _mm_sub_epi16(_mm_setzero_si128(), bound)));
  return _mm_movemask_epi8(beyond) == 0;
}

// Filters blocks until saturation cannot be excluded in one of them. Returns the samples before that block, to which the memory
// belongs. quiet: outputs are compared with limit, as the memory has been. Otherwise every other stage is compared with 2^14,
// which keeps the stages between within 16 bits.
template <bool quiet>
[[gnu::noinline]] int synthesise(const Zpp16s* refl, const Zpp16s* src, Zpp16s* dst, int len, Zpp16s* memory, Zpp32s limit) {
  const Zpp32s r0 = refl[0], r1 = refl[1], r2 = refl[2], r3 = refl[3], r4 = refl[4], r5 = refl[5], r6 = refl[6], r7 = refl[7];
  Zpp32s v0 = memory[0], v1 = memory[1], v2 = memory[2], v3 = memory[3], v4 = memory[4], v5 = memory[5], v6 = memory[6],
         v7 = memory[7];
  Zpp32u seen = 0;
  const auto see = [&](Zpp32s x) {
    if constexpr (!quiet) seen |= static_cast<Zpp32u>(x) + 16384;
  };
  for (int done = 0; done < len;) {
    const int count = std::min(kBlock, len - done);
    const Zpp16s* const in = src + done + count;
    Zpp16s* const out = dst + done + count;
    for (std::ptrdiff_t n = -count; n < 0; ++n) {
      Zpp32s s = minusRounded(in[n], r7, v7);
      s = minusRounded(s, r6, v6), v7 = plusRounded(v6, r6, s), see(s), see(v6);
      s = minusRounded(s, r5, v5), v6 = plusRounded(v5, r5, s);
      s = minusRounded(s, r4, v4), v5 = plusRounded(v4, r4, s), see(s), see(v4);
      s = minusRounded(s, r3, v3), v4 = plusRounded(v3, r3, s);
      s = minusRounded(s, r2, v2), v3 = plusRounded(v2, r2, s), see(s), see(v2);
      s = minusRounded(s, r1, v1), v2 = plusRounded(v1, r1, s);
      s = minusRounded(s, r0, v0), v1 = plusRounded(v0, r0, s), see(s), see(v0);
      if (quiet && static_cast<Zpp32u>(s + limit) > 2 * static_cast<Zpp32u>(limit)) return done;
      out[n] = low16(s);
      v0 = s;
    }
    see(v2), see(v4), see(v6);
    if (seen > 32767) return done;
    const Zpp32s last[] = {v0, v1, v2, v3, v4, v5, v6, v7};
    for (int i = 0; i < kGsmFrOrder; ++i) memory[i] = low16(last[i]);
    done += count;
  }
  return len;
}

// A coefficient of -1 may have a product that does not fit.
bool hasMinusOne(const Zpp16s* refl) { return _mm_movemask_epi8(_mm_cmpeq_epi16(load(refl), _mm_set1_epi16(-32768))) != 0; }

// dst is not src.
void synthesiseApart(const Zpp16s* refl, const Zpp16s* src, Zpp16s* dst, int len, Zpp16s* memory) {
  const Zpp32s limit = quietLimit(refl);
  int done = isWithin(memory, limit) ? synthesise<true>(refl, src, dst, len, memory, limit) : 0;
  if (done < len && hasMinusOne(refl))
    return ownShortTermSynthesisFilter_GSMFR_16s_PX(refl, src + done, dst + done, len - done, memory);
  while (done < len) {
    done += synthesise<false>(refl, src + done, dst + done, len - done, memory, 0);
    const int saturating = std::min(kBlock, len - done);
    ownShortTermSynthesisFilter_GSMFR_16s_PX(refl, src + done, dst + done, saturating, memory);
    done += saturating;
  }
}

}  // namespace

void ownShortTermAnalysisFilter_GSMFR_16s_I_W7(const Zpp16s* refl, Zpp16s* srcDst, int len, Zpp16s* memory) {
  if (hasMinusOne(refl)) return ownShortTermAnalysisFilter_GSMFR_16s_I_PX(refl, srcDst, len, memory);
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
  if (src != dst) return synthesiseApart(refl, src, dst, len, memory);
  Zpp16s copy[4 * kBlock];
  for (int n = 0; n < len; n += 4 * kBlock) {
    const int count = std::min(4 * kBlock, len - n);
    std::copy_n(src + n, count, copy);
    synthesiseApart(refl, copy, dst + n, count, memory);
  }
}
