#include "codecs/gsmfr/dtx.h"

#include <algorithm>

#include "codecs/codec.h"

namespace codecs::gsmfr {

DtxHandler::DtxHandler() {
  constexpr Zpp32s kDownlink = 1;  // with tone detection
  require(zppsVADInit_GSMFR_16s(detector_, kDownlink));
}

bool DtxHandler::detectVoice(const FrameAnalysis& analysis, const Frame& frame) {
  Zpp16s lags[kSubframes], voice;
  for (int s = 0; s < kSubframes; ++s) lags[s] = frame.subframe[s].lag;
  require(zppsVAD_GSMFR_16s(analysis.autoCorr, analysis.offsetFree, lags, &voice, analysis.scale, detector_));
  return voice != 0;
}

// A pause begins with four frames of speech parameters, from which its first descriptor is made; with the last descriptor
// instead, if that is recent.
bool DtxHandler::replaceByDescriptor(bool voice, const NoiseParameters& noise, Frame& frame) {
  elapsed_ = std::min(elapsed_ + 1, kOldDescriptor);
  silentFrames_ = voice ? 0 : std::min(silentFrames_ + 1, kDescribedFrames + 1);
  if (silentFrames_ == 1) repeats_ = hasDescriptor_ && elapsed_ < kOldDescriptor;
  const bool makes = silentFrames_ > kDescribedFrames;
  const bool replaces = makes || (silentFrames_ > 0 && repeats_);
  if (makes) {
    descriptor_ = makeDescriptor();
    hasDescriptor_ = true;
    elapsed_ = 0;
  }
  if (replaces) frame = descriptor_;
  recent_[oldest_] = noise;
  oldest_ = (oldest_ + 1) % kDescribedFrames;
  return !replaces;
}

Frame DtxHandler::makeDescriptor() const {
  Zpp16s lar[kDescribedFrames * kOrder], maxima[kDescribedFrames * kSubframes], amplitude;
  for (int n = 0; n < kDescribedFrames; ++n) {
    std::copy_n(recent_[n].lar, kOrder, lar + n * kOrder);
    std::copy_n(recent_[n].maxima, kSubframes, maxima + n * kSubframes);
  }
  Frame descriptor = {};
  require(zppsSIDQuant_GSMFR_16s(lar, maxima, descriptor.larCode, &amplitude));
  for (Subframe& s : descriptor.subframe) s.amplitude = amplitude;
  return descriptor;
}

}  // namespace codecs::gsmfr
