"""What the tests need of the build: ZPPSC_BUILD is its directory, build/x64 by default."""
import importlib.util
import json
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


@pytest.fixture(scope="session")
def rows():
    """The C++ tests' table of exports by name."""
    program = BUILD / "tests" / "exports" / "list_exports"
    if not program.exists():
        pytest.skip("this build has no tests/exports/list_exports")
    lines = subprocess.run([program], check=True, capture_output=True, text=True).stdout.splitlines()
    return {row["name"]: row for row in map(json.loads, lines)}
