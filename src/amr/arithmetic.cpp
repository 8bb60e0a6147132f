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

}  // namespace zpp::amr
