"""A table of JSON documents as a data source of Spark."""

# Types are checked where pyspark is not installed.
# mypy: disable-error-code="import-untyped,import-not-found,misc,no-any-return,unused-ignore"
from __future__ import annotations

import inspect
import json
import os
from collections.abc import Iterable, Iterator, Mapping, Sequence
from concurrent.futures import ThreadPoolExecutor
from typing import Any, NamedTuple

import pyarrow
import pyarrow.compute
from pyspark.sql.datasource import DataSource, DataSourceReader, InputPartition
from pyspark.sql.pandas.types import from_arrow_type, to_arrow_schema
from pyspark.sql.types import StringType, StructField, StructType

from ._partial_scan import Part
from ._plan import ALLDATA, Plan, PlannedPart, named
from ._spark_options import absolute, mode, names, plan_options
from ._tables import Table

_ROWS = 65536  # of a batch
_PACKED_BYTES = 64 << 20  # of files in one partition
_OPENING_BYTES = 2 << 20


class Wish(NamedTuple):
    """What is read of a plan: columns of a table, and perhaps one that has the bad lines and files."""

    table: str
    columns: list[str]
    corrupt: str | None

    @classmethod
    def of(cls, plan: Plan, table: str | None, columns: Iterable[str] | None, corrupt: str | None) -> Wish:
        """Raises KeyError: there is no such table or column; ValueError: nothing was left out."""
        paths = {name: of.path for name, of in plan.open(plan.parts[0]).tables.items()}
        table = plan.table if table is None else table
        if table is None and len(paths) != 1:
            raise KeyError(f"table: one of {', '.join(paths)}")
        found = next(iter(paths)) if table is None else named(paths, table) or ALLDATA
        all_columns = [column.name for column in table_of(plan, plan.parts[0], found).columns]
        chosen = all_columns if columns is None else list(columns)
        if not chosen:
            raise ValueError("columns: one at least")
        for column in chosen:
            if column not in all_columns:
                raise KeyError(f"columns: no {column!r} in {found}")
        if corrupt is not None and not plan.skip_bad:
            raise ValueError("columnNameOfCorruptRecord: nothing is left out but with mode PERMISSIVE")
        if corrupt in all_columns:
            raise ValueError(f"columnNameOfCorruptRecord: {found} has a column {corrupt!r}")
        return cls(found, chosen, corrupt)

    def schema(self, plan: Plan) -> StructType:
        types = pyarrow.schema(table_of(plan, plan.parts[0], self.table))
        fields = [_field(types.field(name)) for name in self.columns]
        if self.corrupt is not None:
            for field in fields:
                field.nullable = True
            fields.append(StructField(self.corrupt, StringType()))
        return StructType(fields)


class JsonTables(DataSource):
    """A table of JSON documents; see `qvejmap.spark.register`."""

    def __init__(self, options: Mapping[str, str]) -> None:
        super().__init__(dict(options))
        self._plan: Plan | None = None

    @classmethod
    def name(cls) -> str:
        return "qvejmap"

    def schema(self) -> StructType:
        plan, wish = self._chosen()
        return wish.schema(plan)

    def reader(self, schema: StructType) -> DataSourceReader:
        return _TableReader(*self._chosen(), schema)

    def _chosen(self) -> tuple[Plan, Wish]:
        given = {name.lower(): value for name, value in self.options.items()}
        table = given.pop("table", None) if "plan" in given else given.get("table")
        columns = given.pop("columns", None)
        corrupt = given.pop("columnnameofcorruptrecord", None)
        if corrupt is not None and "plan" not in given and mode("mode", given.get("mode", "FAILFAST")) != "PERMISSIVE":
            raise ValueError("columnNameOfCorruptRecord: goes with mode PERMISSIVE")
        if self._plan is None:
            self._plan = _planned(given)
        return self._plan, Wish.of(self._plan, table, None if columns is None else names("columns", columns), corrupt)


def _planned(given: dict[str, str]) -> Plan:
    """The plan of a reader's options, whose names are in lower case."""
    given = dict(given)
    text, path, paths = (given.pop(name, None) for name in ("plan", "path", "paths"))
    if text is not None:
        given.update({name: of for name, of in (("path", path), ("paths", paths)) if of is not None})
        if given:
            raise ValueError(f"{next(iter(given))}: the plan has been made already")
        return Plan.from_json(text)
    if path is None and paths is None:
        raise ValueError("path: what is to be read")
    source: Any = path if paths is None else json.loads(paths)  # as Spark has them of load([...])
    with ThreadPoolExecutor(os.cpu_count()) as threads:
        return Plan.find(absolute(source), threads.map, **plan_options(given))


