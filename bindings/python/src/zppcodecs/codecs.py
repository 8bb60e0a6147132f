"""Complete codecs: frames of speech in, payloads out, and back."""
from __future__ import annotations

import ctypes
import enum
import operator
import struct
import threading
from collections.abc import Iterable
from dataclasses import dataclass, field
from typing import Any, TypeVar

import numpy as np
import numpy.typing as npt

from ._library import CODECS

Samples = npt.NDArray[np.int16]


class Feature(enum.IntFlag):
    """What a codec can do."""

    DTX = 1  #: discontinuous transmission can be switched on
    CONCEALMENT = 2  #: the standard conceals lost frames; otherwise they decode to silence
    SAMPLE_BASED = 4  #: a call takes any number of whole frames
    RATE_SWITCH = 8  #: the bit rate may change from frame to frame


class CodecError(ValueError):
    """libzppcodecs has refused a call. Nothing has been written, and the stream has not changed."""

    def __init__(self, function: str, error: int) -> None:
        self.function, self.error = function, error
        super().__init__(function, error)

    def __str__(self) -> str:
        return f"{self.function}: {CODECS.zppcErrorText(self.error).decode()} ({self.error})"


class _Row(ctypes.Structure):
    _fields_ = [
        ("name", ctypes.c_char_p), ("standard", ctypes.c_char_p), ("rtpEncoding", ctypes.c_char_p),
        ("sampleRate", ctypes.c_int), ("frameSamples", ctypes.c_int), ("delaySamples", ctypes.c_int),
        ("maxPayload", ctypes.c_int), ("bitRates", ctypes.POINTER(ctypes.c_int)), ("bitRateCount", ctypes.c_int),
        ("defaultBitRate", ctypes.c_int), ("features", ctypes.c_uint),
    ]  # fmt: skip


class _Options(ctypes.Structure):
    _fields_ = [("bitRate", ctypes.c_int), ("dtx", ctypes.c_int), ("variant", ctypes.c_int)]


def _declare(name: str, result: Any, *parameters: Any) -> None:
    function = getattr(CODECS, name)
    function.restype, function.argtypes = result, parameters


_ADDRESS, _INT, _INTS = ctypes.c_void_p, ctypes.c_int, ctypes.POINTER(ctypes.c_int)
_declare("zppcCodecs", ctypes.POINTER(_Row), _INTS)
_declare("zppcVersion", ctypes.c_char_p)
_declare("zppcErrorText", ctypes.c_char_p, _INT)
for _kind in ("Encoder", "Decoder"):
    _declare(f"zppc{_kind}Size", ctypes.c_long, ctypes.POINTER(_Row))
    _declare(
        f"zppc{_kind}Init", _ADDRESS, _ADDRESS, ctypes.c_size_t, ctypes.POINTER(_Row), ctypes.POINTER(_Options), _INTS
    )
_declare("zppcEncoderSetBitRate", _INT, _ADDRESS, _INT)
_declare("zppcEncode", _INT, _ADDRESS, _ADDRESS, _INT, _ADDRESS, _INT)
_declare("zppcDecode", _INT, _ADDRESS, ctypes.c_char_p, _INT, _ADDRESS, _INT)


