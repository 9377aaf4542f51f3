"""Documents that many machines read together."""

from __future__ import annotations

import base64
import json
import os
from collections import Counter
from collections.abc import Iterable, Mapping, Sequence
from typing import Any, Literal, NamedTuple

from . import _arguments, _qvejmap
from ._document import Document
from ._errors import FileError
from ._partial_scan import Part, PartialScan
from ._source import Path, map_text

_FORMAT = "qvejmap plan 1"
_CHANGED = 0x80BFC809 - 2**32  # QV_IO_CHANGED
_NO_PLAN = "this is no plan"


class PlannedPart(NamedTuple):
    """A part of a document, and what comes before it."""

    part: Part
    before: tuple[tuple[bytes, int], ...]  # containers, and how often they have come
    state: tuple[int, int] | None  # size and time of its file; None: it is not looked at


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
        naming, carry, encoding, depth: as of `open`.
    """

    def __init__(
        self,
        parts: Sequence[Part],
        scans: Iterable[PartialScan],
        *,
        map: Path | Mapping[str, Any] | None = None,
        naming: Literal["map", "original"] = "map",
        carry: bool = False,
        encoding: str = "auto",
        depth: int = 1000,
        source_column: str = "",
    ) -> None:
        map_bytes, map_name = (b"", b"") if map is None else map_text(map)
        self._options: dict[str, Any] = {
            "encoding": _arguments.text("encoding", encoding),
            "depth": _arguments.number("depth", depth),
            "map": map_bytes,
            "map_name": map_name,
            "original_names": _arguments.choice("naming", naming, "map", "original") == "original",
            "carry": _arguments.flag("carry", carry),
            "source_column": _arguments.text("source_column", source_column),
        }
        self._facts: bytes | None = None
        scans = list(scans)
        if len(scans) != len(parts) or not scans:
            raise ValueError("scans: one of each part")
        self._scan = PartialScan.merge(scans).to_bytes()
        before: Counter[bytes] = Counter()
        states = {part.file: _state(part.file) for part in parts}
        #: The parts, for `facts` and `open`.
        self.parts: list[PlannedPart] = []
        for part, scan in zip(parts, scans):
            self.parts.append(PlannedPart(part, tuple(before.items()), states[part.file]))
            before.update(dict(_qvejmap.containers_of_scan(scan.to_bytes())))
        self._document(self.parts[0])  # a mistake in the map is told now

    def facts(self, part: PlannedPart) -> bytes:
        """What the rows of a part show of types and keys; reads the part.

        Raises:
            Error: rows of the part need values of another one, or its file has changed.
        """
        return _qvejmap.facts_of(self._document(part))

    def learn(self, facts: Sequence[bytes]) -> None:
        """Takes the facts of all parts, in their order, or sums of those that follow one another."""
        self._facts = self.sum(facts)

    def sum(self, facts: Sequence[bytes]) -> bytes:
        """The sum of facts that follow one another."""
        return _qvejmap.sum_of_facts(self._document(self.parts[0]), list(facts))

    def open(self, part: PlannedPart) -> Document:
        """A document that has the rows of one part, with types and keys of the whole."""
        document = self._document(part)
        if self._facts is not None:
            _qvejmap.learn(document, self._facts)
        return Document(document)

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
             [[_text(path), count] for path, count in before], state]
            for part, before, state in self.parts
        ]
        facts = None if self._facts is None else _text(self._facts)
        return json.dumps({"format": _FORMAT, "options": options, "scan": _text(self._scan),
                           "facts": facts, "parts": parts})

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
            plan._scan = _bytes(given["scan"])
            plan._facts = None if given["facts"] is None else _bytes(given["facts"])
            plan.parts = [
                PlannedPart(
                    Part(file, form, tuple(_piece(piece) for piece in pieces), head and _piece(head)),
                    tuple((_bytes(path), count) for path, count in before),
                    state and tuple(state),
                )
                for file, form, pieces, head, before, state in given["parts"]
            ]
        except (KeyError, TypeError, AttributeError) as error:
            raise ValueError(_NO_PLAN) from error
        return plan

    def __repr__(self) -> str:
        types = "without types" if self._facts is None else "with types"
        return f"<qvejmap.Plan: {len(self.parts):,} parts, {types}>"

    def _document(self, planned: PlannedPart) -> _qvejmap.Document:
        part, before, state = planned
        if state is not None and state != _state(part.file):
            raise FileError("the file has changed since it was scanned", part.file, 0, 0, -1, _CHANGED, "")
        return _qvejmap.open_part(
            os.fsencode(part.file), part.form, part.pieces, part.head, self._scan, list(before), **self._options
        )


def _state(file: str) -> tuple[int, int] | None:
    """What tells that a file has changed; None: there is no such file here."""
    try:
        found = os.stat(file)
    except OSError:
        return None
    return found.st_size, found.st_mtime_ns


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
