#include "codecs/g729/single_precision/filters.h"

#include "codecs/codec.h"

namespace codecs::g729f {

MaMemory::MaMemory() {
  for (auto row = rows_.begin(); row != rows_.end(); row += kOrder) std::ranges::copy(kFlatLsf, row);
}

void MaMemory::push(const Lsf& codeVector) {
  std::shift_right(rows_.begin(), rows_.end(), kOrder);
  std::ranges::copy(codeVector, rows_.begin());
}

Lsp meanOf(const Lsp& a, const Lsp& b) {
  Lsp mean;
  require(zppsInterpolateC_G729_32f(a.data(), 0.5f, b.data(), 0.5f, mean.data(), kOrder));
  return mean;
}

Filter toFilter(const Lsp& lsp) {
  Filter a;
  require(zppsLSPToLPC_G729_32f(lsp.data(), a.data()));
  return a;
}

SubframeFilters LspInterpolation::moveTo(const Lsp& lsp) {
  const Filter first = toFilter(meanOf(lsp, lsp_));
  lsp_ = lsp;
  return {first, toFilter(lsp)};
}

Filter weight(const Filter& a, Zpp32f gamma) {
  Filter weighted = a;
  Zpp32f factor = gamma;
  for (int i = 1; i <= kOrder; ++i, factor *= gamma) weighted[i] *= factor;
  return weighted;
}

void residual(const Filter& a, const Zpp32f* speech, Zpp32f* output) {
  for (int n = 0; n < kSubframeSize; ++n) {
    Zpp32f sum = speech[n];
    for (int i = 1; i <= kOrder; ++i) sum += a[i] * speech[n - i];
    output[n] = sum;
  }
}

void synthesise(const Filter& a, const Zpp32f* input, Zpp32f* output, const Zpp32f* past, int length) {
  std::array<Zpp32f, kOrder + kFrameSize> buffer{};
  Zpp32f* const y = buffer.data() + kOrder;
  if (past != nullptr) std::copy_n(past - kOrder, kOrder, buffer.data());
  for (int n = 0; n < length; ++n) {
    Zpp32f sum = input[n];
    for (int i = kOrder; i > 0; --i) sum -= a[i] * y[n - i];  // the latest output last: the others need not wait for it
    y[n] = sum;
  }
  std::copy_n(y, length, output);
}

void respond(const Filter& numerator, const Filter& denominator, std::span<Zpp32f> response) {
  std::ranges::fill(response, 0.f);
  std::copy_n(numerator.begin(), std::min<std::size_t>(numerator.size(), response.size()), response.begin());
  synthesise(denominator, response.data(), response.data(), nullptr, static_cast<int>(response.size()));
}

Zpp32f product(const Zpp32f* a, const Zpp32f* b, int length) {
  // Four sums, which need not wait for one another; in double precision, for searches decide between them.
  const auto term = [a, b](int n) { return static_cast<Zpp64f>(a[n]) * static_cast<Zpp64f>(b[n]); };
  Zpp64f sums[4] = {};
  int n = 0;
  for (; n + 4 <= length; n += 4)
    for (int k = 0; k < 4; ++k) sums[k] += term(n + k);
  for (; n < length; ++n) sums[0] += term(n);
  return static_cast<Zpp32f>((sums[0] + sums[1]) + (sums[2] + sums[3]));
}

void HighPassFilter::filter(std::span<Zpp32f> signal) {
  for (Zpp32f& sample : signal) {
    const Zpp32f x = sample;
    sample = c_.a1 * y1_ + c_.a2 * y2_ + c_.b0 * x + c_.b1 * x1_ + c_.b2 * x2_;
    x2_ = x1_;
    x1_ = x;
    y2_ = y1_;
    y1_ = sample;
  }
}

void sharpen(Subframe& code, int delay, Zpp32f sharpening) {
  for (int n = delay; n < kSubframeSize; ++n) code[n] += sharpening * code[n - delay];
}

void mixExcitation(Zpp32f* excitation, const Subframe& code, Zpp32f pitchGain, Zpp32f codeGain) {
  require(zppsInterpolateC_G729_32f(excitation, pitchGain, code.data(), codeGain, excitation, kSubframeSize));
}

}  // namespace codecs::g729f
