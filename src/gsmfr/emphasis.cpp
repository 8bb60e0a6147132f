// Pre-processing of the encoder and post-processing of the decoder (3GPP TS 46.010 clauses 5.2.1 to 5.2.3, 5.3.5 to 5.3.7).
#include "core/checks.h"
#include "core/fixed_point.h"
#include "gsmfr/kernels.h"

using namespace zpp;

ZppStatus zppsOffsetCompensation_GSMFR_16s(const Zpp16s* src, Zpp16s* dst, int len, Zpp32s* memory) {
  if (anyNull(src, dst, memory)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  ownOffsetCompensation_GSMFR_16s(src, dst, len, memory);
  return zppStsOk;
}

ZppStatus zppsPreemphasize_GSMFR_16s(const Zpp16s* src, Zpp16s* dst, int len, Zpp16s* memory) {
  if (anyNull(src, dst, memory)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  ownPreemphasize_GSMFR_16s(src, dst, len, memory);
  return zppStsOk;
}

ZppStatus zppsDeemphasize_GSMFR_16s_I(Zpp16s* srcDst, int len, Zpp16s* memory) {
  if (anyNull(srcDst, memory)) return zppStsNullPointer;
  if (len < 1) return zppStsBadSize;
  ownDeemphasize_GSMFR_16s_I(srcDst, len, memory);
  return zppStsOk;
}

// The recursion decays by 32735/32768 a sample and takes in at most 32764, both Q15: its own memory stays below 2^30, where no
// sum saturates. Other memories wrap.
void ownOffsetCompensation_GSMFR_16s(const Zpp16s* src, Zpp16s* dst, int len, Zpp32s* memory) {
  constexpr Zpp32s kDecay = 32735;  // Q15
  Zpp16s previous = low16(memory[0]);
  Zpp32s recursive = memory[1];
  for (int n = 0; n < len; ++n) {
    const auto input = static_cast<Zpp16s>((src[n] >> 3) * 4);
    const Zpp32s step = (input - previous) * 32768;
    previous = input;
    // The product of 32 and 16 bits in two parts, of which the lower one is rounded
    const Zpp32s upper = (recursive >> 15) * kDecay, lower = ((recursive & 32767) * kDecay + 16384) >> 15;
    recursive = addWrap32(upper, step + lower);
    dst[n] = sat16(addWrap32(recursive, 16384) >> 15);
  }
  memory[0] = previous;
  memory[1] = recursive;
}
