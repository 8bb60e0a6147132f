#include "exports/export_table.h"

namespace test {

std::vector<Export> lpcExports() { return {}; }

}  // namespace test
