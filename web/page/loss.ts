// Which packets a network loses: the same ones again for the same seed.
import type { Loss } from "./messages.js";

/** Numbers from 0 up to 1 by a 32-bit generator that steps by the golden ratio and mixes (SplitMix). */
function generator(seed: number): () => number {
  let state = seed >>> 0;
  return () => {
    state = (state + 0x9e3779b9) >>> 0;
    let z = state;
    z = Math.imul(z ^ (z >>> 16), 0x85ebca6b);
    z = Math.imul(z ^ (z >>> 13), 0xc2b2ae35);
    return ((z ^ (z >>> 16)) >>> 0) / 2 ** 32;
  };
}

/** Random losses are independent; bursts come from a two-state Markov chain with the same share of losses. */
export function lostPackets(count: number, loss: Loss): boolean[] {
  if (loss.kind === "none") return new Array<boolean>(count).fill(false);
  const draw = generator(loss.seed);
  const share = loss.percent / 100;
  if (loss.kind === "random") return Array.from({ length: count }, () => draw() < share);
  const leave = 1 / Math.max(1, loss.burst);
  const enter = share >= 1 ? 1 : Math.min(1, (leave * share) / (1 - share));
  let lost = false;
  return Array.from({ length: count }, () => (lost = draw() < (lost ? 1 - leave : enter)));
}
