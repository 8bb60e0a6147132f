// Voice activity detection (3GPP TS 26.194): twelve sub-band levels against a background-noise estimate.
#include <algorithm>
#include <cstring>

#include "amrwb/arithmetic.h"
#include "core/checks.h"

using namespace zpp;
using namespace zpp::amrwb;

namespace {

constexpr int kBands = 12, kStateSize = 148;
constexpr Zpp16s kNoiseMin = 40, kNoiseMax = 20000, kNoiseInit = 150;
constexpr int kStationaryFrames = 20;
// Masks of the decision register: bit 14 the current frame, bit 13 the one before ...
constexpr int kThisFrame = 0x4000, kLast4 = 0x7800, kLast8 = 0x7f80;

struct VadState {
  Zpp16s noise[kBands], average[kBands], old[kBands];  // levels: background estimate, long-term average, last frame
  Zpp16s tail[kBands] = {};                            // the end of the last frame, which belongs to this one's level
  Zpp16s fifthOrder[5][2] = {}, thirdOrder[6] = {};    // filter bank
  Zpp16s burst = 0, hang = 0, stationary = 0, decisions = 0;
  Zpp16s levelCount = 0, maximum = 0, activityCount = 0, speechLevel = 2050;
  Zpp16s previousPower[2] = {};  // a 32-bit value: the structure needs no more than 16-bit alignment
  VadState() {
    std::fill_n(noise, kBands, kNoiseInit);
    std::fill_n(average, kBands, kNoiseInit);
    std::fill_n(old, kBands, kNoiseInit);
  }
};
static_assert(sizeof(VadState) == kStateSize);

// --- Filter bank (clause 3.3.1) ---------------------------------------------------------------------------------------------

// Saturation behind a branch that is hardly ever taken: off the way from one sample to the next
constexpr Zpp16s seldomSat16(Zpp32s x) {
  if (x != static_cast<Zpp16s>(x)) [[unlikely]]
    return sat16(x);
  return static_cast<Zpp16s>(x);
}

// One section of an all-pass filter
constexpr Zpp16s allPass(Zpp16s x, Zpp16s coefficient, Zpp16s& mem) {
  const Zpp16s u = seldomSat16(x - mulQ15(coefficient, mem)), y = seldomSat16(mem + mulQ15(coefficient, u));
  mem = u;
  return y;
}

// Splits a pair of neighbouring samples of a band into a sample of its lower (a) and of its upper half (b).
void split(Zpp16s& a, Zpp16s& b, Zpp16s* mem) {
  const Zpp32s v = allPass(a, 21955, mem[0]), w = allPass(b, 6390, mem[1]);
  a = static_cast<Zpp16s>((v + w) >> 1);
  b = static_cast<Zpp16s>((v - w) >> 1);
}
void split(Zpp16s& a, Zpp16s& b, Zpp16s& mem) {
  const Zpp32s v = a, w = allPass(b, 13363, mem);
  a = static_cast<Zpp16s>((v + w) >> 1);
  b = static_cast<Zpp16s>((v - w) >> 1);
}

// Every level of the tree works in place: its bands lie interleaved at growing strides.
void filterBank(Zpp16s* t, VadState& s) {
  for (int i = 0; i < 256; i += 2) split(t[i], t[i + 1], s.fifthOrder[0]);
  for (int i = 0; i < 256; i += 4) {
    split(t[i], t[i + 2], s.fifthOrder[1]);
    split(t[i + 1], t[i + 3], s.fifthOrder[2]);
  }
  for (int i = 0; i < 256; i += 8) {
    split(t[i], t[i + 4], s.fifthOrder[3]);
    split(t[i + 2], t[i + 6], s.fifthOrder[4]);
    split(t[i + 3], t[i + 7], s.thirdOrder[0]);
  }
  for (int i = 0; i < 256; i += 16) {
    split(t[i], t[i + 8], s.thirdOrder[1]);
    split(t[i + 4], t[i + 12], s.thirdOrder[2]);
    split(t[i + 6], t[i + 14], s.thirdOrder[3]);
  }
  for (int i = 0; i < 256; i += 32) {
    split(t[i], t[i + 16], s.thirdOrder[4]);
    split(t[i + 8], t[i + 24], s.thirdOrder[5]);
  }
}

// Where a band's samples lie, how many of a frame count for the next one, and the scale of its level
struct Band {
  int stride, offset, tail, shift;
};
constexpr Band kBand[kBands] = {{32, 0, 6, 17},   {32, 16, 6, 17}, {32, 24, 6, 17}, {32, 8, 6, 17},
                                {16, 12, 12, 16}, {16, 4, 12, 16}, {16, 6, 12, 16}, {16, 14, 12, 16},
                                {8, 2, 24, 15},   {8, 3, 24, 15},  {8, 7, 24, 15},  {4, 1, 48, 14}};

Zpp16s bandLevel(const Zpp16s* t, const Band& band, Zpp16s& tail) {
  const int count = kFrame / band.stride;
  const auto sum = [&](Zpp32s start, int from, int to) {
    for (int i = from; i < to; ++i) start = macDbl(start, 1, absSat16(t[band.stride * i + band.offset]));
    return start;
  };
  const Zpp32s end = sum(0, count - band.tail, count);
  const Zpp32s all = sum(addSat32(end, shlSat32(tail, 16 - band.shift)), 0, count - band.tail);
  tail = high16(shlSat32(end, band.shift));
  return high16(shlSat32(all, band.shift));
}

// --- Decision (clauses 3.3.3 to 3.3.6)
// ------------------------------------------------------------------------------------------

// A logarithm that falls by 1024 where x doubles
Zpp16s inverseLog2(Zpp16s x) {
  if (x <= 0) x = 1;
  const int shift = norm16(x);
  Zpp16s mantissa = shlSat16(x, shift);
  for (int i = 0; i < 3; ++i) mantissa = mulQ15(mantissa, mantissa);
  const Zpp32s power = mulDbl(mantissa, mantissa);
  const int shift2 = norm32(power);
  const Zpp16s rest = high16(shlSat32(power, shift2));
  return subSat16(addSat16(addSat16(shlSat16(static_cast<Zpp16s>(shift + 16), 10), 64 * shift2), 127), rest >> 8);
}

// The sum of the levels of all bands but the lowest, as a mean over 16
Zpp16s sumOfLevels(const Zpp16s* level) {
  Zpp32s sum = 0;
  for (int i = 1; i < kBands; ++i) sum += level[i];
  return high16(shlSat32(sum, 12));
}

Zpp32s signalToNoise(const Zpp16s* level, const Zpp16s* noise) {
  Zpp32s sum = 0;
  for (int i = 0; i < kBands; ++i) {
    const int shift = norm16(noise[i]);
    const Zpp16s ratio = shlSat16(quotientQ15(shr16(level[i], 1), shlSat16(noise[i], shift)), shift - 6);
    sum = macDbl(sum, ratio, ratio);
  }
  return sum;
}

Zpp16s threshold(VadState& s) {
  const Zpp16s noise = sumOfLevels(s.noise);
  const Zpp16s least = shlSat16(mulQ15(noise, 4096), 3);
  s.speechLevel = std::max(s.speechLevel, least);
  const Zpp16s byNoise = addSat16(mulQ15(1509, subSat16(inverseLog2(noise), 31744)), 768);
  const int bySpeech = -96 + mulQ15(-1339, subSat16(inverseLog2(subSat16(s.speechLevel, least)), 22527));
  return std::max<Zpp16s>(addSat16(byNoise, std::clamp(bySpeech, -96, 96)), 204);
}

bool hangoverDecision(VadState& s, Zpp16s thr, bool lowPower) {
  if (lowPower) {
    s.burst = s.hang = 0;
    return false;
  }
  if ((s.decisions & kThisFrame) != 0) {
    s.burst = addSat16(s.burst, 1);
    if (s.burst >= addSat16(mulQ15(297, subSat16(thr, 768)), 8))
      s.hang = std::max<Zpp16s>(addSat16(mulQ15(-1110, subSat16(thr, 217)), 12), 2);
    return true;
  }
  s.burst = 0;
  if (s.hang <= 0) return false;
  --s.hang;
  return true;
}

// --- Background noise and speech level (clauses 3.3.5 and 3.3.3)
// ------------------------------------------------------------------

void updateStationarity(const Zpp16s* level, bool tone, VadState& s) {
  if (tone || (s.decisions & kLast8) == 0) {
    s.stationary = kStationaryFrames;
    return;
  }
  constexpr Zpp16s floor = 184;
  Zpp16s change = 0;
  for (int i = 0; i < kBands; ++i) {
    const auto [smaller, larger] = std::minmax(std::max(level[i], floor), std::max(s.average[i], floor));
    const int shift = norm16(smaller);  // 7 at the most
    change = addSat16(change, quotientQ15(shr16(larger, 1), shlSat16(smaller, shift)) >> (8 - shift));
  }
  if (change > 1000)
    s.stationary = kStationaryFrames;
  else if ((s.decisions & kThisFrame) != 0 && s.stationary != 0)
    --s.stationary;
}

void updateNoise(const Zpp16s* level, bool tone, VadState& s) {
  updateStationarity(level, tone, s);
  const Zpp16s alpha = s.stationary == kStationaryFrames ? 32767 : (s.decisions & kThisFrame) == 0 ? 16383 : 3276;
  struct {
    Zpp16s up, down, step;
  } const speed = (s.decisions & kLast4) == 0 ? decltype(speed){1638, 2097, 2}
                  : s.stationary == 0         ? decltype(speed){491, 1867, 2}
                                              : decltype(speed){0, 1638, 0};
  for (int i = 0; i < kBands; ++i) {
    s.average[i] = addSat16(s.average[i], mulRoundQ15(alpha, subSat16(level[i], s.average[i])));
    const Zpp16s difference = subSat16(s.old[i], s.noise[i]);
    if (difference < 0)
      s.noise[i] = std::max(addSat16(-2, addSat16(s.noise[i], mulRoundQ15(speed.down, difference))), kNoiseMin);
    else
      s.noise[i] = std::min(addSat16(speed.step, addSat16(s.noise[i], mulRoundQ15(speed.up, difference))), kNoiseMax);
    s.old[i] = level[i];
  }
}

void updateSpeechLevel(Zpp16s level, VadState& s) {
  if (s.levelCount - s.activityCount > 55) s.levelCount = s.activityCount = s.maximum = 0;
  s.levelCount = addSat16(s.levelCount, 1);
  const bool active = (s.decisions & kThisFrame) != 0 || level > s.speechLevel;
  if (!active || level <= 129) return;
  s.maximum = std::max(s.maximum, level);
  s.activityCount = addSat16(s.activityCount, 1);
  if (s.activityCount < 25) return;
  const Zpp16s half = shr16(s.maximum, 1);
  if (half > 410) s.speechLevel = addSat16(s.speechLevel, mulRoundQ15(4915, subSat16(half, s.speechLevel)));
  s.maximum = s.activityCount = s.levelCount = 0;
}

bool detect(const Zpp16s* src, Zpp16s& toneFlag, VadState& s) {
  Zpp32s previous = 0;
  std::memcpy(&previous, s.previousPower, sizeof previous);
  const Zpp32s frame = energy(src, kFrame), power = addSat32(frame, previous);
  std::memcpy(s.previousPower, &frame, sizeof frame);
  if (power < 686080) toneFlag = static_cast<Zpp16s>(toneFlag & 0x1fff);

  Zpp16s t[kFrame], level[kBands];
  for (int n = 0; n < kFrame; ++n) t[n] = shr16(src[n], 1);
  filterBank(t, s);
  for (int i = 0; i < kBands; ++i) level[i] = bandLevel(t, kBand[i], s.tail[i]);

  const Zpp32s snr = signalToNoise(level, s.noise);
  const Zpp16s thr = threshold(s);
  s.decisions = shr16(s.decisions, 1);
  if (snr > mulDbl(thr, 6144)) s.decisions = static_cast<Zpp16s>(s.decisions | kThisFrame);
  updateNoise(level, (toneFlag & 0x7c00) == 0x7c00, s);
  const bool active = hangoverDecision(s, thr, power < 30000);
  updateSpeechLevel(sumOfLevels(level), s);
  return active;
}

}  // namespace

ZppStatus zppsVADInit_AMRWB_16s(void* state) {
  if (anyNull(state)) return zppStsNullPointer;
  const VadState fresh;
  std::memcpy(state, &fresh, sizeof fresh);
  return zppStsOk;
}

ZppStatus zppsVAD_AMRWB_16s(const Zpp16s* src, Zpp16s* toneFlag, Zpp16s* vad, void* state) {
  if (anyNull(src, toneFlag, vad, state)) return zppStsNullPointer;
  VadState s;
  std::memcpy(&s, state, sizeof s);
  *vad = detect(src, *toneFlag, s) ? 1 : 0;
  std::memcpy(state, &s, sizeof s);
  return zppStsOk;
}
