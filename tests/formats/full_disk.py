"""A file that cannot be written whole is not there, whatever its format: the disk is full after ever more bytes.

    full_disk.py QVEJMAP
A limit on the size of files stands for the disk.
"""

import os
import resource
import subprocess
import sys
import tempfile
import zipfile

TOOL = os.path.abspath(sys.argv[1])
SIZES = [0, 1, 300, 2000, 3000, 6000, 8000, 12000, 16384, 20000, 30000, 60000, 65536, 100000, 150000, 200000, 250000, 300000, 400000, 10**6]
# By the ending of the output: the module that it needs.
OUTPUTS = {".xlsx": "xlsx", ".parquet": "arrow", ".arrow": "arrow", ".db": "sqlite"}


def contents(path):
    """What must be the same in every run."""
    if not path.endswith(".xlsx"):
        with open(path, "rb") as file:
            return file.read()
    with zipfile.ZipFile(path) as archive:
        assert archive.testzip() is None
        return {name: archive.read(name) for name in archive.namelist() if name != "docProps/core.xml"}  # has the time


def limited(size):
    return lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (size, size))


def check(output, *arguments):
    command = [TOOL, "convert", "-q", *arguments, "-o"]
    subprocess.run([*command, "good" + output], check=True)
    good = contents("good" + output)
    os.remove("good" + output)
    outcomes = set()
    for size in SIZES:
        # As the parent does, the child ignores the signal of the limit and sees the failure.
        run = subprocess.run([*command, "cut" + output], preexec_fn=limited(size), restore_signals=False,
                             capture_output=True, text=True)
        left = [name for name in os.listdir(".") if name.startswith((".", "cut"))]
        if run.returncode == 0:
            assert contents("cut" + output) == good, (output, size)
            os.remove("cut" + output)
        else:
            assert left == [] and "qvejmap: cut" + output in run.stderr, (output, size, left, run.stderr)
        outcomes.add(run.returncode)
    assert 0 in outcomes and len(outcomes) > 1, (output, outcomes)


with tempfile.TemporaryDirectory(prefix="qvejmap-full-") as place:
    os.chdir(place)
    with open("r.json", "w") as file:
        file.write('{"r":[' + ",".join(f'{{"id":{i},"text":"{i * 104729 % 99991} {i * 7919}"}}' for i in range(1500)) + "]}")
    # The workbook is larger than what is kept for any of its sheets.
    with open("many.json", "w") as file:
        file.write("{" + ",".join(f'"t{i}":[{{"v":{i}}}]' for i in range(150)) + "}")
    check(".xlsx", "many.json")
    for ending, module in OUTPUTS.items():
        if os.path.exists(f"{os.path.dirname(TOOL)}/qvejmap_to_{module}.so"):
            check(ending, "r.json", "--table", "r")
        else:
            print(f"{ending} left out: there is no module {module}")
