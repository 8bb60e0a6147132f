// Short-term lattices: portable kernels.
#include "core/fixed_point.h"
#include "gsmfr/kernels.h"

using namespace zpp;

void ownShortTermAnalysisFilter_GSMFR_16s_I_PX(const Zpp16s* refl, Zpp16s* srcDst, int len, Zpp16s* memory) {
  for (int n = 0; n < len; ++n) {
    Zpp16s forward = srcDst[n], backward = forward;
    for (int i = 0; i < kGsmFrOrder; ++i) {
      const Zpp16s delayed = memory[i];
      memory[i] = backward;
      backward = addSat16(delayed, mulRoundQ15(refl[i], forward));
      forward = addSat16(forward, mulRoundQ15(refl[i], delayed));
    }
    srcDst[n] = forward;
  }
}

void ownShortTermSynthesisFilter_GSMFR_16s_PX(const Zpp16s* refl, const Zpp16s* src, Zpp16s* dst, int len, Zpp16s* memory) {
  for (int n = 0; n < len; ++n) {
    Zpp16s forward = subSat16(src[n], mulRoundQ15(refl[kGsmFrOrder - 1], memory[kGsmFrOrder - 1]));
    for (int i = kGsmFrOrder - 2; i >= 0; --i) {
      forward = subSat16(forward, mulRoundQ15(refl[i], memory[i]));
      memory[i + 1] = addSat16(memory[i], mulRoundQ15(refl[i], forward));
    }
    dst[n] = memory[0] = forward;
  }
}

void ownSpeechSynthesis_GSMFR_16s_PX(const Zpp16s* refl, const Zpp16s* src, Zpp16s* dst, Zpp16s* memory, Zpp16s* emphasis) {
  for (int part = 0; part < kGsmFrParts; ++part) {
    const int begin = kGsmFrPartBounds[part], len = kGsmFrPartBounds[part + 1] - begin;
    ownShortTermSynthesisFilter_GSMFR_16s_PX(refl + kGsmFrOrder * part, src + begin, dst + begin, len, memory);
  }
  ownDeemphasize_GSMFR_16s_I_PX(dst, kGsmFrPartBounds[kGsmFrParts], emphasis);
}
