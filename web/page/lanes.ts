// Drawing over a common time axis: waveforms, spectrograms, payloads.
import { levelOf } from "./measures.js";
import { Frames, Kind, Spectrogram } from "./messages.js";

export interface View {
  from: number;
  to: number;
}

type Rgb = [number, number, number];

/** Colours of the style sheet, read anew where the scheme changes */
export class Palette {
  private readonly style = getComputedStyle(document.documentElement);
  readonly heat: Uint8Array;
  readonly change: Uint8Array;

  constructor() {
    this.heat = ramp(this.stops("--heat"));
    this.change = ramp(this.stops("--change"));
  }

  colour(name: string): string {
    return this.style.getPropertyValue(name).trim();
  }

  private stops(name: string): Rgb[] {
    return this.colour(name)
      .split(/\s+/)
      .map((hex) => [1, 3, 5].map((at) => parseInt(hex.slice(at, at + 2), 16)) as Rgb);
  }
}

/** 256 colours through the stops */
function ramp(stops: Rgb[]): Uint8Array {
  const table = new Uint8Array(3 * 256);
  for (let n = 0; n < 256; ++n) {
    const place = (n / 255) * (stops.length - 1), at = Math.min(stops.length - 2, Math.floor(place)), part = place - at;
    for (let c = 0; c < 3; ++c) table[3 * n + c] = Math.round(stops[at]![c]! * (1 - part) + stops[at + 1]![c]! * part);
  }
  return table;
}

/** The canvas's context at the screen's own resolution, cleared; null while it is not laid out */
function prepared(canvas: HTMLCanvasElement): { g: CanvasRenderingContext2D; width: number; height: number } | null {
  const ratio = window.devicePixelRatio || 1;
  const box = canvas.getBoundingClientRect();
  const width = Math.round(box.width * ratio), height = Math.round(box.height * ratio);
  const g = canvas.getContext("2d");
  if (!g || width === 0 || height === 0) return null;
  if (canvas.width !== width) canvas.width = width;
  if (canvas.height !== height) canvas.height = height;
  g.clearRect(0, 0, width, height);
  return { g, width, height };
}

export function drawWaveform(
  canvas: HTMLCanvasElement,
  signal: Int16Array,
  rate: number,
  view: View,
  peak: number,
  colour: string,
) {
  const paper = prepared(canvas);
  if (!paper) return;
  const { g, width, height } = paper;
  const middle = height / 2, scale = middle / Math.max(1, peak);
  const perPixel = ((view.to - view.from) * rate) / width, first = view.from * rate;
  g.fillStyle = g.strokeStyle = colour;
  if (perPixel < 4) {
    g.lineWidth = window.devicePixelRatio || 1;
    g.beginPath();
    const end = Math.min(signal.length - 1, Math.ceil(view.to * rate));
    for (let n = Math.max(0, Math.floor(first)); n <= end; ++n) g.lineTo((n - first) / perPixel, middle - signal[n]! * scale);
    g.stroke();
    return;
  }
  for (let x = 0; x < width; ++x) {
    const start = Math.floor(first + x * perPixel), end = Math.min(signal.length, Math.floor(first + (x + 1) * perPixel) + 1);
    let low = 0, high = 0;
    for (let n = Math.max(0, start); n < end; ++n) {
      if (signal[n]! < low) low = signal[n]!;
      if (signal[n]! > high) high = signal[n]!;
    }
    if (start < signal.length) g.fillRect(x, middle - high * scale - 0.5, 1, (high - low) * scale + 1);
  }
}

/** `shade` gives the place on the ramp, 0 to 255, of the cell with that index; `neutral` is that of nothing to see. */
function drawCells(
  canvas: HTMLCanvasElement,
  grid: Spectrogram,
  view: View,
  colours: Uint8Array,
  neutral: number,
  shade: (cell: number) => number,
) {
  const paper = prepared(canvas);
  if (!paper) return;
  const { g, width, height } = paper;
  const first = Math.max(0, Math.floor(view.from / grid.step) - 1);
  const last = Math.min(grid.columns - 1, Math.ceil(view.to / grid.step) + 1);
  if (last < first) return;
  // One pixel a cell, or the most striking of several columns where the view has more columns than pixels
  const group = Math.max(1, Math.floor((last - first + 1) / width));
  const columns = Math.ceil((last - first + 1) / group);
  const image = new ImageData(columns, grid.bins);
  for (let x = 0; x < columns; ++x)
    for (let bin = 0; bin < grid.bins; ++bin) {
      let strongest = neutral, distance = -1;
      for (let column = first + x * group; column < Math.min(last + 1, first + (x + 1) * group); ++column) {
        const value = shade(column * grid.bins + bin), away = Math.abs(value - neutral);
        if (away > distance) {
          distance = away;
          strongest = value;
        }
      }
      const at = 4 * ((grid.bins - 1 - bin) * columns + x), colour = 3 * Math.min(255, Math.max(0, Math.round(strongest)));
      image.data.set(colours.subarray(colour, colour + 3), at);
      image.data[at + 3] = 255;
    }
  const cells = document.createElement("canvas");
  cells.width = columns;
  cells.height = grid.bins;
  cells.getContext("2d")!.putImageData(image, 0, 0);
  const perSecond = width / (view.to - view.from);
  g.imageSmoothingQuality = "high";
  g.drawImage(cells, ((first - 0.5) * grid.step - view.from) * perSecond, 0, columns * group * grid.step * perSecond, height);
}

