#!/usr/bin/env python3
"""Rules of a shape, against a transformation of the whole document that is written down on its own.

    reshape.py QVEJMAP [DOCUMENTS [SEED]]     JMAP_LONG=1 in the environment: 2,000 documents

For random documents and rules, every verb gives for the document with its rules what it gives for
the transformed document: tables, map, records, rows in each format, ALLDATA, the account.
"""

import json
import os
import random
import re
import shutil
import subprocess
import sys
import tempfile

TOOL = os.path.abspath(sys.argv[1])
COUNT = int(sys.argv[2]) if len(sys.argv) > 2 else 2000 if os.environ.get("JMAP_LONG") == "1" else 60
SEED = int(sys.argv[3]) if len(sys.argv) > 3 else 1
NAMES = ["a", "b", "c", "a", "b", "id", "key", "value", "rows", "", "a b", "x/y", "é", "b_c", 'q"', "k*"]
R = random.Random(SEED)


class Object(list):
    """Members in order, equal names included."""


class Number(str):
    """A number as it is written."""


# ---- The transformation ----------------------------------------------------------------------------


def matches(pattern, names):
    if not pattern:
        return not names
    if pattern[0] == "**":
        return matches(pattern[1:], names) or bool(names) and matches(pattern, names[1:])
    return bool(names) and pattern[0] in ("*", ("name", names[0])) and matches(pattern[1:], names[1:])


def matches_below(pattern, names):
    if not names:
        return bool(pattern)
    if not pattern:
        return False
    if pattern[0] == "**":
        return matches_below(pattern[1:], names) or matches_below(pattern, names[1:])
    return pattern[0] in ("*", ("name", names[0])) and matches_below(pattern[1:], names[1:])


def is_container(value):
    return isinstance(value, list)


class Transformation:
    def __init__(self, rules):
        self.rules = [rule for rule in rules if rule["kind"] not in ("only", "empty drop")]
        self.only = [rule["path"] for rule in rules if rule["kind"] == "only"]
        self.drops_empty = any(rule["kind"] == "empty drop" for rule in rules)

    def rule(self, path):
        held = None
        for rule in self.rules:
            if matches(rule["path"], path) and (len(path) > 1 or rule["kind"] == "rows"):
                held = rule
        return held if held and held["kind"] != "keep" else None

    def kind(self, path):
        rule = self.rule(path)
        return rule["kind"] if rule else None

    def stays(self, value, path):
        if not self.only or any(matches(p, path[:n]) for p in self.only for n in range(1, len(path) + 1)):
            return True
        return is_container(value) and any(matches_below(p, path) for p in self.only)

    def document(self, value):
        made = self.container(value, ["root"])
        return self.without_empty(made) if self.drops_empty else made

    def container(self, value, path):
        """A container by the rule of its path."""
        rule = self.rule(path)
        kind = rule["kind"] if rule else None
        if kind == "text":
            return written(value)
        if not isinstance(value, Object):
            return (self.rows if kind == "rows" else self.elements)(value, path)
        if kind != "rows":
            return self.members(value, path)
        return self.mixed(value, path, rule) if rule["except"] else self.entries(value, path, rule)

    def elements(self, array, path):
        return [self.members(v, path) if isinstance(v, Object) else
                self.elements(v, path) if is_container(v) else v
                for v in array if self.stays(v, path)]

    def rows(self, array, path):
        return [self.members(v, path) if isinstance(v, Object) else
                Object([("value", self.rows(v, path) if is_container(v) else v)])
                for v in array if self.stays(v, path)]

    def kept(self, members, path):
        return [(name, value, path + [name]) for name, value in members
                if self.kind(path + [name]) != "drop" and self.stays(value, path + [name])]

    def member(self, name, value, path, prefix=""):
        if isinstance(value, Object) and self.kind(path) == "inline":
            return self.members(value, path, prefix + name + "_")
        return Object([(prefix + name, self.container(value, path) if is_container(value) else value)])

    def members(self, value, path, prefix=""):
        made = Object()
        for name, member, at in self.kept(value, path):
            made += self.member(name, member, at, prefix)
        return made

    def entry(self, name, value, path, key):
        made = Object([(key, name)])
        if not is_container(value):
            return made + [("value", value)]
        kind = self.kind(path)
        if isinstance(value, Object) and kind != "text" and (kind != "rows" or self.rule(path)["except"]):
            return made + (self.container(value, path) if kind == "rows" else self.members(value, path))
        return made + [("value", self.container(value, path))]

    def entries(self, value, path, rule):
        return [Object(self.entry(name, member, at, rule["key"])) for name, member, at in self.kept(value, path)]

    def mixed(self, value, path, rule):
        made, run = Object(), None
        for name, member, at in self.kept(value, path):
            if name in rule["except"]:
                run = None
                made += self.member(name, member, at)
                continue
            if run is None:
                run = []
                made.append(("rows", run))
            run.append(Object(self.entry(name, member, at, rule["key"])))
        return made

    def without_empty(self, value):
        if isinstance(value, Object):
            members = [(name, self.without_empty(member)) for name, member in value]
            return Object([(n, v) for n, v in members if not (is_container(v) and not v)])
        return [self.without_empty(v) for v in value] if is_container(value) else value


