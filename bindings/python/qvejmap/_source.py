"""What a person gives, as the module takes it."""

from __future__ import annotations

import json
import os
from collections.abc import Callable, Iterable, Mapping
from typing import Any, NamedTuple, Protocol, TypeGuard, Union

from . import _arguments
from ._errors import Error, FileError

Path = Union[str, "os.PathLike[str]"]
_NOT_OPENED = 0x80BFC803 - 2**32  # QV_IO_OPEN
_NOT_UTF8 = 0x85FFC90D - 2**32  # QV_JSON_UTF8
_MARK = b"\xef\xbb\xbf"  # some editors put it before a text


class Readable(Protocol):
    """A file object: bytes or texts, in pieces, from a file, a pipe or anything else."""

    def read(self, size: int, /) -> Union[bytes, str]: ...


Source = Union[Path, Iterable[Path], bytes, bytearray, memoryview, Readable]


def file_name(argument: str, path: Path) -> bytes:
    """As the system has it, which would end it at a NUL."""
    if not isinstance(path, (str, os.PathLike)):
        raise TypeError(f"{argument}: a path, not {type(path).__name__}")
    try:
        name = os.fsencode(path)
    except UnicodeEncodeError:
        raise ValueError(f"{argument}: no name of a file") from None
    if b"\0" in name:
        raise ValueError(f"{argument}: the name of a file has no NUL")
    return name


def words_of(source: Path | Iterable[Path]) -> list[bytes]:
    if isinstance(source, (str, os.PathLike)):
        return [file_name("source", source)]
    if not isinstance(source, Iterable) or isinstance(source, Mapping):
        raise TypeError(f"source: a path, several, bytes or a file object, not {type(source).__name__}")
    words = [file_name("source", path) for path in source]
    if not words:
        raise ValueError("source: no files")
    return words


def words_of_source(source: Any) -> list[bytes]:
    """The files, folders and patterns of a source; none when it is no name of a file."""
    if has_buffer(source) or callable(getattr(source, "read", None)):
        return []
    return words_of(source)


def has_buffer(source: Any) -> TypeGuard[Union[bytes, bytearray, memoryview]]:
    """Is it a text in memory: bytes, an array, a file that is mapped?"""
    try:
        memoryview(source).release()
    except TypeError:
        return False
    return True


def reader_of(source: Readable) -> Callable[[int], bytes]:
    """Its `read`, with texts as UTF-8."""

    def read(size: int) -> bytes:
        piece = source.read(size)
        if piece is None:
            raise BlockingIOError("the file object has nothing to read yet")
        return piece.encode() if isinstance(piece, str) else bytes(memoryview(piece))

    return read


def name_of(source: Any) -> bytes:
    """What messages call a file object."""
    name = getattr(source, "name", None)
    return os.fsencode(name) if isinstance(name, (str, bytes)) and name else b"<stream>"


def _read(path: Path) -> bytes:
    try:
        with open(path, "rb") as file:
            return file.read()
    except OSError as error:
        what = error.strerror or str(error)
        raise FileError(what, os.fspath(path), 0, 0, -1, _NOT_OPENED, "") from error


def shape_text(shape: Path | Iterable[str] | None) -> tuple[str, bytes]:
    """The rules of a shape, or "auto", and what messages call them."""
    if shape is None:
        return "", b""
    if isinstance(shape, str) and shape == "auto":
        return "auto", b""
    if isinstance(shape, (str, os.PathLike)):
        return _decoded(_read(shape), os.fspath(shape)) + "\n", file_name("shape", shape)
    return "\n".join(_arguments.texts("shape", shape)) + "\n", b"shape"


def _decoded(text: bytes, file: str) -> str:
    try:
        return text.decode()
    except UnicodeDecodeError as error:
        line = text.count(b"\n", 0, error.start) + 1
        column = error.start - text.rfind(b"\n", 0, error.start)
        raise Error("invalid UTF-8", file, line, column, error.start, _NOT_UTF8, "") from None


class Sources(NamedTuple):
    """The files that a document is read from; those that it has not are empty."""

    words: list[bytes] = []  # files, folders and patterns
    stream: bytes = b""  # what a file object reads
    map: bytes = b""
    shape: bytes = b""


def sources_of(source: Any, map: Path | Mapping[str, Any] | None, shape: Path | Iterable[str] | None) -> Sources:
    words = words_of_source(source)
    return Sources(
        words,
        b"" if words or has_buffer(source) else _file_of(source),
        b"" if map is None or isinstance(map, Mapping) or _is_text(map) else file_name("map", map),
        file_name("shape", shape) if isinstance(shape, (str, os.PathLike)) and shape != "auto" else b"",
    )


def _file_of(source: Any) -> bytes:
    """The file that a file object reads, as far as it tells; empty: none."""
    try:
        return os.fsencode(os.path.realpath(f"/dev/fd/{source.fileno()}"))
    except (AttributeError, OSError, ValueError):  # it has none, or one that is closed
        name = getattr(source, "name", None)
        return os.fsencode(name) if isinstance(name, (str, bytes)) else b""


def _is_text(map: Path) -> bool:
    """Is it the text of a map, and no file?"""
    return isinstance(map, str) and map.lstrip().startswith("{")


def map_text(map: Path | Mapping[str, Any]) -> tuple[bytes, bytes]:
    """The text of a map, and what messages call it."""
    if not isinstance(map, Mapping) and _is_text(map):
        return _arguments.text("map", map).encode(), b"<map>"
    if isinstance(map, Mapping):
        try:
            return json.dumps(dict(map)).encode(), b"<map>"
        except (TypeError, ValueError) as error:
            raise type(error)(f"map: {error}") from None
    name = file_name("map", map)
    # An empty file is a map that ends too soon.
    return _read(map).removeprefix(_MARK) or b" ", name
