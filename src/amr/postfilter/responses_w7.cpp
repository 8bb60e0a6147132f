// Impulse responses of the postfilter: SSE2 kernel, all four subframes side by side.
#include <cstdlib>
#include <cstring>

#include "amr/four_filters_w7.h"
#include "amr/postfilter/kernels.h"
#include "core/fixed_point.h"
#include "core/kernels.h"

using namespace zpp;

void ownFormantResponses_GSMAMR_16s_W7(const FormantFilter* filters, FormantResponse* responses) {
  constexpr int kLength = FormantResponse::kLength;
  const amr::FourFactors factors(filters[0].denominator, filters[1].denominator, filters[2].denominator,
                                 filters[3].denominator);
  amr::FourFilters<kLength> four;
  for (int k = 0; k < kSubframes; ++k) std::memcpy(four.input[k], filters[k].numerator, sizeof filters[k].numerator);
  four.start(nullptr, nullptr, nullptr, nullptr);
  for (int n = 0; n < kLength; n += four.kBlock) {
    V output[4];
    four.run(n, factors, output);
    for (int k = 0; k < kSubframes; ++k) store(responses[k].at + n, output[k]);
  }
  // The standard saturates at every step. Half of a sum stays below 2^30, and nothing of it saturates, while the coefficients'
  // magnitudes times the largest input or output do.
  bool exact = !four.clamps();
  for (int k = 0; k < kSubframes; ++k) {
    int magnitudes = 0;
    for (const Zpp16s a : filters[k].denominator) magnitudes += std::abs(a);
    const Zpp16s ofInputs = ownMaxAbs_16s(filters[k].numerator, kLpcOrder + 1),
                 ofOutputs = ownMaxAbs_16s(responses[k].at, kLength);
    exact = exact && ofOutputs < kMax16 && Zpp64s{magnitudes} * ((ofInputs > ofOutputs ? ofInputs : ofOutputs) + 1) < 1 << 30;
  }
  if (!exact) ownFormantResponses_GSMAMR_16s_PX(filters, responses);
}
