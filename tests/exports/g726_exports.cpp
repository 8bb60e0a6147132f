#include "exports/export_table.h"

namespace test {

std::vector<Export> g726Exports() { return {}; }

}  // namespace test
