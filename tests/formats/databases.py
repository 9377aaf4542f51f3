#!/usr/bin/env python3
"""SQLite and PostgreSQL have what the document has: cells, types, keys, views; or nothing when something fails.

The rows are compared with the NDJSON output (which conformance.py compares with the document), keys with
datapackage.json, types with what the values themselves say.

    databases.py QVEJMAP SOURCE      SOURCE: the project; real documents are in SOURCE/../shared/data
"""

import glob
import hashlib
import json
import os
import random
import re
import resource
import signal
import sqlite3
import subprocess
import sys
import tempfile
import time
from datetime import datetime
from decimal import Decimal

TOOL, SOURCE = map(os.path.abspath, sys.argv[1:])
sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import postgres_server  # noqa: E402

REAL = ["github_events.json", "twitter.json", "instruments.json", "tree-pretty.json", "apache_builds.json"]


class Digits(str):
    """A number as it is written."""


def tool(*words, code=0):
    """What the tool says; it must end with that code."""
    ended = subprocess.run([TOOL, *words], capture_output=True, text=True)
    assert ended.returncode == code, (words, ended.returncode, ended.stderr)
    return ended.stderr


def write(name, text):
    with open(name, "w") as file:
        file.write(text)
    return name


# ---- the two databases, by readers that are not ours ----

class Sqlite:
    name = "sqlite"

    def __init__(self, address):
        self.address = address

    def sql(self, text):
        with sqlite3.connect(self.address) as database:
            rows = [[*row] for row in database.execute(text)]
        database.close()
        return rows

    def tables(self):
        return {name for (name,) in self.sql("SELECT name FROM sqlite_schema WHERE type = 'table'")}

    def rows(self, table):
        return self.sql(f"SELECT * FROM {quoted(table)} ORDER BY rowid")

    def keys(self, table):
        primary = [c[1] for c in self.sql(f"SELECT * FROM pragma_table_info({literal(table)})") if c[5]]
        return primary, [[k[3], k[2], k[4]] for k in self.sql(f"SELECT * FROM pragma_foreign_key_list({literal(table)})")]

    def indexed(self, table):
        return {c for (c,) in self.sql(f"""SELECT c.name FROM pragma_index_list({literal(table)}) i,
                                           pragma_index_info(i.name) c""")}

    def broken(self):
        return self.sql("SELECT * FROM pragma_foreign_key_check")

    @staticmethod
    def stored(cell, type_):
        if cell is None:
            return None
        if type_ in ("BOOLEAN", "BIGINT"):
            return int(cell)
        return float(cell) if type_ == "DOUBLE" else str(cell)

    same = staticmethod(lambda a, b: type(a) is type(b) and str(a) == str(b))  # -0.0 is not 0.0


