// The promises that all exports share, driven by the table of exports.
#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <thread>

#include "exports/call.h"
#include "support/painted_stack.h"

namespace test {
namespace {

class Contract : public testing::TestWithParam<Export> {
 protected:
  // Sets every argument that can be refused, from the given rank of checks on, to a refused value.
  static void spoil(Call& call, const Export& e, int fromRank, std::size_t except) {
    for (std::size_t i = 0; i < e.arguments.size(); ++i)
      if (i != except)
        for (const Refused& r : e.arguments[i].refused)
          if (r.rank >= fromRank) call[i].number = static_cast<double>(r.value);
  }
};

TEST_P(Contract, AcceptsItsArgumentsAndWritesOnlyItsOutputs) {
  const Export& e = GetParam();
  for (const Place place : {Place{Place::Kind::end, 0}, Place{Place::Kind::start, 0}, Place{Place::Kind::middle, 2}}) {
    Call call(e, place);
    EXPECT_EQ(call(), e.status);
    EXPECT_EQ(call.wrongWrites(true), "");
  }
}

TEST_P(Contract, RefusesNullPointersBeforeAllElse) {
  const Export& e = GetParam();
  for (std::size_t i = 0; e.checks && i < e.arguments.size(); ++i) {
    if (!e.arguments[i].isBuffer()) continue;
    Call call(e, {});
    call[i].pointer = nullptr;
    if (e.arguments[i].optional) {
      EXPECT_EQ(call(), e.status) << "null " << e.arguments[i].name << " is allowed";
      continue;
    }
    spoil(call, e, 0, e.arguments.size());
    EXPECT_EQ(call(), zppStsNullPointer) << e.arguments[i].name;
    EXPECT_EQ(call.wrongWrites(false), "");
  }
}

TEST_P(Contract, RefusesValuesInTheOrderOfChecks) {
  const Export& e = GetParam();
  for (std::size_t i = 0; e.checks && i < e.arguments.size(); ++i)
    for (const Refused& r : e.arguments[i].refused) {
      Call call(e, {});
      spoil(call, e, r.rank + 1, i);
      call[i].number = static_cast<double>(r.value);
      EXPECT_EQ(call(), r.status) << e.arguments[i].name << " = " << r.value;
      EXPECT_EQ(call.wrongWrites(false), "");
    }
}

// What is refused ends next to what is accepted, but for values that only every so many or that are enumerated with gaps.
TEST_P(Contract, AcceptsTheNeighboursOfWhatItRefuses) {
  const Export& e = GetParam();
  for (const char* gaps :
       {"Sampling_AMRWB", "DecimateBy2", "SynthesisFilter_AMRWB_16s_I", "AdaptiveCodebookSearch_G723", "TamingUpdate_G723",
        "FixedCodebookDecode_G723", "PitchPostFilterSearch_G723", "LevinsonDurbin_G728"})
    if (e.name.find(gaps) != std::string::npos) return;
  for (std::size_t i = 0; e.checks && i < e.arguments.size(); ++i) {
    const std::string& name = e.arguments[i].name;
    const auto isOf = [&name](const char* what) { return name.find(what) != std::string::npos; };
    if (isOf("lag") || isOf("Lag") || isOf("delay") || isOf("pitch")) continue;  // another would read more of the past
    const auto accepted = static_cast<std::int64_t>(Call(e, {})[i].number);
    for (const int side : {-1, 1}) {
      const Refused* nearest = nullptr;
      for (const Refused& r : e.arguments[i].refused)
        if ((r.value - accepted) * side > 0 && (nearest == nullptr || (r.value - nearest->value) * side < 0)) nearest = &r;
      if (nearest == nullptr) continue;
      Call call(e, {Place::Kind::middle, 0});
      call[i].number = static_cast<double>(nearest->value - side);
      EXPECT_GE(call(), zppStsOk) << e.arguments[i].name << " = " << call[i].number;
    }
  }
}

// NaN, infinities, denormals and huge numbers, alone and mixed: useless results, but no crash, no endless loop and no access
// outside the buffers.
TEST_P(Contract, SurvivesAnyRealNumber) {
  using Limits = std::numeric_limits<Zpp32f>;
  const Export& e = GetParam();
  const std::vector<Zpp32f> numbers = {Limits::quiet_NaN(),
                                       Limits::infinity(),
                                       -Limits::infinity(),
                                       Limits::denorm_min(),
                                       Limits::max(),
                                       Limits::lowest(),
                                       0,
                                       1,
                                       -0.5f,
                                       20000};
  std::mt19937 random(1);
  for (std::size_t run = 0; run < 60; ++run) {
    Call call(e, {run % 2 ? Place::Kind::start : Place::Kind::end, 0});
    // Runs of one number each, then of two, three and so on by chance
    const std::size_t first = random() % numbers.size(), kinds = run < numbers.size() ? 1 : 2 + run % (numbers.size() - 1);
    const auto next = [&] {
      return static_cast<double>(run < numbers.size() ? numbers[run] : numbers[(first + random() % kinds) % numbers.size()]);
    };
    if (!call.setReals(next)) return;
    EXPECT_GE(call(), zppStsOk);
    EXPECT_EQ(call.wrongWrites(true), "");
  }
}

// Buffers at any multiple of their elements' size, state blocks at odd addresses as well
TEST_P(Contract, GivesTheSameAtAnyAddress) {
  const Export& e = GetParam();
  Call aligned(e, {Place::Kind::middle, 0});
  aligned();
  for (unsigned offset = 1; offset < 16; ++offset) {
    Call call(e, {Place::Kind::middle, offset});
    ASSERT_EQ(call(), e.status) << offset;
    ASSERT_EQ(call.contents(), aligned.contents()) << offset;
  }
}

#ifndef ZPPSC_CHECKED  // the sanitizers' frames are larger
// All frames of a call together; half a kilobyte of it is the test's own.
TEST_P(Contract, TakesLittleStack) {
  const Export& e = GetParam();
  PaintedStack stack;
  Call call(e, {});
  std::size_t depth = 0;
  for (int twice = 0; twice < 2; ++twice)  // the first may have the linker look for functions
    depth = stack.depthOf([&call] { call(); });
  EXPECT_LE(depth, kPrimitiveStack);
}
#endif

TEST_P(Contract, IsReentrant) {
  const Export& e = GetParam();
  Call alone(e, {});
  alone();
  std::vector<std::thread> threads;
  std::vector<int> equal(4, 1);
  for (std::size_t t = 0; t < equal.size(); ++t)
    threads.emplace_back([&, t] {
      for (int repeat = 0; repeat < 20; ++repeat) {
        Call call(e, {});
        call();
        if (call.contents() != alone.contents()) equal[t] = 0;
      }
    });
  for (auto& t : threads) t.join();
  EXPECT_EQ(equal, std::vector<int>(4, 1));
}

std::string nameOf(const testing::TestParamInfo<Export>& info) { return info.param.name; }
INSTANTIATE_TEST_SUITE_P(Exports, Contract, testing::ValuesIn(allExports()), nameOf);

}  // namespace
}  // namespace test
