// The four parts of a frame between which the short-term filter interpolates (3GPP TS 46.010 clause 5.2.9).
#pragma once

#include <algorithm>
#include <array>

#include "codecs/codec.h"
#include "codecs/gsmfr/frame.h"

namespace codecs::gsmfr {

inline constexpr int kHistory = 120;  // of the long-term predictor

// The coefficients of the four parts of a frame. previousLar: those of the last frame; receives those of this one.
inline std::array<Zpp16s, 4 * kOrder> coefficients(const Zpp16s* larCode, Zpp16s* previousLar) {
  Zpp16s lar[kOrder];
  std::array<Zpp16s, 4 * kOrder> refl;
  require(zppsLARDecode_GSMFR_16s(larCode, lar));
  require(zppsLARToRefl_GSMFR_16s(previousLar, lar, refl.data()));
  std::copy_n(lar, kOrder, previousLar);
  return refl;
}

// Calls filter(refl, first, len) for the parts of a frame.
template <class Filter>
void forEachPart(const Zpp16s* larCode, Zpp16s* previousLar, Filter filter) {
  constexpr int kBounds[] = {0, 13, 27, 40, kFrame};
  const auto refl = coefficients(larCode, previousLar);
  for (int part = 0; part < 4; ++part) filter(refl.data() + part * kOrder, kBounds[part], kBounds[part + 1] - kBounds[part]);
}

}  // namespace codecs::gsmfr
