"""Conversions, against those of the command line."""

import filecmp
import io
import json
import os
import sqlite3
import subprocess
import tempfile
import unittest

import qvejmap
from documents import ODD, TOOL, large


class Named(io.BytesIO):
    """A file object that tells no more than its name."""

    def __init__(self, name):
        super().__init__(b'[{"a":1}]')
        self.name = name


class Conversions(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        self.file = self.path("a.json")
        with open(self.file, "wb") as file:
            file.write(large())

    def path(self, name):
        return os.path.join(self.folder, name)

    @unittest.skipUnless(TOOL, "there is no tool to compare with")
    def test_write_what_the_command_line_writes(self):
        for arguments, words in (
            ({}, []),
            ({"format": "ndjson", "packing": "gzip", "tables": ["*items"]},
             ["--format", "ndjson", "--gzip", "--table", "*items"]),
            ({"null": "NULL", "dates": False, "alldata": True, "paths": ["/root"]},
             ["--null", "NULL", "--dates", "off", "--alldata", "--path", "/root"]),
            ({"threads": 1, "naming": "original", "carry": True}, ["--naming", "original", "--carry"]),
        ):
            with self.subTest(**arguments):
                ours, theirs = self.path("ours"), self.path("theirs")
                done = qvejmap.convert(self.file, ours, force=True, **arguments)
                subprocess.run([TOOL, "convert", self.file, "-o", theirs, "--force", *words], check=True,
                               capture_output=True)
                names = sorted(os.listdir(theirs))
                self.assertEqual(sorted(os.listdir(ours)), names)
                _, differ, odd = filecmp.cmpfiles(ours, theirs, names, shallow=False)
                self.assertEqual((differ, odd), (["datapackage.json"], []))  # it tells how it was made
                with open(os.path.join(ours, "datapackage.json"), encoding="utf-8") as file:
                    rows = {of["title"] if "title" in of else of["name"]: of for of in json.load(file)["resources"]}
                self.assertEqual(len(rows), len(done.tables))

    def test_tell_mistakes_in_the_words_of_this_package(self):
        out = self.path("a.db")
        qvejmap.convert(b'[{"a":1}]', out)
        for text, target, words in ((b'[{"a":1}]', out, "existing='replace' makes"),
                                    (b'{"a":[{"b":1}],"c":[{"d":1}]}', self.path("a.parquet"), r"tables=\[NAME\]")):
            with self.assertRaisesRegex(qvejmap.Error, words):
                qvejmap.convert(text, target)

    def test_of_a_document_that_is_open_go_into_one_file(self):
        for suffix, format in ((".db", None), (".xlsx", None), ("", "sqlite")):
            out = self.path("out" + suffix)
            with qvejmap.open(ODD["nested"]) as doc:
                done = qvejmap.convert(doc, out, format=format)
            self.assertEqual(done.tables, [("orders", 2), ("orders_items", 3)])
            if suffix != ".xlsx":
                with sqlite3.connect(out) as database:
                    self.assertEqual(database.execute("select count(*) from orders_items").fetchone(), (3,))
        self.assertEqual(qvejmap.convert(doc := qvejmap.open(ODD["nested"]), self.path("out.db"), existing="append").tables,
                         done.tables)
        with sqlite3.connect(self.path("out.db")) as database:
            self.assertEqual(database.execute("select count(*) from orders_items").fetchone(), (6,))
        self.assertEqual(doc["orders"].rows, 2)

    def test_leave_what_was_there_and_say_what_is_wrong(self):
        out = self.path("out")
        os.mkdir(out)
        with open(os.path.join(out, "root.csv"), "w", encoding="utf-8") as file:
            file.write("mine\n")
        before = sorted(os.listdir(self.folder))
        for kind, target, arguments in (
            (qvejmap.FileError, out, {}),
            (qvejmap.FileError, self.file, {"format": "sqlite", "force": True}),
            (qvejmap.FileError, self.path("no/such/place.db"), {}),
            (qvejmap.Error, self.path("new"), {"tables": ["no*"]}),
            (ValueError, self.path("new"), {"format": "doc"}),
            (ValueError, self.path("new.db"), {"packing": "gzip"}),
            (ValueError, self.path("new.db"), {"null": "x"}),
            (ValueError, self.path("new"), {"existing": "append"}),
            (ValueError, self.path("new.db"), {"existing": "append", "force": True}),
            (ValueError, self.path("new"), {"database_schema": "x"}),
            (qvejmap.NotJson, self.path("new"), {"encoding": "utf-16"}),
        ):
            with self.subTest(target, **arguments), self.assertRaises(kind):
                qvejmap.convert(self.file, target, **arguments)
        with self.assertRaises(TypeError):
            qvejmap.convert(qvejmap.open(b"[{}]"), self.path("new"), lines=True)
        for arguments in ({"tables": "root"}, {"paths": "/root"}):
            with self.assertRaisesRegex(TypeError, "a list"):
                qvejmap.convert(self.file, self.path("new"), **arguments)
        self.assertEqual(sorted(os.listdir(self.folder)), before)
        with open(os.path.join(out, "root.csv"), encoding="utf-8") as file:
            self.assertEqual(file.read(), "mine\n")

    def test_take_names_that_come_once(self):
        again = self.path("again")
        one, other = ((name for name in [self.file]), (name for name in [self.file]))
        self.assertEqual(qvejmap.convert(one, again).tables, [("root", 12000), ("items", 24000)])
        self.assertEqual(list(qvejmap.open(other).tables), ["root", "items"])

    def test_replace_no_file_that_they_are_made_from(self):
        with open(self.path("d.parquet"), "wb") as file:
            file.write(b'[{"a":1}]')
        map = self.path("m.parquet")
        qvejmap.open(self.path("d.parquet")).map.save(map)
        shape = self.path("s.parquet")
        with open(shape, "w", encoding="ascii") as file:
            file.write("drop /root/b\n")
        given = {"map": map, "shape": shape}
        with open(self.path("d.parquet"), "rb") as stream, open(os.dup(stream.fileno()), "rb") as number:
            for source, arguments in (
                (self.path("d.parquet"), given),
                (qvejmap.open(self.path("d.parquet"), **given), {}),
                (stream, given),
                (number, given),
                (Named(self.path("d.parquet")), given),
                (qvejmap.open(stream, **given), {}),
            ):
                for out in ("d.parquet", "m.parquet", "s.parquet"):
                    with self.subTest(out, source=source), self.assertRaisesRegex(qvejmap.FileError, "itself, not replaced"):
                        qvejmap.convert(source, self.path(out), force=True, **arguments)
        self.assertEqual(len(qvejmap.convert(io.BytesIO(b'[{"a":1}]'), self.path("d.parquet"), force=True).tables), 1)

    def test_warn_of_values_that_were_not_written(self):
        map = {"DATASETS": [{"DSNAME": "T", "TABLEPATH": "/root", "VARIABLES": [
            {"NAME": "n", "TYPE": "NUMERIC", "PATH": "/root/n"}]}]}
        with self.assertWarnsRegex(qvejmap.ValuesWarning, "1 value is rejected"):
            qvejmap.convert(b'[{"n":"x"},{"n":2}]', self.path("new"), map=map)


if __name__ == "__main__":
    unittest.main()
