#include "amr/gain/measures.h"

#include "core/kernels.h"

namespace zpp::amr {

GainMeasures measureGains(const GainTask& task, Mode mode) {
  const bool alsoCodeGain = mode == k475 || mode == k795;
  const Zpp32s start = alsoCodeGain ? 0 : 1;
  const Zpp16s* c = task.coefficients;
  GainMeasures m = {};
  m.term[0] = {c[0], c[1]};
  m.term[1] = {negSat16(c[2]), addSat16(c[3], 1)};

  Zpp16s y2[kSubframe];
  ownRShiftC_16s(task.filteredCode, y2, kSubframe, 3);
  const Normalised energyY2 = normalised(energy(y2, kSubframe, start));
  const Normalised withTarget = normalised(dotProduct(task.target, y2, kSubframe, start));
  const Normalised withVector = normalised(dotProduct(task.filteredVector, y2, kSubframe, start));
  m.term[2] = {energyY2.value, static_cast<Zpp16s>(-3 - energyY2.shift)};
  m.term[3] = {negSat16(withTarget.value), static_cast<Zpp16s>(7 - withTarget.shift)};
  m.term[4] = {withVector.value, static_cast<Zpp16s>(7 - withVector.shift)};

  if (alsoCodeGain) {
    const Normalised withRest = normalised(dotProduct(task.codeTarget, y2, kSubframe));
    if (withRest.value > 0)
      m.codeGain = {divQ15(static_cast<Zpp16s>(withRest.value >> 1), energyY2.value),
                    static_cast<Zpp16s>(6 - withRest.shift - m.term[2].exponent - 14)};
  }
  return m;
}

}  // namespace zpp::amr
