#include "amr/arithmetic.h"

#include "amr/tables.h"

namespace zpp::amr {

Root squareRoot(Zpp32s x) {
  if (x <= 0) return {0, 0};
  const int shift = norm32(x) & ~1;
  const Zpp32s mantissa = (x << shift) >> 9;
  const int i = (mantissa >> 16) - 16;  // 0..47
  const Zpp32s step = sqrtTable[i] - sqrtTable[i + 1];
  return {sqrtTable[i] * 65536 - 2 * step * ((mantissa >> 1) & 0x7fff), shift};
}

Zpp16s median(const Zpp16s* values, int count) {
  Zpp16s sorted[9];
  for (int n = 0; n < count; ++n) {
    int place = n;
    for (; place > 0 && sorted[place - 1] > values[n]; --place) sorted[place] = sorted[place - 1];
    sorted[place] = values[n];
  }
  return sorted[count / 2];
}

Zpp32s correlation(const Zpp16s* x, const Zpp16s* y, int len, Zpp32s start) {
  // With magnitudes below these no partial sum reaches 2^31 - 1; start is 0 or 1.
  if (Zpp64s{ownMaxAbs_16s(x, len) + 1} * (ownMaxAbs_16s(y, len) + 1) * len < (1 << 30) - 1)
    return static_cast<Zpp32s>(start + 2 * ownDotProd_16s(x, y, len));
  Zpp32s sum = start;
  for (int n = 0; n < len; ++n) sum = macDbl(sum, x[n], y[n]);
  return sum;
}

}  // namespace zpp::amr
