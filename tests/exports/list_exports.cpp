// Prints the table of exports, a JSON object a line, for the tests of other languages' bindings.
#include <cstdio>

#include "exports/export_table.h"

int main() {
  for (const test::Export& e : test::allExports()) {
    std::printf("{\"name\": \"%s\", \"checks\": %s, \"status\": %d, \"arguments\": [", e.name.c_str(),
                e.checks ? "true" : "false", static_cast<int>(e.status));
    const char* separator = "";
    for (const test::Argument& a : e.arguments) {
      using enum test::Argument::Role;
      const char* role = a.role == in ? "in" : a.role == out ? "out" : a.role == inOut ? "inOut" : "scalar";
      std::printf(
          "%s{\"role\": \"%s\", \"name\": \"%s\", \"count\": %zu, \"history\": %zu, \"optional\": %s, \"value\": %.9g, ",
          separator, role, a.name.c_str(), a.count / a.perItem, a.history, a.optional ? "true" : "false", a.value);
      std::printf("\"lengthOf\": \"%s\", \"historyFrom\": \"%s\", \"historyIs\": \"%s\", \"parts\": {", a.lengthOf.c_str(),
                  a.historyFrom.c_str(), a.historyIs.c_str());
      const char* comma = "";
      for (const test::Part& part : a.parts) std::printf("%s\"%s\": %zu", comma, part.name.c_str(), part.from), comma = ", ";
      std::printf("}}");
      separator = ", ";
    }
    std::printf("]}\n");
  }
}
