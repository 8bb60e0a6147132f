// State-size queries of this room.
#include "core/checks.h"

using namespace zpp;

ZppStatus zppsIIR16sGetStateSize_G728_16s(Zpp32s* size) { return reportSize(size, 64); }
ZppStatus zppsPostFilterGetStateSize_G728_16s(Zpp32s* size) { return reportSize(size, 64); }
ZppStatus zppsSynthesisFilterGetStateSize_G728_16s(Zpp32s* size) { return reportSize(size, 144); }
ZppStatus zppsCombinedFilterGetStateSize_G728_16s(Zpp32s* size) { return reportSize(size, 208); }
ZppStatus zppsPostFilterAdapterGetStateSize_G728(Zpp32s* size) { return reportSize(size, 176); }
