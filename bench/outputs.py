#!/usr/bin/env python3
"""Times `qvejmap convert` into each format beside others that write the same format from the same JSON.

    bench/outputs.py TOOL ORDERS.json SCRATCH [RUNS [FORMAT...]]

$JMAP_PEERS_PYTHON is a Python with the packages of scripts/bench.  Wall and processor time in
seconds and peak resident memory in MB of 1,000,000 bytes: medians of RUNS (default 3) in turn.
"""
import os
import statistics
import subprocess
import sys

from commands import Run, left_out, remove, run

GOAL = 3.0  # the fastest other's wall time to ours
TARGETS = {"csv": "tables", "ndjson": "tables", "parquet": "tables", "arrow": "tables",
           "sqlite": "tables.sqlite", "xlsx": "tables.xlsx"}
HERE = os.path.dirname(os.path.abspath(__file__))


def median(runs):
    return Run(*(statistics.median(figures) for figures in zip(*runs)))


def fresh(folder):
    remove(folder)
    os.makedirs(folder)


def main():
    tool, document, scratch = map(os.path.abspath, sys.argv[1:4])
    runs = int(sys.argv[4]) if len(sys.argv) > 4 else 3
    python = os.environ.get("JMAP_PEERS_PYTHON", sys.executable)
    peers = [python, HERE + "/peers.py"]
    listed = [line.split() for line in subprocess.check_output([*peers, "--list"], text=True).splitlines()]
    out = os.path.join(scratch, "outputs")
    print(f"{'':26}{'wall':>8}{'processor':>11}{'peak MB':>9}")
    for form in sys.argv[5:] or TARGETS:
        target = TARGETS[form]
        commands = {"qvejmap": [tool, "convert", "-q", document, "--format", form, "-o", f"{out}/{target}"]}
        for peer, its, version in listed:
            if its == form:
                commands[f"{peer} {version}"] = [*peers, peer, form, document, out]
        times = {name: [] for name in commands}
        for _ in range(runs):
            for name, command in commands.items():
                fresh(out)
                try:
                    times[name].append(run(command))
                except SystemExit as failure:
                    left_out(f"{name}, {form}", failure)
        found = {name: median(of) for name, of in times.items() if of}
        for name, r in found.items():
            print(f"{form + ', ' + name:26}{r.wall:8.2f}{r.processor:11.2f}{r.peak:9.0f}", flush=True)
        others = [r.wall for name, r in found.items() if name != "qvejmap"]
        if others and "qvejmap" in found:
            ratio = min(others) / found["qvejmap"].wall
            print(f"{form + ', fastest other to ours':26}{ratio:8.2f}   goal {GOAL}"
                  f"{'' if ratio >= GOAL else ', MISSED'}", flush=True)
    remove(out)


main()
