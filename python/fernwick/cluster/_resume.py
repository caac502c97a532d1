"""Finished parts on the disk of the client, so that they are never shaded again."""

from __future__ import annotations

import io
import json
import zipfile
from collections.abc import Iterable
from pathlib import Path
from typing import TYPE_CHECKING, Any

from .. import _native
from .._errors import FileError
from .._numpy import numpy
from ._files import digest, put

if TYPE_CHECKING:
    import numpy as np
    from numpy.typing import NDArray

Arrays = dict[str, "NDArray[np.float32]"]


class Parts:
    """A folder with a file for each finished unit, and for each picture that was written of them.

    What a file is called tells all that its pixels depend on; what is damaged counts as missing. A finished picture's
    units are removed.
    """

    def __init__(self, folder: Path) -> None:
        self._folder = folder
        folder.mkdir(parents=True, exist_ok=True)

    @staticmethod
    def key(identity: str) -> str:
        return digest(identity.encode())[:40]

    def save(self, key: str, arrays: Arrays) -> None:
        """Raises FileError."""
        content = io.BytesIO()
        numpy().savez(content, **arrays)
        try:
            put(self._part(key), content.getvalue())
        except OSError as error:
            raise FileError(f"{self._folder}: finished tiles can't be kept there: {error.strerror}") from error

    def has(self, key: str) -> bool:
        return self._part(key).is_file()

    def load(self, key: str) -> Arrays | None:
        try:
            with numpy().load(self._part(key), allow_pickle=False) as file:  # checks a sum of each array
                return dict(file)
        except (OSError, ValueError, EOFError, zipfile.BadZipFile):
            self._part(key).unlink(missing_ok=True)
            return None

    def finish(self, picture: str, files: Iterable[Path], keys: Iterable[str]) -> None:
        """Notes that a picture is written, and lets go of its units."""
        written = list(files)
        if not any(_native.is_stream(str(file)) for file in written):
            put(self._note(picture), json.dumps([_seen(file) for file in written]).encode())
        for key in keys:
            self._part(key).unlink(missing_ok=True)

    def is_finished(self, picture: str, files: Iterable[Path]) -> bool:
        """Whether a picture is written, and nobody has touched its files since."""
        try:
            return bool(json.loads(self._note(picture).read_text()) == [_seen(file) for file in files])
        except (OSError, ValueError):
            return False

    def _part(self, key: str) -> Path:
        return self._folder / f"{key}.npz"

    def _note(self, picture: str) -> Path:
        return self._folder / f"{picture}.json"


def _seen(file: Path) -> list[Any]:
    status = file.stat()
    return [str(file.absolute()), status.st_size, status.st_mtime_ns]
