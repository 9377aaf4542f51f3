"""What the pages say of Python runs as it stands, and the package is typed."""

import doctest
import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

import qvejmap
from documents import SOURCE


class Pages(unittest.TestCase):
    def test_examples_run_as_they_stand(self):
        here = os.getcwd()
        for page in ("README.md", "docs/PYTHON.md", "docs/SCALE.md"):
            with open(os.path.join(SOURCE, page), encoding="utf-8") as file:
                blocks = re.findall(r"^```python\n(.*?)^```", file.read(), re.S | re.M)
            self.assertNotEqual(blocks, [], page)
            with self.subTest(page), tempfile.TemporaryDirectory() as folder:
                shutil.copytree(os.path.join(SOURCE, "examples"), os.path.join(folder, "examples"))
                os.chdir(folder)
                try:
                    test = doctest.DocTestParser().get_doctest("\n".join(blocks), {}, page, page, 0)
                    self.assertNotEqual(test.examples, [], page)
                    told = []
                    runner = doctest.DocTestRunner(optionflags=doctest.NORMALIZE_WHITESPACE)
                    failed = runner.run(test, out=told.append).failed
                finally:
                    os.chdir(here)
                self.assertEqual(failed, 0, "".join(told))

    def test_the_package_is_typed(self):
        package = os.path.dirname(qvejmap.__file__)
        self.assertTrue(os.path.exists(os.path.join(package, "py.typed")))
        done = subprocess.run([sys.executable, "-m", "mypy", "--strict", "-p", "qvejmap", "--cache-dir", os.devnull],
                              cwd=tempfile.gettempdir(), capture_output=True, text=True)
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)


if __name__ == "__main__":
    unittest.main()
