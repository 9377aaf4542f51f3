"""Scans of parts of the input, for clusters."""

from __future__ import annotations

import json
import os
import re
from collections.abc import Iterable
from typing import NamedTuple, Union

from . import _arguments, _files, _qvejmap
from ._map import Map
from ._source import Path, file_name, has_buffer, shape_text

_LINES, _SEQUENCE = 1, 2  # of the forms, of which a document is 0
_MIDDLE, _HEAD, _TAIL = 2, 4, 5  # of the kinds, of which 1 to 3 are elements or lines
_TO_THE_END = _arguments.MOST
_ALL = (0, _TO_THE_END, 0, b"", 1, 1)  # of a file

# The kinds that pieces of a part have, by its form.
_KINDS = {0: re.compile("4?[123]?5?"), _LINES: re.compile("[123]")}


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
        file_name("file", file)
        begin = _arguments.number("begin", begin)
        end = _arguments.number("end", end, begin)
        line = 1 if begin == 0 else 0  # 0: not known
        return cls(os.fspath(file), _LINES, ((begin, end, _MIDDLE, b"", line, 1),))

    @classmethod
    def whole(cls, file: Path) -> Part:
        """A whole file, compressed or not."""
        file_name("file", file)
        return cls(os.fspath(file), 0, (_ALL,))


def _check(part: Part) -> None:
    """One that was made by hand may be no part: what is counted would be something else."""
    try:
        form = _arguments.number("form", part.form, 0, _SEQUENCE)
        kinds = "".join(str(_kind_of(piece)) for piece in part.pieces)
        head = None if part.head is None else _kind_of(part.head)
    except (TypeError, ValueError):
        raise ValueError("this is no part of a file") from None
    whole = tuple(part.pieces) == (_ALL,) and head is None
    can_be = form in _KINDS and _KINDS[form].fullmatch(kinds)
    divided = can_be and (head is None or (head == _HEAD and kinds.endswith(str(_TAIL))))
    if not (whole or divided):
        raise ValueError("this is no part of a file")


def _kind_of(piece: _qvejmap.Piece) -> int:
    begin, end, kind, member, line, column = piece
    for number, least in ((begin, 0), (end, begin), (line, 0), (column, 0)):
        _arguments.number("piece", number, least)
    if not isinstance(member, bytes):
        raise TypeError
    return _arguments.number("kind", kind, 0, _TAIL)


def parts(file: Path, size: int = 64 << 20, *, lines: bool = False, encoding: str = "auto") -> list[Part]:
    """The parts of a file, in order, each of `size` bytes or somewhat more; reads it once.

    JSON Lines are cut after lines, other texts between the elements of the outermost array, or of a
    large array of objects in the outermost object.  What cannot be divided is one part.
    """
    file_name("file", file)
    size = _arguments.number("size", size, 1)
    _arguments.text("encoding", encoding)
    return cut(os.fspath(file), size, encoding, _arguments.flag("lines", lines))


def cut(file: str, size: int, encoding: str, lines: bool, file_size: int | None = None) -> list[Part]:
    """As `parts`; by their size JSON Lines are cut unread, and have parts whose first line is not known."""
    read_at = _files.read_at_of(file)
    found = _qvejmap.ranges(os.fsencode(file), size, encoding, lines, read_at, file_size)
    parts = [Part(file, *of) for of in found]
    whole = Part.whole(file)
    apart = read_at is None or all(part.pieces == whole.pieces for part in parts) or read_at.has_ranges()
    return parts if apart else [whole]


def rules_of(shape: Path | Iterable[str] | None) -> list[str]:
    """The rules of a shape, each as `Document.shape` has it."""
    if isinstance(shape, str) and shape == "auto":
        raise ValueError('shape: "auto" needs the whole document; Plan.find takes it')
    return _qvejmap.shape_rules(*shape_text(shape))


def scan_of(
    part: Part, lines: bool, encoding: str, depth: int, max_paths: int, rules: list[str], skip_bad: bool = False
) -> tuple[bytes, int, int]:
    """The bytes of its scan, its line feeds when it is of lines, and how many lines were left out."""
    _check(part)
    file = file_name("file", part.file)
    return _qvejmap.scan_range(
        file, part.form, part.pieces, encoding, lines, depth, max_paths, rules, skip_bad,
        _files.read_at_of(part.file),
    )


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
        shape: a file of rules, or a list of rules.

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
        shape: Path | Iterable[str] | None = None,
    ) -> None:
        encoding = _arguments.text("encoding", encoding)
        _arguments.flag("lines", lines)
        limits = (_arguments.number("depth", depth), _arguments.number("max_paths", max_paths))
        rules = rules_of(shape)
        if isinstance(source, Part):
            self._bytes, _, _ = scan_of(source, lines, encoding, *limits, rules)
        elif has_buffer(source):
            self._bytes = _qvejmap.scan_text(source, lines, encoding, *limits, rules)
        else:
            raise TypeError(f"source: a part of a file, or bytes, not {type(source).__name__}")

    @classmethod
    def from_bytes(cls, data: bytes | bytearray | memoryview) -> PartialScan:
        """That of which `to_bytes` gave the bytes."""
        if not has_buffer(data):
            raise TypeError(f"data: bytes, not {type(data).__name__}")
        scan = cls.__new__(cls)
        scan._bytes = _qvejmap.merge_scans([bytes(memoryview(data))])
        return scan

    def to_bytes(self) -> bytes:
        return self._bytes

    @classmethod
    def merge(cls, scans: Iterable[PartialScan]) -> PartialScan:
        """The sum of scans that follow one another; sums may be added in their turn."""
        if not isinstance(scans, Iterable):
            raise TypeError(f"scans: PartialScans, not {type(scans).__name__}")
        sum = cls.__new__(cls)
        sum._bytes = _qvejmap.merge_scans([_scanned(scan) for scan in scans])
        return sum

    def __add__(self, later: PartialScan) -> PartialScan:
        return self.merge((self, later)) if isinstance(later, PartialScan) else NotImplemented

    @property
    def map(self) -> Map:
        """The automatic map of what has been scanned."""
        return Map(json.loads(_qvejmap.map_of_scan(self._bytes)))

    @property
    def counts(self) -> dict[str, int]:
        """How often each object and array has come, by path: what ordinals have counted."""
        return dict(_qvejmap.counts_of_scan(self._bytes))

    def __repr__(self) -> str:
        return f"<qvejmap.PartialScan: {len(self._bytes):,} bytes>"


def _scanned(scan: PartialScan) -> bytes:
    if not isinstance(scan, PartialScan):
        raise TypeError(f"scans: PartialScans, not {type(scan).__name__}")
    return scan._bytes
