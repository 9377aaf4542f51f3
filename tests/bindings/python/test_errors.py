"""What goes wrong, with its place."""

import glob
import os
import pickle
import re
import subprocess
import tempfile
import unittest

import qvejmap
from documents import SOURCE, TOOL
from qvejmap._words import in_own_words

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

    def test_of_shapes_and_maps_that_are_not_utf8(self):
        with tempfile.TemporaryDirectory() as folder:
            for argument, text, kind, place in (
                ("shape", b"drop /root/a\ndrop /root/\xfc\n", qvejmap.Error, (2, 12, 24)),
                ("shape", b"\xef\xbb\xbfdrop /root/\xfc", qvejmap.Error, (1, 15, 14)),
                ("map", b'{"DATASETS":[\n{"DSNAME":"\xfc"}]}', qvejmap.MapError, (2, 12, 25)),
            ):
                file = os.path.join(folder, argument)
                with open(file, "wb") as out:
                    out.write(text)
                with self.subTest(text), self.assertRaisesRegex(qvejmap.Error, "invalid UTF-8") as raised:
                    qvejmap.open(b"{}", **{argument: file})
                error = raised.exception
                self.assertIs(type(error), kind)
                self.assertEqual((error.file, (error.line, error.column, error.offset)), (file, place))

    def test_name_what_this_package_has(self):
        """Sentences of the command line that name its options have other words here."""
        of_plans = {"--threads is 1", "--memory is below 256M"}
        found = set()
        for folder in ("client", "formats"):
            for name in glob.glob(f"{SOURCE}/{folder}/**/*.cpp", recursive=True):
                with open(name, encoding="utf-8") as file:
                    text = re.sub(r'"\s*\n\s*"', "", re.sub(r"^\s*//.*", "", file.read(), flags=re.M))
                found.update(of for of in re.findall(r'"((?:[^"\\\n]|\\.)*)"', text) if re.search("--[a-z]", of))
        self.assertGreater(len(found), 10)
        for sentence in found - of_plans:
            own = in_own_words(sentence).replace("zstd -d --long=31", "")
            self.assertIsNone(re.search("--[a-z]|VERB", own), sentence)
        map = {"DATASETS": [{"DSNAME": "T", "TABLEPATH": "/root/i", "VARIABLES": [
            {"NAME": "id", "TYPE": "NUMERIC", "PATH": "/root/id"}]}]}
        doc = qvejmap.open(b'[{"i":[{}],"id":7}]', map=map)
        self.assertIn("unless carry=True", doc.map.explain("T.id"))

    def test_and_classes_have_the_name_they_are_imported_by(self):
        self.assertEqual({getattr(qvejmap, name).__module__ for name in qvejmap.__all__}, {"qvejmap"})

    def test_a_closed_document_says_so(self):
        with qvejmap.open(b'[{"a":1}]') as doc:
            table = doc["root"]
        for use in (lambda: table.rows, lambda: table.to_arrow(), lambda: doc.map, lambda: list(table)):
            with self.assertRaisesRegex(ValueError, "closed"):
                use()
        self.assertIn("closed", repr(doc) + repr(table))


if __name__ == "__main__":
    unittest.main()
