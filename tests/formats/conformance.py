#!/usr/bin/env python3
"""What is written in each format is read back by readers that are not ours.

Rows of random documents are what the documents say.  Every NDJSON output is read back, and the CSV
output of the same table must be what follows from it, byte by byte.

    conformance.py QVEJMAP SOURCE      SOURCE: the project; real documents are in SOURCE/../shared/data
"""

import csv
import io
import json
import os
import random
import subprocess
import sys
import tempfile

TOOL, SOURCE = map(os.path.abspath, sys.argv[1:])
REAL = ["github_events.json", "twitter.json", "instruments.json", "vega_budget.json", "tree-pretty.json"]
NASTY = r"""{"q\"\\\u0001":"\u0000\u001f\u007f\u0085 \"\\/,\r\n","日":[{"v":0.1,"w":"🂡"},
{"v":-0,"w":" x"},{"v":1e-320},{"v":9007199254740993},{"w":"NULL"},{"w":null}],"e":{},"f":[[],[1,[2]]]}"""


class Digits(str):
    """A number as it is written."""


def field(cell, alone):
    if isinstance(cell, bool):
        return "true" if cell else "false"
    if cell is None or isinstance(cell, Digits):
        return cell or "NULL"
    quoted = any(c in cell for c in ',"\r\n') or cell == "NULL" or (alone and not cell)
    return '"' + cell.replace('"', '""') + '"' if quoted else cell


def as_csv(header, ndjson):
    names = next(csv.reader([header]))
    for line in ndjson.split("\n")[:-1]:
        row = json.loads(line, parse_int=Digits, parse_float=Digits)
        yield ",".join(field(row.get(name), len(names) == 1) for name in names)


def compare(document):
    """Converts both ways, ALLDATA included; the number of rows."""
    rows = 0
    for folder, options in ("c", ["--null", "NULL"]), ("n", ["--format", "ndjson"]):
        subprocess.run([TOOL, "convert", "-q", "--alldata", document, "-o", folder, "--force", *options],
                       check=True, stderr=subprocess.DEVNULL)
    assert len(os.listdir("c")) == len(os.listdir("n"))
    for name in os.listdir("c"):
        if name == "datapackage.json":
            continue
        with open("c/" + name, newline="") as table, open("n/" + name[:-3] + "ndjson", newline="\n") as lines:
            text = table.read()
            header = text.split("\r\n", 1)[0]
            expected = [header, *as_csv(header, lines.read())]
        assert text == "".join(line + "\r\n" for line in expected), (document, name)
        rows += len(expected) - 1
    subprocess.run(["rm", "-r", "c", "n"], check=True)
    return rows


NO_VALUE = "~"  # no text of the random documents
NUMBERS = "0 -0 7 1.10 1E5 -2.5e-3 12345678901234567890 1e400 -1e-999 0.1000000000000000055511151231257827".split()
TEXTS = ["", " ", "a b", 'say "hi"', "x,y", "two\nlines", "\r", "\t\u0001\u007f", "日本 🂡", "null", "NULL", "true", "1.0", "a  ",
         'x,"y', "\n", "sixteen bytes...", "exactly seven-teen"]


def read_csv(text, separator=","):
    """Rows by column; what a field means is not told."""
    for row in csv.DictReader(io.StringIO(text, newline=""), delimiter=separator):
        yield {name: None if cell == NO_VALUE else cell for name, cell in row.items()}


def read_ndjson(text):
    for line in text.split("\n")[:-1]:
        yield json.loads(line, parse_int=Digits, parse_float=Digits)


def as_texts(row):
    """What CSV says of a row: everything is a text, and no value is as null."""
    return {name: None if cell in (None, ABSENT) else str(cell).lower() if isinstance(cell, bool) else str(cell)
            for name, cell in row.items()}


def without_absent(row):
    return {name: cell for name, cell in row.items() if cell is not ABSENT}


ABSENT = object()
# By format: options, reader, and what it can tell of a row.
READERS = {
    "csv": (["--null", NO_VALUE], read_csv, as_texts),
    "tsv": (["--null", NO_VALUE], lambda text: read_csv(text, "\t"), as_texts),
    "ndjson": ([], read_ndjson, without_absent),
}


def shown(cell, kinds):
    """The cell that a value comes to in a column of values of these kinds."""
    if isinstance(cell, bool) and kinds != {"boolean"}:
        return ("true" if cell else "false") if "text" in kinds else Digits(int(cell))
    return str(cell) if isinstance(cell, Digits) and "text" in kinds else cell


def random_table(make):
    """A JSON text whose table r has these rows."""
    values = {"boolean": lambda: make.random() < 0.5, "number": lambda: Digits(make.choice(NUMBERS)),
              "text": lambda: make.choice(TEXTS)}
    columns = {f"c{i}": make.sample(sorted(values), make.choice([1, 1, 2, 3])) for i in range(make.randint(1, 6))}
    found = {name: set() for name in columns}
    objects = []
    for row in range(make.randint(1, 12)):
        members = {"id": Digits(row)}
        for name, kinds in columns.items():
            if row and make.random() < 0.2:
                continue  # the first row has every column, which gives their order
            kind = make.choice([*kinds, "null"])
            members[name] = None if kind == "null" else values[kind]()
            found[name] |= {kind} - {"null"}
        objects.append(members)
    text = ",".join("{" + ",".join(f'"{name}":' + (cell if isinstance(cell, Digits) else json.dumps(cell))
                                   for name, cell in members.items()) + "}" for members in objects)
    rows = [{name: shown(members.get(name, ABSENT), found.get(name, {"number"})) for name in ["id", *columns]}
            for members in objects]
    return '{"r":[' + text + "]}", rows


def same_kind(cells, others):
    """Equal, and of the same types: True is not 1, and a number is no text."""
    return [[(k, type(v), v) for k, v in row.items()] for row in cells] == \
        [[(k, type(v), v) for k, v in row.items()] for row in others]


def check_formats(make):
    refused = subprocess.run([TOOL, "read", "r.json", "r", "--format", "?"], capture_output=True, text=True).stderr
    assert f"is none of {', '.join(READERS)} (" in refused, "a format without a reader: " + refused
    for number in range(60):
        text, rows = random_table(make)
        with open("r.json", "w") as file:
            file.write(text)
        for name, (options, read, expected) in READERS.items():
            command = ["--format", name, "--ordinals", "0", *options]
            out = subprocess.run([TOOL, "read", "r.json", "r", *command], capture_output=True, check=True).stdout
            subprocess.run([TOOL, "convert", "r.json", "-q", "--force", "-o", "r", *command], check=True,
                           stderr=subprocess.DEVNULL)
            with open(f"r/r.{name}", "rb") as file:
                assert file.read() == out, (number, name)
            assert same_kind(read(out.decode()), [*map(expected, rows)]), (number, name, text, out)


with tempfile.TemporaryDirectory(prefix="qvejmap-ndjson-") as place:
    os.chdir(place)
    check_formats(random.Random(20240301))
    with open("nasty.json", "w") as file:
        file.write(NASTY)
    assert compare("nasty.json") > 20
    assert compare(SOURCE + "/examples/orders.json") > 30
    for name in REAL:
        if os.path.exists(path := SOURCE + "/../shared/data/" + name):
            assert compare(path) > 100, name
        else:
            print(f"{path} is not there, left out")
