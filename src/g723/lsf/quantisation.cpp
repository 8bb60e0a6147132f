// Predictive split vector quantisation of the LSF (ITU-T G.723.1 clause 2.5).
#include <algorithm>

#include "core/checks.h"
#include "core/fixed_point.h"
#include "core/kernels.h"
#include "g723/lsf/kernels.h"
#include "g723/lsf/prediction.h"
#include "g723/tables.h"

using namespace zpp;

namespace {

constexpr int kOrder = 10;

// Inverse distance to the nearer neighbour: close LSF, those of a formant, weigh most. The largest weight fills the word.
void weigh(const Zpp16s* lsf, Zpp16s* weight) {
  Zpp16s gap[kOrder - 1];
  for (int j = 0; j + 1 < kOrder; ++j) gap[j] = subSat16(lsf[j + 1], lsf[j]);
  for (int j = 0; j < kOrder; ++j) {
    const Zpp16s nearest = std::min(gap[std::max(j - 1, 0)], gap[std::min(j, kOrder - 2)]);
    weight[j] = static_cast<Zpp16s>(nearest > 32 ? 0x100000 / nearest : kMax16);
  }
  const int shift = norm16(*std::max_element(weight, weight + kOrder));
  for (int j = 0; j < kOrder; ++j) weight[j] = static_cast<Zpp16s>(weight[j] << shift);
}

}  // namespace

ZppStatus zppsLSFQuant_G723_16s32s(const Zpp16s* lsf, const Zpp16s* prevLsf, Zpp32s* index) {
  if (anyNull(lsf, prevLsf, index)) return zppStsNullPointer;
  *index = ownLSFQuant_G723_16s32s(lsf, prevLsf);
  return zppStsOk;
}

ZppStatus _zppsLSFQuant_G723_16s_I(const Zpp16s* prevLsf, Zpp16s* lsf, Zpp16s* index) {
  ownLSFQuant_G723_16s_I(prevLsf, lsf, index);
  return zppStsOk;
}

Zpp32s ownLSFQuant_G723_16s32s(const Zpp16s* lsf, const Zpp16s* prevLsf) {
  alignas(16) Zpp16s residual[kOrder];
  Zpp16s index[3];
  std::copy_n(lsf, kOrder, residual);
  ownLSFQuant_G723_16s_I(prevLsf, residual, index);
  return index[0] << 16 | index[1] << 8 | index[2];
}

void ownLSFQuant_G723_16s_I(const Zpp16s* prevLsf, Zpp16s* lsf, Zpp16s* index) {
  Zpp16s weight[kOrder];
  weigh(lsf, weight);
  for (int j = 0; j < kOrder; ++j)
    lsf[j] = subSat16(subSat16(lsf[j], LspDcTbl_G723[j]), predictedDeviation(prevLsf, j, kGoodFrameFactor));
  for (int band = 0; band < 3; ++band) {
    const int first = LSPCdbkParams_G723[band][0];
    index[band] = static_cast<Zpp16s>(ownLspSvq(lsf + first, weight + first, LSPCdbk_G723_Tbls[band]));
  }
}
