"""The primitives of libzppsc, each under its own name, on numpy arrays.

    from zppcodecs import primitives as zpp
    zpp.zppsAbs_16s(source, result, len(source))

A primitive takes what its prototype in zppsc.h takes, in the same order: contiguous arrays of the element type for pointers
(int16 for Zpp16s, float32 for Zpp32f ...), numbers for the rest, a State for a state block, and None where a null pointer is
allowed. A result that C writes through a pointer goes into an array of one element. help(zpp.zppsAbs_16s) shows the header's
comment.

Where a primitive reads or writes what lies before its pointer, pass a slice of a longer array: signal[143:] has 143 elements
before it. Everything is checked before the call: types, contiguity, writability, and that all elements that the primitive may
touch are in the array (behind the pointer: in the slice). What fails is a TypeError or ValueError, and nothing has been called.

A negative status becomes a PrimitiveError. What is not negative is returned: 0, or a warning, a positive status, which a codec
acts on. The interpreter's lock is not held during the call: keep other threads away from the arrays until it returns.
"""
from __future__ import annotations

import ctypes
import enum
import operator
import struct
import threading
from collections.abc import Callable
from typing import Any, NamedTuple

import numpy as np

from ._extents import Expression, Extent, Extents, read_extents
from ._library import PRIMITIVES
from ._prototypes import Parameter, Prototype, read_headers

_headers = read_headers()
_extents = read_extents()

Status = enum.IntEnum("Status", {k: v for k, v in _headers.constants.items() if k.startswith("zppSts")})  # type: ignore[misc]
SpeechRate = enum.IntEnum(  # type: ignore[misc]
    "SpeechRate", {k: v for k, v in _headers.constants.items() if k.startswith("ZPP_RATE_")}
)
complex16 = np.dtype([("re", np.int16), ("im", np.int16)])  # Zpp16sc

_TYPES: dict[str, tuple[Any, np.dtype[Any]]] = {
    "Zpp8u": (ctypes.c_uint8, np.dtype(np.uint8)),
    "Zpp16s": (ctypes.c_int16, np.dtype(np.int16)),
    "Zpp16u": (ctypes.c_uint16, np.dtype(np.uint16)),
    "Zpp32s": (ctypes.c_int32, np.dtype(np.int32)),
    "Zpp32u": (ctypes.c_uint32, np.dtype(np.uint32)),
    "Zpp32f": (ctypes.c_float, np.dtype(np.float32)),
    "Zpp16sc": (None, complex16),
    "ZppSpeechRate": (ctypes.c_uint32, np.dtype(np.uint32)),
    "int": (ctypes.c_int, np.dtype(np.intc)),
}
_RESULTS = {"ZppStatus": ctypes.c_int32, "int": ctypes.c_int, "void": None}


class PrimitiveError(ValueError):
    """A primitive has refused its arguments. Nothing has been written."""

    def __init__(self, function: str, status: int) -> None:
        self.function = function
        self.status = Status(status) if status in Status._value2member_map_ else status
        super().__init__(function, status)

    def __str__(self) -> str:
        return f"{self.function}: {self.status.name if isinstance(self.status, Status) else self.status} ({int(self.status)})"


class State:
    """A state block: memory that an Init primitive starts and that the primitives of its kind continue. It may be copied
    (copy.copy, copy()) and pickled. Its content is the library's business; bytes(state) shows it."""

    __slots__ = ("_memory", "_address", "_bytes", "_kind", "_scalars", "_lock")

    def __init__(self, size: int) -> None:
        size = operator.index(size)
        if not 0 <= size <= 1 << 24:
            raise ValueError(f"a state block of {size} bytes")
        self._memory = ctypes.create_string_buffer(size)
        self._address = ctypes.addressof(self._memory)
        self._bytes = size
        self._kind: str | None = None
        self._scalars: dict[str, int] = {}
        self._lock = threading.Lock()

    @property
    def kind(self) -> str | None:
        """What has been started in it, "Encode_G726" for instance; None at first."""
        return self._kind

    def __getattr__(self, name: str) -> int:
        # The numbers that it was started with, of which extents depend
        if name.startswith("_"):
            raise AttributeError(name)
        try:
            return self._scalars[name]
        except KeyError:
            raise AttributeError(f"this state was started without {name}") from None

    def __len__(self) -> int:
        return self._bytes

    def __bytes__(self) -> bytes:
        return self._memory.raw

    def __repr__(self) -> str:
        return f"<State of {len(self)} bytes, {self._kind or 'not started'}>"

    def copy(self) -> State:
        return self.__copy__()

    def __copy__(self) -> State:
        other = State(len(self))
        ctypes.memmove(other._address, self._address, len(self))
        other._kind, other._scalars = self._kind, dict(self._scalars)
        return other

    def __deepcopy__(self, memo: Any) -> State:
        return self.__copy__()

    def __reduce__(self) -> Any:
        return _restored_state, (bytes(self), self._kind, self._scalars, _build())


