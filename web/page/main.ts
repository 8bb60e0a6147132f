// The page: its form, its figures, its keys.
import type { Codec } from "../zppcodecs.js";
import { drawChange, drawPayloads, drawSpectrogram, drawTimes, drawWaveform, Palette, View, widestChange } from "./lanes.js";
import { levelOf } from "./measures.js";
import { Coded, Kind, Reply, Request, Settings } from "./messages.js";
import { Player, Voice, voices } from "./player.js";
import { longestSeconds, readSpeech, Recorder, Speech, writeWav } from "./speech_input.js";

function $<T extends HTMLElement = HTMLElement>(id: string): T {
  return document.getElementById(id) as T;
}

// Compilers from Debian do not know it yet.
declare const DecompressionStream: new (format: "gzip") => ReadableWritablePair<Uint8Array, Uint8Array>;

/** What a build put into the page, packed by gzip */
async function embedded(id: string): Promise<ArrayBuffer> {
  const packed = Uint8Array.from(atob($(id).textContent ?? ""), (c) => c.charCodeAt(0));
  return new Response(new Blob([packed]).stream().pipeThrough(new DecompressionStream("gzip"))).arrayBuffer();
}

// What the library's table does not tell: short names, what variant 1 is, and whether SNR means something.
interface About {
  label: string;
  variant?: string;
  follows: "waveform" | "spectrum" | "model";
}
const about: Record<string, About> = {
  "g711-mulaw": { label: "G.711 µ", follows: "waveform" },
  "g711-alaw": { label: "G.711 A", follows: "waveform" },
  g726: { label: "G.726", follows: "waveform", variant: "Bit order of AAL2" },
  "g722.1": { label: "G.722.1", follows: "spectrum" },
  "g723.1": { label: "G.723.1", follows: "model", variant: "Without high-pass and post filter" },
  g728: { label: "G.728", follows: "waveform", variant: "Without postfilter" },
  g729: { label: "G.729", follows: "model" },
  g729a: { label: "G.729A", follows: "model" },
  g729i: { label: "G.729I", follows: "model" },
  g729f: { label: "G.729C", follows: "model" },
  g729af: { label: "G.729C/A", follows: "model" },
  "gsm-fr": { label: "GSM FR", follows: "model" },
  amr: { label: "AMR", follows: "model", variant: "Voice activity detector 2" },
  "amr-wb": { label: "AMR-WB", follows: "model" },
};
const meaning: Record<About["follows"], string> = {
  waveform: "This codec follows the waveform, so SNR tells how close it stays.",
  spectrum:
    "This codec keeps the loud parts of the spectrum and fills the rest with noise: SNR tells only part of how it sounds.",
  model:
    "This codec rebuilds speech from a model instead of following its waveform: SNR says little about how it sounds, " +
    "the spectral distance more.",
};
const aboutOf = (name: string): About => about[name] ?? { label: name, follows: "model" };

// --- State -----------------------------------------------------------------------------------------------------------------

let codecs: readonly Codec[] = [];
let coded: Coded | null = null;
let heard = new Int16Array(0); // the decoded speech without the codec's delay
let residual = new Int16Array(0);
let view: View = { from: 0, to: 1 };
let palette = new Palette();
const player = new Player(showTransport);

const worker = new Worker(URL.createObjectURL(new Blob([$("worker").textContent ?? ""], { type: "text/javascript" })));
const tell = (message: Request, transfer: Transferable[] = []) => worker.postMessage(message, transfer);

// One job at a time, and of those that wait only the last
let busy = false, waiting = false;

function code(): void {
  $("bench").setAttribute("aria-busy", "true");
  if (busy) {
    waiting = true;
    return;
  }
  busy = true;
  tell({ type: "code", settings: settings() });
}

worker.onmessage = ({ data }: MessageEvent<Reply>) => {
  if (data.type === "started") return begin(data.codecs, data.version);
  busy = false;
  if (data.type === "failed") say(`This could not be coded: ${data.reason}`, true);
  if (waiting) {
    waiting = false;
    return code();
  }
  $("bench").setAttribute("aria-busy", "false");
  if (data.type === "coded") show(data.coded);
};
worker.onerror = (event) => say(`The codecs did not start: ${event.message}`, true);

