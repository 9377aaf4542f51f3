#!/usr/bin/env python3
"""Times tables on Spark: the plan (its steps apart), one table read by it, and Spark's own JSON reader.

    build/python-spark/bin/python bench/spark.py WORKERS INPUT [INPUT...] [--own] [--runs N]

WORKERS are processes of one core and 1,024 MB each.  An INPUT is a file, a folder or a pattern of documents as
makebig's orders are.  "find" makes the plan of the items, "read" reads them, "all" makes the plan of all tables.  With
--own Spark reads the items, too: `spark.read.json(multiLine=True)` and two explodes, or of JSON Lines
`spark.read.json` and one.  Wall time in seconds, medians
of N runs (default 3) in turn; everything in one session, after a run of all that is not counted, in which workers
start and Java compiles.  What Spark's own interface tells of the last run stands below.
"""
import argparse
import json
import os
import statistics
import sys
import time
import urllib.request
from functools import partial

import qvejmap
import qvejmap.spark
from qvejmap._spark_options import PARTITION_BYTES
from pyspark.sql import SparkSession
from pyspark.sql import functions as F

VALUES = ["sku", "title", "qty", "price", "discount"]
STEPS = {"_begun": "begin", "_scan": "scan", "_merged": "sum", "_found_rules": "shape", "_facts": "facts", "sum": "sum"}


def session(workers):
    os.environ.setdefault("PYSPARK_PYTHON", sys.executable)
    made = (SparkSession.builder.master(f"local-cluster[{workers},1,1024]")
            .config("spark.ui.showConsoleProgress", "false").config("spark.log.level", "ERROR").getOrCreate())
    made.range(workers * 4).repartition(workers * 4).rdd.map(lambda _: qvejmap.__name__).collect()
    return made


class Finding:
    """Makes a plan, and keeps what its steps took."""

    def __init__(self, spark):
        self._spark = spark
        self.walls, self.work, self.bytes = {}, {}, 0

    def run(self, function, items):
        inner = function.args[0]  # what _tried applies
        inner = getattr(inner, "func", inner)
        step = STEPS[inner.__name__]
        start = time.monotonic()
        results = qvejmap.spark._run(self._spark, partial(timed, function), items)
        self.walls[step] = self.walls.get(step, 0) + time.monotonic() - start
        self.work[step] = self.work.get(step, 0) + sum(seconds for seconds, _ in results)
        scans = [result[2] if step == "begin" else result for _, result in results if step in ("begin", "scan")]
        self.bytes += sum(len(scan.data) for scan in scans if scan is not None)
        return [result for _, result in results]


def timed(function, item):
    start = time.monotonic()
    result = function(item)
    return time.monotonic() - start, result


def to_nothing(frame):
    frame.write.format("noop").mode("overwrite").save()


def own(spark, files, lines):
    if lines:
        orders = spark.read.json(files).select(F.monotonically_increasing_id().alias("order"), F.struct("items").alias("o"))
    else:
        orders = spark.read.json(files, multiLine=True).select(F.posexplode("orders").alias("order", "o"))
    items = orders.select("order", F.posexplode("o.items").alias("item", "i"))
    return items.select("order", "item", *(f"i.{name}" for name in VALUES))


def seconds_of(work):
    start = time.monotonic()
    result = work()
    return time.monotonic() - start, result


def stages(spark):
    base = f"{spark.sparkContext.uiWebUrl}/api/v1/applications/{spark.sparkContext.applicationId}"
    with urllib.request.urlopen(base + "/stages?status=complete") as answer:
        return json.load(answer)


def measure(spark, source, files, runs, with_own):
    bytes = sum(os.path.getsize(file) for file in files)
    print(f"\n{source}: {len(files)} files, {bytes / 1e6:,.0f} MB, {runs} runs")
    lines = source.endswith("l")
    table = "items" if lines else "orders_items"
    found = {"find": [], "read": [], "all": [], "own": []}
    steps = {}
    for run in range(runs + 1):
        if run == 1:
            found, steps = {name: [] for name in found}, {}
        before = {stage["stageId"] for stage in stages(spark)}
        finding = Finding(spark)
        seconds, plan = seconds_of(lambda: qvejmap.Plan.find(source, finding.run, size=PARTITION_BYTES, table=table))
        found["find"].append(seconds)
        for step, wall in finding.walls.items():
            steps.setdefault(step, []).append((wall, finding.work[step]))
        frame = qvejmap.spark.read(spark, plan)
        found["read"].append(seconds_of(lambda: to_nothing(frame))[0])
        found["all"].append(seconds_of(lambda: qvejmap.spark.prepare(spark, source))[0])
        after = [stage for stage in stages(spark) if stage["stageId"] not in before]
        if with_own:
            try:
                found["own"].append(seconds_of(lambda: to_nothing(own(spark, files, lines)))[0])
            except Exception as error:  # it ran out of memory, say
                print("  Spark's own reader:", str(error).strip().splitlines()[0][:150])
                with_own = False
    median = {name: statistics.median(of) for name, of in found.items() if of}
    for step, of in steps.items():
        wall, work = (statistics.median(values) for values in zip(*of))
        print(f"  {step:8}{wall:8.2f} s wall, {work:8.2f} s inside its tasks")
    plan_bytes = len(plan.to_json())
    print(f"  {len(plan.parts)} parts, {finding.bytes:,} bytes of scans, {plan_bytes:,} of the plan")
    for name, seconds in median.items():
        print(f"  {name:8}{seconds:8.2f} s   {[round(each, 2) for each in found[name]]}")
    if "own" in median:
        both = median["find"] + median["read"]
        print(f"  own / (find + read) {median['own'] / both:.2f}   own / read {median['own'] / median['read']:.2f}")
    for stage in after:
        print(f"  stage {stage['stageId']}: {stage['numCompleteTasks']} tasks, {stage['executorRunTime'] / 1000:.1f} s in "
              f"executors, {stage.get('resultSize', 0):,} bytes of results, {stage['name'].split(' at ')[0]}")


def main():
    arguments = argparse.ArgumentParser()
    arguments.add_argument("workers", type=int)
    arguments.add_argument("input", nargs="+")
    arguments.add_argument("--own", action="store_true")
    arguments.add_argument("--runs", type=int, default=3)
    given = arguments.parse_args()
    spark = session(given.workers)
    for source in given.input:
        files, _ = qvejmap._qvejmap.input_files([os.fsencode(source)])
        measure(spark, source, [os.fsdecode(file) for file in files], given.runs, given.own)
    spark.stop()


if __name__ == "__main__":
    main()
