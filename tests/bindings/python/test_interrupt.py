"""Ctrl-C, or any signal whose handler raises: it ends the work at once, and the document can still be used."""

import os
import shutil
import signal
import tempfile
import threading
import unittest

import qvejmap
from documents import large


class Signalled(Exception):
    pass


def bytes_read():
    with open("/proc/self/io", encoding="ascii") as file:
        return int(file.readline().split()[1])


class Interrupts(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.file = os.path.join(self.folder.name, "large.json")
        with open(self.file, "wb") as file:
            file.write(large())
        self.size = os.path.getsize(self.file)

        def handler(*_):
            raise Signalled

        self.addCleanup(signal.signal, signal.SIGALRM, signal.signal(signal.SIGALRM, handler))

    def read_until_signalled(self, work, seconds=0.05):
        """How many times the file was read."""
        before = bytes_read()
        signal.setitimer(signal.ITIMER_REAL, seconds)
        try:
            with self.assertRaises(Signalled):
                work()
        finally:
            signal.setitimer(signal.ITIMER_REAL, 0)
        return (bytes_read() - before) / self.size

    def test_end_an_opening(self):
        times = 300  # some seconds
        for arguments in ({}, {"threads": 1}, {"shape": "auto"}, {"memory": 100_000_000}):
            with self.subTest(**arguments):
                read = self.read_until_signalled(lambda: qvejmap.open([self.file] * times, **arguments))
                self.assertLess(read, times / 2)

    def test_end_walks_and_leave_the_document_as_it_was(self):
        times = 60
        for arguments in ({}, {"threads": 1}):
            doc = qvejmap.open([self.file] * times, **arguments)
            walks = {
                "types": lambda: doc["root"].rows,
                "rows": doc.to_arrow,
                "batches": lambda: list(doc["root"].batches(1000)),
                "account": doc.account,
                "rejects": lambda: list(doc.rejects),
                "find": lambda: doc.find(value="nowhere"),
                "records": lambda: doc.alldata,
            }
            for name, walk in walks.items():
                with self.subTest(name, **arguments):
                    self.assertLess(self.read_until_signalled(walk), times / 2)
            self.assertEqual(doc["root"].rows, 12000 * times)

    def test_end_a_waiting_for_a_file_object(self):
        reading, writing = os.pipe()
        with open(reading, "rb", buffering=0) as pipe:
            self.read_until_signalled(lambda: qvejmap.open(pipe))
        os.close(writing)

    def test_end_a_waiting_for_a_named_pipe(self):
        pipe, shown = (os.path.join(self.folder.name, name) for name in ("pipe", "shown.json"))
        os.mkfifo(pipe)
        whole = qvejmap.Part.whole(pipe)
        for name, work in (
            ("open", lambda: qvejmap.open(pipe)),
            ("several", lambda: qvejmap.open([self.file, pipe])),
            ("convert", lambda: qvejmap.convert(pipe, shown + ".folder")),
            ("map", lambda: qvejmap.open(b"{}", map=pipe)),
            ("parts", lambda: qvejmap.parts(pipe)),
            ("scan", lambda: qvejmap.PartialScan(whole)),
        ):
            with self.subTest(name):
                self.read_until_signalled(work)
                if name != "map":
                    with open(os.open(pipe, os.O_RDWR), "wb", buffering=0) as writer:  # which says little
                        writer.write(b"[")
                        self.read_until_signalled(work)
        writer = threading.Thread(target=lambda: shutil.copyfileobj(open(self.file, "rb"), open(pipe, "wb")))
        writer.start()
        self.assertEqual(qvejmap.open(pipe)["root"].rows, 12000)
        writer.join()

    def test_end_a_search_for_parts(self):
        many = os.path.join(self.folder.name, "many.json")
        with open(many, "wb") as file:
            rows = large()[1:-1]
            file.write(b"[" + b",".join([rows] * 60) + b"]")
        self.size = os.path.getsize(many)
        self.assertLess(self.read_until_signalled(lambda: qvejmap.parts(many)), 0.8)

    def test_end_walks_of_records(self):
        with open(self.file, "rb") as file:
            doc = qvejmap.open(file)
        self.assertGreater(doc["root"].rows, 0)

        def work():
            for _ in range(1000):
                doc.to_arrow()

        self.read_until_signalled(work)
        self.assertEqual(doc.to_arrow()["root"].num_rows, 12000)


if __name__ == "__main__":
    unittest.main()
