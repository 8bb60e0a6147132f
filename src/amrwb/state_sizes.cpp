// State-size queries of this room.
#include "core/checks.h"

using namespace zpp;

ZppStatus zppsAdaptiveCodebookDecodeGetSize_AMRWB_16s(Zpp32s* size) { return reportSize(size, 24); }
ZppStatus zppsVADGetSize_AMRWB_16s(Zpp32s* size) { return reportSize(size, 148); }

ZppStatus zppsHighPassFilterGetSize_AMRWB_16s(Zpp32s order, Zpp32s* size) {
  if (anyNull(size)) return zppStsNullPointer;
  if (outside(order, 2, 3)) return zppStsOutOfRange;
  return reportSize(size, 40);
}
