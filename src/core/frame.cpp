// Version record.
#include "zppsc.h"

namespace {

constexpr char kLevelName[] = ZPPSC_LEVEL_NAME;

constexpr ZppLibraryVersion kVersion = {
    4, 1, 12, 5, {kLevelName[0], kLevelName[1], 0, 0}, "libzppsc.so.4", "v4.1", "Jul 22 2004"};

}  // namespace

const ZppLibraryVersion* zppscGetLibVersion(void) { return &kVersion; }
