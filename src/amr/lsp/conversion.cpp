// LSPs from LP coefficients, to LSFs and back, and their interpolation (3GPP TS 26.090 clauses 5.2.3 to 5.2.6).
#include <algorithm>

#include "amr/lsp/kernels.h"
#include "core/checks.h"
#include "core/fixed_point.h"
#include "lpc/kernels.h"
#include "lpc/tables.h"

using namespace zpp;
using namespace zpp::amr;

ZppStatus zppsLPCToLSP_GSMAMR_16s(const Zpp16s* a, const Zpp16s* prevLsp, Zpp16s* lsp) {
  if (anyNull(a, prevLsp, lsp)) return zppStsNullPointer;
  ownLPCToLSP_16s(a, prevLsp, w_eval_60, 60, 4, 10, lsp);
  return zppStsOk;
}

ZppStatus zppsInterpolateLSP_GSMAMR_16s(const Zpp16s* prevLsp, const Zpp16s* lsp, Zpp16s* a, ZppSpeechRate rate) {
  if (anyNull(prevLsp, lsp, a)) return zppStsNullPointer;
  if (!isSpeechRate(rate)) return zppStsOutOfRange;
  ownInterpolateLSP_GSMAMR_16s(prevLsp, lsp, a, modeOf(rate));
  return zppStsOk;
}

void ownInterpolateLSP_GSMAMR_16s(const Zpp16s* prevLsp, const Zpp16s* lsp, Zpp16s* a, Mode mode) {
  constexpr int kSet = kLpcOrder + 1;
  Zpp16s between[kLpcOrder];
  if (mode == k122) {
    const Zpp16s* last = lsp + kLpcOrder;
    for (int i = 0; i < kLpcOrder; ++i) between[i] = static_cast<Zpp16s>((lsp[i] >> 1) + (prevLsp[i] >> 1));
    ownLSPToLPC_G729_16s(between, a);
    ownLSPToLPC_G729_16s(lsp, a + kSet);
    for (int i = 0; i < kLpcOrder; ++i) between[i] = static_cast<Zpp16s>((lsp[i] >> 1) + (last[i] >> 1));
    ownLSPToLPC_G729_16s(between, a + 2 * kSet);
    ownLSPToLPC_G729_16s(last, a + 3 * kSet);
    return;
  }
  // x - (x >> 2) stays in 16 bits, and so do these means.
  const auto mostly = [](Zpp16s x, Zpp16s y) { return static_cast<Zpp16s>((y >> 2) + (x - (x >> 2))); };
  for (int i = 0; i < kLpcOrder; ++i) between[i] = mostly(prevLsp[i], lsp[i]);
  ownLSPToLPC_G729_16s(between, a);
  for (int i = 0; i < kLpcOrder; ++i) between[i] = static_cast<Zpp16s>((prevLsp[i] >> 1) + (lsp[i] >> 1));
  ownLSPToLPC_G729_16s(between, a + kSet);
  for (int i = 0; i < kLpcOrder; ++i) between[i] = mostly(lsp[i], prevLsp[i]);
  ownLSPToLPC_G729_16s(between, a + 2 * kSet);
  ownLSPToLPC_G729_16s(lsp, a + 3 * kSet);
}

void ownLSPToLSF_GSMAMR_16s(const Zpp16s* lsp, Zpp16s* lsf) {
  int index = 63;
  for (int i = kLpcOrder - 1; i >= 0; --i) {
    // The last interval that begins at this cosine or above it, no later than that of the LSP before; entry 0 is above all.
    int interval = 0;
    for (int step = 32; step > 0; step /= 2) interval += cos15[interval + step] >= lsp[i] ? step : 0;
    index = std::min(index, interval);
    const Zpp16s offset = subSat16(lsp[i], cos15[index]);
    lsf[i] = addSat16(roundHigh16(shlSat32(mulDbl(offset, acos12[index]), 3)), index * 256);
  }
}

void ownLSFToLSP_GSMAMR_16s(const Zpp16s* lsf, Zpp16s* lsp) {
  for (int i = 0; i < kLpcOrder; ++i) {
    // Damaged frames can pile LSFs up beyond 4000 Hz, where the table ends.
    const int limited = lsf[i] < 0 ? 0 : lsf[i] > 16383 ? 16383 : lsf[i], index = limited >> 8;
    lsp[i] = addSat16(cos15[index], ((cos15[index + 1] - cos15[index]) * (limited & 255)) >> 8);
  }
}

void ownReorderLSF_GSMAMR_16s(Zpp16s* lsf) {
  constexpr Zpp16s kGap = 205;  // 50 Hz
  Zpp16s least = kGap;
  for (int i = 0; i < kLpcOrder; ++i) {
    if (lsf[i] < least) lsf[i] = least;
    least = addSat16(lsf[i], kGap);
  }
}
