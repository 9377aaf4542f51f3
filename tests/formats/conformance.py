#!/usr/bin/env python3
"""Every NDJSON output is read back by a parser that is not ours, and the CSV output of the same table
must be what follows from it, byte by byte; where a document is one table, its NDJSON is the document.

    ndjson.py QVEJMAP SOURCE      SOURCE: the project; real documents are in SOURCE/../shared/data
"""

import csv
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
        with open("c/" + name, newline="") as table, open("n/" + name[:-3] + "ndjson", newline="\n") as lines:
            text = table.read()
            header = text.split("\r\n", 1)[0]
            expected = [header, *as_csv(header, lines.read())]
        assert text == "".join(line + "\r\n" for line in expected), (document, name)
        rows += len(expected) - 1
    subprocess.run(["rm", "-r", "c", "n"], check=True)
    return rows


def flat_objects(make):
    """Objects whose members keep their kind and order, so that they are the rows of one table."""
    numbers = "12345678901234567890 1e400 1.10 -0 1E5 0.1000000000000000055511151231257827 -1e-999 7".split()
    texts = ["", " ", "a  ", "NULL", "null", "1.0", r"x,\"y", r"\n", "日本 ", "sixteen bytes...", r"\u0000", "exactly seven-teen"]
    for row in range(2000):
        members = [f'"id":{row}']
        for column in range(8):
            kind = make.randrange(8) if row else 2  # every column is in the first row
            value = make.choice(numbers) if column % 2 == 0 else f'"{make.choice(texts)}"'
            members += [f'"c{column}":{"null" if kind == 1 else value}'] if kind else []
        yield "{" + ",".join(members) + "}"


with tempfile.TemporaryDirectory(prefix="qvejmap-ndjson-") as place:
    os.chdir(place)
    with open("nasty.json", "w") as file:
        file.write(NASTY)
    assert compare("nasty.json") > 20
    assert compare(SOURCE + "/examples/orders.json") > 30
    for name in REAL:
        if os.path.exists(path := SOURCE + "/../shared/data/" + name):
            assert compare(path) > 100, name
        else:
            print(f"{path} is not there, left out")
    flat = list(flat_objects(random.Random(20240229)))
    with open("flat.json", "w") as file:
        file.write("[" + ",".join(flat) + "]")
    for verb in ["read", "flat.json", "root"], ["convert", "flat.json", "-q", "-o", "out"]:
        done = subprocess.run([TOOL, *verb, "--ordinals", "0", "--format", "ndjson"], capture_output=True, check=True)
        with open("out/root.ndjson") if verb[0] == "convert" else open(os.devnull) as file:
            assert (done.stdout.decode() or file.read()) == "".join(row + "\n" for row in flat), verb
