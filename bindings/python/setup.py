"""Puts the headers, from which the primitives are read, and the stubs made of them into the package."""
import importlib.util
import pathlib
import shutil
import sys

from setuptools import setup
from setuptools.command.build_py import build_py

HERE = pathlib.Path(__file__).resolve().parent
PACKAGE = HERE / "src" / "zppcodecs"
_TYPES = {
    "Zpp8u": "np.uint8", "Zpp16s": "np.int16", "Zpp16u": "np.uint16", "Zpp32s": "np.int32", "Zpp32u": "np.uint32",
    "Zpp32f": "np.float32", "Zpp16sc": "np.void", "int": "np.intc",
}  # fmt: skip


def load(name):
    spec = importlib.util.spec_from_file_location(name, PACKAGE / f"{name}.py")
    module = sys.modules[name] = importlib.util.module_from_spec(spec)
    spec.loader.exec_module(module)
    return module


def stubs() -> str:
    headers, extents = load("_prototypes").read_headers(), load("_extents").read_extents()
    lines = [
        "# Made by setup.py from the headers of libzppsc",
        "import enum",
        "from typing import Any, NamedTuple",
        "import numpy as np",
        "import numpy.typing as npt",
        "complex16: np.dtype[np.void]",
        "class PrimitiveError(ValueError):",
        "    function: str",
        "    status: int",
        "    def __init__(self, function: str, status: int) -> None: ...",
        "class State:",
        "    def __init__(self, size: int) -> None: ...",
        "    @property",
        "    def kind(self) -> str | None: ...",
        "    def __len__(self) -> int: ...",
        "    def __bytes__(self) -> bytes: ...",
        "    def copy(self) -> State: ...",
        "    def __copy__(self) -> State: ...",
        "    def __deepcopy__(self, memo: Any) -> State: ...",
        "class LibraryVersion(NamedTuple):",
        *(f"    {name}: int" for name in ("major", "minor", "majorBuild", "build")),
        *(f"    {name}: str" for name in ("targetCpu", "Name", "Version", "BuildDate")),
        "def zppscGetLibVersion() -> LibraryVersion: ...",
    ]
    for group, prefix in (("Status", "zppSts"), ("SpeechRate", "ZPP_RATE_")):
        named = {name: value for name, value in headers.constants.items() if name.startswith(prefix)}
        lines += [f"class {group}(enum.IntEnum):", *(f"    {name} = {value}" for name, value in named.items())]
        lines += [f"{name}: int" for name in named]
    for name, prototype in headers.prototypes.items():
        if name not in extents:
            continue
        parameters = []
        for p in prototype.parameters:
            if not p.pointer:
                hint = "float" if p.type == "Zpp32f" else "int"
            elif p.type == "void":
                hint = "State" if extents[name].buffers[p.name].kind else "npt.NDArray[Any]"
            else:
                hint = f"npt.NDArray[{_TYPES[p.type]}]"
            parameters.append(f"{p.name}: {hint}" + (" | None" if p.pointer and extents[name].buffers[p.name].null else ""))
        result = "None" if prototype.result == "void" else "int"
        lines.append(f"def {name}({', '.join(parameters + ['/'])}) -> {result}: ...")
    return "\n".join(lines) + "\n"


class Build(build_py):
    def run(self):
        super().run()
        headers = load("_prototypes").header_directory()
        target = pathlib.Path(self.build_lib) / "zppcodecs"
        (target / "include" / "zppsc").mkdir(parents=True, exist_ok=True)
        for header in [headers / "zppsc.h", *(headers / "zppsc").glob("*.h")]:
            shutil.copy(header, target / "include" / header.relative_to(headers))
        (target / "primitives.pyi").write_text(stubs(), encoding="utf-8")


if __name__ == "__main__":
    setup(cmdclass={"build_py": Build})
