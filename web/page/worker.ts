// Codes and measures beside the page.
import { Codec, codecs, load, version } from "../zppcodecs.js";
import { pass } from "./coding.js";
import { segmentalSnr, snr, spectralDistance, spectrogram } from "./measures.js";
import type { Coded, Reply, Request, Settings, Spectrogram } from "./messages.js";
import { resample, toSamples } from "./resampling.js";

const reply = (message: Reply) => self.postMessage(message);

let speech = new Float32Array(0), speechRate = 8000;
// The speech at the rates that codecs have asked for
const converted = new Map<number, { samples: Int16Array; spectrum: Spectrogram }>();

function speechAt(sampleRate: number) {
  let found = converted.get(sampleRate);
  if (!found) {
    const samples = toSamples(resample(speech, speechRate, sampleRate));
    converted.set(sampleRate, (found = { samples, spectrum: spectrogram(samples, sampleRate) }));
  }
  return found;
}

function code(codec: Codec, settings: Settings): Coded {
  const { sampleRate, delaySamples: delay } = codec;
  const { samples: original, spectrum } = speechAt(sampleRate);
  const { decoded, frames, packets, packetsLost, encoding, decoding } = pass(original, codec, settings);
  const aligned = decoded.subarray(delay, delay + original.length);
  const residual = Int16Array.from(original, (x, n) => Math.min(32767, Math.max(-32768, x - aligned[n]!)));
  const spectrograms = {
    original: spectrum,
    decoded: spectrogram(aligned, sampleRate),
    residual: spectrogram(residual, sampleRate),
  };
  const seconds = (frames.kinds.length * frames.samplesEach) / sampleRate;
  return {
    settings,
    sampleRate,
    original,
    decoded,
    delay,
    frames,
    measures: {
      snr: snr(original, aligned),
      segmentalSnr: segmentalSnr(original, aligned, sampleRate),
      spectralDistance: spectralDistance(spectrum, spectrograms.decoded, sampleRate),
      bitRate: (8 * frames.payloads.length) / seconds,
      packets,
      packetsLost,
      encoding: seconds / encoding,
      decoding: seconds / decoding,
    },
    spectrograms,
  };
}

self.onmessage = async ({ data }: MessageEvent<Request>) => {
  try {
    switch (data.type) {
      case "start":
        await load(data.wasm);
        return reply({ type: "started", codecs: codecs(), version: version() });
      case "speech":
        speech = data.samples;
        speechRate = data.sampleRate;
        return converted.clear();
      case "code": {
        const codec = codecs().find((row) => row.name === data.settings.codec);
        if (codec) reply({ type: "coded", coded: code(codec, data.settings) });
      }
    }
  } catch (error) {
    reply({ type: "failed", reason: error instanceof Error ? error.message : String(error) });
  }
};
