// LSF decoding and stability repair (ITU-T G.723.1 clause 2.6; in the decoder also "Frame interpolation handling").
#include "core/checks.h"
#include "core/fixed_point.h"
#include "g723/lsf/kernels.h"
#include "g723/lsf/prediction.h"
#include "g723/tables.h"

using namespace zpp;

namespace {

constexpr int kOrder = 10, kPasses = 10;
constexpr Zpp16s kLowest = 384, kHighest = 32256;  // of the first and the last LSF

void addWrap16(Zpp16s* x, Zpp32s y) { *x = wrap16(*x + y); }

// One pass: pulls neighbours apart that are closer than `distance`, each by half of what is missing, in ascending order.
void spread(Zpp16s* lsf, Zpp16s distance) {
  if (lsf[0] < kLowest) lsf[0] = kLowest;
  if (lsf[kOrder - 1] > kHighest) lsf[kOrder - 1] = kHighest;
  for (int j = 1; j < kOrder; ++j) {
    const Zpp16s missing = wrap16(distance + lsf[j - 1] - lsf[j]);
    if (missing <= 0) continue;
    addWrap16(&lsf[j - 1], -(missing >> 1));
    addWrap16(&lsf[j], missing >> 1);
  }
}

// Four units short of the distance pass: the halves above are truncated.
bool stable(const Zpp16s* lsf, Zpp16s distance) {
  for (int j = 1; j < kOrder; ++j)
    if (lsf[j] < wrap16(lsf[j - 1] + distance - 4)) return false;
  return true;
}

}  // namespace

ZppStatus zppsLSFDecode_G723_16s(const Zpp16s* index, const Zpp16s* prevLsf, Zpp32s erased, Zpp16s* lsf) {
  if (anyNull(index, prevLsf, lsf)) return zppStsNullPointer;
  return ownLSFDecode_G723_16s(index, prevLsf, erased != 0, lsf) ? zppStsOk : zppStsLSFLowClamped;
}

bool ownLSFDecode_G723_16s(const Zpp16s* index, const Zpp16s* prevLsf, bool erased, Zpp16s* lsf) {
  const Zpp16s factor = erased ? kErasedFrameFactor : kGoodFrameFactor;
  const Zpp16s distance = erased ? 512 : 256;
  Zpp16s decoded[kOrder];
  for (int band = 0; band < 3; ++band) {
    const auto [first, length] = LSPCdbkParams_G723[band];
    const Zpp16s* entry = LSPCdbk_G723_Tbls[band][erased ? 0 : index[band] & 255];
    for (int k = 0; k < length; ++k) decoded[first + k] = entry[k];
  }
  for (int j = 0; j < kOrder; ++j) lsf[j] = wrap16(decoded[j] + predictedDeviation(prevLsf, j, factor) + LspDcTbl_G723[j]);
  for (int pass = 0; pass < kPasses; ++pass) {
    spread(lsf, distance);
    if (stable(lsf, distance)) return true;
  }
  return false;
}
