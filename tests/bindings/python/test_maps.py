"""Maps as Python has them, and values that are looked for: as the command line tells."""

import copy
import os
import pickle
import subprocess
import tempfile
import unittest

import qvejmap
from documents import ODD, TOOL

A = b'{"o":[{"id":1,"n":"x","big":12345678901234567890.5}]}'
B = b'{"o":[{"id":"7","m":2}],"p":[{"q":1}]}'


class Maps(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.a, self.b = (os.path.join(folder.name, name) for name in ("a.json", "b.json"))
        for path, text in ((self.a, A), (self.b, B)):
            with open(path, "wb") as file:
                file.write(text)
        self.maps = [path + ".map" for path in (self.a, self.b)]
        for path, map in zip((self.a, self.b), self.maps):
            qvejmap.open(path).map.save(map)

    def told(self, *arguments):
        return subprocess.run([TOOL, *arguments], capture_output=True, text=True).stdout

    @unittest.skipUnless(TOOL, "there is no tool to compare with")
    def test_are_compared_merged_and_explained_as_by_the_command_line(self):
        first, second = (qvejmap.open(path).map for path in (self.a, self.b))
        lines = first.diff(second)
        self.assertEqual("".join(line + "\n" for line in lines), self.told("map", "diff", *self.maps))
        self.assertEqual(first.diff(self.maps[1]), lines)
        self.assertIn("+ table p /root/p", lines)
        merged = first.merge(self.maps[1])
        self.assertEqual(qvejmap.Map(merged).diff(self.maps[0]), merged.diff(first))
        file = self.a + ".merged"
        subprocess.run([TOOL, "map", "merge", *self.maps, "-o", file], check=True, capture_output=True)
        self.assertEqual(merged.diff(file), [])
        self.assertEqual(first.explain("o.ID") + "\n", self.told("map", "explain", self.a, "o.id"))

    def test_can_be_copied_and_pickled(self):
        map = qvejmap.open(A).map
        for copied in (copy.copy(map), copy.deepcopy(map), pickle.loads(pickle.dumps(map))):
            self.assertEqual((type(copied), copied, copied.remarks), (qvejmap.Map, map, []))
            with self.assertRaisesRegex(ValueError, "of no document"):
                copied.explain("o.id")
        copied = copy.deepcopy(map)
        copied["DATASETS"][0]["DSNAME"] = "mine"
        self.assertEqual(list(qvejmap.open(A, map=copied).tables), ["mine"])
        self.assertEqual(map["DATASETS"][0]["DSNAME"], "o")

    def test_say_what_is_wrong(self):
        map = qvejmap.open(A).map
        for wrong in (lambda: map.diff({"DATASETS": 1}), lambda: map.merge({"DATASETS": 1})):
            with self.assertRaises(qvejmap.MapError):
                wrong()
        with self.assertRaisesRegex(qvejmap.Error, "no column o.idd"):
            map.explain("o.idd")
        with self.assertRaisesRegex(ValueError, "of no document"):
            qvejmap.Map(map).explain("o.id")

    def test_exact_ones_keep_every_digit(self):
        text = b'[{"a":1e400,"b":1},{"a":0.1234567890123456789012345678901234567890123,"b":2}]'
        self.assertEqual([row["a"] for row in qvejmap.open(text, exact=True)["root"]],
                         ["1e400", "0.1234567890123456789012345678901234567890123"])
        plain = qvejmap.open(ODD["nested"], exact=True)
        self.assertEqual(list(plain["orders"]), list(qvejmap.open(ODD["nested"])["orders"]))
        with self.assertRaises(ValueError):
            qvejmap.open(text, exact=True, naming="original")

    def test_values_are_found(self):
        for doc in (qvejmap.open(self.b), qvejmap.open(B)):
            found = doc.find("/root/**/id")
            self.assertEqual([of[1:] for of in found], [(1, 13, "/root/o/id", "7")])
            self.assertEqual([of.path for of in doc.find(regex="[12]")], ["/root/o/m", "/root/p/q"])
            self.assertEqual([of.path for of in doc.find(regex="[12]", limit=1)], ["/root/o/m"])
            self.assertEqual([of.path for of in doc.find(["/root/p/q", "/root/o/m"], "2")], ["/root/o/m"])
        for wrong in ({"regex": "("}, {"path": "root"}):
            with self.assertRaises(qvejmap.Error):
                doc.find(**wrong)
        with open(self.b, "rb") as file:
            doc = qvejmap.open(file)
        with self.assertRaisesRegex(qvejmap.Error, "cannot be read again"):
            doc.find(value="7")


if __name__ == "__main__":
    unittest.main()
