// LSF quantisation of silence-descriptor frames (ITU-T G.729 Annex B clause B.4.2.4): a multi-candidate search over subsets of
// the speech codebooks with predictors of its own.
#include "core/checks.h"
#include "core/fixed_point.h"
#include "g729/lsp/kernels.h"
#include "g729/lsp/tables.h"

using namespace zpp;

namespace {

constexpr int kCandidates = 4;

struct Candidate {
  int mode, first;
  Zpp16s residual[10];
};

Zpp16s secondStage(int entry, int j) { return LSPCode2[PtrTab_2[j < 5 ? 0 : 1][entry]][j]; }

// The four first-stage entries of least error over both predictors
void ownMLSearch1(const Zpp16s target[2][10], Candidate* candidates) {
  Zpp16s error[2][32];
  for (int mode = 0; mode < 2; ++mode)
    for (int entry = 0; entry < 32; ++entry) {
      Zpp32s sum = 0;
      for (int j = 0; j < 10; ++j) {
        const Zpp16s difference = subSat16(target[mode][j], LSPCode1[PtrTab_1[entry]][j]);
        sum = macDbl(sum, difference, difference);
      }
      error[mode][entry] = mulQ15(high16(sum), Mp[mode]);
    }
  for (Candidate* c = candidates; c < candidates + kCandidates; ++c) {
    c->mode = c->first = 0;
    Zpp32s least = kMax16;
    for (int mode = 0; mode < 2; ++mode)
      for (int entry = 0; entry < 32; ++entry)
        if (error[mode][entry] < least) {
          least = error[mode][entry];
          c->mode = mode;
          c->first = entry;
        }
    error[c->mode][c->first] = kMax16;
    for (int j = 0; j < 10; ++j) c->residual[j] = subSat16(target[c->mode][j], LSPCode1[PtrTab_1[c->first]][j]);
  }
}

// The candidate and second-stage entry of least weighted error
void ownMLSearch2(const Candidate* candidates, const Zpp16s* weight, Zpp16s* sidIndex) {
  const Candidate* best = candidates;
  int second = 0;
  Zpp32s least = kMax16;
  for (const Candidate* c = candidates; c < candidates + kCandidates; ++c) {
    Zpp16s gain[10];  // the weight in the domain of the composed LSF
    for (int j = 0; j < 10; ++j) {
      const Zpp16s complement = noise_fg_sum[c->mode][j];
      gain[j] = mulQ15(high16(shlSat32(mulDbl(complement, complement), 2)), weight[j]);
    }
    for (int entry = 0; entry < 16; ++entry) {
      Zpp32s sum = 0;
      for (int j = 0; j < 10; ++j) {
        const Zpp16s difference = subSat16(c->residual[j], secondStage(entry, j));
        sum = macDbl(sum, high16(shlSat32(mulDbl(gain[j], difference), 3)), difference);
      }
      if (high16(sum) >= least) continue;
      least = high16(sum);
      best = c;
      second = entry;
    }
  }
  sidIndex[0] = static_cast<Zpp16s>(best->mode);
  sidIndex[1] = static_cast<Zpp16s>(best->first);
  sidIndex[2] = static_cast<Zpp16s>(second);
}

void ownQuantizeError(const Zpp16s target[2][10], const Zpp16s* weight, Zpp16s* sidIndex) {
  Candidate candidates[kCandidates];
  ownMLSearch1(target, candidates);
  ownMLSearch2(candidates, weight, sidIndex);
}

}  // namespace

ZppStatus ownLSFQuant_G729B_16s(const Zpp16s* lsf, Zpp16s* maMem, Zpp16s* quantLsf, Zpp16s* sidIndex) {
  Zpp16s weight[10], target[2][10];
  ownGetWgt(lsf, weight);
  for (int mode = 0; mode < 2; ++mode) ownLspPrevExtract(ownNoiseMaPredictor(mode), lsf, maMem, target[mode]);
  ownQuantizeError(target, weight, sidIndex);
  return ownLSFDecode_G729B_16s(sidIndex, maMem, quantLsf);
}

// Index fields beyond their width count by their low bits.
ZppStatus ownLSFDecode_G729B_16s(const Zpp16s* sidIndex, Zpp16s* maMem, Zpp16s* quantLsf) {
  const int second = sidIndex[2] & 15;
  Zpp16s codeVector[10];
  ownLspGetQuant(PtrTab_1[sidIndex[1] & 31], PtrTab_2[0][second], PtrTab_2[1][second], codeVector);
  const ZppStatus status = ownLspCompose(ownNoiseMaPredictor(sidIndex[0] & 1), codeVector, maMem, quantLsf);
  shiftIntoMemory(codeVector, maMem);
  return status;
}

ZppStatus zppsLSFQuant_G729B_16s(const Zpp16s* lsf, Zpp16s* maMem, Zpp16s* quantLsf, Zpp16s* sidIdx) {
  if (anyNull(lsf, maMem, quantLsf, sidIdx)) return zppStsNullPointer;
  return ownLSFQuant_G729B_16s(lsf, maMem, quantLsf, sidIdx);
}

ZppStatus zppsLSFDecode_G729B_16s(const Zpp16s* sidIdx, Zpp16s* maMem, Zpp16s* quantLsf) {
  if (anyNull(sidIdx, maMem, quantLsf)) return zppStsNullPointer;
  return ownLSFDecode_G729B_16s(sidIdx, maMem, quantLsf);
}
