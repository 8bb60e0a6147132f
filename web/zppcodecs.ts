/**
 * libzppcodecs for the browser and Node.js: complete speech codecs, the same bits as everywhere else.
 *
 *     await load(fetch("zppcodecs.wasm"));
 *     const encoder = new Encoder("g729", { dtx: true });
 *     const payload = encoder.encode(speech);   // 80 samples in; 10, 2 or 0 octets out
 *
 * zppcodecs.h tells what frames and payloads of each codec are.
 */

/** What a codec is: a row of the library's table. */
export interface Codec {
  /** "g729", "g726": stable */
  readonly name: string;
  /** "ITU-T G.729" */
  readonly standard: string;
  /** Encoding name of the RTP payload format at the default bit rate */
  readonly rtpEncoding: string | null;
  /** Hz */
  readonly sampleRate: number;
  /** Samples a frame; of sample-based codecs the smallest group that a call takes */
  readonly frameSamples: number;
  /** Samples by which decoded speech lags behind the input */
  readonly delaySamples: number;
  /** Octets of a frame's longest payload */
  readonly maxPayload: number;
  /** bit/s, ascending */
  readonly bitRates: readonly number[];
  readonly defaultBitRate: number;
  /** Discontinuous transmission can be switched on */
  readonly hasDtx: boolean;
  /** The standard conceals lost frames; otherwise they decode to silence */
  readonly hasConcealment: boolean;
  /** A call takes any number of whole frames */
  readonly isSampleBased: boolean;
  /** The bit rate may change from frame to frame */
  readonly hasRateSwitch: boolean;
}

/** How a stream is coded; what is left out is the codec's default. */
export interface Options {
  bitRate?: number;
  dtx?: boolean;
  /** A choice of the codec's own, 0 the usual one: see ZppcOptions in zppcodecs.h */
  variant?: number;
}

export type Status =
  | "ZPPC_ERROR_NULL"
  | "ZPPC_ERROR_CODEC"
  | "ZPPC_ERROR_OPTION"
  | "ZPPC_ERROR_SIZE"
  | "ZPPC_ERROR_CAPACITY"
  | "ZPPC_ERROR_PAYLOAD"
  | "ZPPC_ERROR_MEMORY";

const statuses: readonly Status[] = [
  "ZPPC_ERROR_NULL",
  "ZPPC_ERROR_CODEC",
  "ZPPC_ERROR_OPTION",
  "ZPPC_ERROR_SIZE",
  "ZPPC_ERROR_CAPACITY",
  "ZPPC_ERROR_PAYLOAD",
  "ZPPC_ERROR_MEMORY",
];

/** A call that the library refuses. The stream has not changed. */
export class CodecError extends Error {
  override readonly name = "CodecError";
  constructor(readonly status: Status, text: string) {
    super(`${status}: ${text}`);
  }
}

interface Exports {
  readonly memory: WebAssembly.Memory;
  _initialize(): void;
  malloc(bytes: number): number;
  free(address: number): void;
  zppcCodecs(count: number): number;
  zppcVersion(): number;
  zppcErrorText(error: number): number;
  zppcEncoderCreate(codec: number, options: number, error: number): number;
  zppcEncoderDestroy(encoder: number): void;
  zppcEncoderSetBitRate(encoder: number, bitRate: number): number;
  zppcEncode(encoder: number, pcm: number, samples: number, payload: number, capacity: number): number;
  zppcDecoderCreate(codec: number, options: number, error: number): number;
  zppcDecoderDestroy(decoder: number): void;
  zppcDecode(decoder: number, payload: number, octets: number, pcm: number, capacity: number): number;
}

class Library {
  readonly codecs: readonly Codec[];
  readonly version: string;
  private readonly addresses = new Map<string, number>();
  private scratch = 0;
  private scratchBytes = 0;

  constructor(readonly c: Exports) {
    this.version = this.text(c.zppcVersion());
    const count = this.borrow(4);
    const table = c.zppcCodecs(count);
    const codecs: Codec[] = [];
    for (let i = 0; i < this.word(count); ++i) codecs.push(this.readCodec(table + 44 * i));
    this.codecs = Object.freeze(codecs);
  }

  /** `bytes` bytes, valid until the next call */
  borrow(bytes: number): number {
    if (bytes > this.scratchBytes) {
      this.c.free(this.scratch);
      this.scratch = this.scratchBytes = 0;
      this.scratch = this.c.malloc(bytes);
      if (this.scratch === 0) throw this.error(-7);
      this.scratchBytes = bytes;
    }
    return this.scratch;
  }

  // Views of the memory are made anew for each use: those from before it grew are detached.
  samples(address: number, count: number): Int16Array {
    return new Int16Array(this.c.memory.buffer, address, count);
  }
  octets(address: number, count: number): Uint8Array {
    return new Uint8Array(this.c.memory.buffer, address, count);
  }
  word(address: number): number {
    return new Int32Array(this.c.memory.buffer, address, 1)[0]!;
  }

  addressOf(codec: string): number {
    const address = this.addresses.get(codec);
    if (address === undefined) throw this.error(-2);
    return address;
  }

  error(code: number): CodecError {
    return new CodecError(statuses[-code - 1] ?? "ZPPC_ERROR_NULL", this.text(this.c.zppcErrorText(code)));
  }

  /** A result of the C API: an error where it is below zero */
  checked(result: number): number {
    if (result < 0) throw this.error(result);
    return result;
  }

  /** An encoder or decoder */
  create(make: (codec: number, options: number, error: number) => number, codec: string, options: Options): number {
    const address = this.addressOf(codec);
    const block = this.borrow(16);
    new Int32Array(this.c.memory.buffer, block, 4).set([options.bitRate ?? 0, options.dtx ? 1 : 0, options.variant ?? 0, 0]);
    const stream = make(address, block, block + 12);
    if (stream === 0) throw this.error(this.word(block + 12));
    return stream;
  }

