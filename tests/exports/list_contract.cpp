// Prints the table of exports: one function a line, then its arguments, tab-separated, in the order of the prototype:
//
//   role:element:name:history:count:null:value:length of:history from:history is:part=from,...:refused,...
//
// The reference documentation and the tests of the Python binding take directions, extents and checks from this list, which
// the contract tests prove.
#include <cstdio>
#include <set>

#include "exports/export_table.h"

namespace {

const char* nameOf(test::Argument::Role role) {
  using enum test::Argument::Role;
  return role == in ? "in" : role == out ? "out" : role == inOut ? "inout" : "value";
}

const char* nameOf(test::Element element) {
  using enum test::Element;
  return element == u8    ? "8u"
         : element == s16 ? "16s"
         : element == u16 ? "16u"
         : element == s32 ? "32s"
         : element == u32 ? "32u"
                          : "32f";
}

}  // namespace

int main() {
  for (const test::Export& e : test::allExports()) {
    std::printf("%s\t%d\t%d", e.name.c_str(), e.checks, static_cast<int>(e.status));
    for (const test::Argument& a : e.arguments) {
      std::printf("\t%s:%s:%s:%zu:%zu:%d:%.9g:%s:%s:%s:", nameOf(a.role), nameOf(a.element), a.name.c_str(),
                  a.history / a.perItem, a.count / a.perItem, a.optional, a.value, a.lengthOf.c_str(), a.historyFrom.c_str(),
                  a.historyIs.c_str());
      const char* comma = "";
      for (const test::Part& part : a.parts) std::printf("%s%s=%zu", comma, part.name.c_str(), part.from), comma = ",";
      std::printf(":");
      std::set<ZppStatus> statuses;
      for (const test::Refused& r : a.refused)
        if (statuses.insert(r.status).second) std::printf("%s%d", statuses.size() > 1 ? "," : "", static_cast<int>(r.status));
    }
    std::printf("\n");
  }
}