def written(value):
    """JSON without blanks."""
    if isinstance(value, Object):
        return "{" + ",".join(quoted(name) + ":" + written(member) for name, member in value) + "}"
    if isinstance(value, list):
        return "[" + ",".join(map(written, value)) + "]"
    if isinstance(value, Number):
        return value
    return quoted(value) if isinstance(value, str) else json.dumps(value)


def quoted(text):
    named = {'"': '\\"', "\\": "\\\\", "\b": "\\b", "\f": "\\f", "\n": "\\n", "\r": "\\r", "\t": "\\t"}
    return '"' + "".join(named.get(c) or (f"\\u{ord(c):04x}" if c < " " else c) for c in text) + '"'


# ---- Random documents and rules --------------------------------------------------------------------


def scalar():
    long = "x\té\"" * R.choice([1, 1, 1, 1, 1, 9000])
    return R.choice([Number("1"), Number("-2.50"), Number("1E3"), Number("12345678901234567890"), True, False,
                     None, "", "text", "a\"b\\c\n\x1f\x7f/é", long])


def value(depth):
    kind = R.random()
    if depth == 0 or kind < 0.35:
        return scalar()
    return document(depth, kind < 0.75)


def document(depth, is_object):
    size = R.choice([0, 1, 1, 2, 3, 5])
    if is_object:
        return Object((R.choice(NAMES), value(depth - 1)) for _ in range(size))
    return [value(depth - 1) for _ in range(size)]


def random_path(value):
    """A path of the document, some of its names replaced by wildcards; rarely any other path."""
    names = []
    while is_container(value) and value and (not names or R.random() < 0.75):
        name, value = R.choice(value) if isinstance(value, Object) else (None, R.choice(value))
        names += [] if name is None else [name]
    names = names if names and R.random() < 0.95 else [R.choice(NAMES)]
    pieces = [R.choice(["*", "**"] + [("name", n)] * 3) for n in names]
    return [("name", "root")] + pieces + (["**"] if R.random() < 0.05 else [])


def random_rule(document):
    kind = R.choice(["rows"] * 4 + ["inline", "inline", "text", "drop", "keep", "only", "empty drop"])
    rule = {"kind": kind, "path": random_path(document), "key": "key", "except": []}
    if kind == "rows":
        if R.random() < 0.15:
            rule["path"] = R.choice([[("name", "root")], [("name", "root"), "**"]])
        rule["key"] = R.choice(["key", "key", "name", "a b", "id"])
        rule["except"] = R.sample(NAMES, R.choice([0, 0, 0, 2, 5, 8]))
    return rule


def word(name):
    plain = name and not re.search(r'[ "]', name) and name not in ("as", "except")
    return name if plain else json.dumps(name)


def rule_text(rule):
    if rule["kind"] == "empty drop":
        return "empty drop"
    path = "".join("/" + (p if isinstance(p, str) else
                          re.sub(r"([/*\\])", r"\\\1", p[1]) if word(p[1]) == p[1] else word(p[1]))
                   for p in rule["path"])
    text = rule["kind"] + " " + path
    if rule["kind"] == "rows":
        text += "" if rule["key"] == "key" else " as " + word(rule["key"])
        text += " except " + " ".join(map(word, rule["except"])) if rule["except"] else ""
    return text


