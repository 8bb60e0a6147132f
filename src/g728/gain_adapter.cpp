// Backward vector gain adapter in the logarithmic domain (ITU-T G.728 clause 3.8, blocks 39, 40, 46 to 48 and 67, Annex G).
#include "core/checks.h"
#include "g728/arithmetic.h"
#include "g728/rate.h"

using namespace zpp;
using namespace zpp::g728;

namespace {

constexpr int kOffset = 16384;                     // 32 dB, by which the logarithms are below the levels, Q9
constexpr int kLowest = -16384, kHighest = 14336;  // 0 and 60 dB
constexpr int kGrowth = 1024;                      // 2 dB

// 10^(level / 20), level in dB, Q9
void toLinear(int level, Zpp16s* gain) {
  const int logarithm = 10 * level + rounded(Zpp64s{20649 * 2} * level);  // base 2, Q15
  const int exponent = logarithm >> 15;
  const int x = logarithm - exponent * 32768;
  Zpp16s y = rounded(Zpp64s{2} * powerOfTwo[4] * x + powerOfTwo[3] * 65536);
  y = rounded(Zpp64s{2} * y * x + powerOfTwo[2] * 65536);
  y = rounded(Zpp64s{2} * y * x + powerOfTwo[1] * 65536);
  gain[0] = rounded(Zpp64s{y} * x + powerOfTwo[0] * 65536);
  gain[1] = static_cast<Zpp16s>(14 - exponent);
}

}  // namespace

ZppStatus zppsLogGainPredict_G728_16s(const Zpp16s* coef, const Zpp16s* src, const Zpp16s* previous, Zpp16s* logGain,
                                      Zpp16s* gain) {
  if (anyNull(coef, src, logGain, gain)) return zppStsNullPointer;
  Zpp64s sum = 0;
  for (int k = 0; k < 10; ++k) sum -= coef[k] * src[9 - k];
  int predicted = std::clamp(sat32(sum) >> 14, kLowest, kHighest);
  if (previous != nullptr && predicted - *previous > kGrowth) predicted = addSat16(*previous, kGrowth);
  *logGain = static_cast<Zpp16s>(predicted);
  toLinear(predicted + kOffset, gain);
  return zppStsOk;
}

ZppStatus zppsLogGainUpdate_G728_16s(Zpp16s logGain, Zpp16s* dst, Zpp32s index, Zpp32s rate) {
  if (anyNull(dst)) return zppStsNullPointer;
  if (!isRate(rate)) return zppStsOutOfRange;
  if (outside(index, 0, kCodes - 1)) return zppStsBadCodedParam;
  if (!hasCodebook(rate)) return zppStsBadArgument;
  const int level = (logGain * 128 + gainLevel[index & 7] * 32 + shapeLevel[index >> 3] * 32) >> 7;
  *dst = sat16(std::max(level, kLowest));
  return zppStsOk;
}
