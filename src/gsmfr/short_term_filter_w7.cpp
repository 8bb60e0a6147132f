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

// True when eight lanes are within the bounds, 0..32766 each.
bool areWithin(V most, V least, V bounds) {
  const V beyond =
      _mm_or_si128(_mm_cmpgt_epi16(most, bounds), _mm_cmplt_epi16(least, _mm_sub_epi16(_mm_setzero_si128(), bounds)));
  return _mm_movemask_epi8(beyond) == 0;
}

// The largest magnitudes that keep the stages from 0 and from 2 on within 16 bits, and those of stage 2 where their words tell
// them: below 2^16 - stage2. Six products each add up to 1/2 by rounding, one more unit covers the arithmetic here.
struct Limits {
  Zpp32s stage0, stage2;
  alignas(16) Zpp16s memories[kGsmFrOrder];

  explicit Limits(V magnitudes) {  // of the coefficients
    const auto floats = [](V x) {
      return _mm_add_ps(_mm_mul_ps(_mm_cvtepi32_ps(x), _mm_set1_ps(1 / 32768.f)), _mm_set1_ps(1));
    };
    float growth[kGsmFrOrder];
    _mm_storeu_ps(growth, floats(widenLow(magnitudes)));
    _mm_storeu_ps(growth + 4, floats(widenHigh(magnitudes)));
    const float upper = (growth[2] * growth[3]) * (growth[4] * growth[5]) * (growth[6] * growth[7]), limit2 = 32767 / upper;
    stage0 = static_cast<Zpp32s>(std::min(32767.f, (65535 - limit2) / growth[1]) / growth[0]) - 4;
    stage2 = static_cast<Zpp32s>(limit2) - 7;
    memories[0] = low16(stage0), memories[1] = 32766, memories[2] = low16(stage2);
    float within = static_cast<float>(stage2);
    for (int i = 3; i < kGsmFrOrder; ++i) memories[i] = static_cast<Zpp16s>(within *= growth[i - 1]);
  }

  // What may be left of the sample before. Stage 1 counts at stage 2 only, where its sums are seen.
  bool allow(const Zpp16s* memory) const { return areWithin(load(memory), load(memory), load(memories)); }
};

constexpr int kBlock = 160;           // samples between two looks at what has been seen: a frame
constexpr int kSaturatingBlock = 40;  // that the portable kernel does where saturation cannot be excluded

// What is looked at of a block; the output before it is doubled
struct Seen {
  alignas(16) Zpp16s down0[kBlock + 8], down2[kBlock + 8], up2[kBlock + 8];
  alignas(16) Zpp32s output[kBlock];

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

V magnitudes(const Zpp16s* refl) {  // of -1 as well: 32767, but that never comes here
  const V r = load(refl);
  return _mm_max_epi16(r, _mm_subs_epi16(_mm_setzero_si128(), r));
}

// The lattice while nothing saturates; with the recursion of de-emphasis, which takes no time of its own beside it, as it is
// the shorter one.
template <bool deemphasised>
struct Lattice {
  static constexpr Zpp32s kEmphasis = 28180;  // Q15

  Zpp32s v0, v1, v2, v3, v4, v5, v6, v7, y;

  Lattice(const Zpp16s* memory, Zpp16s emphasis)
      : v0(memory[0]),
        v1(memory[1]),
        v2(memory[2]),
        v3(memory[3]),
        v4(memory[4]),
        v5(memory[5]),
        v6(memory[6]),
        v7(memory[7]),
        y(emphasis) {}

