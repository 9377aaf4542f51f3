"""Tables on a cluster of Spark, with workers that are processes of their own, beside one machine."""

import glob
import gzip
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

import pyarrow.parquet

import qvejmap

SHARED = os.path.join(os.path.dirname(__file__), "../../../../shared/data")
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
            .config("spark.sql.session.timeZone", "UTC").config("spark.task.maxFailures", "4").getOrCreate())


def random_rows(count, seed):
    chance = random.Random(seed)
    for i in range(count):
        items = ",".join('{"sku":"%s","p":%s}' % ("x" * chance.randrange(9), chance.choice(("1", "2.25", "null")))
                         for _ in range(chance.randrange(4)))
        yield '{"id":%d,"on":"2024-01-%02d","items":[%s]}' % (i, i % 28 + 1, items)


class OnACluster(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        import qvejmap.spark

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
        options.pop("size", None)
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
        self.assertGreater(self.compare(array, size=2000), 5)
        self.assertGreater(self.compare(self.file("b.jsonl", "\n".join(text)), size=2000), 5)
        for i in range(20):
            self.file(f"many/{i:02}.json" + (".gz" if i % 3 == 0 else ""), "[" + ",".join(text[i * 10 : i * 10 + 10]) + "]")
        self.assertEqual(self.compare(os.path.join(self.folder, "many")), 20)

    @unittest.skipUnless(os.path.isdir(SHARED), "no real documents")
    def test_has_the_tables_of_real_documents(self):
        for file in sorted(glob.glob(SHARED + "/*json")):
            with self.subTest(os.path.basename(file)):
                self.compare(file, tables=3, size=100_000)

    def test_times_too_fine_for_spark_are_texts(self):
        frame = qvejmap.spark.read(self.spark, self.file("t.json", ODD["types"]))
        self.assertEqual([row.f for row in frame.collect()], ["2024-01-01T00:00:00.123456789Z", None, None])

    def test_is_a_format_of_readers(self):
        file = self.file("a.json", ODD["nested"])
        reader = self.spark.read.format("qvejmap")
        items = reader.option("table", "orders_items").option("columns", "sku, ordinal_items").load(file)
        self.assertEqual([tuple(row) for row in items.collect()], [("A", 1), (None, 2)])
        for options, message in (({"table": "no"}, "no 'no' among orders, orders_items"), ({}, "one of orders"),
                                 ({"table": "orders", "columns": "x"}, "no 'x' in orders"), ({"no": "1"}, "no option 'no'")):
            with self.assertRaisesRegex(Exception, message):
                self.spark.read.format("qvejmap").options(**options).load(file).collect()

    def test_mistakes_are_those_of_one_machine(self):
        broken = self.file("b.jsonl", '{"a":1}\n' * 500 + '{"a":}\n' + '{"a":1}\n' * 500 + "}")
        with self.assertRaises(qvejmap.NotJson) as raised:
            qvejmap.spark.prepare(self.spark, broken, size=1000)
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
        out = os.path.join(self.folder, "out")
        names = qvejmap.spark.write_tables(self.spark, file, out, size=3000)
        one = qvejmap.open(file)
        self.assertEqual(names, list(one.tables))
        with open(os.path.join(out, "datapackage.json"), encoding="utf-8") as text:
            package = json.load(text)
        for resource in package["resources"]:
            want = one[resource["name"]]
            got = pyarrow.concat_tables(pyarrow.parquet.read_table(os.path.join(out, path), partitioning=None)
                                        for path in resource["path"])
            self.assertEqual(got.to_pylist(), want.to_arrow().to_pylist())
            self.assertEqual((resource["rows"], resource["schema"]["primaryKey"]), (want.rows, want.key))
        self.assertEqual(package["resources"][1]["schema"]["foreignKeys"][0]["reference"]["resource"], names[0])
        self.assertEqual(sorted(os.listdir(out)), sorted([*names, "datapackage.json"]))
        with self.assertRaises(FileExistsError):
            qvejmap.spark.write_tables(self.spark, file, out)

    def test_a_worker_that_is_killed_changes_nothing(self):
        file = self.file("a.json", "[" + ",".join(random_rows(200_000, 3)) + "]")
        plan = qvejmap.spark.prepare(self.spark, file, size=200_000)
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
