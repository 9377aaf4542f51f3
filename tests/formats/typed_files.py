"""Files with types hold what the documents have: Parquet and Arrow, read back by pyarrow and DuckDB, and
XLSX, by openpyxl.

What is expected follows from the NDJSON output of the same document: from its cells the types, by a model
of its own, and the values.  Keys are compared with datapackage.json.

    typed_files.py QVEJMAP SOURCE
It runs in the Python that scripts/test-python makes, and is skipped (77) without it or the module.
"""

import datetime
import decimal
import glob
import json
import os
import random
import re
import struct
import subprocess
import sys
import tempfile

TOOL, SOURCE = map(os.path.abspath, sys.argv[1:3])
PYTHON = SOURCE + "/build/python/bin/python"
if not os.path.exists(os.path.dirname(TOOL) + "/qvejmap_to_arrow.so") or not os.path.exists(PYTHON):
    print("skipped: scripts/install-arrow and scripts/test-python were not run before the build")
    sys.exit(77)
if sys.prefix != SOURCE + "/build/python":
    os.execv(PYTHON, [PYTHON, *sys.argv])

import duckdb
import openpyxl
import pyarrow
import pyarrow.ipc
import pyarrow.parquet

REAL = ["github_events.json", "twitter.json", "instruments.json", "vega_budget.json", "random.json",
        "amazon_cellphones.ndjson", "vega_earthquakes.json"]
DATE = re.compile(r"\d{4}-\d\d-\d\d")
TIME = re.compile(r"(\d{4}-\d\d-\d\d)T(\d\d:\d\d(?::\d\d)?)(?:\.(\d{1,9}))?(Z?)")


class Digits(str):
    """A number as it is written."""


def kept_by_double(digits):
    number = float(digits)
    return abs(number) < float("inf") and decimal.Decimal(repr(number)) == decimal.Decimal(digits)


def is_date(text):
    try:
        return DATE.fullmatch(text) and bool(datetime.date.fromisoformat(text))
    except ValueError:
        return False


def time_parts(text):
    """(nanoseconds since 1970, digits, UTC), or None."""
    found = TIME.fullmatch(text)
    try:
        moment = datetime.datetime.fromisoformat(found[1] + "T" + found[2])
    except (TypeError, ValueError):
        return None
    seconds = (moment - datetime.datetime(1970, 1, 1)) // datetime.timedelta(seconds=1)
    fraction = found[3] or ""
    return seconds * 10**9 + int(fraction.ljust(9, "0")), len(fraction), found[4] == "Z"


def type_of(cells):
    """The type, as Arrow has it, that keeps all the cells."""
    if not cells:
        return pyarrow.string()
    if all(isinstance(cell, bool) for cell in cells):
        return pyarrow.bool_()
    if all(isinstance(cell, Digits) for cell in cells):
        if all(re.fullmatch(r"-?\d+", cell) and cell != "-0" and -2**63 <= int(cell) < 2**63 for cell in cells):
            return pyarrow.int64()
        if all(map(kept_by_double, cells)):
            return pyarrow.float64()
        parts = [decimal.Decimal(cell).normalize(decimal.Context(prec=5000, Emax=10**9, Emin=-10**9)).as_tuple()
                 for cell in cells]
        scale = max(max(0, -part.exponent) if any(part.digits) else 0 for part in parts)
        whole = max(max(0, len(part.digits) + part.exponent) if any(part.digits) else 0 for part in parts)
        minus_zero = any(cell.startswith("-") and not any(part.digits) for cell, part in zip(cells, parts))
        if whole + scale <= 38 and not minus_zero:
            return pyarrow.decimal128(max(1, whole + scale), scale)
        return pyarrow.string()
    if all(is_date(cell) for cell in cells):
        return pyarrow.date32()
    times = [time_parts(cell) for cell in cells]
    if all(times) and len({utc for _, _, utc in times}) == 1:
        digits = max(digits for _, digits, _ in times)
        unit = "s" if digits == 0 else "ms" if digits <= 3 else "us" if digits <= 6 else "ns"
        if unit != "ns" or all(-2**63 <= nanos < 2**63 for nanos, _, _ in times):
            return pyarrow.timestamp(unit, "UTC" if times[0][2] else None)
    return pyarrow.string()


