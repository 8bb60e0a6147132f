// Windowed autocorrelation of an analysis block (ITU-T G.723.1 clause 2.4).
#include "core/checks.h"
#include "core/fixed_point.h"
#include "core/kernels.h"
#include "g723/lsf/kernels.h"
#include "g723/tables.h"

using namespace zpp;

namespace {

constexpr int kBlock = 180, kOrder = 10;
constexpr int kGuardBits = 3;  // left above a normalised block, so that its energy stays below 2^31

// Lags 1..10 of a block whose energy is beyond 32 bits: each step saturates, in time order. Such a block has norm 0.
void lagsSaturating(const Zpp16s* src, Zpp32s* corr) {
  for (int k = 1; k <= kOrder; ++k) {
    Zpp32s sum = 0;
    for (int j = k; j < kBlock; ++j) sum = addSat32(sum, Zpp32s{src[j]} * src[j - k]);
    corr[k - 1] = sum;
  }
}

}  // namespace

ZppStatus zppsAutoCorr_G723_16s(const Zpp16s* src, Zpp16s* exponent, Zpp16s* autocorr) {
  if (anyNull(src, exponent, autocorr)) return zppStsNullPointer;
  ownAutoCorr_G723_16s(src, exponent, autocorr);
  return zppStsOk;
}

ZppStatus zppsAutoCorr_NormE_G723_16s(const Zpp16s* src, Zpp16s* autocorr, Zpp32s* norm) {
  if (anyNull(src, autocorr, norm)) return zppStsNullPointer;
  *norm = ownAutoCorr_NormE_G723_16s(src, autocorr);
  return zppStsOk;
}

void ownAutoCorr_G723_16s(const Zpp16s* src, Zpp16s* exponent, Zpp16s* autocorr) {
  alignas(16) Zpp16s block[kBlock];
  const int scale = ownAutoScale_16s(src, block, kBlock) - kGuardBits;
  ownRShiftC_16s(block, block, kBlock, kGuardBits);
  ownMul_NR_16s_Sfs(block, HammingWindowTbl_G723, block, kBlock, 15);
  const int norm = ownAutoCorr_NormE_G723_16s(block, autocorr);
  *exponent = static_cast<Zpp16s>(autocorr[0] == 0 ? 40 : norm + 2 * scale);
}

int ownAutoCorr_NormE_G723_16s(const Zpp16s* src, Zpp16s* autocorr) {
  const Zpp64s exactEnergy = ownDotProd_16s(src, src, kBlock);
  Zpp32s energy = sat32(exactEnergy);
  energy = addSat32(energy, energy >> 10);  // white-noise correction, 1025/1024
  const int norm = norm32(energy);
  Zpp32s corr[kOrder];
  // |sum of x(j) x(j-k)| over any span is at most the energy (Cauchy-Schwarz): below 2^31 no step can saturate.
  if (exactEnergy <= kMax32)
    ownAutoCorr_NormE_G723_16s32s(src, norm, corr);
  else
    lagsSaturating(src, corr);
  autocorr[0] = roundHigh16(energy << norm);
  for (int k = 1; k <= kOrder; ++k) autocorr[k] = roundHigh16(mul32Q15(corr[k - 1], BinomWindowCoeffTbl_G723[k]));
  return norm;
}
