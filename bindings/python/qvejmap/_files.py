"""Files by a scheme, "s3://bucket/x.json", which fsspec reads; credentials are its own affair."""

from __future__ import annotations

import os
import re
import threading
from collections.abc import Callable, Sequence
from typing import Any, Union

from . import _qvejmap
from ._errors import Error, FileError
from ._tables import consumer

State = tuple[int, Union[int, str]]  # size, and what changes with the content

_SCHEME = re.compile("[a-z][a-z0-9+.-]+://")
_NOT_FOUND = 0x80BFC801 - 2**32  # QV_IO_NOTFOUND
_NOT_READ = 0x80BFC806 - 2**32  # QV_IO_READ
_NO_RANGES = "cannot be read from the middle: what has it gives it from the beginning only"
_TOO_SHORT = "ended after {} of {} bytes"

# Folders have what client/input/input_list.cpp finds in them.
_JSON = re.compile(r"\.(json|jsonl|ndjson)(\.gz|\.zst)*$")
_OURS = b'{"qvejmap":{"version":'
_PACKAGE = "datapackage.json"

# What stores tell of a content, in order of trust; the names are theirs.
_TAGS = ("etag", "md5hash", "content-md5", "digest", "mtime", "lastmodified", "last_modified", "last-modified",
         "updated", "modified", "created")


def has_scheme(path: Any) -> bool:
    return isinstance(path, str) and _SCHEME.match(path) is not None


def files_of(words: Sequence[bytes]) -> tuple[list[str], bool]:
    """The files that words name, and whether they are several texts."""
    files: list[str] = []
    several = len(words) > 1
    for word in map(os.fsdecode, words):
        if has_scheme(word):
            found, many = _listed(word)
        else:
            local, many = _qvejmap.input_files([os.fsencode(word)])
            found = [os.fsdecode(file) for file in local]
        files += found
        several = several or many
    return files, several


def state_of(file: str) -> State | None:
    """What tells that a file has changed; None: there is no such file.

    Of one file: what stores tell of it in a list is not quite the same.
    """
    if not has_scheme(file):
        try:
            found = os.stat(file)
        except OSError:
            return None
        return found.st_size, found.st_mtime_ns
    try:
        system, path = _system(file)
        info = _tried(file, lambda: system.info(path))
    except FileError as error:
        if error.status == _NOT_FOUND:
            return None
        raise
    tags = {str(name).lower(): of for name, of in info.items()}
    tag = next((str(tags[name]) for name in _TAGS if tags.get(name)), "")
    return int(info.get("size") or 0), tag


def read_at_of(file: str) -> PlacedFile | None:
    """How the engine reads a file; None: it is one of this machine."""
    return PlacedFile(file) if has_scheme(file) else None


class PlacedFile:
    """Reads a file at any place, one request each time; it is opened when it is read."""

    def __init__(self, file: str) -> None:
        self._name = file
        self._system: Any = None
        self._file: Any = None
        self._size: int | None = None  # None: not known
        self._at = 0  # of what comes in order only
        self._in_order = False
        self._turn = threading.Lock()

    def __call__(self, at: int, size: int) -> bytes:
        """As many bytes as there are.

        Raises:
            FileError: it cannot be read.
        """
        with self._turn:
            data: bytes = _tried(self._name, lambda: self._read(at, size))
            return data

    def has_ranges(self) -> bool:
        """Can it be read from the middle?"""
        if not self._name.startswith("http"):
            return not self._in_order
        try:
            self(1, 1)
        except FileError as error:
            if error.what == _NO_RANGES:
                return False
            raise
        return not self._in_order

    def _read(self, at: int, size: int) -> bytes:
        if self._file is None:
            self._open()
        if self._in_order:
            return self._read_on(at, size)
        assert self._size is not None
        wanted = min(size, self._size - at)
        if wanted <= 0:
            return b""
        try:
            self._file.seek(at)
            data = bytes(self._file.read(wanted))
        except ValueError as error:  # of fsspec, when a server gives all of a file instead
            if not self._name.startswith("http"):
                raise
            if at != 0:
                raise FileError(_NO_RANGES, self._name, 0, 0, -1, _NOT_READ, "") from error
            self._open(in_order=True)
            return self._read_on(at, size)
        if len(data) < wanted:
            raise self._too_short(at + len(data))
        return data

    def _read_on(self, at: int, size: int) -> bytes:
        if at < self._at:
            self._open(in_order=True)
        if at != self._at:
            raise FileError(_NO_RANGES, self._name, 0, 0, -1, _NOT_READ, "")
        pieces: list[bytes] = []
        while size > 0 and (piece := bytes(self._file.read(size))):
            pieces.append(piece)
            size -= len(piece)
        data = b"".join(pieces)
        self._at += len(data)
        if size > 0 and self._size is not None and self._at < self._size:
            raise self._too_short(self._at)
        return data

    def _open(self, in_order: bool = False) -> None:
        # It is kept: one that is given up may close its files.
        self._system, path = _system(self._name)
        system = self._system
        if in_order:
            self._file = system.open(path, "rb", block_size=0)
        else:
            self._file = system.open(path, "rb", cache_type="none")
            self._size = getattr(self._file, "size", None)
            in_order = self._size is None or not self._file.seekable()
        self._in_order = in_order
        self._at = 0

    def _too_short(self, at: int) -> FileError:
        return FileError(_TOO_SHORT.format(at, self._size), self._name, 0, 0, -1, _NOT_READ, "")


