#include "codecs/g729/analysis.h"

#include <algorithm>

#include "codecs/codec.h"
#include "codecs/fixed_point.h"
#include "codecs/g729/tables.h"

namespace codecs::g729 {

const Filter& LevinsonDurbin::solve(const Zpp32s* autocorrelation, Zpp16s* energy) {
  Filter a;
  Reflection reflection;
  Zpp16s residual = 0;
  if (!warns(zppsLevinsonDurbin_G729_32s16s(autocorrelation, kOrder, a.data(), reflection.data(), &residual))) {
    filter_ = a;
    reflection_ = reflection;
    if (energy != nullptr) *energy = residual;
  }
  return filter_;
}

Correlations autocorrelate(std::span<const Zpp16s, kWindowSize> speech) {
  alignas(16) std::array<Zpp16s, kWindowSize> windowed;
  require(zppsMul_NR_16s_Sfs(speech.data(), lpWindow.data(), windowed.data(), kWindowSize, 15));
  Correlations result;
  int exponent = 1;
  Zpp32s norm = 0;
  while (warns(zppsAutoCorr_NormE_16s32s(windowed.data(), kWindowSize, result.windowed.data(), kLags, &norm))) {
    require(zppsRShiftC_16s_I(windowed.data(), kWindowSize, 2));
    exponent += 4;
  }
  result.exponent = exponent - norm;
  std::transform(result.windowed.begin(), result.windowed.begin() + kOrder + 1, result.original.begin(), high16);
  require(zppsLagWindow_G729_32s_I(result.windowed.data() + 1, kLags - 1));
  return result;
}

}  // namespace codecs::g729
