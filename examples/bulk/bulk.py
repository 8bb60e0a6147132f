#!/usr/bin/env python3
"""Transcodes a folder tree of speech files on all cores of this machine or on a Dask cluster. See README.md."""
from __future__ import annotations

import argparse
import io
import json
import os
import pathlib
import sys
import time
import wave
from dataclasses import dataclass, field

import numpy as np
from distributed import Client, LocalCluster, as_completed, get_worker, wait

import zppcodecs
from zppcodecs import storage

SETTINGS = ".bulk.json"  # in the target: what it is being made with
BATCH_BYTES = 1 << 20  # files are handed out in batches of about this size


@dataclass(frozen=True)
class Job:
    action: str  # encode, decode, roundtrip
    codec: str
    bit_rate: int
    dtx: bool

    @property
    def source_suffix(self) -> str:
        return storage.suffix(self.codec) if self.action == "decode" else ".wav"

    @property
    def target_suffix(self) -> str:
        return storage.suffix(self.codec) if self.action == "encode" else ".wav"


@dataclass(frozen=True)
class Result:
    """Of one file."""

    source: str
    worker: str = ""
    seconds: float = 0.0  # of speech
    busy: float = 0.0  # seconds of work
    error: str = ""


@dataclass
class Summary:
    skipped: int = 0
    done: int = 0
    seconds: float = 0.0
    elapsed: float = 0.0
    failures: list[Result] = field(default_factory=list)
    workers: dict[str, list[float]] = field(default_factory=dict)  # files, seconds of speech, seconds of work

    def add(self, result: Result) -> None:
        if result.error:
            self.failures.append(result)
            return
        self.done += 1
        self.seconds += result.seconds
        share = self.workers.setdefault(result.worker, [0, 0.0, 0.0])
        for i, amount in enumerate((1, result.seconds, result.busy)):
            share[i] += amount

    def __str__(self) -> str:
        lines = [f"{'worker':<40} {'files':>7} {'hours of speech':>16} {'times real time':>16}"]
        for name, (files, seconds, busy) in sorted(self.workers.items()):
            lines.append(f"{name:<40} {files:>7.0f} {seconds / 3600:>16.3f} {seconds / max(busy, 1e-9):>16.1f}")
        rate = self.seconds / max(self.elapsed, 1e-9)
        lines.append(f"{f'all, in {self.elapsed:.1f} s':<40} {self.done:>7} {self.seconds / 3600:>16.3f} {rate:>16.1f}")
        lines.append(f"{self.skipped} files were there already, {len(self.failures)} failed")
        lines += [f"  {failure.source}: {failure.error}" for failure in self.failures]
        return "\n".join(lines)


def read_speech(path: str, sample_rate: int) -> np.ndarray:
    with wave.open(path) as sound:
        channels, octets, rate, frames = sound.getparams()[:4]
        if (channels, octets, rate) != (1, 2, sample_rate):
            raise ValueError(f"{channels} channels of {8 * octets} bits at {rate} Hz, not one of 16 bits at {sample_rate} Hz")
        data = sound.readframes(frames)
    if len(data) != 2 * frames:
        raise ValueError(f"it ends after {len(data) // 2} of {frames} samples")
    return np.frombuffer(data, "<i2").astype(np.int16)


def wav(speech: np.ndarray, sample_rate: int) -> bytes:
    file = io.BytesIO()
    with wave.open(file, "wb") as sound:
        sound.setparams((1, 2, sample_rate, 0, "NONE", "not compressed"))
        sound.writeframes(speech.astype("<i2").tobytes())
    return file.getvalue()


def transcode(job: Job, source: str) -> tuple[bytes, float]:
    """The content of a target, and how many seconds of speech it has."""
    codec, options = zppcodecs.find_codec(job.codec), {"bit_rate": job.bit_rate, "dtx": job.dtx}
    if job.action == "decode":
        payloads = storage.read(source, codec, job.bit_rate, dtx=job.dtx)
        speech = zppcodecs.decode(payloads, codec, job.bit_rate, dtx=job.dtx and codec.name == "gsm-fr")
        content = wav(speech, codec.sample_rate)
    else:
        speech = read_speech(source, codec.sample_rate)
        if job.action == "encode":
            content = storage.pack(zppcodecs.encode(speech, codec, **options), codec, dtx=job.dtx)
        else:
            content = wav(zppcodecs.roundtrip(speech, codec, **options), codec.sample_rate)
    return content, len(speech) / codec.sample_rate


def finished(source: str, target: str) -> bool:
    """Targets appear under their names when they are complete, so one that is not older than its source is finished."""
    try:
        return os.stat(target).st_mtime_ns >= os.stat(source).st_mtime_ns
    except OSError:
        return False


def work(job: Job, pairs: list[tuple[str, str]]) -> list[Result]:
    """On a worker: a batch of files. What a worker that was lost in the middle has finished is not done again."""
    results, name = [], get_worker().name
    for source, target in pairs:
        if finished(source, target):
            results.append(Result(source, str(name)))
            continue
        begin = time.perf_counter()
        try:
            content, seconds = transcode(job, source)
            os.makedirs(os.path.dirname(target), exist_ok=True)
            storage.replace(target, content)
            results.append(Result(source, str(name), seconds, time.perf_counter() - begin))
        except Exception as error:  # whatever is wrong with a file, the others go on
            results.append(Result(source, error=f"{type(error).__name__}: {error}"))
    return results


