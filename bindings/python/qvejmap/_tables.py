"""Tables of a document, and batches of their rows."""

from __future__ import annotations

import importlib
from collections.abc import Iterable, Iterator, Sequence
from typing import TYPE_CHECKING, Any, NamedTuple

from . import _arguments, _html, _qvejmap
from ._errors import Error
from ._html import count
from ._values import converter

if TYPE_CHECKING:
    import duckdb
    import pandas  # type: ignore[import-untyped,unused-ignore]
    import polars
    import pyarrow  # type: ignore[import-untyped,unused-ignore]

    from ._document import Document

_ROWS = 65536  # of a batch
_SHOWN_ROWS = 10
UNREADABLE = "; rows cannot be read"  # since the text has changed, say


class Column(NamedTuple):
    """A column of a table."""

    name: str
    type: str  # "TEXT", "BOOLEAN", "BIGINT", "DOUBLE", "DECIMAL(p,s)", "DATE", "TIMESTAMP(n)[ UTC]"
    path: str  # in the document, "/root/orders/id"; "" when it has none
    label: str  # of a user's map, or ""


class Parent(NamedTuple):
    """The table that the rows of another belong to."""

    table: str
    column: str  # the ordinal here that says which row
    foreign_key: bool  # every row here has its row there


class Batch:
    """Some rows of a table, in columns of Arrow.

    It needs nothing of its document any more.  Whoever reads the Arrow PyCapsule interface takes it.
    """

    def __init__(self, batch: _qvejmap.Batch, columns: list[Column]) -> None:
        self._batch = batch
        self._columns = columns

    @property
    def rows(self) -> int:
        return self._batch.rows

    def __len__(self) -> int:
        return self._batch.rows

    def __iter__(self) -> Iterator[dict[str, Any]]:
        names = [column.name for column in self._columns]
        values = [self._values(i) for i in range(len(names))]
        for row in range(self.rows):
            yield {name: of[row] for name, of in zip(names, values)}

    def __arrow_c_schema__(self) -> object:
        return self._batch.schema()

    def __arrow_c_array__(self, requested_schema: object = None) -> tuple[object, object]:
        return self._batch.schema(), self._batch.array()

    def __repr__(self) -> str:
        return f"<qvejmap.Batch: {count(self.rows, 'row')}, {count(len(self._columns), 'column')}>"

    def _repr_html_(self) -> str:
        heads = [_html.head_of(column.name, column.type) for column in self._columns]
        values = [self._values(i)[:_SHOWN_ROWS] for i in range(len(heads))]
        rows = list(zip(*values))
        return _html.table("Batch", _html.shown(len(rows), self.rows, "row"), heads, rows)

    def _values(self, column: int) -> list[Any]:
        values = self._batch.values(column)
        convert = converter(self._columns[column].type)
        if convert is None:
            return values
        return [None if value is None else convert(value) for value in values]


