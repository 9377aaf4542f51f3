"""A document that has been read, and its tables."""

from __future__ import annotations

import html
import importlib
import io
import json
from collections.abc import Iterable, Iterator, Mapping
from types import TracebackType
from typing import TYPE_CHECKING, Any, Literal, NamedTuple

from . import _qvejmap
from ._source import Path, Source, map_text, name_of, reader_of, shape_text, words_of
from ._values import converter

if TYPE_CHECKING:
    import duckdb
    import pandas  # type: ignore[import-untyped,unused-ignore]
    import polars
    import pyarrow  # type: ignore[import-untyped,unused-ignore]

_ROWS = 65536  # of a batch
_SHOWN_ROWS = 10


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
        return f"<qvejmap.Batch: {self.rows:,} rows, {len(self._columns)} columns>"

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
        if rows < 1:
            raise ValueError("rows: at least 1")
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
        return self._document._open().arrow_schema(self._position, self._positions(None))

    def __arrow_c_stream__(self, requested_schema: object = None) -> object:
        return self._document._open().arrow_stream(self._position, self._positions(None), _ROWS)

    def to_arrow(self) -> pyarrow.Table:
        """All rows as a pyarrow.Table, with keys and paths as metadata."""
        return _consumer("pyarrow").RecordBatchReader.from_stream(self).read_all()

    def to_polars(self) -> polars.DataFrame:
        """All rows as a polars.DataFrame."""
        frame: polars.DataFrame = _consumer("polars").DataFrame(self)
        return frame

    def to_pandas(self) -> pandas.DataFrame:
        """All rows as a pandas.DataFrame, by pyarrow, with columns of Arrow's types."""
        pandas = _consumer("pandas")
        return self.to_arrow().to_pandas(types_mapper=pandas.ArrowDtype)

    def to_duckdb(self, connection: duckdb.DuckDBPyConnection | None = None) -> Any:
        """All rows as a relation of DuckDB, which may be read more than once; by pyarrow."""
        duckdb = _consumer("duckdb")
        return (duckdb if connection is None else connection).from_arrow(self.to_arrow())

    def __repr__(self) -> str:
        if self._document._closed:
            return f"<qvejmap.Table {self.name!r}: closed>"
        return f"<qvejmap.Table {self.name!r}: {self.rows:,} rows, {len(self.columns)} columns>"

    def _repr_html_(self) -> str:
        columns = self.columns
        head = "".join(
            f"<th>{html.escape(c.name)}<br><small>{html.escape(c.type)}</small></th>" for c in columns
        )
        shown = next(self.batches(_SHOWN_ROWS), ())
        body = "".join(
            "<tr>" + "".join(f"<td>{_cell_html(value)}</td>" for value in row.values()) + "</tr>"
            for row in shown
        )
        caption = f"{html.escape(self.name)}: {self.rows:,} rows"
        return (
            f"<table><caption>{caption}</caption><thead><tr>{head}</tr></thead>"
            f"<tbody>{body}</tbody></table>"
        )

    def _facts(self) -> _qvejmap.TableFacts:
        return self._document._schema()[self._position]

    def _column_names(self) -> list[str]:
        return [name for name, _, _ in self._document._columns[self._position]]

    def _positions(self, columns: Iterable[str] | None) -> list[int]:
        names = self._column_names()
        if columns is None:
            return list(range(len(names)))
        if isinstance(columns, str):
            raise TypeError("columns: a list of names, not one name")
        at = {name: i for i, name in enumerate(names)}
        return [at[name] for name in columns]


class _Tables(Mapping[str, Table]):
    """Tables by name, in the order of the document."""

    def __init__(self, tables: dict[str, Table]) -> None:
        self._tables = tables

    def __getitem__(self, name: str) -> Table:
        return self._tables[name]

    def __iter__(self) -> Iterator[str]:
        return iter(self._tables)

    def __len__(self) -> int:
        return len(self._tables)

    def __repr__(self) -> str:
        return "{" + ", ".join(f"{name!r}: {table!r}" for name, table in self.items()) + "}"


