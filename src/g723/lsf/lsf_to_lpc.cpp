// LSF to LPC conversion (ITU-T G.723.1 clause 2.7).
#include <cstring>

#include "core/checks.h"
#include "core/fixed_point.h"
#include "g723/lsf/kernels.h"
#include "g723/tables.h"

using namespace zpp;

namespace {

constexpr int kOrder = 10, kHalf = kOrder / 2;

// Minus the cosine of an LSF in Q15, interpolated at half a step beyond its low seven bits. The table's index is cut to the
// full circle: any LSF is an angle.
Zpp16s minusCosine(Zpp16s lsf) {
  const int i = lsf >> 7, fraction = lsf & 127;
  const Zpp16s here = CosineTbl_G723[i & 511], next = CosineTbl_G723[(i + 1) & 511];
  const Zpp32s cosine = fromHigh16(here) + 2 * (next - here) * (256 * fraction + 128);
  return negSat16(roundHigh16(shlSat32(cosine, 1)));
}

// Product of the factors 1 + 2 m(i) z^-1 + z^-2, i = 0..4, halved once a factor: p[0..5], the half of a symmetric polynomial
void multiplyFactors(const Zpp16s* lsf, Zpp32s* p) {
  const Zpp16s first = minusCosine(lsf[0]), second = minusCosine(lsf[2]);
  p[0] = 1 << 28;
  p[1] = (first + second) * (1 << 14);
  p[2] = first * second + (1 << 29);
  for (int i = 2; i < kHalf; ++i) {
    const Zpp16s m = minusCosine(lsf[2 * i]);
    // The product of i factors is symmetric about p[i].
    p[i + 1] = addSat32(mul32Q15(p[i], m), p[i - 1]);
    for (int j = i; j >= 2; --j) p[j] = addSat32(addSat32(mul32Q15(p[j - 1], m), p[j] >> 1), p[j - 2] >> 1);
    p[0] >>= 1;
    p[1] = addSat32(fromHigh16(m) >> i, p[1]) >> 1;
  }
}

// Minus a sum in Q25 as Q13
Zpp16s coefficient(Zpp32s sum) { return negSat16(roundHigh16(shlSat32(sum, 3))); }

}  // namespace

ZppStatus zppsLSFToLPC_G723_16s(const Zpp16s* lsf, Zpp16s* lpc) {
  if (anyNull(lsf, lpc)) return zppStsNullPointer;
  std::memmove(lpc, lsf, kOrder * sizeof(Zpp16s));
  ownLSFToLPC_G723_16s_I(lpc);
  return zppStsOk;
}

ZppStatus zppsLSFToLPC_G723_16s_I(Zpp16s* lsfLpc) {
  if (anyNull(lsfLpc)) return zppStsNullPointer;
  ownLSFToLPC_G723_16s_I(lsfLpc);
  return zppStsOk;
}

void ownLSFToLPC_G723_16s_I(Zpp16s* lsfLpc) {
  Zpp32s p[kHalf + 1], q[kHalf + 1];
  multiplyFactors(lsfLpc, p);
  multiplyFactors(lsfLpc + 1, q);
  for (int i = 0; i < kHalf; ++i) {
    const Zpp32s sum = addSat32(p[i], p[i + 1]);
    lsfLpc[i] = coefficient(addSat32(subSat32(sum, q[i]), q[i + 1]));
    lsfLpc[kOrder - 1 - i] = coefficient(subSat32(addSat32(sum, q[i]), q[i + 1]));
  }
}
