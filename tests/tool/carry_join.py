#!/usr/bin/env python3
"""convert --carry gives what a join of the tables on their shared ordinals gives.

    carry_join.py QVEJMAP [DOCUMENTS]

Random documents, with a random map of tables whose columns lie anywhere, are converted with --carry.
A second map has the same tables without the columns of parents, with ordinals in their place, and a
table for each of these columns; SQLite joins them.
"""
import json
import random
import sqlite3
import subprocess
import sys
import tempfile
from pathlib import Path

NAMES = ["a", "b", "c", "d"]
SCALARS = ["1", "-2.50", "1e3", "true", "false", "null", '"x"', '"long text"', '"1,234"', '"7"', '""']
KINDS = [
    {"TYPE": "CHARACTER"},
    {"TYPE": "CHARACTER", "LENGTH": 3},
    {"TYPE": "CHARACTER", "INFORMAT": ["upper"]},
    {"TYPE": "NUMERIC"},
    {"TYPE": "NUMERIC", "FORMAT": ["fixed", 0, 2]},
    {"TYPE": "NUMERIC", "INFORMAT": ["comma"]},
]


class Text:
    """A random document, and the paths of its scalars and of its objects."""

    def __init__(self, rng, objects):
        self.rng = rng
        self.values = set()
        self.containers = set()
        self.left = objects
        self.text = self.array(("root",), 0)

    def array(self, path, depth):
        count = self.rng.choice([0, 1, 2, 2, 3]) if depth else self.left
        nested = self.rng.random() < 0.1
        one = lambda: self.array(path, depth + 1) if nested and depth < 5 else self.object(path, depth)
        return "[" + ",".join(one() for _ in range(count)) + "]"

    def scalars(self, path):
        count = self.rng.randint(0, 3)
        self.values.update(path + (f"{path[-1]}{i + 1}",) for i in range(count))
        return "[" + ",".join(self.rng.choice(SCALARS) for _ in range(count)) + "]"

    def object(self, path, depth):
        self.containers.add(path)
        members = []
        for name in self.rng.choices(NAMES, k=self.rng.randint(0, 4)):  # a name may come twice
            below = path + (name,)
            form = self.rng.random() if depth < 4 else 0
            if form < 0.5:
                self.values.add(below)
                value = self.rng.choice(SCALARS)
            elif form < 0.6:
                value = self.scalars(below)
            elif form < 0.75:
                value = self.object(below, depth + 1)
            else:
                value = self.array(below, depth + 1)
            members.append(f'"{name}":{value}')
        return "{" + ",".join(members) + "}"


def common(a, b):
    count = 0
    while count < min(len(a), len(b)) and a[count] == b[count]:
        count += 1
    return a[:count]


def shown(path):
    return "/" + "/".join(path)


def table(name, path, columns):
    return {"DSNAME": name, "TABLEPATH": shown(path), "VARIABLES": columns}


def ordinal(name, path):
    return {"NAME": name, "TYPE": "ORDINAL", "PATH": shown(path)}


def random_maps(rng, text):
    """The map to carry with, the map to join, and (table, column, parent's table) of each join."""
    carried, joined, joins = [], [], []
    for t in range(3):
        path = rng.choice(sorted(text.containers))
        own = [ordinal("row", path)]
        all_columns = list(own)
        for c, value in enumerate(rng.choices(sorted(text.values), k=6)):
            parent = common(path, value)
            column = dict(rng.choice(KINDS), NAME=f"c{c}", PATH=shown(value))
            if parent == value:
                continue  # a scalar where the table has a container
            if parent == path:
                all_columns.append(column)
                own.append(column)
                continue
            option = rng.choice([{}, {"OPTIONS": ["RETAIN"]}])  # without effect
            all_columns.append(dict(column, **option))
            own.append(ordinal(f"of_c{c}", parent))
            of = f"u{t}_{c}"
            joined.append(table(of, value[:-1], [ordinal("parent", parent), column]))
            joins.append((f"t{t}", f"c{c}", of))
        rng.shuffle(all_columns)
        carried.append(table(f"t{t}", path, all_columns))
        joined.append(table(f"t{t}", path, own))
    return carried, joined, joins


def convert(tool, folder, tables, options):
    (folder / "map.json").write_text(json.dumps({"DATASETS": tables}))
    out = folder / "out"
    done = subprocess.run([tool, "convert", folder / "doc.json", "--map", folder / "map.json", "-o", out,
                           "--force", "--format", "ndjson", "-q", *options], capture_output=True, text=True)
    if done.returncode > 1:
        sys.exit(f"{folder}: exit code {done.returncode}: {done.stderr}")
    lines = lambda file: [json.loads(line) for line in file.read_text().splitlines()]
    return {t["DSNAME"]: lines(out / (t["DSNAME"] + ".ndjson")) for t in tables}


def by_join(tables, joins):
    """The rows of the tables with the values of their parents, the last of each."""
    database = sqlite3.connect(":memory:")
    database.execute("CREATE TABLE child (n, t, c, parent)")
    database.execute("CREATE TABLE parent (n INTEGER PRIMARY KEY, t, ordinal, value)")
    database.execute("CREATE INDEX parents ON parent (t, ordinal)")
    for t, c, of in joins:
        database.executemany("INSERT INTO child VALUES (?, ?, ?, ?)",
                             [(n, t, c, row.pop("of_" + c)) for n, row in enumerate(tables[t])])
        database.executemany("INSERT INTO parent (t, ordinal, value) VALUES (?, ?, ?)",
                             [(f"{t}.{c}", row["parent"], json.dumps(row[c])) for row in tables[of] if c in row])
    query = """SELECT child.n, child.t, child.c, value, max(parent.n)
               FROM child JOIN parent ON parent.t = child.t || '.' || child.c AND ordinal = child.parent
               GROUP BY child.n, child.t, child.c"""
    values = 0
    for n, t, c, value, _ in database.execute(query):
        tables[t][n][c] = json.loads(value)
        values += 1
    return values


def main(tool, documents):
    values = rows = 0
    for seed in range(documents):
        rng = random.Random(seed)
        # The last one has records for several blocks.
        text = Text(rng, 3 if seed + 1 < documents else 6000)
        if not text.values:
            continue
        carried, joined, joins = random_maps(rng, text)
        options = rng.choice([[], ["--compress"], ["--threads", "1"], ["--threads", "1", "--compress"]])
        with tempfile.TemporaryDirectory() as name:
            folder = Path(name)
            (folder / "doc.json").write_text(text.text)
            found = convert(tool, folder, carried, ["--carry", *options])
            expected = convert(tool, folder, joined, [])
        values += by_join(expected, joins)
        for t in found:
            rows += len(found[t])
            if found[t] != expected[t]:
                bad = [n for n, (a, b) in enumerate(zip(found[t], expected[t])) if a != b]
                sys.exit(f"seed {seed}, table {t}, {len(found[t])} and {len(expected[t])} rows, "
                         f"differences in {bad[:5]}:\n{text.text[:2000]}\n{json.dumps(carried)}\n"
                         f"{[(found[t][n], expected[t][n]) for n in bad[:2]]}")
    print(f"{documents} documents, {rows} rows, {values} values of parents")
    if documents >= 100 and values < 1000:
        sys.exit("too few values of parents to say anything")


if __name__ == "__main__":
    main(sys.argv[1], int(sys.argv[2]) if len(sys.argv) > 2 else 150)
