"""Streams and batches of Arrow: the same cells as the tool's own files, and who owns what."""

import gc
import json
import os
import threading
import unittest

import duckdb
import polars
import pyarrow

import qvejmap
from documents import ODD, REAL, SHARED, can_compare, large, arrow_files_of


def arrow_of(doc):
    return {name: table.to_arrow() for name, table in doc.tables.items()}


def as_texts(tables):
    """So that -0.0 is not 0.0."""
    return {name: str(table.to_pylist()) for name, table in tables.items()}


def described(schema):
    """All that a schema says, so that a difference can be read."""
    return [(f.name, f.type, f.nullable, f.metadata) for f in schema], schema.metadata


def held():
    """Bytes of memory that the process has."""
    with open("/proc/self/statm", encoding="ascii") as file:
        return int(file.read().split()[1]) * os.sysconf("SC_PAGE_SIZE")


class Cells(unittest.TestCase):
    def compare(self, source, *options, **arguments):
        with qvejmap.open(source, **arguments) as doc:
            found = doc.to_arrow()  # before types are known, and afterwards:
            self.assertEqual(as_texts(doc.to_arrow()), as_texts(found))
            for name, table in doc.tables.items():
                stream = pyarrow.RecordBatchReader.from_stream(table).read_all()
                self.assertEqual(str(stream.to_pylist()), str(found[name].to_pylist()), name)
        want = arrow_files_of(source, *options)
        self.assertEqual(sorted(found), sorted(want))
        for name, table in want.items():
            found[name].validate(full=True)
            self.assertEqual(described(found[name].schema), described(table.schema), name)
        self.assertEqual(as_texts(found), as_texts(want))

    @unittest.skipUnless(can_compare(), "there is no tool that writes Arrow")
    def test_odd_documents_are_as_in_arrow_files(self):
        for name, text in ODD.items():
            for naming in ("map", "original"):
                with self.subTest(name, naming=naming):
                    self.compare(text, "--naming", naming, naming=naming)

    @unittest.skipUnless(can_compare() and os.path.isdir(SHARED), "no tool, or no real documents")
    def test_real_documents_are_as_in_arrow_files(self):
        for name in REAL:
            with self.subTest(name):
                self.compare(os.path.join(SHARED, name))
        with self.subTest("shape"):
            self.compare(os.path.join(SHARED, "citm_catalog.json"), "--shape", "auto", shape="auto")

    @unittest.skipUnless(can_compare(), "there is no tool that writes Arrow")
    def test_what_is_read_again_is_as_in_arrow_files(self):
        self.compare(large())
        self.compare(large(), threads=1)

    def test_some_tables_need_no_others(self):
        for text in (ODD["nested"], large()):
            name = list(qvejmap.open(text).tables)[-1]
            doc = qvejmap.open(text)
            self.assertEqual(doc.to_arrow([name]), {name: doc[name].to_arrow()})
            self.assertEqual(doc.to_arrow([]), {})

    def test_numbers_with_formats_are_as_in_batches(self):
        column = {"NAME": "n", "TYPE": "NUMERIC", "PATH": "/root/n", "LENGTH": 8, "FORMAT": ["comma", 12, 2]}
        texts = {"NAME": "t", "TYPE": "CHARACTER", "PATH": "/root/t", "LENGTH": 400}
        map = {"DATASETS": [{"DSNAME": "T", "TABLEPATH": "/root", "VARIABLES": [column, texts]}]}
        rows = [(1234.5, "x" * length) for length in (30, 31, 32, 255, 256)] + [(None, None), (-0.0, "")]
        text = json.dumps([{"n": n, "t": t} for n, t in rows]).encode()
        at_once = qvejmap.open(text, map=map).to_arrow()["T"]
        batches = [pyarrow.record_batch(batch) for batch in qvejmap.open(text, map=map)["T"].batches()]
        self.assertEqual(str(at_once.to_pylist()), str(pyarrow.Table.from_batches(batches).to_pylist()))
        self.assertEqual(at_once["t"].to_pylist(), [t for _, t in rows])

    def test_names_with_nul_stay_distinct(self):
        doc = qvejmap.open(b'[{"a\\u0000b":1,"a":2,"a_b":3,"a\\u0000c":4}]', naming="original")
        names = ["a_b~2", "a", "a_b", "a_c"]
        table = doc["root"].to_arrow()
        self.assertEqual(table.column_names[1:], names)
        self.assertEqual([column.name for column in doc["root"].columns][1:], names)
        self.assertEqual(list(doc["root"])[0], dict(zip(table.column_names, (1, 1, 2, 3, 4))))
        told = [field.metadata.get(b"qvejmap.column") for field in table.schema][1:]
        self.assertEqual(told, [b"a\0b", None, None, b"a\0c"])

    def test_batches_are_the_stream_in_pieces(self):
        with qvejmap.open(ODD["nested"]) as doc:
            items = doc["orders_items"]
            for rows, sizes in ((1, [1, 1, 1]), (2, [2, 1]), (3, [3]), (100, [3])):
                batches = list(items.batches(rows))
                self.assertEqual([len(batch) for batch in batches], sizes)
                self.assertEqual(pyarrow.table(pyarrow.Table.from_batches(map(pyarrow.record_batch, batches))),
                                 items.to_arrow())
            some = [pyarrow.record_batch(b) for b in items.batches(columns=["sku", "ordinal_items"])]
            self.assertEqual(some[0].to_pydict(), {"sku": ["A", "B", None], "ordinal_items": [1, 2, 3]})
            with self.assertRaises(KeyError):
                items.batches(columns=["no"])

    def test_a_table_without_rows_has_its_schema(self):
        doc = qvejmap.open(b'{"o":[{"a":1}]}', map={"DATASETS": [{
            "DSNAME": "T", "TABLEPATH": "/root/none",
            "VARIABLES": [{"NAME": "a", "TYPE": "CHARACTER", "PATH": "/root/none/a", "LENGTH": 9}]}]})
        table = doc["T"].to_arrow()
        table.validate(full=True)
        self.assertEqual((table.num_rows, table.column_names), (0, ["a"]))
        self.assertEqual(doc["T"].rows, 0)


