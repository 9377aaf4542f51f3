"""Plans: the parts of a document, each read by itself, have the tables of the whole."""

import csv
import gzip
import json
import os
import pickle
import random
import subprocess
import tempfile
import unittest

import pyarrow

import qvejmap
from documents import TOOL, arrow_files_of, can_compare
from qvejmap._files import files_of
from qvejmap._partial_scan import cut
from qvejmap._spark_options import absolute


def rows(count, seed):
    """Objects with what makes types, keys and tables differ from part to part."""
    chance = random.Random(seed)
    for i in range(count):
        more = ',"late":[{"n":%d.5}]' % i if i > count - 4 else ""
        items = ",".join('{"sku":"%s","p":%s}' % ("x" * chance.randrange(40), chance.choice(("1", "2.25", "null", '"?"' if i > 90 else "3")))
                         for _ in range(chance.randrange(4)))
        yield '{"id":%d,"on":"2024-01-%02d","t":{"a":true,"b":[%s]},"items":[%s]%s}' % (
            i, i % 28 + 1, ",".join(["1"] * chance.randrange(3)), items, more)


def planned(files, size, lines=False, **options):
    parts = [part for file in files for part in qvejmap.parts(file, size, lines=lines)]
    plan = qvejmap.Plan(parts, [pickle.loads(pickle.dumps(qvejmap.PartialScan(part))) for part in parts], **options)
    facts = [plan.facts(part) for part in plan.parts]
    half = len(facts) // 2
    plan.learn([plan.sum(facts[:half]), plan.sum(facts[half:])])
    return plan


