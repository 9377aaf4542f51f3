"""Arguments that a person gives, checked: a wrong one is told by its name."""

from __future__ import annotations

import operator
from collections.abc import Iterable
from typing import Any, NoReturn

MOST = 2**64 - 1  # of sizes, counts and places


def _refuse(name: str, wanted: str, value: object) -> NoReturn:
    raise TypeError(f"{name}: {wanted}, not {type(value).__name__}")


def number(name: str, value: Any, least: int = 0, most: int = MOST) -> int:
    """A whole number."""
    try:
        whole = operator.index(value)
    except TypeError:
        _refuse(name, "a whole number", value)
    if whole < least:
        raise ValueError(f"{name}: at least {least}")
    if whole > most:
        raise ValueError(f"{name}: at most {most}")
    return whole


def flag(name: str, value: Any) -> bool:
    """True or False, for other values may mean anything ("no")."""
    if not isinstance(value, bool):
        _refuse(name, "True or False", value)
    return value


def text(name: str, value: Any) -> str:
    if not isinstance(value, str):
        _refuse(name, "a text", value)
    try:
        value.encode()
    except UnicodeEncodeError:
        raise ValueError(f"{name}: a text without lone surrogates") from None
    return value


def texts(name: str, value: Any) -> list[str]:
    """Several texts; one would be taken for its letters."""
    if isinstance(value, (str, bytes)) or not isinstance(value, Iterable):
        _refuse(name, "a list of texts", value)
    return [text(name, each) for each in value]


def choice(name: str, value: Any, *of: str) -> str:
    if value not in of:
        raise ValueError(f"{name}: {', '.join(map(repr, of[:-1]))} or {of[-1]!r}")
    return str(value)
