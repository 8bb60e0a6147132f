"""Arrays that end, or begin, at unreadable memory: an access outside them kills the process."""
import ctypes
import mmap

import numpy as np

_libc = ctypes.CDLL(None, use_errno=True)
_libc.mmap.restype = ctypes.c_void_p
_libc.mmap.argtypes = [ctypes.c_void_p, ctypes.c_size_t, ctypes.c_int, ctypes.c_int, ctypes.c_int, ctypes.c_long]
_libc.mprotect.argtypes = [ctypes.c_void_p, ctypes.c_size_t, ctypes.c_int]
PAGE = mmap.PAGESIZE


class Room:
    """A run of readable pages between two that are not."""

    def __init__(self, pages):
        size = (pages + 2) * PAGE
        self.start = _libc.mmap(None, size, 0, mmap.MAP_PRIVATE | mmap.MAP_ANONYMOUS, -1, 0)
        assert self.start not in (None, ctypes.c_void_p(-1).value)
        assert _libc.mprotect(self.start + PAGE, pages * PAGE, mmap.PROT_READ | mmap.PROT_WRITE) == 0
        self.bytes = np.frombuffer((ctypes.c_ubyte * (pages * PAGE)).from_address(self.start + PAGE), np.uint8)

    def array(self, dtype, count, at_end):
        size = count * dtype.itemsize
        if size > len(self.bytes):
            raise MemoryError
        memory = self.bytes[len(self.bytes) - size :] if at_end else self.bytes[:size]
        # An array of its own: the room around it is none of what belongs to it.
        return np.frombuffer((ctypes.c_ubyte * size).from_address(memory.ctypes.data), dtype) if size else np.zeros(0, dtype)