class Document:
    """A document that has been read.  `qvejmap.open` makes it.

    It may be used on any thread; walks of one document take turns.  Batches and streams that were
    taken from it may outlive it.
    """

    def __init__(self, document: _qvejmap.Document) -> None:
        self._opened: _qvejmap.Document | None = document
        self._facts: list[_qvejmap.TableFacts] | None = None
        tables = document.tables()
        self._names = [name for name, _, _ in tables]
        self._columns = [columns for _, _, columns in tables]
        self.name = document.name
        self.tables: Mapping[str, Table] = _Tables(
            {name: Table(self, i, name, path) for i, (name, path, _) in enumerate(tables)}
        )

    def __getitem__(self, name: str) -> Table:
        return self.tables[name]

    @property
    def map(self) -> dict[str, Any]:
        """The automatic map, which `open(..., map=...)` takes when it has been changed."""
        found: dict[str, Any] = json.loads(self._open().map_text())
        return found

    def save_map(self, path: Path) -> None:
        """Writes the automatic map to a file."""
        text = self._open().map_text()
        with io.open(path, "w", encoding="utf-8") as file:
            file.write(text)

    def close(self) -> None:
        """Gives back what the document holds; batches and streams that were taken stay."""
        self._opened = None

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
        lines = [f"<qvejmap.Document {self.name!r}: {len(self.tables)} tables>"]
        lines += [f"  {name}: {table.rows:,} rows" for name, table in self.tables.items()]
        return "\n".join(lines)

    def _repr_html_(self) -> str:
        rows = "".join(
            f"<tr><td>{html.escape(name)}</td><td>{table.rows:,}</td>"
            f"<td>{html.escape(', '.join(table._column_names()))}</td></tr>"
            for name, table in self.tables.items()
        )
        return (
            f"<table><caption>{html.escape(self.name)}</caption>"
            "<thead><tr><th>table</th><th>rows</th><th>columns</th></tr></thead>"
            f"<tbody>{rows}</tbody></table>"
        )

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
        return self._facts


def open(
    source: Source,
    *,
    map: Path | Mapping[str, Any] | None = None,
    shape: Path | Iterable[str] | None = None,
    lines: Literal[True] | None = None,
    encoding: str = "auto",
    memory: int | None = None,
    threads: int | None = None,
    naming: Literal["map", "original"] = "map",
    depth: int = 1000,
    max_paths: int = 10_000_000,
) -> Document:
    """Reads a document, so that a mistake in its text is raised here.

    Args:
        source: a file, a folder or a pattern, or several of them; bytes, or any other buffer, which
            must not change while the document is open; or a file object, which is read in pieces.
            Compressed or not.
        map: the tables and columns, as a file or a dict; else the automatic ones.
        shape: "auto", a file of rules, or a list of rules.
        lines: one value a line; else it is found by the name and the text.
        encoding: of the text; else found by its first bytes.
        memory: bytes that the process may hold.
        threads: as many as there are cores, unless it is said.
        naming: "map" for names of letters, digits and "_", "original" for the document's own.
        depth: nesting limit.
        max_paths: limit of distinct paths.

    Raises:
        NotJson, LimitReached, MapError, FileError: see these.
        Error: a mistake in an argument's text, such as a rule or the name of an encoding.
    """
    if naming not in ("map", "original"):
        raise ValueError("naming: 'map' or 'original'")
    if lines not in (None, True):
        raise ValueError("lines: True or None")
    for name, number in (("memory", memory), ("threads", threads)):
        if number is not None and number < 1:
            raise ValueError(f"{name}: at least 1")
    words: list[bytes] = []
    buffer = read = None
    title = b"<memory>"
    if isinstance(source, (bytes, bytearray, memoryview)):
        buffer = source
    elif callable(getattr(source, "read", None)):
        read, title = reader_of(source), name_of(source)  # type: ignore[arg-type]
    else:
        words = words_of(source)  # type: ignore[arg-type]
    map_bytes, map_name = map_text(map)
    return Document(
        _qvejmap.open(
            words,
            buffer,
            read,
            name=title,
            encoding=encoding,
            lines=bool(lines),
            shape=shape_text(shape),
            map=map_bytes,
            map_name=map_name,
            original_names=naming == "original",
            memory=memory or 0,
            threads=threads or 0,
            depth=depth,
            max_paths=max_paths,
        )
    )


def _batches(reader: _qvejmap.Batches, columns: list[Column]) -> Iterator[Batch]:
    while True:
        batch = reader.next()
        if batch is None:
            return
        yield Batch(batch, columns)


def _consumer(name: str) -> Any:
    """A library that is needed now."""
    try:
        return importlib.import_module(name)
    except ImportError as error:
        raise ImportError(
            f"{name} is needed for this and could not be imported: pip install {name}", name=name
        ) from error


def _cell_html(value: Any) -> str:
    return "" if value is None else html.escape(str(value))
