#include "exports/export_table.h"

namespace test {

std::vector<Export> g723CodecExports() { return {}; }

}  // namespace test