class Postgres:
    name = "postgres"

    def __init__(self, server, schema):
        self.server, self.schema, self.address = server, schema, server.address

    def sql(self, text):
        return self.server.sql(f"SET search_path TO {quoted(self.schema)}; SET timezone TO 'UTC'; {text}")

    def tables(self):
        return {name for (name,) in self.sql(f"SELECT tablename FROM pg_tables WHERE schemaname = {literal(self.schema)}")}

    def rows(self, table):
        return self.sql(f"SELECT * FROM {quoted(table)} ORDER BY ctid")

    def keys(self, table):
        found = {kind: self.sql(f"""
            SELECT a.attname, f.relname, fa.attname FROM pg_constraint k JOIN pg_class c ON c.oid = k.conrelid
            JOIN pg_attribute a ON a.attrelid = k.conrelid AND a.attnum = ANY (k.conkey) LEFT JOIN pg_class f ON f.oid = k.confrelid
            LEFT JOIN pg_attribute fa ON fa.attrelid = k.confrelid AND fa.attnum = ANY (k.confkey)
            WHERE k.connamespace = (SELECT oid FROM pg_namespace WHERE nspname = current_schema()) AND c.relname = {literal(table)} AND k.contype = '{kind}'""")
            for kind in "pf"}
        return [k[0] for k in found["p"]], found["f"]

    def indexed(self, table):
        return {c for (c,) in self.sql(f"""
            SELECT a.attname FROM pg_index i JOIN pg_class c ON c.oid = i.indrelid JOIN pg_attribute a
            ON a.attrelid = i.indrelid AND a.attnum = ANY (i.indkey) WHERE c.relname = {literal(table)}
            AND c.relnamespace = (SELECT oid FROM pg_namespace WHERE nspname = current_schema()) AND NOT i.indisprimary""")}

    def broken(self):
        return self.sql("SELECT conname FROM pg_constraint WHERE NOT convalidated")

    @staticmethod
    def stored(cell, type_):
        if cell is None:
            return None
        if type_ == "BOOLEAN":
            return "t" if cell else "f"
        if type_ == "BIGINT":
            return str(int(cell))
        if type_ == "DOUBLE":
            return float(cell)
        if type_.startswith("DECIMAL"):
            return Decimal(cell)
        if type_.startswith("TIMESTAMP") and not re.match(r"TIMESTAMP\([789]\)", type_):
            text = cell.removesuffix("Z").replace("T", " ")
            text += ":00" if text.count(":") == 1 else ""
            text = text.rstrip("0").rstrip(".") if "." in text else text
            return text + ("+00" if type_.endswith("UTC") else "")
        return str(cell)

    @staticmethod
    def same(found, expected):
        if isinstance(expected, float) and found is not None:
            return str(float(found)) == str(expected)
        return Decimal(found) == expected if isinstance(expected, Decimal) and found is not None else found == expected


def quoted(name):
    return '"' + name.replace('"', '""') + '"'


def literal(text):
    return "'" + text.replace("'", "''") + "'"


# ---- what is expected ----

TIME = r"\d{4}-\d\d-\d\dT\d\d:\d\d(:\d\d(\.\d{1,9})?)?"


def is_time(text, pattern):
    """Does it look so, and is it in the calendar?"""
    try:
        return bool(re.fullmatch(pattern, text) and datetime.fromisoformat(re.sub(r"\.\d+|Z$", "", text)))
    except ValueError:
        return False


def expected_type(cells):
    """The type of a column, its parameters apart, from its values."""
    cells = [c for c in cells if c is not None]
    if not cells:
        return "TEXT"
    if all(isinstance(c, bool) for c in cells):
        return "BOOLEAN"
    if all(isinstance(c, Digits) for c in cells):
        if all(re.fullmatch(r"-?\d+", c) and c != "-0" and -2**63 <= int(c) < 2**63 for c in cells):
            return "BIGINT"
        if all(abs(float(c)) != float("inf") and Decimal(repr(float(c))) == Decimal(c) for c in cells):
            return "DOUBLE"
        digits = [Decimal(c).as_tuple() for c in cells]
        fraction = max(max(0, -Decimal(c).normalize().as_tuple().exponent) if Decimal(c) else 0 for c in cells)
        whole = max(max(0, len(d.digits) + d.exponent) for d in digits)
        return "DECIMAL" if whole + fraction <= 38 and not any(Decimal(c) == 0 and c[0] == "-" for c in cells) else "TEXT"
    for pattern, name in (r"\d{4}-\d\d-\d\d", "DATE"), (TIME + "Z", "TIMESTAMP"), (TIME, "TIMESTAMP"):
        if all(not isinstance(c, (bool, Digits)) and is_time(c, pattern) for c in cells):
            return name
    return "TEXT"


