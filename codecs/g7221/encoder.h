// The frame encoder of ITU-T G.722.1 (clause 3) at 24 and 32 kbit/s.
#pragma once

#include <span>

#include "codecs/bit_stream.h"
#include "codecs/g7221/categories.h"
#include "zppsc.h"

namespace codecs::g7221 {

inline constexpr int kFrameSize = 320;  // samples, 20 ms at 16 kHz

class FrameEncoder {
 public:
  // Codes 320 samples into a frame of 60 octets (24 kbit/s) or 80 octets (32 kbit/s), the first bit in the most significant
  // place.
  void encode(std::span<const Zpp16s, kFrameSize> samples, std::span<std::uint8_t> frame);

 private:
  // The MLT coefficients of a frame, scaled up by 2^shift before the transform
  struct Spectrum {
    alignas(16) std::array<Zpp16s, kFrameSize> coefficients;
    int shift;
  };
  // The codes of a region as zppsHuffmanEncode_G722_16s32u writes them
  struct RegionCode {
    std::array<Zpp32u, 6> words;
    Zpp32s bits = 0;
  };
  using RegionCodes = std::array<RegionCode, kRegions>;

  Spectrum transform(std::span<const Zpp16s, kFrameSize> samples);
  static Powers measurePowers(const Spectrum& spectrum);
  static void codePowers(Powers& powers, BitWriter& writer);
  static Powers normalise(Spectrum& spectrum, const Powers& powers);
  static int codeRegions(const Spectrum& spectrum, const Powers& powers, const Categorisation& categorisation, int available,
                         RegionCodes& codes);

  alignas(16) std::array<Zpp16s, kFrameSize> oldSamples_{};
};

}  // namespace codecs::g7221
