"""One table of cases, one comparer: every door gives the cells that the command line gives as NDJSON.

    suite.py QVEJMAP SOURCE PROGRAMS MODULE_FOLDER EXTENSION    EXTENSION: "" when there is none

It runs in the Python that scripts/test-wheel makes, and is skipped (77) without it.
"""

import datetime
import gzip
import json
import math
import os
import random
import subprocess
import sys
import tempfile
from decimal import Decimal

TOOL, SOURCE, PROGRAMS, MODULES, EXTENSION = [path and os.path.abspath(path) for path in sys.argv[1:6]]
PYTHON = SOURCE + "/build/python-package/bin/python"
if not os.path.exists(PYTHON) or subprocess.run([PYTHON, "-c", "import qvejmap"], cwd="/").returncode != 0:
    print("skipped: scripts/test-wheel was not run, or the package could not be built")
    sys.exit(77)
if sys.prefix != SOURCE + "/build/python-package":
    os.execv(PYTHON, [PYTHON, *sys.argv])

import warnings

import qvejmap
from doors import ABSENT, Case, Digits, Doors, Instant, instant

warnings.simplefilter("ignore", qvejmap.ValuesWarning)
SHARED = SOURCE + "/../shared/data"
REAL = ["github_events.json", "twitter.json", "instruments.json", "vega_budget.json", "apache_builds.json",
        "amazon_cellphones.ndjson", "citm_catalog.json"]

# ---- the comparer ----


def same_number(digits, cell):
    if isinstance(cell, float):
        return float(digits) == cell and math.copysign(1, float(digits)) == math.copysign(1, cell)
    return Decimal(digits) == cell


def same(want, cell, door, rejects):
    """`want`: of NDJSON, which tells all that any door tells but times from texts."""
    if want is ABSENT or want is None:
        return cell is want if door == "cpp" else cell is None or (door == "c" and (cell == "" or (rejects and cell == 0)))
    if isinstance(want, bool):
        return cell is want if door in ("cpp", "parquet", "python", "python_rows") else str(cell).lower() in (str(want).lower(), str(float(want)), str(int(want)))
    if isinstance(want, Digits):
        if door in ("csv", "cpp") or isinstance(cell, str):
            return cell == want
        return not isinstance(cell, bool) and cell is not None and same_number(want, cell)
    if isinstance(cell, Instant):
        return instant(want) == cell
    if isinstance(cell, datetime.date):
        return want == cell.isoformat()
    return cell == (want.rstrip(" ") if door == "c" else want)  # its cells are padded


def compare(case, door, want, got):
    """Cells that are equal."""
    assert sorted(got) == sorted(want), (case.name, door, sorted(got), sorted(want))
    cells = 0
    for title, (names, rows) in want.items():
        got_names, got_rows = got[title]
        assert got_names == names and len(got_rows) == len(rows), (case.name, door, title, got_names, names)
        for number, (row, got_row) in enumerate(zip(rows, got_rows), 1):
            for name, cell, got_cell in zip(names, row, got_row, strict=True):
                assert same(cell, got_cell, door, case.rejects), (case.name, door, title, name, number, cell, got_cell)
            cells += len(row)
    return cells


# ---- the cases ----

NUMBERS = '{"v":[{"i":9223372036854775807,"d":0.1,"z":-0.0,"big":12345678901234567890123,"m":1,"e":1e-7,"w":1.50},' \
          '{"i":-1,"d":1e300,"z":0,"big":0.1,"m":"x","e":2},{"i":null,"m":true},{}]}'
TEXTS = json.dumps({"v": [{"t": text} for text in ["", " ", "a  ", "\t\n\r\"\\,;", "\u00e9\u4e16\U0001f0a1", "null", "1.0", "true"]]})
TIMES = '[{"d":"2024-02-29","u":"2024-02-29T10:00:00Z","n":"1969-12-31T23:59:59.123456789","b":true,"x":"2024-02-30"},' \
        '{"d":"0001-01-01","u":"1960-01-01T00:00:00.5Z","n":"2000-01-01T00:00:00","b":false},{"d":null,"b":null}]'
