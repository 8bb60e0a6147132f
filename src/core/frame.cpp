// Version record.
#include "core/variants.h"

using namespace zpp;

namespace {

constexpr char kLevelNames[][4] = {"px", "a6", "w7", "t7", "v3"};
constexpr const char* kLevelName = kLevelNames[static_cast<int>(buildLevel)];

constexpr ZppLibraryVersion kVersion = {
    4, 1, 12, 5, {kLevelName[0], kLevelName[1], 0, 0}, "libzppsc.so.4", "v4.1", "Jul 22 2004"};

}  // namespace

const ZppLibraryVersion* zppscGetLibVersion(void) { return &kVersion; }
