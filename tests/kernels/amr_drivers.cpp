#include "kernels/rig.h"

namespace test {

void runAmrKernels(const Options&, Tally&) {}

}  // namespace test
