"""Sentences that the engine shares with the command line, in words of this package."""

from __future__ import annotations

import re

# What names an option there, and what does the same here.
_OWN = {
    "zstd -dc --long=31 FILE | qvejmap VERB - reads them": "zstd -d --long=31 unpacks them",
    "unless --carry": "unless carry=True",
    "--append adds rows to it": "existing='append' adds rows to it",
    "--replace makes it anew": "existing='replace' makes it anew",
    "--replace must make both anew": "existing='replace' must make both anew",
    "--force replaces it": "force=True replaces it",
    "--map gives names that stay": "map=... gives names that stay",
    "--shape auto ": "shape='auto' ",
    "--table NAME chooses one; -o DIR --format ": "tables=[NAME] chooses one; a directory and format=",
    "--table chooses ": "tables=[...] chooses ",
    "--drop leaves a path out": "shape=['drop PATH'] leaves a path out",
}
_ANY = re.compile("|".join(map(re.escape, sorted(_OWN, key=len, reverse=True))))


def in_own_words(sentence: str) -> str:
    return _ANY.sub(lambda found: _OWN[found[0]], sentence)
