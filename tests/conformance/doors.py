"""The doors to the tables of a document: what each gives for a case, as tables of rows of cells.

A door is a function of a case that gives {table: (column names, rows)}, or None when the case cannot go through it.
Cells are of Python: None, bool, int, float, Decimal, str, datetime.date, `Instant`; `ABSENT` where the door can tell
that there is no value from null; `Digits` for a number as the document writes it.
"""

import csv
import datetime
import json
import os
import re
import sqlite3
import subprocess
import sys
from typing import NamedTuple

SYSTEM_PYTHON = "/usr/bin/python3"  # others are often built without loadable extensions
if __name__ != "__main__":
    import pyarrow
    import pyarrow.parquet

    import qvejmap

ABSENT = type("Absent", (), {"__repr__": lambda self: "ABSENT"})()
NO_VALUE = "~none~"
NANOSECONDS = re.compile(r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{7,9}Z?")  # which Python has as a text


class Digits(str):
    """A number as it is written."""


class Instant(NamedTuple):
    nanoseconds: int  # since 1970
    utc: bool


class Case(NamedTuple):
    name: str
    files: list
    map: str = ""  # a file
    shape: str = ""
    lines: bool = False
    encoding: str = ""
    naming: str = ""
    carry: bool = False
    rejects: bool = False  # its map rejects values, in whose place the operation table has 0

    def words(self):
        """Of the command line."""
        return [*(["--map", self.map] if self.map else []), *(["--shape", self.shape] if self.shape else []),
                *(["--lines"] if self.lines else []), *(["--encoding", self.encoding] if self.encoding else []),
                *(["--naming", self.naming] if self.naming else []), *(["--carry"] if self.carry else [])]

    def arguments(self):
        """Of Python."""
        return {key: value for key, value in self._asdict().items() if key not in ("name", "files", "rejects") and value}

    def pairs(self):
        """Of the programs and of the extension of SQLite."""
        return [f"{key}={1 if value is True else value}" for key, value in self.arguments().items()]


class Doors:
    def __init__(self, tool, programs, module_folder, extension):
        self.tool, self.programs, self.module_folder, self.extension = tool, programs, module_folder, extension

    def convert(self, case, out, *words):
        done = subprocess.run([self.tool, "convert", *case.files, "-o", out, "--quiet", *case.words(), *words],
                              capture_output=True, text=True)
        assert done.returncode in (0, 1), done.stderr  # 1: values were rejected
        return out

    def files(self, case, form, *words):
        """Of each table: its title, its columns and its file."""
        folder = self.convert(case, form, "--format", form, *words)
        with open(folder + "/datapackage.json", encoding="utf-8") as file:
            for resource in json.load(file)["resources"]:
                fields = resource["schema"]["fields"]
                yield resource["title"], [field["name"] for field in fields], f"{folder}/{resource['path']}"

    def ndjson(self, case):
        tables = {}
        for title, names, path in self.files(case, "ndjson"):
            with open(path, newline="\n", encoding="utf-8") as lines:
                rows = [json.loads(line, parse_int=Digits, parse_float=Digits) for line in lines]
            tables[title] = names, [[row.get(name, ABSENT) for name in names] for row in rows]
        return tables

    def csv(self, case):
        tables = {}
        for title, names, path in self.files(case, "csv", "--null", NO_VALUE):
            with open(path, newline="", encoding="utf-8") as file:
                head, *rows = csv.reader(file)
            assert head == names, (head, names)
            tables[title] = names, [[None if cell == NO_VALUE else cell for cell in row] for row in rows]
        return tables

    def parquet(self, case):
        return {title: (names, arrow_rows(pyarrow.parquet.read_table(path)))
                for title, names, path in self.files(case, "parquet")}

    def sqlite(self, case):
        return sqlite_tables(sqlite3.connect(self.convert(case, "tables.db")))

    def sqlite_extension(self, case):
        if len(case.files) > 1 or case.carry or self.extension is None:
            return None
        done = subprocess.run([SYSTEM_PYTHON, __file__, self.extension, case.files[0], *case.pairs()],
                              capture_output=True, check=True)
        return json.loads(done.stdout)

    def python(self, case):
        with qvejmap.open(case.files, **case.arguments()) as doc:
            return {name: (table.column_names, arrow_rows(table)) for name, table in doc.to_arrow().items()}

    def python_rows(self, case):
        with qvejmap.open(case.files, **case.arguments()) as doc:
            return {name: ([column.name for column in table.columns],
                           [[python_cell(cell) for cell in row.values()] for row in table])
                    for name, table in doc.tables.items()}

    def cpp(self, case):
        return self.printed("conformance_cpp", *case.pairs(), *case.files)

    def c(self, case):
        if case._replace(map="", files=case.files[:1], rejects=False) != Case(case.name, case.files) or not is_plain(case.files[0]):
            return None  # the operation table takes one text in UTF-8
        return self.printed("conformance_c", self.module_folder, *case.files, *([case.map] if case.map else []))

    def printed(self, program, *words):
        done = subprocess.run([f"{self.programs}/{program}", *words], capture_output=True, check=True)
        tables = {}
        for line in done.stdout.decode().split("\n")[:-1]:
            kind, *rest = line.split("\t")
            if kind == "T":
                names, rows = tables.setdefault(rest[0], ([], []))
            elif kind == "C":
                names.append(rest[0])
            else:
                rows.append([printed_cell(text) for text in rest])
        return tables


def instant(text):
    whole, _, fraction = text.removesuffix("Z").partition(".")
    since = datetime.datetime.fromisoformat(whole) - datetime.datetime(1970, 1, 1)
    seconds = since // datetime.timedelta(seconds=1)
    return Instant(seconds * 10**9 + int((fraction or "0").ljust(9, "0")), text.endswith("Z"))


def is_plain(path):
    """One document in UTF-8?"""
    with open(path, "rb") as file:
        try:
            return path.endswith(".json") and file.read().decode() is not None
        except UnicodeDecodeError:
            return False


def printed_cell(text):
    kind, rest = text[0], text[1:]
    return (ABSENT if text == "-" else None if text in ("N", ".") else rest == "1" if kind == "B" else Digits(rest)
            if kind == "D" else bytes.fromhex(rest).decode() if kind == "x" else float(text))


def arrow_rows(table):
    columns = [arrow_cells(column) for column in table.columns]
    return [list(row) for row in zip(*columns)] if columns else [[] for _ in range(table.num_rows)]


def arrow_cells(column):
    if not pyarrow.types.is_timestamp(column.type):
        return column.to_pylist()
    scale = {"s": 10**9, "ms": 10**6, "us": 1000, "ns": 1}[column.type.unit]
    units = column.cast(pyarrow.int64()).to_pylist()
    return [None if unit is None else Instant(unit * scale, column.type.tz is not None) for unit in units]


def python_cell(cell):
    if isinstance(cell, str) and NANOSECONDS.fullmatch(cell):
        return instant(cell)
    if not isinstance(cell, datetime.datetime):
        return cell
    since = cell.replace(tzinfo=None) - datetime.datetime(1970, 1, 1)
    return Instant(since // datetime.timedelta(microseconds=1) * 1000, cell.tzinfo is not None)


def sqlite_tables(connection):
    names = [row[0] for row in connection.execute(
        "select name from pragma_table_list where type in ('table', 'virtual') and name not like 'sqlite_%' "
        "and name not like 'qvejmap_%'")]
    tables = {}
    for name in names:
        cursor = connection.execute('select * from "%s"' % name.replace('"', '""'))
        tables[name] = [column[0] for column in cursor.description], [list(row) for row in cursor]
    return tables


if __name__ == "__main__":  # as the system's Python, which loads extensions
    extension, *arguments = sys.argv[1:]
    with sqlite3.connect(":memory:", isolation_level=None) as attached:
        attached.enable_load_extension(True)
        attached.load_extension(extension)
        attached.execute(f"select qvejmap_attach({', '.join('?' * len(arguments))})", arguments)
        print(json.dumps(sqlite_tables(attached)))
