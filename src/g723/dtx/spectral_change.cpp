// Averages of autocorrelations and the test whether a filter still fits the noise (ITU-T G.723.1 Annex A, clause A.4).
#include <algorithm>

#include "core/checks.h"
#include "core/fixed_point.h"
#include "g723/arithmetic.h"
#include "g723/dtx/kernels.h"

using namespace g723;
using namespace zpp;

namespace {

constexpr int kLags = kOrder + 1;

}  // namespace

ZppStatus zppsAutoCorrSum_G723_16s(const Zpp16s* autocorr, const Zpp16s* exponents, Zpp16s* dst, Zpp16s* exponent, int count) {
  if (anyNull(autocorr, exponents, dst, exponent)) return zppStsNullPointer;
  if (outside(count, 1, 4)) return zppStsBadSize;
  *exponent = ownAutoCorrSum_G723_16s(autocorr, exponents, dst, count);
  return zppStsOk;
}

ZppStatus zppsLPCAutoCorr_G723_16s(const Zpp16s* lpc, Zpp16s* dst, Zpp16s* shift) {
  if (anyNull(lpc, dst, shift)) return zppStsNullPointer;
  *shift = ownLPCAutoCorr_G723_16s(lpc, dst);
  return zppStsOk;
}

ZppStatus zppsLPCSimilarity_G723_16s(const Zpp16s* lpcAutoCorr, const Zpp16s* autocorr, Zpp16s* similar, Zpp16s shift,
                                     Zpp16s energy) {
  if (anyNull(lpcAutoCorr, autocorr, similar)) return zppStsNullPointer;
  *similar = ownLPCSimilarity_G723_16s(lpcAutoCorr, autocorr, shift, energy) ? 1 : 0;
  return zppStsOk;
}

Zpp16s ownAutoCorrSum_G723_16s(const Zpp16s* autocorr, const Zpp16s* exponents, Zpp16s* dst, int count) {
  const Zpp16s common = addSat16(*std::min_element(exponents, exponents + count), 14);
  Zpp32s sums[kLags] = {};
  for (int set = 0; set < count; ++set)
    for (int i = 0; i < kLags; ++i) sums[i] = addSat32(sums[i], shlSat32(autocorr[kLags * set + i], common - exponents[set]));
  const int shift = std::max(16 - norm32(sums[0]), 0);
  for (int i = 0; i < kLags; ++i) dst[i] = low16(sums[i] >> shift);
  return subSat16(common, shift);
}

Zpp16s ownLPCAutoCorr_G723_16s(const Zpp16s* lpc, Zpp16s* dst) {
  const Zpp32s energy = addSat32(zpp::energy(lpc, kOrder) >> 1, 1 << 26);  // with the leading 1
  const int shift = norm32(energy) - 2;
  dst[0] = roundHigh16(shlSat32(energy, shift));
  for (int i = 1; i <= kOrder; ++i) {
    Zpp32s sum = mulDbl(-8192, lpc[i - 1]);
    for (int j = 0; j + i < kOrder; ++j) sum = macDbl(sum, lpc[j], lpc[j + i]);
    dst[i] = roundHigh16(shlSat32(sum, shift));
  }
  return static_cast<Zpp16s>(shift);
}

bool ownLPCSimilarity_G723_16s(const Zpp16s* lpcAutoCorr, const Zpp16s* autocorr, int shift, Zpp16s energy) {
  constexpr Zpp16s kMargin = 7000;  // Q15: 0.2136, the logarithm of which is the Itakura distance allowed
  Zpp32s distance = 0;
  for (int i = 0; i < kLags; ++i) distance = macDbl(distance, lpcAutoCorr[i], static_cast<Zpp16s>(autocorr[i] >> 2));
  return distance <= shlSat32(energy + mulRoundQ15(energy, kMargin), shift + 9);
}
