// What the page and its worker tell each other.
import type { Codec } from "../zppcodecs.js";

export interface Loss {
  kind: "none" | "random" | "bursts";
  /** of the packets */
  percent: number;
  /** mean length of a burst in packets */
  burst: number;
  seed: number;
}

export interface Settings {
  codec: string;
  bitRate: number;
  dtx: boolean;
  variant: number;
  loss: Loss;
}

export enum Kind {
  speech,
  /** silence descriptor */
  descriptor,
  /** nothing was sent */
  nothing,
  lost,
}

/** What was sent for each frame */
export interface Frames {
  samplesEach: number;
  packetFrames: number;
  kinds: Uint8Array;
  octets: Uint16Array;
  /** one behind the other, those of lost frames too */
  payloads: Uint8Array;
}

/** Levels of a signal over time and frequency: columns of bins, in half decibels above -127.5 dB of full scale */
export interface Spectrogram {
  bins: number;
  columns: number;
  /** seconds from column to column */
  step: number;
  levels: Uint8Array;
}

export interface Measures {
  snr: number;
  segmentalSnr: number;
  /** dB */
  spectralDistance: number;
  /** bit/s over the whole time */
  bitRate: number;
  packets: number;
  packetsLost: number;
  /** times real time */
  encoding: number;
  decoding: number;
}

export interface Coded {
  settings: Settings;
  sampleRate: number;
  original: Int16Array;
  /** what the decoder gives, the codec's delay at its beginning */
  decoded: Int16Array;
  delay: number;
  frames: Frames;
  measures: Measures;
  spectrograms: { original: Spectrogram; decoded: Spectrogram; residual: Spectrogram };
}

export type Request =
  | { type: "start"; wasm: Uint8Array }
  | { type: "speech"; samples: Float32Array; sampleRate: number }
  | { type: "code"; settings: Settings };

export type Reply =
  | { type: "started"; codecs: readonly Codec[]; version: string }
  | { type: "coded"; coded: Coded }
  | { type: "failed"; reason: string };
