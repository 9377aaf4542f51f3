"""Values of batches as those of Python."""

from __future__ import annotations

import datetime
import re
from collections.abc import Callable
from decimal import Decimal
from typing import Any

_DAY = datetime.date(1970, 1, 1).toordinal()
_NAIVE = datetime.datetime(1970, 1, 1)
_UTC = datetime.datetime(1970, 1, 1, tzinfo=datetime.timezone.utc)


def _decimal(scale: int) -> Callable[[int], Decimal]:
    def convert(number: int) -> Decimal:
        digits = tuple(int(digit) for digit in str(abs(number)))
        return Decimal((int(number < 0), digits, -scale))

    return convert


def _instant(fraction: int, utc: bool) -> Callable[[int], Any]:
    digits = (fraction + 2) // 3 * 3  # of the unit
    start = _UTC if utc else _NAIVE

    def convert(units: int) -> Any:
        seconds, rest = divmod(units, 10**digits)
        time = start + datetime.timedelta(seconds=seconds)
        if digits <= 6:
            return time.replace(microsecond=rest * 10 ** (6 - digits))
        # Python has no nanoseconds.
        return f"{time:%Y-%m-%dT%H:%M:%S}.{rest:09}"[: 20 + fraction] + ("Z" if utc else "")

    return convert


def converter(type: str) -> Callable[[Any], Any] | None:
    """From what the module gives of a column to a value; None: it is one."""
    if type == "DATE":
        return lambda days: datetime.date.fromordinal(_DAY + days)
    if decimal := re.fullmatch(r"DECIMAL\(\d+,(\d+)\)", type):
        return _decimal(int(decimal[1]))
    if time := re.fullmatch(r"TIMESTAMP(?:\((\d)\))?( UTC)?", type):
        return _instant(int(time[1] or 0), time[2] is not None)
    return None
