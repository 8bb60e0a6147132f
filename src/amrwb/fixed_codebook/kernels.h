// The kernels of the algebraic codebook of AMR-WB and their processor variants.
#pragma once

#include "amrwb/rate.h"
#include "core/variants.h"

namespace zpp::amrwb {

// What the search knows of the 64 positions, by track and position in the track: position 4 i + track is element
// 16 track + i.
struct PulseTarget {
  Zpp16s corr[64];    // backward-filtered target with the pulse's sign
  Zpp16s sign[64];    // 32767 or -32768
  Zpp16s energy[64];  // of the response to a pulse
  // [track t][16 i + j]: position i of track t with position j of track t + 1, signs included
  Zpp16s cross[4][256];
};

// A pair of pulses
struct PulsePair {
  Zpp16s first, second;  // positions
  Zpp16s energy;
  bool operator==(const PulsePair&) const = default;
};

}  // namespace zpp::amrwb

// ownChooseSigns_AMRWB_16s: corr and sign of a target from its 64 correlations with the response to a pulse at each position,
// in
//   order of positions, and from the residual's target; weight: of the former, Q15. rank: of each position in its track, 0 the
//   best.
// ownPulseCorrelations_AMRWB_16s: energy and cross of a target whose signs are known, for a response of 64 samples.
// ownPulseGains_AMRWB_16s: gain[16 k + i] = the correlation of the filtered code with the response to position i of track + k,
//   k = 0 and 1, signed, plus that position's energy. exact: no partial sum of these correlations reaches 2^30.
// ownSearchPulsePair_AMRWB_16s: of the pairs in track and the next one, that with the largest ratio of squared correlation to
//   energy, the first of equals; positions 0 and energy 1 where none passes. corr, energy: of the pulses so far. candidate: not
//   0 for the positions of the first track that take part. Positions are counted in the tracks.
// ownSearchTwoPulses_AMRWB_16s: the same of all pairs of an even and an odd position 0..63; 0 and 1 where none passes. energy:
//   of the response to a pulse at each place, half of what target->energy counts in.
#define ZPP_AMRWB_FIXED_CODEBOOK_KERNELS(KERNEL)                                                                               \
  KERNEL(ownChooseSigns_AMRWB_16s, W7,                                                                                         \
         void(const Zpp32s* sums, const Zpp16s* residualTarget, Zpp16s weight, zpp::amrwb::PulseTarget* target, Zpp16s* rank)) \
  KERNEL(ownPulseCorrelations_AMRWB_16s, W7, void(const Zpp16s* impulse, zpp::amrwb::PulseTarget* target))                     \
  KERNEL(ownPulseGains_AMRWB_16s, W7_V3,                                                                                       \
         void(const Zpp16s* impulse, const Zpp16s* filteredCode, const zpp::amrwb::PulseTarget* target, int track,             \
              Zpp16s* gain, bool exact))                                                                                       \
  KERNEL(ownSearchPulsePair_AMRWB_16s, W7_V3,                                                                                  \
         zpp::amrwb::PulsePair(const zpp::amrwb::PulseTarget* target, int track, Zpp16s corr, Zpp16s energy,                   \
                               const Zpp16s* gain, const Zpp16s* candidate))                                                   \
  KERNEL(ownSearchTwoPulses_AMRWB_16s, W7, zpp::amrwb::PulsePair(const zpp::amrwb::PulseTarget* target, const Zpp16s* energy))

ZPP_AMRWB_FIXED_CODEBOOK_KERNELS(ZPP_DECLARE_KERNEL)

void ownAlgebraicCodebookSearch_AMRWB_16s(const Zpp16s* target, const Zpp16s* residualTarget, const Zpp16s* impulse,
                                          Zpp16s* code, Zpp16s* filteredCode, Zpp16s* index, zpp::amrwb::Mode mode);
void ownAlgebraicCodebookDecode_AMRWB_16s(const Zpp16s* index, Zpp16s* code, zpp::amrwb::Mode mode);
