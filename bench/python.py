#!/usr/bin/env python3
"""Times the package for Python: all tables into Arrow's memory, beside others, and the batches of one table.

    build/python-package/bin/python bench/python.py TOOL ORDERS.json [RUNS]

$JMAP_PEERS_PYTHON is a Python with the packages of scripts/bench.  Wall and processor time in seconds and
peak resident memory in MB of 1,000,000 bytes, each of a process of its own from its start to its end:
medians of RUNS (default 5) in turn.
"""
import os
import statistics
import subprocess
import sys

from commands import Run, heading, run, show, verdict

HERE = os.path.dirname(os.path.abspath(__file__))
TABLE = "orders_items"


def filled(table, prefix):
    """Cells with a value, in columns of that prefix."""
    return sum(len(table[name]) - table[name].null_count for name in table.column_names if name.startswith(prefix))


def tables(document):
    """Prints the numbers that bench/peers.py prints.  An empty array is a row of ours, and none of theirs."""
    import qvejmap

    made = qvejmap.open(document).to_arrow()
    print("orders", made["orders"].num_rows)
    print("items", made["orders_items"].num_rows)
    print("tags", filled(made["items_tags"], "tags"))
    print("tracking", filled(made["shipping_tracking"], "at"))


def batches(document):
    import qvejmap

    print(sum(len(batch) for batch in qvejmap.open(document)[TABLE].batches()))


def timed(commands, runs):
    """The median of each figure."""
    times = {name: [] for name in commands}
    for _ in range(runs):
        for name, command in commands.items():
            times[name].append(run(command))
    found = {name: Run(*map(statistics.median, zip(*of))) for name, of in times.items()}
    for name, figures in found.items():
        show(name, figures)
    return found


def main():
    if sys.argv[1] in ("tables", "batches"):
        {"tables": tables, "batches": batches}[sys.argv[1]](sys.argv[2])
        return
    tool, document = map(os.path.abspath, sys.argv[1:3])
    runs = int(sys.argv[3]) if len(sys.argv) > 3 else 5
    peers = [os.environ.get("JMAP_PEERS_PYTHON", sys.executable), HERE + "/peers.py"]
    ours = [sys.executable, os.path.abspath(__file__)]

    commands = {"qvejmap": [*ours, "tables", document]}
    for peer in ("duckdb", "polars"):
        commands[peer] = [*peers, peer, "memory", document, "-"]
    found = {name: subprocess.check_output(command) for name, command in commands.items()}
    if len(set(found.values())) != 1:
        sys.exit(f"python.py: not the same rows: {found}")
    heading("all tables into Arrow's memory")
    r = timed(commands, runs)
    others = r["duckdb"], r["polars"]
    fastest = min(others, key=lambda figures: figures.wall)
    ratio, memory = fastest.wall / r["qvejmap"].wall, r["qvejmap"].peak / fastest.peak
    verdict("wall time of the faster other, to ours", f"{ratio:.2f}", "5", ratio >= 5)
    verdict("our memory, to its", f"{memory:.2f}", "0.5", memory <= 0.5)

    heading(f"{TABLE}, one batch after the other")
    r = timed({"batches": [*ours, "batches", document], "read": [tool, "read", document, TABLE]}, runs)
    ratio = r["read"].wall / r["batches"].wall
    verdict("speed, to that of the tool's `read`", f"{ratio:.2f}", "0.7", ratio >= 0.7)


main()
