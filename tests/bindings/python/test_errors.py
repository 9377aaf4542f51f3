"""What goes wrong, with its place."""

import os
import pickle
import subprocess
import tempfile
import unittest

import qvejmap
from documents import TOOL

MAP = '{"DATASETS":[{"DSNAME":"T",\n"TABLEPTH":"/root"}]}'


class Errors(unittest.TestCase):
    def test_have_their_kind_and_place(self):
        cases = [
            # text, arguments, kind, file, line, column, offset
            (b'{"a":1,\n"b":}', {}, qvejmap.NotJson, "<memory>", 2, 5, 12),
            (b'{"a":', {}, qvejmap.NotJson, "<memory>", 1, 6, 5),
            (b"", {}, qvejmap.NotJson, "<memory>", None, None, None),
            (b"[[[1]]]", {"depth": 2}, qvejmap.LimitReached, "<memory>", 1, 3, 2),
            (b'{"a":1,"b":2,"c":3}', {"max_paths": 2}, qvejmap.LimitReached, "<memory>", None, None, None),
            (b"{}", {"map": {"DATASETS": 1}}, qvejmap.MapError, "<map>", 1, None, None),
            (b"{}", {"shape": ["rows"]}, qvejmap.Error, "shape", 1, None, None),
            (b"{}", {"encoding": "klingon"}, qvejmap.Error, "", 0, 0, -1),
        ]
        for text, arguments, kind, file, line, column, offset in cases:
            with self.subTest(text, **arguments):
                with self.assertRaises(qvejmap.Error) as raised:
                    qvejmap.open(text, **arguments)
                error = raised.exception
                self.assertIs(type(error), kind, error)
                for name, want in (("file", file), ("line", line), ("column", column), ("offset", offset)):
                    if want is not None:
                        self.assertEqual(getattr(error, name), want, name)
                self.assertNotEqual(error.status, 0)
                self.assertTrue(str(error).startswith(f"{error.file}:" if error.line else error.file))

    def test_show_the_text_and_can_be_pickled(self):
        with self.assertRaises(qvejmap.NotJson) as raised:
            qvejmap.open(b'{"a":1,,}')
        error = raised.exception
        self.assertEqual([line.strip() for line in error.excerpt.splitlines()], ['{"a":1,,}', "^"])
        again = pickle.loads(pickle.dumps(error))
        self.assertEqual((str(again), vars(again)), (str(error), vars(error)))

    def test_of_files(self):
        with tempfile.TemporaryDirectory() as folder:
            gone = os.path.join(folder, "gone.json")
            cases = [
                ({"source": gone}, gone),
                ({"source": os.path.join(folder, "*.json")}, None),
                ({"source": folder}, None),
                ({"source": b"{}", "map": gone}, gone),
                ({"source": b"{}", "shape": gone}, gone),
            ]
            for arguments, file in cases:
                with self.subTest(**arguments):
                    with self.assertRaises(qvejmap.FileError) as raised:
                        qvejmap.open(**arguments)
                    self.assertEqual(raised.exception.line, 0)
                    self.assertLess(raised.exception.status, 0)
                    if file is not None:
                        self.assertEqual(raised.exception.file, file)
            rules = os.path.join(folder, "my.shape")
            with open(rules, "w") as out:
                out.write("drop /root/a\nrow /root\n")
            with self.assertRaises(qvejmap.Error) as raised:
                qvejmap.open(b"{}", shape=rules)
            self.assertEqual((raised.exception.file, raised.exception.line), (rules, 2))

    @unittest.skipUnless(TOOL, "there is no tool to compare with")
    def test_read_as_those_of_the_command_line(self):
        with tempfile.TemporaryDirectory() as folder:
            file = os.path.join(folder, "a.json")
            for text in (b'{"a":1,\n"b":}', b'{"a":', b'{"a":"\\x"}', b"[1,2", b"[01]", b"nul"):
                with open(file, "wb") as out:
                    out.write(text)
                with self.subTest(text):
                    with self.assertRaises(qvejmap.NotJson) as raised:
                        qvejmap.open(file)
                    told = subprocess.run([TOOL, "tables", file], capture_output=True, text=True).stderr
                    self.assertEqual(f"qvejmap: {raised.exception}\n{raised.exception.excerpt}", told)

    def test_a_closed_document_says_so(self):
        with qvejmap.open(b'[{"a":1}]') as doc:
            table = doc["root"]
        for use in (lambda: table.rows, lambda: table.to_arrow(), lambda: doc.map, lambda: list(table)):
            with self.assertRaisesRegex(ValueError, "closed"):
                use()
        self.assertIn("closed", repr(doc) + repr(table))


if __name__ == "__main__":
    unittest.main()
