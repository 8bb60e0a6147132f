// Long-term prediction: SSE2 kernel.
#include "amr/pitch/kernels.h"
#include "amr/tables.h"
#include "core/fixed_point.h"
#include "core/kernels.h"
#include "core/simd_w7.h"

using namespace zpp;

void ownPredLt_GSMAMR_16s_I_W7(Zpp16s* excitation, int lag, int sixths) {
  constexpr int kTaps = 10, kLanes = 8;
  int phase = -sixths;
  const Zpp16s* past = excitation - lag;
  if (phase < 0) {
    phase += 6;
    --past;
  }
  V weights[kTaps];
  for (int i = 0; i < kTaps; ++i)
    weights[i] = _mm_unpacklo_epi16(_mm_set1_epi16(inter6Excitation[6 * i + phase]),
                                    _mm_set1_epi16(inter6Excitation[6 * i + 6 - phase]));
  // Eight samples at a time need nothing that they write themselves when the lag is 18 or more (19 with a phase that reads one
  // sample less far back). Magnitudes up to 16384 cannot saturate a step: the weights of a phase sum up to less than 2. What
  // the subframe reads of itself is looked at when it is there.
  const int reach = static_cast<int>(excitation - past) - kTaps;
  if (reach < kLanes) return ownPredLt_GSMAMR_16s_I_PX(excitation, lag, sixths);
  const auto tooLarge = [&](int from, int to) { return ownMaxAbs_16s(past + from, to - from) > 16384; };
  constexpr int kFirst = 1 - kTaps, kWhole = kSubframe + kTaps;  // read: from past[kFirst] to before past[kWhole]
  const int ahead = reach >= kSubframe ? kWhole : kTaps + kLanes;
  if (tooLarge(kFirst, ahead)) return ownPredLt_GSMAMR_16s_I_PX(excitation, lag, sixths);
  for (int n = 0; n < kSubframe; n += kLanes) {
    const Zpp16s* const from = past + n;
    if (n + kLanes + kTaps > ahead && tooLarge(n + kTaps, n + kTaps + kLanes))
      return ownPredLt_GSMAMR_16s_I_PX(excitation, lag, sixths);
    V low = _mm_set1_epi32(0x4000), high = low;
    for (int i = 0; i < kTaps; ++i) {
      const V before = load(from - i), after = load(from + 1 + i);
      low = _mm_add_epi32(low, _mm_madd_epi16(_mm_unpacklo_epi16(before, after), weights[i]));
      high = _mm_add_epi32(high, _mm_madd_epi16(_mm_unpackhi_epi16(before, after), weights[i]));
    }
    store(excitation + n, _mm_packs_epi32(_mm_srai_epi32(low, 15), _mm_srai_epi32(high, 15)));
  }
}
