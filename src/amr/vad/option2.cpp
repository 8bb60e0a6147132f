// Voice activity detection, option 2 (3GPP TS 26.094 clause 4): energies of 16 channels of a spectrum against their noise.
#include <cstring>

#include "amr/arithmetic.h"
#include "amr/vad/kernels.h"
#include "amr/vad/tables.h"
#include "core/checks.h"

using namespace zpp;
using namespace zpp::amr;

ZppStatus zppsVAD2GetSize_GSMAMR_16s(Zpp32s* size) { return reportSize(size, kVad2StateSize); }

ZppStatus zppsVAD2Init_GSMAMR_16s(void* state) {
  if (anyNull(state)) return zppStsNullPointer;
  ownVAD2Init_GSMAMR(state);
  return zppStsOk;
}

ZppStatus zppsVAD2_GSMAMR_16s(const Zpp16s* speech, Zpp16s ltpFlag, Zpp16s* flag, void* state) {
  if (anyNull(speech, flag, state)) return zppStsNullPointer;
  *flag = ownVAD2_GSMAMR_16s(speech, ltpFlag != 0, state) ? 1 : 0;
  return zppStsOk;
}

namespace {

constexpr int kBlock = 80, kFft = 128, kChannels = 16, kOverlap = 24;

struct Vad2State {
  Zpp32s channel[kChannels];   // smoothed energies
  Zpp32s noise[kChannels];     // noise energies
  Zpp32s count;                // blocks
  Zpp16s longTerm[kChannels];  // long-term log spectrum
  Zpp16s preEmphasis;          // last sample of the block before, scaled
  Zpp16s lastShift;            // its scale
  Zpp16s scaling;              // 1: channel energies are kept in a smaller format, against overflow
  Zpp16s force;                // the noise was updated by force
  Zpp16s signalToNoise;        // long-term peak
  Zpp16s negativeVariance, negativeBias;
  Zpp16s burst, hang, hysteresis, lastUpdates, updates;
};
static_assert(sizeof(Vad2State) <= kVad2StateSize);

Zpp32s decibels(Zpp32s x, int bits) {
  Dpf log = logarithm(x);
  log.hi = static_cast<Zpp16s>(log.hi - bits);
  return low16(shrRound32(zpp::mulDpf16(log, 24660), 6));
}

// --- Spectrum ----------------------------------------------------------------------------------------------------------------

// The block scaled to its largest magnitude, with pre-emphasis, behind the overlap and before zeros. Returns the scale.
int frequencyInput(const Zpp16s* speech, Vad2State& s, Zpp16s* data) {
  const Zpp16s largest = ownMaxAbs_16s(speech, kBlock);
  const int shift = largest != 0 ? norm16(largest) - 2 : 14;
  Zpp16s scaled[kBlock];
  for (int n = 0; n < kBlock; ++n) scaled[n] = largest != 0 ? shlSat16(speech[n], shift) : Zpp16s{0};
  Zpp16s before = shiftRightRound16(s.preEmphasis, s.lastShift - shift);
  s.lastShift = static_cast<Zpp16s>(shift);
  std::memset(data, 0, kFft * sizeof *data);
  for (int n = 0; n < kBlock; ++n) {
    data[kOverlap + n] = addSat16(scaled[n], mulQ15(-26214, before));  // -0.8
    before = scaled[n];
  }
  s.preEmphasis = before;
  return shift;
}

struct Phase {
  Zpp16s c, d;  // cosine and minus sine
};
Phase phase(int k) { return {phsTbl[k][0], phsTbl[k][1]}; }

// Complex FFT of 64 pairs, halved at each stage
void complexFft(Zpp16s* b) {
  for (int k = 0; k < 64; ++k) {
    int reversed = 0;
    for (int bit = 0; bit < 6; ++bit) reversed |= ((k >> bit) & 1) << (5 - bit);
    if (reversed <= k) continue;
    for (int part = 0; part < 2; ++part) {
      const Zpp16s held = b[2 * k + part];
      b[2 * k + part] = b[2 * reversed + part];
      b[2 * reversed + part] = held;
    }
  }
  for (int stage = 0; stage < 6; ++stage) {
    const int half = 1 << stage;
    for (int j = 0; j < half; ++j) {
      const Phase w = phase(2 * j << (5 - stage));
      for (int k = j; k < 64; k += 2 * half) {
        Zpp16s *own = b + 2 * k, *partner = own + 2 * half;
        const Zpp16s re = roundHigh16(msuDbl(mulDbl(partner[0], w.c), partner[1], w.d));
        const Zpp16s im = roundHigh16(macDbl(mulDbl(partner[1], w.c), partner[0], w.d));
        partner[0] = static_cast<Zpp16s>(subSat16(own[0], re) >> 1);
        partner[1] = static_cast<Zpp16s>(subSat16(own[1], im) >> 1);
        own[0] = static_cast<Zpp16s>(addSat16(own[0], re) >> 1);
        own[1] = static_cast<Zpp16s>(addSat16(own[1], im) >> 1);
      }
    }
  }
}

// FFT of 128 real values
void realFft(Zpp16s* b) {
  complexFft(b);
  const Zpp16s first = b[0];
  b[0] = addSat16(first, b[1]);
  b[1] = subSat16(first, b[1]);
  for (int i = 2; i <= 64; i += 2) {
    const int j = kFft - i;
    const Zpp16s re1 = addSat16(b[i], b[j]), im1 = subSat16(b[i + 1], b[j + 1]);
    const Zpp16s re2 = addSat16(b[i + 1], b[j + 1]), im2 = subSat16(b[j], b[i]);
    const Phase w = phase(i / 2), v = phase(j / 2);
    const auto halved = [](Zpp32s sum) { return roundHigh16(sum >> 1); };
    b[i] = halved(msuDbl(macDbl(fromHigh16(re1), re2, w.c), im2, w.d));
    b[i + 1] = halved(macDbl(macDbl(fromHigh16(im1), im2, w.c), re2, w.d));
    b[j] = halved(macDbl(macDbl(fromHigh16(re1), re2, v.c), im2, v.d));
    b[j + 1] = halved(macDbl(msuDbl(negSat32(fromHigh16(im1)), im2, v.c), re2, v.d));
  }
}

// --- One block of 10 ms ------------------------------------------------------------------------------------------------------

// Hysteresis between the two formats of the channel energies
void chooseScaling(Vad2State& s, int shift) {
  const int before = s.scaling;
  if (before == 0 && shift <= 0) s.scaling = 1;
  if (before == 1 && shift >= 3) s.scaling = 0;
  if (s.scaling == before) return;
  for (Zpp32s& smoothed : s.channel) smoothed = s.scaling != 0 ? shr32(smoothed, 5) : shlSat32(smoothed, 5);
}

void channelEnergies(const Zpp16s* spectrum, int shift, Vad2State& s) {
  const bool first = s.count == 1;
  const Zpp16s alpha = first ? 32767 : 18022, beta = first ? 0 : 14746;
  const Zpp32s least = s.scaling != 0 ? 1 : 32;
  for (int channel = 0; channel < kChannels; ++channel) {
    const int from = 2 * chTbl[channel][0], to = 2 * chTbl[channel][1] + 2;
    const Zpp32s sum = shrRound32(energy(spectrum + from, to - from), 2 * shift - (s.scaling != 0 ? 5 : 10));
    Zpp32s& smoothed = s.channel[channel];
    smoothed = addSat32(mulDpf16(sum, mulQ15(alpha, chTblSh[channel])), mulDpf16(smoothed, beta));
    if (smoothed < least) smoothed = least;
  }
}

// Noise is kept in the larger format.
Zpp32s inNoiseFormat(const Vad2State& s, Zpp32s x) { return s.scaling != 0 ? shlSat32(x, 5) : x; }

void startNoise(Vad2State& s, bool peaky) {
  for (int channel = 0; channel < kChannels; ++channel) {
    const bool quiet = s.channel[channel] < (s.scaling != 0 ? 256 : 8192);
    s.noise[channel] = peaky || quiet ? 8192 : inNoiseFormat(s, s.channel[channel]);
  }
}

// Follows the signal-to-noise ratio of the block, x, up fast and down slowly.
Zpp16s trackSignalToNoise(Vad2State& s, const Zpp16s* channelSnr) {
  if (s.count <= 4 || s.force != 0) {
    s.negativeVariance = s.negativeBias = 0;
    Zpp32s noise = 0;
    for (const Zpp32s n : s.noise) noise = addSat32(noise, n);
    return s.signalToNoise = subSat16(14320, decibels(noise, 9));
  }
  Zpp32s sum = 0;
  for (int channel = 0; channel < kChannels; ++channel) {
    const Dpf log = toDpf(mulDbl(channelSnr[channel], 10885) >> 8);
    sum = addSat32(sum, ownPow2(addSat16(log.hi, 3), log.lo));
  }
  const auto x = static_cast<Zpp16s>(decibels(sum, 7));
  Zpp16s& peak = s.signalToNoise;
  if (x > peak)
    peak = roundHigh16(addSat32(mulDbl(29491, peak), mulDbl(3277, x)));
  else if (x > mulQ15(20480, peak))
    peak = roundHigh16(addSat32(mulDbl(32702, peak), mulDbl(66, x)));
  return x;
}

void trackNegativeBias(Vad2State& s, Zpp16s x) {
  if (x >= 0) return;
  const Zpp16s square = roundHigh16(shlSat32(mulDbl(x, x), 7));
  s.negativeVariance = roundHigh16(addSat32(mulDbl(32440, s.negativeVariance), mulDbl(328, square)));
  if (s.negativeVariance > 1024) s.negativeVariance = 1024;
  const Zpp16s excess = mulRoundQ15(shlSat16(subSat16(s.negativeVariance, 166), 4), 24576);
  s.negativeBias = static_cast<Zpp16s>(excess < 0 ? 0 : excess >> 8);
}

bool decide(Vad2State& s, Zpp16s metric, int quantisedSnr) {
  if (metric > addSat16(vmThresholdTable[quantisedSnr], s.negativeBias)) {
    s.burst = addSat16(s.burst, 1);
    if (s.burst > burstcountTable[quantisedSnr]) s.hang = hangoverTable[quantisedSnr];
    return true;
  }
  s.burst = 0;
  s.hang = subSat16(s.hang, 1);
  if (s.hang > 0) return true;
  s.hang = 0;
  return false;
}

// Distance of the log spectrum from its long-term mean, which then moves on: the faster, the further x is below its peak.
Zpp16s spectralDeviation(Vad2State& s, const Zpp16s* db, Zpp16s x) {
  Zpp16s deviation = 0;
  if (s.count == 1)
    std::memcpy(s.longTerm, db, sizeof s.longTerm);
  else
    for (int channel = 0; channel < kChannels; ++channel)
      deviation = addSat16(deviation, absSat16(subSat16(s.longTerm[channel], db[channel])));
  const Zpp16s below = subSat16(s.signalToNoise, x);
  Zpp16s alpha = 29491, beta = 3277;
  if (below > 0 && s.signalToNoise > 0) {
    if (below > s.signalToNoise) {
      alpha = 22938, beta = 9830;
    } else {
      alpha = subSat16(29491, mulQ15(6553, divQ15(below, s.signalToNoise)));
      beta = subSat16(32767, alpha);
    }
  }
  for (int channel = 0; channel < kChannels; ++channel)
    s.longTerm[channel] = roundHigh16(addSat32(mulDbl(beta, db[channel]), mulDbl(alpha, s.longTerm[channel])));
  return deviation;
}

void updateNoise(Vad2State& s, Zpp16s metric, Zpp32s total, Zpp16s deviation, bool peaky, bool ltpFlag) {
  bool update = false;
  s.force = 0;
  if (metric <= 35) {
    if (s.burst == 0) {
      update = true;
      s.updates = 0;
    }
  } else if (total > (s.scaling != 0 ? 16 : 512) && deviation < 7168 && !peaky && !ltpFlag) {
    s.updates = addSat16(s.updates, 1);
    if (s.updates >= 50) update = true, s.force = 1;
  }
  s.hysteresis = s.updates == s.lastUpdates ? addSat16(s.hysteresis, 1) : Zpp16s{0};
  s.lastUpdates = s.updates;
  if (s.hysteresis > 6) s.updates = 0;
  if (!update) return;
  for (int channel = 0; channel < kChannels; ++channel) {
    Zpp32s& noise = s.noise[channel];
    noise = addSat32(mulDpf16(inNoiseFormat(s, s.channel[channel]), 3277), mulDpf16(noise, 29491));
    if (noise < 32) noise = 32;
  }
}

bool detect(const Zpp16s* speech, bool ltpFlag, Vad2State& s) {
  s.count = addSat32(s.count, 1);
  Zpp16s spectrum[kFft];
  const int shift = frequencyInput(speech, s, spectrum);
  realFft(spectrum);
  chooseScaling(s, shift);
  channelEnergies(spectrum, shift, s);

  Zpp32s total = 0, peak = 0;
  for (int channel = 0; channel < kChannels; ++channel) {
    total = addSat32(total, s.channel[channel]);
    if (channel >= 2 && s.channel[channel] > peak) peak = s.channel[channel];
  }
  const bool peaky = peak > mulDpf16(total, 20480);
  if (s.count <= 4) startNoise(s, peaky);

  Zpp16s db[kChannels], snr[kChannels], metric = 0;
  for (int channel = 0; channel < kChannels; ++channel) {
    db[channel] = static_cast<Zpp16s>(decibels(s.channel[channel], s.scaling != 0 ? 4 : 9));
    snr[channel] = subSat16(db[channel], decibels(s.noise[channel], 9));
    const int index = shiftRightRound16(mulQ15(21845, snr[channel]), 6);
    metric = addSat16(metric, vmTbl[index < 0 ? 0 : index > 89 ? 89 : index]);
  }

  const Zpp16s x = trackSignalToNoise(s, snr);
  const int level = mulQ15(s.signalToNoise, 10923) >> 8, quantisedSnr = level < 0 ? 0 : level > 19 ? 19 : level;
  trackNegativeBias(s, x);
  const bool active = decide(s, metric, quantisedSnr);
  const Zpp16s deviation = spectralDeviation(s, db, x);
  updateNoise(s, metric, total, deviation, peaky, ltpFlag);
  return active;
}

}  // namespace

void ownVAD2Init_GSMAMR(void* state) { std::memset(state, 0, kVad2StateSize); }

bool ownVAD2_GSMAMR_16s(const Zpp16s* speech, bool ltpFlag, void* state) {
  Vad2State s;
  std::memcpy(&s, state, sizeof s);
  const bool first = detect(speech, ltpFlag, s), second = detect(speech + kBlock, ltpFlag, s);
  std::memcpy(state, &s, sizeof s);
  return first || second;
}
