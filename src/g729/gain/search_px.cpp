// Search of the gain codebooks: portable kernel.
#include "g729/gain/kernels.h"

using namespace zpp;

int ownWeightedMSE_G729_PX(const GainSearch& search) {
  const Dpf* factor = search.factor;
  int best = search.secondFrom;
  Zpp32s leastError = kMax32;
  for (int i = 0; i < search.firstRows; ++i)
    for (int k = search.secondFrom; k < search.secondFrom + search.secondRows; ++k) {
      const Zpp16s pitch = addSat16(search.first[i][0], search.second[k][0]);
      if (pitch >= search.pitchLimit) continue;
      const Zpp16s code = mulQ15(search.predicted, static_cast<Zpp16s>((search.first[i][1] + search.second[k][1]) >> 1));
      Zpp32s error = mulDpf16(factor[0], mulQ15(pitch, pitch));
      error = addSat32(error, mulDpf16(factor[1], pitch));
      error = addSat32(error, mulDpf16(factor[2], mulQ15(code, code)));
      error = addSat32(error, mulDpf16(factor[3], code));
      error = addSat32(error, mulDpf16(factor[4], mulQ15(code, pitch)));
      if (error < leastError) {
        leastError = error;
        best = 8 * i + k;
      }
    }
  return best;
}
