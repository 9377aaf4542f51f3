"""Tables as Parquet files of a data package, which many workers write."""

# Types are checked where pyarrow has none.
# mypy: disable-error-code="import-untyped,no-any-return,unused-ignore"
from __future__ import annotations

import json
import os
import re
import uuid
import zlib
from collections.abc import Sequence
from typing import Any
from urllib.parse import quote

import pyarrow.parquet

from ._plan import Plan, PlannedPart
from ._tables import Table

_PACKAGE = "datapackage.json"
_LONGEST = 200  # bytes of a folder's name
_PACKAGE_TYPES = {
    "TEXT": "string", "BOOLEAN": "boolean", "BIGINT": "integer", "DOUBLE": "number", "DECIMAL": "number",
    "DATE": "date", "TIMESTAMP": "datetime",
}


def write_part(plan: Plan, folder: str, item: tuple[int, PlannedPart]) -> list[str | None]:
    """The files of a part, of each table; None: it has no rows in it, and is not the first part."""
    number, part = item
    files: list[str | None] = []
    for name, rows in plan.open(part).to_arrow().items():
        if number != 0 and rows.num_rows == 0:
            files.append(None)
            continue
        table = _folder_of(name)
        file = f"{table}/part-{number:05}.parquet"
        os.makedirs(os.path.join(folder, table), exist_ok=True)
        begun = os.path.join(folder, f"{file}.{uuid.uuid4().hex}")  # another try may write it, too
        pyarrow.parquet.write_table(rows, begun)
        os.replace(begun, os.path.join(folder, file))
        files.append(file)
    return files


def _folder_of(table: str) -> str:
    """No name that is hidden, another file's, or too long for what is written there."""
    name = quote(table, safe=" ") or "%00"
    if name[0] in "._" or name == _PACKAGE:
        name = f"%{ord(name[0]):02X}{name[1:]}"
    if len(name) > _LONGEST:
        name = f"{name[:_LONGEST]}~{zlib.crc32(table.encode()):08x}"
    return name


def write_package(tables: Sequence[Table], files: Sequence[Sequence[str | None]], folder: str) -> None:
    """The file that describes them, with types and keys.

    Args:
        files: of each part, as `write_part` gives them.
    """
    package = {"profile": "tabular-data-package", "resources": [
        _resource(table, [file for of in files if (file := of[i]) is not None]) for i, table in enumerate(tables)]}
    with open(os.path.join(folder, _PACKAGE), "w", encoding="utf-8") as out:
        json.dump(package, out, indent=2, ensure_ascii=False)


def _resource(table: Table, files: list[str]) -> dict[str, Any]:
    fields = [{"name": column.name, "type": _PACKAGE_TYPES[re.split(r"\W", column.type)[0]]} for column in table.columns]
    schema: dict[str, Any] = {"fields": fields}
    if table.key is not None:
        schema["primaryKey"] = table.key
    if table.parent is not None and table.parent.foreign_key:
        schema["foreignKeys"] = [{"fields": table.parent.column, "reference": {
            "resource": table.parent.table, "fields": table.parent.column}}]
    return {"name": table.name, "path": files, "format": "parquet", "rows": table.rows, "schema": schema}
