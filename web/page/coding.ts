// Speech through encoder, network and decoder.
import { Codec, Decoder, Encoder } from "../zppcodecs.js";
import { Frames, Kind, Settings } from "./messages.js";
import { lostPackets } from "./loss.js";

const packetSeconds = 0.02;
const descriptorInterval = 24; // frames between the silence descriptors that a GSM link sends

/** Tells what the payload of a frame is; called for every frame in turn. */
function kindOfPayload(codec: Codec, dtx: boolean): (payload: Uint8Array) => Kind {
  const bySize = (size: number) => (p: Uint8Array) =>
    p.length === 0 ? Kind.nothing : p.length === size ? Kind.descriptor : Kind.speech;
  const byType = (descriptor: number) => (p: Uint8Array) => {
    const type = p.length === 0 ? 15 : (p[0]! >> 3) & 15;
    return type === 15 ? Kind.nothing : type === descriptor ? Kind.descriptor : Kind.speech;
  };
  if (codec.name.startsWith("g729")) return bySize(2);
  if (codec.name === "g723.1") return bySize(4);
  if (codec.name === "amr") return byType(8);
  if (codec.name === "amr-wb") return byType(9);
  if (codec.name === "gsm-fr" && dtx) {
    // The encoder makes a descriptor of every frame of a pause; the link sends the first and then one in 24.
    let pause = 0;
    return (p) => {
      if (!isFullRateDescriptor(p)) {
        pause = 0;
        return Kind.speech;
      }
      return pause++ % descriptorInterval === 0 ? Kind.descriptor : Kind.nothing;
    };
  }
  return () => Kind.speech;
}

/** All pulse codes of a silence descriptor are zero (3GPP TS 46.012 clause 5.2). */
function isFullRateDescriptor(payload: Uint8Array): boolean {
  const bit = (n: number) => (payload[n >> 3]! >> (7 - (n & 7))) & 1;
  const parametersBits = 4 + 36, subframeBits = 56, beforePulses = 17;
  for (let s = 0; s < 4; ++s)
    for (let n = beforePulses; n < subframeBits; ++n) if (bit(parametersBits + subframeBits * s + n)) return false;
  return true;
}

export interface Passage {
  decoded: Int16Array;
  frames: Frames;
  packets: number;
  packetsLost: number;
  /** seconds */
  encoding: number;
  decoding: number;
}

/** Codes speech, loses what the settings lose, decodes the rest. Silence completes the last frame and flushes the codec. */
export function pass(speech: Int16Array, codec: Codec, settings: Settings): Passage {
  const { dtx, variant, bitRate } = settings;
  const samplesEach = codec.isSampleBased ? codec.sampleRate * packetSeconds : codec.frameSamples;
  const count = Math.ceil((speech.length + codec.delaySamples) / samplesEach);
  const padded = new Int16Array(count * samplesEach);
  padded.set(speech);

  const encoder = new Encoder(codec.name, { bitRate, dtx, variant });
  const payloads: Uint8Array[] = [];
  let clock = performance.now();
  for (let n = 0; n < count; ++n) payloads.push(encoder.encode(padded.subarray(n * samplesEach, (n + 1) * samplesEach)));
  const encoding = (performance.now() - clock) / 1000;
  encoder.close();

  const packetFrames = Math.max(1, Math.round((packetSeconds * codec.sampleRate) / samplesEach));
  const packets = Math.ceil(count / packetFrames);
  const lost = lostPackets(packets, settings.loss);
  const kindOf = kindOfPayload(codec, dtx);
  const kinds = new Uint8Array(count);
  const hurt = new Set<number>(); // packets that were lost with something in them
  let sent = 0, sentPackets = 0, lastSent = -1;
  payloads.forEach((payload, n) => {
    const packet = Math.floor(n / packetFrames);
    const kind = kindOf(payload);
    kinds[n] = kind;
    if (kind === Kind.nothing) return;
    if (packet !== lastSent) ++sentPackets;
    lastSent = packet;
    sent += payload.length;
    if (!lost[packet]) return;
    kinds[n] = Kind.lost;
    hurt.add(packet);
  });

  const decoder = new Decoder(codec.name, { bitRate, dtx, variant });
  const decoded = new Int16Array(padded.length);
  const nothing = new Uint8Array(0);
  clock = performance.now();
  payloads.forEach((payload, n) => {
    const arrived = kinds[n] === Kind.lost ? null : kinds[n] === Kind.nothing ? nothing : payload;
    decoded.set(decoder.decode(arrived, samplesEach), n * samplesEach);
  });
  const decoding = (performance.now() - clock) / 1000;
  decoder.close();

  const octets = Uint16Array.from(payloads, (p, n) => (kinds[n] === Kind.nothing ? 0 : p.length));
  const all = new Uint8Array(sent);
  let at = 0;
  payloads.forEach((payload, n) => {
    if (octets[n] === 0) return;
    all.set(payload, at);
    at += payload.length;
  });
  return {
    decoded,
    frames: { samplesEach, packetFrames, kinds, octets, payloads: all },
    packets: sentPackets,
    packetsLost: hurt.size,
    encoding,
    decoding,
  };
}
