// One sample of ITU-T G.726 (clause 4.2), for the kernels of every processor level.
//
// The step from sample to sample is a template over the adaptive predictor, which a kernel file brings along and in which
// nearly all of the work lies:
//
//   Predictor(const AdpcmState&)          takes coefficients and histories out of a state; store(AdpcmState&) puts them back
//   Estimate estimate()                   FMULT and ACCUM
//   int pole1(), pole2()                  a1, a2
//   void update<leak>(...)                new poles, XOR and UPB for the zeros, FLOATA, FLOATB and the shift of the histories
//   void clearCoefficients()              TRIGB
#pragma once

#include "core/companding.h"
#include "core/fixed_point.h"
#include "g726/state.h"
#include "g726/tables.h"

namespace zpp::g726 {

// Signal estimates of the whole predictor and of its zeros (SE, SEZ)
struct Estimate {
  int whole, zeros;
};

// -x for a sign of -1, x for one of 0
constexpr int withSign(int x, int sign) { return (x ^ sign) - sign; }

// Quantised difference: "minus zero" exists, and its sign counts.
struct Difference {
  int sign;  // 0, or -1 for negative
  int magnitude;
  int value() const { return withSign(magnitude, sign); }
};

// LOG: base-2 logarithm, Q7, of 0 or more. What 0 gives does not matter while it is below 12, the least sum of a decision level
// and a scale factor.
constexpr int logarithm(int x) {
  const int exponent = std::bit_width(static_cast<Zpp32u>(x | 1)) - 1;
  return (exponent << 7) + ((x << 7) >> exponent) - 128;
}

// ANTILOG: inverse of it for Q7 logarithms below 15 * 128; 0 for negative ones, of at least -15 * 128
constexpr int antilogarithm(int log) { return ((128 + (log & 127)) << 7) >> (14 - (log >> 7)); }

// The number format of FMULT: mantissa of 6 bits with its leading bit set, also that of zero, which stands as 1/2.
struct Floating {
  int sign;      // 0, or -1 for negative; zero has a sign, too
  int exponent;  // bit length of the magnitude
  int mantissa;  // 32..63

  // FLOATA, FLOATB, for magnitudes of 15 bits
  static constexpr Floating of(int sign, int magnitude) {
    // The doubled magnitude, for which 1 stands in when it is zero, has the same mantissa.
    const Zpp32u twice = std::max(2 * magnitude, 1);
    const int exponent = std::bit_width(twice | 1) - 1;
    return {sign, exponent, static_cast<int>((twice << 5) >> exponent)};
  }
  static constexpr Floating fromWord(int word) { return {-(word >> 10), word >> 6 & 15, word & 63}; }
  constexpr Zpp16u word() const { return static_cast<Zpp16u>((sign & 1024) | exponent << 6 | mantissa); }
};

// FMULT: a coefficient (Q14) times a past signal
constexpr int multiplied(int coefficient, Floating signal) {
  const int sign = coefficient >> 31;
  const Floating factor = Floating::of(sign, withSign(coefficient >> 2, sign) & 8191);
  const auto product = static_cast<Zpp32u>(factor.mantissa * signal.mantissa + 48) >> 4;
  // product * 2^(both exponents - 19), by way of the upper end of the word; bits above the 15th are lost.
  const Zpp32u magnitude = (product << (factor.exponent + 11)) >> (30 - signal.exponent) & 32767;
  return withSign(static_cast<int>(magnitude), sign ^ signal.sign);
}

constexpr int limitedTo14Bits(int signal) { return std::clamp(signal, -8192, 8191); }

template <int bits, class Predictor>
class Adpcm {
 public:
  explicit Adpcm(const AdpcmState& s)
      : predictor(s), yl(s.yl), yu(s.yu), dms(s.dms), dml(s.dml), ap(s.ap), sign1(-s.sign1), sign2(-s.sign2), tone(s.tone) {}

  void store(AdpcmState& s) const {
    predictor.store(s);
    s.yl = yl;
    s.yu = static_cast<Zpp16s>(yu);
    s.dms = static_cast<Zpp16s>(dms);
    s.dml = static_cast<Zpp16s>(dml);
    s.ap = static_cast<Zpp16s>(ap);
    s.tone = tone;
    s.sign1 = sign1 != 0;
    s.sign2 = sign2 != 0;
  }

