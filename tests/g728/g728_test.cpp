// G.728's functions that keep a state, call after call on golden sequences, and what must hold whatever blocks and states hold.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "support/golden.h"
#include "support/guarded.h"
#include "zppsc.h"

namespace {

using test::GoldenCase;
using Samples = std::vector<Zpp16s>;

// The inputs of a case, one call's behind the other's. Where there are fewer sets of coefficients than calls, each serves as
// many calls in a row.
class Inputs {
 public:
  Inputs(const GoldenCase& golden, std::size_t calls) : golden_(golden), calls_(calls) {}
  const Zpp16s* operator()(const std::string& name, std::size_t each, std::size_t call) {
    Samples& all = words_[name];
    if (all.empty())
      for (const double v : golden_.in.at(name)) all.push_back(static_cast<Zpp16s>(v));
    return all.data() + (each == 0 ? 0 : call * (all.size() / each) / calls_ * each);
  }
  Zpp32s number(const std::string& name, std::size_t call) const {
    const auto& all = golden_.in.at(name);
    return static_cast<Zpp32s>(all[call * all.size() / calls_]);
  }

 private:
  const GoldenCase& golden_;
  std::size_t calls_;
  std::map<std::string, Samples> words_;
};

// A state block at an odd address between unreadable pages, of the size that the query tells, full of rubbish before Init
class State {
 public:
  template <class Size, class Init>
  State(Size size, Init init) {
    Zpp32s bytes = 0;
    EXPECT_EQ(size(&bytes), zppStsOk);
    block_ = memory_.claim(static_cast<std::size_t>(bytes), {test::Place::Kind::middle, 1}, 1);
    fill(0x5A);
    EXPECT_EQ(init(block_), zppStsOk);
  }
  ~State() { EXPECT_TRUE(memory_.canariesIntact()); }
  operator void*() { return block_; }
  void fill(int value) { std::memset(block_, value, memory_.size()); }
  void fill(std::mt19937& random) {
    for (std::size_t n = 0; n < memory_.size(); ++n) block_[n] = static_cast<unsigned char>(random());
  }
  std::vector<unsigned char> contents() { return {block_, block_ + memory_.size()}; }

