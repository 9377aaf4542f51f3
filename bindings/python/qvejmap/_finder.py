"""How workers find what a plan is made of: parts, scans and facts."""

from __future__ import annotations

import os
from collections.abc import Callable, Iterable, Sequence
from functools import partial
from typing import TYPE_CHECKING, Any, NamedTuple

from . import _arguments, _files, _qvejmap
from ._errors import Error, NotJson
from ._partial_scan import _LINES, Part, cut, scan_of

if TYPE_CHECKING:
    from ._plan import Plan, PlannedPart

_DAMAGED = 0x80BFC80A - 2**32  # QV_IO_DAMAGED
UNSUPPORTED = 0x803FC0F1 - 2**32  # QVUNSUPPORTED
_SUMMED_AT_ONCE = 100
_SUMMED_HERE = 4 << 20  # bytes; more are worth a job of the workers

Run = Callable[[Callable[[Any], Any], Sequence[Any]], Iterable[Any]]
Containers = list[tuple[bytes, int]]  # how often each has come


class Scan(NamedTuple):
    """What a scan of a part has found."""

    data: bytes
    containers: Containers | None
    feeds: int  # line feeds, of a part that is lines
    bad: int  # lines that were left out


class Finder:
    """What `Plan.find` has workers do."""

    def __init__(
        self, run: Run, files: Sequence[str], size: int, options: dict[str, Any], max_paths: int
    ) -> None:
        self._run = run
        self._files = files
        self._size = _arguments.number("size", size, 1)
        self._options = options
        self._max_paths = _arguments.number("max_paths", max_paths)
        self._apart: set[str] = set()  # files that cannot be
        self._bad: dict[str, Error] = {}  # files that are left out
        self._scans: dict[Part, Scan] = {}
        self._scanned: dict[Part, Any] = {}  # scans and errors that have not been looked at yet
        self.states: dict[str, _files.State | None] = {}

    def find_shape(self) -> None:
        """By one worker, from the files that are not left out; the options have it then."""
        found = partial(_found_rules, self._scan(), self._options["skip_bad"])
        (self._options["shape"],) = self._all(found, [self._files])

    def parts(self) -> list[list[Part]]:
        """Of each file that is not left out; the files' states are those they had before.

        What is one part is scanned at once.
        """
        begun = partial(_begun, size=self._size, scan=self._scan())
        divided = []
        for file, result in zip(self._files, self._results(begun, self._files)):
            if not isinstance(result, Error):
                parts, self.states[file], scanned = result
                divided.append(parts)
                if scanned is not None:
                    self._scanned[parts[0]] = scanned
            elif self._leaves_out(result):
                self._bad[file] = result
            else:
                raise result
        return divided

    def scans_of(self, divided: list[list[Part]]) -> list[Scan]:
        """Of each part; changes what cannot be scanned apart, and leaves out files."""
        while True:
            if not divided:
                raise self._bad[self._files[-1]]
            parts = [part for of in divided for part in of]
            wanted = [part for part in dict.fromkeys(parts) if part not in self._scans]
            left = [part for part in wanted if part not in self._scanned]
            self._scanned.update(zip(left, self._results(self._scan(), left)))
            scanned = [self._scanned.pop(part) for part in wanted]
            if self._took(wanted, scanned, divided) and not self._has_blank_files(divided):
                return [self._scans[part] for part in parts]
            self.divide_less(divided)

    def _took(self, parts: Sequence[Part], scans: Sequence[Any], divided: list[list[Part]]) -> bool:
        """False: some are to be scanned otherwise.  Raises the first error of the text."""
        took = True
        for part, scan in zip(parts, scans):
            whole = part == Part.whole(part.file)
            if not isinstance(scan, Error):
                self._scans[part] = scan
            elif not whole and scan.status == UNSUPPORTED:
                self._apart.add(part.file)
                took = False
            elif self._leaves_out(scan):
                self._bad.setdefault(part.file, scan)
                took = False
            elif took:
                raise self._in_file(scan, part, divided)
            else:
                break  # what comes before it may have another one, as a whole
        return took

    def _has_blank_files(self, divided: list[list[Part]]) -> bool:
        parts = [part for of in divided for part in of]
        blank = blank_files(parts, [self._scans[part].containers for part in parts])
        self._apart |= blank
        return bool(blank)

    def _in_file(self, error: Error, part: Part, divided: list[list[Part]]) -> Error:
        """The line of an error is that in the part, when that is all that its worker knows."""
        if _line_of(part) != 0 or error.line == 0:
            return error
        of = next(of for of in divided if part in of)
        before = sum(self._scans[each].feeds for each in of[: of.index(part)])
        return type(error)(
            error._made_of[0], error.file, error.line + before, error.column, error.offset, error.status,
            error.excerpt, error.path,
        )

    def with_lines(self, divided: list[list[Part]]) -> list[Part]:
        """All parts, each with the line that it begins with."""
        parts = []
        for of in divided:
            line = 1
            for part in of:
                parts.append(part if _line_of(part) != 0 else _at_line(part, line))
                line += self._scans[part].feeds
        return parts

    def files(self) -> list[str]:
        """Those that are not left out."""
        return [file for file in self._files if file not in self._bad]

    def tell(self, plan: Plan, scans: Sequence[Scan]) -> None:
        """What is known of a plan before its parts."""
        plan._options = self._options
        plan.bad_files = [str(self._bad[file]) for file in self._files if file in self._bad]
        plan.bad_line_count = sum(scan.bad for scan in scans)

    def sum_of(self, scans: Iterable[Scan]) -> bytes:
        """Of many scans the workers make sums, and sums of these."""
        return self._summed(partial(_merged, max_paths=self._max_paths), [scan.data for scan in scans])

    def facts_of(self, plan: Plan) -> list[bytes] | None:
        """None: some parts cannot be read apart."""
        light = plan.without_parts()
        results = self._results(partial(_facts, light), plan.parts)
        apart = set()
        for planned, result in zip(plan.parts, results):
            if isinstance(result, Error):
                if result.status != UNSUPPORTED or planned.part == Part.whole(planned.part.file):
                    raise result
                apart.add(planned.part.file)
        self._apart |= apart
        return None if apart else [self._summed(light.sum, results)]

    def divide_less(self, divided: list[list[Part]]) -> None:
        """Files whose parts cannot be read apart are one part; bad ones are left out."""
        divided[:] = [
            [Part.whole(of[0].file)] if of[0].file in self._apart else of
            for of in divided if of[0].file not in self._bad
        ]

    def _scan(self) -> partial[Scan]:
        names = ("lines", "encoding", "depth", "shape", "skip_bad")
        return partial(_scan, max_paths=self._max_paths, **{name: self._options[name] for name in names})

    def _leaves_out(self, error: Error) -> bool:
        return self._options["skip_bad"] and _is_bad(error)

    def _summed(self, add: Callable[[list[bytes]], bytes], of: list[bytes]) -> bytes:
        while len(of) > _SUMMED_AT_ONCE and sum(map(len, of)) > _SUMMED_HERE:
            some = [of[i : i + _SUMMED_AT_ONCE] for i in range(0, len(of), _SUMMED_AT_ONCE)]
            of = self._all(add, some)
        return add(of)

    def _all(self, function: Callable[[Any], Any], items: Sequence[Any]) -> list[Any]:
        """The results; raises the first error."""
        results = self._results(function, items)
        for result in results:
            if isinstance(result, Error):
                raise result
        return results

    def _results(self, function: Callable[[Any], Any], items: Sequence[Any]) -> list[Any]:
        """Of each item; errors are results."""
        results = list(self._run(partial(_tried, function), items)) if items else []
        if len(results) != len(items):
            raise ValueError("run: a result of each item")
        return results


