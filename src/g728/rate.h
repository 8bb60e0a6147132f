// Rates of ITU-T G.728: that of the main body, and those of Annex H, whose codebooks the library does not have.
#pragma once

#include "zppsc.h"

namespace zpp::g728 {

constexpr bool hasCodebook(Zpp32s rate) { return rate == ZPP_RATE_16000; }
constexpr bool isRate(Zpp32s rate) { return rate == ZPP_RATE_9600 || rate == ZPP_RATE_12800 || hasCodebook(rate); }

}  // namespace zpp::g728
