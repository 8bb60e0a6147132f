// Synthesis filter of order 50 (ITU-T G.728 clause 4.4, block 32, in the block floating point of Annex G).
#include "g728/synthesis_filter.h"

#include "core/checks.h"
#include "g728/kernels.h"

using namespace zpp;
using namespace zpp::g728;

namespace {

constexpr int kStateSize = 144;
static_assert(sizeof(SpeechMemory) <= kStateSize);

}  // namespace

Block ownZeroInput_G728_16s(const Zpp16s* coef, const SpeechMemory& memory) {
  Block out;
  out.q = *std::min_element(memory.q, memory.q + kPastVectors);
  Zpp16s shift[kPastVectors];
  for (int k = 0; k < kPastVectors; ++k) shift[k] = static_cast<Zpp16s>(memory.q[k] - out.q);
  Zpp64s sums[kVector];
  ownZeroInputSums_G728_16s(coef, memory.mantissa, shift, sums);
  for (int n = 0; n < kVector; ++n) {
    Zpp64s sum = sums[n];
    for (int k = 0; k < n; ++k) sum -= coef[k] * out.mantissa[n - 1 - k];
    out.mantissa[n] = sat16(sum >> 14);
  }
  out.normalise(15);
  return out;
}

void ownZeroState_G728_16s(const Zpp16s* coef, Block* exc, Zpp16s* response) {
  for (int n = 0; n < kVector;) {
    Zpp64s sum = exc->mantissa[n] * 16384;
    for (int k = 0; k < n; ++k) sum -= coef[k] * response[n - 1 - k];
    if (sum >= -(1 << 28) && sum < 1 << 28) {
      response[n++] = static_cast<Zpp16s>(sum >> 14);
      continue;
    }
    // Too loud: once more with half the excitation. It comes to an end: mantissas of 0 and -1 fit whatever the coefficients.
    for (Zpp16s& m : exc->mantissa) m = static_cast<Zpp16s>(m >> 1);
    --exc->q;
    n = 0;
  }
}

Block ownSpeechVector_G728_16s(const Block& zeroInput, const Zpp16s* response, int responseQ) {
  Block sum = zeroInput;
  sum.q = std::min(zeroInput.q, responseQ);
  const int shift1 = std::min(zeroInput.q - sum.q, 15), shift2 = std::min(responseQ - sum.q, 15);
  // 4095, the largest magnitude of speech, at this q; from q 4 on it exceeds 16 bits.
  const int limit = sum.q < 0 ? 4095 >> std::min(-sum.q, 15) : 4095 << std::min(sum.q, 4);
  const int highest = std::min(limit, kMax16), lowest = std::max(-limit, kMin16);
  for (int n = 0; n < kVector; ++n)
    sum.mantissa[n] =
        static_cast<Zpp16s>(std::clamp((zeroInput.mantissa[n] >> shift1) + (response[n] >> shift2), lowest, highest));
  sum.normalise(14);
  return sum;
}

ZppStatus zppsSynthesisFilterGetStateSize_G728_16s(Zpp32s* size) { return reportSize(size, kStateSize); }

ZppStatus zppsSynthesisFilterInit_G728_16s(void* state) {
  if (anyNull(state)) return zppStsNullPointer;
  SpeechMemory memory;
  memory.reset();
  std::memset(state, 0, kStateSize);
  std::memcpy(state, &memory, sizeof memory);
  return zppStsOk;
}

ZppStatus zppsSynthesisFilter_G728_16s(const Zpp16s* coef, const Zpp16s* exc, Zpp16s* dst, Zpp32s erased, void* state) {
  if (anyNull(coef, exc, dst, state)) return zppStsNullPointer;
  if (outside(erased, 0, 1)) return zppStsOutOfRange;
  SpeechMemory memory;
  std::memcpy(&memory, state, sizeof memory);
  memory.limit();
  Block excitation = Block::load(exc);
  Zpp16s response[kVector];
  const Block zeroInput = ownZeroInput_G728_16s(coef, memory);
  ownZeroState_G728_16s(coef, &excitation, response);
  Block speech = ownSpeechVector_G728_16s(zeroInput, response, excitation.q);
  // Annex I: faint extrapolated speech must not make the memory finer than that of silence at the start.
  if (erased) speech.q = std::min(speech.q, SpeechMemory::kQuietQ);
  memory.append(speech);
  std::memcpy(state, &memory, sizeof memory);
  speech.store(dst);
  return zppStsOk;
}
