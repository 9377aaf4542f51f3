"""Wrong arguments: each is told by its name, before anything is done."""

import os
import tempfile
import unittest

import qvejmap

TEXT = b'[{"a":1}]'


class Arguments(unittest.TestCase):
    def test_that_are_wrong_are_named(self):
        doc = qvejmap.open(TEXT)
        endless = {}
        endless["DATASETS"] = endless
        table, scan = doc["root"], qvejmap.PartialScan(TEXT)
        with tempfile.TemporaryDirectory() as folder:
            file, out = os.path.join(folder, "a.json"), os.path.join(folder, "out")
            with open(file, "wb") as writer:
                writer.write(TEXT)
            for call, wrong in (
                (lambda **given: qvejmap.open(**{"source": TEXT, **given}), [
                    ("source", None, 3, [3], [TEXT], [{"a": 1}], {"a": 1}, [], "a\0b", "\ud800"),
                    ("map", 3, TEXT, {"DATASETS": {1}}, endless, "a\0b"), ("shape", 3, b"drop /root/a", [3], "a\0b"),
                    ("lines", False, 1, "yes"), ("encoding", None, 3, b"utf-8", "\ud800"),
                    ("memory", 0, -1, 10**30, 1.5, "1G"), ("threads", 0, -1, 1025, "2", 2.0),
                    ("exact", 1, "no", None), ("naming", None, "Map", []), ("carry", 1, "no"),
                    ("depth", -1, None, 10**30), ("max_paths", -1, None, 10**30)]),
                (lambda **given: qvejmap.convert(**{"source": file, "out": out, **given}), [
                    ("source", None, 3), ("out", None, 3, "a\0b"), ("format", 3, "pdf"), ("tables", "a", 3, [3], None),
                    ("paths", "/root", [b"/root"]), ("alldata", 1), ("force", "yes"), ("existing", None, "Replace"),
                    ("null", 3), ("packing", 3, "zip"), ("dates", None), ("database_schema", None, 3),
                    ("memory", 10**30)]),
                (doc.find, [("path", 3, [3], b"/root"), ("value", 1), ("regex", 1), ("ignore_case", 1),
                            ("limit", 0, 10**30, 1.5)]),
                (doc.to_arrow, [("tables", "root", 3, [3])]),
                (table.batches, [("rows", 0, 1.5, "2", None, 10**30), ("columns", "a", 3, [3])]),
                (doc.map.explain, [("column", None, 3, "\ud800")]),
                (lambda map: doc.map.diff(map), [("map", None, 3, TEXT)]),
                (lambda map: doc.map.merge(map), [("map", None, 3)]),
                (lambda **given: qvejmap.parts(**{"file": file, **given}), [
                    ("file", None, 3, TEXT), ("size", 0, 1.5, 10**30), ("lines", 1), ("encoding", None)]),
                (lambda **given: qvejmap.Part.lines_of(**{"file": file, "begin": 5, "end": 9, **given}), [
                    ("begin", -1, 1.5), ("end", 4, None)]),
                (lambda **given: qvejmap.PartialScan(**{"source": TEXT, **given}), [
                    ("source", None, file), ("lines", "no"), ("encoding", None), ("depth", -1, None), ("max_paths", 10**30)]),
                (qvejmap.PartialScan.merge, [("scans", None, [scan, 3])]),
                (qvejmap.PartialScan.from_bytes, [("data", None, "x")]),
                (qvejmap.Part.whole, [("file", None, TEXT)]),
                (doc.map.save, [("path", None, 3, "\ud800", "a\0b")]),
            ):
                for name, *values in wrong:
                    for value in values:
                        with self.subTest(name, value=value), self.assertRaisesRegex((TypeError, ValueError), f"^{name}: "):
                            call(**{name: value})
            self.assertEqual(os.listdir(folder), ["a.json"])

    def test_that_are_numbers_of_other_kinds_are_taken(self):
        class Number:
            def __index__(self):
                return 2

        doc = qvejmap.open(b'[{"a":1},{"a":1},{"a":1}]', threads=Number(), memory=2**64 - 1, depth=2**64 - 1, max_paths=Number())
        self.assertEqual([len(batch) for batch in doc["root"].batches(2**64 - 1)], [3])
        self.assertEqual(len(doc.find(limit=Number())), 2)

    def test_that_give_no_bytes_are_told(self):
        class Reader:
            def read(self, size):
                return 3

        for wrong, call in ((TypeError, lambda: qvejmap.open(Reader())),
                            (TypeError, lambda: qvejmap.PartialScan(TEXT) + 3),
                            (KeyError, lambda: qvejmap.open(TEXT)["no"])):
            with self.assertRaises(wrong):
                call()


if __name__ == "__main__":
    unittest.main()
