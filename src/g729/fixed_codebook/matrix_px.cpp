// Correlation matrices of the impulse response: portable kernels.
#include "g729/fixed_codebook/matrix.h"

using namespace zpp;

namespace {

class PlainSums {
 public:
  explicit PlainSums(Zpp32s start) {
    for (auto& sum : sums_) sum = start;
  }
  void add(Zpp16s x, const Zpp16s* row) {
    for (int j = 0; j < kPositions; ++j) sums_[j] += Zpp32s{x} * row[j];
  }
  void nextColumn(Zpp32s start) {
    for (int j = 0; j + 1 < kPositions; ++j) sums_[j] = sums_[j + 1];
    sums_[kPositions - 1] = start;
  }
  template <class T>
  void store(T* dst) const {
    for (int j = 0; j < kPositions; ++j) storeCorrelation(sums_[j], dst + j);
  }
  template <class T>
  static void transpose(T* block) {
    transposeBlock(block);
  }
  static Zpp32s lone(Zpp32s start) { return start; }
  static Zpp32s accumulate(Zpp32s sum, Zpp16s x) { return sum + Zpp32s{x} * x; }
  static Zpp32s value(Zpp32s sum) { return sum; }

 private:
  Zpp32s sums_[kPositions];
};

// Doubled sums that saturate at every step as the basic operators do; halved when they are read.
class SaturatingSums {
 public:
  explicit SaturatingSums(Zpp32s start) {
    for (auto& sum : sums_) sum = lone(start);
  }
  void add(Zpp16s x, const Zpp16s* row) {
    for (int j = 0; j < kPositions; ++j) sums_[j] = macDbl(sums_[j], x, row[j]);
  }
  void nextColumn(Zpp32s start) {
    for (int j = 0; j + 1 < kPositions; ++j) sums_[j] = sums_[j + 1];
    sums_[kPositions - 1] = lone(start);
  }
  template <class T>
  void store(T* dst) const {
    for (int j = 0; j < kPositions; ++j) storeCorrelation(value(sums_[j]), dst + j);
  }
  template <class T>
  static void transpose(T* block) {
    transposeBlock(block);
  }
  static Zpp32s lone(Zpp32s start) { return 2 * start; }
  static Zpp32s accumulate(Zpp32s sum, Zpp16s x) { return macDbl(sum, x, x); }
  static Zpp32s value(Zpp32s sum) { return sum >> 1; }

 private:
  Zpp32s sums_[kPositions];
};

template <Chain... chains, class T>
void buildMatrix(const Zpp16s* impulse, T* matrix) {
  Zpp16s scaled[kSubframe];
  if (ownScaleImpulse_G729_16s(impulse, scaled))
    correlationMatrix<PlainSums, chains...>(scaled, matrix);
  else
    correlationMatrix<SaturatingSums, chains...>(scaled, matrix);
}

template <class T>
void buildMatrixAnnexD(const Zpp16s* impulse, T* matrix) {
  buildMatrix<kSameTrackAnnexD, kNextTrackAnnexD, kTrackAfterNextAnnexD>(impulse, matrix);
}

}  // namespace

void ownToeplizMatrix_G729_16s_PX(const Zpp16s* impulse, Zpp16s* matrix) {
  buildMatrix<kNextTrack, kTrackAfterNext>(impulse, matrix);
}
void ownToeplizMatrix_G729_16s32s_PX(const Zpp16s* impulse, Zpp32s* matrix) {
  buildMatrix<kNextTrack, kTrackAfterNext>(impulse, matrix);
}
void ownToeplizMatrix_G729D_16s_PX(const Zpp16s* impulse, Zpp16s* matrix) { buildMatrixAnnexD(impulse, matrix); }
void ownToeplizMatrix_G729D_16s32s_PX(const Zpp16s* impulse, Zpp32s* matrix) { buildMatrixAnnexD(impulse, matrix); }

void ownCorrMatrix_G729E_16s_PX(const Zpp16s* impulse, Zpp16s* matrix) {
  if (plainSumsHoldAnnexE(impulse))
    correlationMatrixAnnexE<PlainSums>(impulse, matrix);
  else
    correlationMatrixAnnexE<SaturatingSums>(impulse, matrix);
}