def _build() -> str:
    version = zppscGetLibVersion()
    return f"{version.Version} {version.BuildDate} {8 * struct.calcsize('P')} bit"


def _restored_state(content: bytes, kind: str | None, scalars: dict[str, int], build: str) -> State:
    if build != _build():
        raise ValueError(f"a state block of another build of libzppsc: {build}, not {_build()}")
    state = State(len(content))
    ctypes.memmove(state._address, content, len(content))
    state._kind, state._scalars = kind, dict(scalars)
    return state


class LibraryVersion(NamedTuple):
    major: int
    minor: int
    majorBuild: int
    build: int
    targetCpu: str
    Name: str
    Version: str
    BuildDate: str


class _LibraryVersion(ctypes.Structure):
    _fields_ = [
        ("major", ctypes.c_int32), ("minor", ctypes.c_int32), ("majorBuild", ctypes.c_int32), ("build", ctypes.c_int32),
        ("targetCpu", ctypes.c_char * 4), ("Name", ctypes.c_char_p), ("Version", ctypes.c_char_p),
        ("BuildDate", ctypes.c_char_p),
    ]  # fmt: skip


def zppscGetLibVersion() -> LibraryVersion:
    """The version record of the library."""
    function = PRIMITIVES.zppscGetLibVersion
    function.restype = ctypes.POINTER(_LibraryVersion)
    record = function().contents
    values = [getattr(record, name) for name in LibraryVersion._fields]
    return LibraryVersion(*(v.decode() if isinstance(v, bytes) else v for v in values))


_NAMES: dict[str, Any] = {**_headers.constants, "max": max, "min": min, "__builtins__": {}}


def _value(expression: Expression, scalars: dict[str, Any]) -> int:
    if isinstance(expression, int):
        return expression
    return max(0, eval(expression, _NAMES, scalars))  # the package's own table, compiled when it was read


def _integer(value: Any, parameter: Parameter, bits: int, signed: bool) -> int:
    try:
        number = operator.index(value)
    except TypeError:
        raise TypeError(f"{parameter.name} is a {parameter.type}, not {type(value).__name__}") from None
    low, high = (-(1 << (bits - 1)), (1 << (bits - 1)) - 1) if signed else (0, (1 << bits) - 1)
    if not low <= number <= high:
        raise ValueError(f"{parameter.name} is a {parameter.type}: {number} is outside {low}..{high}")
    return number


def _memory(array: np.ndarray[Any, Any]) -> tuple[int, int]:
    """The bytes that belong to the array that this one is a view of."""
    owner = array
    while isinstance(owner.base, np.ndarray):
        owner = owner.base
    return np.byte_bounds(owner) if hasattr(np, "byte_bounds") else np.lib.array_utils.byte_bounds(owner)  # type: ignore


def _pointer(value: Any, parameter: Parameter, extent: Extent, scalars: dict[str, Any]) -> int:
    name, dtype = parameter.name, _TYPES[parameter.type][1]
    if not isinstance(value, np.ndarray):
        raise TypeError(f"{name} is an array of {dtype}, not {type(value).__name__}")
    if value.dtype != dtype:
        raise TypeError(f"{name} is an array of {dtype}, not of {value.dtype}")
    if not value.flags.c_contiguous or not value.flags.aligned:
        raise ValueError(f"{name} is not contiguous and aligned")
    if not parameter.const and not value.flags.writeable:
        raise ValueError(f"{name} is written, but this array is read-only")
    before, after = _value(extent.before, scalars), _value(extent.after, scalars)
    if value.size < after:
        raise ValueError(f"{name} has {value.size} elements, and {after} are needed")
    address: int = value.__array_interface__["data"][0]
    if before:
        there = (address - _memory(value)[0]) // dtype.itemsize
        if there < before:
            raise ValueError(f"{name}: {before} elements before it are needed, and its array has {there}")
    return address


