#include "g729/gain/kernels.h"
#include "g729/gain/tables.h"
#include "g729/lsp/kernels.h"
#include "g729/lsp/tables.h"

#include "kernels/rig.h"

namespace test {

ZPP_G729_LSP_KERNELS(ZPP_KERNEL_TYPE)
ZPP_G729_GAIN_KERNELS(ZPP_KERNEL_TYPE)

void runG729FcbKernels(const Options& options, Tally& tally);
void runG729PitchKernels(const Options& options, Tally& tally);
void runG729PostfilterKernels(const Options& options, Tally& tally);

void runG729Kernels(const Options& options, Tally& tally) {
  ZPP_G729_LSP_KERNELS(ZPP_RUN_KERNEL)
  ZPP_G729_GAIN_KERNELS(ZPP_RUN_KERNEL)
  runG729FcbKernels(options, tally);
  runG729PitchKernels(options, tally);
  runG729PostfilterKernels(options, tally);
}

// --- LP analysis and LSP quantisation -------------------------------------------------------------------------------------
// Sizes only repeat the random draws: even ones over the whole range, odd ones in the range of speech.

// Orders 1..30; multiples of three over the whole range, where sums saturate. The buffers end with the last value that is read.
DRIVE(ownLevinsonSum_G729, upTo(30, {10, 30})) {
  const int shift = rig.keep || n % 3 != 0 ? 3 : 0;
  const auto values = [&](int downBy) {
    return rig.made<zpp::Dpf>(n, [&](zpp::Dpf* dpf) {
      for (int i = 0; i < n; ++i)
        dpf[i] =
            zpp::toDpf(downBy == 0 && rig.scalar(0, 3) == 0 ? INT32_MIN : rig.scalar<Zpp32s>(INT32_MIN, INT32_MAX) >> downBy);
    });
  };
  const zpp::Dpf* r = values(shift);
  rig.run(r, values(shift), n);
}
DRIVE(ownLevinsonUpdate_G729, upTo(30, {10, 30})) {
  const int shift = rig.keep || n % 3 != 0 ? 3 : 0;
  Zpp32s* values = rig.inOut<Zpp32s>(n);
  for (int i = 0; i < n; ++i) reinterpret_cast<zpp::Dpf*>(values)[i] = zpp::toDpf(values[i] >> shift);
  const Zpp32s reflection = rig.keep                              ? 0
                            : shift == 0 && rig.scalar(0, 3) == 0 ? INT32_MIN
                                                                  : rig.scalar<Zpp32s>(INT32_MIN, INT32_MAX);
  rig.run(reinterpret_cast<zpp::Dpf*>(values), n, zpp::toDpf(reflection));
}
// Values around those whose distances from an entry add up to 2^32
template <int columns>
Zpp16s farFrom(RigBase& rig, const Zpp16s (&entry)[columns], int j, int distance) {
  const int away = distance + rig.scalar(-20, 20);
  return static_cast<Zpp16s>(entry[j] + away <= 32767 && rig.scalar(0, 1) == 0 ? entry[j] + away : entry[j] - away);
}
DRIVE(ownLspPreSelect, upTo(90, {1})) {
  if (n % 4 == 0) {
    const auto& entry = LSPCode1[rig.scalar(0, 127)];
    return rig.run(rig.made<Zpp16s>(10, [&](Zpp16s* t) {
      for (int j = 0; j < 10; ++j) t[j] = farFrom(rig, entry, j, 20735);
    }));
  }
  if (n % 2 == 0) return rig.run(rig.in<Zpp16s>(10));
  Zpp16s* target = rig.inOut<Zpp16s>(10, -6000, 6000);
  for (int j = 0; j < 10; ++j) target[j] = static_cast<Zpp16s>(target[j] + 2339 * (j + 1));
  rig.run(target);
}
DRIVE(ownLspSelect2, upTo(90, {1})) {
  const auto limit = static_cast<Zpp16s>(n % 2 == 0 ? 32767 : 4000);
  const Zpp16s* residual = rig.in<Zpp16s>(10, static_cast<Zpp16s>(-limit), limit);
  const Zpp16s* weight = rig.in<Zpp16s>(10, n % 4 == 0 ? 32760 : 0);
  if (n % 4 == 0) {
    const auto& entry = LSPCode2[rig.scalar(0, 31)];
    residual = rig.made<Zpp16s>(10, [&](Zpp16s* t) {
      for (int j = 0; j < 10; ++j) t[j] = farFrom(rig, entry, j, 29320);
    });
  }
  rig.run(residual, weight, rig.out<Zpp16s>(2));
}
// Now and then the weights whose sum of products needs more than 32 bits; in place for odd lengths
DRIVE(ownInterpolateC_NR_G729_16s_Sfs, upTo(60, {40})) {
  const bool extreme = rig.scalar(0, 9) == 0;
  const auto weight = [&] { return extreme ? Zpp16s{-32768} : rig.scalar<Zpp16s>(-32768, 32767); };
  const Zpp16s weight1 = weight(), weight2 = weight();
  const int scaleFactor = n == 40 ? 14 : rig.scalar(0, 34);
  if (n % 2 == 0) return rig.run(rig.in<Zpp16s>(n), weight1, rig.in<Zpp16s>(n), weight2, rig.out<Zpp16s>(n), n, scaleFactor);
  Zpp16s* srcDst = rig.inOut<Zpp16s>(n);
  rig.run(srcDst, weight1, rig.in<Zpp16s>(n), weight2, srcDst, n, scaleFactor);
}

// --- Gain codebooks -------------------------------------------------------------------------------------------------------
// Sizes: even ones with errors that may saturate, multiples of three with taming, from 30 on with few second rows.
DRIVE(ownWeightedMSE_G729, upTo(60, {1})) {
  const bool few = n >= 30;
  const int from = rig.scalar(0, few ? 2 : 8);
  GainSearch search = {few ? gbk1_6k + rig.scalar(0, 2) : gbk1 + rig.scalar(0, 4),
                       few ? 6 : 4,
                       few ? gbk2_6k : gbk2 + from,
                       few ? from : 0,
                       few ? 6 : 8,
                       {},
                       rig.scalar<Zpp16s>(16384, 32767),
                       static_cast<Zpp16s>(n % 3 == 0 ? rig.scalar(0, 16383) : 32767)};
  const Zpp32s* factor = rig.in<Zpp32s>(5);
  for (int i = 0; i < 5; ++i) search.factor[i] = zpp::toDpf(n % 2 == 0 ? factor[i] : factor[i] >> 2);
  rig.run(search);
}

}  // namespace test
