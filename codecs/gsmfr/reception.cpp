#include "codecs/gsmfr/reception.h"

#include <algorithm>

namespace codecs::gsmfr {

namespace {

constexpr int kDescriptorInterval = 24;  // frames from one descriptor of a pause to the next

// Takes the amplitudes down a step; false when they have all come to zero.
bool mute(Frame& frame) {
  constexpr int kStep = 4;
  bool audible = false;
  for (Subframe& s : frame.subframe) {
    s.amplitude = static_cast<Zpp16s>(std::max(s.amplitude - kStep, 0));
    audible = audible || s.amplitude > 0;
  }
  return audible;
}

}  // namespace

// The code word of a descriptor is 95 bits of zeros, the upper bits of pulse codes; a few of them may be damaged
// (3GPP TS 46.031 clause 6.1.1).
Reception::Descriptor Reception::descriptorIn(const Frame& frame) {
  constexpr int kTwoBitPulses = 4;  // of the last subframe
  int ones = 0;
  for (int s = 0; s < kSubframes; ++s)
    for (int i = 0; i < kPulses; ++i) {
      const int pulse = frame.subframe[s].pulses[i];
      ones += pulse >> 2 & 1;
      if (s < kSubframes - 1 || i < kTwoBitPulses) ones += pulse >> 1 & 1;
    }
  return ones < 2 ? Descriptor::valid : ones < 16 ? Descriptor::damaged : Descriptor::no;
}

Frame Reception::received(const Frame& frame) {
  ++sinceDescriptor_;
  switch (dtx_ ? descriptorIn(frame) : Descriptor::no) {
    case Descriptor::valid:
      descriptor_ = frame;
      return beginNoise();
    case Descriptor::damaged:
      if (mode_ == Mode::none) return kSilenceFrame;
      if (mode_ == Mode::speech || mode_ == Mode::muting) descriptor_ = last_;
      return beginNoise();
    default:
      mode_ = Mode::speech;
      return last_ = frame;
  }
}

Frame Reception::missing() {
  ++sinceDescriptor_;
  switch (mode_) {
    case Mode::speech:
      mode_ = Mode::muting;
      return last_;
    case Mode::muting:
      return muted();
    case Mode::noise:
      if (sinceDescriptor_ % kDescriptorInterval != 0) return comfortNoise();
      if (!descriptorLost_) {
        descriptorLost_ = true;
        return comfortNoise();
      }
      mode_ = Mode::noiseMuting;
      return mutedNoise();
    case Mode::noiseMuting:
      return mutedNoise();
    default:
      return kSilenceFrame;
  }
}

Frame Reception::beginNoise() {
  mode_ = Mode::noise;
  sinceDescriptor_ = 0;
  descriptorLost_ = false;
  return comfortNoise();
}

Frame Reception::muted() {
  if (!mute(last_)) mode_ = Mode::none;
  Frame frame = last_;
  for (Subframe& s : frame.subframe) s.grid = draw(2);
  return frame;
}

Frame Reception::mutedNoise() {
  if (!mute(descriptor_)) mode_ = Mode::none;
  return comfortNoise();
}

// Random pulses with the descriptor's spectrum and amplitudes, without long-term prediction
Frame Reception::comfortNoise() {
  Frame frame = descriptor_;
  for (int s = 0; s < kSubframes; ++s) {
    Subframe& subframe = frame.subframe[s];
    subframe.lag = s % 2 == 0 ? 40 : 120;
    subframe.gain = 0;
    subframe.grid = draw(2);
    for (Zpp16s& pulse : subframe.pulses) do {
        pulse = draw(3);
      } while (pulse < 1 || pulse > 6);
  }
  return frame;
}

// The shift register of 3GPP TS 26.092 clause 6.1
Zpp16s Reception::draw(int bits) {
  int drawn = 0;
  for (int n = 0; n < bits; ++n) {
    const Zpp32u bit = generator_ & 1, feedback = bit ^ (generator_ >> 28 & 1);
    generator_ = generator_ >> 1 | feedback << 30;
    drawn = 2 * drawn + static_cast<int>(bit);
  }
  return static_cast<Zpp16s>(drawn);
}

}  // namespace codecs::gsmfr
