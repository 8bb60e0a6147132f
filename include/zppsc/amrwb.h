/* zppsc: AMR-WB, 3GPP TS 26.171 to 26.204, ITU-T G.722.2. Include zppsc.h. */
#ifndef ZPPSC_AMRWB_H
#define ZPPSC_AMRWB_H

#include "zppsc/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- AMR-WB ---- */

/* State-size queries: *size receives the bytes that the caller provides for the state block, at any alignment.
 * Status: zppStsOk; zppStsNullPointer when size is null. */
ZPPAPI ZppStatus zppsAdaptiveCodebookDecodeGetSize_AMRWB_16s(Zpp32s* size); /* 24 */
ZPPAPI ZppStatus zppsVADGetSize_AMRWB_16s(Zpp32s* size);                    /* 148 */

/* As above for the AMR-WB high-pass filters; *size = 40.
 * order: 2 or 3. Status: zppStsOk; zppStsNullPointer; zppStsOutOfRange for another order. */
ZPPAPI ZppStatus zppsHighPassFilterGetSize_AMRWB_16s(Zpp32s order, Zpp32s* size);

#ifdef __cplusplus
}
#endif

#endif
