// LSF quantisation with a switched moving-average predictor and a two-stage codebook (ITU-T G.729 clause 3.2.4), its decoder,
// and the decoder's step in an erased frame (clause 4.4.1).
#include "core/checks.h"
#include "core/fixed_point.h"
#include "g729/lsp/kernels.h"
#include "g729/lsp/tables.h"

using namespace zpp;

namespace {

// Stability limits, Q13
constexpr Zpp16s kLowestLsf = 40, kHighestLsf = 25681, kLsfGap = 321;

// Spreads neighbours that are closer than the gap.
void ownLspExpand(Zpp16s* codeVector, Zpp16s gap) {
  for (int j = 1; j < 10; ++j) {
    const Zpp16s excess = wrap16(codeVector[j - 1] - codeVector[j] + gap);
    if (excess <= 0) continue;
    codeVector[j - 1] = wrap16(codeVector[j - 1] - (excess >> 1));
    codeVector[j] = wrap16(codeVector[j] + (excess >> 1));
  }
}

void ownLspPrevCompose(const MaPredictor& predictor, const Zpp16s* codeVector, const Zpp16s* maMem, Zpp16s* lsf) {
  for (int j = 0; j < 10; ++j) {
    Zpp32s sum = codeVector[j] * predictor.complement[j];
    for (int k = 0; k < 4; ++k) sum += maMem[10 * k + j] * predictor.coefficient[k][j];
    lsf[j] = wrap16(sum >> 15);
  }
}

ZppStatus ownLspStability(Zpp16s* lsf) {
  swapReversed(lsf);
  const bool low = lsf[0] < kLowestLsf;
  if (low) lsf[0] = kLowestLsf;
  for (int i = 1; i < 10; ++i) {
    const Zpp16s least = addSat16(lsf[i - 1], kLsfGap);
    if (lsf[i] < least) lsf[i] = least;
  }
  const bool high = lsf[9] > kHighestLsf;
  if (high) lsf[9] = kHighestLsf;
  return clampStatus(low, high);
}

// Weighted distance between the code vector and the target, in the domain of the composed LSF
Zpp32s ownLspGetTdist(const MaPredictor& predictor, const Zpp16s* codeVector, const Zpp16s* target, const Zpp16s* weight) {
  Zpp32s distance = 0;
  for (int j = 0; j < 10; ++j) {
    const Zpp16s error = mulQ15(subSat16(codeVector[j], target[j]), predictor.complement[j]);
    distance = macDbl(distance, high16(shlSat32(mulDbl(weight[j], error), 4)), error);
  }
  return distance;
}

// A decoded code vector and the index fields that select it: fields beyond their width count by their low bits.
void codeVectorOf(const Zpp16s* index, Zpp16s* codeVector) {
  ownLspGetQuant(index[1] & 127, index[2] & 31, index[3] & 31, codeVector);
}

}  // namespace

MaPredictor ownMaPredictor(int mode) { return {fg[mode], fg_sum[mode], fg_sum_inv[mode]}; }

MaPredictor ownNoiseMaPredictor(int mode) { return {noise_fg[mode], noise_fg_sum[mode], noise_fg_sum_inv[mode]}; }

void ownGetWgt(const Zpp16s* lsf, Zpp16s* weight) {
  // Distance of the two neighbours beyond 1.0, the ends of the range (0.04 pi, 0.92 pi) standing in at the borders
  Zpp16s spacing[10];
  spacing[0] = subSat16(lsf[1], 1029 + 8192);
  for (int i = 1; i < 9; ++i) spacing[i] = subSat16(subSat16(lsf[i + 1], lsf[i - 1]), 8192);
  spacing[9] = subSat16(23677 - 8192, lsf[8]);

  Zpp16s largest = 0;
  for (int i = 0; i < 10; ++i) {
    weight[i] = 2048;  // Q11
    if (spacing[i] <= 0) {
      const Zpp16s square = high16(shlSat32(mulDbl(spacing[i], spacing[i]), 2));
      weight[i] = addSat16(high16(shlSat32(mulDbl(square, 20480), 2)), 2048);  // 10 times the square, plus 1
    }
    if (i == 4 || i == 5) weight[i] = high16(shlSat32(mulDbl(weight[i], 19661), 1));  // times 1.2
    largest = weight[i] > largest ? weight[i] : largest;
  }
  const int shift = norm16(largest);
  for (int i = 0; i < 10; ++i) weight[i] = shlSat16(weight[i], shift);
}

void ownLspPrevExtract(const MaPredictor& predictor, const Zpp16s* lsf, const Zpp16s* maMem, Zpp16s* codeVector) {
  for (int j = 0; j < 10; ++j) {
    Zpp32s rest = fromHigh16(lsf[j]);
    for (int k = 0; k < 4; ++k) rest = subSat32(rest, 2 * maMem[10 * k + j] * predictor.coefficient[k][j]);
    codeVector[j] = high16(shlSat32(mulDbl(high16(rest), predictor.inverse[j]), 3));
  }
}

void ownLspGetQuant(int first, int lower, int upper, Zpp16s* codeVector) {
  for (int j = 0; j < 10; ++j) codeVector[j] = addSat16(LSPCode1[first][j], LSPCode2[j < 5 ? lower : upper][j]);
  ownLspExpand(codeVector, 10);
  ownLspExpand(codeVector, 5);
}