def read_folder(folder):
    """Tables of an NDJSON output: name, columns, rows of cells, keys."""
    with open(folder + "/datapackage.json") as file:
        resources = json.load(file)["resources"]
    titles = {r["name"]: r["title"] for r in resources}
    for r in resources:
        names = [f["name"] for f in r["schema"]["fields"]]
        with open(folder + "/" + r["path"], newline="\n") as lines:
            rows = [json.loads(line, parse_int=Digits, parse_float=Digits) for line in lines]
        keys = [r["schema"].get("primaryKey", []),
                [[k["fields"][0], titles[k["reference"]["resource"]], k["reference"]["fields"][0]]
                 for k in r["schema"].get("foreignKeys", [])]]
        yield r["title"], names, [[row.get(n) for n in names] for row in rows], keys


def compare(database, document, *options):
    """Converts both ways; the number of cells."""
    tool("convert", "-q", document, "-o", "nd", "--force", "--format", "ndjson", *options)
    where = ["--schema", database.schema] if database.name == "postgres" else ["--force"]
    tool("convert", "-q", document, "-o", database.address, *where, *options)
    cells = 0
    dictionary = {}
    for table, position, column, type_ in database.sql(
            "SELECT table_name, position, column_name, type FROM qvejmap_columns ORDER BY table_name, position"):
        dictionary.setdefault(table, []).append((column, type_))
    views = dict(database.sql("SELECT table_name, joined FROM qvejmap_tables"))
    expected = [*read_folder("nd")]
    assert database.tables() == {table for table, *_ in expected} | {"qvejmap_tables", "qvejmap_columns"}, document
    for table, names, rows, keys in expected:
        assert [c for c, _ in dictionary[table]] == names, (document, table)
        types = [t for _, t in dictionary[table]]
        for i, type_ in enumerate(types):
            should = expected_type([row[i] for row in rows])
            assert re.sub(r"[( ].*", "", type_) == should, (document, table, names[i], type_, should)
        found = database.rows(table)
        assert len(found) == len(rows), (document, table, len(found), len(rows))
        for row, other in zip(rows, found):
            for name, type_, cell, there in zip(names, types, row, other, strict=True):
                wanted = database.stored(cell, type_)
                assert database.same(there, wanted), (document, table, name, type_, cell, there)
                cells += 1
        assert [*map(list, database.keys(table))] == keys, (document, table, database.keys(table), keys)
        if keys[1]:
            assert keys[1][0][0] in database.indexed(table), (document, table)
        if views[table]:
            assert database.sql(f"SELECT count(*) FROM {quoted(views[table])}") == \
                database.sql(f"SELECT count(*) FROM {quoted(table)}"), (document, views[table])
    assert not database.broken()
    return cells


VALUES = {
    "whole": ["0", "7", "-3", "9223372036854775807", "-9223372036854775808"],
    "number": ["0.5", "-0", "1E5", "-2.5e-3", "-0.0", "1.10", "1e300"],
    "decimal": ["12345678901234567890", "0.10000000000000000001", "-1.5", "98765432109876543210.25", "0", "1e-4", "10000"],
    "huge": ["1e400", "-1e-999", "1"],
    "boolean": ["true", "false"],
    "date": ['"2024-02-29"', '"0001-01-01"', '"9999-12-31"'],
    "instant": ['"2024-02-29T13:05:00.25Z"', '"1969-12-31T23:59:59Z"', '"2024-02-29T13:05Z"'],
    "naive": ['"2024-02-29T13:05:00.123456"', '"0001-01-01T00:00"'],
    "fine": ['"2024-02-29T13:05:00.123456789Z"'],
    "text": ['""', '" "', '"a\\tb\\n\\r"', '"日本 🂡"', "\"'\\\"\\\\\"", '"2024-02-30"', '"true"', '"1.0"'],
    "null": ["null"],
}


