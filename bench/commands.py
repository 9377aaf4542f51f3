#!/usr/bin/env python3
"""Times whole commands: `qvejmap convert` with all that it writes, and DuckDB on the same document.

    bench/commands.py BUILD DATA [--quick] [orders] [files] [memory]

BUILD is the directory of the built tool and its benchmarks.  DATA has orders.json (200 MB) and
orders2000.json (2 GB), and takes what is written; scripts/bench makes it.  $JMAP_PEERS_PYTHON is a
Python that has the package duckdb.  What is not there is left out, with a line.

Wall and processor time in seconds, peak resident memory in MB of 1,000,000 bytes.  "warm" is the
median of the runs after the first; each writes into a directory that was not there.
"""
import os
import statistics
import subprocess
import sys
import time
from collections import namedtuple

HERE = os.path.dirname(os.path.abspath(__file__))
Run = namedtuple("Run", "wall processor peak")


def run(command):
    """Times a command, which must succeed."""
    start = time.monotonic()
    child = subprocess.Popen(command, stdout=subprocess.DEVNULL)
    _, status, usage = os.wait4(child.pid, 0)
    wall = time.monotonic() - start
    child.returncode = os.waitstatus_to_exitcode(status)
    if child.returncode != 0:
        sys.exit(f"commands.py: {' '.join(command)} ended with {child.returncode}")
    return Run(wall, usage.ru_utime + usage.ru_stime, usage.ru_maxrss * 1024 / 1e6)


def warm(runs):
    """The median of each figure over the runs after the first, the peak over all."""
    later = runs[1:] or runs
    return Run(statistics.median(r.wall for r in later),
               statistics.median(r.processor for r in later), max(r.peak for r in runs))


def remove(path):
    subprocess.check_call(["rm", "-rf", path])  # many times as fast as shutil


def heading(title):
    print(f"\n{title:52}{'wall':>9}{'processor':>11}{'peak MB':>9}")


def show(what, r):
    print(f"  {what:50}{r.wall:9.2f}{r.processor:11.2f}{r.peak:9.0f}", flush=True)


def verdict(what, value, goal, met):
    print(f"  {what:50}{value:>9}   goal {goal}{'' if met else ', MISSED'}", flush=True)


def left_out(what, why):
    print(f"  left out: {what} ({why})", flush=True)


class Bench:
    def __init__(self, build, data, quick):
        self.tool = os.path.join(build, "qvejmap")
        self.shapes = os.path.join(build, "bench", "bench_shapes")
        self.data = data
        self.runs = 2 if quick else 4
        self.quick = quick

    def path(self, name):
        return os.path.join(self.data, name)

    def out(self):
        """A directory that is not there; what an earlier run wrote is removed."""
        path = self.path("out")
        remove(path)
        return path

    def convert(self, document, *options):
        return run([self.tool, "convert", document, "-o", self.out(), "--quiet", *options])

    def record_bytes(self, document):
        return int(subprocess.check_output([self.shapes, "--records", document]))

    # ---- 200 MB of orders ----

    def orders(self):
        document = self.path("orders.json")
        heading("orders.json to CSV, all tables")
        if not os.path.exists(document):
            left_out("all of it", "no " + document)
            return
        runs = [self.convert(document) for _ in range(self.runs)]
        show("convert, first run", runs[0])
        ours = warm(runs)
        show("convert, warm", ours)
        show("convert --threads 1",
             warm([self.convert(document, "--threads", "1") for _ in range(self.runs // 2)]))
        compressed = self.convert(document, "--compress")
        show("convert --compress, one run", compressed)
        theirs = self.duckdb(document)
        verdict("wall time", f"{ours.wall:.2f}", "1.2", ours.wall <= 1.2)
        verdict("processor time", f"{ours.processor:.2f}", "1.4", ours.processor <= 1.4)
        if theirs is not None:
            ratio = theirs.wall / ours.wall
            verdict("wall time of DuckDB to ours", f"{ratio:.1f}", "8", ratio >= 8)
        self.against_records(document, ours.peak)
        print(f"  {'processor time of --compress to without':50}"
              f"{compressed.processor / ours.processor:9.1f}")

    def duckdb(self, document):
        python = os.environ.get("JMAP_PEERS_PYTHON", "python3")
        program = os.path.join(HERE, "peers.py")
        try:
            version = subprocess.check_output([python, "-c", "import duckdb; print(duckdb.__version__)"],
                                              text=True, stderr=subprocess.DEVNULL).strip()
        except (OSError, subprocess.CalledProcessError):
            left_out("DuckDB", f"{python} has no package duckdb")
            return None
        runs = []
        for _ in range(self.runs // 2):
            out = self.out()
            os.mkdir(out)
            runs.append(run([python, program, "duckdb", "csv", document, out]))
        show(f"DuckDB {version}, four tables, warm", warm(runs))
        return warm(runs)

    def against_records(self, document, peak):
        records = self.record_bytes(document) / 1e6
        verdict(f"peak MB less {records:.0f} MB of records", f"{peak - records:.0f}", "67 (64 MiB)",
                peak - records <= 67)

    # ---- 330,000 files ----

    def files(self):
        heading("many paths to CSV, 330,000 files")
        document = self.path("paths.json")
        subprocess.check_call([self.shapes, "--write", "paths", document])
        converted, bare = [], []
        for _ in range(1 if self.quick else 2):
            converted.append(self.convert(document))
            copies = self.path("copies")
            remove(copies)
            seconds, count = subprocess.check_output(
                [self.shapes, "--files", self.path("out"), copies], text=True).split()
            bare.append(float(seconds))
        ours, theirs = warm(converted), statistics.median(bare[1:] or bare)
        show("convert, first run", converted[0])
        show("convert, warm", ours)
        print(f"  {'create, write, rename ' + count + ' files, first run':50}{bare[0]:9.2f}")
        print(f"  {'create, write, rename ' + count + ' files, warm':50}{theirs:9.2f}")
        verdict("wall time to that of the bare loop", f"{ours.wall / theirs:.2f}", "1.3",
                ours.wall <= 1.3 * theirs)
        remove(copies)

    # ---- 2 GB in 256 MiB ----

    def memory(self):
        heading("2 GB of orders to CSV")
        document = self.path("orders2000.json")
        if not os.path.exists(document):
            left_out("all of it", "no " + document)
            return
        subprocess.check_call(["cat", document], stdout=subprocess.DEVNULL)  # into the page cache
        small = self.convert(document, "--memory", "256M")
        whole = self.convert(document)
        show("convert", whole)
        show("convert --memory 256M", small)
        most = (256 + 64) * 2**20 / 1e6
        verdict("peak MB of --memory 256M", f"{small.peak:.0f}", f"{most:.0f} (256 + 64 MiB)",
                small.peak <= most)
        speed = whole.wall / small.wall
        verdict("speed of --memory 256M to without", f"{speed:.2f}", "0.5", speed >= 0.5)
        self.against_records(document, whole.peak)


def main():
    words = [w for w in sys.argv[1:] if w != "--quick"]
    bench = Bench(words[0], words[1], "--quick" in sys.argv)
    for part in words[2:] or ["orders", "files", "memory"]:
        getattr(bench, part)()
    remove(bench.path("out"))


if __name__ == "__main__":
    main()
