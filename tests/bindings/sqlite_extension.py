#!/usr/bin/python3
"""The extension of SQLite has the tables that `convert` writes, and answers every query as those do.

    sqlite_extension.py QVEJMAP EXTENSION SOURCE    real documents are in SOURCE/../shared/data

Ends with 77 when this Python's sqlite3 loads no extensions.
"""

import gzip
import json
import os
import random
import shutil
import sqlite3
import subprocess
import sys
import tempfile
import threading

TOOL, EXTENSION, SOURCE = map(os.path.abspath, sys.argv[1:])
REAL = ["github_events.json", "twitter.json", "instruments.json", "apache_builds.json"]

ORDERS = {"orders": [{"id": i, "when": f"2024-01-{i + 1:02}", "ship": {"to": "x" * i},
                      "items": [{"sku": f"s{i}{j}", "n": j, "tags": [{"t": j}] * (j % 3)} for j in range(i % 4)]}
                     for i in range(25)]}

# Name, text, options as the tool has them and as the extension has them.
DOCUMENTS = [
    ("orders", json.dumps(ORDERS), [], []),
    ("types", """[{"b": true, "i": 1, "d": 1.5, "z": -0.0, "t": "x", "n": null, "big": 12345678901234567890123,
                   "day": "2024-02-29", "at": "2024-02-29T10:00:00Z", "mixed": 1, "f": 1e300, "e": ""},
                  {"b": false, "i": -9223372036854775808, "d": 2.0, "z": 0, "t": "\u00e9\u4e16", "day": "1999-01-01",
                   "at": "1999-01-01T00:00:00Z", "mixed": "y", "big": 0.1, "b2": {"c": {}}}]""", [], []),
    ("names", '{"a": [{"select": 1, "Select": 2, "a\\"b": 3}], "A": [{"x": 1}], "sqlite_x": [{"y": 1}]}',
     ["--naming", "original"], ["naming=original"]),
    ("rows", '{"a": 1}\n{"a": 2, "s": [{"v": 1}]}\n', ["--lines"], ["lines=1"]),
    ("latin", '{"rows": [{"t": "\xe9"}]}'.encode("latin-1"), ["--encoding", "latin1"], ["encoding=latin1"]),
    ("shaped", json.dumps({"by_day": {f"2024-01-{d:02}": {"n": d, "m": d * 2} for d in range(1, 30)}}),
     ["--shape", "auto"], ["shape=auto"]),
    ("budget", json.dumps(ORDERS), [], ["memory=2G", "threads=2"]),
]

failures = []


def expect(condition, *what):
    if not condition:
        failures.append(what)
        print("FAILED:", *what)


def write(name, text):
    with open(name, "wb") as file:
        file.write(text if isinstance(text, bytes) else text.encode())
    return name


def connect():
    connection = sqlite3.connect(":memory:", isolation_level=None, check_same_thread=False)
    connection.enable_load_extension(True)
    connection.load_extension(EXTENSION)
    return connection


def converted(file, *options):
    target = file + ".db"
    if os.path.exists(target):
        os.remove(target)
    subprocess.run([TOOL, "convert", file, "-o", target, "--quiet", *options], check=True)
    return sqlite3.connect(target)


def quoted(name):
    return '"' + name.replace('"', '""') + '"'


def cells(rows):
    """Values with their types; -0.0 is not 0.0."""
    return [[repr(value) for value in row] for row in rows]


def tables_of(database):
    return [name for (name,) in database.execute(
        "SELECT name FROM sqlite_schema WHERE type = 'table' AND name NOT LIKE 'qvejmap\\_%' ESCAPE '\\' ORDER BY rowid")]


def declared(database, table):
    return [(c[1], c[2]) for c in database.execute(f"PRAGMA table_info({quoted(table)})")]


def message(connection, sql, *arguments):
    try:
        connection.execute(sql, arguments).fetchall()
    except sqlite3.Error as error:
        return str(error)
    return "no error"


# ---- the same tables, column by column and cell by cell ----

