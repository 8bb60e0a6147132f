// Impulse response, LP residual and target of a subframe: portable kernel.
#include "amr/pitch/kernels.h"
#include "lpc/kernels.h"

void ownImpulseResponseTarget_GSMAMR_16s_PX(const Zpp16s* speech, const Zpp16s* weight1, const Zpp16s* weight2,
                                            const Zpp16s* quantLpc, const Zpp16s* errorMem, const Zpp16s* weightMem,
                                            Zpp16s* impulse, Zpp16s* residual, Zpp16s* target) {
  constexpr int kScale = 12;  // coefficients are Q12
  const auto synthesise = [](const Zpp16s* coef, const Zpp16s* src, Zpp16s* dst, const Zpp16s* history) {
    ownSynthesisFilter_NR_16s(coef, src, dst, kSubframe, kScale, history);
  };

  Zpp16s response[kSubframe] = {};
  for (int i = 0; i <= kLpcOrder; ++i) response[i] = weight1[i];
  synthesise(quantLpc, response, impulse, nullptr);
  synthesise(weight2, impulse, impulse, nullptr);

  ownResidualFilter_G729_16s(quantLpc, speech + kLpcOrder, residual, kSubframe);

  Zpp16s error[kLpcOrder + kSubframe];
  for (int i = 0; i < kLpcOrder; ++i) error[i] = errorMem[i];
  synthesise(quantLpc, residual, error + kLpcOrder, errorMem);
  ownResidualFilter_G729_16s(weight1, error + kLpcOrder, target, kSubframe);
  synthesise(weight2, target, target, weightMem);
}