class Plans(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)

    def file(self, name, text):
        path = os.path.join(self.folder.name, name)
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)
        return path

    def compare(self, files, plan, **options):
        """All parts together to the whole, to the metadata of columns."""
        want = qvejmap.open(files if len(files) > 1 else files[0], **options)
        tables = want.to_arrow()
        light = pickle.loads(pickle.dumps(plan.without_parts()))
        parts = [light.open(part) for part in pickle.loads(pickle.dumps(plan.parts))]
        if plan.table is None:
            self.assertEqual(list(parts[0]), list(tables))
        for name in parts[0]:
            table = tables[name]
            rows = [part[name].to_arrow() for part in parts]
            got = pyarrow.concat_tables(rows)
            ordinals = plan.ordinals(name)
            for column, ranges in ordinals.items():
                for of, can_be in zip(rows, ranges):
                    self.assertTrue(all(v is None or v in can_be for v in of[column].to_pylist()), (name, column))
            if (key := want[name].key) in ordinals:
                most = max([*got[key].to_pylist(), 0])  # the last one may be that of a row that is never complete
                self.assertIn(ordinals[key][-1].stop - 1, (most, most + 1, 2**64 - 1), name)
            self.assertTrue(got.schema.equals(table.schema, check_metadata=True), (name, got.schema, table.schema))
            self.assertEqual(str(got.to_pylist()), str(table.to_pylist()), name)
            self.assertEqual(parts[-1][name].key, want[name].key)
            self.assertEqual(parts[-1][name].parent, want[name].parent)
            self.assertEqual(parts[0][name].rows, want[name].rows)
        if plan._alldata:
            table = want.alldata.to_arrow()
            got = pyarrow.concat_tables([part.alldata.to_arrow() for part in parts])
            self.assertTrue(got.schema.equals(table.schema, check_metadata=True), (got.schema, table.schema))
            self.assertEqual(got.to_pylist(), table.to_pylist())
            self.assertEqual(parts[-1].alldata.rows, table.num_rows)
        return len(parts)

    def test_parts_have_the_rows_types_and_keys_of_the_whole(self):
        text = list(rows(100, 1))
        map = {"DATASETS": [{"DSNAME": "I", "TABLEPATH": "/root/items", "VARIABLES": [
            {"NAME": "sku", "TYPE": "CHARACTER", "PATH": "/root/items/sku"},
            {"NAME": "id", "TYPE": "NUMERIC", "PATH": "/root/id"}]}]}
        documents = {
            "array.json": "[" + ",\n".join(text) + "]",
            "lines.jsonl": "\n".join(text) + "\n",
            "member.json": '{"n":7,"v":{"w":1},"rows":[' + ",".join(text) + '],"m":8,"z":[{"y":1}]}',
        }
        for name, document in documents.items():
            file = self.file(name, document)
            for size in (1, 1000, 1 << 20):
                for options in ({}, {"exact": True}, {"naming": "original"}, {"map": map, "carry": True}):
                    if name == "member.json" and "map" in options:
                        continue
                    with self.subTest(name, size=size, options=options):
                        plan = qvejmap.Plan.from_json(planned([file], size, alldata=True, **options).to_json())
                        self.assertEqual(self.compare([file], plan, **options) > 3, size < 2000)

    def test_of_one_table_have_those_above_it(self):
        text = "[" + ",".join(rows(100, 1)) + ',{"id":7,"zebra":[{"x":1,"y":[1,2]}]}' * 20 + "]"
        file = self.file("a.json", text)
        ordinals = {name: {"NAME": name, "TYPE": "ORDINAL", "PATH": "/root/" + name} for name in ("items", "zebra")}
        map = {"DATASETS": [{"DSNAME": name, "TABLEPATH": path, "VARIABLES": [
            *(ordinals[each] for each in above), {"NAME": "V", "TYPE": "CHARACTER", "PATH": f"{path}/{column}"}]}
            for name, path, above, column in (
                ("A", "/root/items", (), "sku"), ("A", "/root/late", (), "n"), ("Z", "/root/zebra", ("items", "zebra"), "x"),
                ("I", "/root/items", ("zebra", "items"), "p"))]}
        for table, names, options in (
            ("root", ["root"], {}), ("items", ["root", "items"], {}), ("/root/zebra/y", ["root", "zebra", "zebra_y"], {}),
            ("t_b", ["root", "t", "t_b"], {}), ("late", ["root", "late"], {"carry": True}),
            ("ALLDATA", [], {}), ("A", ["A"], {"map": map}), ("A~2", ["A", "A~2", "Z", "I"], {"map": map}),
            ("I", ["Z", "I"], {"map": map}),  # either is above the other
        ):
            with self.subTest(table):
                for plan in (qvejmap.Plan.find(file, size=2000, table=table, **options),
                             planned([file], 2000, table=table, **options)):
                    plan = qvejmap.Plan.from_json(plan.to_json())
                    self.assertEqual(plan.table, table)
                    self.assertEqual(list(plan.open(plan.parts[-1])), names)
                    self.assertGreater(self.compare([file], plan, **options), 3)
        for table, options, message in (("no", {}, "no 'no' among root, "), ("/root/items", {"map": map}, "more than one with path '/r")):
            with self.assertRaisesRegex(KeyError, message):
                qvejmap.Plan.find(file, table=table, **options)

    def test_files_are_told_apart(self):
        files = [self.file("a.json", "[" + ",".join(rows(30, 2)) + "]"), self.file("b.json", '{"id":"x"}'),
                 self.file("c.jsonl", "\n".join(rows(40, 3)))]
        self.compare(files, planned(files, 900, source_column="source", alldata=True))
        files.append(self.file("d.json", '{"id":12345678901234567890}'))
        self.compare(files, planned(files, 900, source_column="source", exact=True), exact=True)

    def test_blank_lines_are_nothing_and_files_of_them_empty_arrays(self):
        text = self.file("a.jsonl", '\n\n{"a":1}\n\n\n{"c":[1]}\n \n{"a":2,"b":[1,2]}\n\n{"c":[]}\n\n\n')  # no row of c at the end
        blank = self.file("b.jsonl", "\n\n\n")
        for files in ([text], [blank, text], [text, blank, text], [blank, blank, text]):
            for size in (1, 5, 1 << 20):
                for table in (None, "ALLDATA", "c"):
                    with self.subTest(files, size=size, table=table):
                        source = files if len(files) > 1 else files[0]
                        self.compare(files, qvejmap.Plan.find(source, size=size, table=table))
        self.assertGreater(len(qvejmap.Plan.find(text, size=1).parts), 20)
        with self.assertRaisesRegex(qvejmap.Error, "blank"):
            planned([text, blank], 1)

    def test_numbers_that_no_double_keeps_are_texts(self):
        # One of them is in one part; the others take their text from the sum.
        text = ['{"id":%d,"n":%s,"items":[{"p":%d}]}' % (i, "12345678901234567890123.5" if i == 70 else "1.0", i) for i in range(100)]
        file = self.file("exact.json", "[" + ",".join(text) + "]")
        plan = qvejmap.Plan.find(file, size=500, exact=True)
        self.assertGreater(self.compare([file], qvejmap.Plan.from_json(plan.to_json()), exact=True), 3)
        values = plan.open(plan.parts[0])["root"].to_arrow()["n"].to_pylist()
        self.assertEqual(values[0], "1.0")

    def test_are_found_by_workers(self):
        def run(function, items):
            return [pickle.loads(pickle.dumps(pickle.loads(pickle.dumps(function))(item))) for item in items]

        text = list(rows(100, 5))
        with gzip.open(os.path.join(self.folder.name, "b.json.gz"), "wt") as file:
            file.write("[" + ",".join(text[:10]) + "]")
        with open(os.path.join(self.folder.name, "c.json"), "w", encoding="utf-16") as file:
            file.write("[" + ",".join(text[10:20]) + "]")
        a = self.file("a.json", "[" + ",".join(text) + "]")
        apart = self.file("d.json", "[" + ",".join('{"":%d}' % i for i in range(100)) + "]")
        scalars = self.file("e.json", '[1,[2,{"a":3}],' + ",".join(text[:20]) + "]")
        forced = self.file("f", "\n".join(text))
        left = self.file("g.json", "[" + ",".join('{"a":[{"n":%d}]},{"x":%d}' % (i, i) for i in range(500)) + "]")
        crossing = {"DATASETS": [{"DSNAME": "T", "TABLEPATH": "/root/a", "VARIABLES": [
            {"NAME": "x", "TYPE": "NUMERIC", "PATH": "/root/x"}]}]}
        ends = [self.file(f"end{i}.json", '[{"b":[{"c":%d}]},{"b":[]}]' % i) for i in range(3)]
        lines = self.file("l.jsonl", '{"b":[{"c":1}]}\n{"b":[]}\n' * 300)
        for files, options, parts in (
            (ends, {}, 3), ([lines], {}, 5),
            ([a], {}, 10), ([apart], {}, 1), ([scalars], {}, 1), ([forced], {"lines": True}, 10),
            ([left], {"map": crossing}, 1), ([left], {}, 10), ([a, scalars], {}, 10), ([a, a], {}, 20),
            ([os.path.join(self.folder.name, name) for name in ("a.json", "b.json.gz", "c.json")], {}, 12),
        ):
            with self.subTest(files=files):
                plan = qvejmap.Plan.find(files if len(files) > 1 else files[0], run, size=1000, alldata=True, **options)
                found = self.compare(files, qvejmap.Plan.from_json(plan.to_json()), **options)
                self.assertTrue(found >= parts > 1 or found == parts, found)
        # Elements that are no objects, and values that get into a row of the next file: together.
        crosses = self.file("m.json", '[{"a":[{"n":1}]},{"x":1}]')
        for files, options in (([a, scalars, a], {}), ([crosses, left, crosses], {"map": crossing}), ([crosses, scalars], {"exact": True})):
            with self.subTest(files=files):
                plan = qvejmap.Plan.find(files, run, size=1000, **options)
                parts = self.compare(files, qvejmap.Plan.from_json(plan.to_json()), **options)
                self.assertEqual(parts, 1 if len(files) == 3 else 2)
        with open(crosses, "a", encoding="utf-8") as file:
            file.write("\n")
        with self.assertRaisesRegex(qvejmap.FileError, "m.json: .*changed"):
            plan.open(plan.parts[0])
        with self.assertRaisesRegex(qvejmap.Error, '""'):
            qvejmap.Plan.find([a, apart], run)
        broken = self.file("h.jsonl", '{"a":1}\n' * 500 + '{"a":}\n' + '{"a":1}\n' * 500 + "}")
        with self.assertRaises(qvejmap.NotJson) as raised:
            qvejmap.Plan.find([a, broken], run, size=1000)
        self.assertEqual((raised.exception.file, raised.exception.line), (broken, 501))

    def test_lines_are_cut_without_being_read(self):
        good = ['{"a":%d,"b":[{"c":"%s"}]}' % (i, "x" * (i % 9)) for i in range(12)]
        texts = {
            "plain": "\n".join(good) + "\n",
            "no last line feed": "\n".join(good),
            "blank lines": "\n\n  \n" + "\n\n".join(good) + "\n\n\n\n \n",
            "CR LF": "\r\n".join(good) + "\r\n",
            "byte order mark": "\ufeff" + "\n".join(good),
            "longer than parts": "\n".join([*good[:3], '{"a":"%s"}' % ("y" * 400), *good[3:]]),
            "nothing but blank lines": "\n\n\n \n\n",
        }
        mistakes = ('{"a":}', '{"a":1} 2', '{"a":[[[[1]]]]}', '{"a":"\x01"}', '{"a"', "}")
        for name, text in texts.items():
            lines = text.split("\n")
            for size in (8, 60, 300):
                with self.subTest(name, size=size):
                    file = self.file("a.jsonl", text)
                    self.compare([file], qvejmap.Plan.find(file, size=size))
                    for i in range(1, len(lines), 3):
                        self.file("a.jsonl", "\n".join([*lines[:i], mistakes[i // 3 % len(mistakes)], *lines[i:]]))
                        told = []
                        for read in (qvejmap.open, lambda file, depth: qvejmap.Plan.find(file, size=size, depth=depth)):
                            with self.assertRaises(qvejmap.Error) as raised:
                                read(file, depth=4)
                            error = raised.exception
                            told.append((type(error), str(error), error.line, error.column, error.offset, error.path))
                        self.assertEqual(told[1], told[0])
        text = texts["plain"]
        file = self.file("a.jsonl", text)
        for planned in qvejmap.Plan.find(file, size=60).parts:
            begin, line = planned.part.begin, planned.part.pieces[0][4]
            self.assertEqual(line, 1 if begin == 0 else text.count("\n", 0, text.index("\n", begin - 1) + 1) + 1)
        os.truncate(file, 1 << 40)  # takes no room, and for ever to read
        self.assertEqual(len(cut(file, 1 << 30, "auto", False, 1 << 40)), 1024)

    def test_a_file_with_a_mistake_and_parts_that_are_not_apart_tells_the_line(self):
        file = self.file("a.jsonl", '{"a":1}\n' * 30 + "7\n" * 30 + '{"a":}\n' + '{"a":1}\n' * 30)
        with self.assertRaises(qvejmap.NotJson) as raised:
            qvejmap.Plan.find(file, size=50)
        self.assertEqual(raised.exception.line, 61)

    def test_what_is_bad_is_left_out(self):
        good = [b'{"a":%d,"b":[{"c":"%s"}]}' % (i, b"x" * (i % 9)) for i in range(40)]
        bad = [b'{"a":}', b'{"a":1} 2', b'{"a":"\x01"}', b'{"a":"\xff"}', b'{"a"', b"}", b"x", b'{"new":{"z":[1,2}}']
        mixed = b"\n".join(line for i, line in enumerate(good) for line in
                           ([line, bad[i // 3 % len(bad)], b""] if i % 3 == 0 else [line]))
        array, zipped = b"[" + b",".join(good) + b"]", gzip.compress(mixed)
        files = {
            "l.jsonl": mixed, "g.jsonl.gz": zipped, "marked.jsonl": b"\xef\xbb\xbf" + mixed.replace(b"\n", b"\r\n"),
            "u.jsonl": mixed.decode("latin-1").encode("utf-16"), "bad.jsonl": b"\n".join(bad * 30), "a.json": array,
            "wrong.json": array[:-1] + b',{"q":}' + array[1:], "twice.json": array[:-1] + (b',{"q":},' + array[1:-1]) * 2 + b"]", "short.json": array[:-1], "empty.json": b"",
            "scalar.json": b"12", "coded.json": "[1".encode("utf-16") + b"\xff\xdbA", "cut.json.gz": gzip.compress(array)[:60],
            "member.json": b'{"n":7,"rows":' + array + b',"m":{', "mixed.json": b'[1,{"a":1}]',
            "wide.jsonl": ('{"a":"%s"}\n{"a":}\n' % ("\u00e9" * 300) * 3).encode("utf-16"),
        }
        for name, data in files.items():
            with open(os.path.join(self.folder.name, name), "wb") as file:
                file.write(data)
        here = os.getcwd()
        os.chdir(self.folder.name)
        self.addCleanup(os.chdir, here)
        for names, left_out in (
            (["l.jsonl"], []), (["g.jsonl.gz"], []), (["u.jsonl"], []), (["wide.jsonl"], []),
            (["bad.jsonl"], []), (["mixed.json", "l.jsonl", "mixed.json", "l.jsonl"], []), (["l.jsonl", "l.jsonl"], []),
            (["bad.jsonl", "marked.jsonl", "a.json"], []), (["wrong.json", "a.json", "twice.json"],
             ["wrong.json:1:1107: a value was expected", "twice.json:1:1107: a value was expected"]),
            (["a.json", "short.json", "empty.json", "scalar.json", "l.jsonl", "coded.json", "short.json"],
             ["short.json:1:1101: the document ends before a complete object or array",
              "empty.json:1:1: the document ends before a complete object or array",
              "scalar.json:1:1: a document must be an object or an array",
              "coded.json:1:3: the text is not valid UTF-16LE",
              "short.json:1:1101: the document ends before a complete object or array"]),
            (["cut.json.gz", "a.json", "member.json"],
             ["cut.json.gz: the gzip data end too soon", "member.json:1:1122: the document ends before a complete object or array"]),
        ):
            for size in (60, 1 << 20):
                with self.subTest(names, size=size):
                    plan = qvejmap.Plan.find(names if len(names) > 1 else names[0], size=size, skip_bad=True)
                    plan = qvejmap.Plan.from_json(plan.to_json())
                    self.assertEqual(plan.bad_files, left_out)
                    told = [line for part in plan.parts for line in plan.without_parts().bad_lines(part)]
                    self.assertEqual(plan.bad_line_count, len(told))
                    self.assertEqual(told == [], not any(name.count("jsonl") for name in names))
                    if can_compare():
                        self.compare_with_tool(names, plan, told)
        for names, error, what in (
            (["short.json", "empty.json"], qvejmap.NotJson, "^empty.json:1:1:"),
            (["a.json", "missing.json"], qvejmap.FileError, "missing.json"),
        ):
            with self.subTest(names), self.assertRaisesRegex(error, what):
                qvejmap.Plan.find(names, skip_bad=True)
        wide = self.file("columns.json", json.dumps([{f"a{i}": 1} for i in range(5000)]))
        with self.assertRaises(qvejmap.LimitReached):  # no part has so many
            qvejmap.Plan.find(wide, size=1000, max_paths=1000)
        for size in (50, 1 << 20):
            with self.assertRaises(qvejmap.LimitReached) as raised:
                qvejmap.Plan.find("l.jsonl", size=size, depth=2, skip_bad=True)
            self.assertEqual((raised.exception.line, raised.exception.column), (1, 13))

    def compare_with_tool(self, names, plan, told):
        skips = ("--skip-bad-lines", "--skip-bad-files")
        parts = [plan.open(part) for part in plan.parts]
        want = arrow_files_of(names[0], *names[1:], *skips)
        self.assertEqual(set(parts[0]), set(want))
        for name, table in want.items():
            got = pyarrow.concat_tables([part[name].to_arrow() for part in parts])
            self.assertTrue(got.schema.equals(table.schema, check_metadata=True), name)
            self.assertTrue(got.equals(table), name)
        done = subprocess.run([TOOL, "convert", *names, "-o", "tables", "--force", "--rejects", "rejects.csv", *skips],
                              capture_output=True)
        self.assertIn(done.returncode, (0, 1), done.stderr)
        with open("rejects.csv", newline="", encoding="latin-1") as file:
            lines = [f"{row['path']}: {row['reason']}" for row in csv.DictReader(file) if not row["table"]]
        self.assertEqual(told, lines)

    def test_have_the_shape_of_the_whole(self):
        def row(i):
            kinds = ('{"n":%d,"u":[%d]}' % (i, i), "[]", "{}", "7", '[{"z":1},2]')
            return '{"id":%d,"in":{"x":1,"deep":{"y":"%s"}},"m":{"w":1,"p":%s,"q%d":%s},"t":{"k":[1,{"v":null}]},"e":{},"items":[%s]}' % (
                i, "s" * (i % 5), kinds[i % 5], i % 2, kinds[i // 5 % 5], ",".join('{"sku":"a","p":%d}' % j for j in range(i % 4)))

        text = [row(i) for i in range(60)]
        lines, array = self.file("l.jsonl", "\n".join(text)), self.file("a.json", "[" + ",\n".join(text) + "]")
        member = self.file("m.json", '{"n":7,"in":{"q":{"r":1}},"rows":[' + ",".join(text) + '],"tail":{"in":{"x":1}}}')
        many, one = range(3, 1000), range(1, 2)
        # Rules, and whether the elements of the member are apart.
        for shape, apart in (
            (["rows /root as name"], one), (["rows /root/**/m as k except w", "rows /root/m/*"], many),
            (["inline /root/**/in", "inline /root/in/deep"], many), (["text /root/**/t"], many),
            (["drop /root/**/items"], many), (["only /root/items/p"], one), (["rows /root/m", "keep /root/m"], many),
            (["empty drop"], one), (["rows /root/rows"], one), (["drop /root/rows"], one), (["text /root/rows"], one),
            (["rows /root/rows/m as k", "drop /root/tail"], many), ("auto", None),
            (self.file("rules", "# of rows\nrows /root/rows/m as k\ninline /root/tail\n"), many),
        ):
            for files, parts in (([lines], many), ([array], many), ([lines, array], many), ([member], apart)):
                with self.subTest(shape=shape, files=files):
                    source = files if len(files) > 1 else files[0]
                    plan = qvejmap.Plan.from_json(qvejmap.Plan.find(source, size=1000, shape=shape).to_json())
                    self.assertIn(self.compare(files, plan, shape=shape), range(1, 1000) if parts is None else parts)
                    self.assertEqual(plan.shape, qvejmap.open(source, shape=shape).shape)
                    self.assertEqual(plan.open(plan.parts[0]).shape, plan.shape)
        rules = ["rows /root/m as k"]
        parts = qvejmap.parts(array, 400)
        plan = qvejmap.Plan(parts, [qvejmap.PartialScan(part, shape=rules) for part in parts], shape=rules)
        plan.learn([plan.facts(part) for part in plan.parts])
        self.compare([array], plan, shape=rules)
        with open(lines, "ab") as file:
            file.write(b'\n{"m":}\n[')
        names = ",".join('"k%d":{"v":%d}' % (i, i) for i in range(100))
        self.assertIn("rows /root/other", qvejmap.open(('{"other":{' + names + "}}").encode(), shape="auto").shape)
        bad = self.file("b.json", '{"other":{' + names + "}")
        plan = qvejmap.Plan.find([bad, lines], size=400, shape="auto", skip_bad=True)
        self.assertEqual((plan.shape, plan.bad_line_count), (qvejmap.open(lines.replace("l.jsonl", "a.json"), shape="auto").shape, 2))
        for wrong in (["rows"], ["drop /root/a", "inline x"], os.path.join(self.folder.name, "none")):
            told = []
            for read in (qvejmap.open, qvejmap.Plan.find):
                with self.assertRaises(qvejmap.Error) as raised:
                    read(array, shape=wrong)
                told.append((type(raised.exception), str(raised.exception), raised.exception.column))
            self.assertEqual(told[0], told[1])

    def test_parts_that_cannot_be_read_apart_are_errors(self):
        # A value of an object without rows is in the next row.
        map = {"DATASETS": [{"DSNAME": "T", "TABLEPATH": "/root/a", "VARIABLES": [
            {"NAME": "x", "TYPE": "NUMERIC", "PATH": "/root/x"}, {"NAME": "n", "TYPE": "NUMERIC", "PATH": "/root/a/n"}]}]}
        file = self.file("left.json", "[" + ",".join('{"a":[{"n":%d}]},{"x":%d}' % (i, i) for i in range(50)) + "]")
        with self.assertRaisesRegex(qvejmap.Error, "part"):
            planned([file], 100, map=map)
        self.compare([file], planned([file], 1 << 20, map=map), map=map)
        map["DATASETS"].insert(0, {**map["DATASETS"][0], "DSNAME": "S", "VARIABLES": map["DATASETS"][0]["VARIABLES"][1:]})
        plan = qvejmap.Plan.find(file, size=100, table="T", map=map)
        self.assertEqual((list(plan.open(plan.parts[0])), self.compare([file], plan, map=map)), (["T"], 1))

    def test_a_file_that_changes_is_told(self):
        file = self.file("a.json", "[" + ",".join(rows(30, 4)) + "]")
        for source in (file, [file, file]):
            plan = qvejmap.Plan.find(source, size=500)
            document = plan.open(plan.parts[-1])
            with open(file, encoding="utf-8") as text:
                other = text.read().replace("sku", "abc")
            self.file("a.json", other)
            with self.assertRaisesRegex(qvejmap.FileError, "a.json: the file has changed"):
                document.to_arrow()
            with self.assertRaisesRegex(qvejmap.FileError, "a.json: the file has changed"):
                plan.open(plan.parts[0])

    def test_names_become_absolute_as_they_stand(self):
        for name, text in (("d[1]/x.json", "[1]"), ("d1/y.json", "[2]"), ("far/in/z.json", "[3]"), ("far/y.json", "[4]"), ("y.json", "[5]")):
            os.makedirs(os.path.join(self.folder.name, os.path.dirname(name)), exist_ok=True)
            self.file(name, text)
        os.symlink(os.path.join(self.folder.name, "far/in"), os.path.join(self.folder.name, "d[1]/link"))
        here = os.getcwd()
        os.chdir(os.path.join(self.folder.name, "d[1]"))
        self.addCleanup(os.chdir, here)
        for word in ("x.json", "*.json", ".", "./x.json", "link/../y.json", "../d1", "?.json"):
            with self.subTest(word):
                (name,) = absolute(word)
                self.assertTrue(os.path.isabs(name))
                self.assertEqual([os.path.realpath(file) for file in files_of([os.fsencode(name)])[0]],
                                 [os.path.realpath(file) for file in files_of([os.fsencode(word)])[0]])
        self.assertEqual(absolute(["", "s3://b/x"]), ["", "s3://b/x"])

    def test_what_does_not_belong_together_is_refused(self):
        file = self.file("a.json", "[" + ",".join(rows(30, 4)) + "]")
        parts = qvejmap.parts(file, 500)
        scans = [qvejmap.PartialScan(part) for part in parts]
        plan = planned([file], 500)
        for wrong, error in (
            (lambda: qvejmap.Plan(parts, scans[1:]), ValueError),
            (lambda: qvejmap.Plan([], []), ValueError),
            (lambda: qvejmap.Plan(parts, scans, naming="no"), ValueError),
            (lambda: qvejmap.Plan(parts, scans, lines=False), ValueError),
            (lambda: qvejmap.Plan.find(file, lines="yes"), ValueError),
            (lambda: qvejmap.Plan.find(file, exact=True, naming="original"), ValueError),
            (lambda: qvejmap.Plan(parts, scans, exact=True, map={"DATASETS": []}), ValueError),
            (lambda: qvejmap.Plan.find(file, skip_bad="no"), TypeError),
            (lambda: qvejmap.Plan(parts, scans, shape="auto"), ValueError),
            (lambda: qvejmap.Plan.from_json("{}"), ValueError),
            (lambda: qvejmap.Plan.from_json("no"), ValueError),
            (lambda: qvejmap.Plan.from_json(json.dumps({**json.loads(plan.to_json()), "parts": []})), ValueError),
            (lambda: qvejmap.Plan.from_json(json.dumps({**json.loads(plan.to_json()), "after": "eA=="})), ValueError),
            (lambda: qvejmap.Plan.from_json(json.dumps({**json.loads(plan.to_json()), "options": {}})), ValueError),
            (lambda: plan.learn([b"no"]), qvejmap.Error),
            (lambda: plan.open(plan.parts[0]).alldata, qvejmap.Error),
            (lambda: planned([file], 500, alldata=True).learn([b"no"]), qvejmap.Error),
            (lambda: qvejmap.Plan(parts, scans, alldata="yes"), TypeError),
            (lambda: plan.open(plan.parts[0]).find("/root/id"), qvejmap.Error),
            (lambda: qvejmap.Plan(parts, scans, map={"no": 1}), qvejmap.MapError),
        ):
            with self.assertRaises(error):
                wrong()
        with open(file, "a", encoding="utf-8") as more:
            more.write("\n")
        with self.assertRaisesRegex(qvejmap.FileError, "changed"):
            plan.open(plan.parts[0])


if __name__ == "__main__":
    unittest.main()
