"""Plans: the parts of a document, each read by itself, have the tables of the whole."""

import gzip
import os
import pickle
import random
import tempfile
import unittest

import pyarrow

import qvejmap


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
        for name, table in tables.items():
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

    def test_files_are_told_apart(self):
        files = [self.file("a.json", "[" + ",".join(rows(30, 2)) + "]"), self.file("b.json", '{"id":"x"}'),
                 self.file("c.jsonl", "\n".join(rows(40, 3)))]
        self.compare(files, planned(files, 900, source_column="source", alldata=True))

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
        with self.assertRaisesRegex(qvejmap.Error, "no objects"):
            qvejmap.Plan.find([a, scalars, a], run)
        broken = self.file("h.jsonl", '{"a":1}\n' * 500 + '{"a":}\n' + '{"a":1}\n' * 500 + "}")
        with self.assertRaises(qvejmap.NotJson) as raised:
            qvejmap.Plan.find([a, broken], run, size=1000)
        self.assertEqual((raised.exception.file, raised.exception.line), (broken, 501))

    def test_parts_that_cannot_be_read_apart_are_errors(self):
        # A value of an object without rows is in the next row.
        map = {"DATASETS": [{"DSNAME": "T", "TABLEPATH": "/root/a", "VARIABLES": [
            {"NAME": "x", "TYPE": "NUMERIC", "PATH": "/root/x"}, {"NAME": "n", "TYPE": "NUMERIC", "PATH": "/root/a/n"}]}]}
        file = self.file("left.json", "[" + ",".join('{"a":[{"n":%d}]},{"x":%d}' % (i, i) for i in range(50)) + "]")
        with self.assertRaisesRegex(qvejmap.Error, "part"):
            planned([file], 100, map=map)
        self.compare([file], planned([file], 1 << 20, map=map), map=map)

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
            (lambda: qvejmap.Plan.from_json("{}"), ValueError),
            (lambda: qvejmap.Plan.from_json("no"), ValueError),
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
