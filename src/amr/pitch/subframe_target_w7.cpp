// Impulse response and target of a subframe: SSE2 kernel.
//
// Four filters run side by side: the response and the error through the synthesis filter, and both again through the weighting
// filter. The second two trail the first by two blocks, in which what they take in becomes ready; meanwhile they are handed
// their past outputs.
#include "amr/four_filters_w7.h"
#include "amr/pitch/kernels.h"

using namespace zpp;

void ownImpulseResponseTarget_GSMAMR_16s_W7(const Zpp16s* speech, const Zpp16s* weight1, const Zpp16s* weight2,
                                            const Zpp16s* quantLpc, const Zpp16s* errorMem, const Zpp16s* weightMem,
                                            Zpp16s* impulse, Zpp16s* residual, Zpp16s* target) {
  constexpr int kBlock = 8, kTrail = 2 * kBlock, kSteps = kSubframe + kTrail;
  static constexpr Zpp16s kPassing[kLpcOrder + 1] = {4096};
  const amr::FourFactors filling(quantLpc, quantLpc, kPassing, kPassing), filtering(quantLpc, quantLpc, weight2, weight2);

  ownResidualFilter_G729_16s(quantLpc, speech + kLpcOrder, residual, kSubframe);
  amr::FourFilters<kSteps> filters;
  for (int i = 0; i <= kLpcOrder; ++i) filters.input[0][i] = weight1[i];
  for (int n = 0; n < kSubframe; n += kBlock) store(filters.input[1] + n, load(residual + n));
  for (int i = 0; i < kLpcOrder; ++i) filters.input[3][kTrail - kLpcOrder + i] = weightMem[i];
  Zpp16s error[kLpcOrder + kSubframe];
  for (int i = 0; i < kLpcOrder; ++i) error[i] = errorMem[i];
  filters.start(nullptr, errorMem, nullptr, nullptr);

  for (int n = 0; n < kSteps; n += kBlock) {
    V output[4];
    filters.run(n, n < kTrail ? filling : filtering, output);
    if (n < kSubframe) {
      store(filters.input[2] + kTrail + n, output[0]);
      store(error + kLpcOrder + n, output[1]);
      ownResidualFilter_G729_16s(weight1, error + kLpcOrder + n, filters.input[3] + kTrail + n, kBlock);
    }
    if (n < kTrail) continue;
    store(impulse + n - kTrail, output[2]);
    store(target + n - kTrail, output[3]);
  }
  if (filters.clamps())
    ownImpulseResponseTarget_GSMAMR_16s_PX(speech, weight1, weight2, quantLpc, errorMem, weightMem, impulse, residual, target);
}
