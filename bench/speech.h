// Ten seconds of a signal with the level changes and the spectrum of speech, the same for every contender.
#pragma once

#include <cmath>
#include <cstdint>
#include <vector>

inline std::vector<std::int16_t> speechLike(int sampleRate) {
  std::vector<std::int16_t> signal(static_cast<std::size_t>(10 * sampleRate));
  double formant[2] = {}, phase = 0;
  std::uint32_t random = 1;
  for (std::size_t n = 0; n < signal.size(); ++n) {
    const double t = static_cast<double>(n) / sampleRate;
    random = random * 1664525 + 1013904223;
    const double noise = static_cast<double>(random >> 8) / (1 << 23) - 1;
    const double loudness = 0.5 + 0.5 * std::sin(25 * t);
    phase += (120 + 30 * std::sin(2 * t)) / sampleRate;
    double x = 0.05 * noise;
    if (phase >= 1) x += loudness, phase -= 1;
    const double y = x + 1.6 * std::cos(6.283 * (600 + 200 * std::sin(3 * t)) / sampleRate) * formant[0] - 0.81 * formant[1];
    formant[1] = formant[0];
    formant[0] = y;
    signal[n] = static_cast<std::int16_t>(std::fmax(-32768, std::fmin(32767, 4000 * y)));
  }
  return signal;
}
