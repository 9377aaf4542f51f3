"""Documents converted to files and databases."""

from __future__ import annotations

import os
from collections.abc import Iterable
from typing import Any, Literal, NamedTuple, Union

from . import _arguments, _qvejmap
from ._document import Document
from ._open import open
from ._source import Path, Source, file_name, sources_of
from ._words import in_own_words

Format = Literal["csv", "tsv", "ndjson", "parquet", "arrow", "sqlite", "xlsx", "postgres"]
_EXISTING = ("refuse", "replace", "append")


class Converted(NamedTuple):
    """What has been written."""

    tables: list[tuple[str, int]]  # names and numbers of rows, in the order of the document
    remarks: list[str]  # sentences on what differs from the document, such as names that had to change


def convert(
    source: Union[Source, Document],
    out: Path,
    *,
    format: Format | None = None,
    tables: Iterable[str] = (),
    paths: Iterable[str] = (),
    alldata: bool = False,
    force: bool = False,
    existing: Literal["refuse", "replace", "append"] = "refuse",
    null: str | None = None,
    packing: Literal["gzip", "zstd"] | None = None,
    dates: bool = True,
    database_schema: str = "",
    **options: Any,
) -> Converted:
    """Writes tables to files, or into one file or a database.  All is there at the end, or nothing.

    Args:
        source: as of `open`, or a document that is open.
        out: a directory, for a file of each table; NAME.db, NAME.xlsx, or a file of one table; an
            address such as postgresql://host/database.
        format: else it follows from `out`.
        tables: those with such names, "orders*".
        paths: those with such paths, "/root/**"; with `tables` both.
        alldata: ALLDATA besides.
        force: files that exist are replaced.
        existing: of SQLite and PostgreSQL: what becomes of tables that are there already.
        null: of CSV and TSV: what stands for no value.
        packing: compresses files of csv, tsv and ndjson.
        dates: columns whose texts all are dates or times have that type.
        database_schema: of PostgreSQL, made when missing.
        options: as of `open`.

    Raises:
        FileError: a file exists, or cannot be read or written.
        Error: there is no such table; the format cannot have what is in one.
        NotJson, LimitReached, MapError: as of `open`.

    Warns:
        ValuesWarning: values were rejected, or are in no cell.
    """
    tables, paths = _arguments.texts("tables", tables), _arguments.texts("paths", paths)
    for name, flag in (("alldata", alldata), ("force", force), ("dates", dates)):
        _arguments.flag(name, flag)
    for name, value in (("format", format), ("null", null), ("packing", packing)):
        if value is not None:
            _arguments.text(name, value)
    _arguments.text("database_schema", database_schema)
    _arguments.choice("existing", existing, *_EXISTING)
    if packing is not None:
        _arguments.choice("packing", packing, "gzip", "zstd")
    opened = source if isinstance(source, Document) else None
    if opened is not None and options:
        raise TypeError(f"the document is open: {', '.join(options)} came too late")
    sources = opened._sources if opened is not None else sources_of(source, options.get("map"), options.get("shape"))
    target = _qvejmap.Target(
        file_name("out", out),
        format,
        force,
        null,
        packing or "",
        _EXISTING.index(existing),
        database_schema,
        sources.words,
        sources.stream,
        sources.map,
        sources.shape,
    )
    target.check()
    # Names may come but once, as those of a generator do.
    named = [os.fsdecode(word) for word in sources.words] or source
    document = open(named, **options) if opened is None else opened
    written, remarks, findings = _qvejmap.convert(
        document._open(),
        target,
        [os.fsencode(name) for name in tables],
        [os.fsencode(path) for path in paths],
        alldata,
        dates,
    )
    document._warn(findings)
    if opened is None:
        document.close()
    return Converted(written, [in_own_words(remark) for remark in remarks])
