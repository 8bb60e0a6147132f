"""Payloads in files, as zppcodec's default framings lay them out (g722.1: as its framing rfc5577).

amr and amr-wb have the storage format of RFC 4867, .amr and .awb files. g723.1 files tell the size of a payload by its first
octet. g729 and its relatives have an octet with the length before each payload when dtx is on. All others are payloads of one
size, one after the other.
"""
from __future__ import annotations

import os
import tempfile
from collections.abc import Iterable, Iterator

from .codecs import Codec, Feature, find_codec

_MAGIC = {"amr": b"#!AMR\n", "amr-wb": b"#!AMR-WB\n"}
_NO_DATA = bytes([15 << 3 | 4])  # frame type 15, not damaged
_STORED = {  # octets of a stored frame by its type
    "amr": (13, 14, 16, 18, 20, 21, 27, 32, 6, 1, 1, 1, 1, 1, 1, 1),
    "amr-wb": (18, 24, 33, 37, 41, 47, 51, 59, 61, 6, 1, 1, 1, 1, 1, 1),
}
_G723_KINDS, _G723_NOTHING = (24, 20, 4, 1), b"\x03"
_LOST = 255
_SUFFIX = {"amr": ".amr", "amr-wb": ".awb", "gsm-fr": ".gsm"}


class StorageError(ValueError):
    """Data that are no file of this codec."""


def _codec(codec: str | Codec) -> Codec:
    return codec if isinstance(codec, Codec) else find_codec(codec)


def suffix(codec: str | Codec) -> str:
    """The usual ending of such files: ".amr", ".g729" ..."""
    name = _codec(codec).name
    return _SUFFIX.get(name, "." + name.replace("-", ".") if name.startswith("g711") else "." + name.replace(".", ""))


def pack(payloads: Iterable[bytes | None], codec: str | Codec, *, dtx: bool = False) -> bytes:
    """The file of these payloads. Empty ones were not sent, None is a lost one; ValueError where the format has neither."""
    row = _codec(codec)
    parts = [_MAGIC.get(row.name, b"")]
    for payload in payloads:
        if row.name in _MAGIC:
            parts.append(payload or _NO_DATA)
        elif row.name == "g723.1" and payload == b"":
            parts.append(_G723_NOTHING)
        elif row.name.startswith("g729") and dtx:
            parts.append(bytes([_LOST]) if payload is None else bytes([len(payload)]) + payload)
        elif payload:
            parts.append(payload)
        else:
            raise ValueError(f"files of {row.name}{' with dtx' if dtx else ''} cannot tell that a frame is missing")
    return b"".join(parts)


def _take(row: Codec, bit_rate: int, dtx: bool, data: bytes, at: int) -> tuple[bytes | None, int]:
    """The payload that begins there, and where the next one does."""
    if row.name in _MAGIC:
        end = at + _STORED[row.name][data[at] >> 3 & 15]
        return (data[at:end] if end > at + 1 else b""), end
    if row.name == "g723.1":
        end = at + _G723_KINDS[data[at] & 3]
        return (data[at:end] if end > at + 1 else b""), end
    if row.name.startswith("g729") and dtx:
        if data[at] == _LOST:
            return None, at + 1
        return data[at + 1 : at + 1 + data[at]], at + 1 + data[at]
    end = at + -(-row.packet_samples * bit_rate // (8 * row.sample_rate))
    if row.features & Feature.SAMPLE_BASED:
        end = min(end, len(data))  # the last packet may be shorter
    return data[at:end], end


def unpack(data: bytes, codec: str | Codec, bit_rate: int | None = None, *, dtx: bool = False) -> Iterator[bytes | None]:
    """The payloads of a file, for Decoder.decode; StorageError where it ends inside one or does not begin as such files do."""
    row = _codec(codec)
    at = len(_MAGIC.get(row.name, b""))
    if data[:at] != _MAGIC.get(row.name, b""):
        raise StorageError(f"it does not begin with the line {_MAGIC[row.name][:-1].decode()}")
    rate = bit_rate or row.default_bit_rate
    while at < len(data):
        payload, at = _take(row, rate, dtx, data, at)
        if at > len(data):
            raise StorageError(f"it ends inside a frame: {at - len(data)} octets are missing")
        yield payload


def write(path: str | os.PathLike[str], payloads: Iterable[bytes | None], codec: str | Codec, *, dtx: bool = False) -> int:
    """Writes a file and returns its size. It appears under its name when it is complete."""
    data = pack(payloads, codec, dtx=dtx)
    replace(path, data)
    return len(data)


def replace(path: str | os.PathLike[str], data: bytes) -> None:
    """Puts the data under that name at once: a reader, or a process that is killed, leaves the old file or the new one."""
    directory, name = os.path.split(os.fspath(path))
    handle, temporary = tempfile.mkstemp(prefix="." + name + ".", suffix=".part", dir=directory or ".")
    try:
        with os.fdopen(handle, "wb") as file:
            file.write(data)
            file.flush()
            os.fsync(file.fileno())
            os.fchmod(file.fileno(), 0o666 & ~_umask())
        os.replace(temporary, path)
    except BaseException:
        os.unlink(temporary)
        raise


def _umask() -> int:
    mask = os.umask(0o022)
    os.umask(mask)
    return mask


def read(path: str | os.PathLike[str], codec: str | Codec, bit_rate: int | None = None, *, dtx: bool = False) -> list[bytes | None]:
    """The payloads of a file."""
    with open(path, "rb") as file:
        return list(unpack(file.read(), codec, bit_rate, dtx=dtx))