def random_document(make):
    """Orders with parts that are there or not, columns of one kind or of several."""
    def members(count):
        kinds = {f"c{i}": [*make.sample(sorted(VALUES), make.choice([1, 1, 1, 2])), "null"] for i in range(count)}
        return lambda: [f'"{name}":' + make.choice(VALUES[make.choice(of)]) for name, of in kinds.items() if make.random() < 0.9]
    order, customer, item = members(5), members(2), members(3)
    orders = []
    for _ in range(make.randint(1, 12)):
        parts = order()
        if make.random() < 0.8:
            parts.append('"customer":{' + ",".join(customer()) + "}")
        parts.append('"items":[' + ",".join("{" + ",".join(item()) + "}" for _ in range(make.randint(0, 3))) + "]")
        orders.append("{" + ",".join(parts) + "}")
    return '{"orders":[' + ",".join(orders) + "]}"


def check_reading(make_database, count, real):
    make = random.Random(20240815)
    cells = 0
    for number in range(count):
        cells += compare(make_database(f"random {number}"), write("r.json", random_document(make)))
    assert cells > 80 * count, cells
    compare(make_database("one"), SOURCE + "/examples/orders.json")
    for name in real:
        if os.path.exists(path := SOURCE + "/../shared/data/" + name):
            assert compare(make_database(name), path) > 500, name
        else:
            print(f"{path} is not there, left out")


# ---- tables that are there ----

def lines(first, count):
    return "".join(
        json.dumps({"items": [{"sku": f"s{i}-{k}"} for k in range(i % 3)], "id": i, "v": i / 4, "who": {"name": f"n{i}"}}) + "\n"
        for i in range(first, first + count))


def all_rows(database):
    return {t: database.rows(t) for t in sorted(database.tables()) if t != "qvejmap_columns"}


def check_again(make_database):
    """Appending is as if the documents had been one; replacing leaves nothing of the first."""
    write("a.jsonl", lines(1, 5)), write("b.jsonl", lines(6, 7)), write("ab.jsonl", lines(1, 12))
    one, two = make_database("one go"), make_database("two goes")
    convert(one, "ab.jsonl"), convert(two, "a.jsonl")
    assert "already (--replace makes it anew" in convert(two, "b.jsonl", code=5)
    convert(two, "b.jsonl", "--append")
    assert all_rows(one) == all_rows(two)
    assert database_facts(one) == database_facts(two)
    convert(two, "a.jsonl", "--replace"), convert(one, "a.jsonl", "--replace")
    assert all_rows(one) == all_rows(two)
    assert len(two.rows("root")) == 5 and not two.broken()
    # A table that only the first had counts on, too.
    write("c.jsonl", '{"id":1}\n{"id":2}\n'), write("d.jsonl", '{"new":[{"x":1}]}\n{"new":[{"x":2}]}\n')
    three = make_database("three")
    convert(three, "c.jsonl"), convert(three, "d.jsonl", "--append", "--table", "*new")
    assert [row[:1] for row in three.rows("new")] in ([[3], [4]], [["3"], ["4"]]), three.rows("new")


def convert(database, *words, code=0):
    where = ["--schema", database.schema] if database.name == "postgres" else []
    return tool("convert", *words, "-o", database.address, *where, code=code)


def database_facts(database):
    return [[t, database.keys(t), database.indexed(t)] for t in sorted(database.tables())]


REFUSED = [
    ('{"a":1,"extra":2}', "root lacks columns of the document: extra"),
    ('{"a":"x"}', "root.a has the type"),
    ('{"a":1.5}', "root.a has the type"),
    ("{" + ",".join(f'"c{i}":{i}' for i in range(2001)) + "}", "root has 2,002 columns"),
]


