// Quantisation and vector Huffman coding of one region of 20 MLT coefficients (ITU-T G.722.1 clause 3.6): entry and coder.
#include "core/checks.h"
#include "core/fixed_point.h"
#include "g7221/kernels.h"
#include "g7221/tables.h"

using namespace zpp;

namespace {

// Packs codes into 32-bit words, most significant bit first.
class BitPacker {
 public:
  explicit BitPacker(Zpp32u* words) : words_(words) {}

  // length: 1..20
  void put(Zpp32u code, int length) {
    bits_ += length;
    free_ -= length;
    if (free_ >= 0) {
      word_ |= code << free_;
      return;
    }
    *words_++ = word_ | code >> -free_;
    free_ += 32;
    word_ = code << free_;
  }
  // Writes the last word, full or not, and returns the number of bits.
  int finish() {
    *words_ = word_;
    return bits_;
  }

 private:
  Zpp32u* words_;
  Zpp32u word_ = 0;
  int free_ = 32, bits_ = 0;
};

// A vector's code is the code word of its levels, then one sign bit for each level that is not zero, 1 for positive.
template <int dimension, int maxLevel>
int codeRegion(const Zpp16s* levels, const Zpp16s* src, const Zpp16s* lengths, const Zpp16u* codes, Zpp32u* dst) {
  BitPacker packer(dst);
  for (int n = 0; n < 20; n += dimension) {
    int index = 0, nonzero = 0;
    Zpp32u signs = 0;
    for (int i = n; i < n + dimension; ++i) {
      const bool coded = levels[i] != 0;
      index = index * (maxLevel + 1) + levels[i];
      nonzero += coded;
      signs = (signs << coded) | (coded & (src[i] > 0));
    }
    packer.put(Zpp32u{codes[index]} << nonzero | signs, lengths[index] + nonzero);
  }
  return packer.finish();
}

}  // namespace

void ownHuffmanEncode_G722_16s32u(Zpp32s category, Zpp32s powerIndex, const Zpp16s* src, Zpp32u* dst, Zpp32s* bitCount) {
  Zpp16s levels[20];
  ownPreHuffman_16s(src, levels, category, powerIndex);
  switch (category) {
    case 0:
      *bitCount = codeRegion<2, 13>(levels, src, cnstMltSqvhBitcountCtg0_G722, cnstMltSqvhCodeCtg0_G722, dst);
      break;
    case 1:
      *bitCount = codeRegion<2, 9>(levels, src, cnstMltSqvhBitcountCtg1_G722, cnstMltSqvhCodeCtg1_G722, dst);
      break;
    case 2:
      *bitCount = codeRegion<2, 6>(levels, src, cnstMltSqvhBitcountCtg2_G722, cnstMltSqvhCodeCtg2_G722, dst);
      break;
    case 3:
      *bitCount = codeRegion<4, 4>(levels, src, cnstMltSqvhBitcountCtg3_G722, cnstMltSqvhCodeCtg3_G722, dst);
      break;
    case 4:
      *bitCount = codeRegion<4, 3>(levels, src, cnstMltSqvhBitcountCtg4_G722, cnstMltSqvhCodeCtg4_G722, dst);
      break;
    case 5:
      *bitCount = codeRegion<5, 2>(levels, src, cnstMltSqvhBitcountCtg5_G722, cnstMltSqvhCodeCtg5_G722, dst);
      break;
    case 6:
      *bitCount = codeRegion<5, 1>(levels, src, cnstMltSqvhBitcountCtg6_G722, cnstMltSqvhCodeCtg6_G722, dst);
      break;
    default:  // category 7 carries noise fill only: no codes
      *dst = 0;
      *bitCount = 0;
  }
}

ZppStatus zppsHuffmanEncode_G722_16s32u(Zpp32s category, Zpp32s qp, const Zpp16s* src, Zpp32u* dst, Zpp32s* bitCount) {
  if (anyNull(src, dst, bitCount)) return zppStsNullPointer;
  if (outside(category, 0, 7)) return zppStsBadScale;
  if (outside(qp, 0, 63)) return zppStsBadScale;
  ownHuffmanEncode_G722_16s32u(category, qp, src, dst, bitCount);
  return zppStsOk;
}
