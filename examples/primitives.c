/* The primitives alone: LP analysis of a windowed frame in the arithmetic of ITU-T G.729, from the samples to the line spectral
 * frequencies and back. Link with zppsc.
 */
#include <math.h>
#include <stdio.h>

#include "zppsc.h"

enum { kWindow = 240, kOrder = 10 };

int main(void) {
  /* A vowel-like sound: two resonances, excited 125 times a second */
  Zpp16s speech[kWindow];
  double y1 = 0, y2 = 0, z1 = 0, z2 = 0;
  for (int n = 0; n < kWindow; ++n) {
    const double y = (n % 64 == 0 ? 3000.0 : 0.0) + 1.7 * cos(0.55) * y1 - 0.72 * y2;
    const double z = y + 1.8 * cos(1.2) * z1 - 0.81 * z2;
    y2 = y1, y1 = y, z2 = z1, z1 = z;
    speech[n] = (Zpp16s)(z < -32768 ? -32768 : z > 32767 ? 32767 : z);
  }

  /* Autocorrelation, normalised; if it overflows, the signal is scaled down and the step repeated. */
  Zpp32s correlation[kOrder + 1], norm;
  while (zppsAutoCorr_NormE_16s32s(speech, kWindow, correlation, kOrder + 1, &norm) == zppStsOverflowWarn)
    zppsRShiftC_16s_I(speech, kWindow, 2);
  zppsLagWindow_G729_32s_I(correlation + 1, kOrder);

  /* A(z), then its line spectrum */
  Zpp16s a[kOrder + 1], reflection[kOrder], residual, lsf[kOrder];
  Zpp16s lsp[kOrder] = {30000, 26000, 21000, 15000, 8000, 0, -8000, -15000, -21000, -26000};
  if (zppsLevinsonDurbin_G729_32s16s(correlation, kOrder, a, reflection, &residual) != zppStsOk) return 1;
  if (zppsLPCToLSP_G729_16s(a, lsp, lsp) != zppStsOk) return 1;
  if (zppsLSPToLSF_G729_16s(lsp, lsf) != zppStsOk) return 1;

  printf("line spectral frequencies, Hz:");
  for (int i = 0; i < kOrder; ++i) printf(" %.0f", lsf[i] / 8192.0 / 3.14159265 * 4000);
  printf("\nprediction gain: %.1f dB\n", 10 * log10(correlation[0] / 65536.0 / residual));
  return 0;
}
