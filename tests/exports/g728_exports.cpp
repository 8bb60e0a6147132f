#include "exports/export_table.h"

namespace test {

std::vector<Export> g728Exports() { return {}; }

}  // namespace test
