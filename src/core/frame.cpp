// Version record.
#include "zppsc.h"

namespace {

#define TEXT(x) #x
#define VERSION_TEXT(major, minor) "v" TEXT(major) "." TEXT(minor)

constexpr char kLevelName[] = ZPPSC_LEVEL_NAME;

constexpr ZppLibraryVersion kVersion = {ZPPSC_MAJOR,
                                        ZPPSC_MINOR,
                                        12,
                                        5,
                                        {kLevelName[0], kLevelName[1], 0, 0},
                                        "libzppsc.so.4",
                                        VERSION_TEXT(ZPPSC_MAJOR, ZPPSC_MINOR),
                                        "Jul 22 2004"};

}  // namespace

const ZppLibraryVersion* zppscGetLibVersion(void) { return &kVersion; }
