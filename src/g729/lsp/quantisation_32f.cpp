// LSF quantisation with a switched moving-average predictor and a two-stage codebook in single precision (ITU-T G.729 clause
// 3.2.4, Annex C), its decoder, and the decoder's step in an erased frame (clause 4.4.1).
//
// Every search leaves NaN aside: one that sees nothing else returns entry 0.
#include <cstring>

#include "core/checks.h"
#include "core/cosine.h"
#include "core/kernels.h"
#include "g729/lsp/kernels.h"
#include "g729/lsp/tables_32f.h"

using namespace zpp;

namespace {

// Stability limits, radians
constexpr Zpp32f kLowestLsf = 0.005f, kHighestLsf = 3.135f, kLsfGap = 0.0392f;

// Spreads neighbours that are closer than the gap.
void ownLspExpand_32f(Zpp32f* codeVector, Zpp32f gap) {
  for (int j = 1; j < 10; ++j) {
    const Zpp32f shift = (codeVector[j - 1] - codeVector[j] + gap) / 2;
    if (!(shift > 0)) continue;
    codeVector[j - 1] -= shift;
    codeVector[j] += shift;
  }
}

ZppStatus ownLspStability_32f(Zpp32f* lsf) {
  swapReversed(lsf);
  const bool low = lsf[0] < kLowestLsf;
  if (low) lsf[0] = kLowestLsf;
  for (int i = 1; i < 10; ++i)
    if (lsf[i] - lsf[i - 1] < kLsfGap) lsf[i] = lsf[i - 1] + kLsfGap;
  const bool high = lsf[9] > kHighestLsf;
  if (high) lsf[9] = kHighestLsf;
  return clampStatus(low, high);
}

MaPredictor_32f ownMaPredictor_32f(int mode) { return {fg_32f[mode], fg_sum_32f[mode], fg_sum_inv_32f[mode]}; }

// Weighted distance between the code vector and the target, in the domain of the composed LSF
Zpp32f ownLspGetTdist_32f(const MaPredictor_32f& predictor, const Zpp32f* codeVector, const Zpp32f* target,
                          const Zpp32f* weight) {
  Zpp32f distance = 0;
  for (int j = 0; j < 10; ++j) {
    const Zpp32f error = (codeVector[j] - target[j]) * predictor.complement[j];
    distance += weight[j] * error * error;
  }
  return distance;
}

// A decoded code vector and the index fields that select it: fields beyond their width count by their low bits.
void codeVectorOf(const Zpp16s* index, Zpp32f* codeVector) {
  ownLspGetQuant_32f(index[1] & 127, index[2] & 31, index[3] & 31, codeVector);
}

}  // namespace

void ownGetWgt_32f(const Zpp32f* lsf, Zpp32f* weight) {
  // Distance of the two neighbours beyond 1.0, the ends of the range standing in at the borders
  constexpr Zpp32f first = static_cast<Zpp32f>(0.04 * kPi), last = static_cast<Zpp32f>(0.92 * kPi);
  for (int i = 0; i < 10; ++i) {
    const Zpp32f spacing = (i == 9 ? last : lsf[i + 1]) - (i == 0 ? first : lsf[i - 1]) - 1;
    weight[i] = spacing > 0 ? 1 : 10 * spacing * spacing + 1;
    if (i == 4 || i == 5) weight[i] *= 1.2f;
  }
}

void ownLspPrevExtract_32f(const MaPredictor_32f& predictor, const Zpp32f* lsf, const Zpp32f* maMem, Zpp32f* codeVector) {
  for (int j = 0; j < 10; ++j) {
    Zpp64f rest = lsf[j];
    for (int k = 0; k < 4; ++k) rest -= Zpp64f{maMem[10 * k + j]} * predictor.coefficient[k][j];
    codeVector[j] = static_cast<Zpp32f>(rest * predictor.inverse[j]);
  }
}

void ownLspErrors1_32f(const Zpp32f* target, Zpp32f* errors) {
  Zpp32f sums[128] = {};
  for (int j = 0; j < 10; ++j)
    for (int entry = 0; entry < 128; ++entry) {
      const Zpp32f error = target[j] - LSPCode1_32f.at[j][entry];
      sums[entry] += error * error;
    }
  std::memcpy(errors, sums, sizeof sums);
}

void ownLspErrors2_32f(const Zpp32f* residual, const Zpp32f* weight, int half, Zpp32f* errors) {
  Zpp32f sums[32] = {};
  for (int j = 5 * half; j < 5 * half + 5; ++j)
    for (int entry = 0; entry < 32; ++entry) {
      const Zpp32f error = residual[j] - LSPCode2_32f.at[j][entry];
      sums[entry] += weight[j] * error * error;
    }
  std::memcpy(errors, sums, sizeof sums);
}

void ownLspSubtractFirst_32f(const Zpp32f* target, int first, Zpp32f* residual) {
  for (int j = 0; j < 10; ++j) residual[j] = target[j] - LSPCode1_32f.at[j][first];
}

