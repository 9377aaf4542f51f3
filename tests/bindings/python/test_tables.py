"""What a person sees of tables."""

import datetime
import re
import unittest
from decimal import Decimal

import qvejmap
from documents import ODD


class Tables(unittest.TestCase):
    def test_know_their_columns_and_keys(self):
        doc = qvejmap.open(ODD["nested"])
        self.assertEqual(list(doc.tables), ["orders", "orders_items"])
        items = doc["orders_items"]
        self.assertEqual((items.name, items.path, items.rows, len(items)), ("orders_items", "/root/orders/items", 3, 3))
        self.assertEqual(items.key, "ordinal_items")
        self.assertEqual(items.parent, ("orders", "ordinal_orders", True))
        self.assertIsNone(doc["orders"].parent)
        self.assertEqual([(c.name, c.type) for c in items.columns][2:],
                         [("ordinal_items", "BIGINT"), ("sku", "TEXT"), ("p", "DOUBLE")])
        self.assertEqual(items.columns[-1].path, "/root/orders/items/p")

    def test_give_rows_with_values_of_python(self):
        utc = datetime.timezone.utc
        for text, want in {
            "booleans": {"a": [True, False, None, None], "m": [1.0, 2.0, None, 0.5]},
            "limits": {"c": [Decimal(9223372036854775808), Decimal(-1)], "a": [2**63 - 1, -(2**63)]},
            "decimals": {"a": [Decimal("12345678901234567.25"), Decimal("-0.01"), Decimal(0)],
                         "b": [Decimal("9" * 38), Decimal("-" + "9" * 38), Decimal(1)]},
            "dates": {"d": [datetime.date(2024, 2, 29), datetime.date.min, datetime.date.max, None],
                      "w": ["2024-02-30", "x", None, None]},
            "instants": {"s": [datetime.datetime(1969, 12, 31, 23, 59, 59, tzinfo=utc), None],
                         "m": [datetime.datetime(2024, 1, 1, 0, 0, 0, 500000), None],
                         "u": [datetime.datetime(1960, 1, 1, 0, 0, 0, 1, tzinfo=utc), None],
                         "n": ["1677-09-22T00:00:00.123456789Z", "2262-04-11T00:00:00.000000000Z"]},
        }.items():
            table = qvejmap.open(ODD[text])["root"]
            for column, values in want.items():
                with self.subTest(text, column=column):
                    self.assertEqual([row[column] for row in table], values)

    def test_are_worth_looking_at(self):
        doc = qvejmap.open(b'[{"<b>":"<script>"},{"x":null}]', naming="original")
        name = next(iter(doc.tables))
        self.assertEqual(repr(doc[name]), f"<qvejmap.Table {name!r}: 2 rows, 3 columns>")
        self.assertIn(f"{name}: 2 rows", repr(doc))
        page = doc[name]._repr_html_() + doc._repr_html_()
        self.assertIn("&lt;script&gt;", page)
        self.assertIn("&lt;b&gt;", page)
        self.assertNotIn("<script>", page)
        self.assertNotIn("<b><", page)
        doc.close()
        self.assertEqual((doc._repr_html_(), doc[name]._repr_html_()), (None, None))

    def test_show_some_of_what_is_much(self):
        rows = [b'{"a":%d,"t":"%s","s":"%s"}' % (i, b"x" * 81, b"y" * 80) for i in range(1234)]
        doc = qvejmap.open(b"[" + b",".join(rows) + b"]")
        table = doc["root"]
        for page, told in (
            (table._repr_html_(), "10 of 1,234 rows<"),
            (next(table.batches())._repr_html_(), "10 of 1,234 rows<"),
            (next(table.batches(3))._repr_html_(), "3 rows<"),
            (next(table.batches(1))._repr_html_(), "1 row<"),
            (doc._repr_html_(), "1 table<"),
        ):
            self.assertIn(f">{told}", page)
        self.assertEqual(told_rows(table._repr_html_())[1:3],
                         [[">1", ">0", "<" + "x" * 79 + "…", "<" + "y" * 80],
                          [">2", ">1", "<" + "x" * 79 + "…", "<" + "y" * 80]])
        self.assertEqual(told_rows(table._repr_html_())[0],
                         [">ordinal_rootBIGINT", ">aBIGINT", "<tTEXT", "<sTEXT"])
        wide = qvejmap.open(b"[{%s}]" % b",".join(b'"c%d":1.5' % i for i in range(2000)))["root"]
        self.assertIn(">1 row, 50 of 2,001 columns<", wide._repr_html_())
        self.assertEqual(list(map(len, told_rows(wide._repr_html_()))), [50, 50])

    def test_show_how_tables_belong_together(self):
        doc = qvejmap.open(ODD["nested"])
        self.assertEqual(told_rows(doc._repr_html_())[1:], [
            ["<orders", "</root/orders", ">2", ">3", "<ordinal_orders", "<"],
            ["<orders_items", "</root/orders/items", ">3", ">5", "<ordinal_items", "<orders by ordinal_orders"]])
        self.assertEqual(told_rows(doc["orders_items"]._repr_html_())[-1], [">1", ">2", ">3", "<null", ">null"])


def told_rows(page):
    """The texts of the cells, each with the side it stands at."""
    rows = []
    for row in re.findall("<tr>(.*?)</tr>", page):
        cells = re.findall('<t[dh] style="text-align:(left|right)">(.*?)</t[dh]>', row)
        rows.append([{"left": "<", "right": ">"}[side] + re.sub("<.*?>", "", text) for side, text in cells])
    return rows


if __name__ == "__main__":
    unittest.main()
