// Fixed codebook of four signed pulses in 17 bits: the search of the main body with its budget (ITU-T G.729 clause 3.8.1) and
// that of Annex A (clause A.3.8.1).
#include "core/checks.h"
#include "core/kernels.h"
#include "g729/fixed_codebook/kernels.h"
#include "g729/fixed_codebook/fixed_codebook.h"

using namespace zpp;

namespace {

// How promising three pulses must be: the mean correlation and 0.4 of the way from there to the largest possible one, in
// 16-bit arithmetic.
Zpp16s pruningThreshold(const Zpp16s* magnitude) {
  Zpp32s sum = 0;
  Zpp16s most = 0;
  for (int track = 0; track < 3; ++track) {
    const Zpp16s* d = magnitude + kPositions * track;
    for (int i = 0; i < kPositions; ++i) sum += d[i];
    most = addSat16(most, ownMax_16s(d, kPositions));
  }
  const Zpp16s mean = sat16(sum >> 3);
  return addSat16(mean, mulQ15(subSat16(most, mean), 13107));
}

// The searches proper, once the signs are in the matrix

void searchMainBody(const SignedTarget& target, const Zpp16s* folded, Zpp16s* code, Zpp16s* codeword, Zpp16s* budget,
                    Zpp16s subframe) {
  Zpp8u pulse[4];
  const Zpp16s allowed = searchBudget(subframe, *budget);
  const int left = ownFixedCodebookSearch_G729(target.magnitude, folded, pruningThreshold(target.magnitude), allowed, pulse);
  *budget = sat16(left);
  writeFourPulses(target, pulse, code, codeword);
}

void searchAnnexA(const SignedTarget& target, const Zpp16s* folded, Zpp16s* code, Zpp16s* codeword) {
  Zpp8u pulse[4];
  ownFixedCodebookSearch_G729A(target.magnitude, folded, pulse);
  writeFourPulses(target, pulse, code, codeword);
}

// By the type of the matrix. The entries of a 32-bit matrix built by this library fit 16 bits when shifted right by 15, and
// they still do with the signs folded in.

void searchMainBody(const Zpp16s* target, Zpp16s* matrix, Zpp16s* code, Zpp16s* codeword, Zpp16s* budget, Zpp16s subframe) {
  const SignedTarget signedTarget(target);
  ownFoldSigns_G729(signedTarget.sign, kTrackPairs, matrix);
  searchMainBody(signedTarget, matrix, code, codeword, budget, subframe);
}

void searchMainBody(const Zpp16s* target, Zpp32s* matrix, Zpp16s* code, Zpp16s* codeword, Zpp16s* budget, Zpp16s subframe) {
  const SignedTarget signedTarget(target);
  Zpp16s folded[kMatrix];
  ownFoldSigns_G729_32s16s(signedTarget.sign, matrix, folded);
  searchMainBody(signedTarget, folded, code, codeword, budget, subframe);
}

void searchAnnexA(const Zpp16s* target, Zpp16s* matrix, Zpp16s* code, Zpp16s* codeword) {
  const SignedTarget signedTarget(target);
  ownFoldSigns_G729A(signedTarget.sign, kTrackPairs, kBlocks, matrix + kDiagonals);
  searchAnnexA(signedTarget, matrix, code, codeword);
}

void searchAnnexA(const Zpp16s* target, Zpp32s* matrix, Zpp16s* code, Zpp16s* codeword) {
  const SignedTarget signedTarget(target);
  Zpp16s folded[kMatrix];
  ownFoldSigns_G729A_32s16s(signedTarget.sign, matrix, folded);
  searchAnnexA(signedTarget, folded, code, codeword);
}

}  // namespace

ZppStatus zppsFixedCodebookSearch_G729_32s16s(const Zpp16s* target, Zpp32s* matrix, Zpp16s* code, Zpp16s* codeword,
                                              Zpp16s* budget, Zpp16s subframe) {
  if (anyNull(target, matrix, code, codeword, budget)) return zppStsNullPointer;
  if (subframe < 0) return zppStsOutOfRange;
  searchMainBody(target, matrix, code, codeword, budget, subframe);
  return zppStsOk;
}

ZppStatus zppsFixedCodebookSearch_G729_16s(const Zpp16s* target, Zpp16s* matrix, Zpp16s* code, Zpp16s* codeword, Zpp16s* budget,
                                           Zpp16s subframe) {
  if (anyNull(target, matrix, code, codeword, budget)) return zppStsNullPointer;
  if (outside<Zpp16s>(subframe, 0, 1)) return zppStsOutOfRange;
  searchMainBody(target, matrix, code, codeword, budget, subframe);
  return zppStsOk;
}

ZppStatus zppsFixedCodebookSearch_G729A_32s16s(const Zpp16s* target, Zpp32s* matrix, Zpp16s* code, Zpp16s* codeword) {
  if (anyNull(target, matrix, code, codeword)) return zppStsNullPointer;
  searchAnnexA(target, matrix, code, codeword);
  return zppStsOk;
}

ZppStatus zppsFixedCodebookSearch_G729A_16s(const Zpp16s* target, Zpp16s* matrix, Zpp16s* code, Zpp16s* codeword) {
  if (anyNull(target, matrix, code, codeword)) return zppStsNullPointer;
  searchAnnexA(target, matrix, code, codeword);
  return zppStsOk;
}
