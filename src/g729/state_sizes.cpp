// State-size queries of this room.
#include "core/checks.h"

using namespace zpp;

ZppStatus zppsHighPassFilterSize_G729(Zpp32s* size) { return reportSize(size, 24); }
ZppStatus zppsPhaseDispersionGetStateSize_G729D_16s(Zpp32s* size) { return reportSize(size, 20); }
ZppStatus zppsWinHybridGetStateSize_G729E_16s(Zpp32s* size) { return reportSize(size, 124); }
ZppStatus zppsWinHybridGetStateSize_G729E_32f(Zpp32s* size) { return reportSize(size, 124); }
