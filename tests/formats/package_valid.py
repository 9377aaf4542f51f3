"""datapackage.json is what the Data Package standard has, and what it says of the files is true.

    package_valid.py QVEJMAP SOURCE
It runs in the Python that scripts/test-python makes, and is skipped (77) without it.
"""

import glob
import json
import os
import subprocess
import sys
import tempfile

TOOL, SOURCE = map(os.path.abspath, sys.argv[1:3])
PYTHON = SOURCE + "/build/python/bin/python"
if not os.path.exists(PYTHON):
    print("skipped: scripts/test-python was not run")
    sys.exit(77)
if sys.prefix != SOURCE + "/build/python":
    os.execv(PYTHON, [PYTHON, *sys.argv])

import frictionless

FORMATS = [["csv"], ["tsv"], ["ndjson"], ["csv", "--gzip"], ["csv", "--zstd"], ["csv", "--null", "NULL"]]


def check(document, form, rows):
    """`rows`: the files are read, too."""
    with tempfile.TemporaryDirectory(dir=".") as folder:
        subprocess.run([TOOL, "convert", "-q", document, "-o", folder + "/out", "--format", *form], check=True,
                       stderr=subprocess.DEVNULL)
        path = folder + "/out/datapackage.json"
        with open(path) as file:
            descriptor = json.load(file)
        errors = list(frictionless.Package.metadata_validate(descriptor))
        assert not errors, (document, form, errors[:3])
        if rows:
            report = frictionless.validate(path, type="package")
            assert report.valid, (document, form, report.flatten(["title", "message"])[:3])
            assert [task.stats["rows"] for task in report.tasks] == [r["rows"] for r in descriptor["resources"]]


with tempfile.TemporaryDirectory(prefix="qvejmap-package-") as place:
    os.chdir(place)
    for form in FORMATS:
        check(SOURCE + "/examples/orders.json", form, "--zstd" not in form and form != ["ndjson"])
    for document in sorted(glob.glob(SOURCE + "/../shared/data/*json")):
        check(document, ["csv"], os.path.getsize(document) < 40000)
