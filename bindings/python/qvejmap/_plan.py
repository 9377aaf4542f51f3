"""Documents that many machines read together."""

from __future__ import annotations

import base64
import json
import os
import struct
import zlib
from collections.abc import Iterable, Mapping, Sequence
from functools import partial
from typing import Any, Literal, NamedTuple

from . import _arguments, _files, _qvejmap
from ._document import Document
from ._errors import Error, FileError
from ._finder import UNSUPPORTED, Containers, Finder, Run, blank_files
from ._partial_scan import _LINES, Part, PartialScan, _check, rules_of
from ._source import Path, map_text, words_of

ALLDATA = "ALLDATA"
_FORMAT = "qvejmap plan 1"
_CHANGED = 0x80BFC809 - 2**32  # QV_IO_CHANGED
_NO_OBJECTS = (
    "files after this one cannot be read apart from it: its outermost array has elements that are no objects"
)
_BLANK = "a file of blank lines cannot be read in parts: Part.whole has all of it"
_ALLDATA_ALONE = (
    "rows cross the ends of parts or files, so that all is read together, and so ALLDATA cannot be: "
    "find a plan of it alone (table='ALLDATA')"
)
_NO_PLAN = "this is no plan"
_NO_ALLDATA = "the plan has no facts of ALLDATA: it is made with alldata=True"


class PlannedPart(NamedTuple):
    """A part of a document, and what comes before it."""

    part: Part
    before: bytes  # how often each of the plan's containers has come, packed
    last: bool  # nothing comes after it: rows that are complete when the next one begins are not
    state: _files.State | None  # of its file; None: it is not looked at


class _WholeFile(NamedTuple):
    file: str
    scan: bytes
    state: _files.State | None