function say(text: string, wrong = false): void {
  $("status").textContent = text;
  $("status").classList.toggle("wrong", wrong);
}

// --- Settings --------------------------------------------------------------------------------------------------------------

const chosen = (name: string) => document.querySelector<HTMLInputElement>(`input[name="${name}"]:checked`)?.value ?? "";
const codecChosen = () => codecs.find((codec) => codec.name === chosen("codec"))!;

function settings(): Settings {
  const variant = $<HTMLInputElement>("variant"), dtx = $<HTMLInputElement>("dtx");
  return {
    codec: chosen("codec"),
    bitRate: Number(chosen("rate")),
    dtx: dtx.checked && !dtx.disabled,
    variant: variant.checked && aboutOf(chosen("codec")).variant ? 1 : 0,
    loss: {
      kind: chosen("loss") as Settings["loss"]["kind"],
      percent: $<HTMLInputElement>("percent").valueAsNumber,
      burst: $<HTMLInputElement>("burst").valueAsNumber,
      seed: $<HTMLInputElement>("seed").valueAsNumber || 0,
    },
  };
}

/** A group of radio buttons */
interface Choice {
  value: string;
  label: string;
  title?: string;
}
function choices(group: HTMLElement, name: string, options: Choice[], checked: string): void {
  group.replaceChildren(
    ...options.map(({ value, label, title }) => {
      const box = document.createElement("label");
      const input = document.createElement("input"), text = document.createElement("span");
      Object.assign(input, { type: "radio", name, value, checked: value === checked });
      text.textContent = label;
      if (title) box.title = title;
      box.append(input, text);
      return box;
    }),
  );
}

const kbits = (bitRate: number) => String(bitRate / 1000);

function showCodec(): void {
  const codec = codecChosen(), { variant } = aboutOf(codec.name);
  const band = codec.sampleRate === 8000 ? "telephone band" : "wide band";
  $("standard").textContent = `${codec.standard}, ${codec.sampleRate / 1000} kHz (${band})`;
  const options = codec.bitRates.map((rate) => ({ value: String(rate), label: kbits(rate) }));
  choices($("rates"), "rate", options, String(codec.defaultBitRate));
  $<HTMLInputElement>("dtx").disabled = !codec.hasDtx;
  $("variant").parentElement!.hidden = !variant;
  $("variant-label").textContent = variant ?? "";
  $<HTMLInputElement>("variant").checked = false;
}

function showLoss(): void {
  const { kind, percent, burst } = settings().loss;
  $("loss-details").hidden = kind === "none";
  $("burst-row").hidden = kind !== "bursts";
  document.querySelector('output[for="percent"]')!.textContent = `${percent} %`;
  document.querySelector('output[for="burst"]')!.textContent = burst === 1 ? "1 packet" : `${burst} packets`;
  const codec = codecChosen();
  const frame = codec.isSampleBased ? codec.sampleRate / 50 : codec.frameSamples;
  const packet = frame * Math.max(1, Math.round(codec.sampleRate / 50 / frame));
  const conceals = codec.hasConcealment ? "the decoder conceals losses" : "losses become silence";
  $("packets").textContent = `Packets of ${(1000 * packet) / codec.sampleRate} ms; ${conceals}.`;
}

// --- Speech ----------------------------------------------------------------------------------------------------------------

function take(speech: Speech, name: string): void {
  const { sampleRate } = speech, limit = longestSeconds * sampleRate;
  if (speech.samples.length < sampleRate / 20) return say(`${name} holds no speech to code.`, true);
  const cut = speech.samples.length > limit;
  const samples = speech.samples.slice(0, limit);
  const seconds = samples.length / sampleRate;
  say("");
  const rest = cut ? `, the first ${longestSeconds} s of a longer recording` : "";
  $("source").textContent = `${name}: ${seconds.toFixed(1)} s at ${sampleRate / 1000} kHz${rest}`;
  view = { from: 0, to: seconds };
  player.setLoop(0, seconds);
  player.seek(0);
  tell({ type: "speech", samples, sampleRate }, [samples.buffer]);
  code();
}