def value_of(cell, kind):
    """A cell as the column of that type has it."""
    if cell is None:
        return None
    if pyarrow.types.is_int64(kind):
        return int(cell)
    if pyarrow.types.is_float64(kind):
        return struct.pack("d", float(cell))
    if pyarrow.types.is_decimal(kind):
        return decimal.Decimal(cell)
    if pyarrow.types.is_date32(kind):
        return (datetime.date.fromisoformat(cell) - datetime.date(1970, 1, 1)).days
    if pyarrow.types.is_timestamp(kind):
        return time_parts(cell)[0] // {"s": 10**9, "ms": 10**6, "us": 1000, "ns": 1}[kind.unit]
    return str(cell) if isinstance(cell, Digits) else cell


def values_of(column):
    """What value_of() has for each value of an Arrow column."""
    kind = column.type
    if pyarrow.types.is_float64(kind):
        return [None if cell is None else struct.pack("d", cell) for cell in column.to_pylist()]
    if pyarrow.types.is_date32(kind):
        return column.cast(pyarrow.int32()).to_pylist()
    if pyarrow.types.is_timestamp(kind):
        return column.cast(pyarrow.int64()).to_pylist()
    return column.to_pylist()


def convert(document, folder, *options):
    subprocess.run([TOOL, "convert", "-q", document, "-o", folder, *options], check=True, stderr=subprocess.DEVNULL)
    with open(folder + "/datapackage.json") as file:
        return json.load(file)["resources"]


def read_parquet(path):
    table = pyarrow.parquet.read_table(path)
    by_duckdb = duckdb.sql(f"select * from '{path}'").to_arrow_table() if table.num_columns else table
    # It has names without regard to case, and times in microseconds unless they are finer.
    for mine, other in zip(table.columns, by_duckdb.columns):
        if pyarrow.types.is_timestamp(mine.type):
            other = other.cast(mine.type)
        assert values_of(mine) == values_of(other), path
    return table


def read_arrow(path):
    return pyarrow.ipc.open_file(path).read_all()


READERS = {"parquet": read_parquet, "arrow": read_arrow}


def check_metadata(schema, resource, resources, number):
    metadata = {key.decode(): value.decode() for key, value in (schema.metadata or {}).items()}
    primary = resource["schema"].get("primaryKey")
    foreign = resource["schema"].get("foreignKeys")
    assert metadata["qvejmap.table"] == resource["title"], metadata
    assert metadata.get("qvejmap.primary_key") == (primary and primary[0]), metadata
    assert metadata.get("qvejmap.foreign_key") == (foreign and foreign[0]["fields"][0]), metadata
    if foreign:
        parent = next(r for r in resources if r["name"] == foreign[0]["reference"]["resource"])
        assert metadata["qvejmap.parent"] == parent["title"], metadata
    for field, listed in zip(schema, resource["schema"]["fields"], strict=True):
        own = {key.decode(): value.decode() for key, value in (field.metadata or {}).items()}
        assert own.get("qvejmap.path") == listed.get("path") and field.name == listed["name"], (own, listed)
        assert own.get("qvejmap.name") == (listed.get("originalName") or None), (own, listed)
        key = "primary" if primary == [field.name] else "foreign" if foreign and foreign[0]["fields"] == [field.name] else None
        assert own.get("qvejmap.key") == key, (own, listed, number)


def check(document, sheets=True):
    """Cells that were compared."""
    cells = 0
    with tempfile.TemporaryDirectory(dir=".") as place:
        texts = convert(document, place + "/ndjson", "--format", "ndjson")
        if sheets:
            check_sheets(document, place, texts)
        for form, read in READERS.items():
            resources = convert(document, place + "/" + form, "--format", form)
            assert [r["rows"] for r in resources] == [r["rows"] for r in texts]
            for number, (text, resource) in enumerate(zip(texts, resources, strict=True)):
                with open(f"{place}/ndjson/{text['path']}", newline="\n") as lines:
                    rows = [json.loads(line, parse_int=Digits, parse_float=Digits) for line in lines]
                table = read(f"{place}/{form}/{resource['path']}")
                assert table.num_rows == len(rows), (document, resource["path"])
                check_metadata(table.schema, resource, resources, number)
                for name, column in zip(table.column_names, table.columns):
                    expected = [row.get(name) for row in rows]
                    kind = type_of([cell for cell in expected if cell is not None])
                    if form == "parquet" and kind == pyarrow.timestamp("s", getattr(kind, "tz", None)):
                        kind = pyarrow.timestamp("ms", kind.tz)  # it has no seconds
                    assert column.type == kind, (document, name, column.type, kind)
                    assert values_of(column) == [value_of(cell, kind) for cell in expected], (document, form, name)
                    cells += len(rows)
    return cells


