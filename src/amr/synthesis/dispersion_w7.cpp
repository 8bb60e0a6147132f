// Anti-sparseness processing: convolution, SSE2 kernel.
#include "amr/synthesis/kernels.h"
#include "core/simd_w7.h"

using namespace zpp;

void ownDisperse_GSMAMR_16s_W7(const Zpp16s* pulses, const DispersionResponse& response, Zpp16s* dst) {
  constexpr int kVectors = kSubframe / 8;
  V sum[kVectors];
  for (V& s : sum) s = _mm_setzero_si128();
  for (int position = 0; position < kSubframe; ++position) {
    if (pulses[position] == 0) continue;
    const V pulse = _mm_set1_epi16(pulses[position]);
    const Zpp16s* const delayed = response.from(position);
    for (int v = 0; v < kVectors; ++v) sum[v] = _mm_adds_epi16(sum[v], mulQ15(load(delayed + 8 * v), pulse));
  }
  for (int v = 0; v < kVectors; ++v) store(dst + 8 * v, sum[v]);
}