def same_tables(file, tool_options, options):
    database, connection = converted(file, *tool_options), connect()
    arguments = [file, *options]
    marks = ", ".join("?" * len(arguments))
    count = connection.execute(f"SELECT qvejmap_attach({marks})", arguments).fetchone()[0]
    names = tables_of(database)
    expect(count == len(names) > 0, file, "attached", count, names)
    listed = connection.execute(f"SELECT name, rows, columns, key FROM qvejmap_tables({marks})", arguments).fetchall()
    columns = connection.execute(f'SELECT "table", name, type FROM qvejmap_columns({marks}) ORDER BY rowid', arguments).fetchall()
    expect(sorted(row[0] for row in listed) == sorted(names), file, "lists", listed, names)
    for name, rows, width, key in listed:
        expected = cells(database.execute(f"SELECT * FROM {quoted(name)} ORDER BY rowid"))
        found = cells(connection.execute(f"SELECT * FROM {quoted(name)}"))
        expect(found == expected, file, name, "differs at",
               next((pair for pair in zip(found, expected) if pair[0] != pair[1]), (len(found), len(expected))))
        there = declared(database, name)
        expect(declared(connection, name) == there, file, name, "is declared in another way")
        expect([(c, t) for table, c, t in columns if table == name] == there, file, name, "has other columns in the list")
        primary = [c[1] for c in database.execute(f"PRAGMA table_info({quoted(name)})") if c[5]]
        expect((rows, width, [key] if key else []) == (len(expected), len(there), primary), file, name, "facts")
    return database, connection


def documents():
    for name, text, tool_options, options in DOCUMENTS:
        same_tables(write(name + ".json", text), tool_options, options)
    real = [file for file in (os.path.join(SOURCE, "../shared/data", name) for name in REAL) if os.path.exists(file)]
    for file in real:
        shutil.copy(file, "real.json")
        same_tables("real.json", [], [])
    print(len(DOCUMENTS), "documents and", len(real), "real ones have the tables of convert")


def user_map():
    text = subprocess.run([TOOL, "map", "orders.json"], capture_output=True, check=True).stdout
    mark = b"\xef\xbb\xbf"
    write("map.json", mark + text.replace(b'"orders_items"', b'"MINE"'))
    _, connection = same_tables("orders.json", ["--map", "map.json"], ["map=map.json"])
    expect(connection.execute("SELECT count(*) FROM mine").fetchone()[0] > 0, "a table of the map")
    for text, place in [("{\n wrong", "map.json:2:2: "), ("", "map.json:1:")]:
        write("map.json", text)
        found = message(connection, "SELECT qvejmap_attach('orders.json', 'map=map.json', 'prefix=p_')")
        expect(found.startswith(place), "a mistake in a map has its place:", found)
    write("rules.txt", mark + b"drop /root/orders/when\n")
    same_tables("orders.json", ["--shape", "rules.txt"], ["shape=rules.txt"])


# ---- queries: random ones, with the same answer from a database ----

ORDINALS = {"orders": ["ordinal_root", "ordinal_orders"], "orders_items": ["ordinal_orders", "ordinal_items"],
            "items_tags": ["ordinal_items", "ordinal_tags", "ordinal_orders"]}


def condition(rng, table, prefix=""):
    column = prefix + rng.choice(ORDINALS[table])
    value = rng.choice([str(rng.randrange(-1, 60)), str(rng.randrange(60)), f"{rng.randrange(40)}.5", f"'{rng.randrange(9)}'",
                        "'x'", "NULL", "1e300", "-1e300", "9223372036854775807"])
    kind = rng.randrange(8)
    if kind == 0:
        return f"{column} BETWEEN {rng.randrange(30)} AND {rng.randrange(60)}"
    if kind == 1:
        return f"{column} IN ({', '.join(str(rng.randrange(40)) for _ in range(4))})"
    if kind == 2:
        return f"({column} > {rng.randrange(30)} AND {column} <= {rng.randrange(50)} AND {column} <> 7)"
    return f"{column} {rng.choice(['=', '=', '<', '<=', '>', '>='])} {value}"


