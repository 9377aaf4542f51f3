"""Opens documents."""

from __future__ import annotations

from collections.abc import Iterable, Mapping
from typing import Any, Literal

from . import _arguments, _files, _qvejmap
from ._document import Document
from ._source import (
    Path,
    Source,
    has_buffer,
    map_text,
    name_of,
    reader_of,
    shape_text,
    sources_of,
    words_of,
)

_MOST_THREADS = 1024


def open(
    source: Source,
    *,
    map: Path | Mapping[str, Any] | None = None,
    shape: Path | Iterable[str] | None = None,
    lines: Literal[True] | None = None,
    encoding: str = "auto",
    memory: int | None = None,
    threads: int | None = None,
    exact: bool = False,
    naming: Literal["map", "original"] = "map",
    carry: bool = False,
    depth: int = 1000,
    max_paths: int = 10_000_000,
) -> Document:
    """Reads a document, so that a mistake in its text is raised here.

    Args:
        source: a file, a folder or a pattern, or several of them; bytes, or any other buffer, which
            must not change while the document is open; or a file object, which is read in pieces.
            Compressed or not.  One file may have a scheme, "s3://bucket/x.json": it is read by
            fsspec, as a file object is.
        map: the tables and columns, as a file, a dict or a text of JSON; else the automatic ones.
        shape: "auto", a file of rules, or a list of rules.
        lines: one value a line; else it is found by the name and the text.
        encoding: of the text; else found by its first bytes.
        memory: bytes that the process may hold.
        threads: as many as there are cores, unless it is said.
        exact: numbers that a double does not keep are texts, as the document has them, in a map of
            the document's own.
        naming: "map" for names of letters, digits and "_", "original" for the document's own.
        carry: columns whose path is not below their table's have the value of the row's own
            ancestor, wherever it stands in it.
        depth: nesting limit; 0: none.
        max_paths: limit of distinct paths; 0: none.

    Raises:
        NotJson, LimitReached, MapError, FileError: see these.
        Error: a mistake in an argument's text, such as a rule or the name of an encoding.
    """
    _arguments.choice("naming", naming, "map", "original")
    if lines is not None and lines is not True:
        raise ValueError("lines: True or None")
    _arguments.text("encoding", encoding)
    memory = 0 if memory is None else _arguments.number("memory", memory, 1)
    threads = 0 if threads is None else _arguments.number("threads", threads, 1, _MOST_THREADS)
    depth = _arguments.number("depth", depth)
    max_paths = _arguments.number("max_paths", max_paths)
    for name, value in (("exact", exact), ("carry", carry)):
        _arguments.flag(name, value)
    if exact and (map is not None or naming == "original"):
        raise ValueError("exact: the map is made from the document, with names of letters, digits and _")
    source = _with_scheme(source)
    sources = sources_of(source, map, shape)
    buffer = read = None
    title = b"<memory>"
    if has_buffer(source):
        buffer = source
    elif not sources.words:
        read, title = reader_of(source), name_of(source)  # type: ignore[arg-type]
    rules, rules_name = shape_text(shape)
    map_bytes, map_name = (b"", b"") if map is None else map_text(map)
    return Document(
        _qvejmap.open(
            sources.words,
            buffer,
            read,
            name=title,
            encoding=encoding,
            lines=bool(lines),
            shape=rules,
            shape_name=rules_name,
            map=map_bytes,
            map_name=map_name,
            original_names=naming == "original",
            exact=exact,
            carry=carry,
            memory=memory,
            threads=threads,
            depth=depth,
            max_paths=max_paths,
        ),
        sources,
    )


def _with_scheme(source: Source) -> Source:
    """A file with a scheme as a file object; any other source as it is."""
    if _files.has_scheme(source):
        (file, *more), several = _files.files_of(words_of(source))  # type: ignore[arg-type]
        if not several and not more:
            return _files.Stream(file)
    elif not isinstance(source, (list, tuple)) or not any(map(_files.has_scheme, source)):
        return source
    raise ValueError("source: of files with a scheme one is opened; Plan.find reads several")
