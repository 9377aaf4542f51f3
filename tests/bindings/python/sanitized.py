"""The tests of the package with a module built with AddressSanitizer; what is not given back makes them fail.

    sanitized.py [leak]

With `leak` one structure is not given back, on purpose: a run of its own must tell that.
"""

import ctypes
import subprocess
import sys
import unittest

LEAKS = 23  # as run.py has it
TESTS = ["test_arrow", "test_capsules", "test_document", "test_errors", "test_interrupt", "test_open",
         "test_partial_scan", "test_plan", "test_tables"]


def leak():
    import qvejmap
    from test_capsules import Callback, Stream, taken

    stream = taken(qvejmap.open(b'[{"a":1}]')["root"].__arrow_c_stream__(), Stream)
    stream.release = Callback()


process = ctypes.CDLL(None)
process.__lsan_disable()  # these libraries keep what they make when they are loaded
import duckdb, numpy, pandas, polars, pyarrow  # noqa: E401, F401
process.__lsan_enable()

if sys.argv[1:] == ["leak"]:
    leak()
    sys.exit()
told = subprocess.run([sys.executable, __file__, "leak"], capture_output=True, text=True)
if told.returncode != LEAKS or "exportStream" not in told.stderr:
    sys.exit(f"a stream that is not released is not found:\n{told.stderr}")
unittest.main(module=None, argv=["sanitized.py", *TESTS], warnings="ignore")
