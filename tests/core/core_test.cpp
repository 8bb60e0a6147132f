// What the table of exports cannot say about the core room: whole-range companding, overlapping moves, filtering in blocks, the
// operators behind the entries, and corners where a plausible implementation goes wrong.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

#include "core/cosine.h"
#include "core/fixed_point.h"
#include "core/kernels.h"
#include "core/logarithm.h"
#include "support/golden.h"

namespace {

using namespace zpp;
using V16 = std::vector<Zpp16s>;
using V32 = std::vector<Zpp32s>;

std::vector<test::GoldenCase> cases(const char* path) { return test::readGolden(std::string(TEST_DATA_DIR) + "/" + path); }

template <class T>
std::vector<T> as(const std::vector<double>& values) {
  return std::vector<T>(values.begin(), values.end());
}

TEST(Companding, CodesEveryInput) {
  const struct {
    const char* file;
    ZppStatus (*compress)(const Zpp16s*, Zpp8u*, int);
  } laws[] = {{"g711/zppsLinToMuLaw_16s8u.cases", zppsLinToMuLaw_16s8u},
              {"g711/zppsLinToALaw_16s8u.cases", zppsLinToALaw_16s8u}};
  V16 ramp(65536);
  for (int i = 0; i < 65536; ++i) ramp[static_cast<std::size_t>(i)] = static_cast<Zpp16s>(i - 32768);
  for (const auto& law : laws) {
    const auto golden = cases(law.file).at(0);
    std::vector<Zpp8u> codes(ramp.size());
    ASSERT_EQ(law.compress(ramp.data(), codes.data(), 65536), zppStsOk);
    V32 starts;
    std::vector<Zpp8u> runs;
    for (std::size_t i = 0; i < codes.size(); ++i)
      if (i == 0 || codes[i] != codes[i - 1]) starts.push_back(static_cast<Zpp32s>(i)), runs.push_back(codes[i]);
    EXPECT_EQ(starts, as<Zpp32s>(golden.out.at("run_start"))) << law.file;
    EXPECT_EQ(runs, as<Zpp8u>(golden.out.at("run_code"))) << law.file;
  }
}

template <class T>
void moves(const char* file, ZppStatus (*move)(const T*, T*, int)) {
  for (const auto& golden : cases(file)) {
    auto buffer = as<T>(golden.in.at("buf"));
    const auto at = [&](const char* name) { return static_cast<int>(golden.in.at(name).at(0)); };
    ASSERT_EQ(move(buffer.data() + at("srcOff"), buffer.data() + at("dstOff"), at("len")), zppStsOk);
    EXPECT_EQ(buffer, as<T>(golden.out.at("buf"))) << golden.label;
  }
}

TEST(Move, Overlapping) {
  moves<Zpp16s>("core/zppsMove_16s.cases", zppsMove_16s);
  moves<Zpp32f>("core/zppsMove_32f.cases", zppsMove_32f);
}

TEST(HighPassFilter, ContinuesFromBlockToBlockAtAnyAlignment) {
  for (const auto& golden : cases("core/zppsHighPassFilter_G729_16s_ISfs.cases")) {
    alignas(4) unsigned char memory[32];
    void* state = memory + 1;
    auto signal = as<Zpp16s>(golden.in.at("srcDst"));
    ASSERT_EQ(zppsHighPassFilterInit_G729(as<Zpp16s>(golden.in.at("coef")).data(), state), zppStsOk);
    Zpp16s* at = signal.data();
    for (const double length : golden.in.at("blocks")) {
      ASSERT_EQ(zppsHighPassFilter_G729_16s_ISfs(at, static_cast<int>(length),
                                                 static_cast<int>(golden.in.at("scaleFactor").at(0)), state),
                zppStsOk);
      at += static_cast<int>(length);
    }
    EXPECT_EQ(signal, as<Zpp16s>(golden.out.at("srcDst"))) << golden.label;
  }
}

// What bounds a sum may depend on the block, the result not.
TEST(HighPassFilter, SaturatesAlikeInBlocksAndSampleBySample) {
  const Zpp16s steep[6] = {-32768, 32767, -32768, 0, 32767, -32768}, output[6] = {7699, -15398, 7699, 8192, 15836, -7667};
  for (const Zpp16s* coef : {steep, output})
    for (const int scaleFactor : {12, 13}) {
      V16 whole(240);
      unsigned noise = 1;
      for (std::size_t n = 0; n < whole.size(); ++n) {
        noise = noise * 1664525u + 1013904223u;
        const int loud = static_cast<int>(noise >> 16) - 32768;
        whole[n] = static_cast<Zpp16s>(n < 80 ? loud >> 12 : n < 160 ? loud : loud < 0 ? -32768 : 32767);
      }
      V16 single = whole;
      unsigned char state[2][24];
      for (auto& s : state) zppsHighPassFilterInit_G729(coef, s);
      zppsHighPassFilter_G729_16s_ISfs(whole.data(), 240, scaleFactor, state[0]);
      for (auto& x : single) zppsHighPassFilter_G729_16s_ISfs(&x, 1, scaleFactor, state[1]);
      EXPECT_EQ(whole, single);
      EXPECT_EQ(std::memcmp(state[0], state[1], sizeof state[0]), 0);
    }
}

// The filter of clauses 3.1 and 4.2.5 step by step
class PlainHighPass {
 public:
  explicit PlainHighPass(const Zpp16s* coef) : b_(coef), a_(coef + 3) {}
  Zpp16s operator()(Zpp16s x0, int scaleFactor) {
    Zpp32s acc = 0;
    for (int i = 0; i < 2; ++i) {
      const Dpf y = toDpf(y_[i]);
      acc = macDbl(macDbl(acc, y.hi, a_[i + 1]), mulQ15(y.lo, a_[i + 1]), 1);
    }
    acc = macDbl(macDbl(macDbl(acc, x0, b_[0]), x_[0], b_[1]), x_[1], b_[2]);
    y_[1] = y_[0];
    y_[0] = fromDpf(toDpf(shlSat32(acc, 15 - scaleFactor)));
    x_[1] = x_[0];
    x_[0] = x0;
    return roundHigh16(shlSat32(y_[0], scaleFactor - 12));
  }

