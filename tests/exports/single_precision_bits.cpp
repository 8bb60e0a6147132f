// Prints, of every function with single-precision results, a check sum of all its results on all its golden vectors: bits, not
// numbers within a tolerance. They are the same in every build whose arithmetic is that of SSE.
#include <algorithm>
#include <cstdio>
#include <filesystem>

#include "exports/call.h"
#include "support/check_sum.h"

namespace {

using namespace test;
namespace fs = std::filesystem;

bool hasReals(const Export& e) {
  return std::any_of(e.arguments.begin(), e.arguments.end(),
                     [](const Argument& a) { return a.real || (a.isBuffer() && a.element == Element::f32); });
}

}  // namespace

int main() {
  std::vector<fs::path> files;
  for (const auto& entry : fs::recursive_directory_iterator(TEST_DATA_DIR))
    if (entry.path().extension() == ".vec") files.push_back(entry.path());
  std::sort(files.begin(), files.end(), [](const fs::path& a, const fs::path& b) { return a.filename() < b.filename(); });
  const auto table = allExports();
  for (const fs::path& file : files) {
    const std::string stem = file.stem().string(), name = stem.substr(0, stem.find('.'));
    const auto function = std::find_if(table.begin(), table.end(), [&](const Export& e) { return e.name == name; });
    if (function == table.end() || !hasReals(*function)) continue;
    ByteSum sum;
    for (const GoldenCase& golden : readGolden(file.string())) {
      Call call(*function, golden, {});
      call();
      for (const auto& content : call.contents()) sum.add(content.data(), content.size());
    }
    std::printf("%s %016llx\n", stem.c_str(), sum.value());
  }
}
