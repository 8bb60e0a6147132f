// Regular pulse excitation: weighting filter, grid selection, APCM quantisation (3GPP TS 46.010 clauses 5.2.13 to 5.2.17).
#include <algorithm>

#include "core/checks.h"
#include "core/fixed_point.h"
#include "gsmfr/block_amplitude.h"
#include "gsmfr/kernels.h"
#include "gsmfr/tables.h"

using namespace zpp;
using namespace zpp::gsmfr;

namespace {

constexpr int kPulses = 13;

// The grid of the largest energy, the first of equals. Samples count at a quarter of their scale: 13 squares fit 30 bits.
int strongestGrid(const Zpp16s* src) {
  Zpp32s most = 0;
  int best = 0;
  for (int grid = 0; grid < 4; ++grid) {
    Zpp32s energy = 0;
    for (int i = 0; i < kPulses; ++i) energy += (src[grid + 3 * i] >> 2) * (src[grid + 3 * i] >> 2);
    if (energy > most) {
      most = energy;
      best = grid;
    }
  }
  return best;
}

}  // namespace

ZppStatus zppsWeightingFilter_GSMFR_16s(const Zpp16s* src, Zpp16s* dst) {
  if (anyNull(src, dst)) return zppStsNullPointer;
  ownWeightingFilter_GSMFR_16s(src, dst);
  return zppStsOk;
}

ZppStatus zppsRPEQuant_GSMFR_16s(const Zpp16s* src, Zpp16s* pulses, Zpp16s* grid, Zpp16s* amplitude, Zpp16s* maximum) {
  if (anyNull(src, pulses, grid, amplitude, maximum)) return zppStsNullPointer;
  ownRPEQuant_GSMFR_16s(src, pulses, grid, amplitude, maximum);
  return zppStsOk;
}

ZppStatus zppsRPEQuantDecode_GSMFR_16s(const Zpp16s* pulses, Zpp16s* dst, Zpp16s amplitude, Zpp16s grid) {
  if (anyNull(pulses, dst)) return zppStsNullPointer;
  if (outside<int>(amplitude, 0, 63)) return zppStsBadScale;
  if (outside<int>(grid, 0, 3)) return zppStsBadCodedParam;
  ownRPEQuantDecode_GSMFR_16s(pulses, dst, amplitude, grid);
  return zppStsOk;
}

// The maximum is below 2^(exponent + 9) of its decoded amplitude, so that the shift keeps within 16 bits and codes within 0..7.
void ownRPEQuant_GSMFR_16s(const Zpp16s* src, Zpp16s* pulses, Zpp16s* grid, Zpp16s* amplitude, Zpp16s* maximum) {
  const int first = strongestGrid(src);
  Zpp16s x[kPulses], most = 0;
  for (int i = 0; i < kPulses; ++i) {
    x[i] = src[first + 3 * i];
    most = std::max(most, absSat16(x[i]));
  }
  const int code = amplitudeCode(most);
  const BlockAmplitude block = decodedAmplitude(code);
  for (int i = 0; i < kPulses; ++i) {
    const auto normalised = static_cast<Zpp16s>(x[i] * (1 << (6 - block.exponent)));
    pulses[i] = static_cast<Zpp16s>((mulQ15(normalised, inverseMantissa[block.mantissa]) >> 12) + 4);
  }
  *grid = static_cast<Zpp16s>(first);
  *amplitude = static_cast<Zpp16s>(code);
  *maximum = most;
}

void ownRPEQuantDecode_GSMFR_16s(const Zpp16s* pulses, Zpp16s* dst, int amplitude, int grid) {
  std::fill_n(dst, kGsmFrSubframe, Zpp16s{0});
  for (int i = 0; i < kPulses; ++i) dst[grid + 3 * i] = pulseLevel[amplitude][pulses[i] & 7];
}
