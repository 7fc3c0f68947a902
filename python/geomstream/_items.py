"""The primitives of the format, read from a stream."""

from __future__ import annotations

import struct
import sys
from typing import Any, BinaryIO

import numpy as np

_FIRST_STEP = 1 << 16
_NATIVE = "<" if sys.byteorder == "little" else ">"


class StreamError(ValueError):
    """A stream breaks the format.

    offset: of the missing or wrong item, in bytes from the start of the stream.
    reason: what was expected and what was found.
    """

    def __init__(self, offset: int, reason: str):
        super().__init__(f"offset {offset}: {reason}")
        self.offset = offset
        self.reason = reason


class ItemReader:
    """Reads items in the byte order of the current record. `what` is the name of an item in errors."""

    def __init__(self, stream: BinaryIO):
        self._stream = stream
        self.offset = 0
        self.big_endian = True
        self._order = ">"

    def set_big_endian(self, big_endian: bool) -> None:
        self.big_endian = big_endian
        self._order = ">" if big_endian else "<"

    def _next(self, size: int) -> bytes | bytearray:
        """The next `size` bytes, or fewer at the end of the stream. In a damaged stream, `size` can be
        huge, so memory is allocated only as bytes arrive."""
        data = self._stream.read(min(size, _FIRST_STEP))
        if len(data) < size:
            data = bytearray(data)
            while missing := size - len(data):
                step = self._stream.read(min(missing, max(_FIRST_STEP, len(data))))
                if not step:
                    break
                data += step
        self.offset += len(data)
        return data

    def bytes_left(self, start: int) -> int:
        """The number of bytes from `start` to the end of the stream. Reads the rest of the stream."""
        while block := self._stream.read(_FIRST_STEP):
            self.offset += len(block)
        return self.offset - start

    def at_end_or_magic(self) -> bytes | bytearray:
        """The first four bytes of a record; empty at the end of the stream."""
        start = self.offset
        magic = self._next(4)
        if 0 < len(magic) < 4:
            raise self._missing(start, 4, "magic")
        return magic

    def take(self, size: int, what: str) -> bytes | bytearray:
        start = self.offset
        data = self._next(size)
        if len(data) < size:
            raise self._missing(start, size, what)
        return data

    def _missing(self, start: int, size: int, what: str) -> StreamError:
        return StreamError(start, f"expected {what} ({size} bytes), {self.bytes_left(start)} bytes left")

    def _scalars(self, code: str, size: int, what: str, number: int = 1) -> tuple[Any, ...]:
        start = self.offset
        data = self._next(number * size)
        if len(data) < number * size:
            raise self._missing(start + len(data) // size * size, size, what)
        return struct.unpack(f"{self._order}{number}{code}", data)

    def word(self, what: str) -> int:
        return self._scalars("I", 4, what)[0]

    def int32(self, what: str) -> int:
        return self._scalars("i", 4, what)[0]

    def int64(self, what: str) -> int:
        return self._scalars("q", 8, what)[0]

    def floats(self, number: int, what: str) -> tuple[float, ...]:
        return self._scalars("f", 4, what, number)

    def count(self, what: str, least: int = 0, wide: bool = True) -> int:
        """A count of 64 bits if `wide`, else of 32 bits."""
        start = self.offset
        value = self.int64(what) if wide else self.int32(what)
        if value < least:
            raise StreamError(start, f"expected {what} of at least {least}, found {value}")
        return value

    def truth(self, what: str, wide: bool) -> bool:
        start = self.offset
        value = self.int64(what) if wide else self.int32(what)
        if value not in (0, 1):
            raise StreamError(start, f"expected {what} 0 or 1, found {value}")
        return value == 1

    def words_or_none(self, length: int) -> np.ndarray | None:
        """`length` integers of 64 bits; None if the stream ends too early."""
        data = self._next(8 * length)
        return self._array(data, "i8") if len(data) == 8 * length else None

    def array(self, length: int, kind: str, columns: int, what: str) -> np.ndarray:
        """An array of `length` rows with `columns` numbers of the type "f4" or "i4"; one-dimensional if
        there is one column. A negative length counts as 0."""
        start = self.offset
        length = max(length, 0)
        data = self._next(4 * columns * length)
        if len(data) < 4 * columns * length:
            raise self.incomplete(start, length, what, 4 * columns)
        values = self._array(data, kind)
        return values if columns == 1 else values.reshape(-1, columns)

    def incomplete(self, start: int, length: int, what: str, size: int) -> StreamError:
        """The error for an array at `start` that is longer than the rest of the stream."""
        return StreamError(start, f"expected {length} {what} of {size} bytes each, "
                                  f"{self.bytes_left(start)} bytes left")

    def _array(self, data: bytes | bytearray, kind: str) -> np.ndarray:
        return np.frombuffer(data, self._order + kind).astype(_NATIVE + kind, copy=False)

    def run(self, length: int, what: str) -> bytes:
        """Bytes, with their padding in version 10."""
        data = self.take(length, what)
        if self.big_endian:
            start = self.offset
            if any(self.take(-length % 4, "padding")):
                raise StreamError(start, "expected padding of zero bytes")
        return bytes(data)
