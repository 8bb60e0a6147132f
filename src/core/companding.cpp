// ITU-T G.711 compression: entries.
#include "core/checks.h"
#include "core/kernels.h"

using namespace zpp;

ZppStatus zppsLinToMuLaw_16s8u(const Zpp16s* src, Zpp8u* dst, int len) {
  if (anyNull(src, dst)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  ownLinToMuLaw_16s8u(src, dst, len);
  return zppStsOk;
}

ZppStatus zppsLinToALaw_16s8u(const Zpp16s* src, Zpp8u* dst, int len) {
  if (anyNull(src, dst)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  ownLinToALaw_16s8u(src, dst, len);
  return zppStsOk;
}
