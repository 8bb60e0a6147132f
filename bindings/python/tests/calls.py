"""Draws calls of primitives whose buffers reach exactly as far as extents.txt says."""
import random

import numpy as np
from guarded import Room

from zppcodecs import primitives as zpp

_STARTED = {}  # kind: ways to start a state of it
for _name in zpp._functions:
    for _buffer in getattr(zpp, _name).extents.buffers.values():
        if _buffer.starts:
            _STARTED.setdefault(_buffer.kind, []).append(_name)

_EDGES = (0, 1, -1, 2, 3, 4, 5, 7, 8, 11, 15, 16, 18, 20, 31, 32, 39, 40, 60, 80, 85, 143, 145, 146, 160)
_GEOMETRIES = ((50, 20, 35, 2), (10, 20, 30, 1), (10, 4, 20, 2), (1, 1, 1, 15), (50, 5, 200, 3), (7, 15, 3, 4))


class Caller:
    def __init__(self, rows, seed, buffers=20):
        self.random, self.rows, self.plain = random.Random(seed), rows, True
        self.rooms = [Room(4) for _ in range(buffers)]

    def scalar(self, a, p, lengths):
        r = self.random
        if p.type == "Zpp32f":
            return r.choice((0.0, 1.0, -0.5, r.uniform(-2, 2), float("nan"), float("inf"), 1e30, a["value"]))
        dtype = zpp._TYPES[p.type][1]
        info = np.iinfo(dtype)
        pick = r.random()
        accepted = lengths[a["lengthOf"]] if a["lengthOf"] else int(a["value"])
        if pick < (0.95 if self.plain else 0.45):
            value = accepted
        elif pick < 0.6:
            value = accepted + r.choice((-2, -1, 1, 2))
        elif pick < 0.75 and (a["lengthOf"] or p.name in ("len", "lenDst", "lags", "maxLag", "minLag", "order")):
            value = r.randint(1, 300)
        elif pick < 0.97:
            value = r.choice(_EDGES) if p.type != "ZppSpeechRate" else r.randint(0, 27)
        else:
            value = r.choice((info.min, info.max, r.randint(info.min, info.max)))
        return max(info.min, min(info.max, value))

    def fill(self, array):
        r, kind = self.random, self.random.random()
        bits = np.frombuffer(r.randbytes(array.nbytes), np.uint8)
        array.view(np.uint8)[:] = bits
        if array.dtype.kind == "f":
            if kind < 0.8:
                array[:] = np.frombuffer(r.randbytes(2 * array.size), np.int16)[: array.size] * 10 ** r.uniform(-5, 0)
        elif array.dtype == zpp.complex16:
            pass
        elif kind < 0.2:
            array[:] = r.choice((0, 1, np.iinfo(array.dtype).max, np.iinfo(array.dtype).min))
        elif kind < 0.6:
            array >>= array.dtype.type(r.randint(0, 8 * array.itemsize - 1))
        return array

    def state(self, kind):
        """A state as its Init leaves it, maybe with the bytes of a stream that went on; never one that no stream could have."""
        state = zpp.State(4096)
        name = _STARTED[kind][0]
        function = getattr(zpp, name)
        for _ in range(100):
            try:
                if kind == "WinHybrid_G728":
                    order, new, rest, decay = self.random.choice(_GEOMETRIES)
                    window = np.array([self.random.randint(0, 32767) for _ in range(order + new + rest)], np.int16)
                    function(window, order, new, rest, decay, state)
                else:
                    function(*self.arguments(function, self.rows[name], state))
                return state
            except ValueError:
                pass
        raise AssertionError(f"no way to start a state of {kind}")

    def arguments(self, function, row, state=None):
        self.plain = self.random.random() < 0.4  # mostly what the table of exports knows to be accepted
        parameters, scalars, arguments = function.prototype.parameters, {}, {}
        lengths = {a["name"]: a["count"] for a in row["arguments"]}
        for a, p in zip(row["arguments"], parameters):
            if not p.pointer:
                arguments[p.name] = scalars[p.name] = self.scalar(a, p, lengths)
        for p in parameters:
            if p.type == "void":
                extent = function.extents.buffers[p.name]
                if extent.kind is None:
                    arguments[p.name] = np.zeros(1, np.uint8)
                else:
                    if state is None and extent.starts:
                        state = zpp.State(min(4096, zpp._value(extent.after, scalars)))
                    arguments[p.name] = state = state or self.state(extent.kind)
        names = scalars if state is None or any(e.starts for e in function.extents.buffers.values()) else {**scalars, "state": state}
        room = iter(self.rooms)
        for p in parameters:
            if p.pointer and p.type != "void":
                extent, dtype = function.extents.buffers[p.name], zpp._TYPES[p.type][1]
                if extent.null and self.random.random() < 0.2:
                    arguments[p.name] = None
                    continue
                before, after = zpp._value(extent.before, names), max(1, zpp._value(extent.after, names))
                try:
                    array = self.fill(next(room).array(dtype, before + after, self.random.random() < 0.5))
                except MemoryError:
                    array = np.zeros(0, dtype)
                    before = 0
                if p.name in ("delay", "lag", "openLoopLags", "olDelay", "lags", "minLag") and self.random.random() < 0.7:
                    array[:] = self.random.choice((18, 20, 34, 40, 57, 60, 100, 141, 143))
                    array[1:2] = self.random.randint(-1, 1) if p.name == "delay" else array[1:2]
                if "Levinson" in function.__name__ and p.const and self.plain:  # autocorrelations of a signal
                    peak = 1.0 if dtype.kind == "f" else np.iinfo(dtype).max
                    array[:] = peak * self.random.uniform(0.05, 0.95) ** np.arange(array.size)
                if p.name == "scale" and self.plain:
                    array[:] = self.random.randint(0, 15)
                if p.name == "codeword" and p.const and self.plain:
                    array[:] = [self.random.randrange(n) for n in (24, 2, 2, 4096, 32, 8, 8, 8, 8, 8)[: array.size]]
                arguments[p.name] = array[before:]
        return [arguments[p.name] for p in parameters]