def options(rules):
    """The rules as options; some of them, from the first, in a file."""
    in_file = R.randrange(len(rules) + 1)
    with open("rules", "w") as file:
        file.write("# some rules\n\n" + "".join(rule_text(r) + "\n" for r in rules[:in_file]))
    words = ["--shape", "rules"] if in_file else []
    for rule in rules[in_file:]:
        option = {"text": "--as-text", "empty drop": "--drop-empty"}.get(rule["kind"], "--" + rule["kind"])
        words += [option] + ([] if option == "--drop-empty" else [rule_text(rule).split(" ", 1)[1]])
    return words


# ---- The comparison --------------------------------------------------------------------------------


def run(words):
    done = subprocess.run([TOOL, *words], capture_output=True)
    told = re.sub(rb"(plain|shaped)\.json", b"FILE", done.stderr)
    told = re.sub(rb"FILE:\d+:\d+", b"FILE:PLACE", re.sub(rb"qvejmap: FILE: \d+ rules? of the shape.*\n", b"", told))
    told = re.sub(rb"; rows PATH as KEY[^)]*", b"", told)
    return done.returncode, done.stdout, told


def compare(rules, words):
    """`words` with FILE where the document stands."""
    expected = run(["plain.json" if w == "FILE" else w for w in words])
    got = run([x for w in words for x in (["shaped.json"] if w == "FILE" else [w])] + rules)
    if words[0] == "check":  # places differ, and a line about the shape comes last
        got = (got[0], re.sub(rb".* of the document \+.*\n", b"", got[1]), got[2])
        expected, got = ((c, re.sub(rb" *(plain|shaped)\.json:\d+:\d+", b"", o), e) for c, o, e in (expected, got))
    if expected != got:
        print(f"seed {SEED}: {words}\nrules {rules}\nexpected {expected}\ngot      {got}")
        print(open("shaped.json").read()[:2000], open("plain.json").read()[:2000], sep="\n")
        sys.exit(1)
    return expected


def contents(folder):
    return {name: open(os.path.join(folder, name), "rb").read() for name in sorted(os.listdir(folder))
            if name != "datapackage.json"}


def compare_files(rules, words):
    compare(rules, ["convert", "FILE", "-o", "out", "--force", "-q", *words])
    got = contents("out")
    shutil.rmtree("out")
    run(["convert", "plain.json", "-o", "out", "-q", *words])
    if got != contents("out"):
        sys.exit(f"seed {SEED}: files of convert {words} {rules}")
    shutil.rmtree("out")


def main():
    compared = 0
    with tempfile.TemporaryDirectory() as folder:
        os.chdir(folder)
        for _ in range(COUNT):
            shaped = document(5, R.random() < 0.7)
            rules = [random_rule(shaped) for _ in range(R.choice([1, 2, 3, 4, 6]))]
            for rule in rules[1:]:  # below that of the first, where entries and runs meet other rules
                if R.random() < 0.3:
                    rule["path"] = rules[0]["path"] + [R.choice(["*", ("name", R.choice(NAMES))])]
            plain = Transformation(rules).document(shaped)
            with open("shaped.json", "w") as a, open("plain.json", "w") as b:
                a.write(written(shaped))
                b.write(written(plain))
            words = options(rules)
            compare(words, ["records", "FILE"])
            compare(words, ["tables", "FILE", "--columns"])
            compare(words, ["map", "FILE", *R.choice([[], ["--exact"]])])
            compare(words, ["check", "FILE", "--account"])
            compare(words, ["read", "FILE", "ALLDATA", *R.choice([[], ["--retain"]])])
            names = compare([*words], ["tables", "FILE", "--names"])[1].decode().split("\n")[:-1]
            if names:
                compare(words, ["read", "FILE", R.choice(names), "--format", R.choice(["csv", "ndjson"])])
                compare_files(words, R.choice([[], ["--alldata"], ["--format", "ndjson"], ["--retain"]]))
            compared += 8
    print(f"{COUNT} documents, {compared} comparisons, no difference")


main()
