// Sizes that all steps of GSM-AMR share.
#pragma once

#include "zppsc.h"

inline constexpr int kSubframe = 40, kFrame = 160, kSubframes = 4;

// What the encoder's and decoder's steps know of the frame, the callers' array `condition`
struct FrameCondition {
  explicit FrameCondition(const Zpp16s* words)
      : bad(words[0] != 0),
        previousBad(words[1] != 0),
        degraded(words[2] != 0),
        previousDegraded(words[3] != 0),
        backgroundNoise(words[4] != 0),
        voicedHangover(words[5]),
        state(words[6]) {}

  bool bad, previousBad, degraded, previousDegraded, backgroundNoise;
  int voicedHangover, state;

  bool damaged() const { return bad || previousBad; }
  bool careful() const { return (degraded && previousDegraded) || damaged(); }
};
