// Decoding and concealment of the ISFs (3GPP TS 26.190 clause 6.1, TS 26.191 clause 6.3.3.1).
#include <algorithm>

#include "amrwb/isf/codebooks.h"
#include "amrwb/isf/kernels.h"
#include "core/checks.h"

using namespace zpp;
using namespace zpp::amrwb;

namespace {

constexpr int kHistory = 3;  // good frames whose mean the ISFs of lost ones approach

// Nine tenths of the last ISFs and one of the mean of the mean ISFs and the last three good frames
void conceal(Zpp16s* pastResidual, const Zpp16s* prevIsf, const Zpp16s* isfHistory, Zpp16s* isf) {
  for (int i = 0; i < kOrder; ++i) {
    Zpp32s sum = mulDbl(meanIsf[i], 8192);
    for (int j = 0; j < kHistory; ++j) sum = macDbl(sum, isfHistory[kOrder * j + i], 8192);
    const Zpp16s reference = roundHigh16(sum);
    isf[i] = addSat16(mulQ15(29491, prevIsf[i]), mulQ15(3277, reference));
    const Zpp16s predicted = addSat16(reference, mulQ15(pastResidual[i], kPrediction));
    pastResidual[i] = static_cast<Zpp16s>(subSat16(isf[i], predicted) >> 1);
  }
  separate(isf);
}

}  // namespace

ZppStatus zppsISFDecode_AMRWB_16s(const Zpp16s* index, Zpp16s* pastResidual, const Zpp16s* prevIsf, Zpp16s* isfHistory,
                                  Zpp16s* isf, int badFrame, ZppSpeechRate rate) {
  if (anyNull(index, pastResidual, prevIsf, isfHistory, isf)) return zppStsNullPointer;
  if (outside(badFrame, 0, 1) || !isSpeechRate(rate)) return zppStsOutOfRange;
  ownISFDecode_AMRWB_16s(index, pastResidual, prevIsf, isfHistory, isf, badFrame == 1, modeOf(rate));
  return zppStsOk;
}

void ownISFReconstruct_AMRWB_16s(const Zpp16s* index, Zpp16s* pastResidual, Zpp16s* isf, Zpp16s* unordered, Mode mode) {
  Zpp16s residual[kOrder];
  for (int i = 0; i < kOrder; ++i)
    residual[i] =
        i < kStage1High.first ? kStage1Low.component(index[0], i) : kStage1High.component(index[1], i - kStage1High.first);
  const SecondStage stage2 = secondStage(mode);
  for (int part = 0; part < stage2.count; ++part) {
    const Codebook& book = stage2.parts[part];
    for (int i = 0; i < book.dimension; ++i)
      residual[book.first + i] = addSat16(residual[book.first + i], book.component(index[2 + part], i));
  }
  for (int i = 0; i < kOrder; ++i) {
    isf[i] = addSat16(addSat16(residual[i], meanIsf[i]), mulQ15(kPrediction, pastResidual[i]));
    pastResidual[i] = residual[i];
  }
  if (unordered != nullptr) std::copy_n(isf, kOrder, unordered);
  separate(isf);
}

void ownISFDecode_AMRWB_16s(const Zpp16s* index, Zpp16s* pastResidual, const Zpp16s* prevIsf, Zpp16s* isfHistory, Zpp16s* isf,
                            bool badFrame, Mode mode) {
  if (badFrame) {
    conceal(pastResidual, prevIsf, isfHistory, isf);
    return;
  }
  std::copy_backward(isfHistory, isfHistory + kOrder * (kHistory - 1), isfHistory + kOrder * kHistory);
  ownISFReconstruct_AMRWB_16s(index, pastResidual, isf, isfHistory, mode);
}
