#include "codecs/g7221/decoder.h"

#include "codecs/codec.h"

namespace codecs::g7221 {
namespace {

// 1 where the lowest bit is set, else -1
int plusOrMinus(int bits) { return 2 * (bits & 1) - 1; }

// Follows a decoding tree from the given node to a leaf, which `length` bits have not reached yet; none if the bits end first.
// Codes have at most 16 bits.
template <class Entry>
std::optional<int> decodeSymbol(const Entry* nodes, BitReader& reader, int node, int length) {
  for (const unsigned window = reader.peek16(); node > 0 || length == 0; ++length)
    node = nodes[2 * node + (window >> (15 - length) & 1)];
  const bool complete = length <= reader.left();
  reader.skip(complete ? length : reader.left());
  return complete ? std::optional(-node) : std::nullopt;
}

std::optional<int> decodeVector(const VectorTree& tree, BitReader& reader) {
  const auto [node, bits] = tree.shortcuts[reader.peek16() >> 8];
  return decodeSymbol(tree.nodes, reader, node, bits);
}

// The region powers (clause 4.1); a frame's bits always suffice for them.
Powers decodePowers(BitReader& reader) {
  Powers powers;
  powers[0] = reader.bits(5) - 7;
  for (int r = 1; r < kRegions; ++r) powers[r] = powers[r - 1] + *decodeSymbol(powerTrees[r], reader, 0, 0) - 12;
  return powers;
}

int standardDeviation(int powerIndex) { return powerIndex >= 0 && powerIndex < 64 ? standardDeviations[powerIndex] : 0; }

// The scaling that uses the inverse transform's 16 bits well
int blockShift(const Powers& powers) {
  int sum = 0, highest = 0;
  for (const int power : powers) {
    sum = std::min(sum + standardDeviation(power + 24), 32767);
    highest = std::max(highest, power + 24);
  }
  int shift = 9;
  for (; shift >= 0 && (sum >= 8 || highest > 28); --shift) {
    sum >>= 1;
    highest -= 2;
  }
  return shift;
}

// Decodes the vectors of a region (clause 4.3); false if the bits end first.
template <int category, int dimension, int levels>
bool decodeVectors(BitReader& reader, int deviation, std::span<Zpp16s, kRegionSize> region) {
  for (int n = 0; n < kRegionSize; n += dimension) {
    const auto index = decodeVector(vectorTrees[category], reader);
    if (!index) return false;
    std::array<int, dimension> vector;
    int nonzero = 0;
    for (int i = dimension - 1, digits = *index; i >= 0; --i, digits /= levels) {
      vector[i] = digits % levels;
      nonzero += vector[i] != 0;
    }
    if (reader.left() < nonzero) return false;
    // A value too small for the region's deviation is 0 and leaves its sign bit to the next. Signs are as good as random: they
    // are better multiplied than branched upon.
    const int signs = reader.bits(nonzero);
    for (int i = 0, unused = nonzero; i < dimension; ++i) {
      const int value = deviation * centroids[category][vector[i]] >> 12;
      unused -= value != 0;
      region[n + i] = static_cast<Zpp16s>(value * plusOrMinus(signs >> unused));
    }
  }
  return true;
}

bool decodeRegion(BitReader& reader, int category, int deviation, std::span<Zpp16s, kRegionSize> region) {
  constexpr std::array decoders = {decodeVectors<0, 2, 14>, decodeVectors<1, 2, 10>, decodeVectors<2, 2, 7>,
                                   decodeVectors<3, 4, 5>,  decodeVectors<4, 4, 4>,  decodeVectors<5, 5, 3>,
                                   decodeVectors<6, 5, 2>};
  return decoders[category](reader, deviation, region);
}

// A good frame ends with ones, and only the cheapest categorisation may have run out of bits, which counts as one bit beyond
// those left. Damage also shows in region powers that no encoder sends.
bool isSound(BitReader& reader, bool complete, int control, const Powers& powers) {
  int left = complete ? reader.left() : reader.left() - 1;
  if (left < 0 && control < kCategorisations - 1) return false;
  for (; left > 0; --left)
    if (reader.bits(1) == 0) return false;
  return std::ranges::all_of(powers, [](int p) { return p >= kLowestPowerIndex && p <= kHighestPowerIndex; });
}

}  // namespace

int FrameDecoder::Noise::next() {
  auto value = static_cast<Zpp16s>(seeds_[0] + seeds_[3]);
  if (value < 0) ++value;
  seeds_ = {value, seeds_[0], seeds_[1], seeds_[2]};
  return value;
}

// Noise stands in for the coefficients of the coarse categories that were quantised to 0, and for all of category 7
// (clause 4.4).
void FrameDecoder::fillWithNoise(Region region, int category, int deviation) {
  if (category < 5) return;
  const auto amplitude = static_cast<Zpp16s>(deviation * noiseFactors[category - 5] >> 15);
  for (int half = 0; half < kRegionSize; half += kRegionSize / 2) {
    int signs = noise_.next();
    for (Zpp16s& c : region.subspan(half, kRegionSize / 2)) {
      if (category != kNoiseCategory && c != 0) continue;
      c = static_cast<Zpp16s>(amplitude * plusOrMinus(signs));
      signs >>= 1;
    }
  }
}

// Decodes the coefficients of a frame; none if the frame is damaged.
std::optional<FrameDecoder::Spectrum> FrameDecoder::decodeSpectrum(std::span<const std::uint8_t> frame) {
  BitReader reader(frame);
  const Powers powers = decodePowers(reader);
  const int control = reader.bits(4);
  const Categorisation categorisation = categorise(powers, reader.left());
  Categories categories = categorisation.richest;
  for (int j = 0; j < control; ++j) coarsen(categories[categorisation.cheapened[j]]);

  Spectrum spectrum;
  spectrum.shift = blockShift(powers);
  bool complete = true;
  for (int r = 0; r < kRegions; ++r) {
    const int deviation = standardDeviation(powers[r] + 24 + 2 * spectrum.shift);
    const Region region = std::span(spectrum.coefficients).subspan(kRegionSize * r).first<kRegionSize>();
    int category = complete ? categories[r] : kNoiseCategory;
    if (category != kNoiseCategory && !decodeRegion(reader, category, deviation, region)) {
      complete = false;
      category = kNoiseCategory;
    }
    fillWithNoise(region, category, deviation);
  }
  if (!isSound(reader, complete, control, powers)) return std::nullopt;
  return spectrum;
}

// Inverse transform, window and overlap-add (clauses 4.6 and 4.7). The output has 14 significant bits.
void FrameDecoder::synthesise(const Spectrum& spectrum, std::span<Zpp16s, kFrameSize> samples) {
  alignas(16) std::array<Zpp16s, kFrameSize> y{};
  std::ranges::copy(spectrum.coefficients, y.begin());
  require(zppsDCTInv_G722_16s(y.data(), y.data()));
  if (spectrum.shift > 0) require(zppsRShiftC_16s_I(y.data(), kFrameSize, spectrum.shift));
  if (spectrum.shift < 0) require(zppsAdd_16s_I(y.data(), y.data(), kFrameSize));
  require(zppsDecomposeDCTToMLT_G722_16s(y.data(), overlap_.data(), samples.data()));
  for (Zpp16s& sample : samples) sample = static_cast<Zpp16s>(sample & ~3);
}

void FrameDecoder::decode(std::span<const std::uint8_t> frame, std::span<Zpp16s, kFrameSize> samples) {
  const auto spectrum = decodeSpectrum(frame);
  if (!spectrum) return conceal(samples);
  lastGood_ = *spectrum;
  synthesise(lastGood_, samples);
}

void FrameDecoder::conceal(std::span<Zpp16s, kFrameSize> samples) {
  synthesise(lastGood_, samples);
  lastGood_ = {};
}

}  // namespace codecs::g7221