class Stream:
    """A file object that reads a file in order."""

    _PIECE = 4 << 20  # of a request: see client/ranges/text_range.cpp

    def __init__(self, file: str) -> None:
        self.name = file
        self._read_at = PlacedFile(file)
        self._at = 0

    def read(self, size: int, /) -> bytes:
        """The next bytes, perhaps more than `size`."""
        piece = self._read_at(self._at, self._PIECE)
        self._at += len(piece)
        return piece


def _listed(word: str) -> tuple[list[str], bool]:
    """The files of a word, and whether it may stand for several."""
    system, path = _system(word)
    web = word.startswith("http")  # "?" has another meaning there, and folders look as files do
    if re.search(r"[*\[]" if web else r"[*?\[]", word) and not system.exists(path):
        found = _tried(word, lambda: system.glob(path, detail=True))
        names = [name for name in found if _is_shown(name, path)]
        if not names:
            raise FileError("no file has a name like this", word, 0, 0, -1, _NOT_FOUND, "")
        files: list[str] = []
        for name in sorted(names):
            if _is_folder(found[name]):
                files += _folder(word, system, name)
            else:
                files += _named(word, system, [name])
        return files, True
    info = {"type": "directory"} if web and word.endswith("/") else _tried(word, lambda: system.info(path))
    if _is_folder(info):
        return _folder(word, system, path), True
    return [word], False


def _is_folder(info: dict[str, Any]) -> bool:
    return bool(info.get("type") == "directory")


def _is_shown(name: str, pattern: str) -> bool:
    """Names that begin with a dot are found by patterns that have one."""
    return "/." in pattern or "/." not in f"/{name}"


def _folder(word: str, system: Any, path: str) -> list[str]:
    """What is in a folder and below it, without what an earlier run wrote there."""
    found: list[str] = _tried(word, lambda: system.find(path))
    packages = {}
    for name in found:
        folder, _, last = name.rpartition("/")
        if last == _PACKAGE:
            text = _tried(word, lambda: bytes(system.cat_file(name)))
            packages[folder] = text if text.startswith(_OURS) else b""
    chosen = []
    for name in found:
        folder, _, last = name.rpartition("/")
        package = packages.get(folder, b"")
        written = package and (last == _PACKAGE or b'"path":"%s","format":' % last.encode() in package)
        if _JSON.search(last) and not written:
            chosen.append(name)
    if not chosen:
        raise FileError("no file in this folder ends in .json, .jsonl or .ndjson", word, 0, 0, -1, _NOT_FOUND, "")
    return _named(word, system, sorted(chosen))


def _named(word: str, system: Any, names: list[str]) -> list[str]:
    """With the scheme."""
    _, chained, outer = word.partition("::")
    return [str(system.unstrip_protocol(name)) + chained + outer for name in names]


def _system(file: str) -> tuple[Any, str]:
    """A file system of fsspec, which knows no listings of an earlier time, and the path in it."""
    fsspec = consumer("fsspec")
    found: tuple[Any, str] = _tried(file, lambda: fsspec.core.url_to_fs(file, use_listings_cache=False))
    return found


def _tried(file: str, work: Callable[[], Any]) -> Any:
    """What `work` makes; what goes wrong in it is of the file."""
    try:
        return work()
    except (Error, ImportError):
        raise
    except FileNotFoundError as error:
        raise FileError("No such file or directory", file, 0, 0, -1, _NOT_FOUND, "") from error
    except Exception as error:
        what = f"{type(error).__name__}: {error}" if str(error) else type(error).__name__
        raise FileError(what, file, 0, 0, -1, _NOT_READ, "") from error
