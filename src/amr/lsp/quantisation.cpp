// Quantisation of the LSFs: split vector quantisers behind a first-order prediction (3GPP TS 26.090 clause 5.2.5).
#include "amr/lsp/codebooks.h"
#include "amr/lsp/kernels.h"
#include "core/checks.h"
#include "core/fixed_point.h"
#include "lpc/kernels.h"

using namespace zpp;
using namespace zpp::amr;

ZppStatus zppsLSPQuant_GSMAMR_16s(const Zpp16s* lsp, Zpp16s* residualMem, Zpp16s* quantLsp, Zpp16s* idx, ZppSpeechRate rate) {
  if (anyNull(lsp, residualMem, quantLsp, idx)) return zppStsNullPointer;
  if (modeOf(rate) == kNoMode) return zppStsOutOfRange;
  if (rate == ZPP_RATE_12200)
    ownLSPQuant5_GSMAMR_16s(lsp, residualMem, quantLsp, idx);
  else
    ownLSPQuant3_GSMAMR_16s(lsp, residualMem, quantLsp, idx, modeOf(rate));
  return zppStsOk;
}

namespace {

// The closer its neighbours, the more an LSF weighs.
void weigh(const Zpp16s* lsf, Zpp16s* weight) {
  constexpr int kLast = kLpcOrder - 1;
  for (int i = 0; i < kLpcOrder; ++i) {
    const Zpp16s gap = i == 0 ? lsf[1] : i == kLast ? subSat16(16384, lsf[kLast - 1]) : subSat16(lsf[i + 1], lsf[i - 1]);
    const Zpp16s beyond = subSat16(gap, 1843);  // 450 Hz
    weight[i] = shlSat16(beyond < 0 ? subSat16(3427, mulQ15(gap, 28160)) : subSat16(1843, mulQ15(beyond, 6242)), 3);
  }
}

// Takes the nearest entry of a codebook in place of `size` residuals. bothSigns: every entry counts twice, and the lowest bit
// of the index tells the sign.
template <int size>
Zpp16s quantise(Zpp16s* residual, const Zpp16s* weight, const LsfCodebook& codebook, bool bothSigns = false) {
  Zpp16s r[4] = {}, w[4] = {};
  for (int i = 0; i < size; ++i) r[i] = residual[i], w[i] = weight[i];
  const int index = ownLsfSearch_GSMAMR_16s(r, w, codebook.quads, codebook.size, bothSigns);
  const int entry = bothSigns ? index >> 1 : index, sign = bothSigns && index % 2 != 0 ? -1 : 1;
  for (int i = 0; i < size; ++i) residual[i] = sat16(sign * codebook.at(entry, i));
  return static_cast<Zpp16s>(index);
}

// The silence descriptor starts from one of eight vectors instead of the last frame; the nearest. Leaves its index.
Zpp16s chooseStart(const Zpp16s* lsf, Zpp16s* predicted, Zpp16s* residual) {
  Zpp64s least = kMax32;
  int best = 0;
  for (int j = 0; j < 8; ++j) {
    Zpp64s error = 0;
    Zpp16s p[kLpcOrder], r[kLpcOrder];
    for (int i = 0; i < kLpcOrder; ++i) {
      p[i] = addSat16(meanLsf3[i], pastRqInit[j][i]);
      r[i] = subSat16(lsf[i], p[i]);
      error += Zpp64s{2} * r[i] * r[i];
    }
    if (j > 0 && error >= least) continue;
    if (error < least) least = error, best = j;
    for (int i = 0; i < kLpcOrder; ++i) predicted[i] = p[i], residual[i] = r[i];
  }
  return static_cast<Zpp16s>(best);
}

}  // namespace

void ownLSPQuant3_GSMAMR_16s(const Zpp16s* lsp, Zpp16s* residualMem, Zpp16s* quantLsp, Zpp16s* idx, Mode mode) {
  Zpp16s lsf[kLpcOrder], weight[kLpcOrder], predicted[kLpcOrder], residual[kLpcOrder];
  ownLSPToLSF_GSMAMR_16s(lsp, lsf);
  weigh(lsf, weight);
  if (mode == kSid) {
    *idx++ = chooseStart(lsf, predicted, residual);
  } else {
    for (int i = 0; i < kLpcOrder; ++i) {
      predicted[i] = addSat16(meanLsf3[i], mulQ15(residualMem[i], predFac[i]));
      residual[i] = subSat16(lsf[i], predicted[i]);
    }
  }

  const LsfCodebooks books = lsfCodebooks(mode);
  idx[0] = quantise<3>(residual, weight, books.first);
  idx[1] = quantise<3>(residual + 3, weight + 3, books.second);
  idx[2] = quantise<4>(residual + 6, weight + 6, books.third);

  for (int i = 0; i < kLpcOrder; ++i) {
    lsf[i] = addSat16(residual[i], predicted[i]);
    residualMem[i] = residual[i];
  }
  ownReorderLSF_GSMAMR_16s(lsf);
  ownLSFToLSP_GSMAMR_16s(lsf, quantLsp);
}

void ownLSPQuant5_GSMAMR_16s(const Zpp16s* lsp, Zpp16s* residualMem, Zpp16s* quantLsp, Zpp16s* idx) {
  // Each codebook holds two neighbouring residuals of both sets: [first of set 1, second, first of set 2, second].
  Zpp16s lsf[2][kLpcOrder], weight[2][kLpcOrder], predicted[kLpcOrder], residual[5][4], weights[5][4];
  for (int set = 0; set < 2; ++set) {
    ownLSPToLSF_GSMAMR_16s(lsp + kLpcOrder * set, lsf[set]);
    weigh(lsf[set], weight[set]);
  }
  for (int i = 0; i < kLpcOrder; ++i) {
    predicted[i] = addSat16(meanLsf5[i], mulQ15(residualMem[i], kPrediction5));
    for (int set = 0; set < 2; ++set) {
      residual[i / 2][2 * set + i % 2] = subSat16(lsf[set][i], predicted[i]);
      weights[i / 2][2 * set + i % 2] = weight[set][i];
    }
  }

  idx[0] = quantise<4>(residual[0], weights[0], dico1Lsf5);
  idx[1] = quantise<4>(residual[1], weights[1], dico2Lsf5);
  idx[2] = quantise<4>(residual[2], weights[2], dico3Lsf5, true);
  idx[3] = quantise<4>(residual[3], weights[3], dico4Lsf5);
  idx[4] = quantise<4>(residual[4], weights[4], dico5Lsf5);

  for (int i = 0; i < kLpcOrder; ++i) {
    for (int set = 0; set < 2; ++set) lsf[set][i] = addSat16(residual[i / 2][2 * set + i % 2], predicted[i]);
    residualMem[i] = residual[i / 2][2 + i % 2];
  }
  for (int set = 0; set < 2; ++set) {
    ownReorderLSF_GSMAMR_16s(lsf[set]);
    ownLSFToLSP_GSMAMR_16s(lsf[set], quantLsp + kLpcOrder * set);
  }
}
