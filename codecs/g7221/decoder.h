// The frame decoder of ITU-T G.722.1 (clause 4) at 24 and 32 kbit/s.
#pragma once

#include <optional>
#include <span>

#include "codecs/bit_stream.h"
#include "codecs/g7221/categories.h"
#include "codecs/g7221/encoder.h"
#include "zppsc.h"

namespace codecs::g7221 {

// Decodes frames in any state of damage: what contradicts itself is concealed like a lost frame.
class FrameDecoder {
 public:
  // frame: 60 or 80 octets, the first bit in the most significant place
  void decode(std::span<const std::uint8_t> frame, std::span<Zpp16s, kFrameSize> samples);
  // A frame that has not arrived: the first of a series repeats the frame before, the others are silent.
  void conceal(std::span<Zpp16s, kFrameSize> samples);

 private:
  static constexpr int kCoded = kRegions * kRegionSize;  // the coefficients above 7 kHz are never coded

  // The coded MLT coefficients of a frame, scaled up by 2^shift
  struct Spectrum {
    std::array<Zpp16s, kCoded> coefficients{};
    int shift = 0;
  };
  using Region = std::span<Zpp16s, kRegionSize>;

  // The generator of the noise's signs
  class Noise {
   public:
    int next();

   private:
    std::array<Zpp16s, 4> seeds_ = {1, 1, 1, 1};
  };

  std::optional<Spectrum> decodeSpectrum(std::span<const std::uint8_t> frame);
  void fillWithNoise(Region region, int category, int deviation);
  void synthesise(const Spectrum& spectrum, std::span<Zpp16s, kFrameSize> samples);

  Noise noise_;
  Spectrum lastGood_;
  alignas(16) std::array<Zpp16s, kFrameSize / 2> overlap_{};
};

}  // namespace codecs::g7221
