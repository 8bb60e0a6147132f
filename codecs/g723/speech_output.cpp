#include "codecs/g723/speech_output.h"

namespace codecs::g723 {

void SpeechOutput::filter(const Filters& filters, Zpp16s* speech) {
  for (const Filter& filter : filters) {
    require(zppsSynthesisFilter_G723_16s_I(filter.data(), speech, synthesisMemory_.data()));
    if (postfilter_)
      postfilter(filter, speech);
    else
      require(zppsAdd_16s_I(speech, speech, kSubframe));  // the synthesis runs at half the level
    speech += kSubframe;
  }
}

void SpeechOutput::postfilter(const Filter& filter, Zpp16s* speech) {
  Zpp32s energy = 0;
  require(zppsFormantPostFilter_G723_16s_I(filter.data(), speech, postfilterMemory_.data(), &tilt_, &energy));
  require(zppsGainControl_G723_16s_I(speech, &gain_, energy));
}

}  // namespace codecs::g723
