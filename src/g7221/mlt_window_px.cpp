// Windowing and folding of the modulated lapped transform: portable kernels.
#include <cstring>

#include "core/fixed_point.h"
#include "g7221/kernels.h"
#include "g7221/tables.h"

using namespace zpp;

namespace {

// A two-term dot product, rounded half up; the windows are small enough for 32 bits with any samples.
template <int shift>
Zpp16s windowed(const Zpp16s* factors, Zpp16s a, Zpp16s b) {
  return sat16((factors[0] * a + factors[1] * b + (1 << (shift - 1))) >> shift);
}

}  // namespace

void ownDecomposeMLTToDCT_G722_16s_PX(const Zpp16s* src, Zpp16s* srcDstOld, Zpp16s* dst) {
  const Zpp16s* window = cnstSamples2MLT_G722;
  for (int i = 0; i < 160; ++i, window += 2) dst[i] = windowed<15>(window, srcDstOld[159 - i], srcDstOld[160 + i]);
  for (int i = 0; i < 160; ++i, window += 2) dst[160 + i] = windowed<15>(window, src[i], src[319 - i]);
  std::memcpy(srcDstOld, src, 320 * sizeof(Zpp16s));
}

void ownDecomposeDCTToMLT_G722_16s_PX(const Zpp16s* src, Zpp16s* srcDstOld, Zpp16s* dst) {
  const Zpp16s* window = cnstMLT2Samples_G722;
  for (int i = 0; i < 160; ++i, window += 2) dst[i] = windowed<13>(window, src[159 - i], srcDstOld[i]);
  for (int i = 0; i < 160; ++i, window += 2) dst[160 + i] = windowed<13>(window, src[i], srcDstOld[159 - i]);
  std::memcpy(srcDstOld, src + 160, 160 * sizeof(Zpp16s));
}
