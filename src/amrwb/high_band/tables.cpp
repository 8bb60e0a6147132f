#include "amrwb/high_band/tables.h"

const Zpp16s highBandGains[16] = {3624,  4673,  5597,  6479,  7425,  8378,  9324,  10264,
                                  11210, 12206, 13391, 14844, 16770, 19655, 24289, 32728};
