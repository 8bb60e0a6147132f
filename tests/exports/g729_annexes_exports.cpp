#include "exports/export_table.h"

namespace test {

std::vector<Export> g729AnnexesExports() { return {}; }

}  // namespace test