  // Samples begin to end - 1
  [[gnu::always_inline]] void filter(const Zpp16s* refl, const Zpp16s* src, Seen& seen, std::ptrdiff_t begin,
                                     std::ptrdiff_t end) {
    Zpp32s r[kGsmFrOrder];
    unrolled<kGsmFrOrder>([&](auto i) { r[i] = refl[i]; });
    for (std::ptrdiff_t n = begin; n < end; ++n) {
      Zpp32s s = minusRounded(src[n], r[7], v7);
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
  }
  void keep(Zpp16s* memory) const {
    const V low = _mm_packs_epi32(_mm_setr_epi32(v0, v1, v2, v3), _mm_setr_epi32(v4, v5, v6, v7));
    store(memory, low);
  }
};

// Filters blocks until saturation cannot be excluded in one of them. Returns the samples before that block, to which the memory
// belongs.
[[gnu::noinline]] int synthesise(const Zpp16s* refl, const Zpp16s* src, Zpp16s* dst, int len, Zpp16s* memory) {
  const Limits limits(magnitudes(refl));
  if (!limits.allow(memory)) return 0;
  Lattice<false> lattice(memory, 0);
  Seen seen;
  for (int done = 0; done < len;) {
    const int count = std::min(kBlock, len - done);
    lattice.filter(refl, src + done, seen, 0, count);
    if (!seen.areWithin(limits, count)) return done;
    lattice.keep(memory);
    std::memcpy(dst + done, seen.down0, static_cast<unsigned>(count) * sizeof(Zpp16s));
    done += count;
  }
  return len;
}

// A frame with its four sets of coefficients, or false, and nothing is written.
[[gnu::noinline]] bool synthesiseFrame(const Zpp16s* refl, const Zpp16s* src, Zpp16s* dst, Zpp16s* memory, Zpp16s* emphasis) {
  V most = magnitudes(refl);
  for (int part = 1; part < kGsmFrParts; ++part) most = _mm_max_epi16(most, magnitudes(refl + kGsmFrOrder * part));
  const Limits limits(most);
  if (!limits.allow(memory)) return false;
  Lattice<true> lattice(memory, *emphasis);
  Seen seen;
  for (int part = 0; part < kGsmFrParts; ++part)
    lattice.filter(refl + kGsmFrOrder * part, src, seen, kGsmFrPartBounds[part], kGsmFrPartBounds[part + 1]);
  if (!seen.areWithin(limits, kBlock)) return false;
  V highest = _mm_setzero_si128(), lowest = highest;
  for (int n = 0; n < kBlock; n += 8) {
    const V x = _mm_packs_epi32(load(seen.output + n), load(seen.output + n + 4));
    highest = _mm_max_epi16(highest, x);
    lowest = _mm_min_epi16(lowest, x);
    store(seen.down0 + n, _mm_and_si128(_mm_adds_epi16(x, x), _mm_set1_epi16(-8)));
  }
  if (!areWithin(highest, lowest, _mm_set1_epi16(32766))) return false;
  lattice.keep(memory);
  *emphasis = low16(lattice.y);
  std::memcpy(dst, seen.down0, kBlock * sizeof(Zpp16s));
  return true;
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
  const bool never = hasMinusOne(refl);
  for (int done = 0; done < len;) {
    if (!never) done += synthesise(refl, src + done, dst + done, len - done, memory);
    const int saturating = std::min(kSaturatingBlock, len - done);
    ownShortTermSynthesisFilter_GSMFR_16s_PX(refl, src + done, dst + done, saturating, memory);
    done += saturating;
  }
}

void ownSpeechSynthesis_GSMFR_16s_W7(const Zpp16s* refl, const Zpp16s* src, Zpp16s* dst, Zpp16s* memory, Zpp16s* emphasis) {
  bool never = false;
  for (int part = 0; part < kGsmFrParts; ++part) never = never || hasMinusOne(refl + kGsmFrOrder * part);
  if (!never && synthesiseFrame(refl, src, dst, memory, emphasis)) return;
  for (int part = 0; part < kGsmFrParts; ++part) {
    const int begin = kGsmFrPartBounds[part], len = kGsmFrPartBounds[part + 1] - begin;
    ownShortTermSynthesisFilter_GSMFR_16s_W7(refl + kGsmFrOrder * part, src + begin, dst + begin, len, memory);
  }
  ownDeemphasize_GSMFR_16s_I_W7(dst, kBlock, emphasis);
}
