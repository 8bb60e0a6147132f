#include "codecs/amr/analysis.h"

#include <cstring>

#include "codecs/codec.h"
#include "codecs/fixed_point.h"

namespace codecs::amr {

void LpAnalysis::analyse(const Zpp16s* speech, const Zpp16s* window, Zpp16s* a) {
  constexpr int kLength = 240;
  Zpp16s windowed[kLength], reflection[kOrder], error;
  Zpp32s correlation[kSet], norm;
  require(zppsMul_NR_16s_Sfs(speech, window, windowed, kLength, 15));
  while (warns(zppsAutoCorr_NormE_16s32s(windowed, kLength, correlation, kSet, &norm)))
    require(zppsRShiftC_16s_I(windowed, kLength, 2));
  require(zppsLagWindow_G729_32s_I(correlation + 1, kOrder));
  if (!warns(zppsLevinsonDurbin_G729_32s16s(correlation, kOrder, a, reflection, &error)))
    std::memcpy(lastA_, a, sizeof lastA_);
  else
    std::memcpy(a, lastA_, sizeof lastA_);
}

namespace {

// Powers of a factor, Q15, 1 as nearly as it goes: a coefficient of 4096 stays what it is.
struct Powers {
  constexpr explicit Powers(Zpp16s factor) {
    for (Zpp16s power = factor; Zpp16s & p : q15) {
      if (&p == q15) continue;
      p = power;
      power = static_cast<Zpp16s>((power * factor + 0x4000) >> 15);
    }
  }
  Zpp16s q15[kSet] = {32767};
};
constexpr Powers kPowers94(30802), kPowers90(29491), kPowers60(19661);

}  // namespace

Weighting::Weighting(const Zpp16s* a, int mode) {
  require(zppsMul_NR_16s_Sfs(a, (mode <= k795 ? kPowers94 : kPowers90).q15, numerator, kSet, 15));
  require(zppsMul_NR_16s_Sfs(a, kPowers60.q15, denominator, kSet, 15));
}

void PerceptualWeighting::weigh(const Zpp16s* speech, const Weighting* filters, Zpp16s* dst) {
  for (int k = 0; k < kSubframes; ++k, dst += kSubframe) {
    require(zppsResidualFilter_G729_16s(filters[k].numerator, speech + kSubframe * k, dst, kSubframe));
    warns(zppsSynthesisFilter_GSMAMR_16s(filters[k].denominator, dst, dst, kSubframe, memory_));
    std::memcpy(memory_, dst + kSubframe - kOrder, sizeof memory_);
  }
}

void ResonanceGuard::examine(const Zpp16s* lsp) {
  const auto narrowest = [lsp](int from, int to) {
    Zpp16s least = 32767;
    for (int i = from; i <= to; ++i) least = std::min(least, subSat16(lsp[i], lsp[i + 1]));
    return least;
  };
  const int lowBand = lsp[1] > 32000 ? 600 : lsp[1] > 30500 ? 800 : 1100;
  const bool resonant = narrowest(3, 7) < 1500 || narrowest(1, 2) < lowBand;
  frames_ = resonant ? std::min(Zpp16s{12}, addSat16(frames_, 1)) : Zpp16s{0};
}

bool ResonanceGuard::limits(Zpp16s pitchGain) const {
  if (frames_ < 12 || pitchGain <= kLimit) return false;
  auto sum = static_cast<Zpp16s>(pitchGain >> 3);
  for (const Zpp16s gain : gains_) sum = addSat16(sum, gain);
  return sum > kLimit;  // the mean of eight
}

void ResonanceGuard::note(Zpp16s pitchGain) {
  std::memmove(gains_, gains_ + 1, sizeof gains_ - sizeof gains_[0]);
  gains_[6] = static_cast<Zpp16s>(pitchGain >> 3);
}

}  // namespace codecs::amr
