"""Maps of documents."""

from __future__ import annotations

import json
from collections.abc import Mapping
from typing import Any, Union

from . import _arguments, _qvejmap
from ._source import Path, file_name, map_text
from ._words import in_own_words

AnyMap = Union[Path, Mapping[str, Any]]


class Map(dict[str, Any]):
    """A map: which tables there are, which columns they have, and the paths of both.

    It is a dict as JSON has it, {"DATASETS": [{"DSNAME": ..., "VARIABLES": [...]}]}, and may be
    changed.

    Attributes:
        remarks: of a merged map, sentences on what is not as the maps have it.
    """

    def __init__(self, map: Mapping[str, Any], document: _qvejmap.Document | None = None) -> None:
        super().__init__(map)
        self.remarks: list[str] = []
        self._document = document

    def __getstate__(self) -> dict[str, Any]:
        """A copy or a pickle is of no document."""
        return {"remarks": self.remarks, "_document": None}

    def save(self, path: Path) -> None:
        """Writes it to a file, which `open(..., map=path)` reads, and the command line too."""
        name = file_name("path", path)
        text = json.dumps(self, ensure_ascii=False, indent=1).encode() + b"\n"
        with open(name, "wb") as file:
            file.write(text)

    def diff(self, other: AnyMap) -> list[str]:
        """What this map has and another has not, a line for each difference.

            - table orders_tags /root/orders/tags
            + column orders.paid NUMERIC /root/orders/paid
            ~ column orders.id: type NUMERIC -> CHARACTER, length none -> 12

        Raises:
            MapError: a mistake in a map.
        """
        return _qvejmap.map_differences(map_text(self)[0], map_text(other)[0])

    def merge(self, *others: AnyMap) -> Map:
        """A map with all tables and columns of this and other maps; what this one says stands.

        Raises:
            MapError: a mistake in a map.
        """
        text, remarks = _qvejmap.merge_maps([map_text(map)[0] for map in (self, *others)])
        merged = Map(json.loads(text))
        merged.remarks = remarks
        return merged

    def explain(self, column: str) -> str:
        """Why a column of the document is what it is, and where that was seen.

        Args:
            column: "orders.id", letters in any case.

        Raises:
            Error: there is no such column.
            ValueError: the map is not one that a document gave.
        """
        if self._document is None:
            raise ValueError("this map is of no document: Document.map has one that is")
        text = self._document.explanation(_arguments.text("column", column), "the map")
        return in_own_words(text.rstrip("\n"))