def random_query(rng):
    table = rng.choice(list(ORDINALS))
    where = " AND ".join(condition(rng, table) for _ in range(rng.randrange(1, 3)))
    own = {"orders": "ordinal_orders", "orders_items": "ordinal_items", "items_tags": "ordinal_tags"}[table]
    down = rng.choice(["", "DESC"])
    kind = rng.randrange(6)
    if kind == 5:
        return (f"SELECT x.sku, y.sku FROM orders_items x {rng.choice(['', 'LEFT'])} JOIN orders_items y USING (ordinal_orders) "
                f"WHERE {condition(rng, 'orders_items', 'x.')} ORDER BY x.ordinal_items, y.ordinal_items")
    if kind == 0:
        return f"SELECT * FROM {table} WHERE {where} ORDER BY {own} {down} LIMIT {rng.randrange(1, 9)} OFFSET {rng.randrange(3)}"
    if kind == 1:
        return (f"SELECT o.id, i.sku, t.t FROM orders o {rng.choice(['', 'LEFT'])} JOIN orders_items i USING (ordinal_orders) "
                f"{rng.choice(['', 'LEFT'])} JOIN items_tags t USING (ordinal_items) WHERE {condition(rng, 'orders', 'o.')} ORDER BY 1, 2, 3")
    if kind == 2:
        return (f"SELECT a.id, (SELECT count(*) FROM orders_items b WHERE b.ordinal_orders {rng.choice(['=', '<', '>='])} a.ordinal_orders) "
                f"FROM orders a WHERE {condition(rng, 'orders', 'a.')} ORDER BY a.ordinal_orders {down}")
    if kind == 3:
        return "SELECT i.sku, o.id FROM orders_items i, orders o ON o.ordinal_orders = i.ordinal_orders ORDER BY i.n, i.sku DESC, o.id"
    return f"SELECT * FROM {table} WHERE {where} ORDER BY {own}"


def queries(count):
    database, connection = same_tables("orders.json", [], [])
    rng = random.Random(7)
    filled = 0
    for _ in range(count):
        sql = random_query(rng)
        expected, found = cells(database.execute(sql)), cells(connection.execute(sql))
        filled += bool(expected)
        expect(found == expected, sql, len(found), "rows for", len(expected))
    expect(filled > count / 3, "few queries have rows:", filled)
    for order, sorts in [("ordinal_items, n", False), ("ordinal_items DESC", True), ("n", True), ("ordinal_orders", True)]:
        plan = list(connection.execute("EXPLAIN QUERY PLAN SELECT * FROM orders_items ORDER BY " + order))
        expect(len(plan) == 1 + sorts, "sorting by", order, plan)
    print(count, "random queries,", filled, "with rows")


def odd_ordinals():
    """Ordinals that repeat, or are missing, in rows that no object of their own makes."""
    text = ('{"a": [{"k": 1, "b": {"c": {"v": 1}}}, {"v0": {"k": 2}}, {"b": {"c": {"v": 3}}}, {"b": {"x": 4, "c": {"v": 5}}}],'
            ' "n": {"m": [1, 2]}, "p": [[{"q": 1}, {"q": 2}], [{"q": 3}], [], [7, {"q": 4}]], "z": [{"y": [{"w": 1}]}, {"w": 2}]}')
    write("odd.json", text)
    # The ordinal of this map counts other rows, so that it repeats.
    write("other.json", '{"orders": [{"id": 2, "items": [{"sku": "a"}]}, {"id": 3}, {"id": 4, "items": [{"sku": "b"}, {"sku": "c"}]}, {"id": 5}]}')
    write("other_map.json", """{"DATASETS": [{"DSNAME": "t", "TABLEPATH": "/root/orders", "VARIABLES": [
        {"NAME": "o", "TYPE": "ORDINAL", "PATH": "/root/orders/items"}, {"NAME": "id", "TYPE": "NUMERIC", "PATH": "/root/orders/id"}]}]}""")
    for file, tool_options, options in [("odd.json", [], []), ("other.json", ["--map", "other_map.json"], ["map=other_map.json"])]:
        database, connection = same_tables(file, tool_options, options)
        for table in tables_of(database):
            for column, _ in declared(database, table):
                for sql in (f"SELECT * FROM {quoted(table)} WHERE {quoted(column)} {op} {value} ORDER BY 1, 2"
                            for op in ("=", "<=", ">") for value in range(5)):
                    expect(sorted(cells(connection.execute(sql))) == sorted(cells(database.execute(sql))), file, sql)


# ---- walks: a large file is not read more often than it must ----

