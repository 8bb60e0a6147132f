#include "codecs/amrwb/homing.h"

namespace codecs::amrwb {

namespace {

// What the encoder makes of its homing frame, by mode: 15 bits a word, the first bit in bit 14, dhf_M7k to dhf_M24k
constexpr int kWords = 32;
constexpr Zpp16s homingFrames[kModes][kWords] = {
    {3168, 29954, 29213, 16121, 64, 13440, 30624, 16430, 19008},
    {3168, 31665, 9943, 9123, 15599, 4358, 20248, 2048, 17040, 27787, 16816, 13888},
    {3168, 31665, 9943, 9128, 3647, 8129, 30930, 27926, 18880, 12319, 496, 1042, 4061, 20446, 25629, 28069, 13948},
    {3168, 31665, 9943, 9131, 24815, 655, 26616, 26764, 7238, 19136, 6144, 88, 4158, 25733, 30567, 30494, 221, 20321, 17823},
    {3168,  31665, 9943, 9131,  24815, 700,   3824,  7271, 26400, 9528, 6594,
     26112, 108,   2068, 12867, 16317, 23035, 24632, 7528, 1752,  6759, 24576},
    {3168, 31665, 9943,  9135, 14787, 14423, 30477, 24927, 25345, 30154, 916,   5728, 18978,
     2048, 528,   16449, 2436, 3581,  23527, 29479, 8237,  16810, 27091, 19052, 0},
    {3168, 31665, 9943, 9129, 8637,  31807, 24646, 736,   28643, 2977,  2566,  25564, 12930, 13960,
     2048, 834,   3270, 4100, 26920, 16237, 31227, 17667, 15059, 20589, 30249, 29123, 0},
    {3168,  31665, 9943, 9132, 16748, 3202,  28179, 16317, 30590, 15857, 19960, 8818, 21711, 21538, 4260, 16690,
     20224, 3666,  4194, 9497, 16320, 15388, 5755,  31551, 14080, 3574,  15932, 50,   23392, 26053, 31216},
    {3168, 31665, 9943, 9134,  24776, 5857,  18475, 28535, 29662, 14321, 16725, 4396,  29353, 10003, 17068, 20504,
     720,  0,     8465, 12581, 28863, 24774, 9709,  26043, 7941,  27649, 13965, 15236, 18026, 22047, 16681, 3968},
};
// Bits of the first part, which is enough to keep a decoder at home that is there: prmnofsf
constexpr Zpp16s firstPart[kModes] = {63, 81, 100, 108, 116, 128, 136, 152, 156};

// The gains of the high band, which do not count: the last field of every subframe
bool isHighBandGain(int mode, int bit) {
  constexpr int header = 1 + 46, first = 109, second = 106, gain = 4;  // bits of subframes with and without an own lag
  if (mode != kHighestMode || bit < header) return false;
  const int inPair = (bit - header) % (first + second);
  return (inPair < first ? first - inPair : first + second - inPair) <= gain;
}

}  // namespace

bool isHomingFrame(const Zpp8u* bits, int mode, bool wholly) {
  const int count = wholly || mode == kHighestMode ? bitsOf(mode) : firstPart[mode];
  for (int n = 0; n < count; ++n)
    if (bits[n] != (homingFrames[mode][n / 15] >> (14 - n % 15) & 1) && !isHighBandGain(mode, n)) return false;
  return true;
}

}  // namespace codecs::amrwb
