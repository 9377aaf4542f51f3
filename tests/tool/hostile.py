#!/usr/bin/env python3
"""Documents and maps as an attacker writes them, given to the tool.

Each must end within a time and a memory, with one exit code, and when it fails with one line that
names what and where.  Nothing is written outside the folder that convert is told.

    hostile.py QVEJMAP          JMAP_LONG=1 in the environment: documents of full size

Prints a table: the input, its bytes, exit code, processor seconds, peak memory, the message.
"""

import json
import os
import re
import resource
import subprocess
import sys
import tempfile
import threading

TOOL = os.path.abspath(sys.argv[1])
LONG = os.environ.get("JMAP_LONG") == "1"
SANITIZED = re.search(r"lib[at]san", subprocess.run(["ldd", TOOL], capture_output=True, text=True).stdout)
# Bounds are generous: they are there for what grows with the square, not for a slow machine.
SLACK = 12 if SANITIZED else 1
SECONDS = 240 if LONG else 60
DEEP = r"nested deeper than the limit of 1000 \(--depth\)"
TOO_LONG = r"memory could not be obtained, or a path or a number is longer than 1 MiB"


def size(short, long):
    return long if LONG else short


def table(*columns, name="t", path="/root/orders"):
    return json.dumps({"DATASETS": [{"DSNAME": name, "TABLEPATH": path, "VARIABLES": list(columns)}]}).encode()


def column(name="id", kind="NUMERIC", **more):
    return {"NAME": name, "TYPE": kind, "PATH": "/root/orders/" + name, **more}


ORDERS = b'{"orders":[{"id":1,"note":"first"},{"id":2,"note":"second"}]}'

brackets = size(200_000, 10_000_000)
levels = size(20_000, 100_000)
names = size(50_000, 5_000_000)
columns = size(10_000, 1_000_000)
digits = size(100_000, 1_000_000)

depth = size(200, 990)
width = size(2_000, 100_000)


def below(text):
    return b"".join(b'{"n%03d%s":' % (i, b"x" * 16) for i in range(depth)) + text + b"}" * depth


def products(count, one):
    return b",".join(one % i if b"%" in one else one for i in range(count))


def long_names():
    return b"".join(b'{"%s%d":' % (b"n" * 1000, i) for i in range(levels))


def distinct_names():
    return b"{" + products(names, b'"k%d":1') + b"}"


def many_numbers():
    return below(b"[" + products(width, b"1") + b"]")


def note(**more):
    return lambda: table(column("note", "CHARACTER", **more))


def named(name):
    return lambda: table(column(), name=name)


