// Levinson-Durbin recursion of order 16 (3GPP TS 26.190 clause 5.2.3).
#include <algorithm>

#include "amrwb/arithmetic.h"
#include "amrwb/lpc/kernels.h"
#include "core/checks.h"

using namespace zpp;
using namespace zpp::amrwb;

namespace {

constexpr Zpp16s kUnstable = 32750;  // largest reflection coefficient, Q15

// num / den, den normalised; of no use but defined for other denominators
Zpp32s quotient(Zpp32s num, Dpf den) {
  const Zpp16s approx = quotientQ15(0x3fff, den.hi);
  const Zpp32s error = subSat32(kMax32, mulDpf16(den, approx));
  const Zpp32s reciprocal = mulDpf16(toDpf(error), approx);
  return shlSat32(mulDpf(toDpf(num), toDpf(reciprocal)), 2);
}

struct Recursion {
  Dpf a[kOrder + 1];  // Q27
  Dpf error;          // normalised prediction error
  int errorShift = 0;

  // From order i - 1 to order i with the reflection coefficient k, Q31
  void advance(int i, Zpp32s k) {
    const Dpf reflection = toDpf(k);
    Dpf updated[kOrder + 1];
    for (int j = 1; j < i; ++j) updated[j] = toDpf(addSat32(mulDpf(reflection, a[i - j]), fromDpf(a[j])));
    updated[i] = toDpf(k >> 4);
    std::copy(updated + 1, updated + i + 1, a + 1);

    const Dpf remaining = toDpf(subSat32(kMax32, absSat32(mulDpf(reflection, reflection))));
    const Zpp32s product = mulDpf(error, remaining);
    const int norm = norm32(product);
    error = toDpf(shlWrap32(product, norm));
    errorShift += norm;
  }
};

}  // namespace

ZppStatus zppsLevinsonDurbin_AMRWB_32s16s(const Zpp32s* src, Zpp16s* lpc, Zpp16s* mem) {
  if (anyNull(src, lpc, mem)) return zppStsNullPointer;
  ownLevinsonDurbin_AMRWB_32s16s(src, lpc, mem);
  return zppStsOk;
}

void ownLevinsonDurbin_AMRWB_32s16s(const Zpp32s* src, Zpp16s* lpc, Zpp16s* mem) {
  Dpf r[kOrder + 1];
  std::transform(src, src + kOrder + 1, r, toDpf);
  Recursion recursion;
  recursion.error = r[0];
  bool stable = true;
  for (int i = 1; i <= kOrder && stable; ++i) {
    Zpp32s numerator = 0;
    for (int j = 1; j < i; ++j) numerator = addSat32(numerator, mulDpf(r[j], recursion.a[i - j]));
    numerator = addSat32(shlSat32(numerator, 4), fromDpf(r[i]));
    const Zpp32s magnitude = quotient(absSat32(numerator), recursion.error);
    const Zpp32s k = shlSat32(numerator > 0 ? negSat32(magnitude) : magnitude, recursion.errorShift);
    if (i > 1 && absSat16(high16(k)) > kUnstable)
      stable = false;  // the filter of the last stable frame serves once more
    else
      recursion.advance(i, k);
  }
  if (stable)
    for (int j = 1; j <= kOrder; ++j) mem[j - 1] = roundHigh16(shlSat32(fromDpf(recursion.a[j]), 1));
  lpc[0] = 4096;
  std::copy_n(mem, kOrder, lpc + 1);
}