class Ownership(unittest.TestCase):
    def test_capsules_that_nobody_takes_are_released(self):
        text = bytearray(large())
        doc = qvejmap.open(text)
        capsules = [table.__arrow_c_stream__() for table in doc.tables.values()]
        capsules += [table.__arrow_c_schema__() for table in doc.tables.values()]
        doc.close()
        with self.assertRaises(BufferError):  # the streams have their share of it
            text.append(0)
        del capsules
        text.append(0)

    def test_batches_that_nobody_takes_are_released(self):
        doc = qvejmap.open(large())
        for turn in range(40):
            if turn == 10:  # what the first ones take stays
                before = held()
            for batch in doc["root"].batches():  # of 5 MB
                capsules = batch.__arrow_c_array__(), batch.__arrow_c_array__(), batch.__arrow_c_schema__()
                pyarrow.record_batch(batch)
                del batch, capsules
        self.assertLess(held() - before, 75_000_000)  # half of what was made

    def test_a_stream_is_taken_once_and_a_table_as_often_as_one_likes(self):
        doc = qvejmap.open(ODD["nested"])
        table = doc["orders_items"]

        class Once:
            def __init__(self, capsule):
                self.capsule = capsule

            def __arrow_c_stream__(self, requested_schema=None):
                return self.capsule

        once = Once(table.__arrow_c_stream__())
        self.assertEqual(pyarrow.RecordBatchReader.from_stream(once).read_all().num_rows, 3)
        with self.assertRaises(ValueError):
            pyarrow.RecordBatchReader.from_stream(once)
        self.assertEqual(table.to_arrow(), table.to_arrow())

    def test_a_batch_is_taken_twice_and_outlives_its_document(self):
        for text in (ODD["nested"], large()):
            doc = qvejmap.open(text)
            name = list(doc.tables)[-1]
            want = doc[name].to_arrow().slice(0, 2).to_pylist()
            batch = next(doc[name].batches(2))
            stream = pyarrow.RecordBatchReader.from_stream(doc[name])
            doc.close()
            del doc
            gc.collect()
            first, second = pyarrow.record_batch(batch), pyarrow.record_batch(batch)
            column = first.column(0)
            del first, batch
            gc.collect()
            self.assertEqual(second.to_pylist(), want)
            self.assertEqual(column.to_pylist(), second.column(0).to_pylist())
            self.assertEqual(stream.read_all().slice(0, 2).to_pylist(), want)

    def test_streams_of_one_document_may_be_read_in_turns(self):
        for text in (ODD["nested"], large()):
            doc = qvejmap.open(text)
            names = list(doc.tables)
            readers = [doc[name].batches(500) for name in names] + [doc[names[0]].batches(700)]
            got = [[] for _ in readers]
            left = set(range(len(readers)))
            while left:
                for i in sorted(left):
                    batch = next(readers[i], None)
                    if batch is None:
                        left.discard(i)
                    else:
                        got[i] += list(batch)
            for rows, name in zip(got, [*names, names[0]]):
                self.assertEqual(rows, list(doc[name]), name)

    def test_documents_and_tables_are_read_on_several_threads(self):
        shared = qvejmap.open(large())
        want = arrow_of(qvejmap.open(ODD["nested"]))
        root = qvejmap.open(large())["root"].to_arrow()  # `shared` has not been walked yet
        wrong = []

        def work(_):
            for _ in range(3):
                if arrow_of(qvejmap.open(ODD["nested"])) != want or shared["root"].to_arrow() != root:
                    wrong.append(1)

        threads = [threading.Thread(target=work, args=(i,)) for i in range(4)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        self.assertEqual(wrong, [])


class Consumers(unittest.TestCase):
    def test_each_reads_the_same(self):
        doc = qvejmap.open(ODD["nested"])
        orders, items = doc["orders"], doc["orders_items"]
        want = items.to_arrow().to_pylist()
        self.assertEqual(items.to_polars().to_dicts(), want)
        self.assertEqual(polars.from_arrow(items.to_arrow()).to_dicts(), want)
        self.assertEqual(len(items.to_pandas()), 3)
        self.assertEqual(str(items.to_pandas()["p"].dtype), "double[pyarrow]")
        relation = items.to_duckdb()
        self.assertEqual(relation.fetchall(), [tuple(row.values()) for row in want])
        joined = duckdb.sql("select id, sku from items join orders using (ordinal_orders) order by ordinal_items")
        self.assertEqual(joined.fetchall(), [(1, "A"), (1, "B"), (2, None)])

    def test_duckdb_reads_streams_as_often_as_it_likes(self):
        for text, joined, sums in (
            (ODD["nested"], [(1, "A"), (1, "B"), (2, None)], 1.5),
            (large(), [(i, "x") for i in range(2)], sum(i + 0.25 for i in range(12000))),
        ):
            doc = qvejmap.open(text)
            parent, items = doc.tables.values()
            connection = duckdb.connect()
            connection.register("registered", items)
            column = parent.key
            for name in ("items", "registered"):  # found as a variable, and by its name
                for _ in range(2):
                    self.assertEqual(connection.sql(f"select sum(p), count(*) from {name}").fetchall(),
                                     [(sums, items.rows)])
                    found = connection.sql(f"select id, sku from parent join {name} using ({column}) "
                                           "where id < 3 order by ordinal_items").fetchall()
                    self.assertEqual([row for row in found if text is ODD["nested"] or row[1]][: len(joined)], joined)
                both = connection.sql(f"select count(*) from {name} a join {name} b using (ordinal_items)")
                self.assertEqual(both.fetchall(), [(items.rows,)])

    def test_one_that_is_not_installed_is_named(self):
        import sys
        from unittest import mock
        with mock.patch.dict(sys.modules, {"polars": None}):
            with self.assertRaisesRegex(ImportError, "pip install polars"):
                qvejmap.open(b"[{}]")["root"].to_polars()


if __name__ == "__main__":
    unittest.main()
