"""Tables on a cluster of Spark, with workers that are processes of their own, beside one machine."""

import doctest
import functools
import glob
import gzip
import http.server
import json
import os
import random
import signal
import subprocess
import sys
import tempfile
import threading
import time
import unittest
from unittest import mock

import pyarrow.parquet

import qvejmap

ROOT = os.path.abspath(os.path.join(os.path.dirname(__file__), "../../.."))
SHARED = os.path.join(ROOT, "../shared/data")
ODD = {
    "types": '[{"b":true,"i":1,"d":1.5,"m":12345678901234567.25,"t":"x","on":"2024-02-29","u":"2024-01-01T00:00:00.5Z",'
             '"n":"2024-01-01T00:00:00","f":"2024-01-01T00:00:00.123456789Z"},{"b":null,"t":""},{"d":-0.0}]',
    "nested": '{"orders":[{"id":1,"items":[{"sku":"A"},{"sku":null}]},{"id":2}]}',
    "scalars": '[1,[2,{"a":3}],{"b":1}]',
    "empty": "{}",
}


def spark_session():
    os.environ.setdefault("PYSPARK_PYTHON", sys.executable)
    from pyspark.sql import SparkSession

    return (SparkSession.builder.master("local-cluster[2,1,1024]").config("spark.ui.enabled", "false")
            .config("spark.ui.showConsoleProgress", "false").config("spark.log.level", "OFF")
            .config("spark.sql.session.timeZone", "UTC").config("spark.task.maxFailures", "4").getOrCreate())


def random_rows(count, seed):
    chance = random.Random(seed)
    for i in range(count):
        items = ",".join('{"sku":"%s","p":%s}' % ("x" * chance.randrange(9), chance.choice(("1", "2.25", "null")))
                         for _ in range(chance.randrange(4)))
        yield '{"id":%d,"on":"2024-01-%02d","items":[%s]}' % (i, i % 28 + 1, items)


def random_value(chance, depth):
    """Of any kind; members and elements get fewer with depth."""
    kind = chance.randrange(9 if depth < 3 else 6)
    if kind < 6:
        return (None, True, chance.randrange(-99, 99), chance.random(), "x" * chance.randrange(30), "2024-02-29")[kind]
    if kind < 8:
        return {chance.choice("abcd"): random_value(chance, depth + 1) for _ in range(chance.randrange(4))}
    return [random_value(chance, depth + 1) for _ in range(chance.randrange(4))]


def random_element(chance):
    return json.dumps({chance.choice("abcd"): random_value(chance, 1) for _ in range(chance.randrange(5))})


class Files(http.server.SimpleHTTPRequestHandler):
    """Ranges of files, as object stores give them."""

    def do_GET(self):
        with open(self.translate_path(self.path), "rb") as file:
            data = file.read()
        first, last = 0, len(data) - 1
        if asked := self.headers.get("Range"):
            first, _, end = asked.removeprefix("bytes=").partition("-")
            first, last = int(first), min(int(end or last), last)
        self.send_response(206 if asked else 200)
        self.send_header("Content-Length", str(last + 1 - first))
        self.send_header("Content-Range", f"bytes {first}-{last}/{len(data)}")
        self.send_header("Accept-Ranges", "bytes")
        self.end_headers()
        if self.command == "GET":
            self.wfile.write(data[first : last + 1])

    do_HEAD = do_GET

    def log_message(self, *_):
        pass


