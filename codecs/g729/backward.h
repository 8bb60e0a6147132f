// Backward LP analysis of ITU-T G.729 (Annex E): encoder and decoder alike derive a filter of order 30 from the synthesis of
// the past, so that it costs no bits.
#pragma once

#include "codecs/g729/filters.h"

namespace codecs::g729 {

// The synthesis of encoder or decoder, and the filter that it gives (clause E.3.2)
class BackwardAnalysis {
 public:
  BackwardAnalysis();
  // Looks at the synthesis before a frame of 11.8 kbit/s: to be called in each.
  void observe();
  // The filter for the frame. An unstable or a clipped one gives way to the last that was not.
  BackwardFilter filter();

  // Makes room for a frame.
  void shift() { shiftFrame(synthesis_); }
  // A subframe of the frame, behind more than kBackwardOrder samples of the past
  Zpp16s* synthesis(int subframe) { return synthesis_.data() + kPast + kSubframeSize * subframe; }
  const Zpp16s* synthesis(int subframe) const { return synthesis_.data() + kPast + kSubframeSize * subframe; }

 private:
  static constexpr int kPast = 65;
  alignas(16) std::array<Zpp16s, kPast + kFrameSize> synthesis_{};
  std::array<Zpp8u, 124> window_;

  // What the frames saw whose filters nobody has asked for, the newest last. A decoder of forward frames solves one of many:
  // when the last filter is neither unstable nor clipped, those before it do not matter.
  static constexpr int kMostPending = 8;
  using Autocorrelation = std::array<Zpp32s, kBackwardOrder + 1>;
  void solve();
  std::array<Autocorrelation, kMostPending> pending_{};
  int pendingFrames_ = 0;
  BackwardFilter filter_{4096};
};

// newest * (1 - share) + old * share, share Q12
BackwardFilter mix(const BackwardFilter& newest, const BackwardFilter& old, Zpp16s share);

// Leads gently from one frame's filter to the next (clause E.3.2.3).
class BackwardInterpolation {
 public:
  // The filters of both subframes on the way to a backward filter
  AnySubframeFilters towards(const BackwardFilter& backward);
  // What the frame uses: these, or forward filters
  void useBackward(const AnySubframeFilters& filters) { previous_ = filters[1].a; }
  void useForward(const SubframeFilters& filters) {
    previous_ = AnyFilter(filters[1]).a;
    share_ = kMostShare;
  }

 private:
  static constexpr Zpp16s kMostShare = 4506;  // 1.1
  BackwardFilter previous_{4096};             // of the last subframe
  Zpp16s share_ = kMostShare;                 // that it has, Q12
};

// Whether backward frames prevail, as they do in music (clause E.3.2.4)
class Dominance {
 public:
  void count(bool backward);
  void clear() { dominant_ = false; }
  bool dominant() const { return dominant_; }

 private:
  int backward_ = 0, forward_ = 0;
  bool dominant_ = false;
};

// log10 of a signal's energy, Q11
Zpp16s levelOf(const Zpp16s* signal, int length);
inline constexpr Zpp16s kAudibleLevel = 8192;  // of a frame: 40 dB

}  // namespace codecs::g729
