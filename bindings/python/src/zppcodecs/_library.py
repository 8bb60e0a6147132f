"""Finds and loads the two shared libraries."""
from __future__ import annotations

import ctypes
import os
import pathlib

_HERE = pathlib.Path(__file__).resolve().parent


def load(name: str, soversion: int) -> ctypes.CDLL:
    """Loads lib<name>: from the directory in ZPPSC_LIBRARY_PATH if that is set, else from the package's own directory, else
    wherever the system's loader finds it. Calls through the result run without the interpreter's lock."""
    file = f"lib{name}.so.{soversion}"
    named = os.environ.get("ZPPSC_LIBRARY_PATH")
    if named:
        return ctypes.CDLL(str(pathlib.Path(named) / file))
    if (_HERE / file).is_file():
        return ctypes.CDLL(str(_HERE / file))
    try:
        return ctypes.CDLL(file)
    except OSError as error:
        raise ImportError(
            f"{file} is not to be found: install the libraries, or set ZPPSC_LIBRARY_PATH to the directory that holds them"
        ) from error


PRIMITIVES = load("zppsc", 4)  # first: libzppcodecs needs it, and finds the one that is loaded
CODECS = load("zppcodecs", 1)
