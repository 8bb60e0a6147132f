/* zppsc: companding, ITU-T G.711. Include zppsc.h. */
#ifndef ZPPSC_G711_H
#define ZPPSC_G711_H

#include "zppsc/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Companding (ITU-T G.711) -------------------------------------------------------------------------------------------- */

/* Compresses len 16-bit linear samples to code words as transmitted: mu-law from the upper 14 bits, magnitude bits inverted;
 * A-law from the upper 13 bits, even bits inverted.
 * Status: zppStsOk; zppStsNullPointer; zppStsBadSize for len below 1. */
ZPPAPI ZppStatus zppsLinToMuLaw_16s8u(const Zpp16s* src, Zpp8u* dst, int len);
ZPPAPI ZppStatus zppsLinToALaw_16s8u(const Zpp16s* src, Zpp8u* dst, int len);

#ifdef __cplusplus
}
#endif

#endif
