#include "exports/export_table.h"

namespace test {

std::vector<Export> g726Exports() {
  // An unsigned length: nothing but 0 is refused.
  Argument len = value("len", 0).refusing({0}, zppStsBadSize, 1);
  len.lengthOf = "src";
  const Argument rate = choice("rate", ZPP_RATE_32000, {0, -1, 16, 18, 21, 25, 16000, INT32_MIN});
  const Argument law = value("law", 1).refusing({-1, 3, INT32_MIN}, zppStsOutOfRange, 3);
  return {
      row(FUNCTION(zppsEncodeGetStateSize_G726_16s8u), result("size")),
      row(FUNCTION(zppsEncodeInit_G726_16s8u), out("state", 88), rate),
      row(FUNCTION(zppsEncode_G726_16s8u),
          inOut("state", 88).preparedBy([](void* p) { zppsEncodeInit_G726_16s8u(p, ZPP_RATE_32000); }), in("src", 37),
          out("dst", 37), len),
      row(FUNCTION(zppsDecodeGetStateSize_G726_8u16s), result("size")),
      row(FUNCTION(zppsDecodeInit_G726_8u16s), out("state", 92), rate, law),
      row(FUNCTION(zppsDecode_G726_8u16s),
          inOut("state", 92).preparedBy([](void* p) { zppsDecodeInit_G726_8u16s(p, ZPP_RATE_32000, 1); }), in("src", 37),
          out("dst", 37), len),
  };
}

}  // namespace test