class OnACluster(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        import qvejmap.spark

        os.chdir(ROOT)
        cls.spark = spark_session()
        cls.addClassCleanup(cls.spark.stop)
        qvejmap.spark.register(cls.spark)

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def file(self, name, text):
        path = os.path.join(self.folder, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with (gzip.open if name.endswith(".gz") else open)(path, "wt", encoding="utf-8") as file:
            file.write(text)
        return path

    def compare(self, source, tables=None, **options):
        """Tables by one machine and by the cluster.  Returns the number of parts."""
        plan = qvejmap.spark.prepare(self.spark, source, **options)
        options.pop("maxPartitionBytes", None)
        one = qvejmap.open(source, **options)
        for name in list(one.tables)[:tables]:
            want = one[name].to_arrow()
            frame = qvejmap.spark.read(self.spark, plan, name)
            got = frame.toArrow()
            self.assertEqual(got.column_names, want.column_names)
            self.assertEqual([(f.nullable, f.metadata) for f in frame.schema],
                             [(f.nullable, {k.decode(): v.decode() for k, v in (f.metadata or {}).items()})
                              for f in want.schema])
            for column in got.column_names:
                if getattr(want[column].type, "unit", "") == "ns":
                    continue  # Spark has no nanoseconds
                self.assertEqual(str(got[column].to_pylist()), str(want[column].to_pylist()), (name, column))
        return len(plan.parts)

    def test_has_the_tables_of_one_machine(self):
        for name, text in ODD.items():
            with self.subTest(name):
                self.compare(self.file(f"{name}.json", text))
        text = list(random_rows(200, 1))
        array = self.file("a.json", "[" + ",".join(text) + "]")
        self.assertGreater(self.compare(array, maxPartitionBytes=2000), 5)
        with mock.patch.multiple("qvejmap._finder", _SUMMED_AT_ONCE=2, _SUMMED_HERE=0):  # workers sum up
            self.assertGreater(self.compare(self.file("b.jsonl", "\n".join(text)), maxPartitionBytes=2000), 5)
        for i in range(20):
            self.file(f"many/{i:02}.json" + (".gz" if i % 3 == 0 else ""), "[" + ",".join(text[i * 10 : i * 10 + 10]) + "]")
        self.assertEqual(self.compare(os.path.join(self.folder, "many")), 20)
        frame = qvejmap.spark.read(self.spark, os.path.join(self.folder, "many"), "items")
        self.assertEqual(frame.rdd.getNumPartitions(), 1)
        alone = qvejmap.spark.prepare(self.spark, os.path.join(self.folder, "many"), table="items")
        self.assertEqual(qvejmap.spark.read(self.spark, alone).collect(), frame.collect())

    @unittest.skipUnless(os.path.isdir(SHARED), "no real documents")
    def test_has_the_tables_of_real_documents(self):
        for file in sorted(glob.glob(SHARED + "/*json")):
            with self.subTest(os.path.basename(file)):
                self.compare(file, tables=2, maxPartitionBytes=100_000)
                self.compare_written(file, maxPartitionBytes=100_000)

    def test_has_the_tables_of_random_documents(self):
        chance = random.Random(7)
        for number in (1, 2, 3, 5, 8, 13, 20):
            folder = f"random{number}"
            for i in range(number):
                elements = [random_element(chance) for _ in range(chance.randrange(1, 20))]
                name, text = chance.choice((("j.json", "[" + ",".join(elements) + "]"), ("jsonl", "\n".join(elements)),
                                            ("json", '{"v":[' + ",".join(elements) + "]}"), ("l.json.gz", "\n".join(elements))))
                self.file(f"{folder}/{i:02}.{name}", text)
            with self.subTest(folder):
                self.compare_written(os.path.join(self.folder, folder), maxPartitionBytes=chance.choice((100, 1000)))

    def compare_written(self, source, **options):
        """All tables of files written by the cluster."""
        out = tempfile.mkdtemp(dir=self.folder)
        os.rmdir(out)
        names = qvejmap.spark.write_tables(self.spark, source, out, **options)
        options.pop("maxPartitionBytes", None)
        one = qvejmap.open(source, **options)
        self.assertEqual(names, list(one.tables))
        with open(os.path.join(out, "datapackage.json"), encoding="utf-8") as text:
            package = json.load(text)
        for resource, (name, want) in zip(package["resources"], one.to_arrow().items()):
            got = pyarrow.concat_tables(pyarrow.parquet.read_table(os.path.join(out, path), partitioning=None)
                                        for path in resource["path"])
            self.assertEqual(str(got.to_pylist()), str(want.to_pylist()), name)
            self.assertEqual((resource["name"], resource["rows"], resource["schema"].get("primaryKey")),
                             (name, want.num_rows, one[name].key))
        return package

    def test_times_too_fine_for_spark_are_texts(self):
        frame = qvejmap.spark.read(self.spark, self.file("t.json", ODD["types"]))
        self.assertEqual([row.f for row in frame.collect()], ["2024-01-01T00:00:00.123456789Z", None, None])

    def test_is_a_format_of_readers(self):
        file = self.file("a.json", ODD["nested"])
        reader = self.spark.read.format("qvejmap")
        items = reader.option("table", "orders_items").option("columns", "sku, ordinal_items").load(file)
        self.assertEqual([tuple(row) for row in items.collect()], [("A", 1), (None, 2)])
        map = json.dumps({"DATASETS": [{"DSNAME": "T", "TABLEPATH": "/root/orders", "VARIABLES": [
            {"NAME": "X", "TYPE": "NUMERIC", "PATH": "/root/orders/id"}]}]})
        lines = self.file("b.txt", '{"A":{"x":12345678901234567890}}\n{"B":{"x":2}}\n' * 50)
        for path, options, want in (
            (file, {"map": map}, [(1,), (2,)]),
            (file, {"map": self.file("m.json", map), "table": "T"}, [(1,), (2,)]),
            (file, {"table": "/root/orders", "columns": '["id"]', "naming": "original"}, [(1,), (2,)]),
            (file, {"table": "orders", "shape": '["drop /root/orders/items"]', "columns": "ordinal_orders,id"}, [(1, 1), (2, 2)]),
            (lines, {"table": "A", "lines": "TRUE", "exact": "true", "columns": "x", "maxPartitionBytes": "1k"},
             [("12345678901234567890",)] * 50),
        ):
            with self.subTest(options):
                frame = self.spark.read.format("qvejmap").options(**options).load(path)
                self.assertEqual([tuple(row) for row in frame.collect()], want)
        both = self.spark.read.format("qvejmap").option("table", "orders").load([file, file])
        self.assertEqual([tuple(row) for row in both.select("source", "ordinal_orders").collect()],
                         [(file, i) for i in (1, 2, 3, 4)])
        for schema, want in (
            ("id string, no double, ordinal_orders bigint", [("1", None, 1), ("2", None, 2)]),
            ("no string", [(None,), (None,)]),
        ):
            frame = self.spark.read.format("qvejmap").option("table", "orders").schema(schema).load(file)
            self.assertEqual([tuple(row) for row in frame.collect()], want)
        with self.assertRaisesRegex(Exception, "sku: not all values are int32"):
            self.spark.read.format("qvejmap").option("table", "orders_items").schema("sku int").load(file).collect()
        for columns in ("", "[]"):
            with self.assertRaisesRegex(Exception, "columns: "):
                self.spark.read.format("qvejmap").options(table="orders", columns=columns).load(file)
        with self.assertRaisesRegex(Exception, "No such file"):
            self.spark.read.format("qvejmap").load("")
        for options, message in (
            ({"table": "no"}, "no 'no' among orders, orders_items"), ({}, "one of orders"),
            ({"table": "orders", "columns": "x"}, "no 'x' in orders"), ({"naming": "x"}, "naming: 'map' or 'original'"),
            ({"namin": "x"}, "no option 'namin'; did you mean 'naming'"), ({"mode": "x"}, "mode: 'FAILFAST', "),
            ({"maxPartitionBytes": "x"}, "maxPartitionBytes: a size"), ({"depth": "x"}, "depth: a whole number"),
            ({"columnNameOfCorruptRecord": "x"}, "goes with mode PERMISSIVE"), ({"map": "{"}, "<map>:1:2"),
        ):
            with self.subTest(options), self.assertRaisesRegex(Exception, message):
                self.spark.read.format("qvejmap").options(**options).load(file).collect()

    def test_has_every_value_in_alldata(self):
        for name, text in (("a.json", "[" + ",".join(random_rows(50, 4)) + "]"), ("b.jsonl", "\n".join(random_rows(50, 5)))):
            file = self.file(name, text)
            frame = qvejmap.spark.read(self.spark, file, "ALLDATA", maxPartitionBytes=1000)
            self.assertGreater(frame.rdd.getNumPartitions(), 2)
            self.assertEqual(frame.toArrow().to_pylist(), qvejmap.open(file).alldata.to_arrow().to_pylist())

    def test_leaves_out_what_is_bad_when_it_is_told_to(self):
        lines = self.file("in/a.jsonl", "".join('{"a":%s}\n' % ("?" if i % 40 == 7 else i) for i in range(200)))
        broken = self.file("in/b.json", '[{"a":1},{"a":')
        self.file("in/c.json", '[{"a":1000}]')
        source = os.path.join(self.folder, "in")
        good = [i for i in range(200) if i % 40 != 7] + [1000]
        bad = [f"{lines}:{i + 1}:6: " for i in range(7, 200, 40)] + [f"{broken}:1:15: "]

        def reader(**options):
            return self.spark.read.format("qvejmap").options(table="root", maxPartitionBytes="300", **options)

        for mode in ("DROPMALFORMED", "permissive"):
            rows = reader(mode=mode).load(source).collect()
            self.assertEqual([row.a for row in rows], good)
            self.assertEqual([row.ordinal_root for row in rows], list(range(1, len(good) + 1)))
        frame = reader(mode="PERMISSIVE", columnNameOfCorruptRecord="bad").load(source)
        self.assertTrue(all(field.nullable for field in frame.schema))
        rows = frame.collect()
        self.assertEqual(reader(mode="PERMISSIVE", columnNameOfCorruptRecord="bad").schema("bad string, a int").load(source).collect(),
                         [(row.bad, row.a) for row in rows])
        self.assertEqual([row.a for row in rows if row.bad is None], good)
        told = [row for row in rows if row.bad is not None]
        self.assertEqual([row.bad[: len(place)] for row, place in zip(told, bad, strict=True)], bad)
        self.assertEqual({tuple(row)[:-1] for row in told}, {(None,) * (len(frame.columns) - 1)})
        with self.assertRaisesRegex(Exception, f"{lines}:8:6: "):
            reader(mode="FAILFAST").load(source).collect()

    def test_filters_that_spark_would_push_leave_no_rows_out(self):
        file = self.file("a.json", "[" + ",".join(random_rows(300, 6)) + "]")
        self.spark.conf.set("spark.sql.python.filterPushdown.enabled", "true")
        self.addCleanup(self.spark.conf.unset, "spark.sql.python.filterPushdown.enabled")
        rows = qvejmap.spark.read(self.spark, file, "root", maxPartitionBytes=1000)
        for filter, count in (("true", 300), ("ordinal_root = 150", 1), ("ordinal_root in (1, 300)", 2), ("true", 300)):
            self.assertEqual(rows.filter(filter).count(), count, filter)

    def test_files_come_by_urls(self):
        text = list(random_rows(200, 8))
        local = [self.file("u/a.json", "[" + ",".join(text) + "]"), self.file("u/b.jsonl", "\n".join(text)),
                 self.file("u/c.json.gz", "[" + ",".join(text) + "]")]
        server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), functools.partial(Files, directory=self.folder))
        threading.Thread(target=server.serve_forever, daemon=True).start()
        self.addCleanup(server.server_close)
        self.addCleanup(server.shutdown)
        host = f"http://127.0.0.1:{server.server_port}"
        for file in local:
            want = qvejmap.open(file)["items"].to_arrow().to_pylist()
            for url in (f"file://{file}", host + file.removeprefix(self.folder)):
                with self.subTest(url):
                    frame = qvejmap.spark.read(self.spark, url, "items", maxPartitionBytes=3000)
                    self.assertEqual(frame.toArrow().to_pylist(), want)

    def test_the_readme_is_right(self):
        with open("README.md", encoding="utf-8") as file:
            section = file.read().split("## When one machine is not enough")[1].split("\n## ")[0]
        test = doctest.DocTestParser().get_doctest(section.replace("```", ""), {}, "README.md", "README.md", 0)
        told = []
        result = doctest.DocTestRunner().run(test, out=told.append)
        self.assertEqual(result.failed, 0, "".join(told))
        self.assertGreater(result.attempted, 4)

    def test_mistakes_are_those_of_one_machine(self):
        broken = self.file("b.jsonl", '{"a":1}\n' * 500 + '{"a":}\n' + '{"a":1}\n' * 500 + "}")
        with self.assertRaises(qvejmap.NotJson) as raised:
            qvejmap.spark.prepare(self.spark, broken, maxPartitionBytes=1000)
        self.assertEqual((raised.exception.file, raised.exception.line), (broken, 501))
        with self.assertRaises(qvejmap.FileError):
            qvejmap.spark.prepare(self.spark, os.path.join(self.folder, "no.json"))
        file = self.file("a.json", ODD["nested"])
        plan = qvejmap.spark.prepare(self.spark, file)
        self.file("a.json", ODD["nested"] + "\n")
        with self.assertRaisesRegex(Exception, "has changed"):
            qvejmap.spark.read(self.spark, plan, "orders")

    def test_all_tables_are_written_by_one_job(self):
        file = self.file("a.json", "[" + ",".join(random_rows(300, 2)) + "]")
        package = self.compare_written(file, maxPartitionBytes=3000)
        names = [resource["name"] for resource in package["resources"]]
        self.assertEqual(package["resources"][1]["schema"]["foreignKeys"][0]["reference"]["resource"], names[0])
        out = os.path.join(self.folder, "out")
        qvejmap.spark.write_tables(self.spark, file, out)
        self.assertEqual(sorted(os.listdir(out)), sorted([*names, "datapackage.json"]))
        odd = ("..", ".", "datapackage.json", "_x", "\u00e9" * 100, "a/b")
        map = {"DATASETS": [{"DSNAME": name, "TABLEPATH": "/root", "VARIABLES": [
            {"NAME": "id", "TYPE": "NUMERIC", "PATH": "/root/id"}]} for name in odd]}
        self.compare_written(file, map=map)
        self.assertEqual([name for name in os.listdir(self.folder) if "parquet" in name], [])
        for output, options, error in ((out, {}, FileExistsError), (out + "2", {"format": "csv"}, ValueError),
                                       ("s3://bucket/out", {}, ValueError)):
            with self.assertRaises(error):
                qvejmap.spark.write_tables(self.spark, file, output, **options)

    def test_a_worker_that_is_killed_changes_nothing(self):
        file = self.file("a.json", "[" + ",".join(random_rows(200_000, 3)) + "]")
        plan = qvejmap.spark.prepare(self.spark, file, maxPartitionBytes=200_000)
        killed = []

        def kill():
            while not killed:
                time.sleep(0.05)
                found = subprocess.run(["pgrep", "-f", "pyspark[./]daemon"], capture_output=True, text=True, check=False)
                for daemon in found.stdout.split():
                    workers = subprocess.run(["pgrep", "-P", daemon], capture_output=True, text=True, check=False)
                    for worker in workers.stdout.split()[:1]:
                        os.kill(int(worker), signal.SIGKILL)
                        killed.append(worker)
                        return

        thread = threading.Thread(target=kill)
        thread.start()
        name = list(qvejmap.open(file).tables)[-1]
        got = qvejmap.spark.read(self.spark, plan, name).toArrow()
        thread.join()
        self.assertEqual(len(killed), 1)
        want = qvejmap.open(file)[name].to_arrow()
        for column in want.column_names:
            self.assertEqual(got[column].to_pylist(), want[column].to_pylist(), column)


if __name__ == "__main__":
    unittest.main()
