#include "exports/export_table.h"

namespace test {

std::vector<Export> g723Exports() { return {}; }

}  // namespace test
