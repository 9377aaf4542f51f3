"""Runs the tests of the package for Python in the Python that scripts/test-wheel makes; without it they are
skipped (77).

    run.py QVEJMAP SOURCE
"""

import os
import subprocess
import sys

TOOL, SOURCE = map(os.path.abspath, sys.argv[1:3])
PYTHON = SOURCE + "/build/python-package/bin/python"
if not os.path.exists(PYTHON) or subprocess.run([PYTHON, "-c", "import qvejmap"], cwd="/").returncode != 0:
    print("skipped: scripts/test-wheel was not run, or the package could not be built")
    sys.exit(77)
os.environ["QVEJMAP_TOOL"] = TOOL
os.chdir(os.path.dirname(os.path.abspath(__file__)))
os.execv(PYTHON, [PYTHON, "-m", "unittest", "discover", "-v"])
