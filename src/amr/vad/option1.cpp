// Voice activity detection, option 1 (3GPP TS 26.094 clause 3): levels of nine bands against their noise, with hangovers for
// bursts of speech and for complex signals such as music.
#include <cstring>

#include "amr/arithmetic.h"
#include "amr/frame.h"
#include "amr/vad/kernels.h"
#include "core/checks.h"

using namespace zpp;
using namespace zpp::amr;

ZppStatus zppsVAD1GetSize_GSMAMR_16s(Zpp32s* size) { return reportSize(size, kVad1StateSize); }

ZppStatus zppsVAD1Init_GSMAMR_16s(void* state) {
  if (anyNull(state)) return zppStsNullPointer;
  ownVAD1Init_GSMAMR(state);
  return zppStsOk;
}

ZppStatus zppsVAD1_GSMAMR_16s(const Zpp16s* speech, Zpp16s* vadMem, Zpp16s* flag, void* state) {
  if (anyNull(speech, vadMem, flag, state)) return zppStsNullPointer;
  *flag = ownVAD1_GSMAMR_16s(speech, vadMem, state) ? 1 : 0;
  return zppStsOk;
}

namespace {

constexpr int kBands = 9;
constexpr Zpp16s kNoiseInit = 150, kNoiseMin = 40, kNoiseMax = 16000, kStationaryMin = 184;
constexpr int kStationaryCount = 20;

// The registers hold the latest frame's decision in bit 14 and the older ones below.
struct Vad1State {
  Zpp16s noise[kBands], oldLevel[kBands], average[kBands];  // background noise, levels of the frame before, their average
  Zpp16s sub[kBands];                                       // levels of the samples that the next frame shares
  Zpp16s pair[3][2], single[5];                             // memories of the fifth- and third-order filters
  Zpp16s vadReg, complexHigh, complexLow;
  Zpp16s complexTimer, complexHang, stationaryCount, burst, hang, complexWarning;
  Zpp16s fast;  // tracks the correlation of the high-passed signal, Q15
};
static_assert(sizeof(Vad1State) <= kVad1StateSize);

// --- Filter bank -------------------------------------------------------------------------------------------------------------

struct Halves {
  Zpp16s low, high;
};

// Two all-pass sections, of the even and the odd samples; their sum and difference are the bands.
Halves filter5(Zpp16s even, Zpp16s odd, Zpp16s* memory) {
  const Zpp16s u = subSat16(even, mulQ15(21955, memory[0])), v = addSat16(memory[0], mulQ15(21955, u));
  const Zpp16s w = subSat16(odd, mulQ15(6390, memory[1])), z = addSat16(memory[1], mulQ15(6390, w));
  memory[0] = u, memory[1] = w;
  return {addSat16(v, z), subSat16(v, z)};
}

void split5(Zpp16s& p, Zpp16s& q, Zpp16s* memory) {
  const Halves bands = filter5(p, q, memory);
  p = static_cast<Zpp16s>(bands.low >> 1), q = static_cast<Zpp16s>(bands.high >> 1);
}

void split3(Zpp16s& p, Zpp16s& q, Zpp16s& memory) {
  const Zpp16s u = subSat16(q, mulQ15(13363, memory)), v = addSat16(memory, mulQ15(13363, u));
  memory = u;
  const Zpp16s low = addSat16(p, v), high = subSat16(p, v);
  p = static_cast<Zpp16s>(low >> 1), q = static_cast<Zpp16s>(high >> 1);
}

// Which samples of the filter bank's buffer make a band: every `stride`th from `offset` on. Those from `from` on count for
// this frame and, since frames overlap, for the next.
struct Band {
  int stride, offset, from, to, scale;
};
constexpr Band kBandsOf[kBands] = {{16, 0, 8, 10, 16}, {16, 8, 8, 10, 16}, {16, 12, 8, 10, 16},
                                   {16, 4, 8, 10, 16}, {8, 6, 16, 20, 16}, {8, 2, 16, 20, 16},
                                   {8, 3, 16, 20, 16}, {8, 7, 16, 20, 16}, {4, 1, 32, 40, 15}};

// Sums of magnitudes: at most 40 times 2^16, so that only the scaling can saturate.
Zpp16s bandLevel(const Zpp16s* buffer, const Band& band, Zpp16s& sub) {
  const auto magnitudes = [&](int from, int to) {
    Zpp32s sum = 0;
    for (int i = from; i < to; ++i) sum += 2 * absSat16(buffer[band.stride * i + band.offset]);
    return sum;
  };
  const Zpp32s latest = magnitudes(band.from, band.to);
  const Zpp32s all = addSat32(addSat32(latest, shlSat32(sub, 16 - band.scale)), magnitudes(0, band.from));
  sub = high16(shlSat32(latest, band.scale));
  return high16(shlSat32(all, band.scale));
}

void filterBank(const Zpp16s* speech, Vad1State& s, Zpp16s* level) {
  Zpp16s b[kFrame];
  for (int n = 0; n < kFrame; n += 2) {
    const Halves bands = filter5(static_cast<Zpp16s>(speech[n] >> 2), static_cast<Zpp16s>(speech[n + 1] >> 2), s.pair[0]);
    b[n] = bands.low, b[n + 1] = bands.high;
  }
  for (int n = 0; n < kFrame; n += 4) {
    split5(b[n], b[n + 2], s.pair[1]);
    split5(b[n + 1], b[n + 3], s.pair[2]);
  }
  for (int n = 0; n < kFrame; n += 8) {
    split3(b[n], b[n + 4], s.single[0]);
    split3(b[n + 2], b[n + 6], s.single[1]);
    split3(b[n + 3], b[n + 7], s.single[4]);
  }
  for (int n = 0; n < kFrame; n += 16) {
    split3(b[n], b[n + 8], s.single[2]);
    split3(b[n + 4], b[n + 12], s.single[3]);
  }
  for (int band = 0; band < kBands; ++band) level[band] = bandLevel(b, kBandsOf[band], s.sub[band]);
}

// --- Decision ----------------------------------------------------------------------------------------------------------------

// Mean square of the bands' signal-to-noise ratios
Zpp16s signalToNoise(const Vad1State& s, const Zpp16s* level) {
  Zpp32s sum = 0;
  for (int band = 0; band < kBands; ++band) {
    const int shift = norm16(s.noise[band]);
    const Zpp16s quotient = divQ15(static_cast<Zpp16s>(level[band] >> 1), shlSat16(s.noise[band], shift));
    const Zpp16s ratio = shlSat16(quotient, shift - 5);
    sum = macDbl(sum, ratio, ratio);
  }
  return mulQ15(high16(shlSat32(sum, 6)), 3641);  // 1 / 9 in Q15
}

Zpp16s noiseLevel(const Vad1State& s) {
  Zpp32s sum = 0;
  for (const Zpp16s noise : s.noise) sum = addSat32(sum, noise);
  return high16(shlSat32(sum, 13));
}

// Music and other signals whose high-passed correlation stays high
void detectComplexSignal(Vad1State& s, Zpp16s best, bool lowPower) {
  const bool high = s.fast >= 19660;
  const Zpp16s alpha = best < s.fast ? (high ? 6553 : 2621) : (high ? 655 : 2621);
  s.fast = roundHigh16(macDbl(msuDbl(fromHigh16(s.fast), alpha, s.fast), alpha, best));
  if (s.fast < 13106 || lowPower) s.fast = 13106;
  s.complexHigh = static_cast<Zpp16s>(s.complexHigh >> 1);
  s.complexLow = static_cast<Zpp16s>(s.complexLow >> 1);
  if (!lowPower) {
    if (s.fast > 19660) s.complexHigh |= 0x4000;
    if (s.fast > 16383) s.complexLow |= 0x4000;
  }
  s.complexTimer = s.fast > 22936 ? addSat16(s.complexTimer, 1) : Zpp16s{0};
  s.complexWarning = (s.complexHigh & 0x7f80) == 0x7f80 || (s.complexLow & 0x7fff) == 0x7fff;
}

// Sum over the bands of the larger of level and average over the smaller
Zpp16s stationarityRatio(const Vad1State& s, const Zpp16s* level) {
  Zpp16s ratio = 0;
  for (int band = 0; band < kBands; ++band) {
    Zpp16s larger = s.average[band], smaller = level[band];
    if (level[band] > s.average[band]) larger = level[band], smaller = s.average[band];
    if (larger < kStationaryMin) larger = kStationaryMin;
    if (smaller < kStationaryMin) smaller = kStationaryMin;
    const int shift = norm16(smaller);
    const Zpp16s quotient = divQ15(static_cast<Zpp16s>(larger >> 1), shlSat16(smaller, shift));
    ratio = addSat16(ratio, shiftRight16(quotient, 8 - shift));
  }
  return ratio;
}

void updateNoise(Vad1State& s, const Zpp16s* level, Zpp16s pitch, Zpp16s tone) {
  const bool active = (s.vadReg & 0x4000) != 0;
  if (s.complexWarning && s.stationaryCount < 5) s.stationaryCount = 5;
  if ((pitch & 0x6000) == 0x6000 || (tone & 0x7c00) == 0x7c00 || (s.vadReg & 0x7f80) == 0 ||
      stationarityRatio(s, level) > 1000) {
    s.stationaryCount = kStationaryCount;
  } else if (active && s.stationaryCount != 0) {
    --s.stationaryCount;
  }
  const Zpp16s alpha = s.stationaryCount == kStationaryCount ? 32767 : active ? 3276 : 16383;
  for (int band = 0; band < kBands; ++band)
    s.average[band] = addSat16(s.average[band], mulRoundQ15(alpha, subSat16(level[band], s.average[band])));

  Zpp16s up = 0, down = 1638, step = 0;
  if ((s.vadReg & 0x7800) == 0 && (pitch & 0x7800) == 0 && s.complexHang == 0) {
    up = 1638, down = 2097, step = 2;
  } else if (s.stationaryCount == 0 && s.complexHang == 0) {
    up = 491, down = 1867, step = 2;
  }
  for (int band = 0; band < kBands; ++band) {
    Zpp16s& noise = s.noise[band];
    const Zpp16s change = subSat16(s.oldLevel[band], noise);
    if (change < 0) {
      noise = addSat16(-2, addSat16(noise, mulRoundQ15(down, change)));
      if (noise < kNoiseMin) noise = kNoiseMin;
    } else {
      noise = addSat16(step, addSat16(noise, mulRoundQ15(up, change)));
      if (noise > kNoiseMax) noise = kNoiseMax;
    }
    s.oldLevel[band] = level[band];
  }
}

bool withHangover(Vad1State& s, Zpp16s noise, bool lowPower) {
  const bool noisy = noise > 100;
  const int burstLength = noisy ? 4 : 5, hangLength = noisy ? 7 : 4;
  if (lowPower) {
    s.burst = s.hang = s.complexHang = s.complexTimer = 0;
    return false;
  }
  if (s.complexTimer > 100 && s.complexHang < 250) s.complexHang = 250;
  if (s.complexHang != 0) {
    s.burst = 4;
    --s.complexHang;
    return true;
  }
  if ((s.vadReg & 0x3ff0) == 0 && s.fast > 21298) return true;
  if ((s.vadReg & 0x4000) != 0) {
    s.burst = addSat16(s.burst, 1);
    if (s.burst >= burstLength) s.hang = static_cast<Zpp16s>(hangLength);
    return true;
  }
  s.burst = 0;
  if (s.hang <= 0) return false;
  --s.hang;
  return true;
}

// Fields that divide are kept positive. This changes nothing in a state that Init and the detector wrote.
Vad1State loadState(const void* block) {
  Vad1State s;
  std::memcpy(&s, block, sizeof s);
  for (int band = 0; band < kBands; ++band) {
    if (s.noise[band] < kNoiseMin) s.noise[band] = kNoiseMin;
    if (s.sub[band] < 0) s.sub[band] = 0;
  }
  return s;
}

}  // namespace

