// The modes of GSM-AMR and the sizes that its steps share.
#pragma once

#include "zppsc.h"

namespace codecs::amr {

inline constexpr int kFrame = 160, kSubframe = 40, kSubframes = 4, kOrder = 10, kSet = kOrder + 1;

// Speech modes in the order of their rates: 4.75, 5.15, 5.9, 6.7, 7.4, 7.95, 10.2 and 12.2 kbit/s
inline constexpr int kModes = 8;
enum Mode { k475, k515, k590, k670, k740, k795, k1020, k1220 };
inline constexpr int kBitRates[kModes] = {4750, 5150, 5900, 6700, 7400, 7950, 10200, 12200};

constexpr int modeOf(int bitRate) {
  int mode = 0;
  while (mode < k1220 && kBitRates[mode] != bitRate) ++mode;
  return mode;
}

constexpr ZppSpeechRate rateOf(int mode) {
  constexpr ZppSpeechRate rates[kModes] = {ZPP_RATE_4750, ZPP_RATE_5150, ZPP_RATE_5900,  ZPP_RATE_6700,
                                           ZPP_RATE_7400, ZPP_RATE_7950, ZPP_RATE_10200, ZPP_RATE_12200};
  return rates[mode];
}

}  // namespace codecs::amr
