"""What docs/SCALE.md says of Dask and Ray runs as it stands, with workers that are processes of their own."""

import importlib.util
import os
import re
import subprocess
import sys
import tempfile
import unittest

ROOT = os.path.abspath(os.path.join(os.path.dirname(__file__), "../../.."))


class OtherClusters(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)

    def test_the_page_is_right(self):
        with open(os.path.join(ROOT, "docs/SCALE.md"), encoding="utf-8") as file:
            programs = re.findall(r"^```py\n(.*?)^```", file.read(), re.S | re.M)
        for package, program in zip(("dask", "ray"), programs, strict=True):
            with self.subTest(package):
                self.assertRegex(program, rf"(?m)^(import {package}$|from {package}\.)")
                if importlib.util.find_spec(package) is None:
                    self.skipTest(f"there is no {package}")
                path = os.path.join(self.folder.name, "program.py")  # its processes read it, too
                with open(path, "w", encoding="utf-8") as file:
                    file.write(program)
                done = subprocess.run([sys.executable, "-W", "ignore", path], cwd=ROOT, capture_output=True, text=True,
                                      timeout=300, check=False)
                self.assertEqual(done.stdout.split("\n")[-2:], ["2 7", ""], done.stderr)


if __name__ == "__main__":
    unittest.main()
