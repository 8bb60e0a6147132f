// MA prediction of the fixed-codebook energy (ITU-T G.729 clause 3.9.1), shared by quantisers and decoders of both rates.
//
// memory: the quantised prediction errors of the last four subframes in dB, Q10, newest first.
#pragma once

#include "zppsc.h"

// The predicted code gain: a mantissa in 16384..32767 and its Q format
struct PredictedGain {
  Zpp16s mantissa;
  int q;
};

// energy: sum of squares of the code vector
PredictedGain ownGainPredict(Zpp32s energy, const Zpp16s* memory);
// correction: the quantised code gain correction, Q13
void ownGainUpdate(Zpp32s correction, Zpp16s* memory);
// Clause 4.4.2: the mean error of the last four subframes less 4 dB, -14 dB at the least
void ownGainUpdateErasure(Zpp16s* memory);
