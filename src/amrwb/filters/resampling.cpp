// Conversion between 16 and 12.8 kHz, decimation of the weighted speech and the filters of the high band (3GPP TS 26.190
// clauses 5.1, 5.4 and 6.3): entries.
#include "amrwb/filters/kernels.h"
#include "amrwb/filters/tables.h"
#include "core/checks.h"

using namespace zpp;

ZppStatus zppsDownSampling_AMRWB_16s(const Zpp16s* src, Zpp16s* dst, int len, Zpp16s* mem) {
  if (anyNull(src, dst, mem)) return zppStsNullPointer;
  if (outside(len, 5, 320) || len % 5 != 0) return zppStsBadSize;
  ownDownSampling_AMRWB_16s(src, dst, len, mem);
  return zppStsOk;
}

ZppStatus zppsUpSampling_AMRWB_16s(const Zpp16s* src, Zpp16s* dst, int len, Zpp16s* mem) {
  if (anyNull(src, dst, mem)) return zppStsNullPointer;
  if (outside(len, 4, amrwb::kFrame) || len % 4 != 0) return zppStsBadSize;
  ownUpSampling_AMRWB_16s(src, dst, len, mem);
  return zppStsOk;
}

ZppStatus zppsDecimateBy2_AMRWB_16s_I(Zpp16s* srcDst, int len, Zpp16s* mem) {
  if (anyNull(srcDst, mem)) return zppStsNullPointer;
  if (outside(len, 4, amrwb::kFrame) || len % 2 != 0) return zppStsBadSize;
  ownDecimateBy2_AMRWB_16s_I(srcDst, len, mem);
  return zppStsOk;
}

ZppStatus zppsHighBandFilter_AMRWB_16s_I(Zpp16s* srcDst, int len, int band, Zpp16s* mem) {
  if (anyNull(srcDst, mem)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  if (outside(band, 0, 1)) return zppStsOutOfRange;
  if (band == 0)
    ownHighBandFilter_AMRWB_16s_I(bandPass6To7kHz, srcDst, len, 2, mem);
  else
    ownHighBandFilter_AMRWB_16s_I(lowPass7kHz, srcDst, len, 0, mem);
  return zppStsOk;
}
