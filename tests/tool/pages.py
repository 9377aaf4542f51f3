#!/usr/bin/env python3
"""Runs the commands that pages show and compares what they print.

    pages.py QVEJMAP SOURCE PAGE...      SOURCE: the project; pages are relative to it

In a code block, "$ COMMAND" (and "> " for each further line of it) is a command, and the lines below
it, up to the next command or the end of the block, are what it prints on both outputs, without
carriage returns and without empty lines at the end.  A line "..." stands for any lines.  The commands
of a page run one after the other in a new folder that holds a copy of examples/.

There is also the extension of SQLite.  What needs Parquet or DuckDB is left out, with a line, where these are not there.

QVEJMAP_REFRESH=1 writes what is printed into the pages, but where a "..." stands.
"""

import itertools
import os
import re
import shutil
import subprocess
import sys
import tempfile

TOOL, SOURCE = map(os.path.abspath, sys.argv[1:3])
PYTHON = SOURCE + "/build/python/bin/python3"  # by scripts/test-python
# Commands of these words need these files.
EXTENSION = os.path.dirname(TOOL) + "/qvejmap_sqlite.so"
NEEDS = {"qvejmap_sqlite": EXTENSION, "parquet": os.path.dirname(TOOL) + "/qvejmap_to_arrow.so", "duckdb": PYTHON}


def without_end(lines):
    return lines[: max((i + 1 for i, line in enumerate(lines) if line), default=0)]


def printed(command, folder):
    env = dict(os.environ, PATH=folder + "/bin:" + os.environ["PATH"], TMPDIR=folder)
    run = subprocess.run(["sh", "-c", command], cwd=folder + "/here", env=env, timeout=60, text=True,
                         stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    return without_end(run.stdout.replace("\r", "").split("\n"))


def agree(shown, found):
    pattern = "".join("(.*\n)*?" if line == "..." else re.escape(line) + "\n" for line in shown)
    return re.fullmatch(pattern, "".join(line + "\n" for line in found)) is not None


def cases(lines):
    """Triples: first line of a command, first line below it, first line below what it prints."""
    inside = False
    for at, line in enumerate(lines):
        inside ^= line.startswith("```")
        if inside and line.startswith("$ "):
            body = next(i for i in itertools.count(at + 1) if not lines[i].startswith("> "))
            end = next(i for i in itertools.count(body) if lines[i].startswith(("$ ", "```")))
            yield at, body, end


def check(page):
    with open(os.path.join(SOURCE, page), encoding="utf-8") as file:
        lines = file.read().split("\n")
    good, changes = True, []
    with tempfile.TemporaryDirectory() as folder:
        shutil.copytree(SOURCE + "/examples", folder + "/here/examples")
        os.mkdir(folder + "/bin")
        os.symlink(TOOL, folder + "/bin/qvejmap")
        os.symlink(EXTENSION, folder + "/here/qvejmap_sqlite.so")
        if os.path.exists(PYTHON):
            with open(folder + "/bin/python3", "w", opener=lambda path, how: os.open(path, how, 0o755)) as wrapper:
                wrapper.write(f'#!/bin/sh\nexec "{PYTHON}" "$@"\n')
        found_cases = list(cases(lines))
        assert found_cases, page + " shows no command"
        for at, body, end in found_cases:
            command = "\n".join(line[2:] for line in lines[at:body])
            shown = without_end(lines[body:end])
            missing = [file for word, file in NEEDS.items() if word in command and not os.path.exists(file)]
            if missing:
                print(f"{page}:{at + 1}: left out, there is no {missing[0]}")
                continue
            found = printed(command, folder)
            if not agree(shown, found):
                good = False
                print("\n".join([f"{page}:{at + 1}: $ {command}", *found, "", "where the page shows", *shown, ""]))
                if "..." not in shown:
                    changes.append((body, body + len(shown), found))
    if changes and os.environ.get("QVEJMAP_REFRESH"):
        for begin, end, found in reversed(changes):
            lines[begin:end] = found
        with open(os.path.join(SOURCE, page), "w", encoding="utf-8") as file:
            file.write("\n".join(lines))
    return good


sys.exit(0 if all([check(page) for page in sys.argv[3:]]) else 1)