def bytes_read():
    with open("/proc/self/io", encoding="ascii") as io:
        return int(io.readline().split()[1])


def walks():
    orders = [{"id": i, "pad": "p" * 200, "items": [{"sku": f"{i}-{j}", "pad": "q" * 60} for j in range(3)]} for i in range(40000)]
    size = os.path.getsize(write("large.json", json.dumps({"orders": orders})))
    connection = connect()
    connection.execute("SELECT qvejmap_attach('large.json')")

    def times_read(sql, expected):
        before = bytes_read()
        found = connection.execute(sql).fetchall()
        expect(found == expected, sql, found[:3])
        return (bytes_read() - before) / size

    everything = times_read("SELECT count(*), sum(length(sku)) FROM orders_items",
                            [(120000, sum(len(i["sku"]) for o in orders for i in o["items"]))])
    expect(0.9 < everything < 1.5, "a walk reads the file", everything, "times")
    # Whether other ordinals than the own one ascend is known after a walk.
    times_read("SELECT sku FROM orders_items WHERE ordinal_orders = -5", [])
    for sql, expected, most in [
        ("SELECT id FROM orders WHERE ordinal_orders = 7", [(6,)], 0.9),
        ("SELECT sku FROM orders_items WHERE ordinal_orders = 7", [("6-0",), ("6-1",), ("6-2",)], 0.9),
        ("SELECT sku FROM orders_items ORDER BY ordinal_items LIMIT 1", [("0-0",)], 0.9),
        ("SELECT count(*), sum(id) FROM (SELECT id FROM orders_items CROSS JOIN orders USING (ordinal_orders) LIMIT 90)", [(90, 3 * sum(range(30)))], 1),
        ("SELECT count(*), sum(id) FROM (SELECT id FROM orders CROSS JOIN orders_items USING (ordinal_orders) LIMIT 90)", [(90, 3 * sum(range(30)))], 1),
        ("SELECT count(*), sum(id) FROM orders_items JOIN orders USING (ordinal_orders)", [(120000, 3 * sum(range(40000)))], 2.5),
        ("SELECT count(sku) FROM orders LEFT JOIN orders_items USING (ordinal_orders)", [(120000,)], 2.5),
    ]:
        read = times_read(sql, expected)
        expect(read < most, sql, "reads the file", read, "times")
        if read > most:
            return  # the next ones would take hours
    # Two walks of one table at once.
    one, other = connection.execute("SELECT id FROM orders"), connection.execute("SELECT id FROM orders WHERE ordinal_orders > 100")
    for i in range(300):
        expect((one.fetchone(), other.fetchone()) == ((i,), (i + 100,)), "two cursors at", i)
    one.close()
    other.close()


def ends():
    """Work that gives no row ends by an interrupt, long before it has read the file."""
    with open("end.json", "w", encoding="ascii") as file:
        file.write('{"orders": [{"id": 0}')
        for i in range(1, 800):
            file.write("".join(f', {{"id": {i * 1000 + j}, "pad": "{"p" * 120}"}}' for j in range(1000)))
        file.write('], "z": [{"y": 1}]}')
    with open("end.json", "rb") as plain, gzip.open("end.json.gz", "wb", 1) as packed:
        shutil.copyfileobj(plain, packed)
    read = connect()
    read.execute("SELECT qvejmap_attach('end.json')")
    for connection, sql in [
        (connect(), "SELECT qvejmap_attach('end.json')"),
        (connect(), "SELECT qvejmap_attach('end.json', 'threads=1', 'memory=1G')"),
        (connect(), "CREATE VIRTUAL TABLE temp.z USING qvejmap(end.json, table=z, shape=auto)"),
        (connect(), "CREATE VIRTUAL TABLE temp.z USING qvejmap(end.json.gz, table=z, shape=auto)"),
        (connect(), "SELECT * FROM qvejmap_tables('end.json')"),
        (connect(), "SELECT * FROM qvejmap_all('end.json') WHERE key = 'y'"),
        (read, "SELECT y FROM z"),
        (read, "SELECT id FROM orders WHERE ordinal_orders = 799000"),
        (read, "SELECT y FROM z WHERE ordinal_root = 1"),
    ]:
        begin = bytes_read()
        size = os.path.getsize("end.json.gz" if ".gz" in sql else "end.json")
        over = threading.Event()

        def interrupt():
            while bytes_read() < begin + size / 8 and not over.wait(0.001):
                pass
            connection.interrupt()

        thread = threading.Thread(target=interrupt)
        thread.start()
        found = message(connection, sql)
        over.set()
        thread.join()
        part = (bytes_read() - begin) / size
        expect(found == "interrupted" and part < 0.9, sql, found, "after", part, "of the file")
        made = connection.execute("SELECT count(*) FROM temp.sqlite_schema").fetchone()[0]
        expect(made == (2 if connection is read else 0), sql, "left", made, "tables")
    expect(read.execute("SELECT y, (SELECT id FROM orders WHERE ordinal_orders = 9) FROM z").fetchall() == [(1, 1007)], "after interrupts")


