"""Prototypes, constants and comments of zppsc.h, read from the headers themselves."""
from __future__ import annotations

import pathlib
import re
from dataclasses import dataclass

_HERE = pathlib.Path(__file__).resolve().parent
_DECLARATION = re.compile(
    r"/\*(?P<comment>.*?)\*/"
    r"|ZPPAPI\s+(?P<result>[^;{}()]*?)(?P<name>\w+)\s*\((?P<parameters>[^)]*)\)\s*;"
    r"|(?P<constant>\b(?:zppSts|ZPP_RATE_)\w+)\s*=\s*(?P<value>-?\d+)",
    re.DOTALL,
)
_PARAMETER = re.compile(r"(?P<const>const\s+)?(?P<type>\w+)\s*(?P<pointer>\*?)\s*(?P<name>\w+)")


@dataclass(frozen=True)
class Parameter:
    name: str
    type: str  # "Zpp16s", "int", "void"
    pointer: bool
    const: bool


@dataclass(frozen=True)
class Prototype:
    name: str
    result: str  # "ZppStatus", "int", "void"
    parameters: tuple[Parameter, ...]
    declaration: str
    comment: str


@dataclass(frozen=True)
class Headers:
    prototypes: dict[str, Prototype]
    constants: dict[str, int]


def header_directory() -> pathlib.Path:
    """Where zppsc.h lies: in the installed package, in the source tree, or among the system's headers."""
    places = [_HERE / "include", pathlib.Path("/usr/local/include"), pathlib.Path("/usr/include")]
    if len(_HERE.parents) > 3:
        places.insert(1, _HERE.parents[3] / "include")
    for place in places:
        if (place / "zppsc.h").is_file() and (place / "zppsc" / "types.h").is_file():
            return place
    raise ImportError("zppsc.h is not to be found in " + ", ".join(map(str, places)))


def _tidy(comment: str) -> str:
    lines = [re.sub(r"^\s*\* ?", "", line).rstrip() for line in comment.strip().splitlines()]
    return "\n".join(lines).strip()


def _parameter(text: str, function: str) -> Parameter:
    match = _PARAMETER.fullmatch(text.strip())
    if match is None:
        raise ImportError(f"{function}: no way to read the parameter '{text.strip()}'")
    return Parameter(match["name"], match["type"], bool(match["pointer"]), bool(match["const"]))


def read_headers(directory: pathlib.Path | None = None) -> Headers:
    directory = directory or header_directory()
    prototypes: dict[str, Prototype] = {}
    constants: dict[str, int] = {}
    for path in sorted((directory / "zppsc").glob("*.h")):
        text, comment = path.read_text(encoding="utf-8"), ""
        for match in _DECLARATION.finditer(text):
            if match["comment"] is not None:
                trailing = text.rfind("\n", 0, match.start()) != len(text[: match.start()].rstrip(" ")) - 1
                if not trailing and not match["comment"].lstrip().startswith("----"):
                    comment = _tidy(match["comment"])
            elif match["constant"]:
                constants[match["constant"]] = int(match["value"])
            else:
                name, inside = match["name"], match["parameters"].strip()
                parameters = () if inside in ("", "void") else tuple(_parameter(p, name) for p in inside.split(","))
                declaration = re.sub(r"\s+", " ", match[0][len("ZPPAPI ") :])
                prototypes[name] = Prototype(name, match["result"].strip(), parameters, declaration, comment)
    if not prototypes or not constants:
        raise ImportError(f"no prototypes in {directory}")
    return Headers(prototypes, constants)
