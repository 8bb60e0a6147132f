// The codebooks of the three-way LSF quantiser, by mode (3GPP TS 26.090 clause 5.2.5).
#pragma once

#include "amr/lsp/tables.h"
#include "amr/rate.h"

namespace zpp::amr {

struct LsfCodebooks {
  const LsfCodebook &first, &second, &third;  // of 3, 3 and 4 elements
};

inline LsfCodebooks lsfCodebooks(Mode mode) {
  if (mode == k475 || mode == k515) return {dico1Lsf3, dico2Lsf3Even, mr515Lsf3};
  if (mode == k795) return {mr795Lsf1, dico2Lsf3, dico3Lsf3};
  return {dico1Lsf3, dico2Lsf3, dico3Lsf3};
}

inline constexpr Zpp16s kPrediction5 = 21299;  // of the five-way quantiser from the last residual, 0.65 in Q15

}  // namespace zpp::amr