def check_refusals(make_database):
    for number, (text, words) in enumerate(REFUSED):
        database = make_database(f"refused {number}")
        convert(database, write("a.json", '{"a":1}'))
        before = all_rows(database)
        said = convert(database, write("b.json", text), "--append", code=5)
        assert words in said, said
        assert all_rows(database) == before
    # What the column keeps goes in, as the document has it.
    for first, second, rows in [("1.5", "7", [1.5, 7.0]), ('"x"', "1.50", ["x", "1.50"]), ("1", "null", [1, None])]:
        database = make_database("wider " + first)
        convert(database, write("a.json", f'{{"a":{first}}}')), convert(database, write("b.json", f'{{"a":{second}}}'), "--append")
        found = [row[-1] for row in database.rows("root")]
        assert found == rows or found == [None if r is None else f"{r:g}" if isinstance(r, float) else str(r) for r in rows], found
    # A second customer: the view would have the order twice.
    database = make_database("not one to one")
    convert(database, write("a.json", '[{"id":1,"c":[{"n":1}]}]'))
    view = database.sql("SELECT joined FROM qvejmap_tables WHERE table_name = 'root'")
    said = convert(database, write("b.json", '[{"id":1,"c":[{"n":1},{"n":2}]}]'), "--append")
    assert view == [["root_joined"]] and "the view root_joined is gone" in said, (view, said)
    # A child without a parent, where the table demands one.
    said = convert(database, write("b.json", '[{"c":[{"n":1}]},{"c":[{"n":2}],"id":1}]'), "--append", "--table", "c", code=5)
    rows = {"sqlite": "2 rows of c", "postgres": "rows of c"}[database.name]
    assert f": {rows} would have no row in root, which a foreign key demands (convert both tables together" in said, said
    assert database.name == "sqlite" or "Key (ordinal_root)=(3) is not present" in said, said

    # The same name, but of another path; the same path under another name.
    for first, second, words in [
        ('{"p":{"x":{"i":[{"v":1}]}}}', '{"x":{"i":[{"v":2}]}}', "x_i there is the table of /root/p/x/i, and here of /root/x/i"),
        ('{"p":{"x":{"i":[{"v":1}]}},"x":{"i":[{"v":2}]}}', '{"x":{"i":[{"v":2}]}}', "x_i"),
        ('{"o":[{"a":1}]}', '{"O":[{"a":1}]}', "of /root/o, and here of /root/O" if database.name == "sqlite" else None),
    ]:
        database = make_database("path " + first)
        convert(database, write("a.json", first))
        before = all_rows(database)
        if words is not None:
            said = convert(database, write("b.json", second), "--append", code=5)
            assert words in said and all_rows(database) == before, said
    # Tables that belong together are replaced together.
    database = make_database("replaced together")
    convert(database, write("a.json", '{"o":[{"id":1,"i":[{"s":"a"}]},{"id":2}]}'))
    before = all_rows(database)
    for part in "o", "o_i":
        said = convert(database, "a.json", "--replace", "--table", part, code=5)
        assert "rows of o_i belong to rows of o" in said and all_rows(database) == before, said
    convert(database, "a.json", "--replace")
    # A row without what the table has as its primary key, by a map that has another ordinal last.
    database = make_database("no key")
    write("own.map", '{"DATASETS":[{"DSNAME":"t","TABLEPATH":"/root/o","VARIABLES":'
          '[{"NAME":"n","TYPE":"ORDINAL","PATH":"/root/o/i"},{"NAME":"a","TYPE":"NUMERIC","PATH":"/root/o/a"}]}]}')
    convert(database, write("a.json", '{"o":[{"a":1,"i":{"x":1}},{"a":2,"i":{"x":1}}]}'), "--map", "own.map")
    said = convert(database, write("b.json", '{"o":[{"a":1},{"a":2,"i":{"x":1}}]}'), "--map", "own.map", "--append", code=5)
    assert "t.n is the primary key, and a row of the document has none" in said, said
    # Ordinals that are no numbers there cannot go on.
    database = make_database("ordinals as texts")
    write("own.map", '{"DATASETS":[{"DSNAME":"o","TABLEPATH":"/root/o","VARIABLES":'
          '[{"NAME":"ordinal_root","TYPE":"CHARACTER","PATH":"/root/o/x"},{"NAME":"ordinal_o","TYPE":"ORDINAL","PATH":"/root/o"}]}]}')
    convert(database, write("a.json", '{"o":[{"x":"1"}]}'), "--map", "own.map")
    said = convert(database, write("b.json", '{"o":[{}]}'), "--append", code=5)
    assert "o.ordinal_root has the type" in said, said
    # The dictionary says what the values are, of both documents.
    if database.name == "sqlite":
        for first, second, type_ in [('"2024-02-29"', '"soon"', "TEXT"), ('"2024-02-29"', '"2024-02-29T00:00Z"', "TEXT"),
                                     ("5", "true", "BIGINT"), ("true", "5", "BIGINT"), ("1.5", "7", "DOUBLE"),
                                     ("5", "6", "BIGINT")]:
            database = make_database(f"{first} and {second}")
            convert(database, write("a.json", f'{{"a":{first}}}'))
            convert(database, write("b.json", f'{{"a":{second}}}'), "--append")
            assert database.sql("SELECT type FROM qvejmap_columns WHERE column_name = 'a'") == [[type_]], (first, second)


