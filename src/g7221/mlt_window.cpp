// Windowing and folding of the modulated lapped transform (ITU-T G.722.1 clauses 3.1 and 4.7): entries.
#include "core/checks.h"
#include "g7221/kernels.h"

using namespace zpp;

ZppStatus zppsDecomposeMLTToDCT_G722_16s(const Zpp16s* src, Zpp16s* srcDstOld, Zpp16s* dst) {
  if (anyNull(src, srcDstOld, dst)) return zppStsNullPointer;
  ownDecomposeMLTToDCT_G722_16s(src, srcDstOld, dst);
  return zppStsOk;
}

ZppStatus zppsDecomposeDCTToMLT_G722_16s(const Zpp16s* src, Zpp16s* srcDstOld, Zpp16s* dst) {
  if (anyNull(src, srcDstOld, dst)) return zppStsNullPointer;
  ownDecomposeDCTToMLT_G722_16s(src, srcDstOld, dst);
  return zppStsOk;
}
