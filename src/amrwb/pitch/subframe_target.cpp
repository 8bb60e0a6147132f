// LP residual, targets and impulse response of a subframe (3GPP TS 26.190 clauses 5.5 and 5.6).
#include <algorithm>

#include "amrwb/filters/kernels.h"
#include "amrwb/pitch/kernels.h"
#include "core/checks.h"

using namespace zpp;
using namespace zpp::amrwb;

ZppStatus zppsImpulseResponseTarget_AMRWB_16s(const Zpp16s* speech, const Zpp16s* weightLpc, const Zpp16s* quantLpc,
                                              const Zpp16s* synMem, Zpp16s* residual, Zpp16s* target, Zpp16s* residualTarget,
                                              Zpp16s* impulse, Zpp16s weightMem) {
  if (anyNull(speech, weightLpc, quantLpc, synMem, residual, target, residualTarget, impulse)) return zppStsNullPointer;
  ownImpulseResponseTarget_AMRWB_16s(speech, weightLpc, quantLpc, synMem, residual, target, residualTarget, impulse, weightMem);
  return zppStsOk;
}

void ownImpulseResponseTarget_AMRWB_16s(const Zpp16s* speech, const Zpp16s* weightLpc, const Zpp16s* quantLpc,
                                        const Zpp16s* synMem, Zpp16s* residual, Zpp16s* target, Zpp16s* residualTarget,
                                        Zpp16s* impulse, Zpp16s weightMem) {
  constexpr Zpp16s tilt = 22282;  // 0.68
  constexpr int half = kSubframe / 2;

  ownResidualFilter_AMRWB_16s(quantLpc, speech, residual, kSubframe);

  // The target: the error of the synthesis without new excitation, weighted.
  Zpp16s error[kOrder + kSubframe], filterMem[kOrder];
  for (int n = 0; n < kOrder; ++n) error[n] = filterMem[n] = subSat16(speech[n - kOrder], synMem[n]);
  std::copy_n(residual, kSubframe, error + kOrder);
  synthesise(quantLpc, error + kOrder, kSubframe, kOrder, filterMem);
  ownResidualFilter_AMRWB_16s(weightLpc, error + kOrder, target, kSubframe);

  // Response of A(z/g) / A^(z), eightfold, and of the de-emphasis
  std::fill_n(filterMem, kOrder, Zpp16s{0});
  std::copy_n(weightLpc, kOrder + 1, impulse);
  std::fill_n(impulse + kOrder + 1, kSubframe - kOrder - 1, Zpp16s{0});
  ownSynthesisFilter_AMRWB_16s_I(quantLpc, kOrder, 16384, 3, impulse, kSubframe, filterMem);
  ownDeemphasizeTwo_AMRWB_16s_I(target, impulse, kSubframe, tilt, weightMem, 0);

  // The target in the domain of the residual: the first half filtered back, the second half left as the residual.
  Zpp16s filteredBack[kOrder + half] = {};
  Zpp16s* const back = filteredBack + kOrder;
  std::copy_n(target, half, back);
  Zpp16s zero = 0;
  ownPreemphasize_AMRWB_16s_I(back, half, tilt, 2, &zero);
  std::fill_n(filterMem, kOrder, Zpp16s{0});
  synthesise(weightLpc, back, half, kOrder, filterMem);
  ownResidualFilter_AMRWB_16s(quantLpc, back, residualTarget, half);
  std::copy_n(residual + half, half, residualTarget + half);
}
