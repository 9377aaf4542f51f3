"""What a document tells beside its tables."""

import os
import tempfile
import unittest
import warnings

import polars
import pyarrow
import qvejmap
from documents import ODD, large

MIXED = b'{"o":[{"n":"x","u":1},{"n":"12"},{"n":3}],"o2":[[1,2],[3]]}'
NUMERIC = {"DATASETS": [{"DSNAME": "T", "TABLEPATH": "/root/o", "VARIABLES": [
    {"NAME": "n", "TYPE": "NUMERIC", "PATH": "/root/o/n"}]}]}


class Documents(unittest.TestCase):
    def test_all_tables_come_of_one_walk(self):
        for text in (ODD["nested"], large()):
            for threads in (1, 2):
                doc = qvejmap.open(text, threads=threads)
                arrow = doc.to_arrow()
                self.assertEqual(list(arrow), list(doc.tables))
                for name, table in doc.tables.items():
                    self.assertEqual(arrow[name].to_pylist(), list(table), name)
                last = list(doc.tables)[-1]
                self.assertEqual(list(doc.to_arrow([last])), [last])
                self.assertEqual(doc.to_polars([last])[last].to_dicts(), arrow[last].to_pylist())
        with self.assertRaises(KeyError):
            doc.to_arrow(["no"])
        with self.assertRaises(TypeError):
            doc.to_arrow("root")
        self.assertEqual(doc.to_arrow([]), {})

    def test_tables_of_one_name_are_all_there(self):
        tables = [{"DSNAME": name, "TABLEPATH": path, "VARIABLES": [
            {"NAME": "x", "TYPE": "NUMERIC", "PATH": path + "/x"}, {"NAME": "o", "TYPE": "ORDINAL", "PATH": "/root/a"}]}
            for name, path in (("T", "/root/a"), ("T", "/root/a/b"), ("T~2", "/root/a/c"))]
        doc = qvejmap.open(b'{"a":[{"x":1,"b":[{"x":2}],"c":[{"x":"bad"}]}]}', map={"DATASETS": tables})
        with self.assertWarns(qvejmap.ValuesWarning):
            rows = {name: [row["x"] for row in table] for name, table in doc.tables.items()}
        self.assertEqual(rows, {"T": [1], "T~2": [2], "T~2~2": [None]})
        self.assertEqual({name: table["x"].to_pylist() for name, table in doc.to_arrow().items()}, rows)
        self.assertEqual([of.table for of in doc.rejects], ["T~2~2"])

    def test_alldata_has_every_value(self):
        for text, values in ((ODD["nested"], 6), (large(), 12000 * 6)):
            doc = qvejmap.open(text)
            alldata = doc.alldata
            self.assertEqual((alldata.name, sum(row["Value"] is not None for row in alldata)), ("ALLDATA", values))
            self.assertIs(doc.alldata, alldata)
        doc.close()
        self.assertEqual(alldata.columns[0].name, "P")  # it stays open until it is dropped

    def test_what_has_changed_since_is_told_and_can_be_looked_at(self):
        with tempfile.TemporaryDirectory() as folder:
            file = os.path.join(folder, "a.json")
            with open(file, "wb") as out:
                out.write(large())
            known, doc = qvejmap.open(file), qvejmap.open(file)
            self.assertEqual(known["root"].rows, 12000)
            with open(file, "ab") as out:
                out.write(b"\n")
            for name, use in (("alldata", lambda of: of.alldata), ("find", lambda of: of.find(value="x")),
                              ("rows", lambda of: list(of["root"])), ("account", lambda of: of.account())):
                for of in (known, doc):
                    with self.subTest(name), self.assertRaisesRegex(qvejmap.FileError, "has changed"):
                        use(of)
            self.assertIn("root: 12,000 rows", repr(known))
            self.assertIn(">12,000 rows; rows cannot be read<", known["root"]._repr_html_())
            self.assertIn("root: its rows cannot be read", repr(doc))
            self.assertIn("unreadable rows, 4 columns", repr(doc["root"]))
            self.assertIn("/root/items", doc._repr_html_())
            self.assertIn(">4 columns; rows cannot be read<", doc["root"]._repr_html_())

    def test_a_look_raises_no_warning(self):
        with warnings.catch_warnings():
            warnings.simplefilter("error")
            doc = qvejmap.open(MIXED, map=NUMERIC)
            self.assertIn("T: 3 rows", repr(doc))

    def test_knows_the_names_of_its_tables(self):
        doc = qvejmap.open(ODD["nested"])
        self.assertEqual((list(doc), "orders" in doc, "no" in doc, 3 in doc), (["orders", "orders_items"], True, False, False))

    def test_values_that_are_not_in_the_tables_are_told(self):
        with warnings.catch_warnings(record=True) as told:
            warnings.simplefilter("always")
            doc = qvejmap.open(MIXED, map=NUMERIC)
            self.assertEqual([row["n"] for row in doc["T"]], [None, 12, 3])
            self.assertEqual([row["n"] for row in doc["T"]], [None, 12, 3])
        self.assertEqual([(w.category, w.filename) for w in told], [(qvejmap.ValuesWarning, __file__)])
        self.assertEqual(list(doc.rejects), [("T", "n", 1, "x", "not a number")])
        fates = {path.path: (path.values, path.cells, path.no_column.values, path.rejected)
                 for path in doc.account()}
        self.assertEqual(fates["/root/o/n"], (3, 2, 0, (1, 1)))
        self.assertEqual(fates["/root/o/u"], (1, 0, 1, (0, 0)))
        for stream in (pyarrow.table, pyarrow.schema, polars.DataFrame):
            with self.subTest(stream), self.assertWarnsRegex(qvejmap.ValuesWarning, "1 value is rejected"):
                stream(qvejmap.open(MIXED, map=NUMERIC)["T"])
        # Counted in parts as well.
        rows = b",".join(b'{"id":%d,"n":"%s"}' % (i, b"x" * 400) for i in range(12000))
        map = {"DATASETS": [{"DSNAME": "T", "TABLEPATH": "/root", "VARIABLES": [
            {"NAME": "n", "TYPE": "NUMERIC", "PATH": "/root/n"}]}]}
        doc = qvejmap.open(b"[" + rows + b"]", map=map)
        with self.assertWarnsRegex(qvejmap.ValuesWarning, "12,000 values are rejected"):
            self.assertEqual(doc["T"].rows, 12000)
        self.assertEqual([value.row for value in doc.rejects], list(range(1, 12001)))

    def test_its_shape_and_carried_columns(self):
        prices = b'{"rates":{"EUR":{"x":1},"USD":{"x":2}}}'
        self.assertEqual(qvejmap.open(prices).shape, [])
        self.assertEqual(qvejmap.open(prices, shape=["rows  /root/rates as code"]).shape,
                         ["rows /root/rates as code"])
        late = b'[{"i":[{"a":1},{"a":2}],"id":7},{"i":[{"a":3}],"id":8}]'
        map = {"DATASETS": [{"DSNAME": "T", "TABLEPATH": "/root/i", "VARIABLES": [
            {"NAME": "id", "TYPE": "NUMERIC", "PATH": "/root/id"}, {"NAME": "a", "TYPE": "NUMERIC", "PATH": "/root/i/a"}]}]}
        table = qvejmap.open(late, map=map, carry=True)["T"]
        for rows in (list(table), table.to_arrow().to_pylist()):
            self.assertEqual([(row["id"], row["a"]) for row in rows], [(7, 1), (7, 2), (8, 3)])


class Paths(unittest.TestCase):
    def test_of_mistakes(self):
        for text, path in (
            (b'{"a":{"b":[1,{"c":2x}]}}', "/root/a/b"),
            (b'{"a":1,"b":{"c":tru}}', "/root/b/c"),
            (b"[1,2,", "/root"),
            (b'{"a":{"b":1},}', "/root"),
        ):
            with self.subTest(text), self.assertRaises(qvejmap.NotJson) as raised:
                qvejmap.open(text)
            self.assertEqual(raised.exception.path, path)


if __name__ == "__main__":
    unittest.main()
