// The block amplitude of the RPE pulses: a logarithmic code of exponent and mantissa (3GPP TS 46.010 clause 5.2.15).
#pragma once

#include <bit>

#include "zppsc.h"

namespace zpp::gsmfr {

// Code 0..63 of a block maximum of 0..32767
constexpr int amplitudeCode(int maximum) {
  const int exponent = std::bit_width(static_cast<Zpp32u>(maximum) >> 9);
  return (maximum >> (exponent + 5)) + 8 * exponent;
}

struct BlockAmplitude {
  int exponent;  // -4..6
  int mantissa;  // 0..7
};

constexpr BlockAmplitude decodedAmplitude(int code) {
  int exponent = code > 15 ? (code >> 3) - 1 : 0;
  int mantissa = code - 8 * exponent;
  if (mantissa == 0) return {-4, 7};
  for (; mantissa <= 7; --exponent) mantissa = 2 * mantissa + 1;
  return {exponent, mantissa - 8};
}

}  // namespace zpp::gsmfr
