// Speech from files and from the microphone: one channel of samples from -1 to 1 at their own rate.

export interface Speech {
  samples: Float32Array;
  sampleRate: number;
}

export const longestSeconds = 120;

function mixed(channels: Float32Array[]): Float32Array {
  const [first] = channels;
  if (!first || channels.length === 1) return first ?? new Float32Array(0);
  return first.map((_, n) => channels.reduce((sum, channel) => sum + channel[n]!, 0) / channels.length);
}

/** A WAV file of 16-bit samples, sample for sample; null for anything else, which the browser may know. */
function readWav(bytes: ArrayBuffer): Speech | null {
  const view = new DataView(bytes);
  const tag = (at: number) => (at + 4 <= view.byteLength ? String.fromCharCode(...new Uint8Array(bytes, at, 4)) : "");
  if (tag(0) !== "RIFF" || tag(8) !== "WAVE") return null;
  let format: { channels: number; sampleRate: number } | null = null;
  for (let at = 12; at + 8 <= view.byteLength; ) {
    const length = view.getUint32(at + 4, true), body = at + 8;
    if (tag(at) === "fmt " && length >= 16 && body + 16 <= view.byteLength) {
      const code = view.getUint16(body, true);
      const extended = code === 0xfffe && length >= 26 && body + 26 <= view.byteLength && view.getUint16(body + 24, true) === 1;
      if ((code !== 1 && !extended) || view.getUint16(body + 14, true) !== 16) return null;
      format = { channels: view.getUint16(body + 2, true), sampleRate: view.getUint32(body + 4, true) };
    }
    if (tag(at) === "data" && format && format.channels > 0 && format.sampleRate > 0) {
      const { channels, sampleRate } = format;
      const frames = Math.floor(Math.min(length, view.byteLength - body) / (2 * channels));
      const channel = (c: number) =>
        Float32Array.from({ length: frames }, (_, n) => view.getInt16(body + 2 * (n * channels + c), true) / 32768);
      return { samples: mixed(Array.from({ length: channels }, (_, c) => channel(c))), sampleRate };
    }
    at = body + length + (length & 1);
  }
  return null;
}

/** Whatever the browser can decode */
export async function readSpeech(bytes: ArrayBuffer): Promise<Speech> {
  const wav = readWav(bytes);
  if (wav) return wav;
  const sampleRate = 48000;
  const buffer = await new OfflineAudioContext(1, 1, sampleRate).decodeAudioData(bytes);
  return { samples: mixed(Array.from({ length: buffer.numberOfChannels }, (_, c) => buffer.getChannelData(c))), sampleRate };
}

const capture = `registerProcessor("capture", class extends AudioWorkletProcessor {
  process([input]) {
    if (input[0]) this.port.postMessage(input[0].slice());
    return true;
  }
})`;

/** Records until it is stopped; untouched by the browser's own processing of calls. */
export class Recorder {
  private chunks: Float32Array[] = [];
  private length = 0;
  private constructor(private readonly context: AudioContext, private readonly stream: MediaStream) {}

  get seconds(): number {
    return this.length / this.context.sampleRate;
  }

  static async start(): Promise<Recorder> {
    const context = new AudioContext();
    // A page from the disk may load no module but one in its own address.
    await context.audioWorklet.addModule(`data:text/javascript,${encodeURIComponent(capture)}`);
    const stream = await navigator.mediaDevices
      .getUserMedia({ audio: { echoCancellation: false, noiseSuppression: false, autoGainControl: false, channelCount: 1 } })
      .catch(async (refusal) => {
        await context.close();
        throw refusal;
      });
    const recorder = new Recorder(context, stream);
    const node = new AudioWorkletNode(context, "capture", { numberOfOutputs: 0 });
    node.port.onmessage = ({ data }: MessageEvent<Float32Array>) => {
      recorder.chunks.push(data);
      recorder.length += data.length;
    };
    context.createMediaStreamSource(stream).connect(node);
    return recorder;
  }

  async stop(): Promise<Speech> {
    this.stream.getTracks().forEach((track) => track.stop());
    const { sampleRate } = this.context;
    await this.context.close();
    const samples = new Float32Array(this.length);
    let at = 0;
    for (const chunk of this.chunks) {
      samples.set(chunk, at);
      at += chunk.length;
    }
    return { samples, sampleRate };
  }
}

/** A WAV file of 16-bit samples */
export function writeWav(samples: Int16Array, sampleRate: number): Blob {
  const header = new DataView(new ArrayBuffer(44));
  const tag = (at: number, text: string) => [...text].forEach((c, n) => header.setUint8(at + n, c.charCodeAt(0)));
  tag(0, "RIFF");
  header.setUint32(4, 36 + 2 * samples.length, true);
  tag(8, "WAVEfmt ");
  header.setUint32(16, 16, true);
  header.setUint16(20, 1, true);
  header.setUint16(22, 1, true);
  header.setUint32(24, sampleRate, true);
  header.setUint32(28, 2 * sampleRate, true);
  header.setUint16(32, 2, true);
  header.setUint16(34, 16, true);
  tag(36, "data");
  header.setUint32(40, 2 * samples.length, true);
  return new Blob([header, samples], { type: "audio/wav" });
}