async function takeFile(file: File): Promise<void> {
  try {
    take(await readSpeech(await file.arrayBuffer()), file.name);
    chooseSample(null);
  } catch {
    say(`This browser cannot read ${file.name} as sound.`, true);
  }
}

const sampleButtons = [...document.querySelectorAll<HTMLButtonElement>("[data-sample]")];

function chooseSample(button: HTMLButtonElement | null): void {
  for (const other of sampleButtons) other.setAttribute("aria-pressed", String(other === button));
}

async function takeSample(button: HTMLButtonElement): Promise<void> {
  chooseSample(button);
  take(await readSpeech(await embedded(`sample-${button.dataset["sample"]}`)), button.textContent ?? "");
}

let recorder: Recorder | null = null;

async function record(): Promise<void> {
  const button = $<HTMLButtonElement>("record");
  if (recorder) {
    const finished = recorder;
    recorder = null;
    button.setAttribute("aria-pressed", "false");
    button.textContent = "Record";
    chooseSample(null);
    return take(await finished.stop(), "Recording");
  }
  button.disabled = true;
  try {
    recorder = await Recorder.start();
    button.setAttribute("aria-pressed", "true");
    say("");
    const tick = () => {
      if (!recorder) return;
      button.textContent = `Stop (${Math.floor(recorder.seconds)} s)`;
      if (recorder.seconds >= longestSeconds) void record();
      else setTimeout(tick, 200);
    };
    tick();
  } catch {
    say("The microphone cannot be used: there is none, or this browser does not allow it for this page.", true);
  } finally {
    button.disabled = false;
  }
}

// --- Results ---------------------------------------------------------------------------------------------------------------

const decibels = (x: number) => (Number.isNaN(x) ? "–" : x === Infinity ? "∞" : `${x.toFixed(1)} <small>dB</small>`);
const times = (x: number) => (x >= 1000 ? `${(x / 1000).toFixed(1)}k` : x.toFixed(0));

function show(result: Coded): void {
  coded = result;
  const { settings, original, decoded, delay, sampleRate, measures } = result;
  heard = decoded.slice(delay, delay + original.length);
  residual = original.map((x, n) => Math.min(32767, Math.max(-32768, x - heard[n]!)));
  player.setSignals([original, heard, residual].map((x) => Float32Array.from(x, (v) => v / 32768)), sampleRate);

  const { follows, label } = aboutOf(settings.codec);
  $("used-rate").innerHTML = `${(measures.bitRate / 1000).toFixed(2)} <small>kbit/s</small>`;
  $("snr").innerHTML = decibels(measures.snr);
  $("segmental").innerHTML = decibels(measures.segmentalSnr);
  $("distance").innerHTML = decibels(measures.spectralDistance);
  $("lost").innerHTML = `${measures.packetsLost} <small>of ${measures.packets}</small>`;
  $("speed").innerHTML = `${times(measures.encoding)}, ${times(measures.decoding)} <small>× real time</small>`;
  for (const id of ["snr", "segmental"]) $(id).parentElement!.classList.toggle("doubtful", follows === "model");
  $("meaning").textContent = meaning[follows];
  for (const band of document.querySelectorAll(".band")) band.textContent = `0 to ${sampleRate / 2000} kHz`;
  const most = result.frames.octets.reduce((a, b) => Math.max(a, b), 0);
  const frame = (1000 * result.frames.samplesEach) / sampleRate;
  $("most-octets").textContent = `up to ${most} octets a frame of ${frame} ms`;
  if (!$("status").classList.contains("wrong")) say(`${label} at ${kbits(settings.bitRate)} kbit/s: ready.`);
  draw();
}

const differenceKind = () => chosen("difference-kind");

