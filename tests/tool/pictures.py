#!/usr/bin/env python3
"""Pictures, reports and the tables as JSON, read back by other readers.

    pictures.py TOOL

The tables as JSON must say what datapackage.json says, SVG must be XML whose boxes do not overlap,
Graphviz must read what is for it (when it is installed), and a report must hold the texts of the
document as text: every tag, attribute and link is one that a report has.
"""
import html.parser
import json
import os
import random
import re
import shutil
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as xml

TOOL = os.path.abspath(sys.argv[1])
HERE = os.path.dirname(os.path.abspath(__file__))
EXAMPLES = os.path.join(HERE, "../../examples")
REAL = os.path.join(HERE, "../../../shared/data")
SVG = "{http://www.w3.org/2000/svg}"
DOCUMENTS = 25

# Names and texts that some format might take for its own.
NASTY = ["</script><img src=x onerror=alert(1)>", "]]>", "<!--", "-->", "a\"'><b>&amp;", "\\N\\G\\l",
         "x\" onload=\"y", "style=\"x\"", "#35;#quot;", "%%{init}%%", "`{};|", "a b", "erDiagram",
         "日本", "\u202egnp.exe", "\u001b[31m\n\t\r\0", "\ufffe\uffff", "1", "'", "javascript:x", "end"]
TAGS = set("""html head meta title style script body header main footer section h1 h2 p dl div dt dd
    ul li table caption thead tbody tr th td a b i br small code span bdi details summary svg defs
    marker path circle g rect text""".split())
EMPTY = {"meta", "br"}
ATTRIBUTES = set("""lang charset http-equiv content name class style tabindex role aria-label scope
    title href id xmlns width height viewbox x y rx d cx cy r refx refy markerwidth markerheight
    markerunits marker-start marker-end text-anchor data-from data-to data-table""".split())
TYPES = {"TEXT": "string", "BOOLEAN": "boolean", "BIGINT": "integer", "DOUBLE": "number",
         "DECIMAL": "number", "DATE": "date", "TIMESTAMP": "datetime"}


def run(*words, path=None):
    environment = dict(os.environ, PATH=path) if path else None
    result = subprocess.run([TOOL, *words], capture_output=True, timeout=120, env=environment)
    assert result.returncode in (0, 1), (words, result.stderr)
    return result.stdout.decode()


def check_json(file, tables, folder):
    """The tables as JSON, beside the data package of the same document and its account."""
    out = os.path.join(folder, "out")
    shutil.rmtree(out, ignore_errors=True)
    run("convert", file, "-o", out, "-q", "--naming", "original")
    with open(os.path.join(out, "datapackage.json"), encoding="utf-8") as package:
        resources = json.load(package)["resources"]
    assert len(resources) == len(tables["tables"]), file
    titles = {resource["name"]: resource["title"] for resource in resources}
    for resource, table in zip(resources, tables["tables"]):
        schema = resource["schema"]
        assert (resource["title"], resource["rows"]) == (table["name"], table["rows"]), file
        assert [(f["name"], f["type"], f.get("originalName"), f["path"]) for f in schema["fields"]] \
            == [(c["name"], TYPES[re.match("[A-Z]+", c["type"])[0]], c["originalName"], c["path"])
                for c in table["columns"]], (file, table["name"])
        assert schema.get("primaryKey", [None])[0] == table["primaryKey"], (file, table["name"])
        keys = [{"column": key["fields"][0], "table": titles[key["reference"]["resource"]],
                 "parentColumn": key["reference"]["fields"][0]}
                for key in schema.get("foreignKeys", [])]
        assert (keys or [None])[0] == table["foreignKey"], (file, table["name"])
    account = run("check", file, "--account")
    sums = [int(n) for n in re.findall(r"(\d+) (?:values? =|in cells|overwritten|no column|no row|"
                                       "rejected)", account.strip().split("\n")[-1])]
    assert sums == [tables["account"][way] for way in
                    ("values", "cells", "overwritten", "noColumn", "noRow", "rejected")], file


def check_svg(text, names):
    """A picture of our own layout: a box for each table, apart from each other."""
    root = xml.fromstring(text)
    boxes = [[float(rect.get(key)) for key in ("x", "y", "width", "height")]
             for rect in root.iter(SVG + "rect") if rect.get("class") == "box"]
    assert len(boxes) == min(len(names), 200)
    for i, (x, y, width, height) in enumerate(boxes):
        assert x >= 0 and y >= 0 and width > 0 and height > 0
        for x2, y2, width2, height2 in boxes[:i]:
            assert x >= x2 + width2 or x2 >= x + width or y >= y2 + height2 or y2 >= y + height
    heads = sorted(text.text for text in root.iter(SVG + "text") if text.get("class") == "name")
    if len(names) <= 200:
        assert heads == sorted(map(shown, names)), (heads, names)


