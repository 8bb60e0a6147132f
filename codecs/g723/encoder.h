// The encoder of ITU-T G.723.1 (clause 2), with the discontinuous transmission of Annex A on request.
#pragma once

#include "codecs/g723/dtx.h"
#include "codecs/g723/frame.h"

namespace codecs::g723 {

class Encoder {
 public:
  // variant 1: the input has been high-pass filtered already
  explicit Encoder(const Options& options);
  int encode(const Zpp16s* pcm, Zpp8u* payload);
  void setBitRate(int bitRate);

 private:
  static constexpr int kPastInput = 120;
  static constexpr int kDelay = 60;  // of the coded frame behind the input
  using Weighting = std::array<std::array<Zpp16s, 2 * kOrder>, kSubframes>;
  struct HarmonicShaping {
    Zpp16s lag, gain;
  };

  // Input of a frame, from the past that its analysis reaches to the newest sample
  using Input = std::array<Zpp16s, kPastInput + kFrame>;
  // Weighted speech with its past
  using Weighted = std::array<Zpp16s, kHistory + kFrame>;

  void takeInput(const Zpp16s* pcm, Input& input);
  Filters analyse(const Input& input, std::array<Autocorrelation, kSubframes>& autocorrelations);
  Zpp32s quantiseLsf(const Filter& filter) const;
  void weightSpeech(const Input& input, const Weighting& weighting, Weighted& weighted);
  static std::array<Zpp16s, 2> openLoopLags(const Weighted& scaled);
  void codeSpeech(const Weighted& weighted, const Weighted& scaled, const Weighting& weighting, Frame& frame);
  void codeSubframe(int subframe, const Filter& filter, const Zpp16s* weighting, const HarmonicShaping& shaping, Zpp16s* target,
                    Zpp16s& searchTime, Frame& frame);
  Frame codeSilence(const Weighting& weighting);
  Filters followLsf(const Lsf& lsf);
  void runFilters(const Filter& filter, const Zpp16s* weighting, const Zpp16s* excitation);

  Kind rate_;
  bool discontinuous_, highPass_;
  Dtx dtx_;

  std::array<Zpp32s, 2> highPassMemory_{};
  std::array<Zpp16s, kPastInput> pastInput_{};
  Zpp16s sineDetector_ = 0;  // the last 15 decisions, negative for a sine
  Lsf lsf_ = kMeanLsf;       // decoded
  std::array<Zpp16s, 2 * kOrder> weightingMemory_{};
  History pastWeighted_{};
  // The weighted synthesis of what the decoder will hear
  std::array<Zpp16s, 2 * kOrder> ringingMemory_{};
  History ringing_{};
  History excitation_{};
  std::array<Zpp32s, 5> taming_ = {4, 4, 4, 4, 4};
};

}  // namespace codecs::g723
