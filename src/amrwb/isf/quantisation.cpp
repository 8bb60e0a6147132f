// Predictive split multi-stage vector quantisation of the ISFs (3GPP TS 26.190 clause 5.2.6).
#include <algorithm>

#include "amrwb/isf/codebooks.h"
#include "amrwb/isf/kernels.h"
#include "core/checks.h"

using namespace zpp;
using namespace zpp::amrwb;

namespace {

constexpr int kSurvivors = 4, kMaxDimension = 9, kMaxEntries = 256;

// The entries nearest to x, nearest first, earlier ones before later ones of the same distance (VQ_stage1)
void nearestFour(const Zpp16s* x, const Codebook& book, int (&survivor)[kSurvivors]) {
  Zpp32s least[kSurvivors];
  for (int k = 0; k < kSurvivors; ++k) least[k] = kMax32, survivor[k] = k;
  alignas(16) Zpp32s distance[kMaxEntries];
  ownIsfDistances_AMRWB_16s(x, book.components, book.dimension, book.entries, distance);
  for (int entry = 0; entry < book.entries; ++entry) {
    const Zpp32s d = distance[entry];
    if (d >= least[kSurvivors - 1]) continue;
    int k = kSurvivors - 1;
    for (; k > 0 && d < least[k - 1]; --k) least[k] = least[k - 1], survivor[k] = survivor[k - 1];
    least[k] = d;
    survivor[k] = entry;
  }
}

// Quantises one part of the ISFs by its first stage and the second stages parts[0..count-1].
void quantise(const Zpp16s* x, const Codebook& stage1, const Codebook* parts, int count, Zpp16s* stage1Index,
              Zpp16s* partIndex) {
  int survivor[kSurvivors];
  nearestFour(x + stage1.first, stage1, survivor);
  Zpp32s least = kMax32;
  for (int k = 0; k < kSurvivors; ++k) {
    Zpp16s rest[kMaxDimension];
    for (int i = 0; i < stage1.dimension; ++i) rest[i] = subSat16(x[stage1.first + i], stage1.component(survivor[k], i));
    Zpp32s total = 0;
    int index[3];
    for (int part = 0; part < count; ++part) {
      const Codebook& book = parts[part];
      const NearestEntry nearest =
          ownNearestIsf_AMRWB_16s(rest + (book.first - stage1.first), book.components, book.dimension, book.entries);
      index[part] = nearest.index;
      total = addSat32(total, nearest.distance);
    }
    if (k > 0 && total >= least) continue;
    least = total;
    *stage1Index = static_cast<Zpp16s>(survivor[k]);
    for (int part = 0; part < count; ++part) partIndex[part] = static_cast<Zpp16s>(index[part]);
  }
}

}  // namespace

ZppStatus zppsISFQuant_AMRWB_16s(const Zpp16s* isf, Zpp16s* pastResidual, Zpp16s* quantIsf, Zpp16s* index, ZppSpeechRate rate) {
  if (anyNull(isf, pastResidual, quantIsf, index)) return zppStsNullPointer;
  if (!isSpeechRate(rate)) return zppStsOutOfRange;
  ownISFQuant_AMRWB_16s(isf, pastResidual, quantIsf, index, modeOf(rate));
  return zppStsOk;
}

void ownISFQuant_AMRWB_16s(const Zpp16s* isf, Zpp16s* pastResidual, Zpp16s* quantIsf, Zpp16s* index, Mode mode) {
  Zpp16s x[kOrder];
  for (int i = 0; i < kOrder; ++i) x[i] = subSat16(subSat16(isf[i], meanIsf[i]), mulQ15(kPrediction, pastResidual[i]));
  const SecondStage stage2 = secondStage(mode);
  Zpp16s* const partIndex = index + 2;
  quantise(x, kStage1Low, stage2.parts, stage2.lowParts, &index[0], partIndex);
  quantise(x, kStage1High, stage2.parts + stage2.lowParts, stage2.count - stage2.lowParts, &index[1],
           partIndex + stage2.lowParts);
  ownISFReconstruct_AMRWB_16s(index, pastResidual, quantIsf, nullptr, mode);
}
