"""Tables of JSON documents on a cluster of Spark.

    import qvejmap.spark

    plan = qvejmap.spark.prepare(spark, "big/*.json.gz")           # two jobs
    items = qvejmap.spark.read(spark, plan, "orders_items")        # a DataFrame
    qvejmap.spark.write_tables(spark, plan, "out")                 # all tables, one job

    qvejmap.spark.register(spark)                                  # or without a plan:
    spark.read.format("qvejmap").option("table", "orders_items").load("big/*.json.gz")

All machines have the files by the same names, and this package.
"""

# Types are checked where pyspark is not installed.
# mypy: disable-error-code="import-untyped,import-not-found,misc,no-any-return"
from __future__ import annotations

import json
import os
import re
import shutil
import uuid
from collections.abc import Iterable, Iterator, Mapping, Sequence
from concurrent.futures import ThreadPoolExecutor
from functools import partial
from typing import Any, NamedTuple
from urllib.parse import quote

import pyarrow
import pyarrow.compute
import pyarrow.parquet
from pyspark.sql import DataFrame, SparkSession
from pyspark.sql.datasource import DataSource, DataSourceReader, InputPartition
from pyspark.sql.pandas.types import from_arrow_type, to_arrow_schema
from pyspark.sql.types import StructField, StructType

from . import _arguments
from ._plan import Plan, PlannedPart
from ._source import Path
from ._tables import Table

__all__ = ["JsonTables", "prepare", "read", "register", "write_tables"]

_PACKAGE_TYPES = {
    "TEXT": "string", "BOOLEAN": "boolean", "BIGINT": "integer", "DOUBLE": "number", "DECIMAL": "number",
    "DATE": "date", "TIMESTAMP": "datetime",
}


def prepare(spark: SparkSession, source: Path | Iterable[Path], **options: Any) -> Plan:
    """The plan of files, made by the cluster: each task reads a part of them, twice in all.

    `Plan.to_json` keeps it for a later day: files that changed by then are told.

    Args:
        source: a file, a folder or a pattern, or several of them.
        options: as of `Plan.find`.

    Raises:
        NotJson, LimitReached, MapError, FileError, Error: as `Plan.find`.
    """
    return Plan.find(source, partial(_run, spark), **options)


def read(spark: SparkSession, source: Plan | Path | Iterable[Path], table: str | None = None, *,
         columns: Iterable[str] | None = None, **options: Any) -> DataFrame:
    """A table, whose rows are read where they are needed: a task reads a part.

    Args:
        source: a plan, or what `prepare` takes, which makes one first.
        table: its name or path; needless when there is only one.
        columns: of these alone, in that order.
        options: as of `prepare`.

    Raises:
        KeyError: there is no such table or column.
    """
    plan = _plan_of(spark, source, options)
    _Wish.of(plan, table, columns)
    register(spark)
    reader = spark.read.format("qvejmap").option("plan", plan.to_json())
    if table is not None:
        reader = reader.option("table", table)
    if columns is not None:
        reader = reader.option("columns", json.dumps(list(columns)))
    return reader.load()


def register(spark: SparkSession) -> None:
    """Makes format("qvejmap") known to a session.

    Its options have the names of the arguments of `Plan.find` and `read`: table, columns (names
    with commas between, or a list in JSON), size, lines, map (a file), exact, naming, carry,
    encoding, depth, max_paths; or plan, the text of `Plan.to_json`, which goes without the others.  Without a
    plan the driver's machine makes one, on all its cores.
    """
    spark.dataSource.register(JsonTables)


def write_tables(spark: SparkSession, source: Plan | Path | Iterable[Path], output: Path,
                 **options: Any) -> list[str]:
    """Writes every table as Parquet, by one job, and datapackage.json with types and keys.

    A table is a folder, with a file for each part that has rows of it.  What is there appears as a
    whole, at the end.

    Args:
        source: as of `read`.
        output: a folder that is not there yet, where all machines can write.

    Returns:
        The names of the tables.

    Raises:
        FileExistsError: the folder is there.
    """
    folder = os.fspath(output)
    if os.path.lexists(folder):
        raise FileExistsError(f"{folder}: is there already")
    plan = _plan_of(spark, source, options)
    begun = f"{folder}.{uuid.uuid4().hex}.part"
    try:
        os.makedirs(begun)
        work = partial(_write_part, plan.without_parts(), begun)
        written = _run(spark, work, list(enumerate(plan.parts)))
        tables = list(plan.open(plan.parts[0]).tables.values())
        package = {"profile": "tabular-data-package", "resources": [
            _resource(table, [file for files in written if (file := files[i]) is not None])
            for i, table in enumerate(tables)]}
        with open(os.path.join(begun, "datapackage.json"), "w", encoding="utf-8") as file:
            json.dump(package, file, indent=2, ensure_ascii=False)
        os.rename(begun, folder)
    except BaseException:
        shutil.rmtree(begun, ignore_errors=True)
        raise
    return [table.name for table in tables]


class JsonTables(DataSource):
    """A table of JSON documents; see `register`."""

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

    def _chosen(self) -> tuple[Plan, _Wish]:
        given = dict(self.options)
        table, columns = given.pop("table", None), given.pop("columns", None)
        if self._plan is None:
            text = given.pop("plan", None)
            self._plan = _planned_here(given) if text is None else Plan.from_json(text)
        return self._plan, _Wish.of(self._plan, table, _names(columns))


