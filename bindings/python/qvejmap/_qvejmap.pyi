"""What the package stands on: positions of tables and columns go in and out."""

from collections.abc import Callable, Sequence
from typing import Any, TypeAlias

from typing_extensions import Buffer

# Its number of rows, the types of the columns, the position of the key, and of the parent its
# position, that of the column here, and whether it is a foreign key.
TableFacts: TypeAlias = tuple[int, list[str], int | None, tuple[int, int, bool] | None]

class Batch:
    @property
    def rows(self) -> int: ...
    def schema(self) -> object: ...
    def array(self) -> object: ...
    def values(self, column: int) -> list[Any]: ...

class Batches:
    def next(self) -> Batch | None: ...

class Rows:
    def schema(self) -> object: ...
    def stream(self) -> object: ...

class Rejects:
    # Table and column by position, row, text, reason; none after the last.
    def next(self) -> list[tuple[int, int, int, str, str]]: ...

class Document:
    @property
    def name(self) -> str: ...
    def map_text(self) -> str: ...
    def tables(self) -> list[tuple[str, str, list[tuple[str, str, str]]]]: ...
    # Positions of columns, and paths of containers.
    def ordinals(self, table: int) -> list[tuple[int, bytes]]: ...
    # Positions of tables.
    def with_tables_above(self, table: int) -> list[int]: ...
    def shape(self) -> list[str]: ...
    def schema(self) -> list[TableFacts]: ...
    # Values that are rejected, in no cell, overwritten, strayed.
    def findings(self) -> tuple[int, int, int, int]: ...
    def alldata(self) -> Document: ...
    # Path, values, cells; of each way in which values are lost their number and the first.
    def account(self) -> list[tuple[str, int, int, list[tuple[int, int]]]]: ...
    # File, line, column, path and text.
    def find(
        self, paths: list[str], value: str | None, regex: str | None, ignore_case: bool, limit: int
    ) -> list[tuple[str, int, int, str, str]]: ...
    def explanation(self, column: str, map_name: str) -> str: ...
    def rows(self, tables: list[int]) -> list[Rows]: ...
    def rejects(self) -> Rejects: ...
    def arrow_schema(self, table: int, columns: list[int]) -> object: ...
    def arrow_stream(self, table: int, columns: list[int], rows: int) -> object: ...
    def batches(self, table: int, columns: list[int], rows: int) -> Batches: ...

# The files that words name, and whether they are several texts.
def input_files(words: list[bytes]) -> tuple[list[bytes], bool]: ...
def open(
    words: list[bytes],
    buffer: Buffer | None,
    read: Callable[[int], bytes] | None,
    *,
    name: bytes,
    encoding: str,
    lines: bool,
    shape: str,
    shape_name: bytes,
    map: bytes,
    map_name: bytes,
    original_names: bool,
    exact: bool,
    carry: bool,
    memory: int,
    threads: int,
    depth: int,
    max_paths: int,
) -> Document: ...

# Begin and end in the file, kind, the name of the member, line and column.
Piece: TypeAlias = tuple[int, int, int, bytes, int, int]

# Bytes of a file at a place, so many at most; None where one is asked for: it is a file of this machine.
ReadAt: TypeAlias = Callable[[int, int], bytes]

# Of each range its form, its pieces, and the head.
def ranges(
    file: bytes, bytes: int, encoding: str, lines: bool, read_at: ReadAt | None, size: int | None
) -> list[tuple[int, tuple[Piece, ...], Piece | None]]: ...

# Scans are bytes.  Line feeds of lines, and how many lines were left out, come with that of a range.
def scan_range(
    file: bytes, form: int, pieces: tuple[Piece, ...], encoding: str, lines: bool, depth: int, max_paths: int,
    shape: list[str], skip_bad: bool, read_at: ReadAt | None,
) -> tuple[bytes, int, int]: ...
def scan_text(
    buffer: Buffer, lines: bool, encoding: str, depth: int, max_paths: int, shape: list[str]
) -> bytes: ...

# Line, column and reason.
def bad_lines(
    file: bytes, form: int, pieces: tuple[Piece, ...], encoding: str, lines: bool, depth: int, read_at: ReadAt | None
) -> list[tuple[int, int, str]]: ...

# The rules of a text, and those that are found in files.
def shape_rules(text: str, name: bytes) -> list[str]: ...
def found_rules(
    files: list[bytes], read_ats: Sequence[ReadAt | None], encoding: str, lines: bool, depth: int
) -> list[str]: ...
def merge_scans(scans: list[bytes], max_paths: int = 0) -> bytes: ...
def map_of_scan(scan: bytes) -> str: ...
def counts_of_scan(scan: bytes) -> list[tuple[str, int]]: ...

# The same by the bytes of paths, as `open_part` takes them; None: they do not tell ordinals.
def containers_of_scan(scan: bytes) -> list[tuple[bytes, int]] | None: ...
def open_part(
    file: bytes,
    form: int,
    pieces: tuple[Piece, ...],
    head: Piece | None,
    scan: bytes,
    before: list[tuple[bytes, int]],
    last: bool,
    *,
    encoding: str,
    lines: bool,
    depth: int,
    map: bytes,
    map_name: bytes,
    original_names: bool,
    exact: bool,
    carry: bool,
    source_column: str,
    shape: list[str],
    skip_bad: bool,
    read_at: ReadAt | None,
    together: list[tuple[bytes, bytes, ReadAt | None]],
    tables: list[int] | None,
) -> Document: ...

# What rows show of types and keys is bytes.
def facts_of(document: Document) -> bytes: ...
def sum_of_facts(document: Document, facts: list[bytes]) -> bytes: ...
def learn(document: Document, facts: bytes) -> None: ...

class Target:
    def __init__(
        self,
        out: bytes,
        format: str | None,
        force: bool,
        null: str | None,
        packing: str,
        existing: int,
        database_schema: str,
        documents: list[bytes],
        stream: bytes,
        map: bytes,
        shape: bytes,
    ) -> None: ...
    def check(self) -> None: ...

# Names and rows of the tables, remarks, and what `findings` has.
def convert(
    document: Document,
    target: Target,
    names: list[bytes],
    paths: list[bytes],
    alldata: bool,
    dates: bool,
) -> tuple[list[tuple[str, int]], list[str], tuple[int, int, int, int]]: ...
def map_differences(a: bytes, b: bytes) -> list[str]: ...

# The text of the merged map, and what is not as the maps have it.
def merge_maps(maps: list[bytes]) -> tuple[str, list[str]]: ...
