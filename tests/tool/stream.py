#!/usr/bin/env python3
"""Rows that are made while the text is read, or in parts of it, against those from records.

    stream.py QVEJMAP [DOCUMENTS [SEED]]     JMAP_LONG=1 in the environment: 1,000 documents

For random documents and maps, good and broken ones, all give the same files, the same words and the
same exit code.  And of a pipe that stays open the rows come before it ends.
"""

import json
import os
import random
import re
import select
import subprocess
import sys
import tempfile
import threading

TOOL = os.path.abspath(sys.argv[1])
COUNT = int(sys.argv[2]) if len(sys.argv) > 2 else 1000 if os.environ.get("JMAP_LONG") == "1" else 60
SEED = int(sys.argv[3]) if len(sys.argv) > 3 else 1
LONGEST_WAIT = 60  # seconds, for what never comes
R = random.Random(SEED)
NAMES = ["a", "b", "c", "id", "FAKE", "text", "é", "x y", ""]
WORDS = ["", "x", "lamp", "3.5", "a longer text, with \"quotes\"", "é" * 30, "z" * 300]


# ---- Documents and maps ----------------------------------------------------------------------------


def scalar():
    return R.choice([R.choice(WORDS), R.choice(WORDS), R.randrange(1000), -1.5, 12345678901234567890, True, None])


def value(depth):
    kind = R.random()
    if depth == 0 or kind < 0.5:
        return scalar()
    if kind < 0.75:
        return {R.choice(NAMES): value(depth - 1) for _ in range(R.randrange(5))}
    return [value(depth - 1) for _ in range(R.randrange(4))]


def some_rows():
    return [{R.choice(NAMES): value(3) for _ in range(R.randrange(1, 7))} for _ in range(R.randrange(1, 12))]


def document():
    rows = some_rows()
    how = R.randrange(4)
    if how == 0:
        return "\n".join(json.dumps(row) for row in rows) + "\n", "d.jsonl"
    text = json.dumps(rows if how == 1 else {"rows": rows} if how == 2 else value(5) or [],
                      ensure_ascii=R.random() < 0.5, indent=R.choice([None, 1]))
    if text[0] not in "[{":
        text = "[" + text + "]"
    return text, "d.json"


