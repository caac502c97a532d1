"""What goes wrong, what may be wrong, and hints for names."""

from __future__ import annotations

import difflib
import os
import sys
import warnings
from collections.abc import Iterable
from pathlib import Path

from . import _native
from ._native import BakeError, Error, FileError, GraphError, LibraryError, ModelError, RenderError

__all__ = [
    "BakeError",
    "Error",
    "GraphError",
    "GraphWarning",
    "LibraryError",
    "ModelError",
    "FileError",
    "RenderError",
    "ShaderWarning",
    "hint",
    "report",
    "warn",
]

for _error in (BakeError, Error, FileError, GraphError, LibraryError, ModelError, RenderError):
    _error.__module__ = "fernwick"  # where users find them, for tracebacks and pickles


class GraphWarning(UserWarning):
    """What a graph may do and yet may be a slip, or what its files lack. Given once a graph."""

    __module__ = "fernwick"


class ShaderWarning(UserWarning):
    """What a shader reported while it shaded."""

    __module__ = "fernwick"


_PACKAGE = str(Path(__file__).parent) + os.sep


def warn(texts: Iterable[str], category: type[Warning]) -> None:
    """Warns of each text at the line that called the package."""
    level = 1
    frame = sys._getframe()
    while frame.f_back is not None and frame.f_code.co_filename.startswith(_PACKAGE):
        frame = frame.f_back
        level += 1
    for text in texts:
        warnings.warn(text, category, stacklevel=level)


def report() -> None:
    """Warns of what shaders have reported since the last time."""
    warn(_native.take_reports(), ShaderWarning)


def hint(name: str, known: Iterable[str]) -> str:
    """Such as `; did you mean "fMode"?`, or nothing when no known name is like it."""
    lowered = {each.lower(): each for each in known}
    found = difflib.get_close_matches(name.lower(), lowered, n=1)
    return f'; did you mean "{lowered[found[0]]}"?' if found else ""
