// Short-term postfilter of ITU-T G.729 (clause 4.2.2, Annex A clause A.4.2.2).
#include <cstring>

#include "core/checks.h"
#include "core/fixed_point.h"
#include "core/kernels.h"
#include "g729/postfilter/kernels.h"
#include "g729/postfilter/tables.h"
#include "lpc/kernels.h"

using namespace zpp;

namespace {

constexpr int kSubframe = kPostfilterSubframe, kResponse = 20, kCoefs = kLpcOrder + 1;

bool ownShortTermPostFilter_G729A_16s(const Zpp16s* coef, const Zpp16s* src, Zpp16s* dst) {
  return ownSynthesisFilter_NR_16s(coef, src, dst, kSubframe, 12, dst - kLpcOrder);
}

bool ownShortTermPostFilter_G729_16s(const Zpp16s* coef, const Zpp16s* residual, Zpp16s* dst, Zpp16s* impulse) {
  Zpp16s denominator[kCoefs], response[kResponse] = {};
  ownMul_NR_16s_Sfs(coef, facGamma1_pst, denominator, kCoefs, 15);
  ownMul_NR_16s_Sfs(coef, facGamma2_pst, response, kCoefs, 15);
  ownSynthesisFilter_NR_16s(denominator, response, response, kResponse, 12, nullptr);
  Zpp32s sum = 0;
  for (const Zpp16s h : response) sum += absSat16(h);

  // Normalise a response whose magnitudes add up to more than 1 (Q12, 1024 after the shift).
  const Zpp16s magnitude = sat16(sum >> 2);
  if (magnitude > 1024) ownMulC_NR_16s_Sfs(residual, static_cast<Zpp16s>((1024 << 15) / magnitude), dst, kSubframe, 15);
  const bool overflow = ownShortTermPostFilter_G729A_16s(denominator, dst, dst);
  std::memcpy(impulse, response, sizeof response);
  return overflow;
}

}  // namespace

ZppStatus zppsShortTermPostFilter_G729_16s(const Zpp16s* coef, const Zpp16s* residual, Zpp16s* dst, Zpp16s* impulse) {
  if (anyNull(coef, residual, dst, impulse)) return zppStsNullPointer;
  return ownShortTermPostFilter_G729_16s(coef, residual, dst, impulse) ? zppStsOverflowWarn : zppStsOk;
}

ZppStatus zppsShortTermPostFilter_G729A_16s(const Zpp16s* coef, const Zpp16s* src, Zpp16s* dst) {
  if (anyNull(coef, src, dst)) return zppStsNullPointer;
  return ownShortTermPostFilter_G729A_16s(coef, src, dst) ? zppStsOverflowWarn : zppStsOk;
}
