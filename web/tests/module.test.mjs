// The module in Node.js, and the page's parts that need no browser. Reads build/web and what it was compiled from.
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { test } from "node:test";

const build = new URL("../../build/", import.meta.url);
const module = await import(new URL("wasm/scripts/zppcodecs.js", build));
const { codecs, CodecError, Decoder, Encoder, load } = module;
const { lostPackets } = await import(new URL("wasm/scripts/page/loss.js", build));
const { resample } = await import(new URL("wasm/scripts/page/resampling.js", build));
const { segmentalSnr, snr, spectralDistance, spectrogram } = await import(new URL("wasm/scripts/page/measures.js", build));

const speechAt = (rate) => {
  const raw = readFileSync(new URL(`wasm/speech-${rate}.raw`, build));
  return new Int16Array(raw.buffer.slice(raw.byteOffset, raw.byteOffset + raw.length));
};
const refused = (status) => (error) => error instanceof CodecError && error.status === status && error.message.startsWith(status);

test("nothing works before load, and load takes the bytes", async () => {
  assert.throws(() => codecs(), /load/);
  await load(readFileSync(new URL("web/zppcodecs.wasm", build)));
  assert.ok(codecs().length >= 14);
});

test("the table of codecs is that of the header", () => {
  const row = codecs().find(({ name }) => name === "g729");
  const { standard, rtpEncoding, sampleRate, frameSamples, delaySamples, maxPayload, bitRates, defaultBitRate } = row;
  assert.deepEqual(
    [standard, rtpEncoding, sampleRate, frameSamples, delaySamples, maxPayload, [...bitRates], defaultBitRate],
    ["ITU-T G.729", "G729", 8000, 80, 40, 10, [8000], 8000],
  );
  assert.ok(row.hasDtx && row.hasConcealment && !row.isSampleBased && !row.hasRateSwitch);
  assert.ok(codecs().find(({ name }) => name === "g726").isSampleBased);
});

test("errors carry the name of the status and leave the stream as it was", () => {
  assert.throws(() => new Encoder("g999"), refused("ZPPC_ERROR_CODEC"));
  assert.throws(() => new Encoder("g729", { bitRate: 9600 }), refused("ZPPC_ERROR_OPTION"));
  assert.throws(() => new Decoder("g711-alaw", { dtx: true }), refused("ZPPC_ERROR_OPTION"));
  assert.throws(() => new Encoder("g726", { variant: 2 }), refused("ZPPC_ERROR_OPTION"));
  const speech = speechAt(8000);
  const encoder = new Encoder("g729"), undisturbed = new Encoder("g729");
  assert.throws(() => encoder.encode(speech.subarray(0, 79)), refused("ZPPC_ERROR_SIZE"));
  assert.throws(() => (encoder.bitRate = 8000), refused("ZPPC_ERROR_OPTION"));
  assert.deepEqual(encoder.encode(speech.subarray(0, 80)), undisturbed.encode(speech.subarray(0, 80)));
  assert.throws(() => new Decoder("g729").decode(new Uint8Array(7)), refused("ZPPC_ERROR_SIZE"));
});

test("a closed stream refuses calls, and may be closed again", () => {
  const encoder = new Encoder("amr"), decoder = new Decoder("amr");
  encoder.close();
  decoder.close();
  encoder.close();
  assert.throws(() => encoder.encode(new Int16Array(160)), refused("ZPPC_ERROR_NULL"));
  assert.throws(() => decoder.decode(null), refused("ZPPC_ERROR_NULL"));
});

test("results stay when later calls reuse or grow the memory", () => {
  const speech = speechAt(8000);
  const encoder = new Encoder("g711-alaw"), decoder = new Decoder("g711-alaw");
  const first = encoder.encode(speech.subarray(0, 160)), copy = first.slice();
  const long = new Int16Array(4_000_000).fill(1234); // more than the memory that the module starts with
  const octets = encoder.encode(long);
  assert.deepEqual(first, copy);
  const heard = decoder.decode(octets);
  assert.equal(heard.length, long.length);
  assert.ok(heard.every((x) => x === heard[0]) && Math.abs(heard[0] - 1234) < 64);
  encoder.close();
  decoder.close();
});

