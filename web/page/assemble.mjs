// assemble.mjs OUT STYLE SCRIPT WORKER WASM SAMPLE...: the page with all its parts in it, to be opened from a disk as well.
import { readFileSync, writeFileSync } from "node:fs";
import { gzipSync } from "node:zlib";

const [out, style, script, worker, wasm, ...samples] = process.argv.slice(2);
const text = (path) => readFileSync(path, "utf8").trim();
const packed = (id, path) =>
  `<script type="application/gzip" id="${id}">${gzipSync(readFileSync(path), { level: 9 }).toString("base64")}</script>`;

for (const path of [script, worker]) if (/<\/script|<!--/i.test(text(path))) throw new Error(`${path} would end its script element`);

const parts = [
  `<script type="text/plain" id="worker">${text(worker)}</script>`,
  packed("wasm", wasm),
  ...samples.map((path, n) => packed(`sample-${n}`, path)),
  `<script>${text(script)}</script>`,
];
const page = text(new URL("index.html", import.meta.url))
  .replace("/* style.css */", () => text(style))
  .replace("<script>/* script */</script>", () => parts.join("\n"));
writeFileSync(out, page + "\n");
