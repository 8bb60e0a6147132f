// Algebraic codebook search: portable kernel.
#include "core/fixed_point.h"
#include "g723/fixed_codebook/kernels.h"

using namespace zpp;

int ownAlgebraicSearch_G723_16s_PX(const Zpp16s* correlations, const Zpp16s (*matrix)[kPlaces], Zpp16s threshold, int budget,
                                   AlgebraicChoice* best) {
  for (int p0 = 0; p0 < kTrackPlaces; ++p0)
    for (int p1 = kTrackPlaces; p1 < 2 * kTrackPlaces; ++p1)
      for (int p2 = 2 * kTrackPlaces; p2 < 3 * kTrackPlaces; ++p2) {
        const auto three = [=](const Zpp16s* grid) { return addSat16(addSat16(grid[p0], grid[p1]), grid[p2]); };
        const int grid = three(correlations + kPlaces) > three(correlations) ? 1 : 0;
        const Zpp16s* onGrid = correlations + kPlaces * grid;
        const Zpp16s sum = three(onGrid);
        if (sum <= threshold) continue;
        const Zpp16s *row0 = matrix[p0], *row1 = matrix[p1], *row2 = matrix[p2];
        const Zpp32s squares = row0[p0] + row1[p1] + row2[p2], products = row0[p1] + row0[p2] + row1[p2];
        for (int p3 = 3 * kTrackPlaces; p3 < kPlaces; ++p3) {
          const Zpp16s all = addSat16(sum, onGrid[p3]);
          // Always of the even grid. 32 times 2^15 at most, less the halves of one bit: the result has 16 bits.
          const Zpp32s cross = products + row0[p3] + row1[p3] + row2[p3];
          const auto energy = static_cast<Zpp16s>((2 * (squares + matrix[p3][p3]) + 4 * cross) >> 5);
          const Zpp16s score = mulQ15(all, all);
          if (mulDbl(score, best->energy) > mulDbl(best->score, energy)) *best = {{p0, p1, p2, p3}, grid, score, energy};
        }
        if (--budget <= 0) return budget;
      }
  return budget;
}
