#include "exports/export_table.h"

namespace test {

std::vector<Export> g729GainExports() { return {}; }

}  // namespace test
