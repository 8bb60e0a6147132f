// How far decoded speech is from the original.
import type { Spectrogram } from "./messages.js";

function energy(x: Int16Array, start: number, end: number): number {
  let sum = 0;
  for (let n = start; n < end; ++n) sum += x[n]! * x[n]!;
  return sum;
}

function errorEnergy(a: Int16Array, b: Int16Array, start: number, end: number): number {
  let sum = 0;
  for (let n = start; n < end; ++n) sum += (a[n]! - b[n]!) ** 2;
  return sum;
}

/** dB; infinite for equal signals, NaN for silence */
export function snr(original: Int16Array, decoded: Int16Array, start = 0, end = original.length): number {
  const signal = energy(original, start, end);
  return signal === 0 ? NaN : 10 * Math.log10(signal / errorEnergy(original, decoded, start, end));
}

/** The mean over segments of 20 ms that are louder than -60 dB of full scale, each held between -10 and 60 dB */
export function segmentalSnr(original: Int16Array, decoded: Int16Array, sampleRate: number): number {
  const length = sampleRate / 50;
  const floor = 32.768 ** 2 * length;
  let sum = 0, segments = 0;
  for (let n = 0; n + length <= original.length; n += length) {
    if (energy(original, n, n + length) < floor) continue;
    sum += Math.min(60, Math.max(-10, snr(original, decoded, n, n + length)));
    ++segments;
  }
  return segments > 0 ? sum / segments : NaN;
}

/** In half decibels, as Spectrogram has them */
const lowestLevel = -127.5;
export const levelOf = (byte: number): number => byte / 2 + lowestLevel;

/** Hann windows of 32 ms every 5 ms, centred on their column */
export function spectrogram(signal: Int16Array, sampleRate: number): Spectrogram {
  const size = 2 ** Math.round(Math.log2(sampleRate * 0.032)), half = size / 2;
  const step = sampleRate / 200;
  const columns = Math.max(1, Math.ceil(signal.length / step));
  const window = Float64Array.from({ length: size }, (_, n) => 0.5 - 0.5 * Math.cos((2 * Math.PI * (n + 0.5)) / size));
  const fullScale = 32768 * (size / 4); // a sine of full scale gives half of the window's sum
  const transform = fft(size);
  const re = new Float64Array(size), im = new Float64Array(size);
  const bins = half + 1;
  const levels = new Uint8Array(columns * bins);
  for (let column = 0; column < columns; ++column) {
    const start = column * step - half;
    for (let n = 0; n < size; ++n) re[n] = (signal[start + n] ?? 0) * window[n]!;
    im.fill(0);
    transform(re, im);
    for (let k = 0; k < bins; ++k) {
      const power = (re[k]! ** 2 + im[k]! ** 2) / fullScale ** 2;
      levels[column * bins + k] = Math.min(255, Math.max(0, Math.round(2 * (10 * Math.log10(power + 1e-15) - lowestLevel))));
    }
  }
  return { bins, columns, step: 1 / 200, levels };
}

/** Root mean square of the differences of level, in dB, over bands as wide as the ear's and all columns above -60 dB */
export function spectralDistance(original: Spectrogram, decoded: Spectrogram, sampleRate: number): number {
  const bands = barkBands(original.bins, sampleRate / 2);
  const power = Float64Array.from({ length: 256 }, (_, byte) => 10 ** (levelOf(byte) / 10));
  const bandPower = (levels: Uint8Array, at: number, from: number, to: number) => {
    let sum = 0;
    for (let k = from; k < to; ++k) sum += power[levels[at + k]!]!;
    return sum;
  };
  const quiet = 1e-7; // -70 dB: what is below both sides is alike
  let sum = 0, terms = 0;
  for (let column = 0; column < original.columns; ++column) {
    const at = column * original.bins;
    if (bandPower(original.levels, at, 0, original.bins) < 1e-6) continue;
    for (const [from, to] of bands) {
      const a = bandPower(original.levels, at, from, to) + quiet, b = bandPower(decoded.levels, at, from, to) + quiet;
      sum += (10 * Math.log10(a / b)) ** 2;
      ++terms;
    }
  }
  return terms > 0 ? Math.sqrt(sum / terms) : NaN;
}

/** First and one past the last bin of each band of a Bark (Traunmüller's formula) from 100 Hz to 95 % of the range */
function barkBands(bins: number, range: number): [number, number][] {
  const bark = (f: number) => (26.81 * f) / (1960 + f) - 0.53;
  const bands: [number, number][] = [];
  const last = Math.floor((bins - 1) * 0.95);
  let from = Math.ceil((100 / range) * (bins - 1));
  for (let k = from + 1; k <= last; ++k)
    if (k === last || bark((k / (bins - 1)) * range) - bark((from / (bins - 1)) * range) >= 1) {
      bands.push([from, k]);
      from = k;
    }
  return bands;
}

/** The complex Fourier transform of a power of two, in place */
function fft(size: number): (re: Float64Array, im: Float64Array) => void {
  const bits = Math.log2(size);
  const reversed = Uint16Array.from({ length: size }, (_, n) => {
    let r = 0;
    for (let b = 0; b < bits; ++b) r |= ((n >> b) & 1) << (bits - 1 - b);
    return r;
  });
  const cos = Float64Array.from({ length: size / 2 }, (_, n) => Math.cos((2 * Math.PI * n) / size));
  const sin = Float64Array.from({ length: size / 2 }, (_, n) => Math.sin((2 * Math.PI * n) / size));
  return (re, im) => {
    for (let n = 0; n < size; ++n) {
      const m = reversed[n]!;
      if (m <= n) continue;
      [re[n], re[m]] = [re[m]!, re[n]!];
      [im[n], im[m]] = [im[m]!, im[n]!];
    }
    for (let half = 1; half < size; half *= 2)
      for (let start = 0; start < size; start += 2 * half)
        for (let k = 0; k < half; ++k) {
          const c = cos[(k * size) / (2 * half)]!, s = sin[(k * size) / (2 * half)]!;
          const a = start + k, b = a + half;
          const x = re[b]! * c + im[b]! * s, y = im[b]! * c - re[b]! * s;
          re[b] = re[a]! - x;
          im[b] = im[a]! - y;
          re[a]! += x;
          im[a]! += y;
        }
  };
}
