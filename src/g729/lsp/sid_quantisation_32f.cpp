// LSF quantisation of silence-descriptor frames in single precision (ITU-T G.729 Annex B clause B.4.2.4, Annex C+).
#include <limits>

#include "core/checks.h"
#include "core/kernels.h"
#include "g729/lsp/kernels.h"
#include "g729/lsp/tables.h"
#include "g729/lsp/tables_32f.h"

using namespace zpp;

namespace {

constexpr int kCandidates = 4;
constexpr Zpp32f kInfinity = std::numeric_limits<Zpp32f>::infinity();

struct Candidate {
  int mode, first;
  Zpp32f residual[10];
};

MaPredictor_32f ownNoiseMaPredictor_32f(int mode) {
  return {noise_fg_32f[mode], noise_fg_sum_32f[mode], noise_fg_sum_inv_32f[mode]};
}

// The four first-stage entries of least error over both predictors
void ownMLSearch1_32f(const Zpp32f target[2][10], Candidate* candidates) {
  Zpp32f error[64];
  for (int mode = 0; mode < 2; ++mode) {
    Zpp32f all[128];
    ownLspErrors1_32f(target[mode], all);
    for (int entry = 0; entry < 32; ++entry) error[32 * mode + entry] = all[PtrTab_1[entry]] * Mp_32f[mode];
  }
  for (Candidate* c = candidates; c < candidates + kCandidates; ++c) {
    const int least = ownMinIndx_32f(error, 64);
    c->mode = least / 32;
    c->first = least % 32;
    error[least] = kInfinity;
    ownLspSubtractFirst_32f(target[c->mode], PtrTab_1[c->first], c->residual);
  }
}

// The candidate and second-stage entry of least weighted error
void ownMLSearch2_32f(const Candidate* candidates, const Zpp32f* weight, Zpp16s* sidIndex) {
  const Candidate* best = candidates;
  int second = 0;
  Zpp32f least = kInfinity;
  for (const Candidate* c = candidates; c < candidates + kCandidates; ++c) {
    Zpp32f gain[10];  // the weight in the domain of the composed LSF
    for (int j = 0; j < 10; ++j) gain[j] = weight[j] * noise_fg_sum_32f[c->mode][j] * noise_fg_sum_32f[c->mode][j];
    Zpp32f error[2][32];
    for (int half = 0; half < 2; ++half) ownLspErrors2_32f(c->residual, gain, half, error[half]);
    for (int entry = 0; entry < 16; ++entry) {
      const Zpp32f sum = error[0][PtrTab_2[0][entry]] + error[1][PtrTab_2[1][entry]];
      if (!(sum < least)) continue;
      least = sum;
      best = c;
      second = entry;
    }
  }
  sidIndex[0] = static_cast<Zpp16s>(best->mode);
  sidIndex[1] = static_cast<Zpp16s>(best->first);
  sidIndex[2] = static_cast<Zpp16s>(second);
}

}  // namespace

ZppStatus ownLSFQuant_G729B_32f(const Zpp32f* lsf, Zpp32f* maMem, Zpp32f* quantLsf, Zpp16s* sidIndex) {
  Zpp32f weight[10], target[2][10];
  Candidate candidates[kCandidates];
  ownGetWgt_32f(lsf, weight);
  for (int mode = 0; mode < 2; ++mode) ownLspPrevExtract_32f(ownNoiseMaPredictor_32f(mode), lsf, maMem, target[mode]);
  ownMLSearch1_32f(target, candidates);
  ownMLSearch2_32f(candidates, weight, sidIndex);
  return ownLSFDecode_G729B_32f(sidIndex, maMem, quantLsf);
}

// Index fields beyond their width count by their low bits.
ZppStatus ownLSFDecode_G729B_32f(const Zpp16s* sidIndex, Zpp32f* maMem, Zpp32f* quantLsf) {
  const int second = sidIndex[2] & 15;
  Zpp32f codeVector[10];
  ownLspGetQuant_32f(PtrTab_1[sidIndex[1] & 31], PtrTab_2[0][second], PtrTab_2[1][second], codeVector);
  const ZppStatus status = ownLspCompose_32f(ownNoiseMaPredictor_32f(sidIndex[0] & 1), codeVector, maMem, quantLsf);
  shiftIntoMemory(codeVector, maMem);
  return status;
}

ZppStatus zppsLSFQuant_G729B_32f(const Zpp32f* lsf, Zpp32f* maMem, Zpp32f* quantLsf, Zpp16s* sidIdx) {
  if (anyNull(lsf, maMem, quantLsf, sidIdx)) return zppStsNullPointer;
  return ownLSFQuant_G729B_32f(lsf, maMem, quantLsf, sidIdx);
}

ZppStatus zppsLSFDecode_G729B_32f(const Zpp16s* sidIdx, Zpp32f* maMem, Zpp32f* quantLsf) {
  if (anyNull(sidIdx, maMem, quantLsf)) return zppStsNullPointer;
  return ownLSFDecode_G729B_32f(sidIdx, maMem, quantLsf);
}
