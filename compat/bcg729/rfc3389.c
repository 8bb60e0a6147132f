#include "rfc3389.h"

#include <math.h>
#include <string.h>

static const Zpp16s flatLsf[kOrder] = {2339, 4679, 7018, 9358, 11698, 14037, 16377, 18717, 21056, 23396};

/* The payload's coefficients are positive where neighbouring samples are alike, those of a filter 1 + a z^-1 + ... negative. */

/* Level of the excitation that a descriptor's gain index stands for, dB (ITU-T G.729 clause B.4.2.1) */
static double levelOf(int gainIndex) { return gainIndex == 0 ? -12 : gainIndex < 6 ? 4 * gainIndex - 8 : 2 * gainIndex + 4; }
/* Full scale, as dB of 16-bit samples; the codec works at half the level of its input. */
static const double overload = 90.31, codecLevel = -6.02;

void trackerInit(LsfTracker* tracker) {
  memset(tracker, 0, sizeof *tracker);
  for (int row = 0; row < 4; ++row) memcpy(tracker->maMem + kOrder * row, flatLsf, sizeof flatLsf);
  memcpy(tracker->lsf, flatLsf, sizeof flatLsf);
  memcpy(tracker->noiseLsf, flatLsf, sizeof flatLsf);
}

/* The steps' warnings tell of LSFs at the ends of their range. */
void trackerFollow(LsfTracker* tracker, const uint8_t* octets, int length) {
  if (octets == NULL) {
    if (!tracker->silent) (void)zppsLSFDecodeErased_G729_16s(tracker->maMode, tracker->maMem, tracker->lsf);
  } else if (length == kSidOctets) {
    const unsigned bits = (unsigned)octets[0] << 8 | octets[1]; /* 1, 5, 4 and 5, and a spare one */
    const Zpp16s index[3] = {bits >> 15, bits >> 10 & 31, bits >> 6 & 15};
    (void)zppsLSFDecode_G729B_16s(index, tracker->maMem, tracker->noiseLsf);
    memcpy(tracker->descriptor, octets, kSidOctets);
    tracker->silent = 1;
  } else if (length == kSpeechOctets) {
    const unsigned bits = (unsigned)octets[0] << 16 | (unsigned)octets[1] << 8 | octets[2]; /* 1, 7, 5 and 5 ... */
    const Zpp16s index[4] = {bits >> 23, bits >> 16 & 127, bits >> 11 & 31, bits >> 6 & 31};
    (void)zppsLSFDecode_G729_16s(index, tracker->maMem, tracker->lsf);
    tracker->maMode = index[0];
    tracker->silent = 0;
  }
}

/* 10 log10 of a predictor's gain */
static double predictionGain(const double* reflection) {
  double residual = 1;
  for (int i = 0; i < kOrder; ++i) residual *= 1 - reflection[i] * reflection[i];
  return -10 * log10(residual);
}

void rfc3389FromDescriptor(const LsfTracker* tracker, uint8_t payload[kRfc3389Octets]) {
  Zpp16s lsp[kOrder], lpc[kOrder + 1];
  double a[kOrder + 1], reflection[kOrder];
  (void)zppsLSFToLSP_G729_16s(tracker->noiseLsf, lsp);
  (void)zppsLSPToLPC_G729_16s(lsp, lpc);
  for (int i = 1; i <= kOrder; ++i) a[i] = lpc[i] / 4096.0;
  for (int m = kOrder; m >= 1; --m) { /* Levinson's recursion backwards */
    const double k = fmax(-0.999, fmin(0.999, a[m]));
    reflection[m - 1] = k;
    double lower[kOrder + 1];
    for (int i = 1; i < m; ++i) lower[i] = (a[i] - k * a[m - i]) / (1 - k * k);
    for (int i = 1; i < m; ++i) a[i] = lower[i];
  }
  const double level = levelOf(tracker->descriptor[1] >> 1 & 31) - codecLevel + predictionGain(reflection);
  payload[0] = (uint8_t)fmax(0, fmin(127, round(overload - level)));
  for (int i = 0; i < kOrder; ++i) payload[1 + i] = (uint8_t)(127 - lround(reflection[i] * 32768 / 258));
}

void descriptorFromRfc3389(const LsfTracker* tracker, const uint8_t* payload, int length, uint8_t descriptor[kSidOctets]) {
  double a[kOrder + 1] = {1}, reflection[kOrder] = {0};
  for (int i = 0; i < kOrder && i + 1 < length; ++i) reflection[i] = (127 - payload[1 + i]) * 258 / 32768.0;
  for (int m = 1; m <= kOrder; ++m) {
    double higher[kOrder + 1];
    for (int i = 1; i < m; ++i) higher[i] = a[i] + reflection[m - 1] * a[m - i];
    for (int i = 1; i < m; ++i) a[i] = higher[i];
    a[m] = reflection[m - 1];
  }
  Zpp16s lpc[kOrder + 1], lsp[kOrder], lsf[kOrder], unused[kOrder], index[3], maMem[4 * kOrder];
  for (int i = 0; i <= kOrder; ++i) lpc[i] = (Zpp16s)fmax(-32768, fmin(32767, round(a[i] * 4096)));
  Zpp16s flat[kOrder];
  (void)zppsLSFToLSP_G729_16s(flatLsf, flat);
  (void)zppsLPCToLSP_G729_16s(lpc, flat, lsp);
  (void)zppsLSPToLSF_G729_16s(lsp, lsf);
  /* 80 Hz apart at least, as clause B.4.2 asks */
  if (lsf[0] < 40) lsf[0] = 40;
  for (int i = 0; i + 1 < kOrder; ++i)
    if (lsf[i + 1] - lsf[i] < 642) lsf[i + 1] = (Zpp16s)(lsf[i] + 642);
  if (lsf[kOrder - 1] > 25681) lsf[kOrder - 1] = 25681;
  memcpy(maMem, tracker->maMem, sizeof maMem);
  (void)zppsLSFQuant_G729B_16s(lsf, maMem, unused, index);

  const double level = overload - (payload[0] & 127) + codecLevel - predictionGain(reflection);
  int gain = 0;
  while (gain < 31 && fabs(levelOf(gain + 1) - level) <= fabs(levelOf(gain) - level)) ++gain;
  descriptor[0] = (uint8_t)(index[0] << 7 | index[1] << 2 | index[2] >> 2);
  descriptor[1] = (uint8_t)((index[2] & 3) << 6 | gain << 1);
}
