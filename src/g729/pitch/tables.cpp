#include "g729/pitch/tables.h"

constexpr Zpp16s inter_3[13] = {
    29519, 24906, 13896, 2755, -3459, -3969, -1561, 534, 1023, 516, 0, -194, 0,
};

constexpr Zpp16s inter_3l[31] = {
    29443, 25207, 14701, 3143, -4402, -5850, -2783, 1211, 3130, 2259, 0,   -1652, -1666, -464, 756, 1099,
    550,   -245,  -634,  -451, 0,     308,   296,   78,   -120, -165, -79, 34,    91,    70,   0,
};

constexpr Zpp32f inter_3l_32f[31] = {
    0.898517013f,   0.769271016f,   0.448635012f,   0.0959149972f,   -0.134333f,      -0.178527996f,   -0.0849189982f,
    0.0369520001f,  0.0955329984f,  0.0689359978f,  -0.0f,           -0.050404001f,   -0.0508349985f,  -0.0141690001f,
    0.0230829995f,  0.0335430019f,  0.0167740006f,  -0.00746600004f, -0.0193399992f,  -0.0137550002f,  0.0f,
    0.00939999986f, 0.00902900007f, 0.00238099997f, -0.00365799991f, -0.00502699986f, -0.00240499992f, 0.00104999996f,
    0.00277999998f, 0.00214500003f, 0.0f,
};

namespace {

// Index of the tap of sample k; the filters are symmetric.
constexpr int tap(int k, int phase) { return 3 * k < phase ? phase - 3 * k : 3 * k - phase; }

constexpr ExcitationTapPairs excitationTapPairs() {
  ExcitationTapPairs pairs{};
  for (int phase = 0; phase < 3; ++phase)
    for (int pair = 0; pair < 10; ++pair)
      for (int lane = 0; lane < 8; ++lane) pairs.at[phase][pair][lane] = inter_3l[tap(2 * pair - 9 + lane % 2, phase)];
  return pairs;
}

constexpr ExcitationTaps excitationTaps() {
  ExcitationTaps taps{};
  for (int phase = 0; phase < 3; ++phase)
    for (int k = 0; k < 20; ++k) taps.at[phase][k] = inter_3l[tap(k - 9, phase)];
  return taps;
}

constexpr CorrelationTaps correlationTaps() {
  CorrelationTaps taps{};
  for (int phase = 0; phase < 3; ++phase)
    for (int lane = 0; lane < 8; ++lane) taps.at[phase][lane] = inter_3[tap(lane - 3, phase)];
  return taps;
}

}  // namespace

constexpr ExcitationTaps inter_3l_taps = excitationTaps();
constexpr ExcitationTapPairs inter_3l_pairs = excitationTapPairs();
constexpr CorrelationTaps inter_3_taps = correlationTaps();
