// The codebooks of the three-way LSF quantiser, by mode (3GPP TS 26.090 clause 5.2.5).
#pragma once

#include "amr/lsp/tables.h"
#include "amr/rate.h"

namespace zpp::amr {

struct LsfCodebooks {
  const Zpp16s (*first)[3];
  int firstSize;
  int secondStep;  // 2: the even entries of the second codebook only
  const Zpp16s (*third)[4];
  int thirdSize;
};

inline LsfCodebooks lsfCodebooks(Mode mode) {
  if (mode == k475 || mode == k515) return {dico1Lsf3, 256, 2, mr515Lsf3, 128};
  if (mode == k795) return {mr795Lsf1, 512, 1, dico3Lsf3, 512};
  return {dico1Lsf3, 256, 1, dico3Lsf3, 512};
}

inline constexpr Zpp16s kPrediction5 = 21299;  // of the five-way quantiser from the last residual, 0.65 in Q15

}  // namespace zpp::amr