 private:
  test::Guarded memory_{4096};
  unsigned char* block_;
};

std::vector<GoldenCase> casesOf(const std::string& function) {
  return test::readGolden(TEST_DATA_DIR "/g728/" + function + ".cases");
}

template <class Value>
void expectEqual(const std::vector<Value>& got, const GoldenCase& golden, const std::string& name) {
  const auto& wanted = golden.out.at(name);
  ASSERT_EQ(got.size(), wanted.size()) << golden.label;
  for (std::size_t n = 0; n < got.size(); ++n) ASSERT_EQ(got[n], wanted[n]) << golden.label << ": " << name << "[" << n << "]";
}

// Runs a case of `calls` calls, each of which appends its output to dst. Every second call works in place.
template <class Call>
void forEachCall(const GoldenCase& golden, const std::string& counted, std::size_t each, Call call) {
  const std::size_t calls = each == 0 ? 1 : golden.in.at(counted).size() / each;
  Inputs inputs(golden, calls);
  for (std::size_t n = 0; n < calls; ++n) call(inputs, n);
}
const Zpp16s* inPlace(const Zpp16s* src, std::size_t len, Zpp16s* dst, std::size_t call) {
  return call % 2 == 0 ? src : std::copy_n(src, len, dst) - static_cast<std::ptrdiff_t>(len);
}
void append(Samples& all, const Zpp16s* some, std::size_t len) { all.insert(all.end(), some, some + len); }

State weightingState() { return State(zppsIIR16sGetStateSize_G728_16s, zppsIIR16sInit_G728_16s); }
State synthesisState() { return State(zppsSynthesisFilterGetStateSize_G728_16s, zppsSynthesisFilterInit_G728_16s); }
State combinedState() { return State(zppsCombinedFilterGetStateSize_G728_16s, zppsCombinedFilterInit_G728_16s); }
State adapterState() { return State(zppsPostFilterAdapterGetStateSize_G728, zppsPostFilterAdapterInit_G728); }
State postfilterState() { return State(zppsPostFilterGetStateSize_G728_16s, zppsPostFilterInit_G728_16s); }
State extrapolationState() { return State(zppsExtrapolationGetStateSize_G728_16s, zppsExtrapolationInit_G728_16s); }

State windowState(const Samples& window, Zpp32s order, Zpp32s lenNew, Zpp32s lenNonRec, Zpp32s decay) {
  return State([=](Zpp32s* size) { return zppsWinHybridGetStateSize_G728_16s(order, lenNew, lenNonRec, size); },
               [&](void* state) { return zppsWinHybridInit_G728_16s(window.data(), order, lenNew, lenNonRec, decay, state); });
}

TEST(G728, FiltersContinueFromCallToCall) {
  for (const auto& golden : casesOf("zppsIIR16s_G728_16s")) {
    State state = weightingState();
    Samples all;
    forEachCall(golden, "src", 5, [&](Inputs& in, std::size_t n) {
      Zpp16s dst[5];
      const Zpp16s* src = inPlace(in("src", 5, n), 5, dst, n);
      EXPECT_EQ(zppsIIR16s_G728_16s(in("coefZero", 10, n), in("coefPole", 10, n), src, dst, state), zppStsOk);
      append(all, dst, 5);
    });
    expectEqual(all, golden, "dst");
  }
  for (const auto& golden : casesOf("zppsLPCInverseFilter_G728_16s")) {
    State state = adapterState();
    Samples all;
    forEachCall(golden, "src", 5, [&](Inputs& in, std::size_t n) {
      Zpp16s dst[5];
      EXPECT_EQ(zppsLPCInverseFilter_G728_16s(in("coef", 10, n), inPlace(in("src", 5, n), 5, dst, n), dst, state), zppStsOk);
      append(all, dst, 5);
    });
    expectEqual(all, golden, "dst");
  }
  for (const auto& golden : casesOf("zppsSynthesisFilter_G728_16s")) {
    State state = synthesisState();
    Samples all;
    forEachCall(golden, "exc", 6, [&](Inputs& in, std::size_t n) {
      Zpp16s dst[6] = {};
      const Zpp16s* exc = inPlace(in("exc", 6, n), 6, dst, n);
      EXPECT_EQ(zppsSynthesisFilter_G728_16s(in("coef", 50, n), exc, dst, in.number("erased", n), state), golden.status);
      append(all, dst, 6);
    });
    if (golden.status == zppStsOk) expectEqual(all, golden, "dst");
  }
  for (const auto& golden : casesOf("zppsCombinedFilterZeroState_G728_16s")) {
    State state = combinedState();
    Samples responses, all;
    forEachCall(golden, "exc", 6, [&](Inputs& in, std::size_t n) {
      const Zpp16s *coef = in("coef", 50, n), *zero = in("coefZero", 10, n), *pole = in("coefPole", 10, n);
      Zpp16s response[5], dst[6];
      EXPECT_EQ(zppsCombinedFilterZeroInput_G728_16s(coef, zero, pole, response, state), zppStsOk);
      const Zpp16s* exc = inPlace(in("exc", 6, n), 6, dst, n);
      EXPECT_EQ(zppsCombinedFilterZeroState_G728_16s(coef, zero, pole, exc, dst, state), zppStsOk);
      append(responses, response, 5);
      append(all, dst, 6);
    });
    expectEqual(responses, golden, "zir");
    expectEqual(all, golden, "dst");
  }
}

void checkWindow(const char* function, decltype(zppsWinHybrid_G728_16s)* analyse, bool blocks) {
  for (const auto& golden : casesOf(function)) {
    Samples window;
    for (const double v : golden.in.at("window")) window.push_back(static_cast<Zpp16s>(v));
    const auto number = [&](const char* name) { return static_cast<Zpp32s>(golden.in.at(name)[0]); };
    const Zpp32s order = number("order"), lenNew = number("lenNew"), lenNonRec = number("lenNonRec"), decay = number("decay");
    Zpp32s size = 0;
    if (zppsWinHybridGetStateSize_G728_16s(order, lenNew, lenNonRec, &size) != zppStsOk || decay < 1 || decay > 15) {
      char unused[2048];
      EXPECT_EQ(zppsWinHybridInit_G728_16s(window.data(), order, lenNew, lenNonRec, decay, unused), golden.status);
      continue;
    }
    window.resize(static_cast<std::size_t>(order + lenNew + lenNonRec));
    State state = windowState(window, order, lenNew, lenNonRec, decay);
    const auto lags = static_cast<std::size_t>(order) + 1;
    const auto step = static_cast<std::size_t>(blocks ? lenNew / 5 * 6 : lenNew);
    Samples all;
    std::vector<Zpp32s> valid;
    forEachCall(golden, "src", step, [&](Inputs& in, std::size_t n) {
      Samples dst(lags);
      Zpp32s isValid = -1;
      const auto before = state.contents();
      EXPECT_EQ(analyse(in("src", step, n), dst.data(), &isValid, state), golden.status) << golden.label;
      EXPECT_TRUE(golden.status == zppStsOk || state.contents() == before) << golden.label;
      append(all, dst.data(), lags);
      valid.push_back(isValid);
    });
    if (golden.status != zppStsOk) continue;
    expectEqual(all, golden, "dst");
    expectEqual(valid, golden, "valid");
  }
}

TEST(G728, HybridWindowsContinueFromCallToCall) {
  checkWindow("zppsWinHybrid_G728_16s", zppsWinHybrid_G728_16s, false);
  checkWindow("zppsWinHybridBlock_G728_16s", zppsWinHybridBlock_G728_16s, true);
}

TEST(G728, CodeVectorsAndBlocks) {
  for (const auto& golden : casesOf("zppsExcitationVector_G728_16s")) {
    Samples all;
    forEachCall(golden, "index", 1, [&](Inputs& in, std::size_t n) {
      Zpp16s dst[6];
      EXPECT_EQ(zppsExcitationVector_G728_16s(in("gain", 2, n), dst, in.number("index", n), in.number("rate", n)),
                golden.status);
      append(all, dst, 6);
    });
    if (golden.status == zppStsOk) expectEqual(all, golden, "dst");
  }
  for (const auto& golden : casesOf("zppsLogGainUpdate_G728_16s")) {
    Samples all;
    forEachCall(golden, "logGain", 1, [&](Inputs& in, std::size_t n) {
      Zpp16s dst = 0;
      EXPECT_EQ(zppsLogGainUpdate_G728_16s(*in("logGain", 1, n), &dst, in.number("index", n), in.number("rate", n)),
                golden.status);
      all.push_back(dst);
    });
    if (golden.status == zppStsOk) expectEqual(all, golden, "dst");
  }
  for (const auto& golden : casesOf("zppsConvertBlock_G728_16s_Sfs")) {
    Samples all;
    forEachCall(golden, "src", 6, [&](Inputs& in, std::size_t n) {
      Zpp16s dst[5];
      EXPECT_EQ(zppsConvertBlock_G728_16s_Sfs(in("src", 6, n), dst, in.number("scale", n)), golden.status);
      append(all, dst, 5);
    });
    if (golden.status == zppStsOk) expectEqual(all, golden, "dst");
  }
}

TEST(G728, PitchAndPostfilterContinueFromCallToCall) {
  for (const auto& golden : casesOf("zppsPitchPeriod_G728_16s")) {
    State state = adapterState();
    Samples residual;
    for (const double v : golden.in.at("src")) residual.push_back(static_cast<Zpp16s>(v));
    std::vector<Zpp32s> all;
    test::Guarded memory(1024);
    for (std::size_t at = 220; at + 20 <= residual.size(); at += 20) {
      // Nothing before the 220 samples and behind the 20 is read.
      auto* exact =
          reinterpret_cast<Zpp16s*>(memory.claim(480, {at % 40 == 0 ? test::Place::Kind::end : test::Place::Kind::start}, 2));
      std::copy_n(residual.data() + at - 220, 240, exact);
      all.push_back(-1);
      EXPECT_EQ(zppsPitchPeriod_G728_16s(exact + 220, &all.back(), state), zppStsOk);
    }
    expectEqual(all, golden, "pitch");
  }
  for (const auto& golden : casesOf("zppsPostFilter_G728_16s")) {
    State state = postfilterState();
    Samples all, history;
    for (const double v : golden.in.at("history")) history.push_back(static_cast<Zpp16s>(v));
    forEachCall(golden, "src", 5, [&](Inputs& in, std::size_t n) {
      Zpp16s dst[5] = {};
      const Zpp16s* src = inPlace(in("src", 5, n), 5, dst, n);
      EXPECT_EQ(zppsPostFilter_G728_16s(in("ltp", 2, n), in("coefZero", 10, n), in("coefPole", 10, n), src,
                                        &history[140 + 5 * n], dst, in.number("pitch", n), *in("tilt", 1, n), state),
                golden.status);
      append(all, dst, 5);
    });
    if (golden.status == zppStsOk) expectEqual(all, golden, "dst");
  }
}

// ops: 0 a received vector is kept, 1 setup, 2 an extrapolated vector
TEST(G728, ExtrapolatesErasures) {
  for (const char* function :
       {"zppsExtrapolation_G728_16s", "zppsExtrapolationSetup_G728_16s", "zppsExtrapolationUpdate_G728_16s"})
    for (const auto& golden : casesOf(function)) {
      State state = extrapolationState();
      Samples all, levels, exc, tap;
      for (const double v : golden.in.at("exc")) exc.push_back(static_cast<Zpp16s>(v));
      for (const double v : golden.in.at("tap")) tap.push_back(static_cast<Zpp16s>(v));
      std::size_t received = 0, setups = 0;
      for (const double op : golden.in.at("ops")) {
        if (op == 0) {
          EXPECT_EQ(zppsExtrapolationUpdate_G728_16s(&exc[6 * received++], state), zppStsOk);
        } else if (op == 1) {
          const auto number = [&](const char* name) { return static_cast<Zpp32s>(golden.in.at(name)[setups]); };
          EXPECT_EQ(zppsExtrapolationSetup_G728_16s(number("pitch"), tap[setups], number("step"), state), golden.status);
          ++setups;
        } else {
          Zpp16s dst[6], level = 0;
          EXPECT_EQ(zppsExtrapolation_G728_16s(dst, &level, state), zppStsOk);
          append(all, dst, 6);
          levels.push_back(level);
        }
      }
      if (golden.status != zppStsOk) continue;
      expectEqual(all, golden, "dst");
      expectEqual(levels, golden, "logGain");
    }
}

// Sums of the search stay exact and saturate once, also where an energy below zero, which no impulse response has, makes every
// gain the largest.
TEST(G728, SearchTakesAnyEnergy) {
  const Zpp16s response[5] = {8192, 0, 0, 0, 0}, target[6] = {32767, -32768, 32767, -32768, 32767, -6};
  for (const int energy : {-32768, -1, 0, 1, 32767}) {
    const Samples energies(128, static_cast<Zpp16s>(energy));
    Zpp32s index = -1;
    EXPECT_EQ(zppsCodebookSearch_G728_16s(target, response, energies.data(), &index, ZPP_RATE_16000), zppStsOk);
    EXPECT_EQ(index & 3, energy == 32767 ? index & 3 : 3) << energy;
    EXPECT_GE(index, 0);
    EXPECT_LT(index, 1024);
  }
}

// A lag that leaves the sums of products beyond 32 bits: they are exact in 64 and clamp once. All samples at one end of the
// range correlate alike at all lags, and the first wins.
TEST(G728, PitchCorrelationsBeyond32BitsClamp) {
  for (const int level : {4633, 4634, 20000, 32767, -32768}) {
    State state = adapterState();
    const Samples residual(240, static_cast<Zpp16s>(level));
    Zpp32s pitch = 0;
    for (int cycle = 0; cycle < 8; ++cycle) EXPECT_EQ(zppsPitchPeriod_G728_16s(residual.data() + 220, &pitch, state), zppStsOk);
    EXPECT_EQ(pitch, 20) << level;
    Zpp16s tap = 0, ltp[2];
    EXPECT_EQ(zppsLongTermPostFilterCoeffs_G728_16s(residual.data() + 140, pitch, &tap, ltp), zppStsOk);
    EXPECT_EQ(tap, 16384) << level;
  }
}

// Whatever a block holds, calls stay within it, within the tables, and within the samples that they may read.
TEST(G728, RubbishForAStateIsHarmless) {
  std::mt19937 random(728);
  const auto noise = [&](std::size_t len) {
    Samples s(len);
    for (Zpp16s& x : s) x = static_cast<Zpp16s>(random());
    return s;
  };
  for (int round = 0; round < 300; ++round) {
    State weighting = weightingState(), synthesis = synthesisState(), combined = combinedState(), adapter = adapterState(),
          postfilter = postfilterState(), extrapolation = extrapolationState(), window = windowState(noise(105), 50, 20, 35, 2);
    for (State* s : {&weighting, &synthesis, &combined, &adapter, &postfilter, &extrapolation, &window})
      round < 3 ? s->fill(round == 0 ? 0 : round == 1 ? 0xff : 0x80) : s->fill(random);
    const Samples coef = noise(50), zero = noise(10), pole = noise(10), exc = noise(24), residual = noise(240);
    Zpp16s dst[51], level = 0;
    Zpp32s number = 0;
    EXPECT_EQ(zppsIIR16s_G728_16s(zero.data(), pole.data(), exc.data(), dst, weighting), zppStsOk);
    EXPECT_EQ(zppsSynthesisFilter_G728_16s(coef.data(), exc.data(), dst, round % 2, synthesis), zppStsOk);
    EXPECT_EQ(zppsCombinedFilterZeroInput_G728_16s(coef.data(), zero.data(), pole.data(), dst, combined), zppStsOk);
    EXPECT_EQ(zppsCombinedFilterZeroState_G728_16s(coef.data(), zero.data(), pole.data(), exc.data(), dst, combined), zppStsOk);
    EXPECT_EQ(zppsPitchPeriod_G728_16s(residual.data() + 220, &number, adapter), zppStsOk);
    EXPECT_TRUE(number >= 20 && number <= 140);
    EXPECT_EQ(zppsPostFilter_G728_16s(exc.data(), zero.data(), pole.data(), exc.data(), residual.data() + 235, dst, number,
                                      level, postfilter),
              zppStsOk);
    EXPECT_EQ(zppsExtrapolation_G728_16s(dst, &level, extrapolation), zppStsOk);
    EXPECT_EQ(zppsExtrapolationSetup_G728_16s(number, 0, round, extrapolation), zppStsOk);
    // A geometry that no Init wrote is refused, and one by chance that it might have written is worked on.
    const ZppStatus status = zppsWinHybridBlock_G728_16s(exc.data(), dst, &number, window);
    EXPECT_TRUE(status == zppStsBadSize || status == zppStsOk);
  }
}

}  // namespace
