// Impulse responses of the postfilter: portable kernel.
#include <cstring>

#include "amr/postfilter/kernels.h"
#include "amr/synthesis/kernels.h"
#include "lpc/kernels.h"

void ownFormantResponses_GSMAMR_16s_PX(const FormantFilter* filters, FormantResponse* responses) {
  static constexpr Zpp16s kRest[kLpcOrder] = {};
  for (int k = 0; k < kSubframes; ++k) {
    Zpp16s* const h = responses[k].at;
    std::memset(h, 0, sizeof responses[k]);
    std::memcpy(h, filters[k].numerator, sizeof filters[k].numerator);
    ownSynthesisFilter_GSMAMR_16s(filters[k].denominator, h, h, FormantResponse::kLength, kRest);
  }
}
