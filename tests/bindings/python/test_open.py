"""Where documents come from, and how they are read."""

import array
import gc
import gzip
import io
import json
import os
import pathlib
import tempfile
import threading
import unittest
import weakref

import qvejmap
from documents import ODD, large

TEXT = ODD["nested"]


def rows_of(doc):
    return {name: list(table) for name, table in doc.tables.items()}


class Sources(unittest.TestCase):
    def test_all_give_the_same(self):
        want = rows_of(qvejmap.open(TEXT))
        self.assertEqual([len(rows) for rows in want.values()], [2, 3])
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "o.json")
            pathlib.Path(path).write_bytes(TEXT)
            packed = path + ".gz"
            with gzip.open(packed, "wb") as file:
                file.write(TEXT)
            for name, make in {
                "path": lambda: path,
                "path object": lambda: pathlib.Path(path),
                "compressed": lambda: packed,
                "bytearray": lambda: bytearray(TEXT),
                "memoryview": lambda: memoryview(b"xx" + TEXT)[2:],
                "array": lambda: array.array("B", TEXT),
                "compressed bytes": lambda: gzip.compress(TEXT),
                "file": lambda: io.BytesIO(TEXT),
                "text file": lambda: io.StringIO(TEXT.decode()),
                "file of compressed bytes": lambda: io.BytesIO(gzip.compress(TEXT)),
            }.items():
                with self.subTest(name), qvejmap.open(make()) as doc:
                    self.assertEqual(rows_of(doc), want)
            with self.subTest("several"):
                for source in ([path, pathlib.Path(packed)], os.path.join(folder, "o.*"), folder):
                    rows = rows_of(qvejmap.open(source))["orders"]
                    self.assertEqual([row["source"] for row in rows], [path, path, packed, packed])

    def test_a_name_ends_at_no_nul(self):
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "o.json")
            pathlib.Path(path).write_bytes(TEXT)
            for use in (qvejmap.open, lambda name: qvejmap.open([name]), qvejmap.parts,
                        lambda name: qvejmap.PartialScan(qvejmap.Part.whole(name)),
                        lambda name: qvejmap.convert(TEXT, name)):
                with self.assertRaisesRegex(ValueError, "NUL"):
                    use(path + "\0x")
            self.assertEqual(os.listdir(folder), ["o.json"])

    def test_the_last_use_gives_the_memory_back(self):
        gc.disable()
        self.addCleanup(gc.enable)
        doc = qvejmap.open(TEXT)
        table = doc.tables["orders"]
        self.assertIn("orders", repr(doc) + repr(table) + str(table.columns))
        gone = weakref.ref(doc)
        del doc
        self.assertEqual(table.rows, 2)
        del table
        self.assertIsNone(gone())

    def test_a_pipe_is_read_as_it_comes(self):
        reading, writing = os.pipe()

        def write():
            with open(writing, "wb") as file:
                file.write(large())

        writer = threading.Thread(target=write)
        writer.start()
        with open(reading, "rb") as file:
            doc = qvejmap.open(file)
        writer.join()
        self.assertEqual(rows_of(doc), rows_of(qvejmap.open(large())))

    def test_what_a_file_object_raises_comes_out(self):
        class Broken:
            def read(self, size):
                raise RuntimeError("no more")

        with self.assertRaisesRegex(RuntimeError, "no more"):
            qvejmap.open(Broken())
        for wrong in (3, None, [], memoryview(bytes(8))[::2]):
            with self.subTest(wrong), self.assertRaises((TypeError, ValueError, BufferError)):
                qvejmap.open(wrong)

    def test_bytes_are_kept_while_they_are_needed(self):
        table = qvejmap.open(bytearray(large()))["root"]
        held = bytearray(large())
        doc = qvejmap.open(held)
        with self.assertRaises(BufferError):
            held.append(0)
        doc.close()
        held.append(0)  # it was given back
        self.assertEqual(table.rows, 12000)


class Options(unittest.TestCase):
    def test_shape_map_names_and_lines(self):
        prices = b'{"rates":{"EUR":{"x":1},"USD":{"x":2}}}'
        ruled = list(qvejmap.open(prices, shape=["rows /root/rates as code"])["rates"])
        self.assertEqual([row["code"] for row in ruled], ["EUR", "USD"])

        automatic = qvejmap.open(TEXT)
        table = next(t for t in automatic.map["DATASETS"] if t["DSNAME"] == "orders_items")
        table["DSNAME"] = "mine"
        table["VARIABLES"][-1]["LABEL"] = "Price"
        chosen = qvejmap.open(TEXT, map={"DATASETS": [table]})
        self.assertEqual(list(chosen.tables), ["mine"])
        self.assertEqual(chosen["mine"].columns[-1].label, "Price")
        with tempfile.TemporaryDirectory() as folder:
            file = os.path.join(folder, "map.json")
            automatic.map.save(file)
            self.assertEqual(json.loads(pathlib.Path(file).read_bytes()), automatic.map)
            self.assertEqual(rows_of(qvejmap.open(TEXT, map=file)), rows_of(automatic))

        odd = qvejmap.open(b'[{"a b":1}]', naming="original")
        self.assertEqual(odd[list(odd.tables)[0]].columns[-1].name, "a b")
        self.assertEqual(qvejmap.open(b'{"a":1}\n', lines=True).tables["root"].rows, 1)
        self.assertEqual(list(qvejmap.open('[{"a":"ü"}]'.encode("latin-1"), encoding="latin1")["root"])[0]["a"], "ü")
        for wrong in ({"naming": "x"}, {"lines": False}, {"memory": 0}, {"threads": 0}, {"depth": -1}):
            with self.subTest(**wrong), self.assertRaises(ValueError):
                qvejmap.open(TEXT, **wrong)


if __name__ == "__main__":
    unittest.main()
