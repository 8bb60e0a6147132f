// Short-term analysis and synthesis lattices (3GPP TS 46.010 clauses 5.2.10, 5.3.3).
#include "core/checks.h"
#include "gsmfr/kernels.h"

using namespace zpp;

ZppStatus zppsShortTermAnalysisFilter_GSMFR_16s_I(const Zpp16s* refl, Zpp16s* srcDst, int len, Zpp16s* memory) {
  if (anyNull(refl, srcDst, memory)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  ownShortTermAnalysisFilter_GSMFR_16s_I(refl, srcDst, len, memory);
  return zppStsOk;
}

ZppStatus zppsShortTermSynthesisFilter_GSMFR_16s(const Zpp16s* refl, const Zpp16s* src, Zpp16s* dst, int len, Zpp16s* memory) {
  if (anyNull(refl, src, dst, memory)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  ownShortTermSynthesisFilter_GSMFR_16s(refl, src, dst, len, memory);
  return zppStsOk;
}

ZppStatus zppsSpeechSynthesis_GSMFR_16s(const Zpp16s* refl, const Zpp16s* src, Zpp16s* dst, Zpp16s* memory, Zpp16s* emphasis) {
  if (anyNull(refl, src, dst, memory, emphasis)) return zppStsNullPointer;
  ownSpeechSynthesis_GSMFR_16s(refl, src, dst, memory, emphasis);
  return zppStsOk;
}
