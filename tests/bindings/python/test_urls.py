"""Files by a scheme, which fsspec reads."""

import contextlib
import functools
import gzip
import http.server
import os
import pickle
import re
import subprocess
import sys
import tempfile
import threading
import unittest
import zipfile

import pyarrow

import qvejmap

try:
    import aiohttp  # noqa: F401
    import fsspec
except ImportError:
    fsspec = None


def rows(count):
    for i in range(count):
        yield '{"id":%d,"on":"2024-01-%02d","items":[%s]}' % (
            i, i % 28 + 1, ",".join('{"sku":"%s","p":%d.5}' % ("x" * (i % 40), i) for _ in range(i % 4)))


def documents():
    text = list(rows(300))
    member = '{"n":7,"rows":[' + ",".join(text) + '],"m":8}'
    return {
        "array.json": ("[" + ",\n".join(text) + "]").encode(),
        "lines.jsonl": "\n".join(text).encode(),
        "member.json": member.encode(),
        "packed.json.gz": gzip.compress(("[" + ",".join(text) + "]").encode()),
        "wide.json": ("[" + ",".join(text) + "]").encode("utf-16"),
    }


class Web(http.server.BaseHTTPRequestHandler):
    """Files, with ranges and ETags unless the server was told otherwise."""

    def log_message(self, *_):
        pass

    def do_HEAD(self):
        self.do_GET()

    def do_GET(self):
        web = self.server
        name = self.path.lstrip("/")
        with web.turn:
            web.requests += 1
            data = web.files.get(name)
        wanted = re.fullmatch(r"bytes=(\d+)-(\d*)", self.headers.get("Range", ""))
        if name == "" or name.endswith("/"):
            page = "".join(f'<a href="{file[len(name):]}">x</a>' for file in web.files if file.startswith(name)).encode()
            return self.answer(200, page, {"Content-Type": "text/html"})
        if data is None:
            return self.answer(404, b"")
        begin = int(wanted[1]) if wanted else 0
        if web.fails_after is not None and self.command == "GET" and begin >= web.fails_after:
            if web.breaks_off:
                self.send_response(206)
                self.send_header("Content-Length", "1000")
                self.end_headers()
                self.wfile.write(data[begin : begin + 10])
                self.close_connection = True
                return None
            return self.answer(500, b"")
        headers = {"ETag": f'"{hash(data)}"', "Content-Type": "application/json"}
        if wanted and web.ranges:
            end = min(int(wanted[2]) if wanted[2] else len(data) - 1, len(data) - 1)
            headers |= {"Content-Range": f"bytes {begin}-{end}/{len(data)}", "Accept-Ranges": "bytes"}
            return self.answer(206, data[begin : end + 1], headers)
        return self.answer(200, data, headers)

    def answer(self, status, data, headers={}):
        self.send_response(status)
        for name, of in headers.items():
            self.send_header(name, of)
        self.send_header("Content-Length", str(len(data)))
        self.end_headers()
        if self.command != "HEAD":
            self.wfile.write(data)


class Served(http.server.ThreadingHTTPServer):
    daemon_threads = True

    def __init__(self, files):
        super().__init__(("127.0.0.1", 0), Web)
        self.files = files
        self.turn = threading.Lock()
        self.requests = 0
        self.ranges, self.breaks_off, self.fails_after = True, False, None
        self.url = f"http://127.0.0.1:{self.server_port}/"
        threading.Thread(target=self.serve_forever, daemon=True).start()

    def handle_error(self, *_):
        pass  # a client that goes away


def as_elsewhere(function, items):
    return [pickle.loads(pickle.dumps(pickle.loads(pickle.dumps(function))(item))) for item in items]