def all_values():
    connection = connect()
    connection.execute("SELECT qvejmap_attach('orders.json')")
    rows = connection.execute("SELECT path, key, kind, value, ordinals FROM qvejmap_all('orders.json') WHERE key = 'sku'").fetchall()
    expected = [("/root/orders/items/sku", "sku", "STRING", sku, f"[{r},{o},{i}]") for sku, r, o, i in connection.execute(
        "SELECT sku, ordinal_root, ordinal_orders, ordinal_items FROM orders_items WHERE sku IS NOT NULL")]
    expect(rows == expected and rows, "all values have the ordinals of their tables", rows[:2], expected[:2])
    write("kinds.json", '{"a": {"n": 1.50, "s": "x", "b": true, "z": null, "e": {}, "f": []}}')
    found = connection.execute("SELECT kind, value FROM qvejmap_all('kinds.json')").fetchall()
    expect(found == [("NUMBER", "1.50"), ("STRING", "x"), ("BOOLEAN", "true"), ("NULL", None)], "kinds", found)


# ---- what can go wrong ----

def errors():
    connection = connect()
    write("bad.json", '[{"id": 1},\n {"id":,2}]')
    write("late.json", '{"rows": [' + '{"a": 1},' * 1000 + '\n{"a": 2]}')
    write("wrong.txt", "drop /root/orders/when\nrow /root/orders\n")
    write("wide.json", json.dumps([{f"c{i}": i for i in range(3000)}]))
    connection.execute("SELECT qvejmap_attach('orders.json', 'prefix=there_')")
    table = "CREATE VIRTUAL TABLE temp.t USING qvejmap"
    for sql, expected in [
        ("SELECT qvejmap_attach('bad.json')", "bad.json:2:8: a value was expected"),
        ("SELECT * FROM qvejmap_all('bad.json')", "bad.json:2:8: a value was expected"),
        ("SELECT * FROM qvejmap_tables('late.json')", "late.json:2:8: "),
        (table + "('none.json', table=a)", "none.json: No such file or directory"),
        (table + "('-', table=a)", "tables are of files, not of standard input"),
        (table + "('orders.json', table=nope)", 'orders.json: there is no table "nope": it has orders, '),
        (table + "('orders.json')", "orders.json: table=NAME says which of its tables: orders, "),
        (table + "('orders.json', table)", '"table" is no option: name=value was expected'),
        (table + "('orders.json', tabel=orders)", 'no option is called "tabel": there are map, shape, '),
        (table + "('orders.json', table=orders, lines=yes)", "lines=yes: it is 0 or 1"),
        (table + "('orders.json', table=orders, naming=x)", "naming=x: it is map or original"),
        (table + "('orders.json', table=orders, memory=lots)", "memory=lots: a number was expected"),
        (table + "('orders.json', table=orders, memory='99999999999G')", "memory=99999999999G: a number was expected"),
        (table + "('orders.json', table=orders, threads=9999)", "threads=9999: there are 1024 at most"),
        (table + "('orders.json', table=orders, encoding=klingon)", "klingon"),
        (table + "('orders.json', table=orders, map=none.json)", "none.json: No such file or directory"),
        (table + "('orders.json', table=orders, shape=none.txt)", "none.txt: No such file or directory"),
        (table + "('orders.json', table=orders, shape=wrong.txt)", "wrong.txt:2:1: "),
        (table + "('orders.json', table=orders, map=-)", "tables are of files, not of standard input"),
        (table + "('orders.json', table=orders, shape='-')", "tables are of files, not of standard input"),
        (table + "('none.json', table=orders, shape=auto)", "none.json: No such file or directory"),
        (table + "('wide.json')", "columns, and SQLite takes 1 to 2,000"),
        (table, "a file was expected"),
        ("CREATE VIRTUAL TABLE main.t USING qvejmap('orders.json', table=orders)", "a database file keeps no tables of other files"),
        ("SELECT * FROM qvejmap", "no such table: qvejmap"),
        ("SELECT * FROM qvejmap_tables", "a file was expected"),
        ("SELECT * FROM qvejmap_all(NULL)", "a file was expected: qvejmap_all('orders.json')"),
        ("SELECT * FROM qvejmap_tables('orders.json', 'prefix=x')", 'no option is called "prefix"'),
        ("SELECT qvejmap_attach()", "a file was expected"),
        ("SELECT qvejmap_attach('orders.json', 'prefix=sqlite_')", "object name reserved for internal use: sqlite_orders"),
        ("DELETE FROM there_orders", "table there_orders may not be modified"),
        ("INSERT INTO there_orders(id) VALUES (1)", "table there_orders may not be modified"),
    ]:
        found = message(connection, sql)
        expect(expected in found, sql, "says:", found)
    # Views of a database file read no other files.
    connection.execute("CREATE VIEW main.v AS SELECT * FROM qvejmap_tables('orders.json')")
    expect("unsafe use of virtual table" in message(connection, "SELECT * FROM v"), "views")
    connection.execute("CREATE VIEW main.w AS SELECT qvejmap_attach('orders.json') AS n")
    expect("unsafe use of qvejmap_attach" in message(connection, "SELECT * FROM w"), "functions in views")


