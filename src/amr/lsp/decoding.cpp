// Decoding of the LSFs and their substitution in erased frames (3GPP TS 26.090 clause 6.1, TS 26.091 clause 6.2.3.3).
#include "amr/lsp/codebooks.h"
#include "amr/lsp/kernels.h"
#include "core/checks.h"
#include "core/fixed_point.h"
#include "lpc/kernels.h"

using namespace zpp;
using namespace zpp::amr;

ZppStatus zppsLSPDecode_GSMAMR_16s(const Zpp16s* idx, Zpp16s badFrame, Zpp16s* residualMem, Zpp16s* lsf, Zpp16s* quantLsp,
                                   ZppSpeechRate rate) {
  if (anyNull(idx, residualMem, lsf, quantLsp)) return zppStsNullPointer;
  if (modeOf(rate) == kNoMode) return zppStsOutOfRange;
  if (rate == ZPP_RATE_12200)
    ownLSPDecode5_GSMAMR_16s(idx, badFrame != 0, residualMem, lsf, quantLsp);
  else
    ownLSPDecode3_GSMAMR_16s(idx, badFrame != 0 && rate != ZPP_RATE_DTX, residualMem, lsf, quantLsp, modeOf(rate));
  return zppStsOk;
}

void ownLSPDecode3_GSMAMR_16s(const Zpp16s* idx, bool badFrame, Zpp16s* residualMem, Zpp16s* lsf, Zpp16s* quantLsp, Mode mode) {
  if (badFrame) {  // the last LSFs, moved towards their mean
    for (int i = 0; i < kLpcOrder; ++i) {
      lsf[i] = addSat16(mulQ15(lsf[i], 29491), mulQ15(meanLsf3[i], 3277));
      residualMem[i] = subSat16(lsf[i], addSat16(meanLsf3[i], mulQ15(residualMem[i], predFac[i])));
    }
  } else {
    const Zpp16s* start = mode == kSid ? pastRqInit[*idx++ & 7] : nullptr;
    const LsfCodebooks books = lsfCodebooks(mode);
    const auto entry = [](const LsfCodebook& book, int index, int element) {
      return book.at(index & (book.size - 1), element);
    };
    for (int i = 0; i < kLpcOrder; ++i) {
      const Zpp16s residual = i < 3   ? entry(books.first, idx[0], i)
                              : i < 6 ? entry(books.second, idx[1], i - 3)
                                      : entry(books.third, idx[2], i - 6);
      const Zpp16s prediction = start != nullptr ? start[i] : mulQ15(residualMem[i], predFac[i]);
      lsf[i] = addSat16(residual, addSat16(meanLsf3[i], prediction));
      residualMem[i] = start != nullptr ? Zpp16s{0} : residual;
    }
  }
  ownReorderLSF_GSMAMR_16s(lsf);
  ownLSFToLSP_GSMAMR_16s(lsf, quantLsp);
}

void ownLSPDecode5_GSMAMR_16s(const Zpp16s* idx, bool badFrame, Zpp16s* residualMem, Zpp16s* lsf, Zpp16s* quantLsp) {
  Zpp16s first[kLpcOrder];
  if (badFrame) {
    for (int i = 0; i < kLpcOrder; ++i) {
      first[i] = lsf[i] = addSat16(mulQ15(lsf[i], 31128), mulQ15(meanLsf5[i], 1639));
      residualMem[i] = subSat16(lsf[i], addSat16(meanLsf5[i], mulQ15(residualMem[i], kPrediction5)));
    }
  } else {
    const LsfCodebook* books[5] = {&dico1Lsf5, &dico2Lsf5, &dico3Lsf5, &dico4Lsf5, &dico5Lsf5};
    for (int i = 0; i < kLpcOrder; ++i) {
      const Zpp16s predicted = addSat16(meanLsf5[i], mulQ15(residualMem[i], kPrediction5));
      const LsfCodebook& book = *books[i / 2];
      const bool isSigned = &book == &dico3Lsf5;
      const int index = (isSigned ? idx[2] >> 1 : idx[i / 2]) & (book.size - 1), sign = isSigned && (idx[2] & 1) != 0 ? -1 : 1;
      const Zpp16s residual1 = sat16(sign * book.at(index, i % 2)), residual2 = sat16(sign * book.at(index, 2 + i % 2));
      first[i] = addSat16(residual1, predicted);
      lsf[i] = addSat16(residual2, predicted);
      residualMem[i] = residual2;
    }
  }
  ownReorderLSF_GSMAMR_16s(first);
  ownReorderLSF_GSMAMR_16s(lsf);
  ownLSFToLSP_GSMAMR_16s(first, quantLsp);
  ownLSFToLSP_GSMAMR_16s(lsf, quantLsp + kLpcOrder);
}
