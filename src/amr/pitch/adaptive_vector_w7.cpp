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
  // Weights of the samples from the oldest to the newest, two neighbours in each 32-bit lane
  Zpp16s weight[2 * kTaps];
  for (int i = 0; i < kTaps; ++i) {
    weight[kTaps - 1 - i] = inter6Excitation[6 * i + phase];
    weight[kTaps + i] = inter6Excitation[6 * i + 6 - phase];
  }
  V weights[kTaps];
  for (int i = 0; i < kTaps; ++i) weights[i] = pairOf(weight[2 * i], weight[2 * i + 1]);
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
    V even = _mm_set1_epi32(0x4000), odd = even;  // outputs
    unrolled<kTaps>([&](int i) {
      even = _mm_add_epi32(even, _mm_madd_epi16(load(from + kFirst + 2 * i), weights[i]));
      odd = _mm_add_epi32(odd, _mm_madd_epi16(load(from + kFirst + 2 * i + 1), weights[i]));
    });
    even = _mm_srai_epi32(even, 15);
    odd = _mm_srai_epi32(odd, 15);
    store(excitation + n, _mm_packs_epi32(_mm_unpacklo_epi32(even, odd), _mm_unpackhi_epi32(even, odd)));
  }
}
