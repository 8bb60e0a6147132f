#include <algorithm>

#include "amr/fixed_codebook/kernels.h"
#include "amr/gain/kernels.h"
#include "amr/gain/tables.h"
#include "amr/lsp/kernels.h"
#include "amr/pitch/kernels.h"
#include "amr/postfilter/kernels.h"
#include "amr/synthesis/kernels.h"

#include "kernels/rig.h"

namespace test {

ZPP_AMR_FIXED_CODEBOOK_KERNELS(ZPP_KERNEL_TYPE)
ZPP_AMR_PITCH_KERNELS(ZPP_KERNEL_TYPE)
ZPP_AMR_LSP_KERNELS(ZPP_KERNEL_TYPE)
ZPP_AMR_GAIN_KERNELS(ZPP_KERNEL_TYPE)
ZPP_AMR_SYNTHESIS_KERNELS(ZPP_KERNEL_TYPE)
ZPP_AMR_POSTFILTER_KERNELS(ZPP_KERNEL_TYPE)

void runAmrKernels(const Options& options, Tally& tally) {
  ZPP_AMR_FIXED_CODEBOOK_KERNELS(ZPP_RUN_KERNEL)
  ZPP_AMR_PITCH_KERNELS(ZPP_RUN_KERNEL)
  ZPP_AMR_LSP_KERNELS(ZPP_RUN_KERNEL)
  ZPP_AMR_GAIN_KERNELS(ZPP_RUN_KERNEL)
  ZPP_AMR_SYNTHESIS_KERNELS(ZPP_RUN_KERNEL)
  ZPP_AMR_POSTFILTER_KERNELS(ZPP_RUN_KERNEL)
}

namespace {

// Content matters more than size here: many calls of each kind, their noise at levels from a bit to full scale. One when
// timing.
template <class Rig, class Call>
void repeat(Rig& rig, Call call) {
  for (int run = 0; run < (rig.keep ? 1 : 60); ++run) {
    if (!rig.keep) rig.beginCall();
    const bool scaled = rig.content == Content::noise || rig.keep;
    call(static_cast<Zpp16s>(!scaled    ? 32767
                             : rig.keep ? 8192
                                        : rig.random.between(1, 1 << rig.random.between(0, 15)) - 1),
         run);
  }
}

template <class Rig>
Zpp16s* within(Rig& rig, Zpp16s level, int n = 40) {
  return rig.template inOut<Zpp16s>(n, static_cast<Zpp16s>(-level), level);
}

// A response as of a weighted synthesis filter: it fades, the faster the smaller the run; now and then it does not.
template <class Rig>
const Zpp16s* response(Rig& rig, Zpp16s level, int run) {
  Zpp16s* impulse = within(rig, level);
  double fade = 1;
  for (int n = 0; n < 40; ++n, fade *= 0.3 + 0.012 * run) impulse[n] = static_cast<Zpp16s>(impulse[n] * fade);
  return impulse;
}

template <class Rig>
const Zpp16s* signs(Rig& rig) {
  Zpp16s* sign = rig.template inOut<Zpp16s>(40);
  for (int n = 0; n < 40; ++n) sign[n] = sign[n] < 0 ? -32767 : 32767;
  return sign;
}

// A matrix of a response, so that energies are positive as in the codec, or of any numbers
template <class Rig>
const Zpp16s* matrix(Rig& rig, Zpp16s level, int run, int tracks) {
  Zpp16s* m = rig.template inOut<Zpp16s>(1600, static_cast<Zpp16s>(run % 4 == 0 ? -level : level / 2), level);
  if (run % 4 < 2 && !rig.keep) return m;
  ownToeplizMatrix_GSMAMR_16s_PX(response(rig, 8192, run), signs(rig), m, tracks, kAllPairs);
  return m;
}

}  // namespace

DRIVE(ownToeplizMatrix_GSMAMR_16s, only({4, 5})) {
  repeat(rig, [&](Zpp16s level, int run) {
    const Zpp16s* const sign = run % 8 == 5 ? rig.template in<Zpp16s>(40) : signs(rig);
    rig.run(response(rig, level, run), sign, rig.template inOut<Zpp16s>(1600), n, kAllPairs);
  });
}

DRIVE(ownTargetSignalCorr_X2_GSMAMR_16s, only({4, 5})) {
  repeat(rig, [&](Zpp16s level, int run) {
    const Zpp16s *target = within(rig, level), *impulse = response(rig, 32767 >> (run % 6), run);
    rig.run(target, impulse, rig.template out<Zpp16s>(40), rig.scalar(1, 2), gridOf(n));
  });
}

// Few different values, so that many are equal, and now and then full scale
DRIVE(ownSetSign_GSMAMR_16s, only({4, 6, 8})) {
  repeat(rig, [&](Zpp16s level, int run) {
    Zpp16s* corr = within(rig, run % 3 == 0 ? Zpp16s{3} : level);
    if (run % 3 == 1)
      for (int k = 0; k < 10 + run; ++k) corr[rig.scalar(0, 39)] = k % 2 == 0 ? 32767 : -32768;
    rig.run(corr, rig.template out<Zpp16s>(40), rig.template out<Zpp16s>(40), n);
  });
}

DRIVE(ownSetSign_M102M122_GSMAMR_16s, only({4, 5})) {
  repeat(rig, [&](Zpp16s level, int run) {
    const Zpp16s* residual = within(rig, run % 4 == 0 ? Zpp16s{2} : level);
    Zpp16s* corr = within(rig, run % 3 == 0 ? Zpp16s{3} : static_cast<Zpp16s>(32767 >> run % 7));
    rig.run(residual, corr, rig.template out<Zpp16s>(40), rig.template out<Zpp16s>(n), rig.template out<Zpp16s>(2 * n),
            gridOf(n));
  });
}

DRIVE(ownSearchOptimalPulsePos_GSMAMR_16s, only({2, 3, 4})) {
  static constexpr Zpp8u kSequences[4][4] = {{0, 1, 2, 3}, {4, 0, 1, 2}, {1, 4, 2, 0}, {3, 2, 1, 4}};
  repeat(rig, [&](Zpp16s level, int run) {
    const auto* corr = rig.template in<Zpp16s>(40, 0, level);
    Zpp16s* candidate = rig.template inOut<Zpp16s>(40, -1, run % 3 == 0 ? 0 : 1);
    for (int slot = 0; slot < 40; ++slot)
      if (rig.keep) candidate[slot] = static_cast<Zpp16s>(slot % 2 - 1);
    const auto* m = matrix(rig, level, run, 5);
    auto* sequences = rig.template inOut<Zpp8u>(16);
    std::memcpy(sequences, kSequences, 16);
    rig.run(corr, candidate, m, sequences, 4, n, rig.template out<Zpp16s>(n));
  });
}

DRIVE(ownSearchOptimalPulsePos_M102M122_GSMAMR_16s, only({8, 10})) {
  const int tracks = n / 2;
  repeat(rig, [&](Zpp16s level, int run) {
    // Sums are hardly ever negative; small ones give many equal quotients of different squares and energies.
    const Zpp16s most = run % 3 == 0 ? std::min<Zpp16s>(level, 250) : level;
    const auto* corr = rig.template in<Zpp16s>(40, static_cast<Zpp16s>(run % 3 == 1 ? -most : -most / 64), most);
    const auto* m = matrix(rig, level, run, tracks);
    Zpp16s* trackBest = rig.template inOut<Zpp16s>(tracks);
    Zpp16s* trackOrder = rig.template inOut<Zpp16s>(n);
    const int first = rig.scalar(0, tracks - 1);
    for (int t = 0; t < tracks; ++t) trackBest[t] = static_cast<Zpp16s>(t * (40 / tracks) + rig.scalar(0, 40 / tracks - 1));
    for (int k = 0; k < n; ++k) trackOrder[k] = static_cast<Zpp16s>((first + k) % tracks);
    rig.run(corr, m, trackBest, trackOrder, rig.template out<Zpp16s>(n), n, tracks);
  });
}

DRIVE(ownFilteredCode_GSMAMR_16s, only({2, 3, 4, 8, 10})) {
  repeat(rig, [&](Zpp16s level, int run) {
    const auto* impulse = response(rig, level, run);
    Zpp16s *positions = rig.template inOut<Zpp16s>(n), *weights = rig.template inOut<Zpp16s>(n);
    for (int k = 0; k < n; ++k) {
      positions[k] = static_cast<Zpp16s>(rig.random.between(0, 39));
      const bool positive = weights[k] >= 0;
      weights[k] = static_cast<Zpp16s>(n == 10 ? (positive ? 8192 : -8192) : (positive ? 32767 : -32768));
    }
    rig.run(impulse, positions, weights, n, rig.template out<Zpp16s>(40));
  });
}

DRIVE(ownNormCorr_GSMAMR_16s, only({1, 15, 28})) {
  repeat(rig, [&](Zpp16s level, int run) {
    const int minLag = rig.scalar(14, 143 - n), maxLag = minLag + n - 1;
    auto* excitation = rig.template inOut<Zpp16s>(40, static_cast<Zpp16s>(-level), level, maxLag);
    auto* target = within(rig, level);
    auto* impulse = response(rig, 32767 >> (run % 5), run);
    // Constant signals through a single pulse, quiet at the first lag or not: energies and correlations around 2^30
    if (run % 2 == 1 && !rig.keep) {
      std::fill_n(excitation - maxLag, maxLag + 40, rig.template scalar<Zpp16s>(2000, 32767));
      if (run % 4 == 1) std::fill_n(excitation - minLag, 40, Zpp16s{3});
      std::fill_n(target, 40, rig.template scalar<Zpp16s>(0, 1 << rig.scalar(4, 13)));
      impulse = rig.template made<Zpp16s>(40, [](Zpp16s* h) { std::fill_n(h, 40, Zpp16s{0}), h[0] = 4096; });
    }
    rig.run(excitation, target, impulse, minLag, maxLag, rig.template out<Zpp16s>(n));
  });
}

DRIVE(ownPredLt_GSMAMR_16s_I, only({11, 17, 18, 19, 20, 33, 50, 80, 144})) {
  repeat(rig, [&](Zpp16s level, int run) {
    auto* excitation = rig.template inOut<Zpp16s>(40, static_cast<Zpp16s>(-level), level, 154);
    rig.run(excitation, n, run % 11 - 5);
  });
}

// Filters that ring out, that blow up and that are none
DRIVE(ownImpulseResponseTarget_GSMAMR_16s, only({40})) {
  repeat(rig, [&](Zpp16s level, int run) {
    const auto lpc = [&] {
      Zpp16s* a = within(rig, static_cast<Zpp16s>(rig.keep || run % 3 != 0 ? 700 : 32767 >> run % 5), 11);
      if (run % 4 != 0) a[0] = 4096;
      return a;
    };
    const Zpp16s *speech = within(rig, level, 50), *weight1 = lpc(), *weight2 = lpc(), *quantLpc = lpc();
    const Zpp16s *errorMem = within(rig, level, 10), *weightMem = within(rig, level, 10);
    rig.run(speech, weight1, weight2, quantLpc, errorMem, weightMem, rig.template out<Zpp16s>(n), rig.template out<Zpp16s>(n),
            rig.template out<Zpp16s>(n));
  });
}

// Residuals near the codebook's entries, far from all, and such that every error saturates
DRIVE(ownLsfSearch_GSMAMR_16s, only({64, 128, 256, 512})) {
  const LsfCodebook& book = n == 64 ? dico5Lsf5 : n == 128 ? dico1Lsf5 : n == 256 ? dico3Lsf5 : dico3Lsf3;
  repeat(rig, [&](Zpp16s level, int run) {
    const auto* residual = rig.template in<Zpp16s>(4, static_cast<Zpp16s>(-level), level);
    const auto* weight = rig.template in<Zpp16s>(4, static_cast<Zpp16s>(run % 2 == 0 ? 0 : -32768));
    rig.run(residual, weight, book.quads, n, run % 3 == 0);
  });
}

// Terms of one size, of sizes far apart, and such that sums saturate
DRIVE(ownGainSearch_GSMAMR_16s, only({64, 128, 256})) {
  const Zpp16s* table = n == 64 ? tableGainLowrates[0] : n == 128 ? tableGainHighrates[0] : tableGainMR475[0][0];
  repeat(rig, [&](Zpp16s level, int run) {
    const auto* words = rig.template made<Zpp16s>(22, [&](Zpp16s* word) {
      for (int k = 0; k < 2; ++k) {
        const int size = run % 4 == 0 ? level / 8 : run % 4 == 1 ? 16384 : 32767;
        for (int i = 0; i < 5; ++i) {
          const int shift = run % 3 == 0 ? rig.scalar(0, 12) : 0;
          const bool positive = run % 5 != 0 && i % 2 == 0;
          *word++ = rig.template scalar<Zpp16s>(positive ? 0 : -(size >> shift) - 1, size >> shift);
          *word++ = rig.template scalar<Zpp16s>(0, 32767);
        }
        *word++ = rig.template scalar<Zpp16s>(run % 2 == 0 ? 16384 : 0, 32767);
      }
    });
    const auto* criteria = reinterpret_cast<const GainCriterion*>(words);
    const auto limit = static_cast<Zpp16s>(run % 6 == 0 ? 15565 : run % 17 == 0 ? -1 : 32767);
    rig.run(criteria, table, n, n == 256 ? 2 : 1, limit);
  });
}

DRIVE(ownApplyGains_GSMAMR_16s_I, only({40})) {
  repeat(rig, [&](Zpp16s level, int) { rig.run(rig.template in<Zpp16s>(n), within(rig, level)); });
}

DRIVE(ownAddPitch_GSMAMR_16s, only({40})) {
  repeat(rig, [&](Zpp16s level, int run) {
    const Zpp16s *vector = within(rig, level), *excitation = rig.template in<Zpp16s>(n);
    const auto sharpening = rig.template scalar<Zpp16s>(run % 7 == 0 ? -32768 : 16385, run % 7 == 0 ? -32768 : 32767);
    rig.run(vector, excitation, sharpening, rig.template scalar<Zpp16s>(-32768, 32767), 15 + run % 2,
            rig.template out<Zpp16s>(n));
  });
}

DRIVE(ownDisperse_GSMAMR_16s, only({40})) {
  repeat(rig, [&](Zpp16s level, int run) {
    Zpp16s* pulses = within(rig, level);
    for (int i = 0; i < n; ++i)
      if (run % 5 != 0 && rig.scalar(0, 9) != 0) pulses[i] = 0;
    const DispersionResponse* responses[] = {&phImpLow, &phImpMid, &phImpLowMR795, &phImpMidMR795};
    rig.run(pulses, *responses[run % 4], rig.template out<Zpp16s>(n));
  });
}

// Coefficients as of filters that fade, and such that outputs and sums saturate
DRIVE(ownFormantResponses_GSMAMR_16s, only({4})) {
  repeat(rig, [&](Zpp16s level, int run) {
    constexpr int kWords = sizeof(FormantFilter) / sizeof(Zpp16s);
    const auto top = static_cast<Zpp16s>(rig.keep || run % 3 != 0 ? 1500 : level);
    const auto* filters = reinterpret_cast<const FormantFilter*>(rig.template made<Zpp16s>(n * kWords, [&](Zpp16s* word) {
      for (int i = 0; i < n * kWords; ++i)
        word[i] = i % 11 == 0 && run % 4 != 0 ? Zpp16s{4096} : rig.template scalar<Zpp16s>(-top, top);
    }));
    rig.run(filters, reinterpret_cast<FormantResponse*>(rig.template out<Zpp16s>(n * FormantResponse::kLength)));
  });
}

DRIVE(ownCompensateTilt_GSMAMR_16s_I, only({40})) {
  repeat(rig, [&](Zpp16s level, int run) {
    auto* srcDst = rig.template inOut<Zpp16s>(n, static_cast<Zpp16s>(-level - 1), level, 1);
    rig.run(static_cast<Zpp16s>(run % 9 == 0 ? -32768 : rig.scalar(-32768, 32767)), srcDst);
  });
}

}  // namespace test
