#include "kernels/rig.h"

namespace test {

void runLpcKernels(const Options&, Tally&) {}

}  // namespace test
