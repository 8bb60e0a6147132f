#include "codecs/g7221/encoder.h"

#include <bit>

#include "codecs/codec.h"

namespace codecs::g7221 {
namespace {

constexpr int kControlBits = 4;
constexpr int kLargestFall = 12, kLargestRise = 11;  // of the power from a region to the next

// The shift that uses the transform's 16 bits well (clause 3.1): by the largest magnitude, and one less for a frame that
// stands out above a quiet rest.
int blockShift(std::span<const Zpp16s, kFrameSize> x) {
  std::array<Zpp16s, kFrameSize> magnitudes;
  Zpp16s largest = 0;
  Zpp32s sum = 0;
  require(zppsAbs_16s(x.data(), magnitudes.data(), kFrameSize));
  require(zppsMax_16s(magnitudes.data(), kFrameSize, &largest));
  require(zppsSum_16s32s_Sfs(magnitudes.data(), kFrameSize, &sum, 0));
  int shift = 0;
  if (largest < 14000) {
    const auto level = static_cast<unsigned>((largest < 438 ? largest + 1 : largest) * 9587) >> 19;
    shift = level == 0 ? 9 : 9 - std::bit_width(level);
  }
  return largest < sum >> 7 ? shift - 1 : shift;
}

// Twice the logarithm to base 2 of the amplitude that an energy of 20 coefficients stands for, rounded, plus 11 + 2 log2(20) /
// 2
int powerIndex(Zpp32s energy) {
  if (energy == 0) return -16;
  const auto e = static_cast<Zpp32u>(energy);
  const int exponent = static_cast<int>(std::bit_width(e)) - 16;  // e = mantissa * 2^exponent, mantissa of 16 bits
  const Zpp32u mantissa = exponent > 0 ? e >> exponent : e << -exponent;
  return mantissa / 2 >= 28963 ? exponent + 1 : exponent;
}

}  // namespace

FrameEncoder::Spectrum FrameEncoder::transform(std::span<const Zpp16s, kFrameSize> samples) {
  alignas(16) std::array<Zpp16s, kFrameSize> folded;
  require(zppsDecomposeMLTToDCT_G722_16s(samples.data(), oldSamples_.data(), folded.data()));
  Spectrum spectrum;
  spectrum.shift = blockShift(folded);
  // Shifted up, the largest magnitude stays below 2^28 / 9587: no bit is lost.
  if (spectrum.shift > 0) require(zppsLShiftC_16s_I(folded.data(), kFrameSize, spectrum.shift));
  if (spectrum.shift < 0) require(zppsRShiftC_16s_I(folded.data(), kFrameSize, -spectrum.shift));
  require(zppsDCTFwd_G722_16s(folded.data(), spectrum.coefficients.data()));
  return spectrum;
}

Powers FrameEncoder::measurePowers(const Spectrum& spectrum) {
  Powers powers;
  for (int r = 0; r < kRegions; ++r) {
    const Zpp16s* region = spectrum.coefficients.data() + kRegionSize * r;
    Zpp32s energy = 0;
    require(zppsDotProd_16s32s_Sfs(region, region, kRegionSize, &energy, 0));
    powers[r] = powerIndex(energy) - 2 * spectrum.shift + 11;
  }
  return powers;
}

// Sends the region powers (clause 3.4) and leaves in them what the decoder will see.
void FrameEncoder::codePowers(Powers& powers, BitWriter& writer) {
  for (int r = kRegions - 2; r >= 0; --r) powers[r] = std::max(powers[r], powers[r + 1] - kLargestRise);
  powers[0] = std::clamp(powers[0], -6, kHighestPowerIndex);
  for (int r = 1; r < kRegions; ++r) powers[r] = std::clamp(powers[r], kLowestPowerIndex, kHighestPowerIndex);

  writer.put(static_cast<Zpp32u>(powers[0] + 7), 5);
  for (int r = 1; r < kRegions; ++r) {
    const int symbol = std::max(powers[r] - powers[r - 1], -kLargestFall) + kLargestFall;
    powers[r] = powers[r - 1] + symbol - kLargestFall;
    writer.put(powerCodes[r][symbol], powerCodeLengths[r][symbol]);
  }
}

// Brings loud regions down to a power index of 39 or 40, where the quantiser works; returns the indices of what is then coded.
Powers FrameEncoder::normalise(Spectrum& spectrum, const Powers& powers) {
  Powers coded;
  for (int r = 0; r < kRegions; ++r) {
    coded[r] = powers[r] + 24 + 2 * spectrum.shift;
    const int halvings = (coded[r] - 39) >> 1;
    if (halvings <= 0) continue;
    for (Zpp16s& c : std::span(spectrum.coefficients).subspan(kRegionSize * r, kRegionSize))
      c = static_cast<Zpp16s>((2 * c + 1) >> (halvings + 1));
    coded[r] -= 2 * halvings;
  }
  return coded;
}

// Codes the regions by the finest categorisation that fits into the available bits (clause 3.7), or the cheapest if none does,
// and returns its number.
int FrameEncoder::codeRegions(const Spectrum& spectrum, const Powers& powers, const Categorisation& categorisation,
                              int available, RegionCodes& codes) {
  Categories categories = categorisation.richest;
  int total = 0;
  const auto code = [&](int r) {
    RegionCode& region = codes[r];
    total -= region.bits;
    require(zppsHuffmanEncode_G722_16s32u(categories[r], powers[r], spectrum.coefficients.data() + kRegionSize * r,
                                          region.words.data(), &region.bits));
    total += region.bits;
  };

  int control = kCategorisations / 2 - 1;  // the search starts in the middle
  for (int j = 0; j < control; ++j) coarsen(categories[categorisation.cheapened[j]]);
  for (int r = 0; r < kRegions; ++r) code(r);
  while (total < available && control > 0) {
    const int r = categorisation.cheapened[--control];
    refine(categories[r]);
    code(r);
  }
  while (total > available && control < kCategorisations - 1) {
    const int r = categorisation.cheapened[control++];
    coarsen(categories[r]);
    code(r);
  }
  return control;
}

void FrameEncoder::encode(std::span<const Zpp16s, kFrameSize> samples, std::span<std::uint8_t> frame) {
  BitWriter writer(frame);
  Spectrum spectrum = transform(samples);
  Powers powers = measurePowers(spectrum);
  codePowers(powers, writer);

  const int available = writer.left() - kControlBits;
  const Categorisation categorisation = categorise(powers, available);
  RegionCodes codes;
  const Powers codedPowers = normalise(spectrum, powers);
  const int control = codeRegions(spectrum, codedPowers, categorisation, available, codes);

  writer.put(static_cast<Zpp32u>(control), kControlBits);
  for (const RegionCode& region : codes) {
    int bits = region.bits;
    for (const Zpp32u word : region.words) {
      const int width = std::clamp(bits, 0, 32);
      if (width > 0) writer.put(word >> (32 - width), width);
      bits -= width;
    }
  }
  while (writer.left() > 0) writer.put(1, 1);
}

}  // namespace codecs::g7221
