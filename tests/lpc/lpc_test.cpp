// What the table of exports cannot say about the kernels that codecs share: histories, tie rules, wrap-around and saturation.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "lpc/dot_product.h"
#include "lpc/kernels.h"

namespace {

using V16 = std::vector<Zpp16s>;
using V32 = std::vector<Zpp32s>;

V16 noise(int len, int amplitude, unsigned seed = 1) {
  V16 x(static_cast<std::size_t>(len));
  for (auto& v : x) {
    seed = seed * 1664525u + 1013904223u;
    v = static_cast<Zpp16s>(static_cast<int>(seed >> 8) % (2 * amplitude + 1) - amplitude);
  }
  return x;
}
const V16 kCoef = {4096, -5077, 119, 2478, 449, -1675, -1003, 1837, 1924, -3504, 1213};

TEST(SynthesisFilter, HoldsItsPromisesAboutTheHistory) {
  const V16 zeros(10);
  for (int len = 1; len < 50; ++len) {
    const auto n = static_cast<std::size_t>(len);
    const V16 x = noise(len, 900), hist = noise(10, 900, 7);
    V16 none(n), silent(n), wanted(n);
    EXPECT_EQ(zppsSynthesisFilter_NR_16s_Sfs(kCoef.data(), x.data(), none.data(), len, 12, nullptr),
              zppsSynthesisFilter_NR_16s_Sfs(kCoef.data(), x.data(), silent.data(), len, 12, zeros.data()));
    EXPECT_EQ(none, silent) << len << ": null stands for zeros";
    const ZppStatus status = zppsSynthesisFilter_NR_16s_Sfs(kCoef.data(), x.data(), wanted.data(), len, 12, hist.data());

    V16 buffer = hist;
    buffer.insert(buffer.end(), x.begin(), x.end());
    EXPECT_EQ(zppsSynthesisFilter_NR_16s_ISfs(kCoef.data(), &buffer[10], len, 12, buffer.data()), status);
    EXPECT_TRUE(std::equal(wanted.begin(), wanted.end(), buffer.begin() + 10)) << len << ": history right before the buffer";
    EXPECT_TRUE(std::equal(hist.begin(), hist.end(), buffer.begin()));

    std::copy(x.begin(), x.end(), buffer.begin() + 10);
    EXPECT_EQ(zppsSynthesisFilter_G729_16s(kCoef.data(), &buffer[10], &buffer[10], len), status);
    EXPECT_TRUE(std::equal(wanted.begin(), wanted.end(), buffer.begin() + 10)) << len << ": history in the destination";

    if (len < 10) continue;
    V16 again = wanted;  // the previous block in the destination is the history of the next
    V16 next(n), last(wanted.end() - 10, wanted.end());
    zppsSynthesisFilter_NR_16s_Sfs(kCoef.data(), x.data(), next.data(), len, 12, last.data());
    zppsSynthesisFilter_NR_16s_Sfs(kCoef.data(), x.data(), again.data(), len, 12, &again[n - 10]);
    EXPECT_EQ(again, next) << len;
  }
}

TEST(SynthesisFilter, ClampsInEveryFormAndWritesTheWholeBlock) {
  const V16 integrator = {4096, -4096, 0, 0, 0, 0, 0, 0, 0, 0, 0};
  for (const int len : {5, 11, 12, 16, 40}) {
    const auto n = static_cast<std::size_t>(len);
    for (const int sign : {1, -1}) {
      const V16 x(n, static_cast<Zpp16s>(sign * 12000));
      V16 wanted(n, static_cast<Zpp16s>(sign > 0 ? 32767 : -32768));
      wanted[0] = static_cast<Zpp16s>(sign * 12000);
      wanted[1] = static_cast<Zpp16s>(sign * 24000);
      V16 out(n), low = x, wide(n);
      EXPECT_EQ(zppsSynthesisFilter_NR_16s_Sfs(integrator.data(), x.data(), out.data(), len, 12, nullptr), zppStsOverflowWarn);
      EXPECT_EQ(out, wanted) << len;
      EXPECT_EQ(zppsSynthesisFilterLow_NR_16s_ISfs(integrator.data(), low.data(), len, 12, nullptr), zppStsOk);
      EXPECT_EQ(low, wanted) << len;
      EXPECT_EQ(zppsSynthesisFilter_G729E_16s(integrator.data(), 1, x.data(), wide.data(), len, nullptr), zppStsOverflowWarn);
      EXPECT_EQ(wide, wanted) << len;
    }
    const V16 doubling = {4096, -8192, 0, 0, 0, 0, 0, 0, 0, 0, 0};
    V16 response(n);
    EXPECT_EQ(zppsSynthesisFilterZeroStateResponse_NR_16s(doubling.data(), response.data(), len, 12), zppStsOk);
    EXPECT_EQ(response.back(), 32767) << len;
  }
}

// The standard's flag is also raised when the accumulator lies below -32768 and rounds up to it; here nothing was clamped.
TEST(SynthesisFilter, DoesNotReportWhatRoundsIntoTheRange) {
  V16 coef(11), x(16), out(16);
  coef[0] = 4097;
  x[3] = -32760;  // 4097 * -32760 = -134217720 = -32768.0 + 8 in Q12
  EXPECT_EQ(zppsSynthesisFilter_NR_16s_Sfs(coef.data(), x.data(), out.data(), 16, 12, nullptr), zppStsOk);
  EXPECT_EQ(out[3], -32768);
  coef[0] = 4096, coef[1] = -1;
  x[2] = -2000, x[3] = -32768;  // -32768.5 in Q12, less one
  EXPECT_EQ(zppsSynthesisFilter_NR_16s_Sfs(coef.data(), x.data(), out.data(), 16, 12, nullptr), zppStsOk);
  EXPECT_EQ(out[3], -32768);
  x[2] = -2049;
  EXPECT_EQ(zppsSynthesisFilter_NR_16s_Sfs(coef.data(), x.data(), out.data(), 16, 12, nullptr), zppStsOverflowWarn);
}

// Coefficients up to magnitudes of 16.0 together and beyond, whose sums wrap: four loud outputs of the past take the sum of
// output 1 as far as it goes, while output 0 lies a unit below or above the next. The input brings all outputs back to silence.
TEST(SynthesisFilter, WrapsItsSumsAndNoOther) {
  constexpr int len = 24;
  int unclamped = 0;
  for (const int magnitude : {4092, 4093, 4094, 24700, 25500, 28000, 32767})
    for (int signs = 0; signs < 64; ++signs) {
      const bool rising = signs & 1;
      V16 coef(11), hist(10), x(len), wanted(len), out(len);
      coef[0] = 32767, coef[1] = static_cast<Zpp16s>(signs & 2 ? 16384 : -16384), coef[10] = 1;
      for (std::size_t i = 2; i <= 5; ++i) {
        const bool negative = signs >> i & 1;
        coef[i] = static_cast<Zpp16s>(negative ? -magnitude : magnitude);
        hist[11 - i] = static_cast<Zpp16s>(negative == rising ? 32767 : -32767);
      }
      bool clamped = false;
      for (int n = 0; n < len; ++n) {
        Zpp64s sum = 2048;
        for (int i = 1; i <= 10; ++i) sum -= Zpp64s{coef[i]} * (n < i ? hist[10 + n - i] : wanted[n - i]);
        const Zpp32s input = std::clamp(-(static_cast<Zpp32s>(sum) / 32767), -32767, 32767);
        sum += Zpp64s{32767} * input;
        if (n == 0) {
          hist[0] = static_cast<Zpp16s>((sum - (rising ? 4095 : 0)) & 4095);
          sum -= hist[0];
        }
        x[n] = static_cast<Zpp16s>(input);
        const Zpp32s y = static_cast<Zpp32s>(sum) >> 12;
        wanted[n] = static_cast<Zpp16s>(std::clamp(y, -32768, 32767));
        clamped |= y != wanted[n];
      }
      unclamped += clamped ? 0 : 1;
      EXPECT_EQ(zppsSynthesisFilter_NR_16s_Sfs(coef.data(), x.data(), out.data(), len, 12, hist.data()),
                clamped ? zppStsOverflowWarn : zppStsOk);
      EXPECT_EQ(out, wanted) << magnitude << ' ' << signs;
    }
  EXPECT_GT(unclamped, 100);
}

// Where the magnitudes of the coefficients reach 16.0, sums leave 32 bits: full-scale input of the coefficients' signs, or of
// the opposite ones, or with all coefficients negative.
TEST(ResidualFilter, SaturatesAroundTheBoundOf32Bits) {
  for (const int total : {65000, 65534, 65535, 65536, 65537, 70000, 75534, 75535, 131072, 360448})
    for (const int sign : {1, -1, 2}) {
      V16 coef(11), src(10 + 40);
      for (int i = 0, left = total; i <= 10; ++i) {
        const int magnitude = std::min({left, 32768, std::max(left / (11 - i), left - 32768 * (10 - i))});
        coef[static_cast<std::size_t>(i)] =
            static_cast<Zpp16s>(i % 3 == 1 || magnitude == 32768 || sign == 2 ? -magnitude : magnitude);
        left -= magnitude;
      }
      for (std::size_t n = 0; n < src.size(); ++n)
        src[n] = static_cast<Zpp16s>(n % 7 == 0 ? 100 : n * n * 3001 % 65536 - 32768);
      for (std::size_t i = 0; i <= 10; ++i) src[30 - i] = static_cast<Zpp16s>(coef[i] * sign > 0 ? 32767 : -32768);
      V16 dst(40), wanted(40);
      for (std::size_t n = 0; n < 40; ++n) {
        Zpp64s sum = 2048;
        for (std::size_t i = 0; i <= 10; ++i) sum += Zpp64s{coef[i]} * src[10 + n - i];
        wanted[n] = static_cast<Zpp16s>(std::clamp<Zpp64s>(sum >> 12, -32768, 32767));
      }
      EXPECT_EQ(zppsResidualFilter_G729_16s(coef.data(), &src[10], dst.data(), 40), zppStsOk);
      EXPECT_EQ(dst, wanted) << total * sign;
    }
}

TEST(AutoCorrelation, ReportsALoudFrameWithoutWriting) {
  const V16 loud(160, 32767), limit = {32767, 255, 22, 5}, above = {32767, 255, 22, 5, 1};
  V32 r(4, 7);
  Zpp32s norm = -7;
  EXPECT_EQ(zppsAutoCorr_NormE_16s32s(loud.data(), 160, r.data(), 4, &norm), zppStsOverflowWarn);
  EXPECT_EQ(zppsAutoCorr_NormE_16s32s(above.data(), 5, r.data(), 4, &norm), zppStsOverflowWarn);
  EXPECT_EQ(r, V32(4, 7));
  EXPECT_EQ(norm, -7);
  EXPECT_EQ(zppsAutoCorr_NormE_16s32s(limit.data(), 4, r.data(), 1, &norm), zppStsOk);
  EXPECT_EQ(r, (V32{2147483647, 7, 7, 7}));
  const V16 silence(240);
  EXPECT_EQ(zppsAutoCorr_NormE_16s32s(silence.data(), 240, r.data(), 4, &norm), zppStsOk);
  EXPECT_EQ(r, (V32{1 << 30, 0, 0, 0}));
  EXPECT_EQ(norm, 30);
}

// Energies above 2^31 must saturate in the rounded form, where sums modulo 2^32 would not.
TEST(AutoCorrelation, SaturatesTheRoundedForms) {
  const V16 loud(240, -32768);
  V16 r(13), step(13);
  Zpp32s norm = -7;
  EXPECT_EQ(zppsAutoCorr_NormE_NR_16s(loud.data(), 240, r.data(), 13, &norm), zppStsOk);
  EXPECT_EQ(r, V16(13, 32767));
  EXPECT_EQ(norm, 0);
  EXPECT_EQ(_zppsAutoCorr_NormE_Step_NR_16s(loud.data(), 240, 238, 1, step.data(), 4, &norm), zppStsOk);
  EXPECT_EQ(V16(step.begin(), step.begin() + 4), (V16{32767, 32767, 32767, 0})) << "lags 238, 239 and, beyond the frame, 240";
  const V16 quiet = noise(240, 300);
  zppsAutoCorr_NormE_NR_16s(quiet.data(), 240, r.data(), 13, &norm);
  _zppsAutoCorr_NormE_Step_NR_16s(quiet.data(), 240, 1, 1, step.data(), 13, &norm);
  EXPECT_EQ(r, step);
}

TEST(LagSearch, BreaksTiesAsDocumented) {
  for (const int len : {7, 40, 80}) {
    V16 pulse(static_cast<std::size_t>(len)), periodic(static_cast<std::size_t>(len) + 100);
    pulse[3] = 100;
    for (std::size_t n = 0; n < periodic.size(); n += 20) periodic[n] = 50;  // every 20 lags the same product
    Zpp32s max = 0, lag = 0;
    EXPECT_EQ(zppsCrossCorrLagMax_16s(pulse.data(), periodic.data(), len, 90, &max, &lag), zppStsOk);
    EXPECT_EQ(max, 5000);
    EXPECT_EQ(lag, 77) << "the largest of 17, 37, 57, 77";
    EXPECT_EQ(_zppsCrossCorrLagMax_Inv_16s(pulse.data(), periodic.data() + 100, len, 4, 100, &max, &lag), zppStsOk);
    EXPECT_EQ(max, 10000);
    EXPECT_EQ(lag, 23) << "the smallest of 23, 43, 63, 83";
    EXPECT_EQ(zppsAutoCorrLagMax_Inv_16s(periodic.data() + 90, len, 1, 85, &max, &lag), zppStsOk);
    EXPECT_EQ(lag, len == 7 ? 1 : 20);
    EXPECT_EQ(zppsAutoCorrLagMax_Fwd_16s(periodic.data(), len, 1, 85, &max, &lag), zppStsOk);
    EXPECT_EQ(lag, 20);

    const V16 silence(static_cast<std::size_t>(len) + 30);
    EXPECT_EQ(zppsCrossCorrLagMax_16s(pulse.data(), silence.data(), len, 30, &max, &lag), zppStsOk);
    EXPECT_EQ(max, 0);
    EXPECT_EQ(lag, 30);
    EXPECT_EQ(zppsAutoCorrLagMax_Inv_16s(silence.data(), len, 5, 4, &max, &lag), zppStsOk);
    EXPECT_EQ(max, INT32_MIN);
    EXPECT_EQ(lag, 0);
    max = 11, lag = 12;
    EXPECT_EQ(_zppsCrossCorrLagMax_Inv_16s(pulse.data(), silence.data(), len, 5, 4, &max, &lag), zppStsOk);
    EXPECT_EQ(max, 11);
    EXPECT_EQ(lag, 12);
  }
}

// Sums that do not fit: saturated in the cross-correlations, so that a louder lag ties instead of turning negative.
TEST(LagSearch, SaturatesSumsThatDoNotFit) {
  const V16 low(80, -32768), high(40, 32767);
  V16 rising(80, -32768);
  rising[0] = 0;
  Zpp32s max = 0, lag = 0;
  zppsCrossCorrLagMax_16s(low.data(), rising.data(), 40, 40, &max, &lag);
  EXPECT_EQ(max, INT32_MAX);
  EXPECT_EQ(lag, 40);
  _zppsCrossCorrLagMax_Inv_16s(high.data(), low.data() + 40, 40, 0, 40, &max, &lag);
  EXPECT_EQ(max, INT32_MIN);
  EXPECT_EQ(lag, 0) << "all equal: the smallest lag";
}

// On both sides of the energies up to which no doubled sum can saturate: sums that reach the end and stay, and that come back
TEST(DotProduct, SaturatesAtEachStepWhereItMay) {
  for (int level = 2800; level < 6200; level += 17)
    for (const int turn : {64, 60, 40, 1}) {
      const V16 x(64, static_cast<Zpp16s>(level));
      V16 y = x;
      for (std::size_t n = static_cast<std::size_t>(turn); n < 64; ++n) y[n] = static_cast<Zpp16s>(-level);
      for (const int start : {0, 1}) {
        const Zpp32s stepwise = zpp::dotProductStepwise(x.data(), y.data(), 64, start);
        EXPECT_EQ(zpp::dotProduct(x.data(), y.data(), 64, start), stepwise) << level << ' ' << turn;
      }
    }
}

TEST(DotProductOfEvenSamples, SaturatesAtEachStep) {
  V16 a = {-32768, 9, 1, 9, -32768, 9, 0, 9, 0, 9}, b = {-32768, 9, 5, 9, 32767, 9, 0, 9, 0, 9};
  Zpp32s dp = 0;
  EXPECT_EQ(zppsDotProd_G729A_16s32s(a.data(), b.data(), 10, &dp), zppStsOverflowWarn);
  EXPECT_EQ(dp, INT32_MAX - 2 * 32768 * 32767) << "clamped twice at the top, then taken down";
  a[0] = 32767;
  EXPECT_EQ(zppsDotProd_G729A_16s32s(a.data(), b.data(), 10, &dp), zppStsOverflowWarn);
  a[2] = -32768, b[2] = 32767, a[4] = 0;
  EXPECT_EQ(zppsDotProd_G729A_16s32s(a.data(), b.data(), 10, &dp), zppStsOverflowWarn);
  EXPECT_EQ(dp, INT32_MIN);
  for (const int len : {1000, 1024, 2048, 4096}) {  // energies far beyond 32 bits
    const V16 loud(static_cast<std::size_t>(len), -32768);
    EXPECT_EQ(zppsDotProd_G729A_16s32s(loud.data(), loud.data(), len, &dp), zppStsOverflowWarn) << len;
    EXPECT_EQ(dp, INT32_MAX);
  }
}

TEST(HarmonicFilter, FeedsChangedSamplesBack) {
  for (const int lag : {1, 3, 8, 9, 20}) {
    V16 x(static_cast<std::size_t>(lag) + 41);
    x[0] = 16384;
    zppsHarmonicFilter_16s_I(16384, lag, &x[static_cast<std::size_t>(lag)], 41);
    for (std::size_t n = 0; n < x.size(); ++n)
      EXPECT_EQ(x[n], n % static_cast<std::size_t>(lag) == 0 && n / static_cast<std::size_t>(lag) < 15
                          ? 16384 >> (n / static_cast<std::size_t>(lag))
                          : 0)
          << lag << " " << n;
  }
  V16 extreme(50, -32768);
  zppsHarmonicFilter_16s_I(-32768, 20, &extreme[20], 20);
  EXPECT_EQ(extreme[20], -1) << "-32768 * -32768 counts as 32767";
}

TEST(Convolution, TruncatesAndSaturates) {
  const V16 loud(40, -32768), one = {1}, minus = {-1};
  V16 y(40);
  zppsConvPartial_16s_Sfs(loud.data(), loud.data(), y.data(), 40, 15);
  EXPECT_EQ(y, V16(40, 32767));
  zppsConvPartial_16s_Sfs(one.data(), minus.data(), y.data(), 1, 12);
  EXPECT_EQ(y[0], -1) << "towards minus infinity";
  zppsConvPartial_16s_Sfs(loud.data(), loud.data(), y.data(), 40, 100);
  EXPECT_EQ(y[39], 20) << "a shift by 31: 40 * 2^30 >> 31";
}

TEST(AdaptiveCodebookGain, RescalesLoudVectorsAndStartsAsItsCallerSays) {
  const V16 loud(40, 8000), silence(40);
  V16 half(40, 4000), coeffs(4);
  EXPECT_EQ(ownAdaptiveCodebookGain_16s(loud.data(), loud.data(), nullptr, 0), 16383)
      << "unity less the bit lost by halving the mantissa, both sums rescaled";
  EXPECT_EQ(ownAdaptiveCodebookGain_16s(half.data(), loud.data(), nullptr, 0), 8191);
  EXPECT_EQ(ownAdaptiveCodebookGain_16s(loud.data(), half.data(), nullptr, 0), 19661) << "limited to 1.2";
  EXPECT_EQ(ownAdaptiveCodebookGain_16s(silence.data(), silence.data(), coeffs.data(), 0), 0);
  EXPECT_EQ(ownAdaptiveCodebookGain_16s(silence.data(), silence.data(), coeffs.data(), 1), 16384);
  EXPECT_EQ(coeffs, (V16{16384, -15, 16384, -15}));
  for (auto& v : half) v = -4000;
  EXPECT_EQ(ownAdaptiveCodebookGain_16s(half.data(), loud.data(), nullptr, 0), 0) << "never negative";
}

}  // namespace
