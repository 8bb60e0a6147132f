// Silence descriptors (3GPP TS 46.012 clause 5.2): means of four noise frames, quantised as those of speech are.
#include <algorithm>

#include "core/checks.h"
#include "gsmfr/block_amplitude.h"
#include "gsmfr/kernels.h"

using namespace zpp;
using namespace zpp::gsmfr;

ZppStatus zppsSIDQuant_GSMFR_16s(const Zpp16s* lar, const Zpp16s* maxima, Zpp16s* larCode, Zpp16s* amplitude) {
  if (anyNull(lar, maxima, larCode, amplitude)) return zppStsNullPointer;
  ownSIDQuant_GSMFR_16s(lar, maxima, larCode, amplitude);
  return zppStsOk;
}

void ownSIDQuant_GSMFR_16s(const Zpp16s* lar, const Zpp16s* maxima, Zpp16s* larCode, Zpp16s* amplitude) {
  Zpp16s mean[kGsmFrOrder];
  for (int i = 0; i < kGsmFrOrder; ++i)
    mean[i] =
        static_cast<Zpp16s>((lar[i] + lar[kGsmFrOrder + i] + lar[2 * kGsmFrOrder + i] + lar[3 * kGsmFrOrder + i] + 2) >> 2);
  int maximum = 0;
  for (int i = 0; i < 16; ++i) maximum += std::max<int>(maxima[i], 0);
  ownLARQuant_GSMFR_16s(mean, larCode);
  *amplitude = static_cast<Zpp16s>(amplitudeCode((maximum + 8) >> 4));
}
