// The transforms' factors as the SSE2 kernels want them: repeated for eight lanes, with the rotations' signs written out.
#pragma once

#include "zppsc.h"

// One rotation of four pairs (a, b) of lanes: products of pairs with `low` become the lower four lanes, with `high` the upper.
struct LaneRotation {
  Zpp16s low[8], high[8];
};

struct alignas(16) DctFactors {
  Zpp16s core[10][5][8];       // row, pair of columns, the pair four times
  LaneRotation column[30];     // stages of 10 and 20 pairs: all lanes rotate alike; low gives the first half, high the last
  LaneRotation across[40][3];  // stages of 40, 80, 160 pairs, on lanes that hold different blocks; see dct_w7.cpp
};

// Arranged from cnstDCTCoreFwd_G722 and cnstCosSinFwd_G722, cnstDCTCoreInv_G722 and cnstCosSinInv_G722
extern const DctFactors dctFactorsFwd, dctFactorsInv;
