// Hybrid window and autocorrelation of the backward analyses (ITU-T G.728 clause 3.7, blocks 36, 43 and 49, Annex G).
//
// The newest part of the window, nonRecursive samples long, is summed anew each time; all before it decays exponentially and
// is carried on by recursive sums, into which the samples go that leave the newest part.
#include "core/checks.h"
#include "g728/arithmetic.h"
#include "g728/kernels.h"
#include "lpc/kernels.h"

using namespace zpp;
using namespace zpp::g728;

namespace {

constexpr int kMaxOrder = 50, kMaxLength = 256;

struct Geometry {
  int order, lenNew, lenNonRec;

  constexpr int length() const { return order + lenNew + lenNonRec; }
  constexpr int vectors() const { return (length() + kVector - 1) / kVector; }
  // In 64 bits: lengths near the ends of 32 bits are refused, not added.
  constexpr bool isValid() const {
    return !outside(order, 1, kMaxOrder) && lenNew >= 1 && lenNonRec >= 1 && Zpp64s{order} + lenNew + lenNonRec <= kMaxLength;
  }
  constexpr int stateSize() const { return (16 + 2 * (order + 1) + 4 * length() + 2 * vectors() + 3) & ~3; }
};

// A state block: header, recursive sums, window, history, exponents of the history's vectors; all oldest first, and every part
// as long as the geometry asks.
struct Header {
  Zpp16s order, lenNew, lenNonRec, decay;
  Zpp16s sumsQ;
};

class State {
 public:
  explicit State(void* block) : block_(static_cast<Zpp8u*>(block)) {
    std::memcpy(&header, block_, sizeof header);
    header.decay = std::clamp<Zpp16s>(header.decay, 1, 15);
    header.sumsQ = std::clamp<Zpp16s>(header.sumsQ, -4096, 4096);
  }
  // For Init, which writes all parts: nothing is read.
  State(void* block, const Geometry& g, int decay) : block_(static_cast<Zpp8u*>(block)) {
    header.order = static_cast<Zpp16s>(g.order);
    header.lenNew = static_cast<Zpp16s>(g.lenNew);
    header.lenNonRec = static_cast<Zpp16s>(g.lenNonRec);
    header.decay = static_cast<Zpp16s>(decay);
    header.sumsQ = 31;
  }
  Geometry geometry() const { return {header.order, header.lenNew, header.lenNonRec}; }

  void load() {
    copyParts([](Zpp16s* here, Zpp8u* there, int count) { std::memcpy(here, there, bytes(count)); });
    for (Zpp16s& q : historyQ) q = std::clamp<Zpp16s>(q, -64, 64);
  }
  void save() {
    std::memcpy(block_, &header, sizeof header);
    copyParts([](const Zpp16s* here, Zpp8u* there, int count) { std::memcpy(there, here, bytes(count)); });
  }

  Header header;
  Zpp16s sums[kMaxOrder + 1] = {};
  Zpp16s window[kMaxLength], history[kMaxLength] = {};
  Zpp16s historyQ[kMaxLength / kVector + 1] = {};

 private:
  static constexpr unsigned bytes(int count) { return static_cast<unsigned>(count) * sizeof(Zpp16s); }
  template <class Copy>
  void copyParts(Copy copy) {
    const Geometry g = geometry();
    Zpp8u* at = block_ + sizeof header;
    const auto part = [&](Zpp16s* here, int count) { copy(here, at, count), at += bytes(count); };
    part(sums, g.order + 1);
    part(window, g.length());
    part(history, g.length());
    part(historyQ, g.vectors());
  }
  Zpp8u* block_;
};

// Autocorrelations of windowed samples, oldest first: over those that enter the recursive sums, and over the newest ones
struct Correlations {
  Zpp64s recursive[kMaxOrder + 1], newest[kMaxOrder + 1];
};

void correlate(const Zpp16s* windowed, int count, int order, Zpp64s* dst) {
  for (int lag = 0; lag <= order; ++lag) {
    dst[lag] = 0;
    for (int n = 0; n < count; ++n) dst[lag] += windowed[n] * windowed[n - lag];
  }
}

// One analysis of windowed samples of Q windowedQ. Returns whether the last lag is not zero before rounding.
bool analyse(const Zpp16s* windowed, int windowedQ, State& s, Zpp16s* dst) {
  const Geometry g = s.geometry();
  Correlations c;
  correlate(windowed + g.order, g.lenNew, g.order, c.recursive);
  correlate(windowed + g.order + g.lenNew, g.lenNonRec, g.order, c.newest);

  // Sums of both kinds meet at the smaller exponent, halved.
  const int correlationQ = 2 * windowedQ;
  int sumsQ = s.header.sumsQ;
  const int sumsShift = 1 + std::max(sumsQ - correlationQ, 0), recursiveShift = 1 + std::max(correlationQ - sumsQ, 0);
  const int factor = 65536 - (1 << (16 - s.header.decay));  // of the sums from call to call, Q16
  const auto advanced = [&](int lag) {
    return shifted(Zpp64s{s.sums[lag]} * factor, -sumsShift) + shifted(c.recursive[lag], -recursiveShift);
  };
  const int sumsNorm = normShift(advanced(0), 32);
  sumsQ = std::min(sumsQ, correlationQ) + sumsNorm - 1;
  const int oldShift = 1 + std::max(sumsQ - correlationQ, 0), newShift = 1 + std::max(correlationQ - sumsQ, 0);

  int norm = 0;
  Zpp32s last = 0;
  for (int lag = 0; lag <= g.order; ++lag) {
    s.sums[lag] = rounded(shiftedSat32(advanced(lag), sumsNorm));
    Zpp64s whole = shifted(Zpp64s{s.sums[lag]} * 65536, -oldShift) + shifted(c.newest[lag], -newShift);
    if (lag == 0) {
      whole += whole >> 8;  // white-noise correction
      norm = normShift(whole, 32);
    }
    last = shiftedSat32(whole, norm);
    dst[lag] = rounded(last);
  }
  s.header.sumsQ = static_cast<Zpp16s>(sumsQ);
  return last != 0;
}

}  // namespace

