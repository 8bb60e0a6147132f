#include "exports/export_table.h"

namespace test {

std::vector<Export> amrExports() { return {}; }

}  // namespace test