class Plan:
    """How the parts of a document are read, each by itself, on whatever machine has the files.

    Its rows, ordinals, types and keys are those of one reading of all files in that order.

        parts = qvejmap.parts("big.json")
        plan = qvejmap.Plan(parts, [qvejmap.PartialScan(part) for part in parts])
        plan.learn([plan.facts(part) for part in plan.parts])
        for part in plan.parts:
            plan.open(part)["orders_items"].to_arrow()

    The two lists are what machines make, for each part on its own: plans, parts, scans and facts
    can be pickled.

    Args:
        parts: in the order of the text, those of several files file by file.
        scans: of each part its scan.
        map: the tables and columns, as of `open`; else the automatic ones.
        source_column: which each table begins with: the name of the file that a row is of.
        alldata: also the table ALLDATA of parts; each part is read once more for its types.
        shape: the rules that the scans had: a file of them, or a list.
        table: as of `find`.
        lines, exact, naming, carry, encoding, depth: as of `open`.
    """

    #: The one that it was made for.
    table: str | None
    _alldata: bool
    _tables: list[int] | None = None  # positions in those of the map; None: all
    _together: Sequence[_WholeFile] = ()  # what the only part is, when files cannot be read apart

    #: Messages on the files that were left out, "file:line:column: reason".
    bad_files: list[str]
    #: How many lines were left out.
    bad_line_count: int

    def __init__(
        self,
        parts: Sequence[Part],
        scans: Iterable[PartialScan],
        *,
        lines: Literal[True] | None = None,
        map: Path | Mapping[str, Any] | None = None,
        exact: bool = False,
        naming: Literal["map", "original"] = "map",
        carry: bool = False,
        encoding: str = "auto",
        depth: int = 1000,
        source_column: str = "",
        alldata: bool = False,
        shape: Path | Iterable[str] | None = None,
        table: str | None = None,
    ) -> None:
        self._choose(table, alldata)
        self._options = _options(lines, map, exact, naming, carry, encoding, depth, source_column, rules_of(shape))
        self.bad_files, self.bad_line_count = [], 0
        scans = list(scans)
        if len(scans) != len(parts) or not scans:
            raise ValueError("scans: one of each part")
        containers = [_qvejmap.containers_of_scan(scan.to_bytes()) for scan in scans]
        for file in blank_files(parts, containers):
            raise Error(_BLANK, file, 0, 0, -1, UNSUPPORTED, "")
        self._set(parts, PartialScan.merge(scans).to_bytes(), containers)

    @classmethod
    def find(
        cls,
        source: Path | Iterable[Path],
        run: Run = map,
        *,
        size: int = 64 << 20,
        lines: Literal[True] | None = None,
        map: Path | Mapping[str, Any] | None = None,
        exact: bool = False,
        naming: Literal["map", "original"] = "map",
        carry: bool = False,
        encoding: str = "auto",
        depth: int = 1000,
        max_paths: int = 10_000_000,
        alldata: bool = False,
        shape: Path | Iterable[str] | None = None,
        skip_bad: bool = False,
        table: str | None = None,
    ) -> Plan:
        """The plan of files, made by many workers: each reads parts of them, twice in all.

        JSON Lines, uncompressed and in UTF-8, are cut without being read; of other files a worker
        reads all to cut it.  Files whose parts cannot be read apart are one part each.

        Args:
            source: a file, a folder or a pattern, or several of them; all workers have the files,
                or those with a scheme ("s3://bucket/*.json.gz") are read by fsspec.  Several have
                the column `source`, as of `open`.
            run: applies a function to each of some items, on whatever workers, and gives what it
                returns, in order.  Function, items and results can be pickled.
            size: bytes of a part, or somewhat more.
            alldata: as above.
            shape: as of `open`.  For "auto" one worker reads all files: of much data let `qvejmap
                shape` find rules in a sample, and give these.
            skip_bad: bad lines of JSON Lines are left out, and so is any other file that is not
                JSON, or whose compressed data are damaged; `bad_files`, `bad_line_count` and
                `bad_lines` tell which.  A file that cannot be read is an error, since another
                machine may have it, and so is what is nested too deep.
            table: its name or path, or "ALLDATA": the plan has this one alone and those above it,
                and is found sooner.
            lines, map, exact, naming, carry, encoding, depth, max_paths: as of `open`.

        Raises:
            NotJson, LimitReached, MapError, FileError, Error: as `open`; with skip_bad the mistake
                of the last file when none is left.
            KeyError: there is no such table.
        """
        files, several = _files.files_of(words_of(source))
        plan = cls.__new__(cls)
        plan._choose(table, alldata)
        auto = isinstance(shape, str) and shape == "auto"
        rules = [] if auto else rules_of(shape)
        options = _options(lines, map, exact, naming, carry, encoding, depth, "source" if several else "", rules,
                           _arguments.flag("skip_bad", skip_bad))
        finder = Finder(run, files, size, options, max_paths)
        if auto:
            finder.find_shape()
        divided = finder.parts()
        try:
            plan._find(finder, divided)
        except Error as error:
            if error.status != UNSUPPORTED or len(files) == 1:
                raise
            if plan._alldata:
                raise Error(_ALLDATA_ALONE, error.file, 0, 0, -1, UNSUPPORTED, "") from error
            plan._find_together(finder)
        return plan

    def _choose(self, table: str | None, alldata: bool) -> None:
        self.table = None if table is None else _arguments.text("table", table)
        self._alldata = _arguments.flag("alldata", alldata)

    def _find(self, finder: Finder, divided: list[list[Part]]) -> None:
        """Raises Error (QVUNSUPPORTED): its files cannot be read apart."""
        while True:
            scans = finder.scans_of(divided)
            finder.tell(self, scans)
            self._set(finder.with_lines(divided), finder.sum_of(scans), [scan.containers for scan in scans],
                      finder.states)
            facts = finder.facts_of(self)
            if facts is not None:
                self.learn(facts)
                return
            finder.divide_less(divided)

    def _find_together(self, finder: Finder) -> None:
        """One part that is all files."""
        divided = [[Part.whole(file)] for file in finder.files()]
        scans = finder.scans_of(divided)
        finder.tell(self, scans)
        self._together = [
            _WholeFile(of[0].file, scan.data, finder.states[of[0].file]) for of, scan in zip(divided, scans)
        ]
        self._set(divided[0], scans[0].data, [None], finder.states)
        self.learn(finder.facts_of(self) or [])

    def _set(self, parts: Sequence[Part], scan: bytes, containers: Sequence[Containers | None],
             states: Mapping[str, _files.State | None] | None = None) -> None:
        self._scan = scan
        self._facts: bytes | None = None
        self._tables = None
        places: dict[bytes, int] = {}
        before: list[int] = []
        not_apart = None
        end = len(parts)  # after the last part that is no blank lines
        while end > 1 and parts[end - 1].form == _LINES and containers[end - 1] == []:
            end -= 1
        if states is None:
            states = {file: _files.state_of(file) for file in {part.file for part in parts}}
        #: The parts, for `facts` and `open`.
        self.parts: list[PlannedPart] = []
        for number, (part, of) in enumerate(zip(parts, containers), 1):
            self.parts.append(PlannedPart(part, _packed(before), number >= end, states[part.file]))
            for path, count in of or ():
                place = places.setdefault(path, len(before))
                if place == len(before):
                    before.append(0)
                before[place] += count
            if of is None and number < len(parts) and not_apart is None:
                not_apart = part.file
        self._containers = list(places)
        self._after = _packed(before if containers[-1] is not None else [_arguments.MOST] * len(before))
        self._tables = self._tables_of(self._document(self.parts[0]))  # a mistake in the map is told now
        if not_apart is not None and self._tables != []:
            raise Error(_NO_OBJECTS, not_apart, 0, 0, -1, UNSUPPORTED, "")

    def _tables_of(self, document: _qvejmap.Document) -> list[int] | None:
        """The positions of the tables that are wanted; None: all."""
        if self.table is None:
            return None
        places = Document(document)._places
        found = named({name: path for name, (_, path) in places.items()}, self.table)
        if found is None:
            self._alldata = True
            return []
        tables = document.with_tables_above(places[found][0])
        # Where tables share a name, what the second one is called depends on the first.
        names = [name for name, (position, _) in places.items() if position in tables]
        some = self._document(self.parts[0], tables)
        return tables if list(Document(some)._places) == names else None

    def facts(self, part: PlannedPart) -> bytes:
        """What the rows of a part show of types and keys; reads the part.

        Raises:
            Error: rows of the part need values of another one, or its file has changed.
        """
        document = self._document(part)
        facts = _qvejmap.facts_of(document)
        return _joined(facts, _qvejmap.facts_of(document.alldata())) if self._alldata else facts

    def bad_lines(self, part: PlannedPart) -> list[str]:
        """The messages on the lines of a part that are left out, "file:line:column: reason".

        Reads the part.  Columns are counted in bytes of UTF-8.  With skip_bad=False there are none.

        Raises:
            FileError: the file has changed.
        """
        of = self._checked(part)
        if not self.skip_bad:
            return []
        lines, encoding, depth = (self._options[name] for name in ("lines", "encoding", "depth"))
        told = []
        for each in [Part.whole(file.file) for file in self._together] or [of]:
            found = _qvejmap.bad_lines(os.fsencode(each.file), each.form, each.pieces, encoding, lines, depth,
                                       _files.read_at_of(each.file))
            told += [f"{each.file}:{line}:{column}: {reason}" for line, column, reason in found]
        return told

    @property
    def skip_bad(self) -> bool:
        """Is what is bad left out?"""
        return bool(self._options["skip_bad"])

    @property
    def shape(self) -> list[str]:
        """The rules that all parts are read with; with shape="auto" those that were found."""
        return list(self._options["shape"])

    def learn(self, facts: Sequence[bytes]) -> None:
        """Takes the facts of all parts, in their order, or sums of those that follow one another."""
        self._facts = self.sum(facts)

    def sum(self, facts: Sequence[bytes]) -> bytes:
        """The sum of facts that follow one another."""
        document = self._document(self.parts[0])
        if not self._alldata:
            return _qvejmap.sum_of_facts(document, list(facts))
        divided = [_divided(of) for of in facts]
        return _joined(
            _qvejmap.sum_of_facts(document, [of_tables for of_tables, _ in divided]),
            _qvejmap.sum_of_facts(document.alldata(), [of_alldata for _, of_alldata in divided]),
        )

    def open(self, part: PlannedPart) -> Document:
        """A document that has the rows of one part, with types and keys of the whole."""
        document = self._document(part)
        of_alldata = b"" if self._alldata else None
        if self._facts is not None:
            of_tables, of_alldata = _divided(self._facts) if self._alldata else (self._facts, None)
            _qvejmap.learn(document, of_tables)
        return Document(document, alldata=partial(_alldata, document, part.part.file, of_alldata))

    def ordinals(self, table: str) -> dict[str, list[range]]:
        """Of the ordinal columns of a table: what each part's rows can have in them.

        Raises:
            KeyError: there is no such table, or it is ALLDATA, which has no ordinals.
        """
        document = self._document(self.parts[0])
        facade = Document(document)
        position, _ = facade._places[table]
        columns = facade[table]._column_names()
        before = [_unpacked(part.before) for part in self.parts] + [_unpacked(self._after)]
        ranges = {}
        for column, container in document.ordinals(position):
            if container in self._containers:
                place = self._containers.index(container)
                counts = [of[place] if place < len(of) else 0 for of in before]
                ranges[columns[column]] = [range(least, most + 1) for least, most in zip(counts, counts[1:])]
        return ranges

    def without_parts(self) -> Plan:
        """The same without parts, which is small: with one of them it can be sent to who reads that one."""
        plan = Plan.__new__(Plan)
        plan.__dict__ = {**self.__dict__, "parts": self.parts[:1]}
        return plan

    def to_json(self) -> str:
        """A text that `from_json` takes, on another day."""
        options = {name: _text(of) if isinstance(of, bytes) else of for name, of in self._options.items()}
        parts = [
            [part.file, part.form, [_listed(piece) for piece in part.pieces], part.head and _listed(part.head),
             _text(before), last, state]
            for part, before, last, state in self.parts
        ]
        facts = None if self._facts is None else _text(self._facts)
        return json.dumps({"format": _FORMAT, "options": options, "table": self.table, "tables": self._tables,
                           "alldata": self._alldata,
                           "bad_files": self.bad_files, "bad_line_count": self.bad_line_count,
                           "scan": _text(self._scan), "facts": facts, "after": _text(self._after),
                           "containers": [_text(path) for path in self._containers], "parts": parts,
                           "together": [[file, _text(scan), state] for file, scan, state in self._together]})

    @classmethod
    def from_json(cls, text: str) -> Plan:
        """That of which `to_json` gave the text.

        Raises:
            ValueError: it is none.
        """
        plan = cls.__new__(cls)
        try:
            given = json.loads(text)
            if given["format"] != _FORMAT:
                raise KeyError("format")
            plan._options = {
                name: _bytes(of) if name in ("map", "map_name") else of for name, of in given["options"].items()
            }
            plan.table, plan._tables, plan._alldata = given["table"], given["tables"], given["alldata"]
            plan.bad_files, plan.bad_line_count = given["bad_files"], given["bad_line_count"]
            plan._scan = _bytes(given["scan"])
            plan._facts = None if given["facts"] is None else _bytes(given["facts"])
            plan._together = [
                _WholeFile(file, _bytes(scan), state and tuple(state)) for file, scan, state in given["together"]
            ]
            plan._containers = [_bytes(path) for path in given["containers"]]
            plan._after = _bytes(given["after"])
            plan.parts = [
                PlannedPart(
                    Part(file, form, tuple(_piece(piece) for piece in pieces), head and _piece(head)),
                    _bytes(before),
                    last,
                    state and tuple(state),
                )
                for file, form, pieces, head, before, last, state in given["parts"]
            ]
            _unpacked(plan._after)
        except (KeyError, TypeError, ValueError, AttributeError, zlib.error) as error:
            raise ValueError(_NO_PLAN) from error
        if not plan.parts or set(plan._options) != set(_options(None, None, False, "map", False, "auto", 0, "", [])):
            raise ValueError(_NO_PLAN)
        return plan

    def __repr__(self) -> str:
        types = "without types" if self._facts is None else "with types"
        return f"<qvejmap.Plan: {len(self.parts):,} parts, {types}>"

    def _document(self, planned: PlannedPart, tables: list[int] | None = None) -> _qvejmap.Document:
        part = self._checked(planned)
        before = list(zip(self._containers, _unpacked(planned.before)))
        return _qvejmap.open_part(
            os.fsencode(part.file), part.form, part.pieces, part.head, self._scan, before, planned.last,
            read_at=_files.read_at_of(part.file), **self._options,
            together=[(os.fsencode(file), scan, _files.read_at_of(file)) for file, scan, _ in self._together],
            tables=self._tables if tables is None else tables,
        )

    def _checked(self, planned: PlannedPart) -> Part:
        part = planned.part
        _check(part)
        for file, state in [(of.file, of.state) for of in self._together] or [(part.file, planned.state)]:
            if state is not None and state != _files.state_of(file):
                raise FileError("the file has changed since it was scanned", file, 0, 0, -1, _CHANGED, "")
        return part


