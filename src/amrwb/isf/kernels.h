// The kernels of the ISF quantisation of AMR-WB. Arguments are trusted.
#pragma once

#include "amrwb/rate.h"
#include "core/variants.h"

// The entry of a codebook that is nearest to a vector, the first of equals; index 0 when every distance saturates
struct NearestEntry {
  int index;
  Zpp32s distance;  // doubled, saturated
  bool operator==(const NearestEntry&) const = default;
};

// components: those of 32, 64, 128 or 256 entries, by component, at most 2300 in magnitude. target: `dimension` components.
// ownIsfDistances_AMRWB_16s: the doubled squared distances of all entries, saturated.
#define ZPP_AMRWB_ISF_KERNELS(KERNEL)                                                                        \
  KERNEL(ownIsfDistances_AMRWB_16s, W7,                                                                      \
         void(const Zpp16s* target, const Zpp16s* components, int dimension, int entries, Zpp32s* distance)) \
  KERNEL(ownNearestIsf_AMRWB_16s, W7, NearestEntry(const Zpp16s* target, const Zpp16s* components, int dimension, int entries))

ZPP_AMRWB_ISF_KERNELS(ZPP_DECLARE_KERNEL)

void ownISFQuant_AMRWB_16s(const Zpp16s* isf, Zpp16s* pastResidual, Zpp16s* quantIsf, Zpp16s* index, zpp::amrwb::Mode mode);
// The ISFs of a good frame; unordered, unless null, receives them before they are put in order.
void ownISFReconstruct_AMRWB_16s(const Zpp16s* index, Zpp16s* pastResidual, Zpp16s* isf, Zpp16s* unordered,
                                 zpp::amrwb::Mode mode);
void ownISFDecode_AMRWB_16s(const Zpp16s* index, Zpp16s* pastResidual, const Zpp16s* prevIsf, Zpp16s* isfHistory, Zpp16s* isf,
                            bool badFrame, zpp::amrwb::Mode mode);
void ownSIDQuant_AMRWB_16s(const Zpp16s* isf, Zpp16s* quantIsf, Zpp16s* index);
void ownSIDDecode_AMRWB_16s(const Zpp16s* index, Zpp16s* isf);
Zpp16s ownISFStability_AMRWB_16s(const Zpp16s* isf, const Zpp16s* prevIsf);
