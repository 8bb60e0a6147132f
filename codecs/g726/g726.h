// ITU-T G.726 ADPCM with 2, 3, 4 or 5 bits a sample. Payloads hold the codes without gaps, in the bit order of RFC 3551 (the
// first code in the least significant bits of the first octet) or that of AAL2 (ITU-T I.366.2 Annex E: in the most significant
// ones).
#pragma once

#include <array>

#include "codecs/codec.h"

namespace codecs::g726 {

inline constexpr int kGroup = 8;  // codes that fill whole octets at every rate

enum class BitOrder { lsbFirst, msbFirst };

// How codes lie in octets
class Packing {
 public:
  explicit Packing(const Options& options);
  int width() const { return width_; }
  int octetsOf(int codes) const { return codes / 8 * width_; }
  int codesOf(int octets) const { return octets % width_ == 0 ? octets / width_ * 8 : 0; }
  // Of whole groups
  void pack(const Zpp8u* codes, int count, Zpp8u* octets) const;
  void unpack(const Zpp8u* octets, int count, Zpp8u* codes) const;

 private:
  int width_;  // bits a code
  BitOrder order_;
};

class Encoder {
 public:
  explicit Encoder(const Options& options);
  int octetsOf(int samples) const { return packing_.octetsOf(samples); }
  void encode(const Zpp16s* pcm, int samples, Zpp8u* payload);

 private:
  Packing packing_;
  alignas(8) std::array<Zpp8u, 88> state_;
};

class Decoder {
 public:
  explicit Decoder(const Options& options);
  int samplesOf(int octets) const { return packing_.codesOf(octets); }
  void decode(const Zpp8u* payload, int octets, Zpp16s* pcm);

 private:
  Packing packing_;
  alignas(8) std::array<Zpp8u, 92> state_;
};

}  // namespace codecs::g726