ZppStatus ownLspCompose(const MaPredictor& predictor, const Zpp16s* codeVector, const Zpp16s* maMem, Zpp16s* quantLsf) {
  ownLspPrevCompose(predictor, codeVector, maMem, quantLsf);
  return ownLspStability(quantLsf);
}

void ownRelspwed(const Zpp16s* lsf, const Zpp16s* maMem, Zpp16s* index) {
  Zpp16s weight[10];
  ownGetWgt(lsf, weight);
  Zpp32s leastDistance = 0;
  for (int mode = 0; mode < 2; ++mode) {
    const MaPredictor predictor = ownMaPredictor(mode);
    Zpp16s target[10], residual[10], codeVector[10];
    Zpp16s candidate[4] = {static_cast<Zpp16s>(mode)};
    ownLspPrevExtract(predictor, lsf, maMem, target);
    candidate[1] = static_cast<Zpp16s>(ownLspPreSelect(target));
    for (int j = 0; j < 10; ++j) residual[j] = subSat16(target[j], LSPCode1[candidate[1]][j]);
    ownLspSelect2(residual, weight, candidate + 2);
    codeVectorOf(candidate, codeVector);
    const Zpp32s distance = ownLspGetTdist(predictor, codeVector, target, weight);
    if (mode == 1 && distance >= leastDistance) break;
    leastDistance = distance;
    for (int i = 0; i < 4; ++i) index[i] = candidate[i];
  }
}

ZppStatus ownLSFQuant_G729_16s(const Zpp16s* lsf, Zpp16s* maMem, Zpp16s* quantLsf, Zpp16s* index) {
  ownRelspwed(lsf, maMem, index);
  return ownLSFDecode_G729_16s(index, maMem, quantLsf);
}

ZppStatus ownLSFDecode_G729_16s(const Zpp16s* index, Zpp16s* maMem, Zpp16s* quantLsf) {
  Zpp16s codeVector[10];
  codeVectorOf(index, codeVector);
  const ZppStatus status = ownLspCompose(ownMaPredictor(index[0] & 1), codeVector, maMem, quantLsf);
  shiftIntoMemory(codeVector, maMem);
  return status;
}

void ownLSFDecodeErased_G729_16s(int mode, Zpp16s* maMem, const Zpp16s* lsf) {
  Zpp16s codeVector[10];
  ownLspPrevExtract(ownMaPredictor(mode & 1), lsf, maMem, codeVector);
  shiftIntoMemory(codeVector, maMem);
}

ZppStatus ownLSPQuant_G729E_16s(const Zpp16s* lsp, const Zpp16s* maMem, Zpp16s* codeVector, Zpp16s* quantLsp, Zpp16s* code) {
  Zpp16s lsf[10], index[4];
  ownLSPToLSF_G729_16s(lsp, lsf);
  ownRelspwed(lsf, maMem, index);
  codeVectorOf(index, codeVector);
  ownLspCompose(ownMaPredictor(index[0]), codeVector, maMem, lsf);
  code[0] = static_cast<Zpp16s>(index[0] << 7 | index[1]);
  code[1] = static_cast<Zpp16s>(index[2] << 5 | index[3]);
  return ownLSFToLSP_G729_16s(lsf, quantLsp);
}

ZppStatus ownLSPQuant_G729_16s(const Zpp16s* lsp, Zpp16s* maMem, Zpp16s* quantLsp, Zpp16s* code) {
  Zpp16s codeVector[10];
  const ZppStatus status = ownLSPQuant_G729E_16s(lsp, maMem, codeVector, quantLsp, code);
  shiftIntoMemory(codeVector, maMem);
  return status;
}

ZppStatus zppsLSFQuant_G729_16s(const Zpp16s* lsf, Zpp16s* maMem, Zpp16s* quantLsf, Zpp16s* idx) {
  if (anyNull(lsf, maMem, quantLsf, idx)) return zppStsNullPointer;
  return ownLSFQuant_G729_16s(lsf, maMem, quantLsf, idx);
}

ZppStatus zppsLSPQuant_G729_16s(const Zpp16s* lsp, Zpp16s* maMem, Zpp16s* quantLsp, Zpp16s* code) {
  if (anyNull(lsp, maMem, quantLsp, code)) return zppStsNullPointer;
  return ownLSPQuant_G729_16s(lsp, maMem, quantLsp, code);
}

ZppStatus zppsLSFDecode_G729_16s(const Zpp16s* idx, Zpp16s* maMem, Zpp16s* quantLsf) {
  if (anyNull(idx, maMem, quantLsf)) return zppStsNullPointer;
  if (outside<int>(idx[0], 0, 3)) return zppStsBadCodedParam;
  return ownLSFDecode_G729_16s(idx, maMem, quantLsf);
}

ZppStatus zppsLSFDecodeErased_G729_16s(Zpp16s maMode, Zpp16s* maMem, const Zpp16s* lsf) {
  if (anyNull(maMem, lsf)) return zppStsNullPointer;
  if (outside<int>(maMode, 0, 3)) return zppStsBadCodedParam;
  ownLSFDecodeErased_G729_16s(maMode, maMem, lsf);
  return zppStsOk;
}

ZppStatus zppsLSPQuant_G729E_16s(const Zpp16s* lsp, const Zpp16s* maMem, Zpp16s* residual, Zpp16s* quantLsp, Zpp16s* code) {
  if (anyNull(lsp, maMem, residual, quantLsp, code)) return zppStsNullPointer;
  return ownLSPQuant_G729E_16s(lsp, maMem, residual, quantLsp, code);
}
