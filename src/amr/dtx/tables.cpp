#include "amr/dtx/tables.h"

const Zpp16s lspInitData[10] = {30000, 26000, 21000, 15000, 8000, 0, -8000, -15000, -21000, -26000};
const Zpp16s dtxLogEnAdjust[9] = {-1023, -878, -732, -586, -440, -294, -148, 0, 0};
const Zpp16s lsfHistMeanScale[10] = {20000, 20000, 20000, 20000, 20000, 18000, 16384, 8192, 0, 0};
