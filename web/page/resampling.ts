// Conversion of the sampling rate: a windowed sinc in polyphase form.

function besselI0(x: number): number {
  let sum = 1, term = 1;
  for (let k = 1; term > 1e-12 * sum; ++k) sum += term *= (x / (2 * k)) ** 2;
  return sum;
}

const gcd = (a: number, b: number): number => (b === 0 ? a : gcd(b, a % b));

/** Flat to 92 % of the lower rate's band, 90 dB down at its edge; the same samples where the rates are equal */
export function resample(input: Float32Array, from: number, to: number): Float32Array {
  if (from === to) return input;
  const divisor = gcd(from, to), up = to / divisor, down = from / divisor;
  const band = Math.min(1, to / from); // of the input's
  const beta = 9, transition = 0.08 * band;
  const reach = Math.ceil(5.7 / transition); // input samples on either side, by Kaiser's formula for 90 dB
  const cutoff = band - transition / 2;
  const taps = 2 * reach;
  const phases = new Float32Array(up * taps);
  for (let phase = 0; phase < up; ++phase)
    for (let tap = 0; tap < taps; ++tap) {
      const t = tap - reach + 1 - phase / up;
      const x = Math.PI * cutoff * t;
      const sinc = Math.abs(t) < 1e-9 ? cutoff : (cutoff * Math.sin(x)) / x;
      const edge = 1 - (t / reach) ** 2;
      phases[phase * taps + tap] = edge <= 0 ? 0 : (sinc * besselI0(beta * Math.sqrt(edge))) / besselI0(beta);
    }
  const output = new Float32Array(Math.floor((input.length * up) / down));
  for (let n = 0; n < output.length; ++n) {
    const position = n * down, start = Math.floor(position / up) - reach + 1, phase = (position % up) * taps;
    let sum = 0;
    const first = Math.max(0, -start), last = Math.min(taps, input.length - start);
    for (let tap = first; tap < last; ++tap) sum += input[start + tap]! * phases[phase + tap]!;
    output[n] = sum;
  }
  return output;
}

export function toSamples(signal: Float32Array): Int16Array {
  return Int16Array.from(signal, (x) => Math.min(32767, Math.max(-32768, Math.round(x * 32768))));
}
