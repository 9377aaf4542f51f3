"""JSON documents as tables.

    import qvejmap

    doc = qvejmap.open("orders.json.gz")
    doc.tables                       # by name, with their rows
    doc["orders_items"].to_polars()  # or to_arrow, to_pandas, to_duckdb
"""

from ._document import Batch, Column, Document, Parent, Table, open
from ._errors import Error, FileError, LimitReached, MapError, NotJson

__all__ = [
    "Batch",
    "Column",
    "Document",
    "Error",
    "FileError",
    "LimitReached",
    "MapError",
    "NotJson",
    "Parent",
    "Table",
    "open",
]
