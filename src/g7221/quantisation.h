// The quantiser of MLT coefficients (ITU-T G.722.1 clause 3.6), shared by its processor variants.
#pragma once

#include "core/fixed_point.h"
#include "g7221/tables.h"

// level = (|c| * inverse + dead zone) >> 13, with an inverse step of 15 + 2 bits and a dead zone of 13 + 2 bits. The two lowest
// bits of both are handled apart, in 16 bits.
struct Quantiser {
  Zpp16s inverse, inverseLowBits;  // 0..23166, 0..3
  Zpp16s deadZone, deadZoneLowBits;
  Zpp16s maxLevel;

  Quantiser(Zpp32s category, Zpp32s powerIndex)
      : deadZone(cnstIntDeadZone_G722[category]),
        deadZoneLowBits(cnstIntDeadZone_G722_low_bits[category]),
        maxLevel(cnstMaxBin_G722[category]) {
    const Zpp32s exact = cnstStepSizeInv_G722[category] * cnstStdDeviationInv_G722[powerIndex] + 4096;
    inverse = static_cast<Zpp16s>(exact >> 15);
    inverseLowBits = static_cast<Zpp16s>(exact >> 13 & 3);
  }

  Zpp16s operator()(Zpp16s coefficient) const {
    const Zpp16s magnitude = zpp::absSat16(coefficient);
    // Cut to 16 bits as the standard's shift does; codecs stay far below.
    const Zpp16s low = zpp::wrap16(2 * magnitude * inverseLowBits);
    const Zpp32s level = (magnitude * inverse + deadZone + (((low >> 1) + deadZoneLowBits) >> 2)) >> 13;
    return static_cast<Zpp16s>(level < 0 ? 0 : level > maxLevel ? maxLevel : level);
  }
};