@dataclass(frozen=True)
class Codec:
    """A row of the table of codecs."""

    name: str  #: "g729", "g726": stable
    standard: str  #: "ITU-T G.729"
    rtp_encoding: str | None  #: encoding name of the RTP payload format at the default bit rate
    sample_rate: int  #: Hz
    frame_samples: int  #: samples a frame; of sample-based codecs the smallest group that fills whole octets at every rate
    delay_samples: int  #: by which decoded speech lags behind the input
    max_payload: int  #: octets of a frame's longest payload
    bit_rates: tuple[int, ...]  #: bit/s, ascending
    default_bit_rate: int
    features: Feature
    _row: Any = field(repr=False, compare=False, hash=False)

    @property
    def packet_samples(self) -> int:
        """What the helpers for whole signals put into a payload: a frame, of sample-based codecs 20 ms."""
        if not self.features & Feature.SAMPLE_BASED:
            return self.frame_samples
        return max(1, self.sample_rate // 50 // self.frame_samples) * self.frame_samples

    def __reduce__(self) -> Any:
        return find_codec, (self.name,)


def _table() -> dict[str, Codec]:
    count = ctypes.c_int()
    rows = CODECS.zppcCodecs(ctypes.byref(count))
    table = {}
    for i in range(count.value):
        row = rows[i]
        table[row.name.decode()] = Codec(
            row.name.decode(), row.standard.decode(), row.rtpEncoding.decode() if row.rtpEncoding else None, row.sampleRate,
            row.frameSamples, row.delaySamples, row.maxPayload, tuple(row.bitRates[: row.bitRateCount]), row.defaultBitRate,
            Feature(row.features), ctypes.pointer(row),
        )  # fmt: skip
    return table


_codecs = _table()


def codecs() -> tuple[Codec, ...]:
    """All codecs of the library."""
    return tuple(_codecs.values())


def find_codec(name: str) -> Codec:
    """The codec of that name; KeyError where there is none."""
    try:
        return _codecs[name]
    except KeyError:
        raise KeyError(f"no codec '{name}'; there are " + ", ".join(_codecs)) from None


def version() -> str:
    """The version of libzppcodecs."""
    text: bytes = CODECS.zppcVersion()
    return text.decode()


def _build() -> str:
    return f"{version()} {8 * struct.calcsize('P')} bit"


_Self = TypeVar("_Self", bound="_Stream")


class _Stream:
    """The state of a stream: a block of memory without pointers, so that it can be copied and pickled. A stream may be used from
    any thread; calls on one stream wait for each other."""

    _KIND = ""

    def __init__(self, codec: str | Codec, bit_rate: int | None = None, *, dtx: bool = False, variant: int = 0) -> None:
        self._codec = codec if isinstance(codec, Codec) else find_codec(codec)
        self._bit_rate = self._codec.default_bit_rate if bit_rate is None else _int(bit_rate, "bit_rate")
        self._dtx, self._variant = bool(dtx), _int(variant, "variant")
        if self._bit_rate <= 0:
            raise CodecError(f"zppc{self._KIND}Init", -3)  # 0 is C's way to say the default
        self._allocate()
        error = ctypes.c_int()
        options = _Options(self._bit_rate, self._dtx, self._variant)
        start = getattr(CODECS, f"zppc{self._KIND}Init")
        if not start(self._address, len(self._memory), self._codec._row, ctypes.byref(options), ctypes.byref(error)):
            raise CodecError(f"zppc{self._KIND}Init", error.value)

    def _allocate(self) -> None:
        self._memory = ctypes.create_string_buffer(getattr(CODECS, f"zppc{self._KIND}Size")(self._codec._row))
        self._address = ctypes.addressof(self._memory)
        self._lock = threading.Lock()

    @property
    def codec(self) -> Codec:
        return self._codec

    @property
    def dtx(self) -> bool:
        return self._dtx

    @property
    def variant(self) -> int:
        return self._variant

    def copy(self: _Self) -> _Self:
        """A stream that goes on from here, independently of this one."""
        other = type(self).__new__(type(self))
        other.__setstate__(self.__getstate__())
        return other

    def __copy__(self: _Self) -> _Self:
        return self.copy()

    def __deepcopy__(self: _Self, memo: Any) -> _Self:
        return self.copy()

    def __getstate__(self) -> dict[str, Any]:
        with self._lock:
            plain = {k: v for k, v in self.__dict__.items() if k not in ("_memory", "_address", "_lock", "_codec")}
            return {**plain, "codec": self._codec.name, "memory": self._memory.raw, "build": _build()}

    def __setstate__(self, state: dict[str, Any]) -> None:
        state = dict(state)
        build, memory = state.pop("build"), state.pop("memory")
        if build != _build():
            raise ValueError(f"a stream of another build of libzppcodecs: {build}, not {_build()}")
        self._codec = find_codec(state.pop("codec"))
        self.__dict__.update(state)
        self._allocate()
        if len(memory) != len(self._memory):
            raise ValueError(f"a stream of {len(memory)} bytes, not {len(self._memory)}")
        ctypes.memmove(self._address, memory, len(memory))

    def __repr__(self) -> str:
        dtx = ", dtx=True" if self._dtx else ""
        variant = f", variant={self._variant}" if self._variant else ""
        return f"{type(self).__name__}({self._codec.name!r}, {self._bit_rate}{dtx}{variant})"


def _int(value: Any, name: str) -> int:
    number = operator.index(value)
    if not -(1 << 31) <= number < 1 << 31:
        raise ValueError(f"{name} is outside 32 bits: {number}")
    return number


def _samples(signal: Any, name: str) -> Samples:
    array = np.asarray(signal)
    if array.dtype != np.int16:
        raise TypeError(f"{name} is an array of int16 samples, not of {array.dtype}")
    if array.ndim != 1:
        raise ValueError(f"{name} is one channel of samples: an array of one dimension, not of {array.ndim}")
    return np.ascontiguousarray(array)


class Encoder(_Stream):
    """An encoder of one stream.

    bit_rate: bit/s, None for the codec's default. dtx: discontinuous transmission. variant: a choice of the codec's own, 0 the
    usual one: g726: 1, the bit order of AAL2; g723.1: 1, no high-pass filter; amr: 1, voice activity detection option 2."""

    _KIND = "Encoder"

    @property
    def bit_rate(self) -> int:
        """bit/s. Codecs with Feature.RATE_SWITCH take another one from the next frame on."""
        return self._bit_rate

    @bit_rate.setter
    def bit_rate(self, value: int) -> None:
        rate = _int(value, "bit_rate")
        with self._lock:
            error = CODECS.zppcEncoderSetBitRate(self._address, rate)
        if error < 0:
            raise CodecError("zppcEncoderSetBitRate", error)
        self._bit_rate = rate

    def encode(self, frame: npt.ArrayLike) -> bytes:
        """Codes one frame of int16 samples; sample-based codecs one or more. Empty where nothing is sent."""
        samples = _samples(frame, "frame")
        codec = self._codec
        capacity = codec.max_payload
        if codec.features & Feature.SAMPLE_BASED:
            capacity *= max(1, -(-len(samples) // codec.frame_samples))
        payload = ctypes.create_string_buffer(capacity)
        with self._lock:
            octets: int = CODECS.zppcEncode(self._address, samples.ctypes.data, len(samples), payload, capacity)
        if octets < 0:
            raise CodecError("zppcEncode", octets)
        return payload.raw[:octets]


class Decoder(_Stream):
    """A decoder of one stream.

    bit_rate: bit/s, None for the codec's default; most codecs take it from the payloads. dtx: gsm-fr only, to look for silence
    descriptors. variant: as of Encoder; g723.1, g728: 1, no postfilter."""

    _KIND = "Decoder"

    def __init__(self, codec: str | Codec, bit_rate: int | None = None, *, dtx: bool = False, variant: int = 0) -> None:
        super().__init__(codec, bit_rate, dtx=dtx, variant=variant)
        self._last = self._codec.packet_samples

    @property
    def bit_rate(self) -> int:
        return self._bit_rate

    def decode(self, payload: bytes | bytearray | memoryview | None, samples: int | None = None) -> Samples:
        """Decodes the payload of a frame; of sample-based codecs of one or more. None: lost, and concealed. Empty: nothing was
        sent. samples: of sample-based codecs, how many were lost; by default as many as the payload before had."""
        codec = self._codec
        octets = None if payload is None else bytes(payload)
        capacity = codec.frame_samples
        if codec.features & Feature.SAMPLE_BASED:
            if octets:
                capacity = len(octets) * 8 * codec.sample_rate // self._bit_rate
            else:
                capacity = self._last if samples is None else _int(samples, "samples")
                if not 0 < capacity <= 1 << 24:
                    raise ValueError(f"samples: {capacity} are no number of samples that may be lost")
        speech = np.empty(max(1, capacity), np.int16)
        with self._lock:
            count: int = CODECS.zppcDecode(
                self._address, octets, 0 if octets is None else len(octets), speech.ctypes.data, capacity
            )
            if count > 0:
                self._last = count
        if count < 0:
            raise CodecError("zppcDecode", count)
        return speech[:count]


def encode(signal: npt.ArrayLike, codec: str | Codec, bit_rate: int | None = None, *, dtx: bool = False,
           variant: int = 0) -> list[bytes]:  # fmt: skip
    """The payloads of a whole signal, one a frame, of sample-based codecs one every 20 ms. Silence completes the last frame."""
    encoder = Encoder(codec, bit_rate, dtx=dtx, variant=variant)
    samples, size = _samples(signal, "signal"), encoder.codec.packet_samples
    if encoder.codec.features & Feature.SAMPLE_BASED:
        whole = -(-len(samples) // encoder.codec.frame_samples) * encoder.codec.frame_samples
    else:
        whole = -(-len(samples) // size) * size
    padded = np.zeros(whole, np.int16)
    padded[: len(samples)] = samples
    return [encoder.encode(padded[n : n + size]) for n in range(0, whole, size)]


def decode(payloads: Iterable[bytes | None], codec: str | Codec, bit_rate: int | None = None, *, dtx: bool = False,
           variant: int = 0) -> Samples:  # fmt: skip
    """The speech of all payloads; None among them are lost frames."""
    decoder = Decoder(codec, bit_rate, dtx=dtx, variant=variant)
    frames = [decoder.decode(payload) for payload in payloads]
    return np.concatenate(frames) if frames else np.zeros(0, np.int16)


def roundtrip(signal: npt.ArrayLike, codec: str | Codec, bit_rate: int | None = None, *, dtx: bool = False,
              variant: int = 0) -> Samples:  # fmt: skip
    """What a listener hears: as long as the signal, and in time with it, the codec's delay taken off."""
    row = codec if isinstance(codec, Codec) else find_codec(codec)
    samples = _samples(signal, "signal")
    flushed = np.concatenate([samples, np.zeros(row.delay_samples, np.int16)])
    payloads = encode(flushed, row, bit_rate, dtx=dtx, variant=variant)
    heard = decode(payloads, row, bit_rate, dtx=dtx, variant=variant)
    return heard[row.delay_samples : row.delay_samples + len(samples)]