def all_or_none():
    connection = connect()

    def made():
        return connection.execute("SELECT count(*) FROM temp.sqlite_schema WHERE sql LIKE '%qvejmap%'").fetchone()[0]

    for make, where, drop in [("CREATE TABLE main.Orders_Items(a)", "main", "TABLE orders_items"),
                              ("CREATE TEMP TABLE items_TAGS(a)", "temp", "TABLE items_tags"),
                              ("CREATE VIEW main.orders AS SELECT 1", "main", "VIEW orders")]:
        connection.execute(make)
        found = message(connection, "SELECT qvejmap_attach('orders.json')")
        expect("there is a table" in found and f"in {where} already" in found, make, found)
        expect(made() == 0, make, "left", made())
        connection.execute("DROP " + drop)
    # What only SQLite refuses, after other tables were made.
    write("two.json", '{"m": [{"a": 1}], "z": [{"b": 1}]}')
    connection.set_authorizer(lambda action, name, *rest: sqlite3.SQLITE_DENY if action == sqlite3.SQLITE_CREATE_VTABLE and name == "z"
                              else sqlite3.SQLITE_OK)
    found = message(connection, "SELECT qvejmap_attach('two.json')")
    connection.set_authorizer(None)
    expect(found == "not authorized" and made() == 0, "a table that is refused:", found, made())
    # SQLite begins no statement once it is interrupted: what was made before goes later, but nobody else's table.
    def interrupt(action, name, *rest):
        if action == sqlite3.SQLITE_CREATE_VTABLE and name == "z":
            connection.interrupt()
        return sqlite3.SQLITE_OK

    for meanwhile, expected in [("DROP TABLE m; CREATE TEMP TABLE m(a)", "there is a table m in temp already (prefix=... gives other names)"),
                                ("DROP TABLE m", "no error"), ("SELECT 1", "no error")]:
        connection.executescript("DROP TABLE IF EXISTS temp.m; DROP TABLE IF EXISTS temp.z")
        connection.set_authorizer(interrupt)
        found = message(connection, "SELECT qvejmap_attach('two.json')")
        connection.set_authorizer(None)
        expect(found == "interrupted", "interrupted between two tables:", found)
        connection.executescript(meanwhile)
        found = message(connection, "SELECT qvejmap_attach('two.json')")
        expect(found == expected, "attached after an interrupt and", meanwhile, found, made())
    expect(made() == 2, "attached", made())
    for name in ("m", "z"):
        connection.execute("DROP TABLE " + name)
    expect(connection.execute("SELECT qvejmap_attach('two.json')").fetchone() == (2,), "attached again")


