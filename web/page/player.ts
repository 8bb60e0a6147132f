// Plays original, decoded speech and their difference in step, so that switching keeps the place.

export const voices = ["original", "decoded", "difference"] as const;
export type Voice = (typeof voices)[number];

export class Player {
  voice: Voice = "decoded";
  private context: AudioContext | null = null;
  private signals: Float32Array[] = [];
  private sampleRate = 8000;
  private sources: AudioBufferSourceNode[] = [];
  private gains: GainNode[] = [];
  private rest = 0; // the place, in seconds, while nothing plays
  private startedAt = 0; // place and time of the context at the start
  private startTime = 0;
  private loop: [number, number] = [0, 0];

  constructor(private readonly onChange: () => void) {}

  get playing(): boolean {
    return this.sources.length > 0;
  }
  get duration(): number {
    return (this.signals[0]?.length ?? 0) / this.sampleRate;
  }

  get position(): number {
    if (!this.playing || !this.context) return this.rest;
    const late = this.context.outputLatency || 0;
    const place = this.startedAt + Math.max(0, this.context.currentTime - this.startTime - late);
    const [from, to] = this.loop;
    return place < to ? place : from + ((place - from) % Math.max(0.01, to - from));
  }

  /** New signals in the order of the voices; playing goes on where it was. */
  setSignals(signals: Float32Array[], sampleRate: number): void {
    const place = Math.min(this.position, (signals[0]?.length ?? 0) / sampleRate), going = this.playing;
    this.halt();
    if (this.context && this.context.sampleRate !== sampleRate) {
      void this.context.close();
      this.context = null;
    }
    this.signals = signals;
    this.sampleRate = sampleRate;
    this.rest = place;
    if (going) this.play();
    this.onChange();
  }

  /** What is repeated: where the view changes while playing, playing goes on inside it. */
  setLoop(from: number, to: number): void {
    const place = this.position;
    this.loop = [from, to];
    if (!this.playing) return;
    this.halt();
    this.rest = place;
    this.play();
  }

  choose(voice: Voice): void {
    this.voice = voice;
    const now = this.context?.currentTime ?? 0;
    this.gains.forEach((gain, n) => gain.gain.setTargetAtTime(voices[n] === voice ? 1 : 0, now, 0.004));
    this.onChange();
  }

  seek(place: number): void {
    const going = this.playing;
    this.halt();
    this.rest = Math.min(this.duration, Math.max(0, place));
    if (going) this.play();
    this.onChange();
  }

  toggle(): void {
    if (this.playing) this.pause();
    else this.play();
    this.onChange();
  }

  private pause(): void {
    this.rest = this.position;
    this.halt();
  }

  private play(): void {
    // At the signals' own rate: the conversion to the device's is then the browser's good one, not that of buffer sources.
    const context = (this.context ??= new AudioContext({ sampleRate: this.sampleRate }));
    void context.resume();
    const [from, to] = this.loop;
    if (this.rest < from || this.rest >= to - 0.005) this.rest = from;
    this.startedAt = this.rest;
    this.startTime = context.currentTime + 0.02;
    for (const [n, signal] of this.signals.entries()) {
      const buffer = context.createBuffer(1, Math.max(1, signal.length), this.sampleRate);
      buffer.copyToChannel(signal, 0);
      const gain = new GainNode(context, { gain: voices[n] === this.voice ? 1 : 0 });
      const source = new AudioBufferSourceNode(context, { buffer, loop: true, loopStart: from, loopEnd: to });
      source.connect(gain).connect(context.destination);
      source.start(this.startTime, this.rest);
      this.sources.push(source);
      this.gains.push(gain);
    }
  }

  private halt(): void {
    this.sources.forEach((source) => source.stop());
    this.gains.forEach((gain) => gain.disconnect());
    this.sources = [];
    this.gains = [];
  }
}