function draw(): void {
  if (!coded) return;
  const { original, sampleRate, spectrograms, frames } = coded;
  const canvas = (id: string) => $<HTMLCanvasElement>(id);
  const peak = [original, heard].reduce((top, signal) => signal.reduce((a, x) => Math.max(a, Math.abs(x)), top), 1);
  const signals: Record<Voice, Int16Array> = { original, decoded: heard, difference: residual };
  for (const voice of voices)
    drawWaveform(canvas(`wave-${voice}`), signals[voice], sampleRate, view, peak, palette.colour(`--${voice}`));
  drawSpectrogram(canvas("spectrum-original"), spectrograms.original, view, palette);
  drawSpectrogram(canvas("spectrum-decoded"), spectrograms.decoded, view, palette);
  const difference = canvas("spectrum-difference");
  if (differenceKind() === "change") drawChange(difference, spectrograms.original, spectrograms.decoded, view, palette);
  else drawSpectrogram(difference, spectrograms.residual, view, palette);
  $("difference-unit").textContent =
    differenceKind() === "change" ? `blue quieter, orange louder, to ${widestChange} dB` : "original less decoded";
  drawPayloads(canvas("payloads"), frames, sampleRate, view, palette);
  drawTimes(canvas("times"), view, palette);
  showTransport();
}

let drawing = 0;
function drawSoon(): void {
  cancelAnimationFrame(drawing);
  drawing = requestAnimationFrame(draw);
}

function showTransport(): void {
  const place = player.position, { duration, playing } = player;
  $("now").textContent = place.toFixed(2);
  $("end").textContent = duration.toFixed(2);
  const timeline = $("timeline");
  timeline.setAttribute("aria-valuemax", duration.toFixed(2));
  timeline.setAttribute("aria-valuenow", place.toFixed(2));
  timeline.setAttribute("aria-valuetext", `${place.toFixed(2)} of ${duration.toFixed(2)} seconds`);
  const part = (place - view.from) / (view.to - view.from);
  $("playhead").hidden = part < 0 || part > 1;
  $("playhead").style.transform = `translateX(${part * timeline.clientWidth}px)`;
  if ($("play").getAttribute("aria-label") !== (playing ? "Pause" : "Play")) {
    $("play").setAttribute("aria-label", playing ? "Pause" : "Play");
    $("play-shape").setAttribute("d", playing ? "M3.5 2.5h3v11h-3zM9.5 2.5h3v11h-3z" : "M4 2.5v11l9.5-5.5z");
    if (playing) requestAnimationFrame(follow);
  }
  for (const voice of voices) {
    document.querySelector(`.lane.${voice}`)!.classList.toggle("heard", voice === player.voice);
    document.querySelector<HTMLInputElement>(`input[value="${voice}"]`)!.checked = voice === player.voice;
  }
}

function follow(): void {
  showTransport();
  if (player.playing) requestAnimationFrame(follow);
}

function setView(from: number, to: number): void {
  const { duration } = player, width = Math.min(duration, Math.max(0.02, to - from));
  const start = Math.min(Math.max(0, from), duration - width);
  view = { from: start, to: start + width };
  player.setLoop(view.from, view.to);
  drawSoon();
}

function zoom(factor: number, around = player.position): void {
  const fixed = around < view.from || around > view.to ? (view.from + view.to) / 2 : around;
  setView(fixed - (fixed - view.from) * factor, fixed + (view.to - fixed) * factor);
}

/** Moves the place, and the view with it */
function seek(place: number): void {
  player.seek(place);
  const at = player.position, width = view.to - view.from;
  if (at < view.from || at > view.to) setView(at - width / 2, at + width / 2);
  readOut(at);
}

const kindNames: Record<Kind, string> = {
  [Kind.speech]: "speech",
  [Kind.descriptor]: "silence descriptor",
  [Kind.nothing]: "nothing sent",
  [Kind.lost]: "lost",
};

