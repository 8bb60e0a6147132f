// Gain of the comfort noise (ITU-T G.723.1 Annex A): a quantiser of three segments with steps of 2, 4 and 8.
#include <algorithm>

#include "core/checks.h"
#include "core/fixed_point.h"
#include "g723/arithmetic.h"
#include "g723/dtx/kernels.h"
#include "g723/tables.h"

using namespace g723;
using namespace zpp;

namespace {

constexpr int kSegment = 16;  // codes of a segment but the last, which has 32

constexpr Zpp32s kSegmentEnd[3] = {2048, 18432, 231233};  // the first energy above each segment

// Energy of one of the gains of a segment
Zpp64s energyOf(int segment, int step) {
  const int gain = base[segment] + step * (2 << segment);
  return Zpp64s{2} * gain * gain;
}

// Mean energy of up to three frames, or that of the last good frame
Zpp32s meanEnergy(const Zpp16s* energies, const Zpp16s* exponents, int count) {
  if (count == 0) return mul32Q15(shlSat32(energies[0], 16 - 2 * exponents[0]), fact[0]);
  const Zpp16s least = *std::min_element(exponents, exponents + count);
  Zpp32s sum = 0;
  for (int i = 0; i < count; ++i) sum += mulRoundQ15(fact[count], shr16(energies[i], exponents[i] - least));
  return shlSat32(sum, 15 - least);
}

}  // namespace

ZppStatus zppsSIDGainQuant_G723_16s(const Zpp16s* energies, const Zpp16s* exponents, Zpp16s* index, int count) {
  if (anyNull(energies, exponents, index)) return zppStsNullPointer;
  if (outside(count, 0, 3)) return zppStsBadArgument;
  *index = static_cast<Zpp16s>(ownSIDGainQuant_G723_16s(energies, exponents, count));
  return zppStsOk;
}

ZppStatus zppsSIDGainDecode_G723_16s(Zpp16s index, Zpp16s* gain) {
  if (anyNull(gain)) return zppStsNullPointer;
  if (outside<int>(index, 0, 63)) return zppStsBadCodedParam;
  *gain = ownSIDGainDecode_G723_16s(index);
  return zppStsOk;
}

int ownSIDGainQuant_G723_16s(const Zpp16s* energies, const Zpp16s* exponents, int count) {
  const Zpp32s energy = meanEnergy(energies, exponents, count);
  if (energy >= kSegmentEnd[2]) return 63;
  const int segment = energy >= kSegmentEnd[1] ? 2 : energy >= kSegmentEnd[0] ? 1 : 0;
  int step = segment == 2 ? kSegment : kSegment / 2;
  for (int width = step / 2; width > 0; width /= 2) step += energy >= energyOf(segment, step) ? width : -width;
  // The bisection ends on one of the two neighbours; the other one wins equal distances.
  const Zpp64s reached = energyOf(segment, step);
  if (reached <= energy) {
    if (reached - energy <= energy - energyOf(segment, step + 1)) ++step;
  } else {
    if (reached - energy >= energy - energyOf(segment, step - 1)) --step;
  }
  return kSegment * segment + step;
}

Zpp16s ownSIDGainDecode_G723_16s(int index) {
  const int segment = std::min(index / kSegment, 2);
  return static_cast<Zpp16s>((base[segment] + (index - kSegment * segment) * (2 << segment)) * 32);
}
