// Writes include/zppsc/extents.hpp: the shapes of the functions that take buffers only, so that every buffer has one shape. A
// buffer that the function does not use up to its last element in the contract run counts as open.
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>

#include "exports/call.h"

namespace test {
namespace {

bool usesLastElement(const Export& e, std::size_t argument) {
  const pid_t child = fork();
  if (child == 0) {
    Call call(e, {Place::Kind::end});
    // One element further: the last one lies in an unreadable page.
    const Argument& a = e.arguments[argument];
    call[argument].pointer = static_cast<unsigned char*>(call[argument].pointer) + a.perItem * sizeOf(a.element);
    call();
    _exit(0);
  }
  int status = 0;
  waitpid(child, &status, 0);
  return WIFSIGNALED(status);
}

void write() {
  std::puts(
      "// The extents of the buffers of those functions of zppsc.h whose shapes do not depend on other arguments, in the order "
      "of\n"
      "// the arguments; 0 where a buffer has none. Written by the program tests/exports/extents.cpp.\n"
      "#ifndef ZPPSC_EXTENTS_HPP\n"
      "#define ZPPSC_EXTENTS_HPP\n\n"
      "#include <array>\n"
      "#include <cstdint>\n\n"
      "#include \"zppsc.h\"\n\n"
      "namespace zpp {\n\n"
      "template <auto function>\n"
      "inline constexpr std::array<std::uint16_t, 0> extents{};\n");
  std::vector<std::string> lines;
  for (const Export& e : allExports()) {
    if (e.arguments.empty() ||
        !std::all_of(e.arguments.begin(), e.arguments.end(), [](const Argument& a) { return a.isBuffer(); }))
      continue;
    std::string extents;
    bool any = false;
    for (std::size_t i = 0; i < e.arguments.size(); ++i) {
      const Argument& a = e.arguments[i];
      const std::size_t extent = a.count > 1 && !a.optional && usesLastElement(e, i) ? a.count / a.perItem : 0;
      any = any || extent != 0;
      extents += (i == 0 ? "" : ", ") + std::to_string(extent);
    }
    if (any) lines.push_back("template <>\ninline constexpr std::uint16_t extents<" + e.name + ">[] = {" + extents + "};");
  }
  std::sort(lines.begin(), lines.end());
  for (const std::string& line : lines) std::puts(line.c_str());
  std::puts("\n}  // namespace zpp\n\n#endif");
}

}  // namespace
}  // namespace test

int main() { test::write(); }