/** What is at a place: the frame, and the level at a frequency */
function readOut(place: number, hertz?: number, lane?: Voice): void {
  if (!coded) return;
  const { frames, sampleRate, spectrograms } = coded;
  const n = Math.min(frames.kinds.length - 1, Math.max(0, Math.floor((place * sampleRate) / frames.samplesEach)));
  const kind = frames.kinds[n]! as Kind;
  let text = `${place.toFixed(3)} s · frame ${n}: ${kindNames[kind]}`;
  if (kind !== Kind.nothing) text += `, ${frames.octets[n]} octets`;
  if (hertz !== undefined && lane) {
    const level = ({ bins, columns, step, levels }: Coded["spectrograms"]["original"]) => {
      const column = Math.min(columns - 1, Math.round(place / step)), bin = Math.round((hertz / (sampleRate / 2)) * (bins - 1));
      return levelOf(levels[column * bins + bin]!);
    };
    const change = level(spectrograms.decoded) - level(spectrograms.original);
    const value =
      lane !== "difference" ? `${level(spectrograms[lane]).toFixed(0)} dB`
      : differenceKind() === "residual" ? `${level(spectrograms.residual).toFixed(0)} dB`
      : `${change > 0 ? "+" : ""}${change.toFixed(0)} dB`;
    text += ` · ${hertz.toFixed(0)} Hz: ${value}`;
  }
  $("readout").textContent = text;
}

// --- Keys and pointer ------------------------------------------------------------------------------------------------------

function listenToTimeline(): void {
  const timeline = $("timeline");
  const placeOf = (event: MouseEvent) => {
    const box = timeline.getBoundingClientRect();
    return view.from + ((event.clientX - box.left) / box.width) * (view.to - view.from);
  };
  timeline.addEventListener("pointerdown", (event) => {
    if (event.button !== 0) return;
    timeline.setPointerCapture(event.pointerId);
    seek(placeOf(event));
  });
  timeline.addEventListener("pointermove", (event) => {
    const place = placeOf(event), hover = $("hover");
    if (event.buttons & 1) player.seek(Math.min(view.to, Math.max(view.from, place)));
    hover.style.opacity = "0.6";
    hover.style.transform = `translateX(${event.clientX - timeline.getBoundingClientRect().left}px)`;
    const canvas = (event.target as Element).closest<HTMLCanvasElement>("canvas.spectrum");
    if (!canvas || !coded) return readOut(place);
    const box = canvas.getBoundingClientRect();
    const height = Math.min(1, Math.max(0, (box.bottom - event.clientY) / box.height));
    readOut(place, (height * coded.sampleRate) / 2, canvas.id.slice("spectrum-".length) as Voice);
  });
  timeline.addEventListener("pointerleave", () => ($("hover").style.opacity = "0"));
  timeline.addEventListener(
    "wheel",
    (event) => {
      const sideways = event.shiftKey ? event.deltaY : event.deltaX;
      if (event.ctrlKey) zoom(event.deltaY > 0 ? 1.25 : 0.8, placeOf(event));
      else if (Math.abs(sideways) > 0) {
        const by = (sideways / 800) * (view.to - view.from);
        setView(view.from + by, view.to + by);
      } else return;
      event.preventDefault();
    },
    { passive: false },
  );
  timeline.addEventListener("keydown", (event) => {
    if (event.ctrlKey || event.metaKey || event.altKey) return;
    const step = event.shiftKey ? 1 : Math.max(0.01, (view.to - view.from) / 50);
    const { position, duration } = player;
    const to: Record<string, number> = {
      ArrowRight: position + step,
      ArrowUp: position + step,
      ArrowLeft: position - step,
      ArrowDown: position - step,
      PageUp: position + 1,
      PageDown: position - 1,
      Home: 0,
      End: duration,
    };
    if (!(event.key in to)) return;
    event.preventDefault();
    seek(to[event.key]!);
  });
}

function listenToKeys(): void {
  const keys: Record<string, () => void> = {
    " ": () => player.toggle(),
    "1": () => player.choose("original"),
    "2": () => player.choose("decoded"),
    "3": () => player.choose("difference"),
    x: () => player.choose(player.voice === "original" ? "decoded" : "original"),
    "+": () => zoom(0.5),
    "=": () => zoom(0.5),
    "-": () => zoom(2),
    "0": () => setView(0, player.duration),
  };
  document.addEventListener("keydown", (event) => {
    const target = event.target as HTMLElement;
    if (event.ctrlKey || event.metaKey || event.altKey || target.matches('input[type="number"]')) return;
    // Space works the control that has the focus.
    if (event.key === " " && target.matches("button, input")) return;
    const act = keys[event.key.toLowerCase()];
    if (!act) return;
    event.preventDefault();
    act();
  });
}

