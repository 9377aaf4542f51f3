"""A document that has been read."""

from __future__ import annotations

import itertools
import json
import sys
import warnings
from collections.abc import Callable, Iterable, Iterator, Mapping
from types import TracebackType
from typing import TYPE_CHECKING, NamedTuple

from . import _arguments, _html, _qvejmap
from ._errors import Error, ValuesWarning
from ._html import count
from ._map import Map
from ._source import Sources
from ._tables import UNREADABLE, Table, arrow_tables, polars_frames

if TYPE_CHECKING:
    import polars
    import pyarrow  # type: ignore[import-untyped,unused-ignore]

_SHOWN_TABLES = 100


class Lost(NamedTuple):
    """Values of a path that share a fate."""

    values: int
    first: int  # which of the path's values the first one is, from 1; 0: not known


class PathAccount(NamedTuple):
    """What becomes of the values of a path.

    Each value is in a cell, or lost in one of four ways; of those in cells some are cut, or in a
    row that began after them and may be another parent's.
    """

    path: str  # "/root/orders/id"
    values: int
    cells: int  # of them in a cell
    cut: Lost  # of these in part only
    strayed: Lost  # of these in a row that began after them
    overwritten: Lost  # a later value of the same row and column took its place
    no_column: Lost  # no column takes the path
    no_row: Lost  # its row was never complete
    rejected: Lost  # its column cannot take it


class Found(NamedTuple):
    """A value that was looked for, and where it is."""

    file: str
    line: int  # from 1
    column: int  # from 1, in bytes
    path: str  # "/root/orders/id"
    value: str  # its text; of an object or array its bracket


class Rejected(NamedTuple):
    """A value that its column cannot take: the cell is empty.  Or only in part: the cell has that."""

    table: str
    column: str
    row: int  # from 1
    text: str  # as the document has it
    reason: str


class _Tables(Mapping[str, Table]):
    """Tables by name, in the order of the document."""

    def __init__(self, document: Document) -> None:
        self._document = document

    def __getitem__(self, name: str) -> Table:
        position, path = self._document._places[name]
        return Table(self._document, position, name, path)

    def __iter__(self) -> Iterator[str]:
        return iter(self._document._places)

    def __len__(self) -> int:
        return len(self._document._places)

    def __repr__(self) -> str:
        return "{" + ", ".join(f"{name!r}: {table!r}" for name, table in self.items()) + "}"


