// Excitation codebook: portable kernels.
#include "g728/codebook_search.h"
#include "g728/kernels.h"

using namespace zpp;
using namespace zpp::g728;

void ownShapeEnergy_G728_16s_PX(const Zpp16s* response, Zpp16s* energy) {
  for (int j = 0; j < kShapes; ++j) {
    Zpp64s sum = 0;
    for (int n = 0; n < kVector; ++n) {
      // The magnitudes of a shape vector add up to 47018 at most, so the convolution fits 32 bits whatever the response.
      Zpp32s convolved = 0;
      for (int i = 0; i <= n; ++i) convolved += response[i] * shapeCodebook[j][n - i];
      const Zpp16s c = sat16(convolved >> 14);
      sum += c * c;
    }
    energy[j] = static_cast<Zpp16s>(std::min<Zpp64s>(sum >> 15, kMax16));
  }
}

int ownCodebookSearch_G728_16s_PX(const Zpp16s* target, const Zpp16s* energy) {
  int best = 0;
  Zpp32s smallest = kMax32;
  for (int j = 0; j < kShapes; ++j) {
    const ShapeGain g = gainOfShape(j, target, energy);
    const Zpp32s distortion = gainSquare[g.gain] * energy[j] - gainDouble[g.gain] * std::min<Zpp32s>(g.magnitude >> 14, kMax16);
    if (distortion < smallest) smallest = distortion, best = j;
  }
  return codeOfShape(best, target, energy);
}