@unittest.skipIf(fsspec is None, "fsspec is not installed")
class Urls(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.files = documents()
        for name, data in self.files.items():
            self.write(name, data)

    def write(self, name, data):
        path = os.path.join(self.folder.name, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "wb") as file:
            file.write(data)
        return path

    def in_memory(self, files):
        system = fsspec.filesystem("memory")
        system.store.clear()
        system.pseudo_dirs[:] = [""]
        for name, data in files.items():
            system.pipe("/x/" + name, data)
        return "memory://x/"

    @contextlib.contextmanager
    def served(self, files=None):
        server = Served(dict(self.files if files is None else files))
        try:
            yield server
        finally:
            server.shutdown()
            server.server_close()

    def tables_of(self, plan):
        """All tables of all parts, without the names of files."""
        light = plan.without_parts()
        parts = [light.open(part).to_arrow() for part in pickle.loads(pickle.dumps(plan.parts))]
        tables = {name: pyarrow.concat_tables([part[name] for part in parts]) for name in parts[0]}
        return {name: table.drop_columns([c for c in table.column_names if c == "source"]) for name, table in tables.items()}

    def compare(self, plan, local):
        want = {name: table.drop_columns([c for c in table.column_names if c == "source"])
                for name, table in qvejmap.open(local).to_arrow().items()}
        got = self.tables_of(plan)
        self.assertEqual(list(got), list(want))
        for name, table in want.items():
            self.assertTrue(got[name].schema.equals(table.schema, check_metadata=True), name)
            self.assertEqual(str(got[name].to_pylist()), str(table.to_pylist()), name)

    def test_have_the_tables_of_local_files(self):
        with self.served() as server:
            for root in ("file://" + self.folder.name + "/", self.in_memory(self.files), server.url):
                for name in self.files:
                    with self.subTest(root + name):
                        plan = qvejmap.Plan.find(root + name, as_elsewhere, size=2000)
                        one = name in ("packed.json.gz", "wide.json")
                        self.assertEqual(len(plan.parts) == 1, one)
                        self.compare(qvejmap.Plan.from_json(plan.to_json()), os.path.join(self.folder.name, name))
                        opened = qvejmap.open(root + name)
                        self.assertEqual(opened.name, root + name)
                        self.assertEqual(opened["root"].rows, 300 if name != "member.json" else 1)

    def test_folders_and_patterns_are_those_of_local_files(self):
        files = {f"{place}{name}": data for place in ("", "b/", "b/.c/", "d.json/") for name, data in self.files.items()}
        files |= {"notes.txt": b"x", ".hidden.json": b"{}", "b/datapackage.json":
                  b'{"qvejmap":{"version":1},"resources":[{"path":"array.json","format":"json"}]}'}
        for name, data in files.items():
            self.write("f/" + name, data)
        here = os.path.join(self.folder.name, "f")
        memory = self.in_memory(files)
        from qvejmap import _files, _qvejmap
        for pattern in ("", "b", "*.json", "*", "[ab]*.json*", "*/lines.jsonl", "none*.json", "d.json", "array.json", "b/?rray.json"):
            with self.subTest(pattern):
                def found(root, list, wanted=pattern):
                    try:
                        files, several = list(os.path.join(root, wanted).rstrip("/"))
                    except qvejmap.FileError as error:
                        return error.what
                    return [re.sub(f"^({re.escape(root)}|memory:///x)/?", "", file) for file in files], several

                want = found(here, lambda word: [[os.fsdecode(f) for f in of] if isinstance(of, list) else of
                                                 for of in _qvejmap.input_files([os.fsencode(word)])])
                for root in ("file://" + here, memory.rstrip("/")):
                    self.assertEqual(found(root, lambda word: _files.files_of([os.fsencode(word)])), want)
        self.compare(qvejmap.Plan.find(memory + "*.json", as_elsewhere, size=9000), here + "/*.json")
        mixed = [here + "/array.json", memory + "lines.jsonl"]
        self.compare(qvejmap.Plan.find(mixed, size=9000), [mixed[0], here + "/lines.jsonl"])
        packed = os.path.join(self.folder.name, "all.zip")
        with zipfile.ZipFile(packed, "w") as all:
            all.writestr("array.json", files["array.json"])
        self.compare(qvejmap.Plan.find(f"zip://a*.json::file://{packed}", as_elsewhere, size=9000), here + "/array.json")
        with self.served({"y/" + name: data for name, data in self.files.items()}) as server:
            self.compare(qvejmap.Plan.find(server.url + "y/*.json", size=9000), [
                os.path.join(self.folder.name, name) for name in ("array.json", "member.json", "wide.json")])
        for several in (memory + "*.json", memory, [memory + "lines.jsonl", memory + "array.json"]):
            with self.assertRaisesRegex(ValueError, "Plan.find"):
                qvejmap.open(several)

    def test_are_read_by_servers_that_have_no_ranges(self):
        with self.served() as server:
            server.ranges = False
            for name in self.files:
                with self.subTest(name):
                    plan = qvejmap.Plan.find(server.url + name, size=2000)
                    self.assertEqual(len(plan.parts), 1)
                    self.compare(plan, os.path.join(self.folder.name, name))
            with self.assertRaisesRegex(qvejmap.FileError, "beginning only") as raised:
                qvejmap.PartialScan(qvejmap.Part.lines_of(server.url + "lines.jsonl", 100, 200))
            self.assertEqual(raised.exception.file, server.url + "lines.jsonl")

    def test_large_pieces_are_few_requests(self):
        data = b"[" + b",".join(b'{"n":%d,"t":"%s"}' % (i, b"x" * 1000) for i in range(10_000)) + b"]"
        with self.served({"big.json": data}) as server:
            plan = qvejmap.Plan.find(server.url + "big.json", size=5 << 20)
            self.assertEqual(len(plan.parts), 2)
            server.requests = 0
            self.assertEqual(sum(plan.open(part)["root"].to_arrow().num_rows for part in plan.parts), 10_000)
            self.assertLess(server.requests, 20)

    def test_changes_are_told(self):
        path = self.write("c.jsonl", self.files["lines.jsonl"])
        memory = self.in_memory({"c.jsonl": self.files["lines.jsonl"]})
        with self.served() as server:
            server.files["c.jsonl"] = self.files["lines.jsonl"]
            urls = ("file://" + path, memory + "c.jsonl", memory + "*.jsonl", server.url + "c.jsonl")
            plans = [qvejmap.Plan.find(url, size=5000) for url in urls]
            new = self.files["lines.jsonl"].replace(b'"id":1,', b'"id":2,')  # of the same size
            self.write("c.jsonl", new)
            os.utime(path, (1, 1))
            self.in_memory({"c.jsonl": new})
            server.files["c.jsonl"] = new
            for url, plan in zip(urls, plans):
                with self.subTest(url), self.assertRaisesRegex(qvejmap.FileError, "changed") as raised:
                    plan.open(plan.parts[0])
                self.assertEqual(raised.exception.file, plan.parts[0].part.file)
            del server.files["c.jsonl"]
            with self.assertRaisesRegex(qvejmap.FileError, "changed"):
                plans[-1].open(plans[-1].parts[0])

    def test_what_is_not_there_is_told(self):
        memory = self.in_memory({"notes.txt": b""})
        with self.served() as server:
            for url in ("file://" + self.folder.name + "/no.json", memory + "no.json", memory + "no*.json", memory,
                        server.url + "no.json", server.url + "no*.json", "noscheme://x/y.json", "http://127.0.0.1:1/x.json"):
                for read in (qvejmap.Plan.find, qvejmap.open, qvejmap.parts):
                    if read is qvejmap.parts and (url == memory or "*" in url):
                        continue
                    with self.subTest(url, read=read), self.assertRaises(qvejmap.FileError) as raised:
                        read(url)
                    self.assertEqual(raised.exception.file, url)

    def test_broken_reading_is_told(self):
        text = b"[" + b",".join(b'{"n":%d,"t":"%s"}' % (i, b"x" * 1000) for i in range(12_000)) + b"]"
        with self.served({"big.json": text, "big.json.gz": gzip.compress(text, 0)}) as server:
            url = server.url + "big.json"
            plan = qvejmap.Plan.find(url, size=20 << 20)
            for server.breaks_off in (False, True):
                server.fails_after = 6 << 20
                for read in (
                    lambda: qvejmap.open(url), lambda: qvejmap.parts(url), lambda: qvejmap.Plan.find(url),
                    lambda: qvejmap.open(url + ".gz"), lambda: qvejmap.PartialScan(qvejmap.Part.whole(url + ".gz")),
                    lambda: qvejmap.PartialScan(plan.parts[0].part), lambda: plan.facts(plan.parts[0]),
                    lambda: plan.open(plan.parts[0]).to_arrow(),
                    lambda: list(plan.open(plan.parts[0])["root"].batches()),
                ):
                    with self.subTest(breaks_off=server.breaks_off), self.assertRaises(qvejmap.FileError) as raised:
                        read()
                    self.assertTrue(raised.exception.file.startswith(url), raised.exception)
                with self.assertRaisesRegex(Exception, re.escape(url)):
                    pyarrow.RecordBatchReader.from_stream(plan.open(plan.parts[0])["root"]).read_all()
                server.fails_after = None

    def test_streams_that_are_given_up_wait_for_nobody(self):
        # Their threads want the interpreter's lock, which who gives them up may hold, or who ends.
        script = """if True:
            import ctypes, fsspec, pyarrow, qvejmap, sys, time
            from qvejmap._files import PlacedFile
            from test_capsules import Array, Stream, taken

            text = b"[" + b",".join(b'{"n":%d,"t":"%d"}' % (i, i) for i in range(1_000_000)) + b"]"
            fsspec.filesystem("memory").pipe("/big.json", text)
            plan = qvejmap.Plan.find("memory://big.json", size=1 << 30)
            read = PlacedFile._read
            PlacedFile._read = lambda *of: time.sleep(0.05) or read(*of)
            table = plan.open(plan.parts[0])["root"]
            for way in sys.argv[1:]:
                if way == "batches":
                    held = table.batches(rows=10)
                    next(held)
                elif way == "reader":
                    held = pyarrow.RecordBatchReader.from_stream(table)
                    held.read_next_batch()
                else:  # a consumer that keeps the lock
                    held = taken(table.__arrow_c_stream__(), Stream)
                    at = ctypes.addressof(held)
                    call = ctypes.PYFUNCTYPE(ctypes.c_int, ctypes.c_void_p, ctypes.c_void_p)
                    array = Array()
                    assert call(ctypes.cast(held.get_next, ctypes.c_void_p).value)(at, ctypes.addressof(array)) == 0
                    release = ctypes.PYFUNCTYPE(None, ctypes.c_void_p)
                    release(ctypes.cast(held.release, ctypes.c_void_p).value)(at)
                if way != sys.argv[-1]:
                    del held
        """
        for ways in (["batches", "reader", "lock", "batches"], ["reader"]):
            done = subprocess.run([sys.executable, "-c", script, *ways], capture_output=True, text=True, timeout=60)
            self.assertEqual(done.returncode, 0, (ways, done.stderr))

    def test_mistakes_have_their_place(self):
        lines = b'{"a":1}\n' * 500 + b'{"a":}\n' + b'{"a":1}\n' * 500
        array = b"[" + b'{"a":1},\n' * 500 + b'{"a":}]'
        with self.served({"l.jsonl": lines, "a.json": array}) as server:
            for root in (self.in_memory({"l.jsonl": lines, "a.json": array}), server.url):
                for name in ("l.jsonl", "a.json"):
                    for read in (functools.partial(qvejmap.Plan.find, size=1000), qvejmap.open):
                        with self.subTest(root + name), self.assertRaises(qvejmap.NotJson) as raised:
                            read(root + name)
                        error = raised.exception
                        self.assertEqual((error.file, error.line, error.column), (root + name, 501, 6))

    def test_fsspec_is_named_where_it_is_missing(self):
        script = "import sys; sys.modules['fsspec'] = None; import qvejmap; qvejmap.Plan.find('memory://x/y.json')"
        done = subprocess.run([sys.executable, "-c", script], capture_output=True, text=True)
        self.assertIn("ImportError: fsspec is needed for this", done.stderr)


if __name__ == "__main__":
    unittest.main()
