#!/usr/bin/env python3
"""Runs bench_parser and bench_engine and prints what they measured as one table, with ratios.

    bench/goals.py PROGRAMS [--quick]

PROGRAMS is the directory of the built benchmarks; the documents are those of bench/documents.h.
Ratios are of medians of one run.  A goal that is missed is marked with "!".
"""
import json
import os
import subprocess
import sys
import tempfile

DOCUMENTS = ("orders", "events", "twitter", "canada")
GOALS = {
    "parser": (1.2, 1.5, 1.4, 1.2),       # of Boost.JSON's
    "scan": (0.55, 0.55, 0.60, 0.50),     # of our parser
    "count": (0.70, 0.65, 0.70, 0.55),    # likewise
    "table": (8, 8, 6, 8),                # GB of records a second
}


def measure(program, repetitions, min_time):
    """The median of each benchmark of a program, by its name; empty when it cannot run."""
    with tempfile.NamedTemporaryFile(suffix=".json") as out:
        command = [program, f"--benchmark_repetitions={repetitions}",
                   f"--benchmark_min_time={min_time}", "--benchmark_report_aggregates_only=true",
                   "--benchmark_enable_random_interleaving=true",
                   f"--benchmark_out={out.name}", "--benchmark_out_format=json"]
        try:
            done = subprocess.run(command, check=True, text=True, stdout=subprocess.DEVNULL,
                                  stderr=subprocess.PIPE)
            print("".join(line + "\n" for line in done.stderr.splitlines()
                          if line.startswith("left out")), end="")
            results = json.load(open(out.name))["benchmarks"]
        except (OSError, subprocess.CalledProcessError) as error:
            print(f"left out: {error}")
            return {}
        except ValueError:  # it writes nothing then
            print(f"left out: {os.path.basename(program)} (no document)")
            return {}
    return {r["run_name"]: r for r in results if r.get("aggregate_name") == "median"}


def rate(results, name):
    """Bytes a second, or None."""
    return results[name]["bytes_per_second"] if name in results else None


def row(title, cells):
    print(f"{title:44}" + "".join(f"{cell:>12}" for cell in cells))


def megabytes(rates):
    return ["-" if r is None else f"{r / 1e6:,.0f}" for r in rates]


def against(goal, values, digits):
    """Each value, with a mark where it misses its goal."""
    return ["-" if v is None else f"{v:.{digits}f}{' ' if v >= g else '!'}"
            for v, g in zip(values, GOALS[goal])]


def ratios(upper, lower):
    return [u / l if u and l else None for u, l in zip(upper, lower)]


def main():
    programs, quick = sys.argv[1], "--quick" in sys.argv[2:]
    repetitions, min_time = (2, 0.1) if quick else (3, 0.3)
    parsed = measure(os.path.join(programs, "bench_parser"), repetitions, min_time)
    scanned = measure(os.path.join(programs, "bench_engine"), repetitions, min_time)

    def rates(results, kind):
        return [rate(results, f"{kind}/{d}") for d in DOCUMENTS]

    ours, boost = rates(parsed, "BM_Parse"), rates(parsed, "BM_BoostParse")
    scan = rates(scanned, "BM_Scan")
    cold = [scanned[f"BM_Scan/{d}"]["cold_MBps"] * 1e6 if r else None
            for d, r in zip(DOCUMENTS, scan)]
    tables = [sorted(((r["bytes_per_second"] / 1e9, name) for name, r in scanned.items()
                      if name.startswith(f"BM_Read/{d}/")), reverse=True) for d in DOCUMENTS]

    row("in process, one thread", DOCUMENTS)
    row("our parser, MB/s", megabytes(ours))
    row("  without AVX2", megabytes(rates(parsed, "BM_ParseSse2")))
    row("  without vectors", megabytes(rates(parsed, "BM_ParsePortable")))
    row("Boost.JSON's parser, MB/s", megabytes(boost))
    row("  ours to Boost.JSON's", against("parser", ratios(ours, boost), 2))
    row("  goal", GOALS["parser"])
    row("scan to the automatic map, cold, MB/s", megabytes(cold))
    row("scan to the automatic map, warm, MB/s", megabytes(scan))
    row("  warm scan to our parser", against("scan", ratios(scan, ours), 2))
    row("  goal", GOALS["scan"])
    count = rates(scanned, "BM_Count")
    row("statistics and map alone, MB/s", megabytes(count))
    row("  to our parser", against("count", ratios(count, ours), 2))
    row("  goal", GOALS["count"])
    rows = rates(scanned, "BM_Walk")
    row("rows of all tables by a walk, MB/s", megabytes(rows))
    row("  its time to that of scan and pass",
        ["-" if r is None else f"{r:.2f}" for r in ratios(rates(scanned, "BM_Pass"), rows)])
    for which, at in (("fastest", 0), ("slowest", -1)):
        speeds = [t[at][0] if t else None for t in tables]
        row(f"one table, GB/s of records, {which}", against("table", speeds, 1))
    row("  goal", GOALS["table"])
    for of_document in tables:
        for gigabytes, name in of_document:
            print(f"    {name.removeprefix('BM_Read/'):40}{gigabytes:12.1f}")


main()