const quietest = -95, loudest = -15; // dB of full scale at the ends of the ramp

export function drawSpectrogram(canvas: HTMLCanvasElement, grid: Spectrogram, view: View, palette: Palette) {
  const perDecibel = 255 / (loudest - quietest);
  drawCells(canvas, grid, view, palette.heat, 0, (cell) => (levelOf(grid.levels[cell]!) - quietest) * perDecibel);
}

export const widestChange = 30; // dB at the ends of the ramp

/** Where the decoded speech is louder or quieter than the original; what both have below -75 dB is left out. */
export function drawChange(canvas: HTMLCanvasElement, before: Spectrogram, after: Spectrogram, view: View, palette: Palette) {
  drawCells(canvas, before, view, palette.change, 127.5, (cell) => {
    const change = Math.max(-75, levelOf(after.levels[cell]!)) - Math.max(-75, levelOf(before.levels[cell]!));
    return (change / widestChange + 1) * 127.5;
  });
}

export function drawPayloads(canvas: HTMLCanvasElement, frames: Frames, rate: number, view: View, palette: Palette) {
  const paper = prepared(canvas);
  if (!paper) return;
  const { g, width, height } = paper;
  const ratio = window.devicePixelRatio || 1;
  const each = frames.samplesEach / rate, perSecond = width / (view.to - view.from), wide = each * perSecond;
  const most = frames.octets.reduce((a, b) => Math.max(a, b), 1);
  const colours = ["--speech", "--descriptor", "--nothing", "--lost"].map((name) => palette.colour(name));
  const gap = wide > 4 * ratio ? ratio : 0, base = height - 2 * ratio;
  const first = Math.max(0, Math.floor(view.from / each)), last = Math.min(frames.kinds.length - 1, Math.ceil(view.to / each));
  // Losses last: they must not vanish where a pixel has many frames.
  for (const losses of [false, true])
    for (let n = first; n <= last; ++n) {
      const kind = frames.kinds[n]! as Kind;
      if ((kind === Kind.lost) !== losses) continue;
      const x = (n * each - view.from) * perSecond, w = Math.max(wide - gap, losses ? ratio : 0.5);
      if (losses) {
        g.fillStyle = palette.colour("--lost-ground");
        g.fillRect(x, 0, w, height);
      }
      g.fillStyle = colours[kind]!;
      const tall = kind === Kind.nothing ? ratio : Math.max(2 * ratio, (frames.octets[n]! / most) * (base - 4 * ratio));
      g.fillRect(x, base - tall, w, tall);
      if (kind === Kind.descriptor) {
        g.beginPath();
        g.arc(x + w / 2, base - tall - 5 * ratio, 2.5 * ratio, 0, 7);
        g.fill();
      }
    }
}

const steps = [0.001, 0.002, 0.005, 0.01, 0.02, 0.05, 0.1, 0.2, 0.5, 1, 2, 5, 10, 20, 30];

export function drawTimes(canvas: HTMLCanvasElement, view: View, palette: Palette) {
  const paper = prepared(canvas);
  if (!paper) return;
  const { g, width, height } = paper;
  const ratio = window.devicePixelRatio || 1;
  const perSecond = width / (view.to - view.from);
  const step = steps.find((s) => s * perSecond > 64 * ratio) ?? 60;
  const digits = step >= 1 ? 0 : step >= 0.1 ? 1 : step >= 0.01 ? 2 : 3;
  g.font = `${11 * ratio}px ${palette.colour("--text-font")}`;
  g.textBaseline = "bottom";
  for (let n = Math.ceil(view.from / step); n * step <= view.to; ++n) {
    const x = Math.round((n * step - view.from) * perSecond);
    g.fillStyle = palette.colour("--line");
    g.fillRect(x, 0, ratio, 5 * ratio);
    g.fillStyle = palette.colour("--quiet-ink");
    const label = `${(n * step).toFixed(digits)} s`, room = g.measureText(label).width;
    g.fillText(label, Math.min(width - room, Math.max(4 * ratio, x - room / 2)), height);
  }
}
