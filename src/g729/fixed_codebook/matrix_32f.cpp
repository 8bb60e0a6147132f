// Correlation matrices of the impulse response in single precision (ITU-T G.729 clause 3.8.1, as in Annexes C and C+)
#include "core/checks.h"
#include "g729/fixed_codebook/fixed_codebook_32f.h"
#include "g729/fixed_codebook/matrix.h"

using namespace zpp;

namespace {

class RealSums {
 public:
  explicit RealSums(Zpp32f start) {
    for (auto& sum : sums_) sum = start;
  }
  void add(Zpp32f x, const Zpp32f* row) {
    for (int j = 0; j < kPositions; ++j) sums_[j] += x * row[j];
  }
  void nextColumn(Zpp32f start) {
    for (int j = 0; j + 1 < kPositions; ++j) sums_[j] = sums_[j + 1];
    sums_[kPositions - 1] = start;
  }
  void store(Zpp32f* dst) const {
    for (int j = 0; j < kPositions; ++j) dst[j] = sums_[j];
  }
  static void transpose(Zpp32f* block) { transposeBlock(block); }
  static Zpp32f lone(Zpp32f start) { return start; }
  static Zpp32f accumulate(Zpp32f sum, Zpp32f x) { return sum + x * x; }
  static Zpp32f value(Zpp32f sum) { return sum; }

 private:
  Zpp32f sums_[kPositions];
};

void ownToeplizMatrix_G729_32f(const Zpp32f* impulse, Zpp32f* matrix) {
  correlationMatrix<RealSums, kNextTrack, kTrackAfterNext>(impulse, matrix);
}

}  // namespace

void ownToeplizMatrix_G729D_32f(const Zpp32f* impulse, Zpp32f* matrix) {
  correlationMatrix<RealSums, kSameTrackAnnexD, kNextTrackAnnexD, kTrackAfterNextAnnexD>(impulse, matrix);
}

void ownCorrMatrix_G729E_32f(const Zpp32f* impulse, Zpp32f* matrix) {
  const ReversedTracks<Zpp32f> g(impulse);
  correlateDiagonals<RealSums>(g, 0, [matrix](int entry, Zpp32f sum) { matrix[entry] = sum / 2; });
  correlateTracks<RealSums, 1>(
      g, 0, [matrix](int a, int i, const RealSums& row) { row.store(matrix + kDiagonals + kBlock * a + kPositions * i); });
}

ZppStatus zppsToeplizMatrix_G729_32f(const Zpp32f* impulse, Zpp32f* matrix) {
  if (anyNull(impulse, matrix)) return zppStsNullPointer;
  ownToeplizMatrix_G729_32f(impulse, matrix);
  return zppStsOk;
}

ZppStatus zppsToeplizMatrix_G729D_32f(const Zpp32f* impulse, Zpp32f* matrix) {
  if (anyNull(impulse, matrix)) return zppStsNullPointer;
  ownToeplizMatrix_G729D_32f(impulse, matrix);
  return zppStsOk;
}
