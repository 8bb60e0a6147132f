// Version record and state-size queries.
#include "core/checks.h"
#include "core/variants.h"

using namespace zpp;

namespace {

constexpr char kLevelNames[][4] = {"px", "a6", "w7", "t7"};
constexpr const char* kLevelName = kLevelNames[static_cast<int>(buildLevel)];

constexpr ZppLibraryVersion kVersion = {
    4, 1, 12, 5, {kLevelName[0], kLevelName[1], 0, 0}, "libzppsc.so.4", "v4.1", "Jul 22 2004"};

ZppStatus reportSize(Zpp32s* size, Zpp32s bytes) {
  if (anyNull(size)) return zppStsNullPointer;
  *size = bytes;
  return zppStsOk;
}

}  // namespace

const ZppLibraryVersion* zppscGetLibVersion(void) { return &kVersion; }

ZppStatus zppsHighPassFilterSize_G729(Zpp32s* size) { return reportSize(size, 24); }
ZppStatus zppsAdaptiveCodebookDecodeGetSize_AMRWB_16s(Zpp32s* size) { return reportSize(size, 24); }
ZppStatus zppsVADGetSize_AMRWB_16s(Zpp32s* size) { return reportSize(size, 148); }
ZppStatus zppsPhaseDispersionGetStateSize_G729D_16s(Zpp32s* size) { return reportSize(size, 20); }
ZppStatus zppsWinHybridGetStateSize_G729E_16s(Zpp32s* size) { return reportSize(size, 124); }
ZppStatus zppsWinHybridGetStateSize_G729E_32f(Zpp32s* size) { return reportSize(size, 124); }
ZppStatus zppsIIR16sGetStateSize_G728_16s(Zpp32s* size) { return reportSize(size, 64); }
ZppStatus zppsPostFilterGetStateSize_G728_16s(Zpp32s* size) { return reportSize(size, 64); }
ZppStatus zppsSynthesisFilterGetStateSize_G728_16s(Zpp32s* size) { return reportSize(size, 144); }
ZppStatus zppsCombinedFilterGetStateSize_G728_16s(Zpp32s* size) { return reportSize(size, 208); }
ZppStatus zppsPostFilterAdapterGetStateSize_G728(Zpp32s* size) { return reportSize(size, 176); }

ZppStatus zppsHighPassFilterGetSize_AMRWB_16s(Zpp32s order, Zpp32s* size) {
  if (anyNull(size)) return zppStsNullPointer;
  if (outside(order, 2, 3)) return zppStsOutOfRange;
  return reportSize(size, 40);
}
