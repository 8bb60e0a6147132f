#include "exports/export_table.h"

namespace test {

std::vector<Export> amrCodecExports() { return {}; }

}  // namespace test
