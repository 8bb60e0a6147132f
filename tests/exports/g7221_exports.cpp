#include "exports/export_table.h"

namespace test {

std::vector<Export> g7221Exports() {
  const auto frame = in("src", 320), result = out("dst", 320);
  return {
      row(FUNCTION(zppsDecomposeMLTToDCT_G722_16s), frame, inOut("old", 320), result),
      row(FUNCTION(zppsDecomposeDCTToMLT_G722_16s), frame, inOut("old", 160), result),
      row(FUNCTION(zppsDCTFwd_G722_16s), frame, result),
      row(FUNCTION(zppsDCTInv_G722_16s), frame, result),
      row(FUNCTION(zppsHuffmanEncode_G722_16s32u), scale("category", 3, {-1, 8, INT32_MIN, INT32_MAX}),
          scale("qp", 38, {-1, 64, INT32_MIN, INT32_MAX}), in("src", 20), out("words", 6), out("bits", 1)),
  };
}

}  // namespace test
