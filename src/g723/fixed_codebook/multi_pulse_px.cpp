// Multipulse excitation: portable kernels.
#include <cstdlib>

#include "core/fixed_point.h"
#include "g723/arithmetic.h"
#include "g723/fixed_codebook/kernels.h"

using namespace g723;
using namespace zpp;

void ownMultiPulseSet_G723_16s32s_PX(const Zpp32s* scores, const Zpp16s* autocorr, PulseSet* set) {
  Zpp32s left[kPulsePlaces];
  bool taken[kPulsePlaces] = {};
  for (int i = 0; i < kPulsePlaces; ++i) left[i] = scores[i];
  const Zpp16s amplitude = absSat16(set->amplitude[0]);
  taken[set->place[0]] = true;
  for (int k = 1; k < set->count; ++k) {
    const int previous = set->place[k - 1];
    Zpp32s largest = -1;
    int next = 0;
    for (int i = 0; i < kPulsePlaces; ++i) {
      if (taken[i]) continue;
      left[i] = msuDbl(left[i], set->amplitude[k - 1], autocorr[std::abs(i - previous)]);
      const Zpp32s magnitude = absSat32(left[i]);
      if (magnitude > largest) largest = magnitude, next = i;
    }
    taken[next] = true;
    set->place[k] = static_cast<Zpp16s>(next);
    set->amplitude[k] = left[next] < 0 ? negSat16(amplitude) : amplitude;
  }
}

Zpp32s ownMultiPulseFit_G723_16s32s_PX(const Zpp16s* target, const Zpp16s* response, int grid, const PulseSet* set) {
  Zpp16s pulses[kSubframe] = {};
  for (int k = 0; k < set->count; ++k) pulses[2 * set->place[k] + grid] = set->amplitude[k];
  Zpp32s fit = 0;
  for (int n = 0; n < kSubframe; ++n) {
    Zpp32s sum = 0;
    for (int m = grid; m <= n; m += 2)
      if (pulses[m] != 0) sum = macDbl(sum, pulses[m], response[n - m]);
    const Zpp16s filtered = high16(shlSat32(sum, 2));
    fit = macDbl(fit, target[n], filtered);
    fit = subSat32(fit, mulDbl(filtered, filtered) >> 1);
  }
  return fit;
}