  private text(address: number): string {
    let end = address;
    const bytes = new Uint8Array(this.c.memory.buffer);
    while (bytes[end] !== 0) ++end;
    return new TextDecoder().decode(bytes.slice(address, end));
  }

  private readCodec(address: number): Codec {
    const row = new Int32Array(this.c.memory.buffer, address, 11);
    const features = row[10]!;
    const codec: Codec = {
      name: this.text(row[0]!),
      standard: this.text(row[1]!),
      rtpEncoding: row[2] === 0 ? null : this.text(row[2]!),
      sampleRate: row[3]!,
      frameSamples: row[4]!,
      delaySamples: row[5]!,
      maxPayload: row[6]!,
      bitRates: Object.freeze([...new Int32Array(this.c.memory.buffer, row[7]!, row[8]!)]),
      defaultBitRate: row[9]!,
      hasDtx: (features & 1) !== 0,
      hasConcealment: (features & 2) !== 0,
      isSampleBased: (features & 4) !== 0,
      hasRateSwitch: (features & 8) !== 0,
    };
    this.addresses.set(codec.name, address);
    return Object.freeze(codec);
  }
}

let loaded: Library | undefined;

function library(): Library {
  if (!loaded) throw new Error("zppcodecs: load() has not finished");
  return loaded;
}

/** Starts the library. `wasm` is zppcodecs.wasm: its bytes, compiled or as it is being fetched. Again: does nothing. */
export async function load(wasm: BufferSource | WebAssembly.Module | Response | Promise<Response>): Promise<void> {
  if (loaded) return;
  const imports = { env: { emscripten_notify_memory_growth() {} } };
  const source = await wasm;
  const module =
    source instanceof WebAssembly.Module
      ? source
      : await WebAssembly.compile("arrayBuffer" in source ? await source.arrayBuffer() : source);
  const instance = await WebAssembly.instantiate(module, imports);
  const c = instance.exports as unknown as Exports;
  c._initialize();
  loaded ??= new Library(c);
}

/** The table of codecs */
export function codecs(): readonly Codec[] {
  return library().codecs;
}

/** The version of libzppcodecs, "major.minor" */
export function version(): string {
  return library().version;
}

function rowOf(name: string): Codec {
  const codec = library().codecs.find((row) => row.name === name);
  if (!codec) throw library().error(-2);
  return codec;
}

/** Gives streams back that were dropped without close(). */
const forgotten = new FinalizationRegistry<() => void>((destroy) => destroy());

export class Encoder {
  readonly codec: Codec;
  private stream: number;

  constructor(codec: string, options: Options = {}) {
    const { c } = library();
    this.codec = rowOf(codec);
    const stream = library().create(c.zppcEncoderCreate, codec, options);
    this.stream = stream;
    forgotten.register(this, () => c.zppcEncoderDestroy(stream), this);
  }

  /** Codes one frame; sample-based codecs one or more. The payload; empty where nothing is sent. */
  encode(pcm: Int16Array): Uint8Array {
    const lib = library();
    const capacity = this.codec.isSampleBased
      ? Math.ceil(pcm.length / this.codec.frameSamples) * this.codec.maxPayload
      : this.codec.maxPayload;
    const input = lib.borrow(2 * pcm.length + capacity);
    const output = input + 2 * pcm.length;
    lib.samples(input, pcm.length).set(pcm);
    const octets = lib.checked(lib.c.zppcEncode(this.stream, input, pcm.length, output, capacity));
    return lib.octets(output, octets).slice();
  }

  /** Sets the bit rate from the next frame on. */
  set bitRate(bitRate: number) {
    const lib = library();
    lib.checked(lib.c.zppcEncoderSetBitRate(this.stream, bitRate));
  }

  /** Releases the stream's memory. Further calls but this one are refused. */
  close(): void {
    forgotten.unregister(this);
    library().c.zppcEncoderDestroy(this.stream);
    this.stream = 0;
  }
}

export class Decoder {
  readonly codec: Codec;
  private stream: number;

  constructor(codec: string, options: Options = {}) {
    const { c } = library();
    this.codec = rowOf(codec);
    const stream = library().create(c.zppcDecoderCreate, codec, options);
    this.stream = stream;
    forgotten.register(this, () => c.zppcDecoderDestroy(stream), this);
  }

  /**
   * Decodes the payload of one frame; sample-based codecs: of one or more. Null: the frame was lost and is concealed. Empty:
   * nothing was sent. `lostSamples`: of sample-based codecs, how much a lost payload stands for; 20 ms unless told.
   */
  decode(payload: Uint8Array | null, lostSamples = this.codec.sampleRate / 50): Int16Array {
    const lib = library();
    const { frameSamples, isSampleBased } = this.codec;
    const octets = payload?.length ?? 0;
    // The smallest group of a sample-based codec takes at least an octet.
    const capacity = !isSampleBased ? frameSamples : octets === 0 ? lostSamples : octets * frameSamples;
    const output = lib.borrow(2 * capacity + octets);
    const input = output + 2 * capacity;
    if (payload) lib.octets(input, octets).set(payload);
    const samples = lib.checked(lib.c.zppcDecode(this.stream, payload ? input : 0, octets, output, capacity));
    return lib.samples(output, samples).slice();
  }

  /** Releases the stream's memory. Further calls but this one are refused. */
  close(): void {
    forgotten.unregister(this);
    library().c.zppcDecoderDestroy(this.stream);
    this.stream = 0;
  }
}
