// The kernels of the postfilter (3GPP TS 26.090 clause 6.2). Arguments are trusted.
#pragma once

#include "amr/rate.h"

void ownPostFilter_GSMAMR_16s_I(const Zpp16s* a, Zpp16s* speech, Zpp16s* mem, zpp::amr::Mode mode);
