"""Tables of JSON documents on a cluster of Spark.

    import qvejmap.spark

    plan = qvejmap.spark.prepare(spark, "big/*.json.gz")           # two or three jobs
    items = qvejmap.spark.read(spark, plan, "orders_items")        # a DataFrame
    qvejmap.spark.write_tables(spark, plan, "out")                 # all tables, one job

    qvejmap.spark.register(spark)                                  # or without a plan:
    spark.read.format("qvejmap").option("table", "orders_items").load("big/*.json.gz")

All machines have the files by the same names, and this package.
"""

# Types are checked where pyspark is not installed.
# mypy: disable-error-code="import-untyped,import-not-found,misc,no-any-return,unused-ignore"
from __future__ import annotations

import json
import os
import shutil
import uuid
from collections.abc import Iterable, Sequence
from functools import partial
from typing import Any

from pyspark.sql import DataFrame, SparkSession

from ._files import has_scheme
from ._plan import Plan
from ._source import Path
from ._spark_options import absolute, plan_options
from ._spark_source import JsonTables, Wish
from ._written_tables import write_package, write_part

_TASKS_OF_A_CORE = 4

__all__ = ["JsonTables", "prepare", "read", "register", "write_tables"]


def prepare(spark: SparkSession, source: Path | Iterable[Path], **options: Any) -> Plan:
    """The plan of files, made by the cluster: each task reads a part of them, twice in all.

    `Plan.to_json` keeps it for a later day: files that changed by then are told.

    Args:
        source: a file, a folder or a pattern, or several of them; URLs, too.
        options: as of the command line, where they are explained: map (a file, a dict or a text),
            shape, lines, encoding, exact, naming, carry, alldata, depth, max_paths.
        table: its name or path, or "ALLDATA": the plan has this one alone and those above it, and
            is found sooner.
        maxPartitionBytes: of a part, or somewhat more; a number, or "128m".
        mode: what becomes of text that is no JSON: "FAILFAST" raises it, "DROPMALFORMED" and
            "PERMISSIVE" leave out lines of JSON Lines and other files as a whole.

    Raises:
        NotJson, LimitReached, MapError, FileError, Error, KeyError: as `Plan.find`.
        ValueError: there is no such option.
    """
    return Plan.find(absolute(source), partial(_run, spark), **plan_options(options))


def read(spark: SparkSession, source: Plan | Path | Iterable[Path], table: str | None = None, *,
         columns: Iterable[str] | None = None, columnNameOfCorruptRecord: str | None = None,
         **options: Any) -> DataFrame:
    """A table, whose rows are read where they are needed: a task reads a part.

    Args:
        source: a plan, or what `prepare` takes, which makes one first.
        table: its name or path, or "ALLDATA" of a plan that has it; needless when there is only
            one, or the plan was made for one.
        columns: of these alone, in that order.
        columnNameOfCorruptRecord: of a plan that leaves bad text out: each line and file that is
            not there has a row with nothing but this column, "file:line:column: what is wrong".
        options: as of `prepare`.

    Raises:
        KeyError: there is no such table or column.
    """
    if table is not None and not isinstance(source, Plan):
        options["table"] = table
    plan = _plan_of(spark, source, options)
    wish = Wish.of(plan, table, columns, columnNameOfCorruptRecord)
    register(spark)
    reader = spark.read.format("qvejmap").option("plan", plan.to_json()).option("table", wish.table)
    reader = reader.option("columns", json.dumps(wish.columns))
    if wish.corrupt is not None:
        reader = reader.option("columnNameOfCorruptRecord", wish.corrupt)
    return reader.load()


def register(spark: SparkSession) -> None:
    """Makes format("qvejmap") known to a session.

    Its options have the names of those of `prepare` and `read`, as texts: columns are names with
    commas between, or a list in JSON, and so are the rules of a shape.  An option `plan`, the text
    of `Plan.to_json`, goes without those of `prepare`.  Without it the driver's machine makes a
    plan, on all its cores: a data source cannot start jobs.
    """
    spark.dataSource.register(JsonTables)


def write_tables(spark: SparkSession, source: Plan | Path | Iterable[Path], output: Path,
                 format: str = "parquet", **options: Any) -> list[str]:
    """Writes every table, by one job, and datapackage.json with types and keys.

    A table is a folder, with a file for each part that has rows of it.  What is there appears as a
    whole, at the end.

    Args:
        source: as of `read`.
        output: a folder that is not there yet, where all machines can write; no URL.
        format: "parquet" alone.

    Returns:
        The names of the tables.

    Raises:
        FileExistsError: the folder is there.
    """
    if format != "parquet":
        raise ValueError(f"format: 'parquet', not {format!r}")
    folder = os.path.abspath(output)
    if has_scheme(os.fspath(output)):
        raise ValueError("output: a folder that all machines have, no URL")
    if os.path.lexists(folder):
        raise FileExistsError(f"{folder}: is there already")
    plan = _plan_of(spark, source, options)
    begun = f"{folder}.{uuid.uuid4().hex}.part"
    try:
        os.makedirs(begun)
        written = _run(spark, partial(write_part, plan.without_parts(), begun), list(enumerate(plan.parts)))
        tables = list(plan.open(plan.parts[0]).tables.values())
        write_package(tables, written, begun)
        os.rename(begun, folder)
    except BaseException:
        shutil.rmtree(begun, ignore_errors=True)
        raise
    return [table.name for table in tables]


def _run(spark: SparkSession, function: Any, items: Sequence[Any]) -> list[Any]:
    """Some items a task, for a task costs some 50 ms; but each core has several, since they take their time."""
    if not items:
        return []
    tasks = min(len(items), _TASKS_OF_A_CORE * spark.sparkContext.defaultParallelism)
    return spark.sparkContext.parallelize(items, tasks).map(function).collect()


def _plan_of(spark: SparkSession, source: Any, options: dict[str, Any]) -> Plan:
    if not isinstance(source, Plan):
        return prepare(spark, source, **options)
    if options:
        raise TypeError(f"{next(iter(options))}: a plan has been made already")
    return source
