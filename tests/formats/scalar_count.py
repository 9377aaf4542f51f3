#!/usr/bin/env python3
"""Every format has as many values as the document, by Python's own count of it.

CSV, TSV, NDJSON and SQLite are read by Python's own libraries; Parquet, Arrow and XLSX where
build/python has readers and the module is there.  The documents are some of which every value is in a
cell.  null is no value, and in XLSX an empty text is none either.

    scalar_count.py QVEJMAP SOURCE      SOURCE: the project; real documents are in SOURCE/../shared/data
"""

import csv
import glob
import gzip
import json
import os
import sqlite3
import subprocess
import sys
import tempfile

TOOL, SOURCE = map(os.path.abspath, sys.argv[1:3])
READERS = SOURCE + "/build/python/lib/python3*/site-packages"
sys.path += glob.glob(READERS)
try:
    import openpyxl
    import pyarrow.ipc
    import pyarrow.parquet
except ImportError:
    pyarrow = None
REAL = ["github_events.json", "twitter.json", "instruments.json", "vega_budget.json", "tree-pretty.json", "citm_catalog.json"]
MADE = {
    "empty.json": '[{"a":"","b":null,"c":0,"d":false},{"a":" ","d":null}]',
    "nested.json": '{"o":[{"i":1,"t":["x",null,"y"],"p":{"q":1.5,"r":{"s":true}}},{"t":[],"p":{}}],"n":12345678901234567890}',
    "dates.json": '[{"d":"2024-02-29","t":"2024-02-29T13:05:00Z"},{"d":"1850-01-01","t":"1850-01-01T00:00:00Z"},{"d":null}]',
}
NONE = "~none~"
ARROW = os.path.dirname(TOOL) + "/qvejmap_to_arrow.so"


def tables(document):
    """Columns that hold values, by table."""
    listed = json.loads(subprocess.check_output([TOOL, "tables", "-q", "--format", "json", document], stderr=subprocess.DEVNULL))
    return {t["name"]: [c["name"] for c in t["columns"] if not c["ordinal"]] for t in listed["tables"]}


def convert(document, out, *options):
    subprocess.run([TOOL, "convert", "-q", document, "-o", out, *options], check=False, stderr=subprocess.DEVNULL)


def in_csv(document, columns, form, separator, *options):
    convert(document, form, "--format", form, "--null", NONE, "--gzip", *options)
    for name, values in columns.items():
        with gzip.open(f"{form}/{name}.{form}.gz", "rt", newline="") as file:
            for row in csv.DictReader(file, delimiter=separator):
                yield sum(row[value] != NONE for value in values)


def in_ndjson(document, columns):
    convert(document, "ndjson", "--format", "ndjson")
    for name, values in columns.items():
        with open(f"ndjson/{name}.ndjson", encoding="utf-8", newline="\n") as file:
            for line in file:
                row = json.loads(line)
                yield sum(row.get(value) is not None for value in values)


def in_sqlite(document, columns):
    convert(document, "tables.db")
    with sqlite3.connect("tables.db") as database:
        for name, values in columns.items():
            # In brackets: in quotes, a column that is not there would be a text.
            counts = ", ".join(f"count([{value}])" for value in values)
            yield sum(database.execute(f'select {counts} from "{name}"').fetchone()) if values else 0


def in_arrow(document, columns, form):
    convert(document, form, "--format", form)
    for name, values in columns.items():
        path = f"{form}/{name}.{form}"
        table = pyarrow.parquet.read_table(path) if form == "parquet" else pyarrow.ipc.open_file(path).read_all()
        yield sum(table.num_rows - table[value].null_count for value in values)


def in_xlsx(document, columns):
    convert(document, "tables.xlsx")
    sheets = openpyxl.load_workbook("tables.xlsx").worksheets[1:]  # without the contents
    for sheet, values in zip(sheets, columns.values(), strict=True):
        titles, *rows = sheet.iter_rows(values_only=True)
        at = [i for i, title in enumerate(titles) if title in values]
        yield sum(row[i] is not None for row in rows for i in at)


def scalars(value):
    if isinstance(value, (dict, list)):
        for inner in value.values() if isinstance(value, dict) else value:
            yield from scalars(inner)
    elif value is not None:
        yield value


def check(document):
    columns = tables(document)
    with open(document, encoding="utf-8") as file:
        values = list(scalars(json.load(file)))
    found = {
        "csv": sum(in_csv(document, columns, "csv", ",")),
        "tsv": sum(in_csv(document, columns, "tsv", "\t")),
        "ndjson": sum(in_ndjson(document, columns)),
        "sqlite": sum(in_sqlite(document, columns)),
    }
    if pyarrow is not None and os.path.exists(ARROW):
        found |= {form: sum(in_arrow(document, columns, form)) for form in ("parquet", "arrow")}
    expected = dict.fromkeys(found, len(values))
    if pyarrow is not None:
        found["xlsx"] = sum(in_xlsx(document, columns))
        expected["xlsx"] = sum(value != "" for value in values)
    assert found == expected, (document, found, expected)
    return len(values)


def main():
    documents = [path for name in REAL if os.path.exists(path := f"{SOURCE}/../shared/data/{name}")]
    for name, text in MADE.items():
        with open(name, "w", encoding="utf-8") as file:
            file.write(text)
        documents.append(os.path.abspath(name))
    place = os.getcwd()
    for number, document in enumerate(documents):
        os.mkdir(f"{place}/{number}")
        os.chdir(f"{place}/{number}")
        print(os.path.basename(document), check(document))


with tempfile.TemporaryDirectory(prefix="qvejmap-scalars-") as folder:
    os.chdir(folder)
    main()
    os.chdir("/")
