"""What goes wrong, as exceptions."""

from __future__ import annotations


class Error(Exception):
    """A document, a map or a file that cannot be read, and where the trouble is.

    The text is the one line that the command line prints: the file, the place, and what is wrong.

    Attributes:
        what: what is wrong, without a place.
        file: what the trouble is about: a file as it was named, "<memory>", or "" when not known.
        line: from 1; 0 when it is the file as a whole.
        column: from 1, in bytes (in UTF-16 and UTF-32 in units of 16 or 32 bits); 0 as `line`.
        offset: bytes before the place; -1 when not known.
        path: of the value that stands there, "/root/orders/id"; "" when not known.
        status: the number of the mistake, as include/qvstatus.h lists them.
        excerpt: the text around the place and a line with a caret under it, or "".
    """

    def __init__(
        self, what: str, file: str, line: int, column: int, offset: int, status: int, excerpt: str,
        path: str = "",
    ) -> None:
        place = f"{file}:{line}:{column}" if line else file
        super().__init__(f"{place}: {what}" if place else what)
        self._made_of = (what, file, line, column, offset, status, excerpt, path)
        self.what = what
        self.file = file
        self.line = line
        self.column = column
        self.offset = offset
        self.path = path
        self.status = status
        self.excerpt = excerpt

    def __reduce__(self) -> tuple[object, ...]:
        return type(self), self._made_of


class NotJson(Error):
    """The text is not JSON, or ends too soon."""


class MapError(Error):
    """A mistake in a map, with its place in the map's text."""


class LimitReached(Error):
    """Too deep, too many paths, or too little memory or disk."""


class FileError(Error):
    """A file that is not there, or cannot be read."""


class ValuesWarning(UserWarning):
    """Values of a document are not in its tables as they are, or perhaps in the wrong row."""
