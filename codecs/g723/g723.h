// ITU-T G.723.1 at 5.3 and 6.3 kbit/s, with the voice activity detection, discontinuous transmission and comfort noise of Annex
// A.
#pragma once

#include "codecs/g723/decoder.h"
#include "codecs/g723/encoder.h"
