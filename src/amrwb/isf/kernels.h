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

NearestEntry ownNearestIsf_AMRWB_16s(const Zpp16s* target, const Zpp16s* vectors, int dimension, int entries);
void ownISFQuant_AMRWB_16s(const Zpp16s* isf, Zpp16s* pastResidual, Zpp16s* quantIsf, Zpp16s* index, zpp::amrwb::Mode mode);
// The ISFs of a good frame; unordered, unless null, receives them before they are put in order.
void ownISFReconstruct_AMRWB_16s(const Zpp16s* index, Zpp16s* pastResidual, Zpp16s* isf, Zpp16s* unordered,
                                 zpp::amrwb::Mode mode);
void ownISFDecode_AMRWB_16s(const Zpp16s* index, Zpp16s* pastResidual, const Zpp16s* prevIsf, Zpp16s* isfHistory, Zpp16s* isf,
                            bool badFrame, zpp::amrwb::Mode mode);
void ownSIDQuant_AMRWB_16s(const Zpp16s* isf, Zpp16s* quantIsf, Zpp16s* index);
void ownSIDDecode_AMRWB_16s(const Zpp16s* index, Zpp16s* isf);
Zpp16s ownISFStability_AMRWB_16s(const Zpp16s* isf, const Zpp16s* prevIsf);
