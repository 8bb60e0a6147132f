// Perceptual weighting filter of order 10 (ITU-T G.728 clause 3.3, block 4).
#include "core/checks.h"
#include "g728/arithmetic.h"
#include "g728/kernels.h"

using namespace zpp;
using namespace zpp::g728;

namespace {

// Ten past inputs and outputs, oldest first
struct State {
  Zpp16s input[10], output[10];
};
constexpr int kStateSize = 64;
static_assert(sizeof(State) <= kStateSize);

}  // namespace

void ownWeightingFilter_G728_16s(const Zpp16s* coefZero, const Zpp16s* coefPole, const Zpp16s* x, Zpp16s* y) {
  Zpp64s sums[kVector];
  ownPastSums_G728_16s(coefZero, coefPole, x, y, sums);
  for (int n = 0; n < kVector; ++n) {
    Zpp64s sum = sums[n] + x[n] * 16384;
    for (int k = 0; k < n; ++k) sum -= coefPole[k] * y[n - 1 - k];
    y[n] = sat16(sum >> 14);
  }
}

ZppStatus zppsIIR16sGetStateSize_G728_16s(Zpp32s* size) { return reportSize(size, kStateSize); }

ZppStatus zppsIIR16sInit_G728_16s(void* state) {
  if (anyNull(state)) return zppStsNullPointer;
  std::memset(state, 0, kStateSize);
  return zppStsOk;
}

ZppStatus zppsIIR16s_G728_16s(const Zpp16s* coefZero, const Zpp16s* coefPole, const Zpp16s* src, Zpp16s* dst, void* state) {
  if (anyNull(coefZero, coefPole, src, dst, state)) return zppStsNullPointer;
  State past;
  std::memcpy(&past, state, sizeof past);
  Zpp16s x[10 + kVector], y[10 + kVector];
  std::copy_n(past.input, 10, x);
  std::copy_n(src, kVector, x + 10);
  std::copy_n(past.output, 10, y);
  ownWeightingFilter_G728_16s(coefZero, coefPole, x + 10, y + 10);
  std::copy_n(y + 10, kVector, dst);
  std::copy_n(x + kVector, 10, past.input);
  std::copy_n(y + kVector, 10, past.output);
  std::memcpy(state, &past, sizeof past);
  return zppStsOk;
}
