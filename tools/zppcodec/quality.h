// How near a decoded signal is to the original.
#ifndef ZPPCODEC_QUALITY_H
#define ZPPCODEC_QUALITY_H

#include <cstdint>
#include <span>

// 10 log10 (signal energy / error energy), in dB. Infinite for equal signals, NaN for a silent original.
double snr(std::span<const std::int16_t> original, std::span<const std::int16_t> decoded);

// The mean of the SNRs of segments of 20 ms, each limited to -10..60 dB; segments below -60 dB of full scale are left out.
// NaN when none is left.
double segmentalSnr(std::span<const std::int16_t> original, std::span<const std::int16_t> decoded, int sampleRate);

#endif
