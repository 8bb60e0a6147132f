// LPC to LSF conversion (ITU-T G.723.1 clause 2.5): roots of the sum and the difference polynomial on a grid of 256 steps.
#include <cstring>

#include "core/checks.h"
#include "core/fixed_point.h"
#include "core/kernels.h"
#include "g723/lsf/kernels.h"
#include "g723/lsf/root_search.h"
#include "g723/tables.h"

using namespace zpp;

namespace {

constexpr int kOrder = kLsfOrder;
constexpr int kHalf = kOrder / 2 + 1;  // coefficients of a symmetric polynomial of degree 10 that differ

// Brings 32-bit values to 16 bits with one common shift, the largest magnitude filling the word, and rounds them.
void ownAutoScale_NR_32s16s(const Zpp32s* src, Zpp16s* dst, int len) {
  Zpp32s most = 0;
  for (int n = 0; n < len; ++n) most = absSat32(src[n]) > most ? absSat32(src[n]) : most;
  const int shift = norm32(most);
  for (int n = 0; n < len; ++n) dst[n] = roundHigh16(shlSat32(src[n], shift));
}

// Sum and difference polynomial of the bandwidth-expanded predictor without their trivial roots
void formPolynomials(const Zpp16s* lpc, Zpp16s* polynomials) {
  Zpp16s b[kOrder];
  ownMul_NR_16s_Sfs(lpc, BandwidthExpansionTbl, b, kOrder, 15);
  Zpp32s c[2 * kHalf];
  Zpp32s p = 8192, q = 8192;
  for (int k = 0;; ++k) {
    // The order-0 cosine counts once, all others twice.
    const int factor = k < kHalf - 1 ? 2 : 1;
    c[kHalf - 1 - k] = factor * p;
    c[2 * kHalf - 1 - k] = factor * q;
    if (k == kHalf - 1) break;
    p = -p - b[k] - b[kOrder - 1 - k];
    q = q - b[k] + b[kOrder - 1 - k];
  }
  Zpp16s normalised[2 * kHalf];
  ownAutoScale_NR_32s16s(c, normalised, 2 * kHalf);
  std::memset(polynomials, 0, 2 * kPolynomial * sizeof(Zpp16s));
  std::memcpy(polynomials, normalised, kHalf * sizeof(Zpp16s));
  std::memcpy(polynomials + kPolynomial, normalised + kHalf, kHalf * sizeof(Zpp16s));
}

// A polynomial's value at grid point i, each doubled term added with saturation
Zpp32s valueSaturating(const Zpp16s* c, int i) {
  Zpp32s sum = 0;
  for (int k = 0; k < kHalf; ++k) sum = macDbl(sum, c[k], CosineTbl_G723[k * i % 512]);
  return sum;
}

// The standard's search: every grid point but the last.
bool ownFindRootLSF(const Zpp16s* polynomials, Zpp16s* lsf) {
  int found = 0;
  Zpp32s last = 0;
  for (int k = kHalf; k-- > 0;) last = macDbl(last, polynomials[k], CosineTbl_G723[0]);
  for (int i = 1; i < kGrid; ++i) {
    const Zpp32s value = valueSaturating(polynomials + kPolynomial * (found % 2), i);
    if (!signsDiffer(last, value)) {
      last = value;
      continue;
    }
    lsf[found++] = interpolateRoot(i, last, value);
    if (found == kOrder) return true;
    last = valueSaturating(polynomials + kPolynomial * (found % 2), i);
  }
  return false;
}

}  // namespace

ZppStatus zppsLPCToLSF_G723_16s(const Zpp16s* lpc, const Zpp16s* prevLsf, Zpp16s* lsf) {
  if (anyNull(lpc, prevLsf, lsf)) return zppStsNullPointer;
  ownLPCToLSF_G723_16s(lpc, prevLsf, lsf);
  return zppStsOk;
}

int _zppsLPCToLSF_Norm_G723_16s(const Zpp16s* lpc, Zpp16s* lsf) { return ownLPCToLSF_Norm_G723_16s(lpc, lsf) ? 0 : 1; }

void ownLPCToLSF_G723_16s(const Zpp16s* lpc, const Zpp16s* prevLsf, Zpp16s* lsf) {
  Zpp16s found[kOrder];  // apart from lsf, which may be prevLsf
  const bool complete = ownLPCToLSF_Norm_G723_16s(lpc, found);
  std::memmove(lsf, complete ? found : prevLsf, sizeof found);
}

bool ownLPCToLSF_Norm_G723_16s(const Zpp16s* lpc, Zpp16s* lsf) {
  alignas(16) Zpp16s polynomials[2 * kPolynomial];
  formPolynomials(lpc, polynomials);
  return ownFindRootLSF_Fast(polynomials, lsf) || ownFindRootLSF(polynomials, lsf);
}
