"""JSON documents as tables.

    import qvejmap

    doc = qvejmap.open("orders.json.gz")
    doc.tables                       # by name, with their rows
    doc["orders_items"].to_polars()  # or to_arrow, to_pandas, to_duckdb
"""

from ._convert import Converted, convert
from ._document import Document, Found, Lost, PathAccount, Rejected
from ._errors import Error, FileError, LimitReached, MapError, NotJson, ValuesWarning
from ._map import Map
from ._open import open
from ._partial_scan import Part, PartialScan, parts
from ._plan import Plan, PlannedPart
from ._tables import Batch, Column, Parent, Table

__all__ = [
    "Batch",
    "Column",
    "Converted",
    "Document",
    "Error",
    "FileError",
    "Found",
    "LimitReached",
    "Lost",
    "Map",
    "MapError",
    "NotJson",
    "Parent",
    "Part",
    "PartialScan",
    "PathAccount",
    "Plan",
    "PlannedPart",
    "Rejected",
    "Table",
    "ValuesWarning",
    "convert",
    "open",
    "parts",
]

for _name in __all__:
    globals()[_name].__module__ = __name__  # as people import it
