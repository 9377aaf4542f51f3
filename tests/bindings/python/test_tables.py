"""What a person sees of tables."""

import datetime
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
        self.assertNotIn("<b>", page)
        many = qvejmap.open(b"[" + b",".join(b'{"a":%d}' % i for i in range(1000)) + b"]")["root"]
        self.assertEqual(many._repr_html_().count("<tr>"), 11)
        self.assertIn("1,000 rows", many._repr_html_())


if __name__ == "__main__":
    unittest.main()
