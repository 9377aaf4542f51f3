"""Tables as HTML, for notebooks.

The colours are the notebook's own: what matters less is the same colour, fainter.  Styles stand at each
element, since notebooks have their own for tables, and some take out what is not inline.
"""

from __future__ import annotations

import html
from collections.abc import Iterable, Sequence
from itertools import islice
from typing import Any, NamedTuple

_MOST_COLUMNS = 50
_MOST_CHARACTERS = 80  # of a cell

_FAINT = "opacity:.6"


class Head(NamedTuple):
    """Of a column."""

    name: str
    below: str = ""  # in small letters
    number: bool = False


def head_of(name: str, type: str) -> Head:
    return Head(name, type, type.startswith(("BIGINT", "DOUBLE", "DECIMAL")))


def count(number: int, what: str) -> str:
    return f"{number:,} {what}" + ("" if number == 1 else "s")


def shown(some: int, all: int, what: str) -> str:
    """"10 of 1,234 rows", or "3 rows" when these are all."""
    return count(all, what) if some == all else f"{some:,} of {count(all, what)}"


def table(title: str, facts: str, heads: Sequence[Head], rows: Iterable[Iterable[Any]]) -> str:
    """Columns that are too many are left out, and the caption says so."""
    some = heads[:_MOST_COLUMNS]
    if len(some) < len(heads):
        facts += f", {shown(len(some), len(heads), 'column')}"
    names = "".join(_head(head) for head in some)
    body = "".join(
        f"<tr>{''.join(_cell(value, head) for value, head in zip(islice(row, len(some)), some))}</tr>"
        for row in rows
    )
    return (
        f'<table><caption style="text-align:left;color:inherit"><b>{html.escape(title)}</b> '
        f'<span style="{_FAINT}">{html.escape(facts)}</span></caption>'
        f"<thead><tr>{names}</tr></thead><tbody>{body}</tbody></table>"
    )


def _head(head: Head) -> str:
    below = f'<br><small style="{_FAINT};font-weight:normal">{html.escape(head.below)}</small>'
    return f"<th {_aligned(head)}>{_text(head.name)}{below if head.below else ''}</th>"


def _cell(value: Any, head: Head) -> str:
    faint = '<span style="opacity:.4">null</span>'
    return f"<td {_aligned(head)}>{faint if value is None else _text(str(value))}</td>"


def _aligned(head: Head) -> str:
    return f'style="text-align:{"right" if head.number else "left"}"'


def _text(text: str) -> str:
    cut = len(text) > _MOST_CHARACTERS
    return html.escape(text[: _MOST_CHARACTERS - 1] + "…" if cut else text)
