#include "kernels/rig.h"

namespace test {

void runG729PostfilterKernels(const Options& options, Tally& tally);

void runG729Kernels(const Options& options, Tally& tally) { runG729PostfilterKernels(options, tally); }

}  // namespace test
