"""What the tests need of the build: ZPPSC_BUILD is its directory, build/x64 by default."""
import importlib.util
import os
import pathlib
import subprocess
import sys

import hypothesis
import pytest

ROOT = pathlib.Path(__file__).resolve().parents[3]
BUILD = pathlib.Path(os.environ.get("ZPPSC_BUILD", ROOT / "build" / "x64"))
os.environ.setdefault("ZPPSC_LIBRARY_PATH", str(BUILD))
if importlib.util.find_spec("zppcodecs") is None:  # not installed: the source tree's
    sys.path.insert(0, str(ROOT / "bindings" / "python" / "src"))

hypothesis.settings.register_profile("quick", max_examples=60, deadline=None, derandomize=True, database=None)
hypothesis.settings.register_profile("thorough", max_examples=500, deadline=None, database=None)
hypothesis.settings.load_profile(os.environ.get("ZPPSC_PROFILE", "quick"))


def thorough() -> bool:
    return os.environ.get("ZPPSC_PROFILE") == "thorough"


@pytest.fixture(scope="session")
def zppcodec():
    """Runs the program."""
    program = BUILD / "zppcodec"
    if not program.exists():
        pytest.skip("this build has no zppcodec")
    return lambda *arguments: subprocess.run([program, *map(str, arguments)], check=True, capture_output=True)


def argument_of(text):
    role, _, name, history, count, null, value, length_of, history_from, history_is, parts, _ = text.split(":")
    return {"role": role, "name": name, "history": int(history), "count": int(count), "optional": null == "1",
            "value": float(value), "lengthOf": length_of, "historyFrom": history_from, "historyIs": history_is,
            "parts": {part: int(start) for part, start in (p.split("=") for p in parts.split(",") if p)}}


@pytest.fixture(scope="session")
def rows():
    """The C++ tests' table of exports by name."""
    lines = (ROOT / "docs" / "reference" / "contract.tsv").read_text().splitlines()
    return {name: {"name": name, "arguments": [argument_of(a) for a in arguments]}
            for name, _, _, *arguments in (line.split("\t") for line in lines)}
