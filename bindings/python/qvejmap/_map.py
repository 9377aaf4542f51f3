"""Maps of documents."""

from __future__ import annotations

import json
import os
from typing import Any, Union

Path = Union[str, "os.PathLike[str]"]


class Map(dict[str, Any]):
    """A map: which tables there are, which columns they have, and the paths of both.

    It is a dict as JSON has it, {"DATASETS": [{"DSNAME": ..., "VARIABLES": [...]}]}, and may be
    changed.
    """

    def save(self, path: Path) -> None:
        """Writes it to a file, which `open(..., map=path)` reads, and the command line too."""
        with open(path, "w", encoding="utf-8") as file:
            json.dump(self, file, ensure_ascii=False, indent=1)
            file.write("\n")
