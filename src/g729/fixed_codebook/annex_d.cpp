// Fixed codebook of two signed pulses in 11 bits for 6.4 kbit/s (ITU-T G.729 Annex D, clause D.5)
#include "core/checks.h"
#include "core/kernels.h"
#include "g729/fixed_codebook/kernels.h"
#include "g729/fixed_codebook/fixed_codebook.h"

using namespace zpp;

namespace {

void searchAnnexD(const Zpp16s* target, const Zpp16s* impulse, Zpp16s* code, Zpp16s* filtered, Zpp16s* sign, Zpp16s* position) {
  Zpp16s matrix[kMatrix];
  ownToeplizMatrix_G729D_16s(impulse, matrix);
  const SignedTarget signedTarget(target);
  ownFoldSigns_G729(signedTarget.sign, kTrackPairsAnnexD, matrix);
  Zpp8u pulse[2];
  ownD2i40_11(signedTarget.magnitude, matrix, pulse);

  ownSet_16s(0, code, kSubframe);
  ownSet_16s(0, filtered, kSubframe);
  Zpp32s signs = 0;
  for (int n = 0; n < 2; ++n) {
    const bool positive = signedTarget.positive(pulse[n] % kTracks, pulse[n] / kTracks);
    signs |= positive ? 1 << n : 0;
    // Both pulses may fall on one sample of track 1.
    code[pulse[n]] = static_cast<Zpp16s>(code[pulse[n]] + SignedTarget::amplitude(positive));
    for (int i = pulse[n]; i < kSubframe; ++i) {
      const Zpp16s h = impulse[i - pulse[n]];
      filtered[i] = positive ? addSat16(filtered[i], h) : subSat16(filtered[i], h);
    }
  }
  *sign = static_cast<Zpp16s>(signs);
  *position = positionWordAnnexD(pulse[0], pulse[1]);
}

}  // namespace

ZppStatus zppsFixedCodebookSearch_G729D_16s(const Zpp16s* target, const Zpp16s* impulse, Zpp16s* code, Zpp16s* filtered,
                                            Zpp16s* sign, Zpp16s* position) {
  if (anyNull(target, impulse, code, filtered, sign, position)) return zppStsNullPointer;
  searchAnnexD(target, impulse, code, filtered, sign, position);
  return zppStsOk;
}
