#include "exports/export_table.h"

namespace test {

std::vector<Export> gsmfrExports() { return {}; }

}  // namespace test