  // Begins a sample: predictor outputs and scale factor
  void predict() {
    signal = predictor.estimate();
    y = mixedScaleFactor();
  }

  // SUBTA, LOG, SUBTB, QUAN
  struct Quantised {
    int code, logMagnitude;
  };
  Quantised quantise(int x) const {
    // A magnitude of 32767 lies in the outermost interval whatever the scale factor, so greater ones need no saturation.
    const int difference = x - signal.whole;
    const int log = logarithm(std::abs(difference)) - (y >> 2);
    const auto& interval = quantisers[bits - 2].interval[std::clamp(log, lowestLog, highestLog) - lowestLog];
    return {interval.code[difference < 0], interval.logMagnitude};
  }

  Quantised dequantise(int code) const { return {code, meaningOf(code).logMagnitude}; }

  // Reconstructs the signal of a code, adapts everything to it and ends the sample.
  [[gnu::always_inline]] int reconstruct(Quantised quantised) {
    const CodeMeaning& meaning = meaningOf(quantised.code);
    const Difference dq = {-(quantised.code >> (bits - 1)), antilogarithm(quantised.logMagnitude + (y >> 2))};
    const int reconstructed = wrap16(signal.whole + dq.value());
    const bool transition = isTransition(dq.magnitude);

    adaptScaleFactor(meaning.scaleFactor);
    const bool toneNow = adaptPredictor(dq, reconstructed);
    adaptSpeed(meaning.speed, toneNow);
    tone = toneNow;
    if (transition) {
      predictor.clearCoefficients();
      tone = false;
      ap = 256;
    }
    return reconstructed;
  }

  // COMPRESS, EXPAND, SYNC: code word of a reconstructed signal, moved by one step where a further coder would otherwise choose
  // another ADPCM code than the received one
  int tandemCode(int reconstructed, int code, Law law) const {
    const LawLevels& levels = lawLevels[law];
    const int word = law == muLaw ? muLawOf(reconstructed) : aLawOf(reconstructed);
    // With the sign bit inverted the codes ascend with the difference.
    constexpr int offset = 1 << (bits - 1);
    const int again = quantise(levels.value[word]).code ^ offset, received = code ^ offset;
    return again == received ? word : again < received ? levels.greater[word] : levels.smaller[word];
  }

 private:
  static const CodeMeaning& meaningOf(int code) { return codeMeaning[(1 << bits) - 4 + code]; }
  static int muLawOf(int signal) {
    if (signal == kMin16) return muLawCode(0);
    const int x = limitedTo14Bits(signal) * 4;
    return muLawCode(static_cast<Zpp16s>(x < 0 && x != kMin16 ? x - 1 : x));
  }
  static int aLawOf(int signal) { return aLawCode(static_cast<Zpp16s>(limitedTo14Bits(signal == kMin16 ? -2 : signal) * 4)); }

  // LIMA, MIX: the fast scale factor weighs the more, the larger ap; the product's magnitude is truncated.
  int mixedScaleFactor() const {
    const int weight = ap > 255 ? 64 : ap >> 2, slow = yl >> 6;
    const int product = (yu - slow) * weight;
    return slow + ((product + (product >> 31 & 63)) >> 6);
  }

  // TRANS: a tone, and a difference above 3/4 of the slow scale factor. yu of at most 5120 lets yl rise to 327617 and no further:
  // the exponent stays below 10, from where on the standard limits the threshold.
  bool isTransition(int magnitude) const {
    if (!tone) return false;
    const int exponent = yl >> 15, mantissa = yl >> 10 & 31;
    const int threshold = (32 + mantissa) << exponent;
    return magnitude > (threshold + (threshold >> 1)) >> 1;
  }

  // FILTD, LIMB, FILTE
  void adaptScaleFactor(int target) {
    yu = std::clamp(y + ((target - y) >> 5), 544, 5120);
    yl += yu + (-yl >> 6);
  }

