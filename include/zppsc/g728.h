/* zppsc: ITU-T G.728. Include zppsc.h. */
#ifndef ZPPSC_G728_H
#define ZPPSC_G728_H

#include "zppsc/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- G.728 ---- */

/* State-size queries: *size receives the bytes that the caller provides for the state block, at any alignment.
 * Status: zppStsOk; zppStsNullPointer when size is null. */
ZPPAPI ZppStatus zppsIIR16sGetStateSize_G728_16s(Zpp32s* size);          /* 64 */
ZPPAPI ZppStatus zppsPostFilterGetStateSize_G728_16s(Zpp32s* size);      /* 64 */
ZPPAPI ZppStatus zppsSynthesisFilterGetStateSize_G728_16s(Zpp32s* size); /* 144 */
ZPPAPI ZppStatus zppsCombinedFilterGetStateSize_G728_16s(Zpp32s* size);  /* 208 */
ZPPAPI ZppStatus zppsPostFilterAdapterGetStateSize_G728(Zpp32s* size);   /* 176 */

#ifdef __cplusplus
}
#endif

#endif
