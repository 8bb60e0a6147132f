// Search of the gain codebooks: portable kernel.
#include "amrwb/gain/kernels.h"
#include "core/fixed_point.h"

using namespace zpp;

int ownSearchGains_AMRWB_16s_PX(const Zpp16s (*pairs)[2], int count, Zpp16s predicted, const amrwb::GainError* error) {
  const Zpp16s *coarse = error->coarse, *fine = error->fine;
  int best = 0;
  Zpp32s least = kMax32;
  for (int i = 0; i < count; ++i) {
    const Zpp16s pitch = pairs[i][0], code = mulRoundQ15(pairs[i][1], predicted);
    const Zpp16s pitchSquare = mulRoundQ15(pitch, pitch), product = mulRoundQ15(code, pitch);
    const Dpf codeSquare = toDpf(mulDbl(code, code));
    Zpp32s sum = mulDbl(coarse[2], codeSquare.lo) >> 3;
    sum = macDbl(sum, fine[0], pitchSquare);
    sum = macDbl(sum, fine[1], pitch);
    sum = macDbl(sum, fine[2], codeSquare.hi);
    sum = macDbl(sum, fine[3], code);
    sum = macDbl(sum, fine[4], product);
    sum >>= 12;
    sum = macDbl(sum, coarse[0], pitchSquare);
    sum = macDbl(sum, coarse[1], pitch);
    sum = macDbl(sum, coarse[2], codeSquare.hi);
    sum = macDbl(sum, coarse[3], code);
    sum = macDbl(sum, coarse[4], product);
    if (sum < least) least = sum, best = i;
  }
  return best;
}