NESTED = '{"o":[{"id":1,"i":[{"s":"A","t":[{"x":1},{"x":2}]},{"s":"B"}]},{"id":2,"i":[],"j":{"k":{"l":1}}},{"id":3}],"n":7}'
NAMES = '{"a b":[{"select":1,"x/y":2,"\u00e9":3,"Q\\"q":4}],"c":[[1,2],[3]],"d":["x",null]}'
LATE = '{"o":[{"i":[{"a":1},{"a":2}],"id":7,"z":"x"},{"i":[{"a":3}],"id":8,"z":"12"}]}'
MAP = json.dumps({"DATASETS": [{"DSNAME": "T", "TABLEPATH": "/root/o/i", "VARIABLES": [
    {"NAME": "r", "TYPE": "ORDINAL", "PATH": "/root/o"}, {"NAME": "id", "TYPE": "NUMERIC", "PATH": "/root/o/id"},
    {"NAME": "a", "TYPE": "NUMERIC", "PATH": "/root/o/i/a", "LABEL": "A"}]},
    {"DSNAME": "O", "TABLEPATH": "/root/o", "VARIABLES": [
        {"NAME": "z", "TYPE": "NUMERIC", "PATH": "/root/o/z"},
        {"NAME": "t", "TYPE": "CHARACTER", "PATH": "/root/o/z", "LENGTH": 1}]}]})
RATES = '{"rates":{"EUR":{"x":1,"y":"a"},"USD":{"x":2},"CHF":{"x":3},"GBP":{"x":4}}}'


def large(between):
    row = '{"id":%d,"name":"' + "n" * 300 + '","items":[{"sku":"x","p":%d.25},{"sku":null}],"on":"2024-01-0%d"}'
    return between.join(row % (i, i, i % 9 + 1) for i in range(14000))


def random_document(make):
    def value(depth):
        kind = make.random()
        if depth < 4 and kind < 0.25:
            return {make.choice("abcd"): value(depth + 1) for _ in range(make.randint(0, 4))}
        if depth < 4 and kind < 0.45:
            return [value(depth + 1) for _ in range(make.randint(0, 3))]
        return make.choice([None, True, False, 0, -1, 2.5, 1e300, 2**63, "", "x", "a,b", "2024-01-01", "\u00e9 ", 10**30])

    return json.dumps({"r": [{name: value(1) for name in make.sample("abcdef", make.randint(0, 6))}
                             for _ in range(make.randint(1, 8))]})


def cases(seed):
    def write(name, content):
        with open(name, "wb") as file:
            file.write(content if isinstance(content, bytes) else content.encode())
        return name

    map = write("the.map", MAP)
    late = [write("late.json", LATE)]
    rows = write("rows.jsonl", large("\n"))
    for name, text in (("numbers", NUMBERS), ("texts", TEXTS), ("times", TIMES), ("nested", NESTED), ("names", NAMES),
                       ("large", "[" + large(",") + "]")):
        yield Case(name, [write(name + ".json", text)])
    yield Case("empty", [write("empty.json", '{"a":[],"b":{},"c":[{},{}]}')])
    yield Case("original names", ["names.json"], naming="original")
    yield Case("gzip", [write("nested.json.gz", gzip.compress(NESTED.encode()))])
    yield Case("utf-16", [write("utf16.json", NAMES.encode("utf-16"))])
    yield Case("latin", [write("latin.json", '[{"t":"\u00e9"}]'.encode("latin-1"))], encoding="latin1")
    yield Case("lines", [write("lines.txt", '{"a":1}\n{"a":"x","b":[{"c":1}]}\n')], lines=True)
    yield Case("large lines", [rows])
    yield Case("shape", [write("rates.json", RATES)], shape="auto")
    yield Case("map", late, map=map, rejects=True)
    yield Case("carried", late, map=map, carry=True)
    yield Case("several files", ["nested.json", write("more.json", NESTED)])
    make = random.Random(seed)
    for number in range(25):
        yield Case(f"random {seed}.{number}", [write(f"random{number}.json", random_document(make))])
    for name in REAL:
        if os.path.exists(path := f"{SHARED}/{name}"):
            yield Case(name, [path])
        else:
            print(f"{path} is not there, left out")
    yield Case("orders", [SOURCE + "/examples/orders.json"])


doors = Doors(TOOL, PROGRAMS, MODULES, EXTENSION or None)
DOORS = ["csv", "parquet", "sqlite", "c", "cpp", "python", "python_rows", "sqlite_extension"]
compared = {door: [0, 0] for door in DOORS}
with tempfile.TemporaryDirectory(prefix="qvejmap-doors-") as place:
    os.chdir(place)
    for number, case in enumerate(cases(20261122)):
        os.mkdir(folder := f"case{number}")
        case = case._replace(files=[os.path.abspath(file) for file in case.files],
                             map=case.map and os.path.abspath(case.map))
        os.chdir(folder)
        want = doors.ndjson(case)
        for door in DOORS:
            got = getattr(doors, door)(case)
            if got is not None:
                compared[door][0] += 1
                compared[door][1] += compare(case, door, want, got)
        os.chdir("..")
for door, (count, cells) in compared.items():
    print(f"{door}: {count} cases, {cells:,} cells")
    assert count > 20 or (door == "sqlite_extension" and not EXTENSION)
