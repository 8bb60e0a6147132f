#include "gsmfr/tables.h"

#include <array>

#include "core/fixed_point.h"
#include "gsmfr/block_amplitude.h"

namespace zpp::gsmfr {

constexpr Zpp16s larSlope[8] = {20480, 20480, 20480, 20480, 13964, 15360, 8534, 9036};
constexpr Zpp16s larOffset[8] = {0, 0, 2048, -2560, 94, -1792, -341, -1144};
constexpr Zpp16s larLowest[8] = {-32, -32, -16, -16, -8, -8, -4, -4};
constexpr Zpp16s larHighest[8] = {31, 31, 15, 15, 7, 7, 3, 3};
constexpr Zpp16s larInverseSlope[8] = {13107, 13107, 13107, 13107, 19223, 17476, 31454, 29708};

constexpr Zpp16s ltpGainLevel[3] = {6554, 16384, 26214};
constexpr Zpp16s ltpGain[4] = {3277, 11469, 21299, 32767};

constexpr Zpp16s weighting[12] = {-134, -374, 0, 2054, 5741, 8192, 5741, 2054, 0, -374, -134, 0};
constexpr Zpp16s inverseMantissa[8] = {29128, 26215, 23832, 21846, 20165, 18725, 17476, 16384};

namespace {

// Mantissas of the block amplitude, (mantissa + 9)/16 in Q15: FAC[0..7], table 5.6
constexpr Zpp16s mantissaLevel[8] = {18431, 20479, 22527, 24575, 26623, 28671, 30719, 32767};

constexpr Zpp16s levelOf(int amplitude, int code) {
  const BlockAmplitude block = decodedAmplitude(amplitude);
  const int shift = 6 - block.exponent;
  const Zpp16s level = mulRoundQ15(mantissaLevel[block.mantissa], static_cast<Zpp16s>((2 * code - 7) * 4096));
  return shr16(addSat16(level, shift == 0 ? 0 : 1 << (shift - 1)), shift);
}

}  // namespace

// clang-format off
#define ROW(a) {levelOf(a, 0), levelOf(a, 1), levelOf(a, 2), levelOf(a, 3), levelOf(a, 4), levelOf(a, 5), levelOf(a, 6), levelOf(a, 7)}
#define ROWS(a) ROW(a), ROW(a + 1), ROW(a + 2), ROW(a + 3), ROW(a + 4), ROW(a + 5), ROW(a + 6), ROW(a + 7)
// clang-format on
constexpr Zpp16s pulseLevel[64][8] = {ROWS(0), ROWS(8), ROWS(16), ROWS(24), ROWS(32), ROWS(40), ROWS(48), ROWS(56)};

constexpr Zpp16s toneWindow[80] = {
    0,     12,    51,    114,   204,   318,   458,   622,   811,   1025,  1262,  1523,  1807,  2114,  2444,  2795,
    3167,  3560,  3972,  4405,  4856,  5325,  5811,  6314,  6832,  7365,  7913,  8473,  9046,  9631,  10226, 10831,
    11444, 12065, 12693, 13326, 13964, 14607, 15251, 15898, 16545, 17192, 17838, 18482, 19122, 19758, 20389, 21014,
    21631, 22240, 22840, 23430, 24009, 24575, 25130, 25670, 26196, 26707, 27201, 27679, 28139, 28581, 29003, 29406,
    29789, 30151, 30491, 30809, 31105, 31377, 31626, 31852, 32053, 32230, 32382, 32509, 32611, 32688, 32739, 32764};

}  // namespace zpp::gsmfr
