// The state block of a G.726 coder: the delayed variables of ITU-T G.726 and what Init chose.
//
// The application owns the block, at any alignment. A call copies it into one of these structures, codes, and copies it back.
#pragma once

#include <algorithm>
#include <cstring>
#include <type_traits>

#include "core/fixed_point.h"

namespace zpp::g726 {

inline constexpr int encoderStateSize = 88, decoderStateSize = 92;

inline constexpr int zeros = 6;         // b1..b6 and dq1..dq6, newest first
inline constexpr int taps = zeros + 2;  // then a1, a2 and sr1, sr2

enum Law : Zpp8u { muLaw, aLaw, linear };

struct AdpcmState {
  Zpp32s yl = 34816;              // slow scale factor, Q15
  Zpp16s yu = 544;                // fast scale factor, Q9
  Zpp16s dms = 0;                 // short-term average of F(I), Q9
  Zpp16s dml = 0;                 // long-term average of F(I), Q11
  Zpp16s ap = 0;                  // speed control, Q8
  Zpp16s coefficient[taps] = {};  // b1..b6, a1, a2, Q14
  // dq1..dq6, sr1, sr2 as floating words: bit 10 sign, bits 9..6 exponent, bits 5..0 mantissa (normalised, also that of zero)
  Zpp16u history[taps] = {32, 32, 32, 32, 32, 32, 32, 32};
  Zpp8u tone = 0;              // td
  Zpp8u sign1 = 0, sign2 = 0;  // pk1, pk2: whether dq + sez of the last two samples was negative
  Zpp8u rate = 0;              // 0..3 for 16, 24, 32 and 40 kbit/s
  Zpp8u law = linear;          // output of a decoder
  Zpp8u unused[3] = {};
};
static_assert(sizeof(AdpcmState) <= encoderStateSize && sizeof(AdpcmState) <= decoderStateSize);

// Every field is brought into the range that the standard's arithmetic keeps by itself. This changes nothing in a state that
// Init and the coders wrote; a block of rubbish yields noise, but no table index or shift count out of bounds.
inline AdpcmState loadState(const void* block) {
  const auto limit = [](auto& field, int lowest, int highest) {
    field = static_cast<std::remove_reference_t<decltype(field)>>(std::clamp<int>(field, lowest, highest));
  };
  AdpcmState state;
  std::memcpy(&state, block, sizeof state);
  limit(state.yl, 34816, 327680);
  limit(state.yu, 544, 5120);
  limit(state.dms, 0, 3584);
  limit(state.dml, 0, 14336);
  limit(state.ap, 0, 512);
  for (Zpp16u& word : state.history) word = (word & 0x7ff) | 32;
  state.tone &= 1;
  state.sign1 &= 1;
  state.sign2 &= 1;
  state.rate &= 3;
  return state;
}

inline void storeState(const AdpcmState& state, void* block) { std::memcpy(block, &state, sizeof state); }

}  // namespace zpp::g726