class Table:
    """A table of a document.

    Iteration gives its rows as dicts; that is for the few.  `batches`, the Arrow stream and the
    `to_...` methods walk the document each time and make no object of Python for a cell.
    """

    def __init__(self, document: Document, position: int, name: str, path: str) -> None:
        self._document = document
        self._position = position
        self.name = name
        self.path = path

    @property
    def columns(self) -> list[Column]:
        """The columns in order.  The first call on any table walks the document for the types."""
        _, types, _, _ = self._facts()
        names = self._document._columns[self._position]
        return [Column(name, type, path, label) for (name, path, label), type in zip(names, types)]

    @property
    def rows(self) -> int:
        """How many rows it has."""
        return self._facts()[0]

    @property
    def key(self) -> str | None:
        """The column that is a primary key: the ordinal that counts the rows."""
        position = self._facts()[2]
        return None if position is None else self._column_names()[position]

    @property
    def parent(self) -> Parent | None:
        """The table that the rows belong to."""
        parent = self._facts()[3]
        if parent is None:
            return None
        table, column, foreign = parent
        return Parent(self._document._names[table], self._column_names()[column], foreign)

    def batches(self, rows: int = _ROWS, columns: Iterable[str] | None = None) -> Iterator[Batch]:
        """The rows in order, at most `rows` at a time, perhaps of some columns alone.

        Raises:
            KeyError: the table has no column of a name.
            Error: the document cannot be read again.
        """
        rows = _arguments.number("rows", rows, 1)
        positions = self._positions(columns)
        all_columns = self.columns
        reader = self._document._open().batches(self._position, positions, rows)
        return _batches(reader, [all_columns[i] for i in positions])

    def __iter__(self) -> Iterator[dict[str, Any]]:
        for batch in self.batches(4096):
            yield from batch

    def __len__(self) -> int:
        return self.rows

    def __arrow_c_schema__(self) -> object:
        self._facts()  # tells what is not in the tables
        return self._document._open().arrow_schema(self._position, self._positions(None))

    def __arrow_c_stream__(self, requested_schema: object = None) -> object:
        self._facts()
        return self._document._open().arrow_stream(self._position, self._positions(None), _ROWS)

    def to_arrow(self) -> pyarrow.Table:
        """All rows as a pyarrow.Table, with keys and paths as metadata."""
        return arrow_tables([self])[0]

    def to_polars(self) -> polars.DataFrame:
        """All rows as a polars.DataFrame."""
        return polars_frames([self])[0]

    def to_pandas(self) -> pandas.DataFrame:
        """All rows as a pandas.DataFrame, by pyarrow, with columns of Arrow's types."""
        pandas = consumer("pandas")
        return self.to_arrow().to_pandas(types_mapper=pandas.ArrowDtype)

    def to_duckdb(self, connection: duckdb.DuckDBPyConnection | None = None) -> Any:
        """All rows as a relation of DuckDB, which may be read more than once; by pyarrow."""
        duckdb = consumer("duckdb")
        return (duckdb if connection is None else connection).from_arrow(self.to_arrow())

    def __repr__(self) -> str:
        if self._document._closed:
            return f"<qvejmap.Table {self.name!r}: closed>"
        facts = self._document._facts_if_readable()
        rows = "unreadable rows" if facts is None else count(self.rows, "row")
        return f"<qvejmap.Table {self.name!r}: {rows}, {count(len(self._column_names()), 'column')}>"

    def _repr_html_(self) -> str | None:
        if self._document._closed:
            return None
        if self._document._facts_if_readable() is None:
            heads = [_html.Head(name) for name in self._column_names()]
            return _html.table(self.name, count(len(heads), "column") + UNREADABLE, heads, [])
        heads = [_html.head_of(column.name, column.type) for column in self.columns]
        try:
            batch = next(self.batches(_SHOWN_ROWS), None)
        except Error:
            return _html.table(self.name, count(self.rows, "row") + UNREADABLE, heads, [])
        rows = [] if batch is None else [row.values() for row in batch]
        return _html.table(self.name, _html.shown(len(rows), self.rows, "row"), heads, rows)

    def _facts(self) -> _qvejmap.TableFacts:
        return self._document._schema()[self._position]

    def _column_names(self) -> list[str]:
        return [name for name, _, _ in self._document._columns[self._position]]

    def _positions(self, columns: Iterable[str] | None) -> list[int]:
        names = self._column_names()
        if columns is None:
            return list(range(len(names)))
        at = {name: i for i, name in enumerate(names)}
        return [at[name] for name in _arguments.texts("columns", columns)]


class _Rows:
    """All rows of a table in memory, for those who read the Arrow PyCapsule interface."""

    def __init__(self, rows: _qvejmap.Rows) -> None:
        self._rows = rows

    def __arrow_c_schema__(self) -> object:
        return self._rows.schema()

    def __arrow_c_stream__(self, requested_schema: object = None) -> object:
        return self._rows.stream()


def _rows_of(tables: Sequence[Table]) -> list[_Rows]:
    """By one walk.  They are of one document."""
    if not tables:
        return []
    document = tables[0]._document
    rows = document._open().rows([table._position for table in tables])
    document._schema()  # that walk has found it; it warns of values that are missing
    return [_Rows(of) for of in rows]


def arrow_tables(tables: Sequence[Table]) -> list[pyarrow.Table]:
    reader = consumer("pyarrow").RecordBatchReader
    return [reader.from_stream(rows).read_all() for rows in _rows_of(tables)]


def polars_frames(tables: Sequence[Table]) -> list[polars.DataFrame]:
    frame = consumer("polars").DataFrame
    return [frame(rows) for rows in _rows_of(tables)]


def _batches(reader: _qvejmap.Batches, columns: list[Column]) -> Iterator[Batch]:
    while True:
        batch = reader.next()
        if batch is None:
            return
        yield Batch(batch, columns)


def consumer(name: str) -> Any:
    """A library that is needed now."""
    try:
        return importlib.import_module(name)
    except ImportError as error:
        raise ImportError(
            f"{name} is needed for this and could not be imported: pip install {name}", name=name
        ) from error
