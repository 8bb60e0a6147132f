#include "quality.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

double energy(std::span<const std::int16_t> signal) {
  double sum = 0;
  for (const double s : signal) sum += s * s;
  return sum;
}

double errorEnergy(std::span<const std::int16_t> a, std::span<const std::int16_t> b) {
  double sum = 0;
  for (std::size_t n = 0; n < a.size(); ++n) sum += std::pow(a[n] - b[n], 2);
  return sum;
}

}  // namespace

double snr(std::span<const std::int16_t> original, std::span<const std::int16_t> decoded) {
  const double signal = energy(original);
  if (signal == 0) return std::numeric_limits<double>::quiet_NaN();
  return 10 * std::log10(signal / errorEnergy(original, decoded));
}

double segmentalSnr(std::span<const std::int16_t> original, std::span<const std::int16_t> decoded, int sampleRate) {
  const auto length = static_cast<std::size_t>(sampleRate / 50);
  const double floor = 32.768 * 32.768 * static_cast<double>(length);
  double sum = 0;
  int segments = 0;
  for (std::size_t start = 0; start + length <= original.size(); start += length) {
    const auto segment = original.subspan(start, length);
    if (energy(segment) < floor) continue;
    sum += std::clamp(snr(segment, decoded.subspan(start, length)), -10.0, 60.0);
    ++segments;
  }
  return segments > 0 ? sum / segments : std::numeric_limits<double>::quiet_NaN();
}
