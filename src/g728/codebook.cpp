// Excitation codebook: search preparation, search, and the gain-scaled code vector (ITU-T G.728 clause 3.9, blocks 12 to 19,
// 21, 24, 29 and 31, Annex G).
#include "core/checks.h"
#include "g728/arithmetic.h"
#include "g728/kernels.h"
#include "g728/rate.h"

using namespace zpp;
using namespace zpp::g728;

namespace {

// Time-reversed convolution of the normalised target with the impulse response (block 13)
void backwardFilter(const Block& target, const Zpp16s* response, Zpp16s* dst) {
  for (int n = 0; n < kVector; ++n) {
    Zpp64s sum = 0;
    for (int m = n; m < kVector; ++m) sum += response[m - n] * target.mantissa[m];
    dst[n] = sat16(shifted(sat32(sum), -6 - target.q));
  }
}

}  // namespace

ZppStatus zppsImpulseResponse_G728_16s(const Zpp16s* coef, const Zpp16s* coefZero, const Zpp16s* coefPole, Zpp16s* dst) {
  if (anyNull(coef, coefZero, coefPole, dst)) return zppStsNullPointer;
  Zpp16s synthesis[kVector] = {8192}, cascade[kVector] = {8192};
  for (int n = 1; n < kVector; ++n) {
    Zpp64s sum = 0, whole = 0;
    for (int k = 0; k < n; ++k) {
      sum -= coef[k] * synthesis[n - 1 - k];
      whole += coefZero[k] * synthesis[n - 1 - k] - Zpp64s{coefPole[k] * cascade[n - 1 - k]};
    }
    synthesis[n] = sat16(sum >> 14);
    cascade[n] = sat16((sum + whole) >> 14);
  }
  std::copy_n(cascade, kVector, dst);
  return zppStsOk;
}

ZppStatus zppsShapeEnergy_G728_16s(const Zpp16s* src, Zpp16s* dst) {
  if (anyNull(src, dst)) return zppStsNullPointer;
  ownShapeEnergy_G728_16s(src, dst);
  return zppStsOk;
}

ZppStatus zppsTargetNormalize_G728_16s(const Zpp16s* src, const Zpp16s* gain, Zpp16s* dst) {
  if (anyNull(src, gain, dst)) return zppStsNullPointer;
  const Floating g = loadGain(gain);
  const Floating inverse = quotient(16384, 14, g.mantissa, g.q);
  Block target;
  for (int k = 0; k < kVector; ++k) target.mantissa[k] = sat16((inverse.mantissa * src[k]) >> 15);
  target.q = 2 + inverse.q - 15;
  target.normalise(16);
  target.store(dst);
  return zppStsOk;
}

ZppStatus zppsCodebookSearch_G728_16s(const Zpp16s* target, const Zpp16s* response, const Zpp16s* energy, Zpp32s* index,
                                      Zpp32s rate) {
  if (anyNull(target, response, energy, index)) return zppStsNullPointer;
  if (!isRate(rate)) return zppStsOutOfRange;
  if (!hasCodebook(rate)) return zppStsBadArgument;
  Zpp16s filtered[kVector];
  backwardFilter(Block::load(target), response, filtered);
  *index = ownCodebookSearch_G728_16s(filtered, energy);
  return zppStsOk;
}

ZppStatus zppsExcitationVector_G728_16s(const Zpp16s* gain, Zpp16s* dst, Zpp32s index, Zpp32s rate) {
  if (anyNull(gain, dst)) return zppStsNullPointer;
  if (!isRate(rate)) return zppStsOutOfRange;
  if (outside(index, 0, kCodes - 1)) return zppStsBadCodedParam;
  if (!hasCodebook(rate)) return zppStsBadArgument;
  const Floating g = loadGain(gain);
  const Zpp16s* shape = shapeCodebook[index >> 3];
  const int shift = gainShift[index & 7], shapeShift = normShift(shape, kVector, 16);
  const Zpp16s factor = rounded(Zpp64s{g.mantissa} * gainCodebook[index & 7] * (1 << shift));
  Block excitation;
  for (int k = 0; k < kVector; ++k) excitation.mantissa[k] = rounded(Zpp64s{factor} * shape[k] * (1 << shapeShift));
  excitation.q = g.q + 13 + shift - 16 + 11 + shapeShift - 16;
  excitation.store(dst);
  return zppStsOk;
}

ZppStatus zppsConvertBlock_G728_16s_Sfs(const Zpp16s* src, Zpp16s* dst, int scale) {
  if (anyNull(src, dst)) return zppStsNullPointer;
  if (outside(scale, 0, 15)) return zppStsBadScale;
  const Block b = Block::load(src);
  for (int k = 0; k < kVector; ++k) dst[k] = rounded(shifted(b.mantissa[k], 16 - b.q + scale));
  return zppStsOk;
}
