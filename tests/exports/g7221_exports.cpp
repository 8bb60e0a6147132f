#include "exports/export_table.h"

namespace test {

std::vector<Export> g7221Exports() { return {}; }

}  // namespace test
