"""What the package stands on: positions of tables and columns go in and out."""

from collections.abc import Callable
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

class Document:
    @property
    def name(self) -> str: ...
    def map_text(self) -> str: ...
    def tables(self) -> list[tuple[str, str, list[tuple[str, str, str]]]]: ...
    def schema(self) -> list[TableFacts]: ...
    def arrow_schema(self, table: int, columns: list[int]) -> object: ...
    def arrow_stream(self, table: int, columns: list[int], rows: int) -> object: ...
    def batches(self, table: int, columns: list[int], rows: int) -> Batches: ...

def open(
    words: list[bytes],
    buffer: Buffer | None,
    read: Callable[[int], bytes] | None,
    *,
    name: bytes,
    encoding: str,
    lines: bool,
    shape: str,
    map: bytes,
    map_name: bytes,
    original_names: bool,
    memory: int,
    threads: int,
    depth: int,
    max_paths: int,
) -> Document: ...
