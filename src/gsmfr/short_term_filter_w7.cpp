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

// A coefficient of -1 may have a product that does not fit.
bool hasMinusOne(const Zpp16s* refl) { return _mm_movemask_epi8(_mm_cmpeq_epi16(load(refl), _mm_set1_epi16(-32768))) != 0; }

// The synthesis lattice has feedback through every stage: a sample waits for two products of the sample before. Eight stages in
// the lanes of a register would wait for each other as well, so it runs in general registers; exact, and without saturation,
// which is left out under the proof that none would act. Let a signal at stage i be s[i] on the way down, v[i] on the way up:
// s[i+1] = s[i] + r[i] v[i] and v[i+1] = v[i] + r[i] s[i] but for rounding, v[i] being that of the sample before. So neither is
// larger than (1 + |r[i]|) times the larger one of the stage before, and it is enough to look at the stages 0 and 2. Even at
// 16-bit words of them: within the limits they lead up to values of 16 bits at all stages, which are those of the exact sums,
// as both end in the input.

// The largest magnitudes that keep the stages from 0 and from 2 on within 16 bits, and those of stage 2 where their words tell
// them: below 2^16 - stage2. Six products each add up to 1/2 by rounding, one more unit covers the arithmetic here.
struct Limits {
  Zpp32s stage0, stage2;

  explicit Limits(const Zpp16s* refl) {
    float growth[kGsmFrOrder];
    for (int i = 0; i < kGsmFrOrder; ++i) growth[i] = 1 + std::abs(static_cast<float>(refl[i])) * (1 / 32768.f);
    const float upper = (growth[2] * growth[3]) * (growth[4] * growth[5]) * (growth[6] * growth[7]), limit2 = 32767 / upper;
    stage0 = static_cast<Zpp32s>(std::min(32767.f, (65535 - limit2) / growth[1]) / growth[0]) - 4;
    stage2 = static_cast<Zpp32s>(limit2) - 7;
  }
};

// True when eight lanes are within the bounds, 0..32766 each.
bool areWithin(V most, V least, V bounds) {
  const V beyond =
      _mm_or_si128(_mm_cmpgt_epi16(most, bounds), _mm_cmplt_epi16(least, _mm_sub_epi16(_mm_setzero_si128(), bounds)));
  return _mm_movemask_epi8(beyond) == 0;
}

constexpr int kBlock = 120;           // samples between two looks at what has been seen
constexpr int kSaturatingBlock = 40;  // that the portable kernel does where saturation cannot be excluded

// What is looked at of a block; the output before it is doubled
struct Seen {
  alignas(16) Zpp16s down0[kBlock + 8], down2[kBlock + 8], up2[kBlock + 8];
  alignas(16) Zpp32s output[kBlock + 8];

  bool areWithin(const Limits& limits, int count) {
    return isWithin(down0, limits.stage0, count) && isWithin(down2, limits.stage2, count) &&
           isWithin(up2, limits.stage2, count);
  }
  static bool isWithin(Zpp16s* words, Zpp32s bound, int count) {
    store(words + count, _mm_setzero_si128());
    V most = load(words), least = most;
    for (int n = 8; n < count; n += 8) {
      most = _mm_max_epi16(most, load(words + n));
      least = _mm_min_epi16(least, load(words + n));
    }
    return ::areWithin(most, least, _mm_set1_epi16(static_cast<short>(bound)));
  }
};

// A stage of the lattice: s -= mulRound(r, from), then to = from + mulRound(r, s), modulo 2^32. What limits the filter beside
// its products is the number of instructions, and compilers would spend a third more of them on copies and spills.
inline void stage(const Zpp32s& r, Zpp32s& s, const Zpp32s& from, Zpp32s& to) {
#if defined(__x86_64__) || defined(__i386__)
  Zpp32s product;
  asm("movl %[r], %[product]\n\t"
      "imull %[from], %[product]\n\t"
      "addl $16384, %[product]\n\t"
      "sarl $15, %[product]\n\t"
      "subl %[product], %[s]\n\t"
      "movl %[r], %[to]\n\t"
      "imull %[s], %[to]\n\t"
      "sarl $15, %[to]\n\t"
      "adcl %[from], %[to]"  // the bit that is shifted out last rounds
      : [s] "+&r"(s), [to] "=&r"(to), [product] "=&r"(product)
      : [from] "r"(from), [r] "m"(r)
      : "cc");
#else
  s = minusRounded(s, r, from);
  to = plusRounded(from, r, s);
#endif
}

