#include "exports/export_table.h"

namespace test {

std::vector<Export> amrwbExports() { return {}; }

}  // namespace test