def check_names(database):
    long = "x" * 70
    text = '{"Orders":[{"a":1,"A":2,"xmin":5,"' + long + '1":6,"' + long + '2":7}],"orders":[{"b":1}],"sqlite_x":[{"c":1}]}'
    said = convert(database, write("n.json", text), "--naming", "original")
    assert "names differ, since" in said, said
    found = {t: [c for (c,) in database.sql(f"SELECT column_name FROM qvejmap_columns WHERE table_name = {literal(t)} ORDER BY position")]
             for t in database.tables() if not t.startswith("qvejmap")}
    if database.name == "sqlite":
        assert set(found) == {"Orders", "orders~2", "_sqlite_x"}, found
        assert found["Orders"][2:] == ["a", "A~2", "xmin", long + "1", long + "2"], found
    else:
        assert set(found) == {"Orders", "orders", "sqlite_x"}, found
        assert found["Orders"][2:] == ["a", "A", "xmin~2", "x" * 63, "x" * 61 + "~2"], found


# ---- failures ----

def digest(name):
    with open(name, "rb") as file:
        return hashlib.sha256(file.read()).hexdigest()


def check_sqlite_failures():
    write("small.json", '{"o":[{"v":1}]}')
    write("big.json", '{"big":[' + ",".join(f'{{"v":"{i:0200}"}}' for i in range(60000)) + "]}")
    tool("convert", "small.json", "-o", "old.db", "-q")
    before, rows = digest("old.db"), all_rows(Sqlite("old.db"))

    def short():
        signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
        resource.setrlimit(resource.RLIMIT_FSIZE, (4 << 20, 4 << 20))

    for target in "old.db", "new.db":
        ended = subprocess.run([TOOL, "convert", "big.json", "-o", target], preexec_fn=short, capture_output=True, text=True)
        assert ended.returncode == 5 and target + ": " in ended.stderr, (target, ended)
        assert sorted(glob.glob("*.db*") + glob.glob(".qvejmap*")) == ["old.db"], os.listdir()
        assert digest("old.db") == before, target
    for target, number in ("old.db", signal.SIGTERM), ("old.db", signal.SIGKILL), ("new.db", signal.SIGTERM), ("new.db", signal.SIGINT):
        process = subprocess.Popen([TOOL, "convert", "big.json", "-o", target], stderr=subprocess.PIPE, text=True)
        size = lambda: sum(os.path.getsize(f) for f in [*glob.glob(".qvejmap*"), *glob.glob("*.db")] if os.path.exists(f))
        while size() < (3 << 20) and process.poll() is None:
            time.sleep(0.001)
        process.send_signal(number)
        said = process.communicate()[1]
        assert process.returncode == -number, (target, number, process.returncode, said)
        assert number == signal.SIGKILL or f"interrupted: {target} is as it was" in said, said
        assert all_rows(Sqlite("old.db")) == rows, (target, number)  # opening it takes back what was begun
        assert digest("old.db") == before, (target, number)
        assert sorted(glob.glob("*.db*") + glob.glob(".qvejmap*")) == ["old.db"], os.listdir()
    write("text.db", "no database, though it has that name\n" * 100)
    assert "text.db: file is not a database" in tool("convert", "small.json", "-o", "text.db", code=5)


