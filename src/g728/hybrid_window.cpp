// Hybrid window and autocorrelation of the backward analyses (ITU-T G.728 clause 3.7, blocks 36, 43 and 49, Annex G).
//
// The newest part of the window, nonRecursive samples long, is summed anew each time; all before it decays exponentially and
// is carried on by recursive sums, into which the samples go that leave the newest part.
#include "g728/hybrid_window.h"

#include "core/checks.h"
#include "core/kernels.h"
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
    std::fill_n(sums, g.order + 1, Zpp16s{});
    std::fill_n(history, g.length(), Zpp16s{});
    std::fill_n(historyQ, g.vectors(), Zpp16s{16});
  }
  Geometry geometry() const { return {header.order, header.lenNew, header.lenNonRec}; }

  void load() {
    copyParts([](Zpp16s* here, Zpp8u* there, int count) { std::memcpy(here, there, bytes(count)); });
    const int vectors = geometry().vectors();
    for (int v = 0; v < vectors; ++v) historyQ[v] = std::clamp<Zpp16s>(historyQ[v], -64, 64);
  }
  void save() {
    std::memcpy(block_, &header, sizeof header);
    copyParts([](const Zpp16s* here, Zpp8u* there, int count) { std::memcpy(there, here, bytes(count)); });
  }

  Header header;
  Zpp16s sums[kMaxOrder + 1];
  Zpp16s window[kMaxLength], history[kMaxLength];
  Zpp16s historyQ[kMaxLength / kVector + 1];

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

// Samples under the window, oldest first, with their common Q. Room behind them for whole vectors
struct Windowed {
  Zpp16s samples[kMaxLength + 8];
  int q;
};

// The exact sum of products of `count` samples with those before them by each lag
void correlate(const Zpp16s* windowed, int count, int order, Zpp64s* dst) {
  for (int lag = 0; lag <= order; ++lag) {
    dst[lag] = 0;
    for (int n = 0; n < count; ++n) dst[lag] += windowed[n] * windowed[n - lag];
  }
}
void correlate(const Zpp16s* windowed, int count, int order, Zpp32s* dst) {
  ownAutoCorr_Inv_16s32s(windowed, count, dst, order + 1);
}

// All lags but the first. Returns the last autocorrelation before rounding.
Zpp32s finishLags(const Zpp32s* leaving, const Zpp32s* newest, Zpp16s* sums, Zpp16s* dst, int order, const LagShifts& shifts) {
  return ownFinishLags_G728_32s16s(leaving, newest, sums, dst, order, shifts);
}
Zpp32s finishLags(const Zpp64s* leaving, const Zpp64s* newest, Zpp16s* sums, Zpp16s* dst, int order, const LagShifts& s) {
  Zpp32s last = 0;
  for (int lag = 0; lag < order; ++lag) {
    sums[lag] = rounded(shiftedSat32(advancedSum(sums[lag], leaving[lag], s), s.sums));
    last = shiftedSat32(wholeSum(sums[lag], newest[lag], s), s.result);
    dst[lag] = rounded(last);
  }
  return last;
}

// One analysis with sums of the given type. Returns whether the last lag is not zero before rounding.
template <class Sum>
bool analyse(const Windowed& w, State& s, Zpp16s* dst) {
  const Geometry g = s.geometry();
  Sum leaving[kMaxOrder + 1], newest[kMaxOrder + 1];
  correlate(w.samples + g.order, g.lenNew, g.order, leaving);
  correlate(w.samples + g.order + g.lenNew, g.lenNonRec, g.order, newest);

  // Sums of both kinds meet at the smaller exponent, halved. The first lag normalises all.
  const int q = 2 * w.q;
  int sumsQ = s.header.sumsQ;
  LagShifts shifts{s.header.decay, 1 + std::max(sumsQ - q, 0), 1 + std::max(q - sumsQ, 0), 0, 0, 0, 0};
  const Zpp64s energy = advancedSum(s.sums[0], leaving[0], shifts);
  shifts.sums = normShift(energy, 32);
  s.sums[0] = rounded(shiftedSat32(energy, shifts.sums));
  sumsQ = std::min(sumsQ, q) + shifts.sums - 1;
  shifts.newSums = 1 + std::max(sumsQ - q, 0);
  shifts.newest = 1 + std::max(q - sumsQ, 0);
  Zpp64s whole = wholeSum(s.sums[0], newest[0], shifts);
  whole += whole >> 8;  // white-noise correction
  shifts.result = normShift(whole, 32);
  dst[0] = rounded(shiftedSat32(whole, shifts.result));
  s.header.sumsQ = static_cast<Zpp16s>(sumsQ);
  return finishLags(leaving + 1, newest + 1, s.sums + 1, dst + 1, g.order, shifts) != 0;
}

bool analyse(const Windowed& w, State& s, Zpp16s* dst) {
  const Geometry g = s.geometry();
  // No sum of products exceeds the largest magnitude times the sum of magnitudes, whose square is at most the number of samples
  // times their energy. In the codec's geometries it always fits.
  // The largest magnitude of 16 bits may stand for one more.
  const Zpp64s largest = ownMaxAbs_16s(w.samples, g.length());
  const Zpp64s limit = kMax32 / std::max<Zpp64s>(largest, 1);
  const auto fitsPart = [&](const Zpp16s* part, int count) {
    return count * ownDotProd_16s(part, part, count) <= limit * limit;
  };
  const bool fits =
      largest < kMax16 && fitsPart(w.samples + g.order, g.lenNew) && fitsPart(w.samples + g.order + g.lenNew, g.lenNonRec);
  return fits ? analyse<Zpp32s>(w, s, dst) : analyse<Zpp64s>(w, s, dst);
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
  Windowed windowed;
  windowed.q = normShift(std::min<int>(ownMin_16s(s.history, n), 0), std::max<int>(ownMax_16s(s.history, n), 0), 15);
  ownWindow_G728_16s(s.history, s.window, windowed.samples, n, windowed.q);
  *valid = analyse(windowed, s, dst);
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
  Windowed windowed;
  windowed.q = *std::min_element(s.historyQ, s.historyQ + vectors);
  Zpp16s shift[kMaxLength / kVector];
  for (int v = 0; v < vectors; ++v) shift[v] = static_cast<Zpp16s>(1 + windowed.q - s.historyQ[v]);
  ownWindowBlock_G728_16s(s.history, s.window, shift, windowed.samples, vectors);
  *valid = analyse(windowed, s, dst);
  s.save();
  return zppStsOk;
}
