// The 76 parameters of a GSM full rate frame and their place in a payload (3GPP TS 46.010 table 1.1; RFC 3551 clause 4.5.8).
#pragma once

#include "zppsc.h"

namespace codecs::gsmfr {

inline constexpr int kFrame = 160, kSubframe = 40, kSubframes = 4;
inline constexpr int kOrder = 8;
inline constexpr int kPulses = 13;
inline constexpr int kPayload = 33;  // octets

// A payload is a signature, then the 76 parameters, the most significant bit first.
inline constexpr int kSignatureBits = 4, kSignature = 13;
inline constexpr int kParameterBits[] = {
    6, 6, 5, 5, 4, 4, 3, 3,                             // LAR codes
    7, 2, 2, 6, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3,  // lag, gain, grid, amplitude, pulses
    7, 2, 2, 6, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3,  //
    7, 2, 2, 6, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3,  //
    7, 2, 2, 6, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3};

struct Subframe {
  Zpp16s lag, gain;        // of the long-term predictor
  Zpp16s grid, amplitude;  // of the pulses
  Zpp16s pulses[kPulses];
  bool operator==(const Subframe&) const = default;
};

struct Frame {
  Zpp16s larCode[kOrder];
  Subframe subframe[kSubframes];
  bool operator==(const Frame&) const = default;
};

void pack(const Frame& frame, Zpp8u* payload);
// False, and an unspecified frame, where the payload lacks the signature.
bool unpack(const Zpp8u* payload, Frame& frame);

// What an encoder makes of the second of two homing frames in a row (tables 4.1a and 4.1b)
extern const Frame kHomingFrame;
// What takes the place of frames that cannot be substituted any longer (3GPP TS 46.011 table 1)
extern const Frame kSilenceFrame;

}  // namespace codecs::gsmfr