def blank_files(parts: Iterable[Part], containers: Iterable[Containers | None]) -> set[str]:
    """Those of blank lines alone, in parts: as a whole such a file is an empty array, its parts are nothing."""
    of_parts = list(zip(parts, containers))
    divided = {part.file for part, _ in of_parts if part != Part.whole(part.file)}
    return divided - {part.file for part, of in of_parts if of != []}


def _tried(function: Callable[[Any], Any], item: Any) -> Any:
    """Errors are results, so that the first one of the text is told, and workers do not try again."""
    try:
        return function(item)
    except Error as error:
        return error.with_traceback(None)  # which would keep the document


def _begun(file: str, size: int, scan: partial[Scan]) -> tuple[list[Part], _files.State | None, Scan | Error | None]:
    """The parts, the state before, and the scan when there is one part."""
    state = _files.state_of(file)
    if state is not None and 0 < state[0] <= size:
        parts = [Part.whole(file)]  # as it would be after it has been read
    else:
        options = scan.keywords
        parts = cut(file, size, options["encoding"], options["lines"], None if state is None else state[0])
    return parts, state, _tried(scan, parts[0]) if len(parts) == 1 else None


def _scan(
    part: Part, *, lines: bool, encoding: str, depth: int, max_paths: int, shape: list[str], skip_bad: bool
) -> Scan:
    known = part if _line_of(part) != 0 else _at_line(part, 1)
    scan, feeds, bad = scan_of(known, lines, encoding, depth, max_paths, shape, skip_bad)
    return Scan(scan, _qvejmap.containers_of_scan(scan), feeds, bad)


def _merged(scans: list[bytes], max_paths: int) -> bytes:
    return _qvejmap.merge_scans(scans, max_paths)


def _found_rules(scan: partial[Scan], skip_bad: bool, files: Sequence[str]) -> list[str]:
    good = [file for file in files if not (skip_bad and _is_bad(_tried(scan, Part.whole(file))))]
    names, read_ats = [os.fsencode(file) for file in good], [_files.read_at_of(file) for file in good]
    options = scan.keywords
    return _qvejmap.found_rules(names, read_ats, options["encoding"], options["lines"], options["depth"]) if good else []


def _is_bad(result: Any) -> bool:
    return isinstance(result, NotJson) or (isinstance(result, Error) and result.status == _DAMAGED)


def _line_of(part: Part) -> int:
    """0: not known."""
    return part.pieces[0][4] if part.form == _LINES else 1


def _at_line(part: Part, line: int) -> Part:
    ((begin, end, kind, member, _, column),) = part.pieces
    return part._replace(pieces=((begin, end, kind, member, line, column),))


def _facts(plan: Plan, part: PlannedPart) -> bytes:
    return plan.facts(part)
