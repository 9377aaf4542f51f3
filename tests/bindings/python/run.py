"""Runs the tests of the package for Python in the Python that scripts/test-wheel makes; without it they are
skipped (77).

    run.py QVEJMAP SOURCE [MODULE]

MODULE, built with AddressSanitizer, is used in place of the wheel's: see sanitized.py.
"""

import os
import subprocess
import sys
import tempfile

HERE = os.path.dirname(os.path.abspath(__file__))
TOOL, SOURCE, *MODULE = map(os.path.abspath, sys.argv[1:])
PYTHON = SOURCE + "/build/python-package/bin/python"
if not os.path.exists(PYTHON) or subprocess.run([PYTHON, "-c", "import qvejmap"], cwd="/").returncode != 0:
    print("skipped: scripts/test-wheel was not run, or the package could not be built")
    sys.exit(77)


def library(name):
    return subprocess.check_output([os.environ.get("CC", "gcc"), "-print-file-name=" + name], text=True).strip()


os.environ["QVEJMAP_TOOL"] = TOOL
command = [PYTHON, "-m", "unittest", "discover", "-v"]
if not MODULE:
    sys.exit(subprocess.run(command, cwd=HERE).returncode)
with tempfile.TemporaryDirectory() as folder:
    package = os.path.join(folder, "qvejmap")
    os.mkdir(package)
    for file in [*os.scandir(SOURCE + "/bindings/python/qvejmap"), *MODULE]:
        os.symlink(file, os.path.join(package, os.path.basename(file)))
    os.environ.update(
        PYTHONPATH=folder,
        PYTHONDONTWRITEBYTECODE="1",
        PYTHONMALLOC="malloc",  # so that each object is seen
        ASAN_OPTIONS="detect_leaks=1:exitcode=23",
        # The interpreter is built without it.  The library of C++ is there before the first exception.
        LD_PRELOAD=library("libasan.so") + " " + library("libstdc++.so"),
    )
    sys.exit(subprocess.run([PYTHON, HERE + "/sanitized.py"], cwd=HERE).returncode)
