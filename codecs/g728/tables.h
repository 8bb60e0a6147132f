// Constant tables of the G.728 codec: windows and bandwidth expansions of its backward analyses.
#pragma once

#include "zppsc.h"

namespace codecs::g728 {

// Hybrid window of the synthesis-filter adapter, Q15, newest sample first (WNR, Annex A.1)
extern const Zpp16s kSynthesisWindow[105];
// Hybrid window of the weighting-filter adapter, Q15, newest sample first (WNRW, Annex A.3)
extern const Zpp16s kWeightingWindow[60];
// Hybrid window of the log-gain adapter, Q15, newest value first (WNRLG, Annex A.2)
extern const Zpp16s kLogGainWindow[34];
// Powers 1..50 of 253/256, Q14 (FACV, Annex C)
extern const Zpp16s kSynthesisExpansion[50];
// Powers 1..10 of 29/32, Q14 (FACGPV, Annex C)
extern const Zpp16s kLogGainExpansion[10];
// Powers 1..10 of 0.9, Q14: numerator of the weighting filter (WZCFV, Annex C)
extern const Zpp16s kWeightingZeros[10];
// Powers 1..10 of 0.6, Q14: denominator of the weighting filter (WPCFV, Annex C)
extern const Zpp16s kWeightingPoles[10];
// Powers 1..10 of 0.65, Q14: numerator of the short-term postfilter (SPFZCFV, Annex C)
extern const Zpp16s kPostfilterZeros[10];
// Powers 1..10 of 0.75, Q14: denominator of the short-term postfilter (SPFPCFV, Annex C)
extern const Zpp16s kPostfilterPoles[10];
// Powers 1..50 of 0.97, Q14: attenuation of the synthesis filter in an erasure (Annex I)
extern const Zpp16s kErasureAttenuation[50];

}  // namespace codecs::g728
