// The nine bit rates of AMR-WB.
#pragma once

#include "zppsc.h"

namespace zpp::amrwb {

enum Mode { mode660, mode885, mode1265, mode1425, mode1585, mode1825, mode1985, mode2305, mode2385, noMode = -1 };

constexpr Mode modeOf(ZppSpeechRate rate) {
  switch (rate) {
    case ZPP_RATE_6600:
      return mode660;
    case ZPP_RATE_8850:
      return mode885;
    case ZPP_RATE_12650:
      return mode1265;
    case ZPP_RATE_14250:
      return mode1425;
    case ZPP_RATE_15850:
      return mode1585;
    case ZPP_RATE_18250:
      return mode1825;
    case ZPP_RATE_19850:
      return mode1985;
    case ZPP_RATE_23050:
      return mode2305;
    case ZPP_RATE_23850:
      return mode2385;
    default:
      return noMode;
  }
}
constexpr bool isSpeechRate(ZppSpeechRate rate) { return modeOf(rate) != noMode; }

}  // namespace zpp::amrwb
