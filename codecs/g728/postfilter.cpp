#include "codecs/g728/postfilter.h"

#include <algorithm>

#include "codecs/g728/tables.h"

namespace codecs::g728 {

Postfilter::Postfilter() {
  require(zppsPostFilterAdapterInit_G728(adapter_));
  require(zppsPostFilterInit_G728_16s(filter_));
}

void Postfilter::process(int vector, bool filters, Zpp16s* speech) {
  if (vector == 0) {
    std::copy_n(residual_ + kCycle, kHistory, residual_);
    std::copy_n(speech_ + kCycle, kHistory, speech_);
  }
  const int at = kHistory + kVector * vector;
  require(zppsLPCInverseFilter_G728_16s(inverse_, speech, residual_ + at, adapter_));
  if (vector == 2) findPitch(vector);
  require(zppsRShiftC_16s(speech, speech_ + at, kVector, 2));
  if (filters)
    require(zppsPostFilter_G728_16s(longTerm_, zeros_, poles_, speech, speech_ + at, speech, pitch_, tilt_, filter_));
}

// The residual reaches to the end of this vector, the speech of the long-term postfilter to that of the one before.
void Postfilter::findPitch(int vector) {
  const int at = kHistory + kVector * vector;
  require(zppsPitchPeriod_G728_16s(residual_ + at + kVector - kCycle, &pitch_, adapter_));
  require(zppsLongTermPostFilterCoeffs_G728_16s(speech_ + at - 100, pitch_, &tap_, longTerm_));
}

void Postfilter::adapt(const ShortPredictor& predictor) {
  require(zppsMulC_NR_16s_Sfs(predictor.a, 1, inverse_, kShortOrder, predictor.scale - 13));
  if (!expand(predictor, kPostfilterPoles, poles_)) return;
  expand(predictor, kPostfilterZeros, zeros_);
  require(zppsMulC_NR_16s_Sfs(&predictor.rc1, 4915, &tilt_, 1, 16));  // 0.15
}

}  // namespace codecs::g728
