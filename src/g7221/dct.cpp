// DCT-IV of 320 samples (ITU-T G.722.1 clauses 3.2 and 4.6): entries.
#include "core/checks.h"
#include "g7221/kernels.h"

using namespace zpp;

ZppStatus zppsDCTFwd_G722_16s(const Zpp16s* src, Zpp16s* dst) {
  if (anyNull(src, dst)) return zppStsNullPointer;
  ownDCTFwd_G722_16s(src, dst);
  return zppStsOk;
}

ZppStatus zppsDCTInv_G722_16s(const Zpp16s* src, Zpp16s* dst) {
  if (anyNull(src, dst)) return zppStsNullPointer;
  ownDCTInv_G722_16s(src, dst);
  return zppStsOk;
}
