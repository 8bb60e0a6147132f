"""Bulk transcoding on a cluster of two workers, of which one is killed; a run that is killed; files that are none."""
import os
import pathlib
import shutil
import signal
import subprocess
import sys
import time
import wave

import bulk
import dask
import numpy as np
import pytest
from distributed import Client, LocalCluster

import zppcodecs
from zppcodecs import storage

HERE = pathlib.Path(__file__).resolve().parent
PROMPTS = pathlib.Path("/usr/share/asterisk/sounds")  # Debian's asterisk-core-sounds-en-wav
JOB = bulk.Job("encode", "amr", 12200, False)


def write(path, speech, channels=1, rate=8000):
    path.parent.mkdir(parents=True, exist_ok=True)
    with wave.open(str(path), "wb") as sound:
        sound.setparams((channels, 2, rate, 0, "NONE", None))
        sound.writeframes(np.asarray(speech, "<i2").tobytes())


@pytest.fixture(scope="module")
def speech(tmp_path_factory):
    """A tree of recorded prompts; where they are not installed, of noise."""
    tree = tmp_path_factory.mktemp("speech")
    prompts = sorted(PROMPTS.rglob("*.wav"))[:: max(1, len(list(PROMPTS.rglob("*.wav"))) // 150)] if PROMPTS.exists() else []
    for n, path in enumerate(prompts):
        shutil.copy(path, tree / f"{n % 5}-{path.stem}.wav") if n % 5 == 0 else None
        (tree / f"folder {n % 5}" / "deep").mkdir(parents=True, exist_ok=True)
        shutil.copy(path, tree / f"folder {n % 5}" / "deep" / f"{n}-{path.name}")
    random = np.random.default_rng(1)
    for n in range(0 if prompts else 150):
        write(tree / f"folder {n % 5}" / f"{n}.wav", random.normal(0, 2000, 24000))
    return tree


@pytest.fixture(scope="module")
def expected(speech):
    """What each target must hold."""
    contents = {}
    for path in speech.rglob("*.wav"):
        payloads = zppcodecs.encode(bulk.read_speech(str(path), 8000), "amr", 12200)
        contents[path.relative_to(speech).with_suffix(".amr")] = storage.pack(payloads, "amr")
    return contents


def targets(folder):
    return {path.relative_to(folder): path.read_bytes() for path in folder.rglob("*") if path.is_file() and path.name[0] != "."}


@pytest.fixture
def cluster():
    with LocalCluster(n_workers=2, threads_per_worker=1, dashboard_address=None, silence_logs=50) as two, Client(two) as client:
        yield client


@pytest.fixture
def small_batches(monkeypatch):
    monkeypatch.setattr(bulk, "BATCH_BYTES", 100_000)


def test_a_worker_that_is_killed_costs_nothing_but_time(cluster, speech, expected, tmp_path, small_batches):
    pids, killed = cluster.run(os.getpid), []

    def kill(summary, files):
        if summary.done > files // 4 and not killed:
            killed.append(next(iter(pids.values())))
            os.kill(killed[0], signal.SIGKILL)

    summary = bulk.run(cluster, JOB, speech, tmp_path / "out", kill)
    assert killed and not summary.failures, summary
    assert targets(tmp_path / "out") == expected
    print(f"\nworker {killed[0]} killed on the way; {summary.done} files complete:\n{summary}")


def test_a_run_that_is_killed_leaves_whole_files_and_is_resumed(speech, expected, tmp_path):
    out = tmp_path / "out"
    command = [sys.executable, HERE / "bulk.py", "encode", speech, out, "-c", "amr", "--workers", "2"]
    small = {**os.environ, "PYTHONPATH": f"{HERE}:{os.environ.get('PYTHONPATH', '')}"}
    run = subprocess.Popen(command, env=small, start_new_session=True, stderr=subprocess.DEVNULL, stdout=subprocess.DEVNULL)
    while run.poll() is None and len(list(out.rglob("*.amr"))) < len(expected) // 4:
        time.sleep(0.01)
    assert run.poll() is None, "it has ended before it could be killed"
    os.killpg(run.pid, signal.SIGKILL)
    run.wait()
    time.sleep(1)  # workers in sessions of their own notice that the scheduler is gone
    there = targets(out)
    assert there and len(there) < len(expected)
    assert all(expected[name] == content for name, content in there.items())
    (out / "folder 1" / ".rest.amr.xyz.part").parent.mkdir(parents=True, exist_ok=True)
    (out / "folder 1" / ".rest.amr.xyz.part").write_bytes(b"half")
    again = subprocess.run(command, env=small, capture_output=True, text=True, check=True)
    kept = int(again.stdout.split(" files were there already")[0].split("\n")[-1])
    assert kept >= len(there)
    assert targets(out) == expected and not list(out.rglob("*.part"))
    third = subprocess.run(command, env=small, capture_output=True, text=True, check=True)
    assert f"{len(expected)} files were there already, 0 failed" in third.stdout
    print(f"\nkilled with {len(there)} of {len(expected)} files complete, resumed with {kept} kept")


def test_files_that_are_none_do_not_stop_the_others(cluster, tmp_path):
    tree, out = tmp_path / "in", tmp_path / "out"
    write(tree / "good.wav", np.arange(1600))
    write(tree / "empty.wav", [])
    write(tree / "stereo.wav", np.arange(1600), channels=2)
    write(tree / "wide.wav", np.arange(1600), rate=16000)
    write(tree / "cut.wav", np.arange(1600))
    (tree / "cut.wav").write_bytes((tree / "cut.wav").read_bytes()[:1000])
    (tree / "text.wav").write_text("no sound", encoding="utf-8")
    (out / "taken.amr").mkdir(parents=True)
    write(tree / "taken.wav", np.arange(1600))
    summary = bulk.run(cluster, JOB, tree, out)
    told = {pathlib.Path(f.source).name: f.error for f in summary.failures}
    assert set(told) == {"stereo.wav", "wide.wav", "cut.wav", "text.wav", "taken.wav"}
    assert "2 channels of 16 bits at 8000 Hz" in told["stereo.wav"] and "478 of 1600 samples" in told["cut.wav"]
    assert set(targets(out)) == {pathlib.Path("good.amr"), pathlib.Path("empty.amr")}
    with pytest.raises(ValueError, match="take another folder"):
        bulk.run(cluster, bulk.Job("encode", "amr", 4750, False), tree, out)


def test_back_to_speech_and_both_ways(cluster, tmp_path):
    sound = (8000 * np.sin(np.arange(8000) * 0.2)).astype(np.int16)
    write(tmp_path / "in" / "a" / "tone.wav", sound)
    for codec, rate, dtx in (("g729", 8000, True), ("g726", 40000, False), ("gsm-fr", 13000, True)):
        coded, back, heard = (tmp_path / f"{codec}-{name}" for name in ("coded", "back", "heard"))
        bulk.run(cluster, bulk.Job("encode", codec, rate, dtx), tmp_path / "in", coded)
        assert not bulk.run(cluster, bulk.Job("decode", codec, rate, dtx), coded, back).failures
        bulk.run(cluster, bulk.Job("roundtrip", codec, rate, dtx), tmp_path / "in", heard)
        decoded, both = (bulk.read_speech(str(folder / "a" / "tone.wav"), 8000) for folder in (back, heard))
        delay = zppcodecs.find_codec(codec).delay_samples
        assert len(both) == len(sound)
        assert np.array_equal(both[: 8000 - delay], decoded[delay:8000])


_work = bulk.work


def deadly(job, pairs):
    if any("poison" in source for source, _ in pairs):
        os._exit(1)
    return _work(job, pairs)


def test_a_file_that_kills_its_workers_is_reported_and_the_others_are_done(tmp_path, monkeypatch):
    for name in ("a", "b", "poison"):
        write(tmp_path / "in" / f"{name}.wav", np.arange(800))
    monkeypatch.setattr(bulk, "work", deadly)
    with dask.config.set({"distributed.scheduler.allowed-failures": 0}):
        with LocalCluster(n_workers=2, threads_per_worker=1, dashboard_address=None, silence_logs=50) as two, Client(two) as client:
            summary = bulk.run(client, JOB, tmp_path / "in", tmp_path / "out")
    assert summary.done == 2 and [pathlib.Path(f.source).name for f in summary.failures] == ["poison.wav"]
