"""Which build of the library shades. It is loaded at first need and stays."""

from __future__ import annotations

import os
import threading
from pathlib import Path

from . import _arguments, _native
from ._errors import LibraryError

_NAME = "Fernwick_shaders.so"
_VARIABLE = "FERNWICK_LIBRARY"
_PLACES = ("lib", "../..", "../../../fernwick")  # in a wheel, the build tree and an installed tree
_lock = threading.Lock()


def set_library(path: _arguments.PathLike) -> None:
    """Loads a build of the library, instead of the one that FERNWICK_LIBRARY names or that lies near the package.

    Raises LibraryError when it can't be loaded, or when another one is loaded already: a process has one.
    """
    with _lock:
        _native.set_library(str(Path(_arguments.path("path", path)).absolute()))


def library() -> Path:
    """The file of the library that shades, which is loaded now if none is yet. Raises LibraryError."""
    with _lock:
        loaded = _native.library_path()
        if not loaded:
            _native.set_library(str(find_library()))
            loaded = _native.library_path()
        return Path(loaded)


def find_library() -> Path:
    """What is loaded unless `set_library` says otherwise. Raises LibraryError."""
    if named := os.environ.get(_VARIABLE):
        if not Path(named).is_file():
            reason = "it is a folder" if Path(named).is_dir() else "there is no such file"
            raise LibraryError(f"{_VARIABLE}: {named}: {reason}")
        return Path(named).absolute()
    folder = Path(__file__).resolve().parent
    candidates = [Path(os.path.normpath(folder / place / _NAME)) for place in _PLACES]
    for candidate in candidates:
        if candidate.is_file():
            return candidate
    looked = "".join(f"\n  {candidate}" for candidate in candidates)
    raise LibraryError(f"the library isn't found; name it with set_library or {_VARIABLE}. Looked for:{looked}")
