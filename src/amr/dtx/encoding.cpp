// Discontinuous transmission, encoder: which frames are sent, and the silence descriptor (3GPP TS 26.093 clause 5.1, TS 26.092
// clause 5).
#include <cstring>

#include "amr/arithmetic.h"
#include "amr/dtx/kernels.h"
#include "amr/frame.h"
#include "amr/lsp/kernels.h"
#include "core/checks.h"
#include "lpc/kernels.h"

using namespace zpp;
using namespace zpp::amr;

ZppStatus zppsDTXDecision_GSMAMR_16s(Zpp16s vadFlag, Zpp16s* dtxMem, Zpp16s* silence, Zpp16s* newSid) {
  if (anyNull(dtxMem, silence, newSid)) return zppStsNullPointer;
  ownDTXDecision_GSMAMR(vadFlag != 0, dtxMem, silence, newSid);
  return zppStsOk;
}

ZppStatus zppsDTXHistory_GSMAMR_16s(const Zpp16s* speech, const Zpp16s* lsp, Zpp16s* lspHist, Zpp16s* logEnergyHist) {
  if (anyNull(speech, lsp, lspHist, logEnergyHist)) return zppStsNullPointer;
  ownDTXHistory_GSMAMR_16s(speech, lsp, lspHist, logEnergyHist);
  return zppStsOk;
}

ZppStatus zppsSIDQuant_GSMAMR_16s(const Zpp16s* lspHist, const Zpp16s* logEnergyHist, Zpp16s* gainMem, Zpp16s* sid) {
  if (anyNull(lspHist, logEnergyHist, gainMem, sid)) return zppStsNullPointer;
  ownSIDQuant_GSMAMR_16s(lspHist, logEnergyHist, gainMem, sid);
  return zppStsOk;
}

namespace {

constexpr int kHistory = 8;

}  // namespace

void ownDTXDecision_GSMAMR(bool active, Zpp16s* dtxMem, Zpp16s* silence, Zpp16s* newSid) {
  Zpp16s &hangover = dtxMem[0], &elapsed = dtxMem[1];
  elapsed = addSat16(elapsed, 1);
  *silence = *newSid = 0;
  if (active) {
    hangover = 7;
  } else if (hangover == 0) {
    elapsed = 0;
    *silence = *newSid = 1;
  } else {
    hangover = subSat16(hangover, 1);
    // Soon after an analysis there is no hangover: the old descriptor serves again.
    if (addSat16(elapsed, hangover) < 30) *silence = 1;
  }
}

void ownDTXHistory_GSMAMR_16s(const Zpp16s* speech, const Zpp16s* lsp, Zpp16s* lspHist, Zpp16s* logEnergyHist) {
  constexpr int kKept = kHistory - 1;
  std::memmove(lspHist, lspHist + kLpcOrder, kKept * kLpcOrder * sizeof *lspHist);
  std::memmove(logEnergyHist, logEnergyHist + 1, kKept * sizeof *logEnergyHist);
  std::memcpy(lspHist + kKept * kLpcOrder, lsp, kLpcOrder * sizeof *lsp);
  const Dpf log = logarithm(energy(speech, kFrame));
  const Zpp16s q10 = addSat16(shlSat16(log.hi, 10), log.lo >> 5);
  logEnergyHist[kKept] = static_cast<Zpp16s>(subSat16(q10, 8521) >> 1);  // less the logarithm of twice the frame's length
}

void ownNoiseGainMem_GSMAMR_16s(Zpp16s logEnergy, Zpp16s* gainMem) {
  Zpp16s gain = subSat16(logEnergy, 9000);
  if (gain > 0) gain = 0;
  if (gain < -14436) gain = -14436;
  for (int k = 0; k < 4; ++k) {
    gainMem[4 + k] = gain;
    gainMem[k] = mulQ15(5443, gain);  // dB to log2
  }
}

void ownSIDQuant_GSMAMR_16s(const Zpp16s* lspHist, const Zpp16s* logEnergyHist, Zpp16s* gainMem, Zpp16s* sid) {
  Zpp16s logEnergy = 0, lsp[kLpcOrder], lsf[kLpcOrder], unused[2][kLpcOrder];
  for (int k = 0; k < kHistory; ++k) logEnergy = addSat16(logEnergy, logEnergyHist[k] >> 2);
  logEnergy = static_cast<Zpp16s>(logEnergy >> 1);
  for (int i = 0; i < kLpcOrder; ++i) {
    Zpp32s sum = 0;
    for (int k = 0; k < kHistory; ++k) sum += lspHist[kLpcOrder * k + i];
    lsp[i] = low16(sum >> 3);
  }

  const int index = addSat16(addSat16(logEnergy, 2560), 128) >> 8;
  sid[4] = static_cast<Zpp16s>(index < 0 ? 0 : index > 63 ? 63 : index);
  ownNoiseGainMem_GSMAMR_16s(subSat16(sid[4] * 256, 2560), gainMem);

  ownLSPToLSF_GSMAMR_16s(lsp, lsf);
  ownReorderLSF_GSMAMR_16s(lsf);
  ownLSFToLSP_GSMAMR_16s(lsf, lsp);
  ownLSPQuant3_GSMAMR_16s(lsp, unused[0], unused[1], sid, kSid);
}