test("the bit rate switches from frame to frame", () => {
  const speech = speechAt(8000);
  const encoder = new Encoder("amr", { bitRate: 4750 });
  const sizes = codecs()
    .find(({ name }) => name === "amr")
    .bitRates.map((bitRate, n) => {
      encoder.bitRate = bitRate;
      return encoder.encode(speech.subarray(160 * n, 160 * (n + 1))).length;
    });
  assert.deepEqual(sizes, [13, 14, 16, 18, 20, 21, 27, 32]);
});

test("losses repeat with their seed and keep share and length", () => {
  const count = 200000;
  for (const kind of ["random", "bursts"])
    for (const percent of [1, 10, 50]) {
      const loss = { kind, percent, burst: 6, seed: 7 };
      const lost = lostPackets(count, loss);
      assert.deepEqual(lost, lostPackets(count, loss));
      assert.notDeepEqual(lost, lostPackets(count, { ...loss, seed: 8 }));
      const share = lost.filter(Boolean).length / count;
      assert.ok(Math.abs(share - percent / 100) < 0.12 * (percent / 100), `${kind} ${percent} %: ${share}`);
      const bursts = lost.filter((is, n) => is && !lost[n - 1]).length;
      const length = (share * count) / bursts, expected = kind === "bursts" ? 6 : 1 / (1 - percent / 100);
      assert.ok(Math.abs(length - expected) < 0.1 * expected, `${kind} ${percent} %: bursts of ${length}`);
    }
  assert.ok(!lostPackets(100, { kind: "none", percent: 50, burst: 1, seed: 1 }).includes(true));
});

test("resampling keeps the band and nothing above it", () => {
  const level = (signal) => {
    const inner = signal.subarray(signal.length / 4, (3 * signal.length) / 4);
    return 10 * Math.log10(inner.reduce((sum, x) => sum + x * x, 0) / inner.length / 0.5);
  };
  for (const [from, to] of [[48000, 8000], [44100, 16000], [8000, 16000], [11025, 8000]]) {
    const tone = (hertz) => Float32Array.from({ length: from }, (_, n) => Math.sin((2 * Math.PI * hertz * n) / from));
    const band = Math.min(from, to) / 2;
    const passed = resample(tone(0.9 * band), from, to);
    assert.ok(Math.abs(passed.length - to) <= 1);
    assert.ok(Math.abs(level(passed)) < 0.05, `${from} to ${to}: ${level(passed)} dB`);
    if (to < from) assert.ok(level(resample(tone(1.02 * band), from, to)) < -80);
  }
  const same = Float32Array.of(0.25, -0.5);
  assert.equal(resample(same, 8000, 8000), same);
});

test("measures", () => {
  const speech = speechAt(8000), halved = speech.map((x) => x / 2);
  const even = speech.map((x) => x & ~1), half = even.map((x) => x / 2);
  assert.equal(snr(speech, speech), Infinity);
  assert.ok(Number.isNaN(snr(new Int16Array(800), halved.subarray(0, 800))));
  assert.ok(Math.abs(snr(even, half) - 6.0206) < 1e-3);
  assert.ok(Math.abs(segmentalSnr(even, half, 8000) - 6.0206) < 1e-3);
  const a = spectrogram(even, 8000), b = spectrogram(half, 8000);
  assert.equal(spectralDistance(a, a, 8000), 0);
  assert.ok(Math.abs(spectralDistance(a, b, 8000) - 6) < 1);
  const tone = spectrogram(Int16Array.from({ length: 8000 }, (_, n) => 32767 * Math.sin((2 * Math.PI * 1000 * n) / 8000)), 8000);
  const column = tone.levels.subarray(100 * tone.bins, 101 * tone.bins);
  assert.equal(column.indexOf(Math.max(...column)), (1000 / 4000) * (tone.bins - 1));
  assert.ok(Math.abs(Math.max(...column) / 2 - 127.5) <= 0.5); // full scale is 0 dB
});
