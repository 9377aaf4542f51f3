"""Scans of parts of the input, for clusters."""

from __future__ import annotations

import json
import os
from collections.abc import Iterable
from typing import NamedTuple, Union

from . import _qvejmap
from ._map import Map
from ._source import Path, file_name

_LINES = 1  # of the forms
_WHOLE, _MIDDLE = 0, 2  # of the kinds
_TO_THE_END = 2**64 - 1


class Part(NamedTuple):
    """A part of a file that can be scanned by itself, on any machine that has the file.

    `parts` makes them, `lines` and `file` too.  They can be pickled.
    """

    file: str
    form: int
    pieces: tuple[_qvejmap.Piece, ...]
    head: _qvejmap.Piece | None = None  # before the elements of a large member, whose end is here

    @property
    def begin(self) -> int:
        """Where it begins in the file, in bytes."""
        return self.pieces[0][0]

    @property
    def end(self) -> int:
        """Where it ends; 2**64 - 1: at the end of the file."""
        return self.pieces[-1][1]

    @classmethod
    def lines_of(cls, file: Path, begin: int, end: int) -> Part:
        """The lines of a JSON Lines file, uncompressed, that begin in a range of its bytes."""
        line = 1 if begin == 0 else 0  # 0: not known
        return cls(os.fspath(file), _LINES, ((begin, end, _MIDDLE, b"", line, 1),))

    @classmethod
    def whole(cls, file: Path) -> Part:
        """A whole file, compressed or not."""
        return cls(os.fspath(file), 0, ((0, _TO_THE_END, _WHOLE, b"", 1, 1),))


def parts(file: Path, size: int = 64 << 20, *, lines: bool = False, encoding: str = "auto") -> list[Part]:
    """The parts of a file, in order, each of `size` bytes or somewhat more; reads it once.

    JSON Lines are cut after lines, other texts between the elements of the outermost array, or of a
    large array of objects in the outermost object.  What cannot be divided is one part.
    """
    if size < 1:
        raise ValueError("size: at least 1")
    name = os.fspath(file)
    found = _qvejmap.ranges(file_name(name), size, encoding, lines)
    return [Part(name, *of) for of in found]


class PartialScan:
    """What a scan of a part of the input has counted: bytes that can be stored, sent and added up.

    Added in the order of the input they give the map that one scan of all would have given.

        total = PartialScan.merge(PartialScan(part) for part in parts("big.json"))
        total.map

    Args:
        source: a part of a file, or a text: all of it, compressed or not.
        lines: the text is one value a line; else it is found by its beginning.
        encoding: of a text or a whole file.
        depth, max_paths: limits, as of `open`.

    Raises:
        NotJson, LimitReached, FileError: see these.
        Error: the part cannot be scanned by itself, since what is in it counts on what is before.
    """

    def __init__(
        self,
        source: Union[Part, bytes, bytearray, memoryview],
        *,
        lines: bool = False,
        encoding: str = "auto",
        depth: int = 1000,
        max_paths: int = 10_000_000,
    ) -> None:
        if isinstance(source, Part):
            limits = (encoding, depth, max_paths)
            file = file_name(source.file)
            self._bytes = _qvejmap.scan_range(file, source.form, source.pieces, *limits)
        else:
            self._bytes = _qvejmap.scan_text(source, lines, encoding, depth, max_paths)

    @classmethod
    def from_bytes(cls, data: bytes | bytearray | memoryview) -> PartialScan:
        """That of which `to_bytes` gave the bytes."""
        scan = cls.__new__(cls)
        scan._bytes = _qvejmap.merge_scans([bytes(memoryview(data))])
        return scan

    def to_bytes(self) -> bytes:
        return self._bytes

    @classmethod
    def merge(cls, scans: Iterable[PartialScan]) -> PartialScan:
        """The sum of scans that follow one another; sums may be added in their turn."""
        sum = cls.__new__(cls)
        sum._bytes = _qvejmap.merge_scans([scan._bytes for scan in scans])
        return sum

    def __add__(self, later: PartialScan) -> PartialScan:
        return self.merge((self, later))

    @property
    def map(self) -> Map:
        """The automatic map of what has been scanned."""
        return Map(json.loads(_qvejmap.map_of_scan(self._bytes)))

    @property
    def counts(self) -> dict[str, int]:
        """How often each object and array has come, by path: what ordinals have counted."""
        return dict(_qvejmap.counts_of_scan(self._bytes))

    def __reduce__(self) -> tuple[object, ...]:
        return PartialScan.from_bytes, (self._bytes,)

    def __repr__(self) -> str:
        return f"<qvejmap.PartialScan: {len(self._bytes):,} bytes>"
