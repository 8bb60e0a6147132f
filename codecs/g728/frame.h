// What encoder and decoder of ITU-T G.728 agree on: the adaptation cycle of four vectors and its payload.
#pragma once

#include "zppsc.h"

namespace codecs::g728 {

inline constexpr int kVector = 5, kVectors = 4, kCycle = kVector * kVectors;  // samples, vectors a cycle, samples a cycle
inline constexpr int kBlock = kVector + 1;                                    // words of a vector with its exponent
inline constexpr int kPayload = 5;                                            // octets: four indices of 10 bits
inline constexpr int kOrder = 50, kShortOrder = 10;  // of the synthesis filter and of all other predictors

// The indices of a cycle as RFC 3551 packs them: most significant bits first, without gaps
inline void pack(const Zpp32s (&index)[kVectors], Zpp8u* payload) {
  Zpp32u window = 0;
  int held = 0;  // bits in the window
  for (const Zpp32s i : index) {
    window = window << 10 | static_cast<Zpp32u>(i);
    for (held += 10; held >= 8; held -= 8) *payload++ = static_cast<Zpp8u>(window >> (held - 8));
  }
}
inline void unpack(const Zpp8u* payload, Zpp32s (&index)[kVectors]) {
  Zpp32u window = 0;
  int held = 0;
  for (Zpp32s& i : index) {
    for (; held < 10; held += 8) window = window << 8 | *payload++;
    held -= 10;
    i = static_cast<Zpp32s>(window >> held & 1023);
  }
}

}  // namespace codecs::g728