def _state(value: Any, parameter: Parameter, extent: Extent, scalars: dict[str, Any]) -> int:
    if extent.kind is None:  # work memory that is not touched
        if not isinstance(value, np.ndarray):
            raise TypeError(f"{parameter.name} is an array, not {type(value).__name__}")
        return value.ctypes.data
    if not isinstance(value, State):
        raise TypeError(f"{parameter.name} is a State, not {type(value).__name__}")
    if extent.starts:
        needed = _value(extent.after, scalars)
        if len(value) < needed:
            raise ValueError(f"{parameter.name} has {len(value)} bytes, and {needed} are needed")
    elif value.kind != extent.kind:
        raise ValueError(f"{parameter.name} is to be a state of {extent.kind}, and is one of {value.kind or 'nothing'}")
    return value._address


class Primitive:
    """One function of libzppsc."""

    def __init__(self, prototype: Prototype, extents: Extents) -> None:
        self.__name__ = self.__qualname__ = prototype.name
        self.__doc__ = prototype.declaration + "\n\n" + prototype.comment
        self.__module__ = __name__
        self.prototype, self.extents = prototype, extents
        self._function = getattr(PRIMITIVES, prototype.name)
        self._function.argtypes = [
            ctypes.c_void_p if p.pointer else _TYPES[p.type][0] for p in prototype.parameters
        ]
        self._function.restype = _RESULTS[prototype.result]
        described = {p.name for p in prototype.parameters if p.pointer}
        if described != set(extents.buffers):
            raise ImportError(f"extents.txt does not fit the prototype of {prototype.name}")
        self._readers = [self._reader(p) for p in prototype.parameters]

    def _reader(self, p: Parameter) -> Callable[[Any, dict[str, Any]], Any]:
        if not p.pointer:
            if p.type == "Zpp32f":
                return lambda value, scalars: float(value)
            dtype = _TYPES[p.type][1]
            return lambda value, scalars: _integer(value, p, 8 * dtype.itemsize, dtype.kind == "i")
        extent = self.extents.buffers[p.name]
        find = _state if p.type == "void" else _pointer
        if not extent.null:
            return lambda value, scalars: find(value, p, extent, scalars)
        return lambda value, scalars: None if value is None else find(value, p, extent, scalars)

    def __repr__(self) -> str:
        return f"<primitive {self.prototype.declaration}>"

    def __call__(self, *arguments: Any) -> int | None:
        parameters = self.prototype.parameters
        if len(arguments) != len(parameters):
            raise TypeError(f"{self.__name__} takes {len(parameters)} arguments, not {len(arguments)}: {self.prototype.declaration}")
        values: list[Any] = [None] * len(arguments)
        scalars: dict[str, Any] = {}
        state: State | None = None
        starts = False
        try:
            for i, p in enumerate(parameters):  # numbers first, as extents depend on them, and on those that a state keeps
                if not p.pointer:
                    values[i] = scalars[p.name] = self._readers[i](arguments[i], scalars)
            if self.extents.where is not None and not eval(self.extents.where, _NAMES, scalars):
                raise ValueError(f"{self.extents.condition} does not hold")
            for i, p in enumerate(parameters):
                if p.type == "void":
                    values[i] = self._readers[i](arguments[i], scalars)
                    if isinstance(arguments[i], State):
                        state, starts = arguments[i], self.extents.buffers[p.name].starts
            names = scalars if state is None or starts else {**scalars, "state": state}
            for i, p in enumerate(parameters):
                if p.pointer and p.type != "void":
                    values[i] = self._readers[i](arguments[i], names)
        except (TypeError, ValueError) as error:
            raise type(error)(f"{self.__name__}: {error}") from None
        result: int | None
        if state is None:
            result = self._function(*values)
        else:
            with state._lock:
                result = self._function(*values)
                if starts and result == 0:
                    state._kind = next(e.kind for e in self.extents.buffers.values() if e.starts)
                    state._scalars = scalars
        if result is not None and result < 0:
            raise PrimitiveError(self.__name__, result)
        return result


# A function that a newer header has and extents.txt has not is left out: nobody could call it safely.
_functions = {name: Primitive(p, _extents[name]) for name, p in _headers.prototypes.items() if name in _extents}
if set(_extents) != set(_functions):
    raise ImportError("extents.txt lists functions that no header has: " + ", ".join(set(_extents) - set(_functions)))
globals().update(_functions)
globals().update(_headers.constants)  # the statuses and rates, under their names in C

__all__ = [
    "LibraryVersion", "Primitive", "PrimitiveError", "SpeechRate", "State", "Status", "complex16", "zppscGetLibVersion",
    *_functions, *_headers.constants,
]  # fmt: skip