def changes():
    connection, other = connect(), connect()
    write("moving.json", '[{"a": 1}, {"a": 2}]')
    for each in (connection, other):
        each.execute("CREATE VIRTUAL TABLE temp.t USING qvejmap(moving.json)")
    expect(connection.execute("SELECT a FROM t").fetchall() == [(1,), (2,)], "before")
    begun = connection.execute("SELECT a FROM t")
    begun.fetchone()
    write("new.json", '[{"a": 3}, {"a": 4}, {"a": 5}]')
    os.replace("new.json", "moving.json")
    expect(connection.execute("SELECT a FROM t WHERE ordinal_root > 1").fetchall() == [(4,), (5,)], "more rows")
    expect(begun.fetchall() == [(2,)], "a statement that had begun goes on")
    expect(other.execute("SELECT count(*) FROM t").fetchone() == (3,), "another connection")
    for text, expected in [('[{"b": 3}]', "has other columns, types or keys now"), ('[{"a": "x"}]', "has other columns, types or keys now"),
                           ('[{"a": 3}', "moving.json:1:"), (None, "No such file")]:
        if text is None:
            os.remove("moving.json")
        else:
            write("moving.json", text)
        found = message(connection, "SELECT * FROM t")
        expect(expected in found, text, found)
    write("moving.json", '[{"a": 5}]')
    expect(connection.execute("SELECT a FROM t").fetchall() == [(5,)], "another time")
    # Another file of the same size and time.
    time = os.stat("moving.json").st_mtime_ns
    os.utime(write("new.json", '[{"a": 6}]'), ns=(time, time))
    os.replace("new.json", "moving.json")
    expect(connection.execute("SELECT a FROM t").fetchall() == [(6,)], "and back")
    connection.execute("DROP TABLE t")
    expect("no such table" in message(connection, "SELECT * FROM t"), "dropped")
    # A connection that ends with a statement on its way; one that loads it twice.
    rows = other.execute("SELECT a FROM t, qvejmap_all('orders.json')")
    rows.fetchone()
    other.close()
    connection.load_extension(EXTENSION)
    expect(connection.execute("SELECT qvejmap_attach('orders.json')").fetchone()[0] > 2, "loaded twice")


def pipe():
    """What comes once is read once, however often it is asked for."""
    connection, over = connect(), threading.Event()
    os.mkfifo("pipe")

    def give():
        write("pipe", '[{"a": 1}, {"a": 2}]')
        while not over.wait(10):  # else whoever opens it again waits for ever
            write("pipe", "no more")

    writer = threading.Thread(target=give, daemon=True)
    writer.start()
    attached, found = message(connection, "SELECT qvejmap_attach('pipe')"), message(connection, "SELECT a FROM root")
    over.set()
    writer.join()
    expect((attached, found) == ("no error", "no error"), "a pipe:", attached, found)
    expect(connection.execute("SELECT a FROM root WHERE ordinal_root > 0").fetchall() == [(1,), (2,)], "a pipe again")


def shell():
    if shutil.which("sqlite3") is None:
        print("no shell of SQLite")
        return
    said = subprocess.run(["sqlite3", ":memory:", ".load " + EXTENSION.removesuffix(".so"), "SELECT qvejmap_attach('orders.json')",
                           "SELECT sku FROM orders_items WHERE ordinal_orders = 4"], capture_output=True, text=True, check=False)
    expect(said.stdout.split()[1:] == ["s30", "s31", "s32"] and said.stderr == "", "the shell", said)


def main():
    if not hasattr(sqlite3.Connection, "enable_load_extension"):
        print("skipped: the sqlite3 of", sys.executable, "loads no extensions")
        sys.exit(77)
    with tempfile.TemporaryDirectory() as folder:
        os.chdir(folder)
        for part in (documents, user_map, lambda: queries(400), odd_ordinals, walks, ends, all_values, errors, all_or_none, changes, pipe, shell):
            part()
        os.chdir("/")
    sys.exit(1 if failures else 0)


main()