void ownLspGetQuant_32f(int first, int lower, int upper, Zpp32f* codeVector) {
  for (int j = 0; j < 10; ++j) codeVector[j] = LSPCode1_32f.at[j][first] + LSPCode2_32f.at[j][j < 5 ? lower : upper];
  ownLspExpand_32f(codeVector, 0.0012f);
  ownLspExpand_32f(codeVector, 0.0006f);
}

ZppStatus ownLspCompose_32f(const MaPredictor_32f& predictor, const Zpp32f* codeVector, const Zpp32f* maMem, Zpp32f* quantLsf) {
  for (int j = 0; j < 10; ++j) {
    Zpp64f sum = Zpp64f{codeVector[j]} * predictor.complement[j];
    for (int k = 0; k < 4; ++k) sum += Zpp64f{maMem[10 * k + j]} * predictor.coefficient[k][j];
    quantLsf[j] = static_cast<Zpp32f>(sum);
  }
  return ownLspStability_32f(quantLsf);
}

void ownRelspwed_32f(const Zpp32f* lsf, const Zpp32f* maMem, Zpp16s* index) {
  Zpp32f weight[10];
  ownGetWgt_32f(lsf, weight);
  Zpp32f leastDistance = 0;
  for (int mode = 0; mode < 2; ++mode) {
    const MaPredictor_32f predictor = ownMaPredictor_32f(mode);
    Zpp32f target[10], residual[10], codeVector[10], errors[128];
    ownLspPrevExtract_32f(predictor, lsf, maMem, target);
    ownLspErrors1_32f(target, errors);
    const int first = ownMinIndx_32f(errors, 128);
    ownLspSubtractFirst_32f(target, first, residual);
    int second[2];
    for (int half = 0; half < 2; ++half) {
      ownLspErrors2_32f(residual, weight, half, errors);
      second[half] = ownMinIndx_32f(errors, 32);
    }
    ownLspGetQuant_32f(first, second[0], second[1], codeVector);
    const Zpp32f distance = ownLspGetTdist_32f(predictor, codeVector, target, weight);
    if (mode == 1 && !(distance < leastDistance)) break;
    leastDistance = distance;
    const int found[] = {mode, first, second[0], second[1]};
    for (int i = 0; i < 4; ++i) index[i] = static_cast<Zpp16s>(found[i]);
  }
}

ZppStatus ownLSFDecode_G729_32f(const Zpp16s* index, Zpp32f* maMem, Zpp32f* quantLsf) {
  Zpp32f codeVector[10];
  codeVectorOf(index, codeVector);
  const ZppStatus status = ownLspCompose_32f(ownMaPredictor_32f(index[0] & 1), codeVector, maMem, quantLsf);
  shiftIntoMemory(codeVector, maMem);
  return status;
}

void ownLSFDecodeErased_G729_32f(int mode, Zpp32f* maMem, const Zpp32f* lsf) {
  Zpp32f codeVector[10];
  ownLspPrevExtract_32f(ownMaPredictor_32f(mode & 1), lsf, maMem, codeVector);
  shiftIntoMemory(codeVector, maMem);
}

void ownLSPQuant_G729E_32f(const Zpp32f* lsp, const Zpp32f* maMem, Zpp32f* codeVector, Zpp32f* quantLsp, Zpp16s* code) {
  Zpp32f lsf[10];
  Zpp16s index[4];
  for (int i = 0; i < 10; ++i) lsf[i] = static_cast<Zpp32f>(arccosine(lsp[i]));
  ownRelspwed_32f(lsf, maMem, index);
  codeVectorOf(index, codeVector);
  ownLspCompose_32f(ownMaPredictor_32f(index[0]), codeVector, maMem, lsf);
  for (int i = 0; i < 10; ++i) quantLsp[i] = static_cast<Zpp32f>(cosine(lsf[i]));
  code[0] = static_cast<Zpp16s>(index[0] << 7 | index[1]);
  code[1] = static_cast<Zpp16s>(index[2] << 5 | index[3]);
}

ZppStatus zppsLSFDecode_G729_32f(const Zpp16s* idx, Zpp32f* maMem, Zpp32f* quantLsf) {
  if (anyNull(idx, maMem, quantLsf)) return zppStsNullPointer;
  if (outside<int>(idx[0], 0, 3)) return zppStsBadCodedParam;
  return ownLSFDecode_G729_32f(idx, maMem, quantLsf);
}

ZppStatus zppsLSFDecodeErased_G729_32f(Zpp16s maMode, Zpp32f* maMem, const Zpp32f* lsf) {
  if (anyNull(maMem, lsf)) return zppStsNullPointer;
  if (outside<int>(maMode, 0, 3)) return zppStsBadCodedParam;
  ownLSFDecodeErased_G729_32f(maMode, maMem, lsf);
  return zppStsOk;
}

ZppStatus zppsLSPQuant_G729E_32f(const Zpp32f* lsp, const Zpp32f* maMem, Zpp32f* residual, Zpp32f* quantLsp, Zpp16s* code) {
  if (anyNull(lsp, maMem, residual, quantLsp, code)) return zppStsNullPointer;
  ownLSPQuant_G729E_32f(lsp, maMem, residual, quantLsp, code);
  return zppStsOk;
}
