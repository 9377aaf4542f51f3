"""Scans of parts give what one scan gives."""

import os
import pickle
import tempfile
import unittest

import qvejmap
from documents import large


class Mine(qvejmap.PartialScan):
    pass


class PartialScans(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def file(self, name, text):
        path = os.path.join(self.folder, name)
        with open(path, "wb") as file:
            file.write(text)
        return path

    def test_of_parts_of_files_give_the_map_of_the_whole(self):
        lines = large()[1:-1].replace(b"},{\"id\"", b"}\n{\"id\"")
        array = self.file("a.json", large())
        jsonl = self.file("b.jsonl", lines)
        halves = [qvejmap.Part.lines_of(jsonl, 0, len(lines) // 2),
                  qvejmap.Part.lines_of(jsonl, len(lines) // 2, len(lines))]
        for file, parts in ((array, qvejmap.parts(array, 1 << 20)), (jsonl, qvejmap.parts(jsonl, 1 << 20)),
                            (jsonl, halves), (array, [qvejmap.Part.whole(array)])):
            scans = [pickle.loads(pickle.dumps(qvejmap.PartialScan(pickle.loads(pickle.dumps(part))))) for part in parts]
            total = qvejmap.PartialScan.merge(scans)
            self.assertEqual(total.map, qvejmap.open(file).map)
            self.assertEqual((total.counts["/root"], total.counts["/root/items"]), (12000, 24000))
            one_by_one = sum(scans[1:], scans[0])
            self.assertEqual((one_by_one.map, one_by_one.counts), (total.map, total.counts))
        self.assertGreater(len(qvejmap.parts(array, 1 << 20)), 3)

    def test_of_texts(self):
        first = qvejmap.PartialScan(b'{"a":1}\n{"a":"x"}\n')
        second = qvejmap.PartialScan('[{"a":2,"b":[{}]}]'.encode("utf-16"))
        total = first + second
        self.assertEqual(total.map, qvejmap.open(b'[{"a":1},{"a":"x"},{"a":2,"b":[{}]}]').map)
        self.assertEqual(total.counts["/root"], 3)
        again = qvejmap.PartialScan.from_bytes(bytearray(total.to_bytes()))
        self.assertEqual((again.map, again.counts), (total.map, total.counts))

    def test_of_a_class_of_ones_own_stay_of_it(self):
        scan = Mine(b"[{}]")
        scan.name = "x"
        again = pickle.loads(pickle.dumps(scan))
        self.assertEqual((type(again), again.name, again.to_bytes()), (Mine, "x", scan.to_bytes()))
        self.assertEqual((type(scan + scan), type(Mine.from_bytes(scan.to_bytes()))), (Mine, Mine))

    def test_say_what_is_wrong(self):
        broken = self.file("broken.jsonl", b'{"a":1}\n{"a":}\n')
        part = qvejmap.Part.lines_of(broken, 5, 100)
        with self.assertRaises(qvejmap.NotJson) as raised:
            qvejmap.PartialScan(part)
        self.assertEqual((raised.exception.file, raised.exception.offset), (broken, 13))
        for wrong in (b"", b"no scan", qvejmap.PartialScan(b"[{}]").to_bytes() + b"x"):
            with self.assertRaisesRegex(qvejmap.Error, "no partial scan"):
                qvejmap.PartialScan.from_bytes(wrong)
        for source, file in ((b"", "<memory>"), (qvejmap.Part.whole(self.file("empty.json", b"")), "empty.json")):
            with self.assertRaises(qvejmap.NotJson) as raised:
                qvejmap.PartialScan(source)
            self.assertEqual((os.path.basename(raised.exception.file), raised.exception.line), (file, 1))
        piece, whole = part.pieces[0], qvejmap.Part.whole(broken)
        for odd in (
            part._replace(pieces=()),
            whole._replace(pieces=()),
            part._replace(form=9),
            part._replace(form=[]),
            part._replace(form=2),  # those are not divided
            part._replace(pieces=((0, 1, 99, b"", 1, 1),)),
            part._replace(pieces=((0, 1, 4, b"", 1, 1),)),  # lines have no head
            part._replace(pieces=(piece, piece)),
            part._replace(pieces=((5, 4, *piece[2:]),)),
            part._replace(pieces=(piece[:5],)),
            part._replace(pieces=3),
            part._replace(head=piece),
            whole._replace(pieces=((0, 5, *whole.pieces[0][2:]),)),
            whole._replace(pieces=(piece[:2] + (5,) + piece[3:], piece)),
            whole._replace(pieces=(piece[:2] + (6,) + piece[3:],)),
        ):
            with self.subTest(odd), self.assertRaisesRegex(ValueError, "no part of a file"):
                qvejmap.PartialScan(odd)
        named = qvejmap.PartialScan(b'[{"":1}]')
        with self.assertRaisesRegex(qvejmap.Error, "cannot be scanned in parts"):
            named + named


if __name__ == "__main__":
    unittest.main()