constexpr Zpp32s kEmphasis = 28180;  // Q15

// Filters blocks until saturation cannot be excluded in one of them. Returns the samples before that block, to which memory and
// emphasis belong. De-emphasis takes no time of its own: its recursion is shorter than that of the lattice.
template <bool deemphasised>
[[gnu::noinline]] int synthesise(const Zpp16s* refl, const Zpp16s* src, Zpp16s* dst, int len, Zpp16s* memory,
                                 Zpp16s* emphasis) {
  const Limits limits(refl);
  // Stage 1 of the memory counts at stage 2 only, where its sums are seen.
  const V bounds = _mm_insert_epi16(_mm_insert_epi16(_mm_set1_epi16(low16(limits.stage2)), limits.stage0, 0), 32766, 1);
  if (!areWithin(load(memory), load(memory), bounds)) return 0;
  Zpp32s r[kGsmFrOrder];
  std::copy_n(refl, kGsmFrOrder, r);
  Zpp32s v0 = memory[0], v1 = memory[1], v2 = memory[2], v3 = memory[3], v4 = memory[4], v5 = memory[5], v6 = memory[6],
         v7 = memory[7];
  Zpp32s y = deemphasised ? *emphasis : 0;
  Seen seen;
  for (int done = 0; done < len;) {
    const int count = std::min(kBlock, len - done);
    const Zpp16s* const in = src + done;
    for (std::ptrdiff_t n = 0; n < count; ++n) {
      Zpp32s s = minusRounded(in[n], r[7], v7);
      stage(r[6], s, v6, v7);
      stage(r[5], s, v5, v6);
      stage(r[4], s, v4, v5);
      stage(r[3], s, v3, v4);
      stage(r[2], s, v2, v3), seen.down2[n] = low16(s);
      stage(r[1], s, v1, v2), seen.up2[n] = low16(v2);
      stage(r[0], s, v0, v1), seen.down0[n] = low16(s);
      if constexpr (deemphasised) seen.output[n] = y = plusRounded(s, kEmphasis, y);
      v0 = s;
    }
    if (!seen.areWithin(limits, count)) return done;
    if constexpr (deemphasised) {
      store(seen.output + count, _mm_setzero_si128());
      store(seen.output + count + 4, _mm_setzero_si128());
      V most = _mm_setzero_si128(), least = most;
      for (int n = 0; n < count; n += 8) {
        const V x = _mm_packs_epi32(load(seen.output + n), load(seen.output + n + 4));
        most = _mm_max_epi16(most, x);
        least = _mm_min_epi16(least, x);
        store(seen.down0 + n, _mm_and_si128(_mm_adds_epi16(x, x), _mm_set1_epi16(-8)));
      }
      if (!areWithin(most, least, _mm_set1_epi16(32766))) return done;
      *emphasis = low16(y);
    }
    memory[0] = low16(v0), memory[1] = low16(v1), memory[2] = low16(v2), memory[3] = low16(v3);
    memory[4] = low16(v4), memory[5] = low16(v5), memory[6] = low16(v6), memory[7] = low16(v7);
    std::memcpy(dst + done, seen.down0, static_cast<unsigned>(count) * sizeof(Zpp16s));
    done += count;
  }
  return len;
}

template <bool deemphasised>
void synthesiseAll(const Zpp16s* refl, const Zpp16s* src, Zpp16s* dst, int len, Zpp16s* memory, Zpp16s* emphasis) {
  const bool never = hasMinusOne(refl);
  for (int done = 0; done < len;) {
    if (!never) done += synthesise<deemphasised>(refl, src + done, dst + done, len - done, memory, emphasis);
    const int saturating = std::min(kSaturatingBlock, len - done);
    if constexpr (deemphasised)
      ownSpeechSynthesis_GSMFR_16s_PX(refl, src + done, dst + done, saturating, memory, emphasis);
    else
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
  synthesiseAll<false>(refl, src, dst, len, memory, nullptr);
}

void ownSpeechSynthesis_GSMFR_16s_W7(const Zpp16s* refl, const Zpp16s* src, Zpp16s* dst, int len, Zpp16s* memory,
                                     Zpp16s* emphasis) {
  synthesiseAll<true>(refl, src, dst, len, memory, emphasis);
}
