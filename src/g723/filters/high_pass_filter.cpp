// High-pass filter of the input (ITU-T G.723.1 clause 2.3).
#include "core/checks.h"
#include "core/fixed_point.h"
#include "g723/filters/kernels.h"

using namespace zpp;

ZppStatus zppsHighPassFilter_G723_16s_I(Zpp16s* srcDst, Zpp32s* memory, int len) {
  if (anyNull(srcDst, memory)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  ownHighPassFilter_G723_16s_I(srcDst, memory, len);
  return zppStsOk;
}

void ownHighPassFilter_G723_16s_I(Zpp16s* srcDst, Zpp32s* memory, int len) {
  constexpr Zpp16s kPole = 32512;  // Q15: 127/128
  Zpp64s input = memory[0];
  Zpp32s result = memory[1];
  for (int n = 0; n < len; ++n) {
    result = sat32((srcDst[n] - input) * 32768 + mul32Q15(result, kPole));
    input = srcDst[n];
    srcDst[n] = roundHigh16(result);
  }
  memory[0] = static_cast<Zpp32s>(input);
  memory[1] = result;
}
