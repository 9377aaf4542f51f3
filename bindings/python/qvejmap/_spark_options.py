"""Options of Spark's readers, as arguments of `Plan.find`."""

from __future__ import annotations

import difflib
import glob
import json
import os
import re
from collections.abc import Iterable, Mapping
from typing import Any

from . import _arguments
from ._files import has_scheme
from ._source import Path

PARTITION_BYTES = 128 << 20  # as Spark's own
MODES = ("FAILFAST", "DROPMALFORMED", "PERMISSIVE")
_UNITS = {"": 1, "k": 1 << 10, "m": 1 << 20, "g": 1 << 30, "t": 1 << 40}


def plan_options(given: Mapping[str, Any]) -> dict[str, Any]:
    """The arguments; values may be texts, names are the command line's, in any case.

    Raises:
        ValueError: there is no such option, or no such value of it.
    """
    arguments: dict[str, Any] = {"size": PARTITION_BYTES}
    for name, value in given.items():
        known = _plain(name)
        if known not in _OPTIONS:
            near = difflib.get_close_matches(known, _OPTIONS, 1)
            raise ValueError(f"there is no option {name!r}" + (f"; did you mean {_OPTIONS[near[0]][0]!r}?" if near else ""))
        shown, argument, convert = _OPTIONS[known]
        arguments[argument] = convert(shown, value) if isinstance(value, str) else value
        if argument == "size" and arguments[argument] == 0:
            raise ValueError(f"{shown}: at least 1")
    if arguments.get("lines") is False:
        arguments["lines"] = None
    if arguments.get("skip_bad") in MODES:
        arguments["skip_bad"] = arguments["skip_bad"] != MODES[0]
    return arguments


def absolute(source: Path | Iterable[Path]) -> list[str]:
    """Workers have folders of their own to work in."""
    words = [source] if isinstance(source, (str, os.PathLike)) else source
    return [word if not (word := os.fspath(each)) or has_scheme(word) else _absolute(word) for each in words]


def _absolute(word: str) -> str:
    if word.startswith("file:/"):  # as Spark writes them, too
        word = word.removeprefix("file:")
    here = os.getcwd()
    # Of a pattern only the word is one.  ".." behind a link is no neighbour of the link.
    path = os.path.join(here if os.path.lexists(word) else glob.escape(here), word)
    return path if ".." in path.split(os.sep) else os.path.normpath(path)


def mode(name: str, text: str) -> str:
    return _arguments.choice(name, text.upper(), *MODES)


def names(name: str, text: str) -> list[str]:
    """A list in JSON, or names with commas between."""
    if text.lstrip().startswith("["):
        try:
            return _arguments.texts(name, json.loads(text))
        except ValueError as error:
            raise ValueError(f"{name}: a list in JSON: {error}") from None
    return [each.strip() for each in text.split(",")]


def _plain(name: str) -> str:
    return name.replace("-", "").replace("_", "").lower()


def _flag(name: str, text: str) -> bool:
    return _arguments.choice(name, text.lower(), "true", "false") == "true"


def _number(name: str, text: str) -> int:
    try:
        return int(text)
    except ValueError:
        raise ValueError(f"{name}: a whole number, not {text!r}") from None


def _bytes(name: str, text: str) -> int:
    """As Spark writes sizes: 1000000, 128m, 1g, 64MB."""
    found = re.fullmatch(r"(\d+)\s*([kmgt]?)(i?b)?", text.strip().lower())
    if found is None:
        raise ValueError(f"{name}: a size such as 67108864 or 64m, not {text!r}")
    return int(found[1]) * _UNITS[found[2]]


def _text(_name: str, text: str) -> str:
    return text


def _rules(name: str, text: str) -> str | list[str]:
    """A file or "auto"; or rules, as a list in JSON."""
    return names(name, text) if text.lstrip().startswith("[") else text


# By their names without "-" and "_", in lower case: how they are written, the argument, and what makes
# its value of a text.
_OPTIONS: dict[str, tuple[str, str, Any]] = {
    _plain(name): (name, argument, convert)
    for name, argument, convert in (
        ("table", "table", _text),
        ("map", "map", _text),
        ("shape", "shape", _rules),
        ("lines", "lines", _flag),
        ("encoding", "encoding", _text),
        ("exact", "exact", _flag),
        ("naming", "naming", _text),
        ("carry", "carry", _flag),
        ("alldata", "alldata", _flag),
        ("depth", "depth", _number),
        ("max-paths", "max_paths", _number),
        ("mode", "skip_bad", mode),
        ("maxPartitionBytes", "size", _bytes),
    )
}