class _Piece(InputPartition):
    """Parts, one after the other, or what tells of the files that were left out."""

    def __init__(self, parts: Sequence[PlannedPart], bad_files: Sequence[str] = ()) -> None:
        super().__init__(None)
        self.parts = parts
        self.bad_files = bad_files


class _TableReader(DataSourceReader):
    def __init__(self, plan: Plan, wish: Wish, schema: StructType) -> None:
        self._plan = plan
        self._wish = wish
        self._schema = schema

    def __getstate__(self) -> dict[str, Any]:
        return {**self.__dict__, "_plan": self._plan.without_parts()}

    def partitions(self) -> Sequence[InputPartition]:
        pieces = _packed(self._plan.parts)
        told = self._wish.corrupt is not None and self._plan.bad_files
        return pieces + [_Piece((), self._plan.bad_files)] if told else pieces

    def read(self, partition: InputPartition) -> Iterator[pyarrow.RecordBatch]:
        assert isinstance(partition, _Piece)
        schema = _arrow_schema(self._schema)
        for part in partition.parts:
            yield from self._rows(schema, part)
        yield from self._corrupt(schema, partition.bad_files)

    def _rows(self, schema: pyarrow.Schema, part: PlannedPart) -> Iterator[pyarrow.RecordBatch]:
        table = table_of(self._plan, part, self._wish.table)
        wanted = [name for name in self._wish.columns if name in schema.names]
        for batch in table.batches(_ROWS, wanted or self._wish.columns[:1]):
            rows = pyarrow.record_batch(batch)
            yield _batch(schema, rows.num_rows, {name: rows.column(name) for name in wanted})
        if self._wish.corrupt is not None:
            yield from self._corrupt(schema, self._plan.bad_lines(part))

    def _corrupt(self, schema: pyarrow.Schema, messages: Iterable[str]) -> Iterator[pyarrow.RecordBatch]:
        """Rows that have nothing but a message."""
        told = list(messages)
        if told and self._wish.corrupt is not None:
            yield _batch(schema, len(told), {self._wish.corrupt: pyarrow.array(told)})


def _packed(parts: Sequence[PlannedPart]) -> list[_Piece]:
    """As Spark packs small files, which are said to be larger by what it takes to open one."""
    packed: list[list[PlannedPart]] = []
    room = 0
    for part in parts:
        size = _bytes_of(part) + _OPENING_BYTES
        if not packed or size > room:
            packed.append([])
            room = _PACKED_BYTES
        packed[-1].append(part)
        room -= size
    return [_Piece(of) for of in packed]


def _bytes_of(planned: PlannedPart) -> int:
    part, state = planned.part, planned.state
    if part != Part.whole(part.file):
        return _PACKED_BYTES  # it was cut to be apart
    return state[0] if state is not None else 0


def table_of(plan: Plan, part: PlannedPart, name: str) -> Table:
    """Of a part."""
    document = plan.open(part)
    return document[name] if name in document else document.alldata


def _arrow_schema(schema: StructType) -> pyarrow.Schema:
    """As Spark wants it of batches; instants are in UTC, which Spark 4.1 and later ask for."""
    later = "timezone" in inspect.signature(to_arrow_schema).parameters
    return to_arrow_schema(schema, timezone="UTC") if later else to_arrow_schema(schema)


def _batch(schema: pyarrow.Schema, rows: int, columns: dict[str, pyarrow.Array]) -> pyarrow.RecordBatch:
    """A schema may be the user's: what has no column is null."""
    arrays = [_cast(columns[field.name], field) if field.name in columns else pyarrow.nulls(rows, field.type)
              for field in schema]
    return pyarrow.RecordBatch.from_arrays(arrays, schema=schema)


def _field(field: pyarrow.Field) -> StructField:
    metadata = {key.decode(): value.decode() for key, value in (field.metadata or {}).items()}
    type = pyarrow.string() if _too_fine(field.type) else field.type
    return StructField(field.name, from_arrow_type(type, prefer_timestamp_ntz=True), field.nullable, metadata)


def _too_fine(type: pyarrow.DataType) -> bool:
    return pyarrow.types.is_timestamp(type) and type.unit == "ns"


def _cast(column: pyarrow.Array, field: pyarrow.Field) -> pyarrow.Array:
    """Exact; times with more digits than Spark has are texts."""
    if _too_fine(column.type):
        column = pyarrow.compute.strftime(column, "%Y-%m-%dT%H:%M:%S" + ("Z" if column.type.tz else ""))
    try:
        return column.cast(field.type)
    except pyarrow.ArrowException as error:
        raise ValueError(f"{field.name}: not all values are {field.type}: {error}") from None