  // FILTA, FILTB, SUBTC, FILTC: ap decays while short- and long-term average agree and neither silence nor a tone is on.
  void adaptSpeed(int f, bool toneNow) {
    dms += (f - dms) >> 5;
    dml += (4 * f - dml) >> 7;
    const int disagreement = std::abs(4 * dms - dml);
    const bool slow = (y >= 1536) & (disagreement < dml >> 3) & !toneNow;
    ap += ((slow ? 0 : 512) - ap) >> 4;
  }

  // ADDC, UPA2, LIMC, UPA1, LIMD, TONE, and the zeros; returns whether a tone is detected.
  [[gnu::always_inline]] bool adaptPredictor(Difference dq, int reconstructed) {
    const int partial = wrap16(dq.value() + signal.zeros);
    const int sign0 = partial >> 31;
    const int a1 = predictor.pole1(), a2 = predictor.pole2();
    const int f1 = 4 * std::clamp(a1, -8191, 8191);
    const int step2 = (withSign(16384, sign0 ^ sign2) + withSign(-f1, sign0 ^ sign1)) >> 7;
    const int step1 = withSign(192, sign0 ^ sign1);
    const int moving = partial == 0 ? 0 : -1;
    const int new2 = std::clamp(a2 + (step2 & moving) - (a2 >> 7), -12288, 12288);
    const int limit1 = 15360 - new2;
    const int new1 = std::clamp(a1 + (step1 & moving) - (a1 >> 8), -limit1, limit1);
    predictor.template update<bits == 5 ? 9 : 8>(new1, new2, dq, reconstructed);
    sign2 = sign1;
    sign1 = sign0;
    return new2 < -11776;
  }

  Predictor predictor;
  Estimate signal = {};      // of the sample in progress
  int y = 0;                 // scale factor of the sample in progress, Q9
  int yl, yu, dms, dml, ap;  // as in AdpcmState
  int sign1, sign2;          // of dq + sez in the last two samples: 0, or -1 for negative
  bool tone;
};

template <int bits, class Predictor>
void encode(AdpcmState& state, const Zpp16s* src, Zpp8u* dst, Zpp32u len) {
  Adpcm<bits, Predictor> coder(state);
  for (Zpp32u n = 0; n < len; ++n) {
    coder.predict();
    const auto quantised = coder.quantise(src[n]);
    dst[n] = static_cast<Zpp8u>(quantised.code);
    coder.reconstruct(quantised);
  }
  coder.store(state);
}

template <int bits, class Predictor>
void decode(AdpcmState& state, const Zpp8u* src, Zpp16s* dst, Zpp32u len) {
  Adpcm<bits, Predictor> coder(state);
  const Law law = state.law == muLaw ? muLaw : state.law == aLaw ? aLaw : linear;
  for (Zpp32u n = 0; n < len; ++n) {
    const int code = src[n] & ((1 << bits) - 1);
    coder.predict();
    const int reconstructed = coder.reconstruct(coder.dequantise(code));
    const int out = law == linear ? limitedTo14Bits(reconstructed) : coder.tandemCode(reconstructed, code, law);
    dst[n] = static_cast<Zpp16s>(out);
  }
  coder.store(state);
}

template <class Predictor>
void encodeAtRate(void* block, const Zpp16s* src, Zpp8u* dst, Zpp32u len) {
  AdpcmState state = loadState(block);
  switch (state.rate) {
    case 0:
      encode<2, Predictor>(state, src, dst, len);
      break;
    case 1:
      encode<3, Predictor>(state, src, dst, len);
      break;
    case 2:
      encode<4, Predictor>(state, src, dst, len);
      break;
    default:
      encode<5, Predictor>(state, src, dst, len);
      break;
  }
  storeState(state, block);
}

template <class Predictor>
void decodeAtRate(void* block, const Zpp8u* src, Zpp16s* dst, Zpp32u len) {
  AdpcmState state = loadState(block);
  switch (state.rate) {
    case 0:
      decode<2, Predictor>(state, src, dst, len);
      break;
    case 1:
      decode<3, Predictor>(state, src, dst, len);
      break;
    case 2:
      decode<4, Predictor>(state, src, dst, len);
      break;
    default:
      decode<5, Predictor>(state, src, dst, len);
      break;
  }
  storeState(state, block);
}

}  // namespace zpp::g726