class Document:
    """A document that has been read.  `qvejmap.open` makes it.

    It may be used on any thread; walks of one document take turns.  Batches and streams that were
    taken from it may outlive it.
    """

    def __init__(
        self, document: _qvejmap.Document, sources: Sources = Sources(),
        alldata: Callable[[], _qvejmap.Document] | None = None,
    ) -> None:
        self._sources = sources
        self._alldata_of = alldata  # None: the document itself has it
        self._opened: _qvejmap.Document | None = document
        self._facts: list[_qvejmap.TableFacts] | None = None
        self._alldata: Table | None = None
        tables = document.tables()
        self._names = _distinct(name for name, _, _ in tables)
        self._columns = [columns for _, _, columns in tables]
        self._places = {name: (i, of[1]) for i, (name, of) in enumerate(zip(self._names, tables))}
        self.name = document.name

    def __getitem__(self, name: str) -> Table:
        return self.tables[name]

    def __iter__(self) -> Iterator[str]:
        """The names of the tables."""
        return iter(self.tables)

    def __contains__(self, name: object) -> bool:
        return name in self.tables

    @property
    def tables(self) -> Mapping[str, Table]:
        """The tables by name, in the order of the document."""
        # Made when they are asked for: a document that held its tables, which hold it, would keep
        # its memory until the garbage collector comes.
        return _Tables(self)

    @property
    def map(self) -> Map:
        """The automatic map, which `open(..., map=...)` takes when it has been changed."""
        document = self._open()
        return Map(json.loads(document.map_text()), document)

    @property
    def shape(self) -> list[str]:
        """The rules that the document was read with; with shape="auto" those that were found."""
        return self._open().shape()

    @property
    def alldata(self) -> Table:
        """Every value with its path: the table ALLDATA.

        A large document is read once more for it, with records in memory or in a temporary file.
        """
        if self._alldata is None:
            document = self._open()
            (self._alldata,) = Document((self._alldata_of or document.alldata)()).tables.values()
        return self._alldata

    @property
    def rejects(self) -> Iterator[Rejected]:
        """The values that their columns cannot take, in the order of the rows; by a walk."""
        reader = self._open().rejects()
        while values := reader.next():
            for table, column, row, text, reason in values:
                name = self._columns[table][column][0]
                yield Rejected(self._names[table], name, row, text, reason)

    def find(
        self,
        path: str | Iterable[str] = (),
        value: str | None = None,
        *,
        regex: str | None = None,
        ignore_case: bool = False,
        limit: int | None = None,
    ) -> list[Found]:
        """Where values are; reads the text once more.

        Args:
            path: as of a shape, "/root/**/name"; several: one of them.
            value: the whole text of a value.
            regex: occurs in it.
            limit: no more than so many.

        Raises:
            Error: no such pattern; the text came once, from a file object.
        """
        if value is not None and regex is not None:
            raise ValueError("value and regex exclude each other")
        for name, text in (("value", value), ("regex", regex)):
            if text is not None:
                _arguments.text(name, text)
        _arguments.flag("ignore_case", ignore_case)
        most = _arguments.MOST if limit is None else _arguments.number("limit", limit, 1)
        paths = _arguments.texts("path", [path] if isinstance(path, str) else path)
        found = self._open().find(paths, value, regex, ignore_case, most)
        return [Found(*of) for of in found]

    def account(self) -> list[PathAccount]:
        """What becomes of every value, path by path in the order of the document; by a walk."""
        return [
            PathAccount(path, values, cells, *(Lost(*of) for of in lost))
            for path, values, cells, lost in self._open().account()
        ]

    def to_arrow(self, tables: Iterable[str] | None = None) -> dict[str, pyarrow.Table]:
        """All tables, or some, as pyarrow.Tables by their names; by one walk on all cores.

        Raises:
            KeyError: there is no table of a name.
        """
        chosen = self._chosen(tables)
        return dict(zip(chosen, arrow_tables(list(chosen.values()))))

    def to_polars(self, tables: Iterable[str] | None = None) -> dict[str, polars.DataFrame]:
        """As `to_arrow`, as polars.DataFrames."""
        chosen = self._chosen(tables)
        return dict(zip(chosen, polars_frames(list(chosen.values()))))

    def close(self) -> None:
        """Gives back what the document holds; batches and streams that were taken stay."""
        self._opened = self._alldata = self._alldata_of = None

    def __enter__(self) -> Document:
        return self

    def __exit__(
        self,
        type: type[BaseException] | None,
        error: BaseException | None,
        trace: TracebackType | None,
    ) -> None:
        self.close()

    def __repr__(self) -> str:
        if self._closed:
            return f"<qvejmap.Document {self.name!r}: closed>"
        lines = [f"<qvejmap.Document {self.name!r}: {count(len(self.tables), 'table')}>"]
        if self._facts_if_readable() is None:
            lines += [f"  {name}: its rows cannot be read" for name in self.tables]
        else:
            lines += [f"  {name}: {count(table.rows, 'row')}" for name, table in self.tables.items()]
        return "\n".join(lines)

    def _repr_html_(self) -> str | None:
        if self._closed:
            return None
        tables = list(self.tables.values())[:_SHOWN_TABLES]
        heads = [
            _html.Head("table"),
            _html.Head("path"),
            _html.Head("rows", number=True),
            _html.Head("columns", number=True),
            _html.Head("key"),
            _html.Head("parent"),
        ]
        facts = _html.shown(len(tables), len(self.tables), "table")
        if self._facts_if_readable() is None:
            return _html.table(
                self.name, facts + UNREADABLE, heads[:2], [(table.name, table.path) for table in tables]
            )
        return _html.table(self.name, facts, heads, map(_html_row, tables))

    @property
    def _closed(self) -> bool:
        return self._opened is None

    def _open(self) -> _qvejmap.Document:
        if self._opened is None:
            raise ValueError("the document is closed")
        return self._opened

    def _schema(self) -> list[_qvejmap.TableFacts]:
        if self._facts is None:
            self._facts = self._open().schema()
            self._warn(self._open().findings())
        return self._facts

    def _facts_if_readable(self) -> list[_qvejmap.TableFacts] | None:
        """None, when the text has changed since it was opened, say: to look at a document is no error."""
        try:
            return self._schema()
        except (Error, ValuesWarning):  # a warning may be made an error
            return self._facts

    def _warn(self, findings: tuple[int, int, int, int]) -> None:
        """Of values that the tables do not have, or perhaps in the wrong row."""
        rejected, in_no_cell, overwritten, strayed = findings
        for count, what in (
            (rejected, "rejected or cut by columns (Document.rejects tells which)"),
            (in_no_cell, "in no cell (Document.account tells which)"),
            (overwritten, "overwritten by a later one (Document.account tells which)"),
            (strayed, "in rows that may be another parent's (Document.account tells which)"),
        ):
            if count:
                values = "1 value is" if count == 1 else f"{count:,} values are"
                warnings.warn(f"{self.name}: {values} {what}", ValuesWarning, _callers_level())

    def _chosen(self, tables: Iterable[str] | None) -> dict[str, Table]:
        names = self.tables if tables is None else _arguments.texts("tables", tables)
        return {name: self.tables[name] for name in names}


def _distinct(names: Iterable[str]) -> list[str]:
    """Tables of a user's map may share a name: the second one is then NAME~2, as its CSV file is."""
    distinct: dict[str, None] = {}
    for name in names:
        numbered = (f"{name}~{number}" for number in itertools.count(2))
        distinct[name if name not in distinct else next(n for n in numbered if n not in distinct)] = None
    return list(distinct)


def _callers_level() -> int:
    """How many calls above the one who asks the code stands that is not of this package."""
    level = 0
    frame = sys._getframe()
    while frame.f_back is not None and frame.f_globals.get("__package__") == __package__:
        frame = frame.f_back
        level += 1
    return level


def _html_row(table: Table) -> list[str]:
    parent = table.parent
    by = "" if parent is None else f"{parent.table} by {parent.column}"
    return [table.name, table.path, f"{table.rows:,}", f"{len(table.columns):,}", table.key or "", by]