 private:
  const Zpp16s *b_, *a_;
  Zpp32s y_[2] = {};
  Zpp16s x_[2] = {};
};

// In the first cases the product of a past input saturates and its sum with the feedback does not: a unit less than in exact
// arithmetic, which turns a rounding.
TEST(HighPassFilter, SaturatesAtEverySum) {
  std::vector<std::pair<V16, V16>> cases = {{{0, 3840, -32768, 0, 32767, 0}, {-32768, 0, 0, 0}},
                                            {{3840, -32768, 0, 0, 32767, 0}, {-32768, 0, 0, 0}}};
  unsigned noise = 3;
  const auto next = [&noise](bool extreme) {
    noise = noise * 1664525u + 1013904223u;
    const int x = static_cast<int>(noise >> 16) - 32768;
    return static_cast<Zpp16s>(extreme ? x < -10000 ? -32768 : x < 10000 ? 0 : 32767 : x);
  };
  for (int i = 0; i < 300; ++i) {
    V16 coef(6), signal(i % 4 == 0 ? 200 : 40);
    for (auto& c : coef) c = static_cast<Zpp16s>(next(i % 2 == 0) / (i % 5 + 1));
    for (auto& x : signal) x = next(i % 3 == 0);
    cases.emplace_back(coef, signal);
  }
  for (const auto& [coef, signal] : cases)
    for (const int scaleFactor : {12, 13})
      for (const std::size_t block : {std::size_t{1}, std::size_t{3}, signal.size()}) {
        V16 wanted = signal, filtered = signal;
        PlainHighPass plain(coef.data());
        for (auto& x : wanted) x = plain(x, scaleFactor);
        unsigned char state[24];
        zppsHighPassFilterInit_G729(coef.data(), state);
        for (std::size_t n = 0; n < signal.size(); n += block)
          zppsHighPassFilter_G729_16s_ISfs(&filtered[n], static_cast<int>(std::min(block, signal.size() - n)), scaleFactor,
                                           state);
        ASSERT_EQ(filtered, wanted) << "case of " << coef[0] << ' ' << coef[1] << ' ' << coef[2] << ", block " << block;
      }
}

TEST(ScalarOperators, MatchTheReference) {
  for (const auto& golden : cases("core/ownNorm_32s_I.cases")) {
    auto x = as<Zpp32s>(golden.in.at("srcDst"));
    V16 shift(x.size());
    ownNorm_32s_I(x.data(), shift.data(), static_cast<int>(x.size()));
    EXPECT_EQ(x, as<Zpp32s>(golden.out.at("srcDst")));
    EXPECT_EQ(shift, as<Zpp16s>(golden.out.at("shift")));
  }
  for (const auto& golden : cases("core/ownLog2.cases")) {
    Zpp16s exponent, fraction;
    ownLog2(static_cast<Zpp32s>(golden.in.at("value").at(0)), &exponent, &fraction);
    EXPECT_EQ(exponent, golden.out.at("exponent").at(0)) << golden.in.at("value").at(0);
    EXPECT_EQ(fraction, golden.out.at("fraction").at(0)) << golden.in.at("value").at(0);
  }
  for (const auto& golden : cases("core/ownPow2.cases"))
    EXPECT_EQ(ownPow2(static_cast<Zpp16s>(golden.in.at("exponent").at(0)), static_cast<Zpp16s>(golden.in.at("fraction").at(0))),
              golden.out.at("value").at(0));
  for (const auto& golden : cases("core/ownMul_16s_NoS_Sfs.cases")) {
    const auto a = as<Zpp16s>(golden.in.at("src1")), b = as<Zpp16s>(golden.in.at("src2"));
    V16 dst(a.size());
    ownMul_16s_NoS_Sfs(a.data(), b.data(), dst.data(), static_cast<int>(a.size()),
                       static_cast<int>(golden.in.at("shift").at(0)));
    EXPECT_EQ(dst, as<Zpp16s>(golden.out.at("dst")));
  }
}

TEST(ScalarOperators, SaturateWhereTheBasicOperatorsDo) {
  EXPECT_EQ(mulQ15(-32768, -32768), 32767);
  EXPECT_EQ(mulRoundQ15(-32768, -32768), 32767);
  EXPECT_EQ(mulDbl(-32768, -32768), kMax32);
  EXPECT_EQ(macDbl(kMax32, 1, 1), kMax32);
  EXPECT_EQ(roundHigh16(0x7fff8000), 32767);
  EXPECT_EQ(shlSat32(1, 31), kMax32);
  EXPECT_EQ(shlSat32(-1, 31), kMin32);
  EXPECT_EQ(shlSat16(1, 15), 32767);
  EXPECT_EQ(shlSat16(-1, 15), -32768);
  EXPECT_EQ(shrRound32(3, 1), 2);
  EXPECT_EQ(shrRound32(-3, 1), -1);
  EXPECT_EQ(mulDpf(toDpf(kMin32), toDpf(kMin32)), kMax32);
  EXPECT_EQ(fromDpf(toDpf(-123456)), -123456);
  EXPECT_EQ(divQ15(1, 3), 10922);
  EXPECT_EQ(divQ15(5, 5), 32767);
  EXPECT_EQ(norm16(-1), 15);
  EXPECT_EQ(norm32(-1073741825), 0);
  EXPECT_EQ(ownPow2(31, 0), kMax32);
  EXPECT_EQ(ownPow2(-1, 0), 1) << "2^-1 rounds up";
  EXPECT_EQ(ownPow2(-2, 32767), 0);
}

// The double-precision products leave out the saturation of all but their first step.
TEST(ScalarOperators, MultiplyInDoublePrecisionAsTheSaturatingSteps) {
  const V32 values = {kMin32, kMin32 + 1, kMin32 + 0xffff, kMin32 + 0x10000, -65537, -65536, -2, -1,
                      0,      1,          65535,           kMax32 - 1,       kMax32};
  for (const Zpp32s x : values)
    for (const Zpp32s y : values) {
      const Dpf a = toDpf(x), b = toDpf(y);
      const Zpp32s cross = macDbl(mulDbl(a.hi, b.hi), mulQ15(a.hi, b.lo), 1);
      EXPECT_EQ(mulDpf(a, b), macDbl(cross, mulQ15(a.lo, b.hi), 1)) << x << " " << y;
      EXPECT_EQ(mulDpf16(a, b.hi), macDbl(mulDbl(a.hi, b.hi), mulQ15(a.lo, b.hi), 1)) << x << " " << y;
    }
}

TEST(ScaleRule, RoundsTiesToEvenAndTreatsBeyond31As31) {
  EXPECT_EQ(scaled(65535, 17), 0);
  EXPECT_EQ(scaled(65535, 16), 1);
  EXPECT_EQ(scaled(32768, 16), 0);
  EXPECT_EQ(scaled(98304, 16), 2);
  EXPECT_EQ(scaled(-32768, 16), 0);
  for (const Zpp64s large : {Zpp64s{kMax32}, Zpp64s{1} << 31, Zpp64s{1} << 32, (Zpp64s{1} << 62) - 1})
    for (const int s : {-1, -30, -31, -32}) {
      EXPECT_EQ(sat32(scaled(large, s)), kMax32) << large << " " << s;
      EXPECT_EQ(sat32(scaled(-large, s)), kMin32) << large << " " << s;
    }
  const V16 a = {32767, -32768, 12345, 17}, b = {32767, -32768, -999, 4};
  for (const int s : {31, -31}) {
    Zpp32s at31 = 0, beyond = 1;
    zppsDotProd_16s32s_Sfs(a.data(), b.data(), 4, &at31, s);
    zppsDotProd_16s32s_Sfs(a.data(), b.data(), 4, &beyond, s * 2);
    EXPECT_EQ(at31, beyond);
  }
}

// pmaddwd overflows for one pair of products only: two squares of -32768.
TEST(DotProduct, IsExactAtTheExtremes) {
  const V16 low(64, -32768), high(64, 32767);
  EXPECT_EQ(ownDotProd_16s(low.data(), low.data(), 64), Zpp64s{64} << 30);
  EXPECT_EQ(ownDotProd_16s(low.data(), high.data(), 64), -Zpp64s{64} * 32768 * 32767);
  const V16 longOnes(1 << 20, -32768);
  EXPECT_EQ(ownSum_16s(longOnes.data(), 1 << 20), -(Zpp64s{1} << 35));
}

TEST(RealExtremes, PassOverNaNAndPreferTheFirstZero) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  for (int len = 2; len < 40; ++len) {
    std::vector<float> x(static_cast<std::size_t>(len), 1.0f);
    x[static_cast<std::size_t>(len) - 1] = nan;
    x[static_cast<std::size_t>(len) / 2] = len / 2 == len - 1 ? nan : 2.0f;
    float most = 0;
    int index = -1;
    ASSERT_EQ(zppsMaxIndx_32f(x.data(), len, &most, &index), zppStsOk);
    EXPECT_EQ(index, len / 2 == len - 1 ? 0 : len / 2) << len;
    x[0] = nan;
    ASSERT_EQ(zppsMinIndx_32f(x.data(), len, &most, &index), zppStsOk);
    EXPECT_TRUE(std::isnan(most) && index == 0) << len;
    std::vector<float> zeros(static_cast<std::size_t>(len), -0.0f);
    zeros[1] = 0.0f;
    ASSERT_EQ(zppsMax_32f(zeros.data(), len, &most), zppStsOk);
    EXPECT_TRUE(std::signbit(most)) << "the first of equal elements";
  }
}