def batches(pairs: list[tuple[str, str]]) -> list[list[tuple[str, str]]]:
    """The largest files first, so that no worker is left alone with one at the end."""
    size = {source: os.stat(source).st_size for source, _ in pairs}
    parts: list[list[tuple[str, str]]] = []
    room = 0
    for pair in sorted(pairs, key=lambda pair: -size[pair[0]]):
        if room <= 0:
            parts.append([])
            room = BATCH_BYTES
        parts[-1].append(pair)
        room -= max(size[pair[0]], 1)
    return parts


def claim(job: Job, target: pathlib.Path) -> None:
    """Marks the target as one of this job, and sweeps away what a run that was killed has left unfinished."""
    target.mkdir(parents=True, exist_ok=True)
    settings = json.dumps({"action": job.action, "codec": job.codec, "bit_rate": job.bit_rate, "dtx": job.dtx})
    mark = target / SETTINGS
    if mark.exists() and mark.read_text(encoding="utf-8") != settings:
        raise ValueError(f"{target} holds what was made with {mark.read_text(encoding='utf-8')}; take another folder")
    storage.replace(mark, settings.encode())
    for rest in target.rglob(".*.part"):
        rest.unlink()


def run(client: Client, job: Job, source: pathlib.Path, target: pathlib.Path, report=None) -> Summary:
    """Transcodes what is not finished yet. report is called with the summary after every batch."""
    claim(job, target)
    pairs = []
    for path in sorted(source.rglob("*" + job.source_suffix)):
        if path.is_file() and target.resolve() not in path.resolve().parents:
            pairs.append((str(path.resolve()), str((target / path.relative_to(source)).with_suffix(job.target_suffix).resolve())))
    summary, begin = Summary(), time.perf_counter()
    left = [pair for pair in pairs if not finished(*pair)]
    summary.skipped = len(pairs) - len(left)

    def note(results: list[Result]) -> None:
        for result in results:
            summary.add(result)
        summary.elapsed = time.perf_counter() - begin
        if report:
            report(summary, len(left))

    waiting = {client.submit(work, job, batch, pure=False): batch for batch in batches(left)}
    suspects: list[tuple[str, str]] = []
    for future in as_completed(list(waiting)):
        batch = waiting.pop(future)
        if future.status == "finished":
            note(future.result())
        else:
            suspects += batch  # of batches whose workers died again and again
    for pair in suspects:  # each alone, so that none is blamed for another one
        future = client.submit(work, job, [pair], pure=False)
        wait(future)
        note(future.result() if future.status == "finished" else [Result(pair[0], error=str(future.exception()))])
    summary.elapsed = time.perf_counter() - begin
    return summary


class Progress:
    """A line on standard error; rewritten on a terminal, else every five seconds."""

    def __init__(self) -> None:
        self.next = 0.0

    def __call__(self, summary: Summary, files: int) -> None:
        complete = summary.done + len(summary.failures) == files
        if not complete and not sys.stderr.isatty() and time.monotonic() < self.next:
            return
        self.next = time.monotonic() + 5
        rate = summary.seconds / max(summary.elapsed, 1e-9)
        line = f"{summary.done} of {files} files, {summary.seconds / 3600:.3f} h of speech, {rate:.0f} times real time"
        line += f", {len(summary.failures)} failed"
        print("\r" * sys.stderr.isatty() + line, end="" if sys.stderr.isatty() and not complete else "\n", file=sys.stderr, flush=True)


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("action", choices=["encode", "decode", "roundtrip"], help="to the codec, back, or both: what is heard")
    parser.add_argument("source", type=pathlib.Path)
    parser.add_argument("target", type=pathlib.Path)
    parser.add_argument("-c", "--codec", required=True, choices=[codec.name for codec in zppcodecs.codecs()], metavar="CODEC")
    parser.add_argument("-b", "--bit-rate", type=int, help="bit/s; the codec's default")
    parser.add_argument("--dtx", action="store_true", help="discontinuous transmission")
    parser.add_argument("--scheduler", help="address of a Dask scheduler whose workers see the same folders; else this machine's cores")
    parser.add_argument("--workers", type=int, default=len(os.sched_getaffinity(0)), help="processes on this machine")
    options = parser.parse_args()
    codec = zppcodecs.find_codec(options.codec)
    job = Job(options.action, codec.name, options.bit_rate or codec.default_bit_rate, options.dtx)
    try:
        zppcodecs.Encoder(codec, job.bit_rate, dtx=job.dtx)
        if not options.source.is_dir():
            raise ValueError(f"{options.source} is no folder")
        cluster = options.scheduler or LocalCluster(
            n_workers=options.workers, threads_per_worker=1, dashboard_address=None, silence_logs=50
        )
        with Client(cluster) as client:
            summary = run(client, job, options.source, options.target, Progress())
        if not options.scheduler:
            cluster.close()
    except ValueError as error:
        print(f"bulk: {error}", file=sys.stderr)
        return 2
    print(summary)
    return 1 if summary.failures else 0


if __name__ == "__main__":
    sys.exit(main())
