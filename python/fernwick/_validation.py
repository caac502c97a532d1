"""Looks for faults in a build of the library."""

from __future__ import annotations

import contextlib
import json
import os
import signal
import subprocess
import sys
from collections.abc import Generator, Sequence
from dataclasses import dataclass
from pathlib import Path
from typing import Any

from . import _arguments, _native
from ._errors import LibraryError
from ._library import find_library
from ._tables import classes


@dataclass(frozen=True)
class Finding:
    """A fault."""

    check: str  #: the check that found it
    what: str
    class_name: str = ""  #: empty for a fault of the module
    field: str = ""  #: of the class, several with commas; empty when none matters
    value: str = ""  #: of the fields, as documents have it
    seed: str = ""  #: with which it shows
    replay: str = ""  #: the command that shows it again

    def __str__(self) -> str:
        place = ".".join(part for part in (self.class_name, self.field) if part)
        value = f" = {self.value}" if self.value else ""
        return f"{self.check}: {f'{place}{value}: ' if place else ''}{self.what}"


@dataclass(frozen=True)
class Check:
    """A thing that was looked at."""

    name: str
    protects: str
    findings: tuple[Finding, ...] = ()

    @property
    def passed(self) -> bool:
        return not self.findings


@dataclass(frozen=True, repr=False)
class Report:
    """What `validate` found. It is true when all passed."""

    library: str
    seed: int
    checks: tuple[Check, ...]

    @property
    def findings(self) -> tuple[Finding, ...]:
        return tuple(finding for check in self.checks for finding in check.findings)

    @property
    def passed(self) -> bool:
        return not self.findings

    def __bool__(self) -> bool:
        return self.passed

    def __repr__(self) -> str:
        return f"<Report of {len(self.checks)} checks: {self._summary}>"

    def __str__(self) -> str:
        lines = [f"{'ok    ' if check.passed else 'FAILED'}  {check.name}" for check in self.checks]
        return "\n".join([self.library, *lines, *map(str, self.findings), self._summary])

    @property
    def _summary(self) -> str:
        count = len(self.findings)
        return "all passed" if not count else f"{count} finding{'' if count == 1 else 's'}"


def validate(
    path: _arguments.PathLike | None = None,
    only: str | Sequence[str] = "",
    class_name: str = "",
    seed: int = 1,
    records: int = 2000,
    time_limit: float = 60,
    progress: _arguments.Progress | None = None,
) -> Report:
    """Looks for faults in a build of the library, as `fernwick validate` does, in processes of its own.

    :param path: the library; without it the one that shades
    :param only: a check, or several; all of `fernwick validate --list` without it
    :param class_name: the only class that is looked at
    :param seed: of all random numbers
    :param records: random records of parameters of a class
    :param time_limit: seconds of one check on one class
    :param progress: is called with the share that is done

    Raises LibraryError when the library can't be loaded, ValueError and TypeError.
    """
    protects = dict(_native.validation_checks())
    checks = list(protects) if only == "" else _arguments.choices("only", only, list(protects))
    if _arguments.text("class_name", class_name):
        _arguments.choice("class_name", class_name, classes())
    if path is None:
        file = _native.library_path() or str(find_library())
    else:
        file = _arguments.path("path", path)
    asked = {
        "path": file,
        "checks": checks,
        "class_name": class_name,
        "seed": _arguments.integer("seed", seed, 0, 2**64 - 1),
        "records": _arguments.integer("records", records, 1, 2**31 - 1),
        "time_limit": _arguments.number("time_limit", time_limit, 0, above=True),
    }
    _arguments.progress(progress)
    done = []
    with contextlib.closing(_answers(asked)) as answers:
        for name, findings in zip(checks, answers):
            done.append(Check(name, protects[name], tuple(_finding(name, finding) for finding in findings)))
            if progress is not None:
                progress(len(done) / len(checks))
    return Report(file, seed, tuple(done))


def _answers(asked: dict[str, Any]) -> Generator[list[dict[str, str]], None, None]:
    """The findings of each check. The process that looks ends with the iterator, however that ends."""
    folder = str(Path(__file__).resolve().parents[1])
    others = os.environ.get("PYTHONPATH")
    environment = {**os.environ, "PYTHONPATH": os.pathsep.join([folder, others] if others else [folder])}
    command = [sys.executable, "-m", "fernwick._validator"]
    with subprocess.Popen(
        command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True, env=environment, start_new_session=True
    ) as process:
        assert process.stdin is not None and process.stdout is not None
        try:
            process.stdin.write(json.dumps(asked))
            process.stdin.close()
            for line in process.stdout:
                answer = json.loads(line)
                if isinstance(answer, str):
                    raise LibraryError(answer)
                if answer is not None:
                    yield answer
        finally:
            if process.poll() is None:
                os.killpg(process.pid, signal.SIGKILL)  # and what it has started


def _finding(check: str, members: dict[str, str]) -> Finding:
    return Finding(
        check,
        members["what"],
        members.get("class", ""),
        members.get("field", ""),
        members.get("value", ""),
        members.get("seed", ""),
        members.get("replay", ""),
    )
