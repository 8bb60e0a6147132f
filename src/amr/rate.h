// The rates of GSM-AMR as indices of tables.
#pragma once

#include "zppsc.h"

namespace zpp::amr {

// Speech modes in the order of their rates, then the silence descriptor
enum Mode { k475, k515, k590, k670, k740, k795, k102, k122, kSid, kNoMode };

constexpr Mode modeOf(ZppSpeechRate rate) {
  switch (rate) {
    case ZPP_RATE_4750:
      return k475;
    case ZPP_RATE_5150:
      return k515;
    case ZPP_RATE_5900:
      return k590;
    case ZPP_RATE_6700:
      return k670;
    case ZPP_RATE_7400:
      return k740;
    case ZPP_RATE_7950:
      return k795;
    case ZPP_RATE_10200:
      return k102;
    case ZPP_RATE_12200:
      return k122;
    case ZPP_RATE_DTX:
      return kSid;
    default:
      return kNoMode;
  }
}

constexpr bool isSpeechRate(ZppSpeechRate rate) { return modeOf(rate) <= k122; }

}  // namespace zpp::amr