def large_document(how):
    """Of several parts, and the last kind one that cannot be divided."""
    # A name "" would keep the text in one piece.
    rows = [json.dumps(row).replace('"":', '"n":') for row in some_rows()]
    between = "\n" if how == 0 else ","
    text = between.join(rows * ((9 << 19) // len(between.join(rows)) + 1))
    return [(text + "\n", "d.jsonl"), ("[" + text + "]", "d.json"), ('{"rows":[' + text + '],"x":1}', "d.json"),
            ('[{"k\\u0002":1},' + text + ",[1]]", "d.json")][how]


def plan_of(as_one, threads):
    return b"plan: counted as one" if as_one or threads == "1" else b"plan: counted in parts on " + threads.encode()


def broken(text):
    at = R.randrange(len(text))
    return R.choice([text[:at], text[:at] + R.choice(["}", "]", ",", "\x01", "nul"]) + text[at:]])


def changed(column):
    column.pop("CURRENT_LENGTH", None)
    if column["TYPE"] != "ORDINAL":
        column["TYPE"] = R.choice([column["TYPE"], column["TYPE"], "CHARACTER", "NUMERIC"])
    if column["TYPE"] == "CHARACTER":
        if R.random() < 0.4:
            column["LENGTH"] = R.choice([1, 3, 40])
        if R.random() < 0.1:
            column["INFORMAT"] = ["upper"]
    return column


def user_map(automatic, shown=False):
    """The tables of the document with other types and lengths, some columns in other tables as well.
    `shown`: there is a number with a format, so that a walk must come first."""
    columns = [c for t in automatic["DATASETS"] for c in t["VARIABLES"]]
    tables = []
    for table in automatic["DATASETS"]:
        if R.random() < 0.2:
            continue
        own = [changed(dict(c)) for c in table["VARIABLES"] if R.random() < 0.85]
        own += [changed(dict(R.choice(columns), NAME="other")) for _ in range(R.randrange(2))]
        if own:
            tables.append(dict(table, DSNAME=table["DSNAME"] or "t", VARIABLES=own))
    if shown:
        place = R.choice(columns)["PATH"]
        tables.append({"DSNAME": "shown", "TABLEPATH": place.rpartition("/")[0], "VARIABLES": [
            {"NAME": "n", "TYPE": "ORDINAL", "PATH": "/root"},
            {"NAME": "f", "TYPE": "NUMERIC", "PATH": place, "FORMAT": ["comma", 12, 2]}]})
    rows = {"NAME": "n", "TYPE": "ORDINAL", "PATH": "/root"}
    return {"DATASETS": tables or [{"DSNAME": "t", "TABLEPATH": "/root", "VARIABLES": [rows]}]}


# ---- What the tool does ----------------------------------------------------------------------------


def run(folder, *args, source=None):
    cat = subprocess.Popen(["cat", source], stdout=subprocess.PIPE, cwd=folder) if source else None
    done = subprocess.run([TOOL, *args], cwd=folder, capture_output=True, check=False,
                          stdin=cat.stdout if cat else subprocess.DEVNULL)
    if cat:
        cat.stdout.close()
        cat.wait()
    return done


def files_of(folder):
    files = {}
    for name in os.listdir(folder) if os.path.isdir(folder) else []:
        with open(os.path.join(folder, name), "rb") as file:
            files[name] = re.sub(rb'"modified":"[^"]*"', b"", file.read())
    return files


def converted(folder, options, how, source):
    out = os.path.join(folder, "out")
    name = os.path.basename(source)
    done = run(folder, "convert", *(["-"] if source and "-" in how else options["inputs"]), "-o", "out",
               *options.get("map", ["--map", "m.json"]), "--plan", *options["more"], *[w for w in how if w != "-"], source=source if "-" in how else None)
    plan, _, words = done.stderr.partition(b"\n")
    files = files_of(out)
    rejects = os.path.join(folder, "rejects.csv")
    if os.path.exists(rejects):
        with open(rejects, "rb") as file:
            files["rejects"] = file.read()
        os.remove(rejects)
    subprocess.run(["rm", "-rf", out], check=True)
    for text in files:  # the same input by another name
        files[text] = files[text].replace(b'"input":"-"', b'"input":"' + name.encode() + b'"')
    return plan, (done.returncode, words.replace(b"<stdin>", name.encode()), files)


def check_equal(folder, seen):
    text, name = document()
    path = os.path.join(folder, name)
    with open(path, "w", encoding="utf-8") as file:
        file.write(text)
    automatic = run(folder, "map", name)
    assert automatic.returncode == 0, (text, automatic.stderr)
    with open(os.path.join(folder, "m.json"), "w", encoding="utf-8") as file:
        json.dump(user_map(json.loads(automatic.stdout)), file)
    if R.random() < 0.2:
        with open(path, "w", encoding="utf-8") as file:
            file.write(broken(text))
    more = R.choice([[], ["--format", "ndjson"], ["--rejects", "rejects.csv"], ["--gzip"], ["--threads", "1"]])
    several = R.random() < 0.3
    other = name.replace("d.", "e.")
    subprocess.run(["cp", name, other], cwd=folder, check=True)
    options = {"inputs": [name, other] if several else [name], "more": more + ["--force"]}
    plan, records = converted(folder, options, ["--compress"], path)
    assert plan.startswith(b"plan: records"), plan
    ways = [[]] + ([] if several or name == "d.jsonl" else [["-"]])
    for how in ways:
        plan, rows = converted(folder, options, how, path)
        if plan == b"plan: one walk, rows as they come":
            seen[records[0]] = seen.get(records[0], 0) + 1
        else:
            assert b"plan: records" in plan, plan
            seen["not"] = seen.get("not", 0) + 1
        if records[0] == 3:  # what the map makes worth saying is said before the text is read
            rows = (rows[0], rows[1][-len(records[1]):], rows[2])
        assert rows == records, "\n".join(["", folder, str(how), str(more), str(records), str(rows)])
    os.remove(path)


def check_parts(folder, seen):
    how = R.randrange(4)
    text, name = large_document(how)
    recoded = R.random() < 0.1
    with open(os.path.join(folder, name), "w", encoding="utf-16" if recoded else "utf-8") as file:
        file.write(text)
    mapped = R.random() < 0.7
    if mapped:
        automatic = run(folder, "map", name)
        with open(os.path.join(folder, "m.json"), "w", encoding="utf-8") as file:
            json.dump(user_map(json.loads(automatic.stdout), shown=True), file)
    options = {"inputs": [name] * R.choice([1, 1, 2]), "map": ["--map", "m.json"] if mapped else [],
               "more": R.choice([[], ["--format", "ndjson"], ["--rejects", "rejects.csv"], ["--gzip"]]) + ["--force"]}
    way = R.choice([[], [], ["--memory", "100M"], [] if mapped else ["--shape", "auto"]])
    _, records = converted(folder, options, [*way, "--compress"], name)
    for threads in "1", "2", "5":
        plan, rows = converted(folder, options, [*way, "--threads", threads], name)
        as_one = how == 3 or recoded or way
        assert plan.startswith(plan_of(as_one, threads)) or "auto" in way, (plan, how, recoded, way, threads)
        assert rows == records, "\n".join(["", folder, threads, str(options), str(way), str(records)[:3000], str(rows)[:3000]])
    seen["parts", records[0]] = seen.get(("parts", records[0]), 0) + 1


def check_rejects_around_parts(folder):
    """What is rejected before or after the elements of a member is told once, whoever walks which part."""
    element = '{"v":"%s"}' % ("v" * 1000)
    with open(os.path.join(folder, "d.json"), "w", encoding="utf-8") as file:
        file.write('{"t":"before","m":{"n":"one"},"rows":[' + ",".join([element] * 9000) + '],"m":{"n":"two"},"x":"after"}')
    tables = {"r": [("n", "ORDINAL", ""), ("t", "NUMERIC", "/t"), ("x", "NUMERIC", "/x")],
              "m": [("n", "NUMERIC", "/m/n"), ("f", "NUMERIC", "/m/f")], "rows": [("v", "CHARACTER", "/rows/v")]}
    formats = {"/m/f": {"FORMAT": ["comma", 12, 2]}}  # so that a walk must come first
    with open(os.path.join(folder, "m.json"), "w", encoding="utf-8") as file:
        json.dump({"DATASETS": [{"DSNAME": name, "TABLEPATH": "/root" + ("/" + name) * (name != "r"), "VARIABLES": [
            {"NAME": column, "TYPE": kind, "PATH": "/root" + path, **formats.get(path, {})} for column, kind, path in columns]}
            for name, columns in tables.items()]}, file)
    options = {"inputs": ["d.json"], "more": ["--rejects", "rejects.csv", "--force"]}
    _, records = converted(folder, options, ["--compress"], "d.json")
    assert records[2]["rejects"].count(b",not a number") == 4, records
    for threads in "1", "2", "5", "8":
        plan, rows = converted(folder, options, ["--threads", threads], "d.json")
        assert plan.startswith(plan_of(False, threads)), plan
        assert rows[0] == records[0] and rows[1] == records[1], (threads, rows[:2], records[:2])
        assert rows[2] == records[2], threads


def check_verbs(folder):
    """What tells of a large document says the same whether there are records or not."""
    for how in 1, 3:
        text, name = large_document(how)
        with open(os.path.join(folder, name), "w", encoding="utf-8") as file:
            file.write(text)
        for verb in (["map"], ["tables"], ["tables", "--format", "json"], ["check", "--account"], ["diagram", "--format", "dot"],
                     ["report", "-o", "-"], ["map", "--exact"], ["map", "--shape", "auto"]):
            said = [run(folder, verb[0], name, *verb[1:], *way) for way in ([], ["--compress"])]
            said = [(done.returncode, done.stdout, done.stderr) for done in said]
            assert said[0][0] in (0, 1) and said[0][1], (verb, said[0])
            assert verb[0] != "report" or b'class="place"' in said[0][1], "examples, with or without records"
            assert said[0] == said[1], "\n".join(["", folder, str(verb), str(said[0])[:3000], str(said[1])[:3000]])


# ---- Pipes that stay open --------------------------------------------------------------------------

MAP = {"DATASETS": [{"DSNAME": "rows", "TABLEPATH": "/root/rows", "VARIABLES": [
    {"NAME": "id", "TYPE": "NUMERIC", "PATH": "/root/rows/id"},
    {"NAME": "name", "TYPE": "CHARACTER", "PATH": "/root/rows/name"}]}]}
LINES_MAP = json.loads(json.dumps(MAP).replace("/root/rows", "/root"))


class Open:
    """The tool with a pipe as its input that is not at its end."""

    def __init__(self, folder, made, *args, out=subprocess.PIPE):
        with open(os.path.join(folder, "m.json"), "w", encoding="utf-8") as file:
            json.dump(made, file)
        self.tool = subprocess.Popen([TOOL, "read", "-", "rows", "--map", "m.json", *args], cwd=folder,
                                     stdin=subprocess.PIPE, stdout=out, stderr=subprocess.PIPE)
        self.writing = None

    def write(self, data):
        """On a thread: the tool may wait until its output is read."""
        if self.writing:
            self.writing.join()
        self.writing = threading.Thread(target=self.put, args=[data])
        self.writing.start()

    def put(self, data):
        self.tool.stdin.write(data)
        self.tool.stdin.flush()

    def read_until(self, ending):
        """What comes while the input waits."""
        text = b""
        while not text.endswith(ending):
            ready = select.select([self.tool.stdout], [], [], LONGEST_WAIT)[0]
            assert ready, "nothing comes of an input that waits, after " + repr(text[-80:])
            piece = os.read(self.tool.stdout.fileno(), 1 << 16)
            assert piece, "the output ends"
            text = (text + piece).replace(b"\r\n", b"\n")
        return text

    def end(self):
        """What comes when the input ends."""
        end = threading.Thread(target=lambda: (self.writing.join(), self.tool.stdin.close()))
        end.start()
        out = self.tool.stdout.read().replace(b"\r\n", b"\n")
        end.join()
        assert self.tool.wait(timeout=LONGEST_WAIT) == 0, self.tool.stderr.read()
        return out


def check_array(folder):
    """The first rows of an array come after its first mebibytes, all but the last that is begun."""
    tool = Open(folder, MAP)
    rows = [b'{"id":%d,"name":"the name of %d"}' % (i, i) for i in range(100000)]
    text = b",".join(rows)[: 3 << 20]
    count = text.count(b"{") - 1
    tool.write(b'{"rows":[' + text)
    out = tool.read_until(b"the name of %d\n" % (count - 1))
    assert out.count(b"\n") == count + 1, out.count(b"\n")
    tool.write((b",".join(rows))[3 << 20:] + b"]}")
    assert (out + tool.end()).count(b"\n") == len(rows) + 1


def check_lines(folder):
    """Of lines each row comes when the next one begins, also when bytes come one by one."""
    tool = Open(folder, LINES_MAP, "--lines")
    tool.write(b'{"id":1,"name":"one"}\n{"id":')
    assert tool.read_until(b"one\n") == b"id,name\n1,one\n"
    for byte in b'2,"name":"two"}\n{"i':
        tool.write(bytes([byte]))
    assert tool.read_until(b"two\n") == b"2,two\n"
    tool.write(b'd":3}\n')
    assert tool.end() == b"3,\n"


def check_full(folder):
    """The tool ends when it cannot write, though its input goes on."""
    with open("/dev/full", "wb") as full:
        tool = Open(folder, LINES_MAP, "--lines", out=full)
        tool.write(b'{"id":1}\n{"id":2}\n')
        tool.tool.wait(timeout=LONGEST_WAIT)
    assert tool.tool.returncode == 5, tool.tool.returncode


def main():
    with tempfile.TemporaryDirectory() as folder:
        check_array(folder)
        check_lines(folder)
        check_full(folder)
        check_rejects_around_parts(folder)
        check_verbs(folder)
        seen = {}
        for i in range(COUNT):
            check_equal(folder, seen)
        for i in range(COUNT // 5):
            check_parts(folder, seen)
        # Both plans, and good, lossy and broken documents have come.
        assert {0, 1, 3, "not", ("parts", 0), ("parts", 1)} <= set(seen) or COUNT < 60, seen
    print(f"{COUNT} documents: {seen}")


main()
