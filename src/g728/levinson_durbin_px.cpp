// Levinson-Durbin recursion: portable kernel.
#include "g728/kernels.h"
#include "g728/levinson_durbin.h"

using namespace zpp;
using namespace zpp::g728;

int ownLevinsonDurbin_G728_16s_PX(const Zpp16s* r, int startOrder, int order, Zpp16s* a, Zpp16s* residual, int* shift) {
  for (int i = startOrder; i < order; ++i) {
    Zpp64s sum = 0;
    for (int j = 0; j < i; ++j) sum += r[1 + j] * a[i - 1 - j];
    // A correlation beyond 32 bits saturates, and then is no smaller than any error.
    const Zpp16s x = rounded(r[i + 1] * Zpp64s{65536} + sum * (2 << *shift));
    Zpp16s error = *residual, updated[kMaxLevinsonOrder];
    Reflection reflection;
    if (!reflect(x, &error, &reflection)) return i;
    int newShift = *shift;
    std::copy_n(a, i, updated);
    if (!updatePairs(updated, i, reflection.rounded(), &newShift)) return i;
    std::copy_n(updated, i, a);
    a[i] = reflection.coefficient(newShift);
    *residual = error;
    *shift = newShift;
  }
  return order;
}

bool ownWeightLPC_G728_16s_PX(const Zpp16s* src, const Zpp16s* weight, Zpp16s* dst, int len, int shift) {
  for (int n = 0; n < len; ++n) {
    const Zpp32s product = src[n] * weight[n];
    if (product != shlWrap32(product, shift) >> shift) return false;
  }
  for (int n = 0; n < len; ++n) dst[n] = roundHigh16(shlWrap32(src[n] * weight[n], shift));
  return true;
}
