// GSM-AMR, 3GPP TS 26.071: eight rates from 4.75 to 12.2 kbit/s in frames of 20 ms, with discontinuous transmission.
#pragma once

#include "codecs/amr/decoder.h"
#include "codecs/amr/encoder.h"