def shown(name, most=36):
    """A name as a picture has it: in part, without control characters."""
    name = name[:most] + ("…" if len(name) > most else "") if name else '""'
    escapes = {"\n": "\\n", "\t": "\\t", "\r": "\\r", "\b": "\\b", "\f": "\\f"}
    name = "".join(escapes.get(c, "\\u%04x" % ord(c)) if ord(c) < 32 or 127 <= ord(c) < 160 else c
                   for c in name)
    return name.replace("\ufffe", "\ufffd").replace("\uffff", "\ufffd")


def check_dot(text, tables):
    if shutil.which("dot") is None:
        return
    drawn = subprocess.run(["dot", "-Tsvg"], input=text.encode(), capture_output=True, timeout=120)
    assert drawn.returncode == 0 and b"rror" not in drawn.stderr, drawn.stderr
    root = xml.fromstring(drawn.stdout)
    classes = [group.get("class") for group in root.iter(SVG + "g")]
    assert classes.count("node") == len(tables)
    assert classes.count("edge") == sum(table["parent"] is not None for table in tables)


class Page(html.parser.HTMLParser):
    """Tags in pairs, with attributes that a report has; collects ids, links and texts."""

    def __init__(self):
        super().__init__(convert_charrefs=True)
        self.open, self.ids, self.links, self.texts, self.scripts = [], [], [], [], []

    def handle_starttag(self, tag, attributes):
        assert tag in TAGS, tag
        for name, value in attributes:
            assert name in ATTRIBUTES, (tag, name)
            if name == "style":
                assert re.fullmatch(r"--(depth|share):\d+%?", value), value
            if name == "href":
                assert value.startswith("#"), value
                self.links.append(value[1:])
            if name == "id":
                self.ids.append(value)
        if tag not in EMPTY:
            self.open.append(tag)

    def handle_startendtag(self, tag, attributes):
        self.handle_starttag(tag, attributes)
        self.open.pop()

    def handle_endtag(self, tag):
        assert self.open.pop() == tag, tag

    def handle_data(self, data):
        (self.scripts if self.open[-1:] == ["script"] else self.texts).append(data)

    def handle_comment(self, data):
        raise AssertionError("a comment: " + data)


def check_report(text, names):
    page = Page()
    page.feed(text)
    page.close()
    assert not page.open, page.open
    assert len(set(page.ids)) == len(page.ids)
    assert set(page.links) <= set(page.ids), set(page.links) - set(page.ids)
    with open(os.path.join(HERE, "../../tools/cli/report/report.js"), encoding="utf-8") as script:
        assert "".join(page.scripts).strip() == script.read().strip()
    for name in names:
        assert shown(name, 80) in page.texts, name
    assert not re.search(r"https?:(?!//www\.w3\.org/2000/svg\")", text.split("<main>")[0])


def random_value(rng, depth):
    kind = rng.randrange(10 if depth else 6)
    if kind < 6:
        return [rng.choice(NASTY), rng.randrange(-9, 10**rng.randrange(1, 22)), rng.random() * 1e6,
                rng.random() < 0.5, None, "2024-02-%02dT10:00:00Z" % rng.randrange(1, 29)][kind]
    if kind < 8:
        return [random_value(rng, depth - 1) for _ in range(rng.randrange(4))]
    return {rng.choice(NASTY): random_value(rng, depth - 1) for _ in range(rng.randrange(1, 5))}


def documents(folder):
    for folder_of_files in (EXAMPLES, REAL):
        for name in sorted(os.listdir(folder_of_files)) if os.path.isdir(folder_of_files) else []:
            file = os.path.join(folder_of_files, name)
            if name.endswith(".json") and "_map" not in name and os.path.getsize(file) < 700_000:
                yield file
    rng = random.Random(20241122)
    for n in range(DOCUMENTS):
        file = os.path.join(folder, "%d.json" % n)
        with open(file, "w", encoding="utf-8") as out:
            rows = [{rng.choice(NASTY): random_value(rng, 4) for _ in range(4)} for _ in range(3)]
            # Without values of its own the object around them is no table, and there are many trees.
            several = {name: rows for name in rng.sample(NASTY, rng.randrange(2, 9))}
            json.dump(several if n % 2 else rows, out, ensure_ascii=rng.random() < 0.5)
        yield file


def main():
    count = 0
    with tempfile.TemporaryDirectory() as folder:
        for file in documents(folder):
            original = [file, "-q", "--naming", "original"]
            tables = json.loads(run("tables", *original, "--format", "json"))
            names = [table["name"] for table in tables["tables"]]
            check_json(file, tables, folder)
            check_svg(run("diagram", *original, path=folder), names)
            if len(names) <= 60:
                check_dot(run("diagram", *original, "--format", "dot"), tables["tables"])
            check_report(run("report", *original, "-o", "-"), names if len(names) <= 300 else [])
            count += 1
    print("%d documents" % count + ("" if shutil.which("dot") else "; dot is not installed"))


main()