FIRST_DAY = datetime.datetime(1900, 3, 1)  # of those that a sheet has
ESCAPE = re.compile("_x([0-9A-Fa-f]{4})_")


def sheet_cell(cell, kind, as_text):
    """A cell as a sheet has it, by what openpyxl makes of that."""
    if cell is None or cell == "":
        return None
    if as_text or pyarrow.types.is_string(kind):
        return str(cell)
    if pyarrow.types.is_int64(kind):
        return int(cell)
    if pyarrow.types.is_float64(kind):
        return float(f"{float(cell):.16G}")
    if pyarrow.types.is_boolean(kind):
        return cell
    if pyarrow.types.is_date32(kind):
        moment = datetime.datetime.fromisoformat(cell)
    else:
        moment = datetime.datetime(1970, 1, 1) + datetime.timedelta(milliseconds=time_parts(cell)[0] // 10**6)
    return moment if moment >= FIRST_DAY else cell


def check_sheets(document, place, texts):
    subprocess.run([TOOL, "convert", "-q", document, "-o", place + "/book.xlsx"], check=True, stderr=subprocess.DEVNULL)
    book = openpyxl.load_workbook(place + "/book.xlsx")
    contents = [row[0:4] for row in book["Contents"].iter_rows(min_row=2, max_row=1 + len(texts), values_only=True)]
    assert [row[0] for row in contents] == [text["title"] for text in texts], contents
    assert len(book.worksheets) == 1 + len(texts)
    for text, (_, sheet, rows, _) in zip(texts, contents):
        with open(f"{place}/ndjson/{text['path']}", newline="\n") as lines:
            records = [json.loads(line, parse_int=Digits, parse_float=Digits) for line in lines]
        assert rows == len(records) == book[sheet].max_row - 1, (document, sheet)
        for number, column in enumerate(book[sheet].iter_cols(values_only=True)):
            name = text["schema"]["fields"][number]["name"]
            assert column[0] == name, (document, sheet)
            cells = [record.get(name) for record in records]
            values = [cell for cell in cells if cell is not None]
            kind = type_of(values)
            as_text = pyarrow.types.is_decimal(kind) or getattr(kind, "unit", "") in ("us", "ns") or \
                (pyarrow.types.is_int64(kind) and not name.startswith("ordinal_") and max(map(len, values)) > 15)
            for cell, read in zip(cells, column[1:], strict=True):
                if isinstance(read, str):
                    read = ESCAPE.sub(lambda found: chr(int(found[1], 16)), read)
                expected = sheet_cell(cell, kind, as_text)
                same = type(read) is type(expected) or {type(read), type(expected)} <= {int, float}
                assert same and read == expected, (document, sheet, name, read, expected)


NUMBERS = ["0", "7", "-12", "9007199254740993", "9223372036854775807", "9223372036854775808", "1.10", "1E5", "-2.5e-3",
           "-0", "1e400", "1e-999", "0.1000000000000000055511151231257827", "12345678901234567890.5", "0e99"]
TEXTS = ["", " ", "null", "日本 🂡", "\u0000\u0001\uffff", "_x0041_ _x005F_", "=1+1", "http://a.b", "2024-02-30", "x" * 300]
DATES = ["2024-02-29", "1900-02-28", "1900-03-01", "0001-01-01", "9999-12-31", "1969-12-31"]
TIMES = ["2024-02-29T13:05", "1677-01-01T00:00:00", "2024-02-29T23:59:59.25", "1969-12-31T23:59:59.123456", "2024-02-29T00:00:00.123456789"]


def random_document(make):
    kinds = [["true", "false"], NUMBERS[:4], NUMBERS[:5], NUMBERS[:6], NUMBERS[:9], NUMBERS,
             *[[json.dumps(text) for text in texts] for texts in
               (TEXTS, DATES, TIMES[:2], TIMES[:3], TIMES[:4], TIMES, [t + "Z" for t in TIMES[:4]], [*TIMES, TIMES[0] + "Z"])],
             ["true", "1", '"x"']]
    columns = [(f"c{i}", make.choice(kinds), make.random() < 0.5) for i in range(make.randint(1, 6))]
    rows = []
    for _ in range(make.choice([1, 3, 40])):
        members = [f'"{name}":' + ("null" if sometimes and make.random() < 0.3 else make.choice(values))
                   for name, values, sometimes in columns if not sometimes or make.random() < 0.8]
        children = ",".join('{"v":%d}' % make.randint(0, 9) for _ in range(make.randint(0, 2)))
        rows.append("{" + ",".join([*members, f'"child":[{children}]']) + "}")
    return '{"r":[' + ",".join(rows) + "]}"


def check_row_groups(make):
    """Row groups end when memory is short, and hold the same rows."""
    with open("r.json", "w") as file:
        file.write('{"r":[' + ",".join(f'{{"t":"{make.getrandbits(640):x}","n":{i}}}' for i in range(250000)) + "]}")
    convert("r.json", "whole", "--format", "arrow")
    convert("r.json", "parts", "--format", "parquet", "--memory", "128M")
    metadata = pyarrow.parquet.ParquetFile("parts/r.parquet").metadata
    groups = [metadata.row_group(i).num_rows for i in range(metadata.num_row_groups)]
    assert 1 < len(groups) < 9 and min(groups) > 0, groups
    assert pyarrow.parquet.read_table("parts/r.parquet").equals(read_arrow("whole/r.arrow"))


def check_values_left():
    """Rows that the parts of a document have made are there when it has turned out that it must be walked as
    one, since a value of one part belongs to a row of the next."""
    with open("left.json", "w") as file:
        file.write("[" + ",".join(f'{{"c":[{{"x":{i}}}]}},{{"v":"{i:060}"}}' for i in range(70000)) + "]")
    columns = [("n", "ORDINAL", "/root"), ("x", "NUMERIC", "/root/c/x"), ("v", "CHARACTER", "/root/v")]
    with open("left-map.json", "w") as file:
        json.dump({"DATASETS": [{"DSNAME": "c", "TABLEPATH": "/root/c", "VARIABLES": [
            dict(zip(("NAME", "TYPE", "PATH"), column)) for column in columns]}]}, file)
    for format, read in ("parquet", pyarrow.parquet.read_table), ("arrow", read_arrow):
        convert("left.json", format, "--format", format, "--map", "left-map.json")
        convert("left.json", format + "-records", "--format", format, "--map", "left-map.json", "--compress")
        rows = read(f"{format}/c.{format}")
        assert rows.num_rows == 70000 and rows.equals(read(f"{format}-records/c.{format}")), format


def check_limits():
    """What a sheet has no room for is told with the name of its table, and names are fitted."""
    with open("wide.json", "w") as file:
        file.write('{"wide":[{' + ",".join(f'"c{i}":1' for i in range(16384)) + "}]}")
    run = subprocess.run([TOOL, "convert", "wide.json", "-o", "wide.xlsx"], capture_output=True, text=True)
    assert run.returncode == 5 and "table wide has 16386 columns" in run.stderr, run.stderr
    assert not os.path.exists("wide.xlsx")
    with open("names.json", "w") as file:
        file.write('{"Contents":[{"a":1}],"history":[{"a":1}],"it\'s [a]":[{"a":1}],"' + "n" * 40 + '":[{"a":1}]}')
    subprocess.run([TOOL, "convert", "-q", "names.json", "-o", "names.xlsx", "--naming", "original"], check=True,
                   stderr=subprocess.DEVNULL)
    assert openpyxl.load_workbook("names.xlsx").sheetnames == ["Contents", "Contents~2", "history~2", "it_s _a_", "n" * 31]


def check_page():
    """The line of docs/FORMATS.md that reads Parquet."""
    convert(SOURCE + "/examples/orders.json", "out", "--format", "parquet")
    with open(SOURCE + "/docs/FORMATS.md") as page:
        line, = [line for line in page if line.startswith("duckdb.sql(")]
    assert sorted(eval(line).fetchall())[:3] == [(1001, "desk"), (1001, "lamp"), (1002, "chair")]


with tempfile.TemporaryDirectory(prefix="qvejmap-typed-") as folder:
    os.chdir(folder)
    make = random.Random(20240302)
    for _ in range(40):
        with open("r.json", "w") as file:
            file.write(random_document(make))
        check("r.json")
    # Several batches, a dictionary that grows too large, and a parent without a row.
    with open("large.json", "w") as file:
        file.write('{"r":[' + ",".join(f'{{"t":"{i * 7919:040}","n":{i % 97}}}' for i in range(120000)) + "]}")
    assert check("large.json", sheets=False) > 400000
    check_row_groups(make)
    check_values_left()
    check_page()
    check_limits()
    with open("orphan.json", "w") as file:
        file.write('{"orders":[{"id":1,"items":[{"a":1}]},{"items":[{"a":2}]}],"none":[]}')
    assert check("orphan.json") > 5
    for name in REAL:
        if os.path.exists(path := SOURCE + "/../shared/data/" + name):
            assert check(path) > 100, name
        else:
            print(f"{path} is not there, left out")
