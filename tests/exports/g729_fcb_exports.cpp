#include "exports/export_table.h"

namespace test {

std::vector<Export> g729FcbExports() { return {}; }

}  // namespace test
