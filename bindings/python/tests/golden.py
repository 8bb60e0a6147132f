"""Golden vectors of the primitives, replayed through the Python package as tests/exports does in C++."""
import numpy as np

from zppcodecs import primitives as zpp

ELEMENTS = {"u8": np.uint8, "s16": np.int16, "u16": np.uint16, "s32": np.int32, "u32": np.uint32, "f32": np.float32}


def cases(path, most):
    tolerance, case = (0.0, 0.0), None
    with open(path, encoding="utf-8") as file:
        for line in file:
            word, _, rest = line.rstrip("\n").partition(" ")
            if word == "tolerance":
                tolerance = tuple(map(float, rest.split()))
            elif word == "case":
                if case is not None:
                    yield case
                    most -= 1
                    if most == 0:
                        return
                case = {"label": rest, "status": 0, "in": {}, "out": {}, "elements": {}, "tolerance": tolerance}
            elif word == "status":
                case["status"] = int(rest)
            elif word in ("in", "out"):
                element, name, _, *values = rest.split()
                case[word][name] = values
                case["elements"][name] = np.dtype(ELEMENTS[element])
    if case is not None:
        yield case


def numbers(values, dtype):
    if dtype.kind == "f":
        return np.array([float(v) for v in values], np.float64).astype(dtype)
    return np.array([int(float(v)) for v in values], np.int64).astype(dtype)


class Replay:
    """One case: the arguments that it gives, the call, and what differs."""

    def __init__(self, row, case):
        self.row, self.case = row, case
        self.function = getattr(zpp, row["name"])
        self.parameters = self.function.prototype.parameters
        self.buffers, self.states = {}, {}
        given, wanted = case["in"], case["out"]
        scalars = {}
        arguments = list(zip(row["arguments"], self.parameters))
        for a, p in arguments:
            if not p.pointer:
                value = given[a["name"]][0] if a["name"] in given else None
                if value is not None:
                    value = float(value) if p.type == "Zpp32f" else int(float(value))
                    if p.type == "ZppSpeechRate" or p.type == "Zpp32u":
                        value &= 0xFFFFFFFF
                scalars[p.name] = value
        for a, p in arguments:  # lengths that the case does not name: the size of a buffer, less its history
            if not p.pointer and scalars[p.name] is None:
                scalars[p.name] = a["value"] if p.type == "Zpp32f" else int(a["value"])
                for b, q in arguments:
                    if a["lengthOf"] and b["name"] == a["lengthOf"]:
                        scalars[p.name] = (self.elements(b) - self.history(b, scalars)) // (2 if q.type == "Zpp16sc" else 1)
        self.arguments = []
        for a, p in arguments:
            self.arguments.append(self.buffer(a, p, scalars) if p.pointer else scalars[p.name])

    def elements(self, a):
        count = len(self.case["in"].get(a["name"], ()))
        for name, start in {a["name"]: 0, **a["parts"]}.items():
            if name in self.case["out"]:
                count = max(count, start + len(self.case["out"][name]))
        return count

    def history(self, a, scalars):
        return scalars[a["historyIs"]] if a["historyIs"] else a["history"]

    def buffer(self, a, p, scalars):
        name, extent = a["name"], self.function.extents.buffers[p.name]
        if p.type == "void":
            return self.state(a, extent, scalars)
        if a["optional"] and name not in self.case["in"] and name not in self.case["out"]:
            return None
        complex_ = p.type == "Zpp16sc"
        dtype = np.dtype(np.int16) if complex_ else zpp._TYPES[p.type][1]
        before = self.history(a, scalars)
        count = self.elements(a) or before + a["count"] * (2 if complex_ else 1)
        if a["historyFrom"]:
            before = count - scalars[a["historyFrom"]]
        count = max(count, before + zpp._value(extent.after, scalars))  # a case may tell a part of what may be written
        memory = np.full(count * dtype.itemsize, 0x5A, np.uint8).view(dtype)
        if name in self.case["in"]:
            values = numbers(self.case["in"][name], dtype)
            memory[: len(values)] = values
        self.buffers[name] = memory
        for part, start in a["parts"].items():
            self.buffers[part] = memory[start:]
        return memory.view(zpp.complex16) if complex_ else memory[before:]

    def state(self, a, extent, scalars):
        name = a["name"]
        if extent.kind is None:
            return np.zeros(0, np.uint8)
        dtype = self.case["elements"].get(name, np.dtype(np.uint8))
        content = numbers(self.case["in"].get(name, ()), dtype).tobytes()
        started = None if extent.starts else extent.kind
        size = max(len(content), self.elements(a) * dtype.itemsize, a["count"], 256)
        state = zpp._restored_state(content.ljust(size, b"Z"), started, {}, zpp._build())
        self.states[name] = (state, dtype)
        return state

    def difference(self):
        try:
            status = self.function(*self.arguments) or 0
        except zpp.PrimitiveError as error:
            status = int(error.status)
        except ValueError:
            if self.case["status"] >= 0:
                raise
            return ""  # refused by the extents already
        if status != self.case["status"]:
            return f"status {status}, not {self.case['status']}"
        relative, absolute = self.case["tolerance"]
        for name, values in self.case["out"].items():
            if name in self.states:
                state, dtype = self.states[name]
                got = np.frombuffer(bytes(state), dtype)
            else:
                got = self.buffers[name]
            want = numbers(values, got.dtype)
            got = got[: len(want)]
            if got.dtype.kind == "f":
                near = np.abs(got.astype(float) - want.astype(float)) <= absolute + relative * np.abs(want.astype(float)).max()
                if not near.all():
                    return f"{name} differs"
            elif not np.array_equal(got, want):
                return f"{name} differs at {np.flatnonzero(got != want)[0]}"
        return ""
