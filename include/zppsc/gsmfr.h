/* zppsc: GSM full rate, 3GPP TS 46.010. Include zppsc.h. */
#ifndef ZPPSC_GSMFR_H
#define ZPPSC_GSMFR_H

#include "zppsc/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- GSM full rate ---- */

#ifdef __cplusplus
}
#endif

#endif
