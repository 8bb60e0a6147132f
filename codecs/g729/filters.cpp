#include "codecs/g729/filters.h"

#include <algorithm>

#include "codecs/codec.h"
#include "codecs/fixed_point.h"

namespace codecs::g729 {

MaMemory::MaMemory() {
  constexpr Lsf flat = {2339, 4679, 7018, 9358, 11698, 14037, 16377, 18717, 21056, 23396};  // i pi / 11, Q13
  for (std::size_t row = 0; row < rows_.size(); row += kOrder)
    std::ranges::copy(flat, rows_.begin() + static_cast<std::ptrdiff_t>(row));
}

void MaMemory::push(const Lsf& codeVector) {
  std::shift_right(rows_.begin(), rows_.end(), kOrder);
  std::ranges::copy(codeVector, rows_.begin());
}

Lsp meanOf(const Lsp& a, const Lsp& b) {
  Lsp mean;
  require(zppsInterpolate_G729_16s(a.data(), b.data(), mean.data(), kOrder));
  return mean;
}

Filter toFilter(const Lsp& lsp) {
  Filter a;
  require(zppsLSPToLPC_G729_16s(lsp.data(), a.data()));
  return a;
}

SubframeFilters LspInterpolation::moveTo(const Lsp& lsp) {
  const Filter first = toFilter(meanOf(lsp, lsp_));
  lsp_ = lsp;
  return {first, toFilter(lsp)};
}

Filter weight(const Filter& a, Zpp16s gamma) {
  Filter weighted;
  require(zppsMulPowerC_NR_16s_Sfs(a.data(), gamma, weighted.data(), kOrder + 1, 15));
  return weighted;
}

bool synthesise(const Filter& a, const Zpp16s* input, Zpp16s* output, const Zpp16s* memory) {
  return warns(zppsSynthesisFilter_NR_16s_Sfs(a.data(), input, output, kSubframeSize, 12, memory));
}

AnyFilter weight(const AnyFilter& filter, Zpp16s gamma) {
  AnyFilter weighted;
  weighted.order = filter.order;
  require(zppsMulPowerC_NR_16s_Sfs(filter.a.data(), gamma, weighted.a.data(), filter.order + 1, 15));
  return weighted;
}

void residual(const AnyFilter& filter, const Zpp16s* speech, Zpp16s* output) {
  require(zppsResidualFilter_G729E_16s(filter.a.data(), filter.order, speech, output, kSubframeSize));
}

bool synthesise(const AnyFilter& filter, const Zpp16s* input, Zpp16s* output, const Zpp16s* past) {
  return warns(zppsSynthesisFilter_G729E_16s(filter.a.data(), filter.order, input, output, kSubframeSize,
                                             past == nullptr ? nullptr : past - filter.order));
}

HighPassFilter::HighPassFilter(Kind kind) : scaleFactor_(kind == Kind::input ? 12 : 13) {
  constexpr Zpp16s at140Hz[6] = {1899, -3798, 1899, 4096, 7807, -3733};
  constexpr Zpp16s at100Hz[6] = {7699, -15398, 7699, 8192, 15836, -7667};
  require(zppsHighPassFilterInit_G729(kind == Kind::input ? at140Hz : at100Hz, state_.data()));
}

void HighPassFilter::filter(std::span<Zpp16s> signal) {
  require(zppsHighPassFilter_G729_16s_ISfs(signal.data(), static_cast<int>(signal.size()), scaleFactor_, state_.data()));
}

std::array<int, 4> pulsePositions(Zpp16s positions) {
  const auto index = [positions](int k) { return positions >> (3 * k) & 7; };
  const int last = positions >> 9 & 15;  // on either of two tracks
  return {5 * index(0), 5 * index(1) + 1, 5 * index(2) + 2, 5 * (last >> 1) + 3 + (last & 1)};
}

void sharpen(Subframe& code, int delay, Zpp16s sharpening) {
  if (delay >= kSubframeSize) return;
  require(zppsHarmonicFilter_16s_I(sat16(2 * sharpening), delay, code.data() + delay, kSubframeSize - delay));
}

Zpp16s sharpeningFor(Zpp16s pitchGain) { return std::clamp<Zpp16s>(pitchGain, kLeastSharpening, 13017); }

void mixExcitation(Zpp16s* excitation, const Subframe& code, Zpp16s pitchGain, Zpp16s codeGain) {
  require(zppsInterpolateC_NR_G729_16s_Sfs(excitation, pitchGain, code.data(), codeGain, excitation, kSubframeSize, 14));
}

}  // namespace codecs::g729