# Texts are made one at a time, in a process of their own: the peak memory of a child begins with
# that of its parent.
# name, text, arguments (IN: the file), exit code, message, MB at most
DOCUMENTS = [
    ("nested brackets", lambda: b"[" * brackets, "check IN", 6, "IN:1:1001: .*" + DEEP, 60),
    ("nested brackets, no limit", lambda: b"[" * brackets, "check IN --depth 0", 3, f"IN:1:{brackets + 1}: .* ends before", 1200),
    ("nested brackets, closed, no limit", lambda: b"[" * brackets + b"]" * brackets, "check IN --depth 0", 0, "", 1200),
    ("nested objects", lambda: b'{"a":' * levels, "check IN", 6, "IN:1:5001: .*" + DEEP, 60),
    ("nested objects and arrays", lambda: b'{"a":[' * levels, "check IN", 6, "IN:1:3001: .*" + DEEP, 60),
    ("nested objects, long names", long_names, "check IN", 6, r"IN:1:1006891: .*" + DEEP, 1600),
    ("nested objects, long names, --memory 64M", long_names, "check IN --memory 64M", 6, r"IN:1:1006891: .*" + DEEP, 1000),
    ("nested objects, long names, no limit", long_names, "map IN --depth 0", 6, r"IN:1:\d+: .*" + TOO_LONG, 2000),
    ("a name of 2 MB", lambda: b'{"' + b"n" * 2_000_000 + b'":1}', "map IN", 6, "IN:1:2000006: .*" + TOO_LONG, 60),
    ("a path of 2 MB", lambda: (b'{"' + b"n" * 500_000 + b'":') * 4 + b"1", "map IN", 6, "IN:1:.*" + TOO_LONG, 60),
    ("a string of 20 MB", lambda: b'{"a":"' + b"s" * 20_000_000 + b'"}', "check IN", 0, "", 100),
    ("distinct names", distinct_names, "check IN", 0, "", 64 + names // 600),
    ("distinct names in an address space of 2 GB", distinct_names, "check IN", 0, "", 2048),
    ("deep, then many numbers", many_numbers, "tables IN --memory 512M", 0, "", 512),
    ("deep, then many names", lambda: below(b"{" + products(width, b'"k%d":1') + b"}"), "tables IN --memory 512M", 0, "", 512),
    ("deep, then many objects", lambda: below(b"{" + products(width, b'"t%d":{"x":1}') + b"}"), "check IN --memory 32M",
     6, r"IN:.*more memory is needed than may be used.* \(--memory\)", 100),
    ("deep, then more than --max-paths", many_numbers, "check IN --max-paths 1000",
     6, r"IN:1:\d+: more than 1,000 distinct paths; most are below /root/n000", 200),
    ("an array of many numbers", lambda: b"[" + products(size(100_000, 1_000_000), b"1") + b"]", "tables IN", 0, "",
     64 + size(50, 450)),
    ("one wide table, written", lambda: b"[" + products(size(100_000, 1_000_000), b"1") + b"]",
     f"convert IN -o OUT --memory {size(56, 420)}M", 6, r"more memory is needed than may be used.* \(--memory\)", size(75, 460)),
    ("nested brackets with a shape", lambda: b"[" * brackets, "check IN --shape auto --rows /root/**", 6, DEEP, 60),
    ("nested objects, rows of all of them", lambda: b'{"a":' * 1000 + b"1" + b"}" * 1000,
     "check IN --rows /root/** --drop-empty", 0, "", 500),
    ("nested objects, inlined", lambda: b'{"a":' * (levels // 20) + b"1" + b"}" * (levels // 20),
     "check IN --depth 0 --inline /root/**", 0, "", 1000),
    ("names as data", distinct_names, "tables IN --shape auto", 0, "", 64 + names // 600),
    ("a number of many digits", lambda: b'{"a":' + b"7" * digits + b"}", "tables IN", 0, "IN:1:6: .*does not keep", 60),
    ("a number of many digits, written", lambda: b'{"a":' + b"7" * digits + b"}", "convert IN -o OUT", 0, "", 60),
    ("a number of 2 MB", lambda: b'{"a":1,\n"b":' + b"7" * 2_000_000 + b"}", "convert IN -o OUT", 6, "IN:2:.*" + TOO_LONG, 60),
    ("an exponent of many digits", lambda: b'{"a":1e' + b"9" * digits + b',"b":1e-' + b"9" * digits + b"}",
     "tables IN", 0, "does not keep", 60),
    ("NUL bytes", lambda: b"\0" * 1_000_000, "check IN --encoding UTF-8", 3, "IN:1:1: .*", 60),
]



tables_deep = size(60, 300)
wide = size(20_000, 100_000)


def tables_in_each_other():
    return b'{"v":1,"t":' * tables_deep + b"1" + b"}" * tables_deep


def many_tables():
    return b"{" + products(size(500, 5_000), b'"t%d":{"x":1}') + b"}"


def odd_names():
    odd = ["</script><script>alert(1)//", "]]>", "<!--", "&amp;", "'", '"; DROP TABLE t; --', "a\0b", "\x1b[31m", "\n", "\u202e", "%s%n",
           "../..", "=1+1", "[a]:*?/\\", "sqlite_master", "\ufffe", "n" * 2000, ""]
    return json.dumps({a: [{b: b for b in odd}] for a in odd}).encode()


# The same for what shows tables, declares types or is written by a library.  The command is done,
# unless a format has a limit that the document is beyond.
COMMANDS = ["tables IN --format json", "report IN -o OUT", "diagram IN -o OUT",
            *(f"convert IN -o OUT --format {name}" for name in ("sqlite", "parquet", "xlsx"))]
LIBRARIES = {"sqlite": "sqlite", "parquet": "arrow", "xlsx": "xlsx"}
CUT = (1, "cut to 32767 bytes")
# name, text, MB at most, {last word of the command: exit code, message}
SHOWN = [
    ("tables in each other", tables_in_each_other, size(100, 400), {}),
    ("many tables", many_tables, size(150, 800), {}),
    ("names of every kind", odd_names, 100, {}),
    ("distinct texts", lambda: b'{"o":[' + products(size(20_000, 500_000), b'{"v":"%0200d"}') + b"]}", size(120, 600), {}),
    ("one wide table", lambda: b"{" + products(wide, b'"k%d":1') + b"}", 60 + wide // 100,
     {"sqlite": (5, r"SQLite takes 2,000 in a table"), "xlsx": (5, r"a sheet of XLSX has at most 16384")}),
    ("a string of 20 MB", lambda: b'[{"a":"' + b"s" * 20_000_000 + b'"}]', 130, {name: CUT for name in LIBRARIES}),
    ("a number of many digits", lambda: b'[{"a":' + b"7" * digits + b"}]", 100, {"xlsx": (5, r"no text of more than 32767")}),
    ("nested objects", lambda: b'{"a":' * 1000 + b"1" + b"}" * 1000, 100, {}),
]

# The same with a map for ORDERS.
MAPS = [
    ("a map with many columns", lambda: table(*(column("c%d" % i) for i in range(columns))), 0, "has no rows", 60 + columns // 400),
    ("the same column many times", lambda: table(*(column() for _ in range(size(5_000, 50_000)))), 0, "", 600),
    *((f"length {n}", note(LENGTH=n), 0, "", 60) for n in (-1, -(2**63), 2**63 - 1)),
    ("length 2^63", note(LENGTH=2**63), 4, r"IN:1:\d+: .*integer", 60),
    ("informat width 2^63-1", note(INFORMAT=["upper", 2**63 - 1]), 0, "", 60),
    ("informat width -1", note(INFORMAT=["upper", -1]), None, "", 60),
    ("format width 2^63-1", lambda: table(column(FORMAT=["fixed", 2**63 - 1, 2**63 - 1])), None, "", 60),
    ("1000 columns of 2^63-1 bytes", lambda: table(*(column("note", "CHARACTER", LENGTH=2**63 - 1) for _ in range(1000))), None, "", 400),
    *(("table " + name, named(name), 0, "", 60) for name in ("../../x", "/tmp/qvejmap-hostile-x", "..", ".")),
    ("table with NUL", lambda: table(column("id\0x"), name="a\0b"), 0, "", 60),
    ("table with escapes", lambda: table(column("\x1b[31m\n"), name="a\x1b[31m\n/b"), 0, "", 60),
    ("table name of 2 MB", lambda: table(column("n" * 2_000_000), name="d" * 2_000_000), 0, "", 200),
    ("paths of 2 MB", lambda: table(column("p" * 2_000_000, LABEL="l" * 2_000_000), path="/root/" + "q" * 2_000_000), 0, "", 300),
    ("many tables", lambda: json.dumps({"DATASETS": [{"DSNAME": "t%d" % i, "TABLEPATH": "/root/orders", "VARIABLES": [column()]}
                                             for i in range(size(500, 20_000))]}).encode(), 0, "", 600),
    ("nested brackets", lambda: b'{"DATASETS":' + b"[" * brackets, 4, r"IN:1:14: .*'\{' was expected", 200),
    ("no UTF-8", lambda: b'{"DATASETS":[{"DSNAME":"\xff\xfe"}]}', 4, r"IN:1:\d+: .*", 60),
    ("NUL bytes", lambda: b'{"DATASETS":[\0\0]}', 4, r"IN:1:14: .*", 60),
    ("nothing", lambda: b"", 4, "IN", 60),
]

failures = 0


def check(right, what):
    global failures
    if not right:
        failures += 1
        print("    FAILED: " + what)


def write(target, text):
    writer = os.fork()
    if writer == 0:
        with open(target, "wb") as file:
            file.write(text())
        os._exit(0)
    check(os.waitpid(writer, 0)[1] == 0, "the input could not be written")


def snapshot(folder):
    return {os.path.join(at, f) for at, _, files in os.walk(folder) for f in files}


def limited(gigabytes):
    def limit():
        resource.setrlimit(resource.RLIMIT_AS, (gigabytes << 30, gigabytes << 30))

    return limit if gigabytes else None


def run(kind, name, text, command, code, message, megabytes, folder):
    target = os.path.join(folder, "in.map" if kind == "map" else "in.json")
    write(target, text)
    out = os.path.join(folder, "dir", "out")
    arguments = [target if a == "IN" else out if a == "OUT" else a for a in command.split()]
    before = snapshot(folder)
    space = int(found.group(1)) if (found := re.search(r"address space of (\d+) GB", name)) else 0
    if space and SANITIZED:
        return  # it needs the address space for itself
    with open(os.path.join(folder, "err"), "wb+") as err:
        process = subprocess.Popen([TOOL, *arguments], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                   stderr=err, cwd=os.path.join(folder, "dir"), preexec_fn=limited(space))
        alarm = threading.Timer(SECONDS * SLACK, process.kill)
        alarm.start()
        _, status, used = os.wait4(process.pid, 0)
        alarm.cancel()
        process.returncode = os.waitstatus_to_exitcode(status)
        err.seek(0)
        said = err.read().decode("utf-8", "replace")
    seconds, peak = used.ru_utime + used.ru_stime, used.ru_maxrss // 1024
    said = said.replace(target, "IN").replace(out, "OUT")
    first = said.split("\n", 1)[0]
    print(f"{kind:9}{name:46}{os.path.getsize(target):>11} {process.returncode:>3} {seconds:7.2f} s {peak:>6} MB  {first[:110]}", flush=True)
    if code is None:  # either is right: done, or a mistake of the map that is told
        check(process.returncode in (0, 1, 4, 6), f"exit code {process.returncode}")
    else:
        check(process.returncode == code, f"exit code {process.returncode}, not {code}")
    check(re.search(message, said, re.S) is not None, f"message {said[:300]!r}, not {message!r}")
    check(process.returncode in (0, 1) or said.startswith("qvejmap: "), "no message")
    check(not re.search(r"[\x00-\x08\x0b-\x1f\x7f]", said), "control characters in the message")
    check(len(said) < 20_000, f"a message of {len(said)} bytes")
    check(peak <= megabytes * SLACK, f"{peak} MB, more than {megabytes * SLACK}")
    new = snapshot(folder) - before - {os.path.join(folder, "err")}
    check(all(f == out or os.path.dirname(f) == out for f in new), f"files outside of the folder: {sorted(new)[:5]}")
    check(process.returncode in (0, 1) or not new, "output of a run that failed")
    subprocess.run(["rm", "-rf", out])


def main():
    with tempfile.TemporaryDirectory(prefix="qvejmap-hostile-") as folder:
        os.mkdir(os.path.join(folder, "dir"))
        orders = os.path.join(folder, "orders.json")
        with open(orders, "wb") as file:
            file.write(ORDERS)
        for case in DOCUMENTS:
            run("document", *case, folder)
        runs = 0
        for name, text, megabytes, limits in SHOWN:
            for command in COMMANDS:
                last = command.split()[-1]
                library = f"qvejmap_to_{LIBRARIES.get(last)}.so"
                if last in LIBRARIES and not os.path.exists(os.path.join(os.path.dirname(TOOL), library)):
                    print(f"{library} is not there, {command} left out")
                    continue
                runs += 1
                code, message = limits.get(last, (0, ""))
                run(command.split()[0], f"{name}, {last}", text, command, code, message, megabytes, folder)
        for name, text, code, message, megabytes in MAPS:
            run("map", name, text, f"convert {orders} --map IN -o OUT", code, message, megabytes, folder)
        check(not os.path.exists("/tmp/qvejmap-hostile-x.csv"), "a file in /tmp")
    print(f"{len(DOCUMENTS) + runs + len(MAPS)} runs, {failures} failures")
    return 1 if failures else 0


sys.exit(main())
