"""Reads extents.txt: how far the buffers of a primitive reach."""
from __future__ import annotations

import pathlib
import re
from dataclasses import dataclass
from types import CodeType

_TABLE = pathlib.Path(__file__).resolve().parent / "extents.txt"
_ARGUMENT = re.compile(r"\s*(?P<name>\w+)(?P<null>\??)(?:(?P<state>[=:])(?P<kind>\w+))?(?:\[(?P<extent>[^\]]*)\])?\s*(?:,|$)")

Expression = int | CodeType


@dataclass(frozen=True)
class Extent:
    """Of one buffer: elements before and from the pointer on; of a state block: its kind, and the bytes where it is started."""

    before: Expression = 0
    after: Expression = 0
    null: bool = False
    kind: str | None = None
    starts: bool = False


@dataclass(frozen=True)
class Extents:
    buffers: dict[str, Extent]
    where: CodeType | None
    condition: str


def _expression(text: str, function: str) -> Expression:
    text = text.strip()
    return int(text) if text.isdigit() else compile(text, f"extents of {function}", "eval")


def _line(function: str, text: str) -> Extents:
    text, _, condition = text.partition(" where ")
    buffers: dict[str, Extent] = {}
    position = 0
    while position < len(text):
        match = _ARGUMENT.match(text, position)
        if match is None or match.end() == position:
            raise ImportError(f"extents.txt: no way to read '{text[position:]}' of {function}")
        before, _, after = (match["extent"] or "0").rpartition(":")
        buffers[match["name"]] = Extent(
            _expression(before or "0", function), _expression(after, function), bool(match["null"]), match["kind"],
            match["state"] == "=",
        )
        position = match.end()
    return Extents(buffers, compile(condition, f"condition of {function}", "eval") if condition else None, condition)


def read_extents() -> dict[str, Extents]:
    table: dict[str, Extents] = {}
    for line in _TABLE.read_text(encoding="utf-8").splitlines():
        if line and not line.startswith("#"):
            function, _, text = line.partition(":")
            table[function] = _line(function, text)
    return table