TEST(Cosine, AgreesWithTheCLibraryAndTakesEverything) {
  for (int i = -4096; i <= 4096; ++i) {
    EXPECT_NEAR(arccosine(i / 4096.0), std::acos(i / 4096.0), 1e-11);
    for (const double turns : {1 / 512.0, 1 / 8.0, 200.25}) EXPECT_NEAR(cosine(i * turns), std::cos(i * turns), 1e-11);
  }
  // Near 1 the angle is the root of what is missing: its own accuracy counts.
  for (int bits = 1; bits < 50; ++bits) {
    const double x = 1 - std::ldexp(1.0, -bits);
    EXPECT_NEAR(arccosine(x) / std::acos(x), 1, 1e-11);
  }
  constexpr double infinity = std::numeric_limits<double>::infinity(), nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(arccosine(1.5), 0);
  EXPECT_EQ(arccosine(-infinity), arccosine(-1));
  EXPECT_TRUE(std::isnan(arccosine(nan)));
  for (const double x : {infinity, -infinity, nan, 1e300}) EXPECT_EQ(cosine(x), 1);
}

TEST(Logarithm, AgreesWithTheLibraryAndWithItsInverse) {
  const auto near = [](double got, double want) { return std::fabs(got - want) <= 1e-13 * std::max(1.0, std::fabs(want)); };
  for (int i = -3000; i <= 3000; ++i) {
    const double x = i / 10.0 + i % 7 / 100.0;
    if (std::fabs(x) > 300) continue;
    const double power = std::pow(10.0, x);
    EXPECT_TRUE(std::fabs(powerOfTen(x) / power - 1) < 1e-12) << x;
    EXPECT_TRUE(near(decimalLogarithm(power), std::log10(power))) << x;
  }
  for (const double x :
       {1.0, std::nextafter(1.0, 2.0), std::nextafter(1.0, 0.0), 1.4142135, 1.4142136, 2.0, 10.0, 2.3e-308, 1.7e308})
    EXPECT_TRUE(near(decimalLogarithm(x), std::log10(x))) << x;
}

