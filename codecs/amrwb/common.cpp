#include "codecs/amrwb/common.h"

namespace codecs::amrwb {

const Zpp16s initialIsf[kOrder] = {1024, 2048,  3072,  4096,  5120,  6144,  7168,  8192,
                                   9216, 10240, 11264, 12288, 13312, 14336, 15360, 3840};
const Zpp16s initialIsp[kOrder] = {32138, 30274,  27246,  23170,  18205,  12540,  6393,   0,
                                   -6393, -12540, -18205, -23170, -27246, -30274, -32138, 1475};

}  // namespace codecs::amrwb
