// Recursive filters of a subframe: portable kernels.
#include <cstring>

#include "core/fixed_point.h"
#include "g723/arithmetic.h"
#include "g723/filters/kernels.h"

using namespace g723;
using namespace zpp;

namespace {

// A delay line that runs through a subframe: samples enter in front of the earlier ones, so that nothing moves.
class DelayLine {
 public:
  explicit DelayLine(const Zpp16s* memory) { std::memcpy(newest_, memory, kOrder * sizeof(Zpp16s)); }
  void save(Zpp16s* memory) const { std::memcpy(memory, newest_, kOrder * sizeof(Zpp16s)); }

  void enter(Zpp16s sample) { *--newest_ = sample; }
  Zpp16s newest() const { return *newest_; }

  Zpp32s added(Zpp32s sum, const Zpp16s* coefficients) const {
    for (int j = 0; j < kOrder; ++j) sum = macDbl(sum, coefficients[j], newest_[j]);
    return sum;
  }
  Zpp32s subtracted(Zpp32s sum, const Zpp16s* coefficients) const {
    for (int j = 0; j < kOrder; ++j) sum = msuDbl(sum, coefficients[j], newest_[j]);
    return sum;
  }

 private:
  DelayLine(const DelayLine&) = delete;
  DelayLine& operator=(const DelayLine&) = delete;

  Zpp16s samples_[kSubframe + kOrder];
  Zpp16s* newest_ = samples_ + kSubframe;
};

}  // namespace

void ownSynthesisFilter_G723_16s_I_PX(const Zpp16s* lpc, Zpp16s* srcDst, Zpp16s* memory) {
  DelayLine outputs(memory);
  for (int n = 0; n < kSubframe; ++n) {
    srcDst[n] = roundHigh16(shlSat32(outputs.added(fromHigh16(srcDst[n]) >> 3, lpc), 2));
    outputs.enter(srcDst[n]);
  }
  outputs.save(memory);
}

void ownPoleZeroFilter_G723_16s_I_PX(const Zpp16s* zeros, const Zpp16s* poles, Zpp16s tilt, Zpp16s* srcDst, Zpp16s* memory) {
  DelayLine inputs(memory), outputs(memory + kOrder);
  for (int n = 0; n < kSubframe; ++n) {
    Zpp32s sum = inputs.subtracted(fromHigh16(srcDst[n]) >> 2, zeros);
    inputs.enter(srcDst[n]);
    sum = shlSat32(outputs.added(sum, poles), 2);
    srcDst[n] = roundHigh16(macDbl(sum, outputs.newest(), tilt));
    outputs.enter(roundHigh16(sum));
  }
  inputs.save(memory);
  outputs.save(memory + kOrder);
}

void ownWeightedSynthesis_G723_16s_PX(const Zpp16s* lpc, const Zpp16s* weighting, const Zpp16s* excitation, Zpp16s* dst,
                                      Zpp16s* memory, int extraBit) {
  DelayLine synthesis(memory), weighted(memory + kOrder);
  for (int n = 0; n < kSubframe; ++n) {
    Zpp32s sum = synthesis.added(fromHigh16(excitation[n]) >> 3, lpc);
    const Zpp16s synthesised = roundHigh16(shlSat32(sum, 2));
    sum = shlSat32(synthesis.subtracted(sum, weighting), extraBit);
    synthesis.enter(synthesised);
    dst[n] = roundHigh16(shlSat32(weighted.added(sum, weighting + kOrder), 2));
    weighted.enter(dst[n]);
  }
  synthesis.save(memory);
  weighted.save(memory + kOrder);
}