TEST(Logarithm, TakesEveryNumber) {
  const double inf = std::numeric_limits<double>::infinity(), nan = std::numeric_limits<double>::quiet_NaN();
  for (const double x : {0.0, -0.0, -1.0, 1e-310, inf, -inf, nan}) EXPECT_TRUE(std::isnan(decimalLogarithm(x))) << x;
  for (const double x : {300.5, 1e300, inf}) EXPECT_EQ(powerOfTen(x), inf);
  for (const double x : {-300.5, -1e300, -inf}) EXPECT_EQ(powerOfTen(x), 0);
  EXPECT_TRUE(std::isnan(powerOfTen(nan)));
}

TEST(MulPowerC, ChecksItsScaleBeforeItsLengthAndKeepsTheFirstElement) {
  const V16 src = {12345, 100, 100};
  V16 dst(3, 7);
  EXPECT_EQ(zppsMulPowerC_NR_16s_Sfs(src.data(), 5, dst.data(), 0, -1), zppStsBadScale);
  EXPECT_EQ(zppsMulPowerC_NR_16s_Sfs(src.data(), 5, dst.data(), 1, 0), zppStsOk);
  EXPECT_EQ(dst, (V16{12345, 7, 7}));
}

TEST(VersionRecord, IsOneRecord) {
  const ZppLibraryVersion* v = zppscGetLibVersion();
  EXPECT_EQ(v, zppscGetLibVersion());
  EXPECT_EQ(v->major, 4);
  EXPECT_EQ(v->majorBuild, 12);
  EXPECT_EQ(v->build, 5);
  EXPECT_EQ(v->Version, "v4." + std::to_string(v->minor));
  EXPECT_STREQ(v->BuildDate, "Jul 22 2004");
}

}  // namespace
