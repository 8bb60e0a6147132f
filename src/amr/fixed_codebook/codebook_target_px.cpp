// Target of the codebook search and signs of its pulses (3GPP TS 26.090 clause 5.7): portable kernels.
#include "amr/fixed_codebook/kernels.h"
#include "core/fixed_point.h"
#include "core/kernels.h"
#include "lpc/kernels.h"

using namespace zpp;

void ownTargetSignalCorr_X2_GSMAMR_16s_PX(const Zpp16s* target, const Zpp16s* impulse, Zpp16s* corr, int guardBits,
                                          const Grid& grid) {
  Zpp32s exact[kSubframe], ordered[kSubframe];
  ownCrossCorr_16s32s_Sfs(target, impulse, kSubframe, exact, 0);
  for (int slot = 0; slot < kSubframe; ++slot) ordered[slot] = exact[grid.positionOf[slot]];
  Zpp32s total = 5;
  for (int first = 0; first < kSubframe; first += grid.perTrack) {
    Zpp32s largest = 0;
    for (int i = 0; i < grid.perTrack; ++i) {
      const Zpp32s magnitude = absSat32(ordered[first + i]);
      if (magnitude > largest) largest = magnitude;
    }
    total = addSat32(total, largest);
  }
  // No magnitude exceeds the total, so the shift cannot overflow.
  const int shift = norm32(total) - guardBits + 1;
  for (int slot = 0; slot < kSubframe; ++slot) {
    const Zpp32s value = ordered[slot];
    corr[slot] = roundHigh16(shift < 0 ? value >> -shift : value * (1 << shift));
  }
}

void ownSetSign_GSMAMR_16s_PX(Zpp16s* corr, Zpp16s* sign, Zpp16s* candidate, int candidates) {
  for (int slot = 0; slot < kSubframe; ++slot) {
    sign[slot] = corr[slot] >= 0 ? 32767 : -32767;
    candidate[slot] = corr[slot] = absSat16(corr[slot]);
  }
  int smallest = 0;
  for (int first = 0; first < kSubframe; first += kFiveTracks.perTrack)
    for (int k = candidates; k < kFiveTracks.perTrack; ++k) {
      // A value of 32767 is never found: when nothing smaller is left, the slot found last is struck out again.
      Zpp16s least = 32767;
      for (int slot = first; slot < first + kFiveTracks.perTrack; ++slot)
        if (candidate[slot] >= 0 && candidate[slot] < least) {
          least = candidate[slot];
          smallest = slot;
        }
      candidate[smallest] = -1;
    }
}

void ownSetSign_M102M122_GSMAMR_16s_PX(const Zpp16s* ltpResidual, Zpp16s* corr, Zpp16s* sign, Zpp16s* trackBest,
                                       Zpp16s* trackOrder, const Grid& grid) {
  const auto inverseNorm = [](const Zpp16s* x) {
    return high16(shlSat32(ownInvSqrt(sat32(256 + 2 * ownDotProd_16s(x, x, kSubframe))), 5));
  };
  const Zpp16s ofResidual = inverseNorm(ltpResidual), ofCorr = inverseNorm(corr);
  Zpp16s largest = kMin16, largestOfAll = kMin16;
  for (int track = 0; track < grid.tracks; ++track) {
    largest = kMin16;
    for (int slot = track * grid.perTrack; slot < (track + 1) * grid.perTrack; ++slot) {
      const Zpp32s mixed = macDbl(mulDbl(ofResidual, ltpResidual[grid.positionOf[slot]]), ofCorr, corr[slot]);
      Zpp16s value = sat16((mixed >> 6) + ((mixed >> 5) & 1));  // 10 bits up, rounded to the upper half
      sign[slot] = 32767;
      if (value < 0) {
        sign[slot] = -32767;
        value = negSat16(value);
        corr[slot] = negSat16(corr[slot]);
      }
      if (value <= largest) continue;
      largest = value;
      trackBest[track] = static_cast<Zpp16s>(slot);
    }
    if (largest <= largestOfAll) continue;
    largestOfAll = largest;
    trackOrder[0] = static_cast<Zpp16s>(track);
  }
  for (int k = 1; k < 2 * grid.tracks; ++k) trackOrder[k] = static_cast<Zpp16s>((trackOrder[0] + k) % grid.tracks);
}