class _Wish(NamedTuple):
    """Columns of a table."""

    table: str
    columns: list[str]

    @classmethod
    def of(cls, plan: Plan, table: str | None, columns: Iterable[str] | None) -> _Wish:
        tables = plan.open(plan.parts[0]).tables
        names = [name for name, of in tables.items() if table in (None, name, of.path)]
        if len(names) != 1:
            known = ", ".join(tables)
            raise KeyError(f"table: {'one of' if table is None else f'no {table!r} among'} {known}")
        all_columns = [column.name for column in tables[names[0]].columns]
        chosen = all_columns if columns is None else list(columns)
        for column in chosen:
            if column not in all_columns:
                raise KeyError(f"columns: no {column!r} in {names[0]}")
        return cls(names[0], chosen)

    def schema(self, plan: Plan) -> StructType:
        types = pyarrow.schema(plan.open(plan.parts[0])[self.table])
        return StructType([_field(types.field(name)) for name in self.columns])


class _Piece(InputPartition):
    def __init__(self, part: PlannedPart) -> None:
        super().__init__(None)
        self.part = part


class _TableReader(DataSourceReader):
    def __init__(self, plan: Plan, wish: _Wish, schema: StructType) -> None:
        self._plan = plan
        self._wish = wish
        self._schema = schema

    def __getstate__(self) -> dict[str, Any]:
        return {**self.__dict__, "_plan": self._plan.without_parts()}

    def partitions(self) -> Sequence[InputPartition]:
        return [_Piece(part) for part in self._plan.parts]

    def read(self, partition: InputPartition) -> Iterator[pyarrow.RecordBatch]:
        assert isinstance(partition, _Piece)
        schema = to_arrow_schema(self._schema)
        table = self._plan.open(partition.part)[self._wish.table]
        for batch in table.batches(columns=self._wish.columns):
            rows = pyarrow.record_batch(batch)
            columns = [_cast(column, field.type) for column, field in zip(rows.columns, schema)]
            yield pyarrow.RecordBatch.from_arrays(columns, schema=schema)


def _field(field: pyarrow.Field) -> StructField:
    metadata = {key.decode(): value.decode() for key, value in (field.metadata or {}).items()}
    type = pyarrow.string() if _too_fine(field.type) else field.type
    return StructField(field.name, from_arrow_type(type, prefer_timestamp_ntz=True), field.nullable, metadata)


def _too_fine(type: pyarrow.DataType) -> bool:
    return pyarrow.types.is_timestamp(type) and type.unit == "ns"


def _cast(column: pyarrow.Array, type: pyarrow.DataType) -> pyarrow.Array:
    """Exact; times with more digits than Spark has are texts."""
    if _too_fine(column.type):
        texts = pyarrow.compute.strftime(column, "%Y-%m-%dT%H:%M:%S" + ("Z" if column.type.tz else ""))
        return texts.cast(type)
    return column.cast(type)


def _run(spark: SparkSession, function: Any, items: Sequence[Any]) -> list[Any]:
    """A task for each item."""
    return spark.sparkContext.parallelize(items, len(items)).map(function).collect() if items else []


def _plan_of(spark: SparkSession, source: Any, options: dict[str, Any]) -> Plan:
    if not isinstance(source, Plan):
        return prepare(spark, source, **options)
    if options:
        raise TypeError(f"{next(iter(options))}: a plan has been made already")
    return source


def _planned_here(given: dict[str, str]) -> Plan:
    """The plan that the options of a reader ask for."""
    options: dict[str, Any] = {}
    path = given.pop("path", None)
    if path is None:
        raise ValueError("path: what is to be read")
    for name, text in given.items():
        if name in ("size", "depth", "max_paths"):
            options[name] = int(text)
        elif name in ("lines", "exact", "carry"):
            options[name] = _arguments.choice(name, text.lower(), "true", "false") == "true"
        elif name in ("map", "naming", "encoding"):
            options[name] = text
        else:
            raise ValueError(f"there is no option {name!r}")
    if options.get("lines") is False:
        del options["lines"]
    with ThreadPoolExecutor(os.cpu_count()) as threads:
        return Plan.find(path, threads.map, **options)


def _names(columns: str | None) -> list[str] | None:
    if columns is None:
        return None
    if columns.startswith("["):
        return _arguments.texts("columns", json.loads(columns))
    return [name.strip() for name in columns.split(",")]


def _write_part(plan: Plan, folder: str, item: tuple[int, PlannedPart]) -> list[str | None]:
    """The files of a part, of each table; None: it has no rows in it, and is not the first part."""
    number, part = item
    files: list[str | None] = []
    for name, rows in plan.open(part).to_arrow().items():
        if number != 0 and rows.num_rows == 0:
            files.append(None)
            continue
        table = quote(name, safe=" ")
        file = f"{table}/part-{number:05}.parquet"
        os.makedirs(os.path.join(folder, table), exist_ok=True)
        begun = os.path.join(folder, f"{file}.{uuid.uuid4().hex}")  # another try may write it, too
        pyarrow.parquet.write_table(rows, begun)
        os.replace(begun, os.path.join(folder, file))
        files.append(file)
    return files


def _resource(table: Table, files: list[str]) -> dict[str, Any]:
    """As a data package describes a table."""
    fields = [{"name": column.name, "type": _PACKAGE_TYPES[re.split(r"\W", column.type)[0]]} for column in table.columns]
    schema: dict[str, Any] = {"fields": fields}
    if table.key is not None:
        schema["primaryKey"] = table.key
    if table.parent is not None and table.parent.foreign_key:
        schema["foreignKeys"] = [{"fields": table.parent.column, "reference": {
            "resource": table.parent.table, "fields": table.parent.column}}]
    return {"name": table.name, "path": files, "format": "parquet", "rows": table.rows, "schema": schema}