def named(paths: Mapping[str, str], table: str) -> str | None:
    """The name of a table that has that name or path; None: it is ALLDATA.

    Args:
        paths: of all tables by their names.
    """
    found = [table] if table in paths else [name for name, path in paths.items() if path == table]
    if not found and table == ALLDATA:
        return None
    if len(found) != 1:
        raise KeyError(f"table: {'more than one with path' if found else 'no'} {table!r} among {', '.join(paths)}")
    return found[0]


def _joined(of_tables: bytes, of_alldata: bytes) -> bytes:
    return len(of_tables).to_bytes(8, "little") + of_tables + of_alldata


def _divided(facts: bytes) -> tuple[bytes, bytes]:
    """The facts of the tables and of ALLDATA."""
    end = 8 + int.from_bytes(facts[:8], "little")
    return facts[8:end], facts[end:]


def _alldata(document: _qvejmap.Document, file: str, facts: bytes | None) -> _qvejmap.Document:
    """Facts: empty when nothing has been learned; None when they were not wanted."""
    if facts is None:
        raise Error(_NO_ALLDATA, file, 0, 0, -1, UNSUPPORTED, "")
    alldata = document.alldata()
    if facts:
        _qvejmap.learn(alldata, facts)
    return alldata


def _options(
    lines: Literal[True] | None, map: Path | Mapping[str, Any] | None, exact: bool, naming: str, carry: bool,
    encoding: str, depth: int, source_column: str, shape: list[str], skip_bad: bool = False,
) -> dict[str, Any]:
    if lines is not None and lines is not True:
        raise ValueError("lines: True or None")
    if _arguments.flag("exact", exact) and (map is not None or naming == "original"):
        raise ValueError("exact: the map is made from the document, with names of letters, digits and _")
    map_bytes, map_name = (b"", b"") if map is None else map_text(map)
    return {
        "lines": lines is True,
        "encoding": _arguments.text("encoding", encoding),
        "depth": _arguments.number("depth", depth),
        "map": map_bytes,
        "map_name": map_name,
        "original_names": _arguments.choice("naming", naming, "map", "original") == "original",
        "exact": exact,
        "carry": _arguments.flag("carry", carry),
        "source_column": _arguments.text("source_column", source_column),
        "shape": shape,
        "skip_bad": skip_bad,
    }


def _packed(counts: list[int]) -> bytes:
    """So that a hundred thousand parts have room in a driver's memory."""
    return zlib.compress(struct.pack(f"<{len(counts)}Q", *counts), 1)


def _unpacked(packed: bytes) -> tuple[int, ...]:
    data = zlib.decompress(packed)
    return struct.unpack(f"<{len(data) // 8}Q", data)


def _text(data: bytes) -> str:
    return base64.b64encode(data).decode()


def _bytes(text: str) -> bytes:
    return base64.b64decode(text)


def _listed(piece: _qvejmap.Piece) -> list[Any]:
    begin, end, kind, member, line, column = piece
    return [begin, end, kind, _text(member), line, column]


def _piece(given: list[Any]) -> _qvejmap.Piece:
    begin, end, kind, member, line, column = given
    return begin, end, kind, _bytes(member), line, column