def check_pages():
    """Pages are large where tables fill many of them, and small where each would be mostly empty."""
    for count, size in (999, 4096), (1000, 16384):
        convert(Sqlite(f"pages{count}.db"), write("pages.jsonl", '{"a":1,"b":{"c":2}}\n' * count))
        assert Sqlite(f"pages{count}.db").sql("PRAGMA page_size") == [[size]], count


def check_postgres_failures(server):
    database = Postgres(server, "failures")
    convert(database, write("small.json", '{"o":[{"v":1}]}'))
    rows = all_rows(database)
    write("nul.json", '{"t":[' + '{"v":"x"},' * 100 + '{"v":"\\u0000"}]}')
    assert "t.v has a text with U+0000" in convert(database, "nul.json", code=5)
    assert all_rows(database) == rows
    write("big.json", '{"big":[' + ",".join(f'{{"v":"{i:0200}"}}' for i in range(60000)) + "]}")
    process = subprocess.Popen([TOOL, "convert", "big.json", "-o", database.address, "--schema", "failures"],
                               stderr=subprocess.PIPE, text=True)
    while server.sql("SELECT 1 FROM pg_stat_activity WHERE query LIKE 'COPY%'") == [] and process.poll() is None:
        pass
    process.terminate()
    said = process.communicate()[1]
    assert process.returncode == -signal.SIGTERM and "is as it was" in said, said
    assert all_rows(database) == rows
    for address in "tester:secret@/none?", "/none?user=tester&password=secret&":
        said = tool("convert", "small.json", "-o", f"postgresql://{address}host={server.place}", code=5)
        assert "tester" in said and "secret" not in said, said


def check_copies(server):
    """Rows of several tables go to the server many at a time, also after the first of them had to."""
    rows = ",".join('{"id":%d,"a":[{"text":"%s"}],"b":[{"text":"%s"}]}' % (i, "x" * 100, "y" * 100) for i in range(20000))
    server.sql("ALTER DATABASE postgres SET log_statement = 'all'")
    tool("convert", write("copies.json", "[" + rows + "]"), "-o", server.address, "--memory", "64M", "--replace")
    server.sql("ALTER DATABASE postgres RESET log_statement")
    with open(server.place + "/log") as log:
        copies = len(re.findall(r"statement: COPY .* FROM STDIN", log.read()))
    assert 3 < copies < 30, copies


def main():
    paths = iter(range(1000))
    check_reading(lambda name: Sqlite(f"d{next(paths)}.db"), 40, REAL)
    check_again(lambda name: Sqlite(f"d{next(paths)}.db"))
    check_refusals(lambda name: Sqlite(f"d{next(paths)}.db"))
    check_names(Sqlite("names.db"))
    subprocess.run("rm -f *.db", shell=True, check=True)
    check_sqlite_failures()
    check_pages()
    if postgres_server.programs() is None:
        print("PostgreSQL is not installed (scripts/packages-test), left out")
        return
    with postgres_server.Server() as server:
        check_reading(lambda name: Postgres(server, name), 12, REAL[-1:])
        check_again(lambda name: Postgres(server, name + " again"))
        check_refusals(lambda name: Postgres(server, name))
        check_names(Postgres(server, "names"))
        check_postgres_failures(server)
        check_copies(server)


with tempfile.TemporaryDirectory(prefix="qvejmap-databases-") as place:
    os.chdir(place)
    main()
