// Constant tables of this room. Content, shape, Q format, the name in 3GPP TS 46.010 (or TS 46.032).
#pragma once

#include "zppsc.h"

namespace zpp::gsmfr {

// Slopes of the LAR quantiser, Q10: A[1..8], table 5.1
extern const Zpp16s larSlope[8];
// Offsets of the LAR quantiser, Q9: B[1..8], table 5.1
extern const Zpp16s larOffset[8];
// Smallest quantised LAR: MIC[1..8], table 5.1
extern const Zpp16s larLowest[8];
// Largest quantised LAR: MAC[1..8], table 5.1
extern const Zpp16s larHighest[8];
// Inverse slopes, 8/A in Q15: INVA[1..8], table 5.2
extern const Zpp16s larInverseSlope[8];

// Upper decision levels of the LTP gain codes 0..2, Q15: DLB[0..2], table 5.3a
extern const Zpp16s ltpGainLevel[3];
// LTP gains, Q15: QLB[0..3], table 5.3b
extern const Zpp16s ltpGain[4];

// Impulse response of the weighting filter, Q13: H[0..10], table 5.4; symmetric, and a zero behind it
extern const Zpp16s weighting[12];
// Inverse mantissas of the block amplitude, 8/(mantissa + 9) in Q15: NRFAC[0..7], table 5.5
extern const Zpp16s inverseMantissa[8];
// Pulses by amplitude code and pulse code: what APCM inverse quantisation (clause 5.2.16, FAC of table 5.6) makes of them
extern const Zpp16s pulseLevel[64][8];

// First half of the symmetric window of the tone detector, Q15: hann[0..79], TS 46.032 table 3.2
extern const Zpp16s toneWindow[80];

}  // namespace zpp::gsmfr
