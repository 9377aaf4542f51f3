"""Documents that many machines read together."""

from __future__ import annotations

import base64
import json
import os
import struct
import zlib
from collections.abc import Callable, Iterable, Mapping, Sequence
from functools import partial
from typing import Any, Literal, NamedTuple, Union

from . import _arguments, _files, _qvejmap
from ._document import Document
from ._errors import Error, FileError
from ._partial_scan import Part, PartialScan, _check, parts
from ._source import Path, map_text, words_of

_FORMAT = "qvejmap plan 1"
_CHANGED = 0x80BFC809 - 2**32  # QV_IO_CHANGED
_UNSUPPORTED = 0x803FC0F1 - 2**32  # QV_UNSUPPORTED
_SUMMED_AT_ONCE = 100
_NO_OBJECTS = (
    "files after this one cannot be read apart from it: its outermost array has elements that are no objects"
)
_NO_PLAN = "this is no plan"
_NO_ALLDATA = "the plan has no facts of ALLDATA: it is made with alldata=True"


Run = Callable[[Callable[[Any], Any], Sequence[Any]], Iterable[Any]]
_Containers = list[tuple[bytes, int]]  # how often each has come
_Scan = tuple[bytes, Union[_Containers, None]]


class PlannedPart(NamedTuple):
    """A part of a document, and what comes before it."""

    part: Part
    before: bytes  # how often each of the plan's containers has come, packed
    last: bool  # nothing comes after it: rows that are complete when the next one begins are not
    state: _files.State | None  # of its file; None: it is not looked at


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
        lines, exact, naming, carry, encoding, depth: as of `open`.
    """

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
    ) -> None:
        self._alldata = _arguments.flag("alldata", alldata)
        self._options = _options(lines, map, exact, naming, carry, encoding, depth, source_column)
        scans = list(scans)
        if len(scans) != len(parts) or not scans:
            raise ValueError("scans: one of each part")
        containers = [_qvejmap.containers_of_scan(scan.to_bytes()) for scan in scans]
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
    ) -> Plan:
        """The plan of files, made by many workers: each reads parts of them, twice in all.

        Files whose parts cannot be read apart are one part each.

        Args:
            source: a file, a folder or a pattern, or several of them; all workers have the files,
                or those with a scheme ("s3://bucket/*.json.gz") are read by fsspec.  Several have
                the column `source`, as of `open`.
            run: applies a function to each of some items, on whatever workers, and gives what it
                returns, in order.  Function, items and results can be pickled.
            size: bytes of a part, or somewhat more.
            lines, map, exact, naming, carry, encoding, depth, max_paths: as of `open`.
            alldata: as above.

        Raises:
            NotJson, LimitReached, MapError, FileError, Error: as `open`.
        """
        files, several = _files.files_of(words_of(source))
        _arguments.flag("alldata", alldata)
        options = _options(lines, map, exact, naming, carry, encoding, depth, "source" if several else "")
        finder = _Finder(run, size, lines is True, encoding, depth, max_paths)
        divided, states = finder.parts_of(files)
        while True:
            scans = finder.scans_of(divided)
            plan = cls.__new__(cls)
            plan._options = options
            plan._alldata = alldata
            plan._set([part for of in divided for part in of], finder.sum_of(scans),
                      [containers for _, containers in scans], states)
            facts = finder.facts_of(plan)
            if facts is not None:
                plan.learn(facts)
                return plan
            finder.divide_less(divided)

    def _set(self, parts: Sequence[Part], scan: bytes, containers: Sequence[_Containers | None],
             states: Mapping[str, _files.State | None] | None = None) -> None:
        self._scan = scan
        self._facts: bytes | None = None
        places: dict[bytes, int] = {}
        before: list[int] = []
        if states is None:
            states = {file: _files.state_of(file) for file in {part.file for part in parts}}
        #: The parts, for `facts` and `open`.
        self.parts: list[PlannedPart] = []
        for number, (part, of) in enumerate(zip(parts, containers), 1):
            self.parts.append(PlannedPart(part, _packed(before), number == len(parts), states[part.file]))
            for path, count in of or ():
                place = places.setdefault(path, len(before))
                if place == len(before):
                    before.append(0)
                before[place] += count
            if of is None and number < len(parts):
                raise Error(_NO_OBJECTS, part.file, 0, 0, -1, _UNSUPPORTED, "")
        self._containers = list(places)
        self._after = _packed(before if containers[-1] is not None else [_arguments.MOST] * len(before))
        self._document(self.parts[0])  # a mistake in the map is told now

    def facts(self, part: PlannedPart) -> bytes:
        """What the rows of a part show of types and keys; reads the part.

        Raises:
            Error: rows of the part need values of another one, or its file has changed.
        """
        document = self._document(part)
        facts = _qvejmap.facts_of(document)
        return _joined(facts, _qvejmap.facts_of(document.alldata())) if self._alldata else facts

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
        return json.dumps({"format": _FORMAT, "options": options, "alldata": self._alldata,
                           "scan": _text(self._scan), "facts": facts, "after": _text(self._after),
                           "containers": [_text(path) for path in self._containers], "parts": parts})

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
                raise ValueError(_NO_PLAN)
            plan._options = {
                name: _bytes(of) if name in ("map", "map_name") else of for name, of in given["options"].items()
            }
            plan._alldata = given["alldata"]
            plan._scan = _bytes(given["scan"])
            plan._facts = None if given["facts"] is None else _bytes(given["facts"])
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
        except (KeyError, TypeError, AttributeError) as error:
            raise ValueError(_NO_PLAN) from error
        return plan

    def __repr__(self) -> str:
        types = "without types" if self._facts is None else "with types"
        return f"<qvejmap.Plan: {len(self.parts):,} parts, {types}>"

    def _document(self, planned: PlannedPart) -> _qvejmap.Document:
        part, packed, last, state = planned
        before = list(zip(self._containers, _unpacked(packed)))
        _check(part)
        if state is not None and state != _files.state_of(part.file):
            raise FileError("the file has changed since it was scanned", part.file, 0, 0, -1, _CHANGED, "")
        return _qvejmap.open_part(
            os.fsencode(part.file), part.form, part.pieces, part.head, self._scan, before, last,
            read_at=_files.read_at_of(part.file), **self._options,
        )


def _joined(of_tables: bytes, of_alldata: bytes) -> bytes:
    return len(of_tables).to_bytes(8, "little") + of_tables + of_alldata


def _divided(facts: bytes) -> tuple[bytes, bytes]:
    """The facts of the tables and of ALLDATA."""
    end = 8 + int.from_bytes(facts[:8], "little")
    return facts[8:end], facts[end:]


def _alldata(document: _qvejmap.Document, file: str, facts: bytes | None) -> _qvejmap.Document:
    """Facts: empty when nothing has been learned; None when they were not wanted."""
    if facts is None:
        raise Error(_NO_ALLDATA, file, 0, 0, -1, _UNSUPPORTED, "")
    alldata = document.alldata()
    if facts:
        _qvejmap.learn(alldata, facts)
    return alldata


def _options(
    lines: Literal[True] | None, map: Path | Mapping[str, Any] | None, exact: bool, naming: str, carry: bool,
    encoding: str, depth: int, source_column: str,
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
    }


class _Finder:
    """What `Plan.find` has workers do."""

    def __init__(self, run: Run, size: int, lines: bool, encoding: str, depth: int, max_paths: int) -> None:
        self._run = run
        self._size = _arguments.number("size", size, 1)
        self._lines = lines
        self._encoding = _arguments.text("encoding", encoding)
        self._depth = _arguments.number("depth", depth)
        self._max_paths = _arguments.number("max_paths", max_paths)
        self._apart: set[str] = set()  # files that cannot be
        self._scans: dict[Part, _Scan] = {}

    def parts_of(self, files: Sequence[str]) -> tuple[list[list[Part]], dict[str, _files.State | None]]:
        """Of each file, and the states they had before."""
        found = self._done(partial(_parts_of, size=self._size, lines=self._lines, encoding=self._encoding), files)
        for of in found:
            if isinstance(of, Error):
                raise of
        return [parts for parts, _ in found], {file: state for file, (_, state) in zip(files, found)}

    def scans_of(self, divided: list[list[Part]]) -> list[_Scan]:
        """Of each part the scan, and how often containers come; changes parts that cannot be scanned apart."""
        scan = partial(
            _scan, lines=self._lines, encoding=self._encoding, depth=self._depth, max_paths=self._max_paths
        )
        while True:
            parts = [part for of in divided for part in of]
            wanted = [part for part in dict.fromkeys(parts) if part not in self._scans]
            results = self._done(scan, wanted)
            self._scans.update((part, found) for part, found in zip(wanted, results) if not isinstance(found, Error))
            if not self._not_apart(wanted, results):
                return [self._scans[part] for part in parts]
            self.divide_less(divided)

    def sum_of(self, scans: Iterable[_Scan]) -> bytes:
        """Of many scans the workers make sums, and sums of these."""
        return self._summed(_qvejmap.merge_scans, [scan for scan, _ in scans])

    def facts_of(self, plan: Plan) -> list[bytes] | None:
        """None: some parts cannot be read apart."""
        light = plan.without_parts()
        results = self._done(partial(_facts, light), plan.parts)
        if self._not_apart([planned.part for planned in plan.parts], results):
            return None
        return [self._summed(light.sum, results)]

    def divide_less(self, divided: list[list[Part]]) -> None:
        """Files whose parts cannot be read apart are one part."""
        divided[:] = [[Part.whole(of[0].file)] if of[0].file in self._apart else of for of in divided]

    def _summed(self, sum: Callable[[list[bytes]], bytes], of: list[bytes]) -> bytes:
        while len(of) > _SUMMED_AT_ONCE:
            some = [of[i : i + _SUMMED_AT_ONCE] for i in range(0, len(of), _SUMMED_AT_ONCE)]
            of = self._done(sum, some)
        return sum(of)

    def _done(self, function: Callable[[Any], Any], items: Sequence[Any]) -> list[Any]:
        """The results, in which files that cannot be divided are errors; raises the first other one."""
        results = list(self._run(partial(_tried, function), items)) if items else []
        if len(results) != len(items):
            raise ValueError("run: a result of each item")
        for result in results:
            if isinstance(result, Error) and result.status != _UNSUPPORTED:
                raise result
        return results

    def _not_apart(self, parts: Sequence[Part], results: Sequence[Any]) -> bool:
        """Are there some?  Raises the error when a file is one part already."""
        found = False
        for part, result in zip(parts, results):
            if isinstance(result, Error):
                if part == Part.whole(part.file):
                    raise result
                self._apart.add(part.file)
                found = True
        return found


def _tried(function: Callable[[Any], Any], item: Any) -> Any:
    """Errors are results, so that the first one of the text is told, and workers do not try again."""
    try:
        return function(item)
    except Error as error:
        return error


def _parts_of(file: str, size: int, lines: bool, encoding: str) -> tuple[list[Part], _files.State | None]:
    state = _files.state_of(file)
    return parts(file, size, lines=lines, encoding=encoding), state


def _scan(part: Part, *, lines: bool, encoding: str, depth: int, max_paths: int) -> _Scan:
    scan = PartialScan(part, lines=lines, encoding=encoding, depth=depth, max_paths=max_paths).to_bytes()
    return scan, _qvejmap.containers_of_scan(scan)


def _facts(plan: Plan, part: PlannedPart) -> bytes:
    return plan.facts(part)


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
