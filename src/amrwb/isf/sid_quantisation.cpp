// Split vector quantisation of the ISFs of comfort noise (3GPP TS 26.192 clause 5.2).
#include "amrwb/isf/codebooks.h"
#include "amrwb/isf/kernels.h"
#include "core/checks.h"

using namespace zpp;
using namespace zpp::amrwb;

ZppStatus zppsSIDQuant_AMRWB_16s(const Zpp16s* isf, Zpp16s* quantIsf, Zpp16s* index) {
  if (anyNull(isf, quantIsf, index)) return zppStsNullPointer;
  ownSIDQuant_AMRWB_16s(isf, quantIsf, index);
  return zppStsOk;
}

ZppStatus zppsSIDDecode_AMRWB_16s(const Zpp16s* index, Zpp16s* isf) {
  if (anyNull(index, isf)) return zppStsNullPointer;
  ownSIDDecode_AMRWB_16s(index, isf);
  return zppStsOk;
}

void ownSIDQuant_AMRWB_16s(const Zpp16s* isf, Zpp16s* quantIsf, Zpp16s* index) {
  Zpp16s x[kOrder];
  for (int i = 0; i < kOrder; ++i) x[i] = subSat16(isf[i], meanIsfNoise[i]);
  for (int part = 0; part < 5; ++part) {
    const Codebook& book = kNoise[part];
    index[part] =
        static_cast<Zpp16s>(ownNearestIsf_AMRWB_16s(x + book.first, book.components, book.dimension, book.entries).index);
  }
  ownSIDDecode_AMRWB_16s(index, quantIsf);
}

void ownSIDDecode_AMRWB_16s(const Zpp16s* index, Zpp16s* isf) {
  for (int part = 0; part < 5; ++part) {
    const Codebook& book = kNoise[part];
    for (int i = 0; i < book.dimension; ++i)
      isf[book.first + i] = addSat16(book.component(index[part], i), meanIsfNoise[book.first + i]);
  }
  separate(isf);
}