function keep(content: Blob, name: string): void {
  const link = document.createElement("a");
  link.href = URL.createObjectURL(content);
  link.download = name;
  link.click();
  setTimeout(() => URL.revokeObjectURL(link.href), 10000);
}

const fileName = () => `${coded!.settings.codec}-${coded!.settings.bitRate}`;

/** One line a frame; a frame's payload in hexadecimal digits, also where it was lost */
function payloadTable(): Blob {
  const { frames, sampleRate } = coded!;
  let at = 0, table = "frame,seconds,kind,octets,payload\n";
  frames.octets.forEach((octets, n) => {
    const payload = [...frames.payloads.subarray(at, (at += octets))].map((o) => o.toString(16).padStart(2, "0")).join("");
    const kind = kindNames[frames.kinds[n]! as Kind], seconds = (n * frames.samplesEach) / sampleRate;
    table += `${n},${seconds.toFixed(4)},${kind},${octets},${payload}\n`;
  });
  return new Blob([table], { type: "text/csv" });
}

function listen(): void {
  for (const button of sampleButtons) button.addEventListener("click", () => void takeSample(button));
  $("open").addEventListener("click", () => $("file").click());
  $("file").addEventListener("change", () => {
    const input = $<HTMLInputElement>("file"), file = input.files?.[0];
    if (file) void takeFile(file);
    input.value = "";
  });
  $("record").addEventListener("click", () => void record());
  $("settings").addEventListener("submit", (event) => event.preventDefault());
  $("settings").addEventListener("input", (event) => {
    const { id, name } = event.target as HTMLInputElement;
    if (id === "file") return;
    say("");
    if (name === "codec") showCodec();
    showLoss();
    code();
  });
  $("next-seed").addEventListener("click", () => {
    $<HTMLInputElement>("seed").valueAsNumber = Math.floor(Math.random() * 1000000);
    code();
  });
  $("save-speech").addEventListener("click", () => {
    if (coded) keep(writeWav(coded.decoded, coded.sampleRate), `${fileName()}.wav`);
  });
  $("save-payloads").addEventListener("click", () => {
    if (coded) keep(payloadTable(), `${fileName()}.csv`);
  });
  $("play").addEventListener("click", () => player.toggle());
  $("voices").addEventListener("input", () => player.choose(chosen("voice") as Voice));
  $("difference-kind").addEventListener("input", draw);
  $("zoom-in").addEventListener("click", () => zoom(0.5));
  $("zoom-out").addEventListener("click", () => zoom(2));
  $("zoom-all").addEventListener("click", () => setView(0, player.duration));
  listenToTimeline();
  listenToKeys();

  let inside = 0; // dragenter and dragleave come for every element on the way
  const drop = (shown: boolean) => ($("drop").hidden = !shown);
  document.addEventListener("dragenter", () => drop(++inside > 0));
  document.addEventListener("dragleave", () => drop(--inside > 0));
  document.addEventListener("dragover", (event) => event.preventDefault());
  document.addEventListener("drop", (event) => {
    event.preventDefault();
    drop(false);
    inside = 0;
    const file = event.dataTransfer?.files[0];
    if (file) void takeFile(file);
  });

  matchMedia("(prefers-color-scheme: dark)").addEventListener("change", () => {
    palette = new Palette();
    drawSoon();
  });
  new ResizeObserver(drawSoon).observe($("timeline"));
}

function begin(table: readonly Codec[], version: string): void {
  codecs = table;
  $("version").textContent = version;
  const options = codecs.map(({ name, standard }) => ({ value: name, label: aboutOf(name).label, title: standard }));
  choices($("codecs"), "codec", options, "amr");
  showCodec();
  showLoss();
  listen();
  void takeSample(sampleButtons[0]!);
}

embedded("wasm").then(
  (wasm) => tell({ type: "start", wasm: new Uint8Array(wasm) }),
  () => say("This browser is too old: it cannot unpack the codecs.", true),
);
