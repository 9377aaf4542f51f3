"""The structures of Arrow in the capsules, as a consumer in C has them: taken in part, left, moved, released."""

import ctypes
import errno
import os
import tempfile
import threading
import unittest

import qvejmap
from documents import ODD, large

P, I, S = ctypes.c_void_p, ctypes.c_int64, ctypes.c_char_p
Callback = ctypes.CFUNCTYPE(None, P)


class Schema(ctypes.Structure):
    _fields_ = [("format", S), ("name", S), ("metadata", P), ("flags", I), ("n_children", I), ("children", P),
                ("dictionary", P), ("release", Callback), ("private_data", P)]


class Array(ctypes.Structure):
    _fields_ = [("length", I), ("null_count", I), ("offset", I), ("n_buffers", I), ("n_children", I),
                ("buffers", P), ("children", P), ("dictionary", P), ("release", Callback), ("private_data", P)]


class Stream(ctypes.Structure):
    _fields_ = [("get_schema", ctypes.CFUNCTYPE(ctypes.c_int, P, P)),
                ("get_next", ctypes.CFUNCTYPE(ctypes.c_int, P, P)),
                ("get_last_error", ctypes.CFUNCTYPE(S, P)), ("release", Callback), ("private_data", P)]


NAMES = {Schema: b"arrow_schema", Array: b"arrow_array", Stream: b"arrow_array_stream"}


def moved(structure):
    """It, moved out: who gave it must not release it any more."""
    mine = type(structure)()
    ctypes.memmove(ctypes.byref(mine), ctypes.byref(structure), ctypes.sizeof(mine))
    structure.release = Callback()
    return mine


def taken(capsule, kind):
    """The structure of a capsule, moved out."""
    pointer = ctypes.pythonapi.PyCapsule_GetPointer
    pointer.restype, pointer.argtypes = P, [ctypes.py_object, S]
    return moved(kind.from_address(pointer(capsule, NAMES[kind])))


def child(structure, i):
    at = ctypes.cast(structure.children, ctypes.POINTER(P))[i]
    return type(structure).from_address(at)


def read(stream, kind):
    """What `get_schema` or `get_next` gives, and its status."""
    out = kind()
    get = stream.get_schema if kind is Schema else stream.get_next
    return out, get(ctypes.addressof(stream), ctypes.addressof(out))


def release(structure):
    structure.release(ctypes.addressof(structure))


class Capsules(unittest.TestCase):
    def assert_released(self, structure):
        self.assertTrue(structure.release)
        release(structure)
        self.assertFalse(structure.release)

    def streams(self):
        """Streams whose document is closed: of records, of a text that is read again, and of rows in memory."""
        for text in (ODD["nested"], large()):
            doc = qvejmap.open(text)
            table = doc[list(doc.tables)[-1]]
            yield taken(table.__arrow_c_stream__(), Stream), table.rows
            held, rows = doc._open().rows([0])[0].stream(), list(doc.tables.values())[0].rows
            doc.close()
            del doc, table
            yield taken(held, Stream), rows

    def test_streams_are_read_to_the_end(self):
        for stream, rows in self.streams():
            for _ in range(2):
                schema, status = read(stream, Schema)
                self.assertEqual((status, schema.format), (0, b"+s"))
                self.assert_released(schema)
            found = 0
            while (batch := read(stream, Array))[0].release:
                found += batch[0].length
                self.assert_released(batch[0])
            self.assertEqual((found, batch[1]), (rows, 0))
            again, status = read(stream, Array)  # after the end
            self.assertEqual((bool(again.release), status), (False, 0))
            self.assert_released(stream)

    def test_streams_are_left_in_the_middle_and_on_another_thread(self):
        for stream, _ in self.streams():
            batch, _ = read(stream, Array)
            other = threading.Thread(target=release, args=(stream,))
            other.start()
            other.join()
            self.assertFalse(stream.release)
            self.assertEqual(batch.length > 0, True)  # it needs its stream no more
            self.assert_released(batch)

    def test_columns_outlive_the_batch_they_are_taken_from(self):
        items = qvejmap.open(ODD["nested"])["orders_items"]
        batch = next(items.batches())
        schema, array = (taken(c, kind) for c, kind in zip(batch.__arrow_c_array__(), (Schema, Array)))
        name, sku, price = moved(child(schema, 3)), moved(child(array, 3)), moved(child(array, 4))
        del items, batch
        self.assert_released(array)
        self.assert_released(schema)
        self.assertEqual((name.name, name.format), (b"sku", b"u"))
        buffers = ctypes.cast(sku.buffers, ctypes.POINTER(P))
        self.assertEqual(ctypes.string_at(buffers[2], 2), b"AB")
        prices = ctypes.cast(ctypes.cast(price.buffers, ctypes.POINTER(P))[1], ctypes.POINTER(ctypes.c_double))
        self.assertEqual((prices[0], price.length, price.null_count), (1.5, 3, 2))
        for structure in (price, sku, name):
            self.assert_released(structure)

    def test_a_stream_that_fails_says_why_and_is_released(self):
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "large.json")
            with open(path, "wb") as file:
                file.write(large())
            doc = qvejmap.open(path)
            streams = [taken(doc["root"].__arrow_c_stream__(), Stream) for _ in range(2)]
            with open(path, "r+b") as file:
                file.truncate(2_000_000)
            for stream in streams:
                for _ in range(2):
                    batch, status = read(stream, Array)
                    self.assertEqual((bool(batch.release), status), (False, errno.EIO))
                    self.assertEqual(stream.get_last_error(ctypes.addressof(stream)).decode(),
                                     f"{path}: the file has changed while it was read")
                self.assert_released(stream)
            with self.assertRaises(qvejmap.Error):
                list(doc["root"].batches())

    def test_structures_that_nobody_takes_go_with_their_capsules(self):
        for text in (ODD["nested"], large()):
            doc = qvejmap.open(text)
            table = list(doc.tables.values())[0]
            batches = table.batches(1)
            capsules = [next(batches).__arrow_c_array__(), table.__arrow_c_stream__(), table.__arrow_c_schema__()]
            taken_in_part = table.__arrow_c_stream__(), next(batches).__arrow_c_array__()
            stream, array = taken(taken_in_part[0], Stream), taken(taken_in_part[1][1], Array)
            del capsules, taken_in_part, batches
            self.assertEqual(array.length > 0, True)
            self.assert_released(array)
            self.assert_released(stream)


if __name__ == "__main__":
    unittest.main()