ZppStatus zppsWinHybridGetStateSize_G728_16s(Zpp32s order, Zpp32s lenNew, Zpp32s lenNonRec, Zpp32s* size) {
  if (anyNull(size)) return zppStsNullPointer;
  const Geometry g{order, lenNew, lenNonRec};
  if (!g.isValid()) return zppStsBadSize;
  *size = g.stateSize();
  return zppStsOk;
}

ZppStatus zppsWinHybridInit_G728_16s(const Zpp16s* window, Zpp32s order, Zpp32s lenNew, Zpp32s lenNonRec, Zpp32s decay,
                                     void* state) {
  if (anyNull(window, state)) return zppStsNullPointer;
  const Geometry g{order, lenNew, lenNonRec};
  if (!g.isValid()) return zppStsBadSize;
  if (outside(decay, 1, 15)) return zppStsBadScale;
  State s(state, g, decay);
  std::reverse_copy(window, window + g.length(), s.window);
  std::fill_n(s.historyQ, g.vectors(), Zpp16s{16});
  std::memset(state, 0, static_cast<unsigned>(g.stateSize()));
  s.save();
  return zppStsOk;
}

ZppStatus zppsWinHybrid_G728_16s(const Zpp16s* src, Zpp16s* dst, Zpp32s* valid, void* state) {
  if (anyNull(src, dst, valid, state)) return zppStsNullPointer;
  State s(state);
  const Geometry g = s.geometry();
  if (!g.isValid()) return zppStsBadSize;
  s.load();
  const int n = g.length();
  std::copy(s.history + g.lenNew, s.history + n, s.history);
  std::copy_n(src, g.lenNew, s.history + n - g.lenNew);
  const int q = normShift(s.history, n, 15);
  Zpp16s windowed[kMaxLength];
  for (int k = 0; k < n; ++k) windowed[k] = rounded(shifted(s.history[k] * s.window[k], q));
  *valid = analyse(windowed, q, s, dst);
  s.header.sumsQ = std::min<Zpp16s>(s.header.sumsQ, 41);
  s.save();
  return zppStsOk;
}

ZppStatus zppsWinHybridBlock_G728_16s(const Zpp16s* src, Zpp16s* dst, Zpp32s* valid, void* state) {
  if (anyNull(src, dst, valid, state)) return zppStsNullPointer;
  State s(state);
  const Geometry g = s.geometry();
  if (!g.isValid() || g.lenNew % kVector != 0 || g.length() % kVector != 0) return zppStsBadSize;
  s.load();
  const int vectors = g.vectors(), newVectors = g.lenNew / kVector;
  std::copy(s.history + g.lenNew, s.history + g.length(), s.history);
  std::copy(s.historyQ + newVectors, s.historyQ + vectors, s.historyQ);
  for (int v = 0; v < newVectors; ++v) {
    const Block block = Block::load(src + (kVector + 1) * v);
    const int at = vectors - newVectors + v;
    std::copy_n(block.mantissa, kVector, s.history + kVector * at);
    s.historyQ[at] = static_cast<Zpp16s>(block.q);
  }
  const int q = *std::min_element(s.historyQ, s.historyQ + vectors);
  Zpp16s windowed[kMaxLength];
  for (int k = 0; k < g.length(); ++k)
    windowed[k] = rounded(shifted(Zpp64s{s.history[k]} * s.window[k], 1 + q - s.historyQ[k / kVector]));
  *valid = analyse(windowed, q, s, dst);
  s.save();
  return zppStsOk;
}
