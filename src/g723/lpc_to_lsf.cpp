// LPC to LSF conversion (ITU-T G.723.1 clause 2.5): roots of the sum and the difference polynomial on a grid of 256 steps.
#include <cstring>

#include "core/checks.h"
#include "core/fixed_point.h"
#include "core/kernels.h"
#include "g723/kernels.h"
#include "g723/tables.h"

using namespace zpp;

namespace {

constexpr int kOrder = 10, kGrid = 256;
constexpr int kHalf = kOrder / 2 + 1;  // coefficients of a symmetric polynomial of degree 10 that differ

// Brings 32-bit values to 16 bits with one common shift, the largest magnitude filling the word, and rounds them.
void ownAutoScale_NR_32s16s(const Zpp32s* src, Zpp16s* dst, int len) {
  Zpp32s most = 0;
  for (int n = 0; n < len; ++n) most = absSat32(src[n]) > most ? absSat32(src[n]) : most;
  const int shift = norm32(most);
  for (int n = 0; n < len; ++n) dst[n] = roundHigh16(shlSat32(src[n], shift));
}

// The sum polynomial of the bandwidth-expanded predictor without its trivial root, then the difference polynomial: the k-th of
// each one's six coefficients goes with cos(k w).
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
  ownAutoScale_NR_32s16s(c, polynomials, 2 * kHalf);
}

constexpr bool signsDiffer(Zpp32s a, Zpp32s b) { return (a ^ b) < 0; }

// LSF of a root between the grid points j - 1 and j, where the polynomial is y1 and y2. As their signs differ, the sum of the
// magnitudes is 1 or more, and normalised it is positive.
Zpp16s interpolateRoot(int j, Zpp32s y1, Zpp32s y2) {
  const Zpp32s magnitude = absSat32(y1), sum = addSat32(magnitude, absSat32(y2));
  const int shift = norm32(sum);
  return sat16((j - 1) * 128 + ((magnitude << shift) >> 9) / high16(sum << shift));
}

// Polynomial at grid point i: the exact sum, doubled and saturated once. Three products stay below 2^31.
Zpp32s valueAt(const Zpp16s* c, int i) {
  const Zpp16s* cosine = ReorderedCOS[i];
  const Zpp32s low = c[0] * cosine[0] + c[1] * cosine[1] + c[2] * cosine[2];
  const Zpp32s high = c[3] * cosine[3] + c[4] * cosine[4] + c[5] * cosine[5];
  return shlSat32(addSat32(low, high), 1);
}

// Steps of four, halved twice where the sign changes. Misses two roots of one polynomial within a step.
bool findRootsFast(const Zpp16s* polynomials, Zpp16s* lsf) {
  int found = 0;
  Zpp32s last = valueAt(polynomials, 0);
  for (int i = 4; i <= kGrid; i += 4) {
    const Zpp16s* c = polynomials + kHalf * (found % 2);
    const Zpp32s value = valueAt(c, i);
    if (!signsDiffer(last, value)) {
      last = value;
      continue;
    }
    Zpp32s y1 = last, y2 = value;
    for (int half = 2; half > 0; half /= 2) {
      const Zpp32s middle = valueAt(c, i - half);
      if (signsDiffer(y1, middle)) {
        y2 = middle;
        i -= half;
      } else {
        y1 = middle;
      }
    }
    lsf[found++] = interpolateRoot(i, y1, y2);
    if (found == kOrder) return true;
    last = valueAt(polynomials + kHalf * (found % 2), i);
  }
  return false;
}

// As valueAt, each doubled term added with saturation. Cosines of all grid points come from the one table of the full circle.
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
    const Zpp32s value = valueSaturating(polynomials + kHalf * (found % 2), i);
    if (!signsDiffer(last, value)) {
      last = value;
      continue;
    }
    lsf[found++] = interpolateRoot(i, last, value);
    if (found == kOrder) return true;
    last = valueSaturating(polynomials + kHalf * (found % 2), i);
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
  Zpp16s polynomials[2 * kHalf];
  formPolynomials(lpc, polynomials);
  return findRootsFast(polynomials, lsf) || ownFindRootLSF(polynomials, lsf);
}