void ownVAD1Init_GSMAMR(void* state) {
  Vad1State s = {};
  for (int band = 0; band < kBands; ++band) s.noise[band] = s.oldLevel[band] = s.average[band] = kNoiseInit;
  s.fast = 13106;
  std::memset(state, 0, kVad1StateSize);
  std::memcpy(state, &s, sizeof s);
}

bool ownVAD1_GSMAMR_16s(const Zpp16s* speech, Zpp16s* vadMem, void* state) {
  Vad1State s = loadState(state);
  const Zpp16s tone = vadMem[0], best = vadMem[1];

  const Zpp32s power = energy(speech - 40, kFrame);
  const bool lowPower = power < 15000;
  if (power < 343040) vadMem[2] &= 0x3fff;
  if (lowPower) s.complexLow &= 0x3fff;

  Zpp16s level[kBands];
  filterBank(speech, s, level);

  const Zpp16s snr = signalToNoise(s, level), noise = noiseLevel(s);
  Zpp16s threshold = addSat16(mulQ15(-2808, noise), 1260);
  if (threshold < 720) threshold = 720;
  s.vadReg = static_cast<Zpp16s>(s.vadReg >> 1);
  if (snr > threshold) s.vadReg |= 0x4000;

  detectComplexSignal(s, best, lowPower);
  updateNoise(s, level, vadMem[2], tone);
  const bool active = withHangover(s, noise, lowPower);
  std::memcpy(state, &s, sizeof s);
  return active;
}
